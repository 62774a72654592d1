# Header-only libraries of Debian's native packages, made visible to the cross-compiler one by one: all of /usr/include
# on its search path would hide the headers of mingw-w64.

# orvik_debian_headers(target folder...): target sees /usr/include/<folder> as <folder/...>.
function(orvik_debian_headers target)
    set(tree "${CMAKE_BINARY_DIR}/debian-headers")
    file(MAKE_DIRECTORY "${tree}")
    foreach(folder IN LISTS ARGN)
        if(NOT EXISTS "/usr/include/${folder}")
            message(FATAL_ERROR "The header folder '${folder}' is missing: run ./dev install")
        endif()
        file(CREATE_LINK "/usr/include/${folder}" "${tree}/${folder}" SYMBOLIC)
    endforeach()
    target_include_directories(${target} SYSTEM PUBLIC "${tree}")
endfunction()
