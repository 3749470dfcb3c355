# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# The five Debian packages that cpack makes of the five components; scripts/package builds them.
# DebianControl.cmake and DebianFiles.cmake add what Debian's policy wants beyond that.

set(library_package libmitsubishi-fx1s${PROJECT_VERSION_MAJOR})
set(dev_package libmitsubishi-fx1s-dev)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME mitsubishi-fx1s)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# DEBFULLNAME and DEBEMAIL name the maintainer, as for Debian's own tools. The default address is of
# a domain that is reserved to have no mail.
set(packager "The mitsubishi_fx1s authors")
set(address nobody@mitsubishi-fx1s.invalid)
if(DEFINED ENV{DEBFULLNAME})
    set(packager $ENV{DEBFULLNAME})
endif()
if(DEFINED ENV{DEBEMAIL})
    set(address $ENV{DEBEMAIL})
endif()
set(CPACK_PACKAGE_CONTACT "${packager} <${address}>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime dev)
if(TARGET fxhost)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET fxgate)
    list(APPEND CPACK_COMPONENTS_ALL gateway)
endif()
if(TARGET fxview)
    list(APPEND CPACK_COMPONENTS_ALL view)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE mitsubishi-fx1s)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"communication driver for FX-series programmable controllers
Operator panels load this library and call its functions: it plans what to
poll, builds the frames of the FX programming port, checks the replies, caches
values, transfers recipes and reports changes. The host owns the link and all
timing.")

set(qt_dev_package qtbase5-dev)
if(FX_QT_MAJOR EQUAL 6)
    set(qt_dev_package qt6-base-dev)
endif()
set(CPACK_DEBIAN_DEV_PACKAGE_NAME ${dev_package})
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "${library_package} (= ${PROJECT_VERSION}), ${qt_dev_package}")
set(CPACK_DEBIAN_DEV_DESCRIPTION
"communication driver for FX-series controllers - development files
The public header with its reference, the CMake package, the pkg-config file,
the guides and the examples for programmers of hosts.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME fx-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
"command-line host and simulator for FX-series programmable controllers
fxhost reads, writes, watches and measures a controller, with the library that
operator panels load. fxsim simulates a controller on a pseudo-terminal, TCP
or a serial port, and can simulate faults.")

set(CPACK_DEBIAN_GATEWAY_PACKAGE_NAME fx-gateway)
set(CPACK_DEBIAN_GATEWAY_PACKAGE_SECTION net)
set(CPACK_DEBIAN_GATEWAY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_GATEWAY_PACKAGE_DEPENDS "fx-tools (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_GATEWAY_DESCRIPTION
"gateway from FX-series programmable controllers to MQTT
fxgate reads the tags of many controllers, a worker process for each, and
publishes them as plain JSON, as Sparkplug B or both. It keeps what changes
while the broker is away, and writes only what a tag file and its
configuration allow.")

set(CPACK_DEBIAN_VIEW_PACKAGE_NAME fx-view)
set(CPACK_DEBIAN_VIEW_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_VIEW_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_VIEW_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_VIEW_DESCRIPTION
"window in front of an FX-series programmable controller
fxview shows the tags of one controller with their age and quality, writes
them and reads them back, draws trends, keeps alarms and shows what happens on
the line.")

# The Debian changelog points to this project's own; SOURCE_DATE_EPOCH fixes its date.
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(control_files ${PROJECT_BINARY_DIR}/debian)
configure_file(packaging/debian/changelog.in ${control_files}/changelog @ONLY)
configure_file(packaging/debian/shlibs.in ${control_files}/shlibs @ONLY)
configure_file(packaging/debian/triggers ${control_files}/triggers COPYONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control_files}/shlibs ${control_files}/triggers)

configure_file(cmake/DebianFiles.cmake.in ${PROJECT_BINARY_DIR}/DebianFiles.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/DebianFiles.cmake)
configure_file(cmake/DebianControl.cmake.in ${PROJECT_BINARY_DIR}/DebianControl.cmake @ONLY)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/DebianControl.cmake)

include(CPack)
