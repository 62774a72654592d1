#include "bench/startup/HiddenWindow.h"

// The baseline: nothing but the hidden window.
int APIENTRY wWinMain(HINSTANCE instance, HINSTANCE, LPWSTR, int)
{
    return RunHiddenWindow(instance, L"ORVIKMINIMALPROGRAM");
}
