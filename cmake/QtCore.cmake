# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Qt Core of the host's major version: as a target (FX_QT_CORE) and as pkg-config calls it (FX_QT_PC).

if(FX_QT_MAJOR EQUAL 4)
    find_package(Qt4 4.8 REQUIRED QtCore)
    set(FX_QT_CORE Qt4::QtCore)
    set(FX_QT_PC QtCore)
elseif(FX_QT_MAJOR EQUAL 5)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
    set(FX_QT_CORE Qt5::Core)
    set(FX_QT_PC Qt5Core)
elseif(FX_QT_MAJOR EQUAL 6)
    find_package(Qt6 REQUIRED COMPONENTS Core)
    set(FX_QT_CORE Qt6::Core)
    set(FX_QT_PC Qt6Core)
else()
    message(FATAL_ERROR "FX_QT_MAJOR is '${FX_QT_MAJOR}'; it must be 4, 5 or 6")
endif()

# The same for targets of the project, whichever Qt it is.
add_library(fx_qt_core INTERFACE)
target_link_libraries(fx_qt_core INTERFACE ${FX_QT_CORE})
