# Newer cross-compilers bring declarations of the toast interfaces: then ours are compared with them.
include(CheckCXXSourceCompiles)

set(CMAKE_REQUIRED_FLAGS "-std=c++20")
set(CMAKE_REQUIRED_DEFINITIONS -DWINVER=0x0A00 -D_WIN32_WINNT=0x0A00)
check_cxx_source_compiles("
#include <windows.h>
#include <windows.ui.notifications.h>
int main() { return sizeof(ABI::Windows::UI::Notifications::IToastNotifier) == 0; }
" ORVIK_PLATFORM_TOAST_HEADERS)
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_DEFINITIONS)

target_compile_definitions(sim_toasts_tests PRIVATE
    ORVIK_HAS_PLATFORM_TOAST_HEADERS=$<BOOL:${ORVIK_PLATFORM_TOAST_HEADERS}>)
