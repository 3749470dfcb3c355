# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# What `cmake --install` puts where, in three components: runtime (the library), dev (header, CMake
# and pkg-config files) and tools. Nothing in it names an absolute path, so the tree can be moved.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mitsubishi_fx1s)

install(TARGETS mitsubishi_fx1s EXPORT mitsubishi_fx1s
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES driver/intf.h driver/records.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mitsubishi_fx1s COMPONENT dev)
install(EXPORT mitsubishi_fx1s NAMESPACE mitsubishi_fx1s:: DESTINATION ${package_dir}
    FILE mitsubishi_fx1s-targets.cmake COMPONENT dev)

configure_package_config_file(cmake/mitsubishi_fx1s-config.cmake.in
    ${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config.cmake
    ${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config-version.cmake
    DESTINATION ${package_dir} COMPONENT dev)

# The prefix of a pkg-config file that was moved with its tree lies above the folder of the file.
file(RELATIVE_PATH prefix_above_pc
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/mitsubishi_fx1s.pc.in ${PROJECT_BINARY_DIR}/mitsubishi_fx1s.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mitsubishi_fx1s.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(TARGET fxhost)
    install(TARGETS fxhost fxsim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
