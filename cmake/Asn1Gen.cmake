# Compiles ASN.1 modules into a target.
#
#   asn1gen_modules(TARGET
#       NAMESPACE name            namespace of what is generated
#       INCLUDE_PREFIX path       how the headers are included: <path/module.h>
#       OUTPUT_DIRECTORY dir      headers go to dir/include/path, sources to dir/src
#       [EXPORT_MACRO name]       marks what a shared library exports
#       [CATALOGUE]               adds the source that finds every description by name
#       [MODULE_NAMES]            descriptions are called Module.Type rather than Type
#       [WITHOUT_LIBRARY]         modules of the library are not imported from
#       MODULES file...)          modules that import from each other
#
# The sources become private sources of the target; dir/include is left for the caller to add to its
# include directories, with the visibility that it needs. A target may have several calls, each with
# a directory of its own.
#
# Modules may import from those of the library, BREVANTIS_ASN1_SCHEMA_DIRECTORY, whose types are used
# then. BREVANTIS_ASN1GEN names the compiler to run, which has to be one for the building machine:
# where the target runs on another, one that was built for this one has to be given.
function(asn1gen_modules target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "CATALOGUE;MODULE_NAMES;WITHOUT_LIBRARY"
        "NAMESPACE;INCLUDE_PREFIX;OUTPUT_DIRECTORY;EXPORT_MACRO" "MODULES")
    if(NOT TARGET ${target})
        message(FATAL_ERROR "asn1gen_modules: there is no target '${target}'")
    endif()
    foreach(name IN ITEMS NAMESPACE INCLUDE_PREFIX OUTPUT_DIRECTORY MODULES)
        if("${arg_${name}}" STREQUAL "")
            message(FATAL_ERROR "asn1gen_modules(${target}): ${name} is missing")
        endif()
    endforeach()
    if(arg_UNPARSED_ARGUMENTS OR arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "asn1gen_modules(${target}): what is meant by "
            "'${arg_UNPARSED_ARGUMENTS}${arg_KEYWORDS_MISSING_VALUES}'?")
    endif()
    if(NOT arg_NAMESPACE MATCHES "^[A-Za-z_][A-Za-z0-9_]*(::[A-Za-z_][A-Za-z0-9_]*)*$")
        message(FATAL_ERROR
            "asn1gen_modules(${target}): '${arg_NAMESPACE}' is no namespace of C++")
    endif()

    if(BREVANTIS_ASN1GEN)
        set(compiler ${BREVANTIS_ASN1GEN})
    elseif(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
        message(FATAL_ERROR "asn1gen_modules(${target}): BREVANTIS_ASN1GEN has to name an asn1gen "
            "for the machine that builds")
    else()
        set(compiler Brevantis::asn1gen)
    endif()

    get_filename_component(output_dir ${arg_OUTPUT_DIRECTORY} ABSOLUTE
        BASE_DIR ${CMAKE_CURRENT_BINARY_DIR})
    get_property(directories GLOBAL PROPERTY ASN1GEN_OUTPUT_DIRECTORIES)
    if(output_dir IN_LIST directories)
        message(FATAL_ERROR "asn1gen_modules(${target}): another call has '${output_dir}' already")
    endif()
    set_property(GLOBAL APPEND PROPERTY ASN1GEN_OUTPUT_DIRECTORIES ${output_dir})
    set(header_dir ${output_dir}/include/${arg_INCLUDE_PREFIX})
    set(source_dir ${output_dir}/src)

    set(modules)
    set(headers)
    set(sources)
    foreach(module IN LISTS arg_MODULES)
        get_filename_component(path "${module}" ABSOLUTE)
        if(NOT EXISTS "${path}" OR IS_DIRECTORY "${path}")
            message(FATAL_ERROR "asn1gen_modules(${target}): '${module}' is no file")
        endif()
        get_filename_component(stem "${module}" NAME_WLE)
        list(APPEND modules "${path}")
        list(APPEND headers "${header_dir}/${stem}.h" "${source_dir}/${stem}_types.h")
        list(APPEND sources "${source_dir}/${stem}.cpp")
    endforeach()
    set(options)
    set(library_modules)
    if(arg_EXPORT_MACRO)
        list(APPEND options --export-macro ${arg_EXPORT_MACRO})
    endif()
    if(arg_CATALOGUE)
        list(APPEND options --catalogue)
        list(APPEND sources ${source_dir}/catalogue.cpp)
    endif()
    if(arg_MODULE_NAMES)
        list(APPEND options --module-names)
    endif()
    if(NOT arg_WITHOUT_LIBRARY)
        set(library "${BREVANTIS_ASN1_SCHEMA_DIRECTORY}")
        if(NOT library) # in the library's own tree
            set(library "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../asn1data/schema")
        endif()
        list(APPEND options --library "${library}")
        file(GLOB library_modules "${library}/*.asn1")
    endif()
    add_custom_command(
        OUTPUT ${headers} ${sources}
        COMMAND ${compiler} --namespace ${arg_NAMESPACE} --header-dir "${header_dir}"
            --include-prefix ${arg_INCLUDE_PREFIX} --source-dir "${source_dir}" ${options}
            ${modules}
        DEPENDS ${compiler} ${modules} ${library_modules}
        COMMENT "Compiling the ASN.1 modules of ${target}"
        VERBATIM)
    # The target may belong to another directory, where it does not see the command itself.
    set(generation ${target}_asn1)
    while(TARGET ${generation})
        string(APPEND generation _more)
    endwhile()
    add_custom_target(${generation} DEPENDS ${headers} ${sources})
    add_dependencies(${target} ${generation})
    # Lists are records with a base, whose members' offsets every supported compiler knows all the
    # same.
    set_source_files_properties(${headers} ${sources} TARGET_DIRECTORY ${target} PROPERTIES
        GENERATED ON
        COMPILE_OPTIONS -Wno-invalid-offsetof
        SKIP_LINTING ON)
    target_sources(${target} PRIVATE ${headers} ${sources})
    target_include_directories(${target} PRIVATE ${source_dir})
endfunction()
