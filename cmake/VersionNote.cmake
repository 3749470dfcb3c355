# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Puts name and version of what is built into its file, as the packaging note that
# `readelf --notes` and crash reports show, without exporting a symbol.

foreach(target mitsubishi_fx1s fxhost fxsim)
    if(TARGET ${target})
        set(FX_NOTE_NAME ${target})
        set(note ${PROJECT_BINARY_DIR}/version_note/${target}.cpp)
        configure_file(cmake/version_note.cpp.in ${note} @ONLY)
        target_sources(${target} PRIVATE ${note})
    endif()
endforeach()
