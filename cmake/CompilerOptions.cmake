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

# Libraries are shared unless whoever builds them says otherwise.
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
    set(BREVANTIS_LIBRARY_KIND STATIC)
else()
    set(BREVANTIS_LIBRARY_KIND SHARED)
endif()

option(BREVANTIS_DEBUG_INFO "Libraries with debug information, whatever the build type" OFF)

# A library of the project. What it offers goes to the versions that MAP tells, where it is shared.
function(brevantis_library target map)
    add_library(${target} ${BREVANTIS_LIBRARY_KIND})
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_compile_features(${target} PUBLIC cxx_std_17)
    brevantis_warnings(${target})
    if(BREVANTIS_DEBUG_INFO)
        target_compile_options(${target} PRIVATE -g)
    endif()
    if(BREVANTIS_LIBRARY_KIND STREQUAL "STATIC")
        # It may become a part of somebody's shared library, which does not offer what is in it.
        set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
        target_compile_definitions(${target} PUBLIC BREVANTIS_ASN1_STATIC)
        return()
    endif()
    # Calls between its own functions need no detour through the dynamic linker: nobody is meant to
    # interpose them.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE
        -Wl,-Bsymbolic-functions -Wl,--version-script=${map})
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${map})
    if(NOT BREVANTIS_SANITIZERS)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()
