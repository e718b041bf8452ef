# SPDX-License-Identifier: Apache-2.0
# What is installed, and how others find it: a CMake package and a pkg-config file for libkelp of each Qt, one of each
# for libkelp-platform. The two builds of libkelp install side by side.

include(CMakePackageConfigHelpers)

set(KELP_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake)
set(KELP_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
# The installed tree can be moved: its pkg-config files find their prefix from where they lie.
file(RELATIVE_PATH KELP_PKGCONFIG_TO_PREFIX /${KELP_PKGCONFIG_DIR} /)
string(REGEX REPLACE "/$" "" KELP_PKGCONFIG_TO_PREFIX "${KELP_PKGCONFIG_TO_PREFIX}")

# Installs the package NAME, whose targets are exported as kelp::<target>.
function(kelp_install_package name)
    install(EXPORT ${name} NAMESPACE kelp:: DESTINATION ${KELP_CMAKE_DIR}/${name} FILE ${name}Targets.cmake)
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${ARGV1} ${PROJECT_BINARY_DIR}/${name}Config.cmake
        INSTALL_DESTINATION ${KELP_CMAKE_DIR}/${name})
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
    install(FILES ${PROJECT_BINARY_DIR}/${name}Config.cmake ${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
        DESTINATION ${KELP_CMAKE_DIR}/${name})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/${ARGV2} ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${KELP_PKGCONFIG_DIR})
endfunction()

install(TARGETS kelp-platform platform-headers EXPORT kelp-platform LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
kelp_install_package(kelp-platform kelp-platformConfig.cmake.in kelp-platform.pc.in)

install(TARGETS kelp EXPORT ${KELP_LIBRARY_NAME} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/kelp ${PROJECT_BINARY_DIR}/include/kelp
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
kelp_install_package(${KELP_LIBRARY_NAME} kelpConfig.cmake.in kelp.pc.in)
