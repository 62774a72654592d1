#include <windows.h>

#include <gmock/gmock.h>

int wmain(int argc, wchar_t** argv)
{
    // A crash ends the program instead of waiting for a debugger.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
