# vs_pfs_package(NAME DESCRIPTION text LIBRARIES flags): installs what lets other builds find the
# targets of the export set NAMETargets: the CMake package NAME, whose targets are NAME::..., and
# NAME.pc. Both use paths relative to their own location, so an installed tree is relocatable.
# Test: tests/install.
include(CMakePackageConfigHelpers)

set(package_templates ${CMAKE_CURRENT_LIST_DIR})

function(vs_pfs_package name)
    cmake_parse_arguments(PARSE_ARGV 1 package "" "DESCRIPTION;LIBRARIES" "")
    set(directory ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
    install(EXPORT ${name}Targets NAMESPACE ${name}:: DESTINATION ${directory})
    set(package_name ${name})
    configure_package_config_file(${package_templates}/Config.cmake.in ${name}Config.cmake
        INSTALL_DESTINATION ${directory}
        NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file(${name}ConfigVersion.cmake COMPATIBILITY SameMinorVersion)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}Config.cmake
            ${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake
        DESTINATION ${directory})

    file(RELATIVE_PATH package_up
        ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    string(REGEX REPLACE "/$" "" package_up "${package_up}")
    configure_file(${package_templates}/package.pc.in ${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
