# Tests and simulator are compiled for short builds, not for fast code: unoptimised, and their largest headers (three
# quarters of the compile time) once. The product is built without these, and the clang preset builds everything without:
# there a missing include is seen.
option(ORVIK_TEST_SYMBOLS "Test programs keep what a debugger needs" OFF)
set(ORVIK_SHORT_BUILD_FLAGS -O0 $<IF:$<BOOL:${ORVIK_TEST_SYMBOLS}>,-g1,-g0>)

# orvik_precompile(target [header...]): the common headers and those named; targets of the same flags reuse them.
function(orvik_precompile target)
    target_precompile_headers(${target} PRIVATE
        <windows.h> <comdef.h> <nlohmann/json.hpp>
        <algorithm> <atomic> <filesystem> <functional> <map> <memory> <mutex> <optional> <string> <thread> <vector>
        ${ARGN})
endfunction()
