# The second compiler: clang and lld for the same target, with the headers and libraries of the first one, whose places
# the first one tells. The objects are compatible, its programs run.
include("${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake")

execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
    OUTPUT_VARIABLE ORVIK_GCC_FOLDER OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
cmake_path(GET ORVIK_GCC_FOLDER PARENT_PATH ORVIK_GCC_FOLDER)

find_program(ORVIK_CLANGXX NAMES clang++-19 clang++ REQUIRED)
find_program(ORVIK_CLANG NAMES clang-19 clang REQUIRED)
set(CMAKE_CXX_COMPILER "${ORVIK_CLANGXX}")
set(CMAKE_C_COMPILER "${ORVIK_CLANG}")
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-windows-gnu)

# clang would take the highest directory of /usr/lib/gcc, which may be that of the other thread variant.
string(JOIN " " CMAKE_CXX_FLAGS_INIT
    "-nostdinc++"
    "-isystem ${ORVIK_GCC_FOLDER}/include/c++"
    "-isystem ${ORVIK_GCC_FOLDER}/include/c++/x86_64-w64-mingw32"
    "-isystem ${ORVIK_GCC_FOLDER}/include/c++/backward")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -static -L${ORVIK_GCC_FOLDER} -lpthread")
endforeach()
