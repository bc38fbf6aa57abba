# Compiler and linker flags shared by every target of the project, and by none of a project around it.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

set(BREVANTIS_SANITIZERS "" CACHE STRING "Sanitizers for every target, as in -fsanitize=")

set(BREVANTIS_WARNINGS
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-qual
    -Wcast-align -Wformat=2 -Wnon-virtual-dtor -Woverloaded-virtual -Wundef -Wunused
    -Wmissing-declarations)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND BREVANTIS_WARNINGS -Wduplicated-cond -Wduplicated-branches -Wlogical-op)
endif()
if(BREVANTIS_WARNINGS_AS_ERRORS)
    list(APPEND BREVANTIS_WARNINGS -Werror)
endif()

if(BREVANTIS_SANITIZERS)
    add_compile_options(-fsanitize=${BREVANTIS_SANITIZERS} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${BREVANTIS_SANITIZERS})
endif()

# Warnings of the project, for every target written here.
function(brevantis_warnings target)
    target_compile_options(${target} PRIVATE ${BREVANTIS_WARNINGS})
endfunction()

# The shared library itself. Calls between its own functions need no detour through the dynamic
# linker: nobody is meant to interpose them.
function(brevantis_library_options target)
    brevantis_warnings(${target})
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
    if(NOT BREVANTIS_SANITIZERS)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()
