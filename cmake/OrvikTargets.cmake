# Compiler settings shared by every target, and the functions that declare the project's kinds of target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

add_library(orvik_options INTERFACE)
target_compile_definitions(orvik_options INTERFACE
    UNICODE _UNICODE STRICT NOMINMAX WIN32_LEAN_AND_MEAN STRSAFE_NO_DEPRECATE
    # Declarations of Windows 10 are visible; what Windows 7 lacks is looked up at run time, which a test of the imports proves.
    WINVER=0x0A00 _WIN32_WINNT=0x0A00)
target_compile_options(orvik_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-unknown-pragmas -Werror
    -fstack-protector-strong -ffunction-sections -fdata-sections
    "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")
# clang alone: the thread-local variables of the first compiler's library are found by its way alone; HRESULT, DWORD and
# LPARAM meet in every second line, and Windows' own macros declare a COM method as never throwing and leave that out where
# it is defined.
target_compile_options(orvik_options INTERFACE
    $<$<CXX_COMPILER_ID:Clang>:-femulated-tls -Wno-sign-conversion -Wno-missing-exception-spec
        -Wno-microsoft-exception-spec>)
target_include_directories(orvik_options INTERFACE "${CMAKE_SOURCE_DIR}/src" "${CMAKE_SOURCE_DIR}")
target_link_options(orvik_options INTERFACE
    -static -fstack-protector-strong -Wl,--gc-sections -Wl,--no-insert-timestamp
    -Wl,--major-subsystem-version=6 -Wl,--minor-subsystem-version=1)

# orvik_library(name SOURCES ... LINKS ...): one folder of src or simulator; LINKS are its arrows.
function(orvik_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC orvik_options ${ARG_LINKS})
endfunction()
