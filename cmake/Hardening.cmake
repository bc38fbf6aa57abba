# Flags that make mistakes harder to exploit, for all that is built. They stand in front of the flags
# that were given, so that whoever gives others of the same kind gets those.

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

# Adds a flag of the compiler unless the given ones tell already about its subject.
function(brevantis_harden variable subject flag)
    string(FIND "${CMAKE_CXX_FLAGS} ${${variable}}" "${subject}" place)
    if(place EQUAL -1)
        set(${variable} "${flag} ${${variable}}" PARENT_SCOPE)
    endif()
endfunction()

# Guards functions with arrays of characters. -fstack-protector-strong, which also guards what hands
# out the address of a local variable, costs decoding 4 and walking 7 instructions of 100, this 0.1.
brevantis_harden(CMAKE_CXX_FLAGS stack-protector -fstack-protector)
# Shadow stacks cost no instruction. The marks of permitted targets of jumps (full) cost 2 of 100.
check_cxx_compiler_flag(-fcf-protection=return BREVANTIS_HAVE_CF_PROTECTION)
check_linker_flag(CXX -Wl,-z,shstk BREVANTIS_HAVE_SHADOW_STACK)
if(BREVANTIS_HAVE_CF_PROTECTION AND BREVANTIS_HAVE_SHADOW_STACK)
    brevantis_harden(CMAKE_CXX_FLAGS cf-protection -fcf-protection=return)
    set(shadow_stack ",-z,shstk")
endif()
# It takes an optimiser, and what the sanitizers watch is not to be rerouted.
if(NOT BREVANTIS_SANITIZERS)
    foreach(configuration RELEASE RELWITHDEBINFO MINSIZEREL)
        brevantis_harden(CMAKE_CXX_FLAGS_${configuration} _FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endforeach()
endif()
foreach(kind SHARED EXE)
    set(CMAKE_${kind}_LINKER_FLAGS
        "-Wl,-z,relro,-z,now,-z,noexecstack${shadow_stack} ${CMAKE_${kind}_LINKER_FLAGS}")
endforeach()
