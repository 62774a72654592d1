#pragma once

#include "shared/Log.h"

// One step of the function of that name. When memory runs out in it, its caller goes on with the next one.
template <class Step>
void TakeStep(const char* functionName, Step step) noexcept
{
    try
    {
        step();
    }
    catch (...)
    {
        Orvik::Shared::Log(Orvik::Shared::Level::Error, functionName, L"A step ended with an exception.");
    }
}
