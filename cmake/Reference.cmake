# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# The target `docs`: the reference of the public headers, by Doxygen, as HTML and as a manual page
# for each entry point. With FX_BUILD_REFERENCE it is built with the rest and installed.

find_program(FX_DOXYGEN doxygen)
if(NOT FX_DOXYGEN)
    if(FX_BUILD_REFERENCE)
        message(FATAL_ERROR "FX_BUILD_REFERENCE needs doxygen")
    endif()
    return()
endif()

set(reference ${PROJECT_BINARY_DIR}/reference)
list(JOIN FX_PUBLIC_HEADERS " " public_headers)
configure_file(docs/reference/Doxyfile.in ${reference}.doxyfile @ONLY)

add_custom_command(OUTPUT ${reference}/html/index.html
    COMMAND sh ${PROJECT_SOURCE_DIR}/docs/reference/make.sh ${FX_DOXYGEN} ${reference}
    DEPENDS ${FX_PUBLIC_HEADERS} docs/reference/header.html docs/reference/make.sh
        docs/reference/pages.awk ${reference}.doxyfile
    VERBATIM)
if(FX_BUILD_REFERENCE)
    set(with_the_rest ALL)
    install(DIRECTORY ${reference}/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference COMPONENT dev
        FILES_MATCHING PATTERN "*.html" PATTERN "*.css" PATTERN "*.svg" PATTERN "*.png")
    install(DIRECTORY ${reference}/man/man3 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT dev
        FILES_MATCHING PATTERN "intf_*.3")
endif()
add_custom_target(docs ${with_the_rest} DEPENDS ${reference}/html/index.html)
