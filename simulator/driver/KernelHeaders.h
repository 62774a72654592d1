#pragma once

#include <intrin.h>

// mingw-w64's wdm.h defines two functions that the compiler has itself; C does not mind.
#define InterlockedBitTestAndSet OtherInterlockedBitTestAndSet
#define InterlockedBitTestAndReset OtherInterlockedBitTestAndReset
extern "C"
{
#include <ntddk.h>
}
#undef InterlockedBitTestAndSet
#undef InterlockedBitTestAndReset

extern "C"
{
#include <usbioctl.h>
}
