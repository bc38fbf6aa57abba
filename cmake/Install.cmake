# What `cmake --install` puts where: the libraries, their headers, the programs, the library's own
# schema for modules that import from it, and what CMake and pkg-config need to find it all.
#
# Components of the installation (cmake --install DIR --component NAME): asn1 and text are the
# libraries to run programs with, asn1-development and text-development what building them takes,
# tools the programs, documentation what there is to read.
include(CMakePackageConfigHelpers)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/brevantis_asn1)

# A library as a component of the installation and of the CMake package.
function(brevantis_install_library component target)
    string(REGEX REPLACE "^brevantis_" "" name ${target})
    # It finds the library that it stands on beside itself.
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${target} EXPORT brevantis_asn1_${component}
        LIBRARY COMPONENT ${component} NAMELINK_COMPONENT ${component}-development
        ARCHIVE COMPONENT ${component}-development)
    install(EXPORT brevantis_asn1_${component} FILE brevantis_asn1-${component}.cmake
        NAMESPACE Brevantis:: DESTINATION ${package_directory} COMPONENT ${component}-development)

    get_target_property(directories ${target} INCLUDE_DIRECTORIES)
    foreach(entry IN LISTS directories)
        # Directories that only the build uses hold no <brevantis/...>.
        string(REGEX REPLACE "^\\$<BUILD_INTERFACE:(.*)>$" "\\1" directory "${entry}")
        if(directory MATCHES "/include$" AND IS_ABSOLUTE "${directory}")
            install(DIRECTORY ${directory}/brevantis DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
                COMPONENT ${component}-development
                FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
        endif()
    endforeach()

    string(REPLACE "_" "-" pc_file ${target}.pc)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/${pc_file}.in
        ${PROJECT_BINARY_DIR}/packaging/${pc_file} @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/packaging/${pc_file}
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component}-development)
endfunction()

# What is in the pkg-config files. They are relative to themselves, so that the tree can be moved.
file(RELATIVE_PATH prefix_from_file "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
set(definitions "")
if(BREVANTIS_LIBRARY_KIND STREQUAL "STATIC")
    set(definitions " -DBREVANTIS_ASN1_STATIC")
endif()
# Whoever links with a compiler of another language needs the library of this one.
set(implicit_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER implicit_libraries INCLUDE REGEX "^(stdc\\+\\+|c\\+\\+|c\\+\\+abi|m)$")
list(REMOVE_DUPLICATES implicit_libraries)
list(TRANSFORM implicit_libraries PREPEND "-l")
list(JOIN implicit_libraries " " implicit_libraries)

brevantis_install_library(asn1 brevantis_asn1)
if(TARGET brevantis_asn1_text)
    brevantis_install_library(text brevantis_asn1_text)
endif()

# Installed programs find the libraries beside themselves, wherever the tree stands.
file(RELATIVE_PATH library_directory /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
foreach(name IN ITEMS asn1gen derview)
    if(TARGET brevantis_${name})
        set_target_properties(brevantis_${name} PROPERTIES
            EXPORT_NAME ${name} INSTALL_RPATH "$ORIGIN/${library_directory}")
        install(TARGETS brevantis_${name} EXPORT brevantis_asn1_tools COMPONENT tools)
        if(EXISTS ${PROJECT_SOURCE_DIR}/docs/${name}.1)
            install(FILES ${PROJECT_SOURCE_DIR}/docs/${name}.1
                DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
        endif()
    endif()
endforeach()
install(EXPORT brevantis_asn1_tools FILE brevantis_asn1-tools.cmake
    NAMESPACE Brevantis:: DESTINATION ${package_directory} COMPONENT tools)
if(TARGET brevantis_derview)
    set(completions ${PROJECT_SOURCE_DIR}/tools/derview/completions)
    install(FILES ${completions}/derview.bash COMPONENT tools RENAME derview
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${completions}/derview.fish COMPONENT tools
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
    install(FILES ${completions}/_derview COMPONENT tools
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/asn1data/schema
    DESTINATION ${CMAKE_INSTALL_DATADIR}/brevantis_asn1 COMPONENT asn1-development
    FILES_MATCHING PATTERN "*.asn1")

configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/brevantis_asn1-config.cmake.in
    ${PROJECT_BINARY_DIR}/packaging/brevantis_asn1-config.cmake
    INSTALL_DESTINATION ${package_directory}
    PATH_VARS CMAKE_INSTALL_DATADIR)
# Until 2.0 a newer library serves older programs.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/packaging/brevantis_asn1-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/packaging/brevantis_asn1-config.cmake
    ${PROJECT_BINARY_DIR}/packaging/brevantis_asn1-config-version.cmake
    ${PROJECT_SOURCE_DIR}/cmake/Asn1Gen.cmake
    DESTINATION ${package_directory} COMPONENT asn1-development)

# What there is to read, in the places that its links lead to.
foreach(page IN ITEMS README.md SECURITY.md CHANGELOG.md CONTRIBUTING.md COPYING bench/README.md
        bench/libraries/brevantis.cpp cmake/Asn1Gen.cmake tests/data/derview/own.asn1
        tools/asn1gen/README.md)
    if(EXISTS ${PROJECT_SOURCE_DIR}/${page})
        get_filename_component(directory ${page} DIRECTORY)
        install(FILES ${PROJECT_SOURCE_DIR}/${page}
            DESTINATION ${CMAKE_INSTALL_DOCDIR}/${directory} COMPONENT documentation)
    endif()
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT documentation FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.1")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT documentation)
