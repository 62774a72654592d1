# GoogleTest is cross-built from Debian's source package.
set(ORVIK_GOOGLETEST_SOURCE /usr/src/googletest)
if(NOT EXISTS "${ORVIK_GOOGLETEST_SOURCE}/CMakeLists.txt")
    message(FATAL_ERROR "GoogleTest's source package is missing: run ./dev install")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory("${ORVIK_GOOGLETEST_SOURCE}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)

add_library(orvik_test_options INTERFACE)
target_compile_options(orvik_test_options INTERFACE ${ORVIK_SHORT_BUILD_FLAGS})
target_link_libraries(orvik_test_options INTERFACE orvik_options GTest::gtest GTest::gmock)
add_library(orvik_test_headers STATIC "${CMAKE_SOURCE_DIR}/cmake/TestHeaders.cpp")
target_link_libraries(orvik_test_headers PRIVATE orvik_test_options)
orvik_debian_headers(orvik_test_headers nlohmann)
orvik_precompile(orvik_test_headers <gmock/gmock.h> <gtest/gtest.h>)

# orvik_test(name SOURCES ... LINKS ... [LABEL unit] [PROPERTIES ...]): a test program <name>_tests; each of its tests is
# a CTest test in a process of its own, run under Wine through the emulator of the toolchain file.
function(orvik_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINKS;PROPERTIES" ${ARGN})
    if(NOT ARG_LABEL)
        set(ARG_LABEL unit)
    endif()
    add_executable(${name}_tests ${ARG_SOURCES})
    target_link_libraries(${name}_tests PRIVATE orvik_test_options ${ARG_LINKS})
    target_precompile_headers(${name}_tests REUSE_FROM orvik_test_headers)
    # A test program without symbols is a tenth of the size, and each of its tests starts it anew.
    target_link_options(${name}_tests PRIVATE -municode $<$<NOT:$<BOOL:${ORVIK_TEST_SYMBOLS}>>:-s>)
    gtest_discover_tests(${name}_tests
        TEST_PREFIX "${name}."
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES LABELS ${ARG_LABEL} TIMEOUT 120 ${ARG_PROPERTIES})
endfunction()
