# Compiles ASN.1 modules into a target.
#
#   asn1gen_modules(TARGET
#       NAMESPACE name            namespace of what is generated
#       INCLUDE_PREFIX path       how the headers are included: <path/module.h>
#       OUTPUT_DIRECTORY dir      headers go to dir/include/path, sources to dir/src
#       [EXPORT_MACRO name]       marks what a shared library exports
#       [CATALOGUE]               adds the source that finds every description by name
#       MODULES file...)          modules that import from each other
#
# The sources become private sources of the target; dir/include is left for the caller to add to its
# include directories, with the visibility that it needs.
function(asn1gen_modules target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "CATALOGUE"
        "NAMESPACE;INCLUDE_PREFIX;OUTPUT_DIRECTORY;EXPORT_MACRO" "MODULES")
    set(header_dir ${arg_OUTPUT_DIRECTORY}/include/${arg_INCLUDE_PREFIX})
    set(source_dir ${arg_OUTPUT_DIRECTORY}/src)
    set(modules)
    set(headers)
    set(sources)
    foreach(module IN LISTS arg_MODULES)
        get_filename_component(path ${module} ABSOLUTE)
        get_filename_component(stem ${module} NAME_WE)
        list(APPEND modules ${path})
        list(APPEND headers ${header_dir}/${stem}.h ${source_dir}/${stem}_types.h)
        list(APPEND sources ${source_dir}/${stem}.cpp)
    endforeach()
    set(options)
    if(arg_EXPORT_MACRO)
        list(APPEND options --export-macro ${arg_EXPORT_MACRO})
    endif()
    if(arg_CATALOGUE)
        list(APPEND options --catalogue)
        list(APPEND sources ${source_dir}/catalogue.cpp)
    endif()
    add_custom_command(
        OUTPUT ${headers} ${sources}
        COMMAND Brevantis::asn1gen --namespace ${arg_NAMESPACE} --header-dir ${header_dir}
            --include-prefix ${arg_INCLUDE_PREFIX} --source-dir ${source_dir} ${options} ${modules}
        DEPENDS Brevantis::asn1gen ${modules}
        COMMENT "Compiling the ASN.1 modules of ${target}"
        VERBATIM)
    # The target may belong to another directory, where it does not see the command itself.
    add_custom_target(${target}_asn1 DEPENDS ${headers} ${sources})
    add_dependencies(${target} ${target}_asn1)
    # Lists are records with a base, whose members' offsets every supported compiler knows all the
    # same.
    set_source_files_properties(${headers} ${sources} TARGET_DIRECTORY ${target} PROPERTIES
        GENERATED ON
        COMPILE_OPTIONS -Wno-invalid-offsetof
        SKIP_LINTING ON)
    target_sources(${target} PRIVATE ${headers} ${sources})
    target_include_directories(${target} PRIVATE ${source_dir})
endfunction()
