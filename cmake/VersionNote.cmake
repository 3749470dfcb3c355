# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Puts the name, the version and the major version of Qt into each file that is built, as the
# packaging note that `readelf --notes` and crash reports show, without exporting a symbol. A host
# can read it before it loads the library.

foreach(target mitsubishi_fx1s fxhost fxsim fxview)
    if(TARGET ${target})
        set(FX_NOTE_NAME ${target})
        set(note ${PROJECT_BINARY_DIR}/version_note/${target}.cpp)
        configure_file(cmake/version_note.cpp.in ${note} @ONLY)
        target_sources(${target} PRIVATE ${note})
    endif()
endforeach()
