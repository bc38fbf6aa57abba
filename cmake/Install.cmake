# What `cmake --install` puts where: the libraries, their headers, the schema compiler with the CMake
# function that runs it, the library's own schema for modules that import from it, and what CMake
# and pkg-config need to find it all.
include(CMakePackageConfigHelpers)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/brevantis_asn1)

set_target_properties(brevantis_asn1 PROPERTIES EXPORT_NAME asn1)
set_target_properties(brevantis_asn1gen PROPERTIES EXPORT_NAME asn1gen)
set(libraries brevantis_asn1)
if(TARGET brevantis_asn1_text)
    list(APPEND libraries brevantis_asn1_text)
    # It finds the library that it stands on beside itself.
    set_target_properties(brevantis_asn1_text PROPERTIES
        EXPORT_NAME asn1_text INSTALL_RPATH "$ORIGIN")
endif()
install(TARGETS ${libraries} brevantis_asn1gen EXPORT brevantis_asn1_targets)
install(FILES ${PROJECT_SOURCE_DIR}/docs/asn1gen.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(EXPORT brevantis_asn1_targets
    NAMESPACE Brevantis:: DESTINATION ${package_directory})

set(include_directories)
foreach(library IN LISTS libraries)
    get_target_property(directories ${library} INCLUDE_DIRECTORIES)
    list(APPEND include_directories ${directories})
endforeach()
foreach(entry IN LISTS include_directories)
    # Directories that only the build uses hold no <brevantis/...>.
    string(REGEX REPLACE "^\\$<BUILD_INTERFACE:(.*)>$" "\\1" directory "${entry}")
    if(directory MATCHES "/include$" AND IS_ABSOLUTE "${directory}")
        install(DIRECTORY ${directory}/brevantis DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
            FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
    endif()
endforeach()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/asn1data/schema
    DESTINATION ${CMAKE_INSTALL_DATADIR}/brevantis_asn1 FILES_MATCHING PATTERN "*.asn1")

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
    DESTINATION ${package_directory})

# Relative to the file itself, so that the tree can be moved.
file(RELATIVE_PATH prefix_from_file "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
set(pc_files brevantis-asn1.pc)
if(TARGET brevantis_asn1_text)
    list(APPEND pc_files brevantis-asn1-text.pc)
endif()
foreach(pc_file IN LISTS pc_files)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/${pc_file}.in
        ${PROJECT_BINARY_DIR}/packaging/${pc_file} @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/packaging/${pc_file}
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
