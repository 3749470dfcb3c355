# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# What `cmake --install` puts where, in five components: runtime (the library), dev (header, CMake
# and pkg-config files, guides, examples), tools, gateway and view. Nothing in it names an absolute path, so the
# installed tree can be moved.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mitsubishi_fx1s)

install(TARGETS mitsubishi_fx1s EXPORT mitsubishi_fx1s
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES LICENSES/MIT.txt RENAME LICENSE
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

install(FILES ${FX_PUBLIC_HEADERS}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mitsubishi_fx1s COMPONENT dev)
install(EXPORT mitsubishi_fx1s NAMESPACE mitsubishi_fx1s:: DESTINATION ${package_dir}
    FILE mitsubishi_fx1s-targets.cmake COMPONENT dev)
configure_package_config_file(cmake/mitsubishi_fx1s-config.cmake.in
    ${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config.cmake
    ${PROJECT_BINARY_DIR}/mitsubishi_fx1s-config-version.cmake
    DESTINATION ${package_dir} COMPONENT dev)

# The prefix of a pkg-config file that was moved with its tree lies above the folder of the file.
file(RELATIVE_PATH prefix_above_pc
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/mitsubishi_fx1s.pc.in ${PROJECT_BINARY_DIR}/mitsubishi_fx1s.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mitsubishi_fx1s.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The documents keep their places to each other, so that the links between them work.
install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)
install(FILES docs/host-guide.md docs/frames.md docs/compatibility.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT dev)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev
    PATTERN gateway EXCLUDE PATTERN screens EXCLUDE)

if(TARGET fxhost)
    install(TARGETS fxhost fxsim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    foreach(manual tools/fxhost/fxhost.1 tools/fxsim/fxsim.1)
        get_filename_component(name ${manual} NAME)
        configure_file(${manual} ${PROJECT_BINARY_DIR}/man/${name} @ONLY)  # the version in its foot
        install(FILES ${PROJECT_BINARY_DIR}/man/${name}
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    endforeach()
    install(DIRECTORY packaging/completion/ COMPONENT tools
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions PATTERN fxgate EXCLUDE
        PATTERN fxview EXCLUDE)

    install(FILES docs/at-the-machine.md docs/serve.md docs/tags.md docs/polling.md docs/json-schema.json
                  docs/doctor.svg docs/plan.svg docs/simulator.svg docs/watch.svg
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT tools)
    install(DIRECTORY examples/tags DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT tools)
    install(FILES packaging/systemd/fxhost-log@.service COMPONENT tools
        DESTINATION lib/systemd/system)

    # fxhost loads the library by name, as panels do, and finds it from its own folder.
    file(RELATIVE_PATH library_beside_tools
        /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_property(SOURCE tools/library/driver_library.cpp TARGET_DIRECTORY fx_library
        PROPERTY COMPILE_DEFINITIONS
        FX_LIBRARY_FILE="$<TARGET_SONAME_FILE_NAME:mitsubishi_fx1s>"
        FX_LIBRARY_FOLDER="${library_beside_tools}")
endif()

if(TARGET fxgate)
    install(TARGETS fxgate RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT gateway)
    foreach(manual fxgate.1 fxgate.toml.5)
        configure_file(tools/fxgate/${manual} ${PROJECT_BINARY_DIR}/man/${manual} @ONLY)
        string(REGEX MATCH "[0-9]$" section ${manual})
        install(FILES ${PROJECT_BINARY_DIR}/man/${manual}
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT gateway)
    endforeach()
    install(FILES packaging/completion/fxgate COMPONENT gateway
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES docs/gateway.md docs/sparkplug.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT gateway)
    install(DIRECTORY examples/gateway
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT gateway)
    install(FILES packaging/systemd/fxgate.service COMPONENT gateway
        DESTINATION lib/systemd/system)
endif()

if(TARGET fxview)
    install(TARGETS fxview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT view)
    configure_file(tools/fxview/fxview.1 ${PROJECT_BINARY_DIR}/man/fxview.1 @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/man/fxview.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT view)
    install(FILES packaging/completion/fxview COMPONENT view
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES packaging/desktop/fxview.desktop COMPONENT view
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    install(FILES packaging/desktop/invalid.mitsubishi_fx1s.fxview.metainfo.xml COMPONENT view
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
    install(FILES packaging/desktop/fxview.svg COMPONENT view
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
    install(FILES docs/window.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT view)
    install(DIRECTORY docs/pictures DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT view)
    install(DIRECTORY examples/screens
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT view)
endif()
