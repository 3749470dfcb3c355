# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# fx_qt_core: Qt Core of the host's major version.

add_library(fx_qt_core INTERFACE)
if(FX_QT_MAJOR EQUAL 4)
    find_package(Qt4 4.8 REQUIRED QtCore)
    target_link_libraries(fx_qt_core INTERFACE Qt4::QtCore)
elseif(FX_QT_MAJOR EQUAL 5)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
    target_link_libraries(fx_qt_core INTERFACE Qt5::Core)
elseif(FX_QT_MAJOR EQUAL 6)
    find_package(Qt6 REQUIRED COMPONENTS Core)
    target_link_libraries(fx_qt_core INTERFACE Qt6::Core)
else()
    message(FATAL_ERROR "FX_QT_MAJOR is '${FX_QT_MAJOR}'; it must be 4, 5 or 6")
endif()
