# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# fx_warnings: the compiler's warnings, sanitizers and coverage, for every target of the project.

add_library(fx_warnings INTERFACE)
target_compile_options(fx_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wcast-align
    -Wformat=2 -Wundef)
if(FX_WARNINGS_AS_ERRORS)
    target_compile_options(fx_warnings INTERFACE -Werror)
endif()

if(FX_SANITIZE)
    add_compile_options(-fsanitize=${FX_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${FX_SANITIZE})
endif()

if(FX_COVERAGE)
    # An exception edge at every call is no branch of ours.
    add_compile_options(--coverage -O0 -fno-exceptions)
    add_link_options(--coverage)
endif()
