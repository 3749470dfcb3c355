# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# fx_warnings: the compiler's warnings, for every target of the project; fx_hardening: what makes
# the built objects hard to abuse; for whole builds, sanitizers; and what makes them fast.

add_library(fx_warnings INTERFACE)
target_compile_options(fx_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wcast-align
    -Wformat=2 -Wundef)
if(FX_WARNINGS_AS_ERRORS)
    string(APPEND CMAKE_CXX_FLAGS " -Werror")  # where CXXFLAGS=-Werror puts it too
endif()

add_library(fx_hardening INTERFACE)
target_compile_options(fx_hardening INTERFACE -fstack-protector-strong -Wformat
    -Werror=format-security -Werror=date-time)  # a date would make each build another one
target_link_options(fx_hardening INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(NOT FX_SANITIZE AND NOT FX_BUILD_FUZZERS)
    # A sanitizer brings checks of its own, and like a fuzzer symbols that only the program defines.
    target_compile_options(fx_hardening INTERFACE
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
    target_link_options(fx_hardening INTERFACE -Wl,-z,defs)
endif()

if(FX_SANITIZE)
    add_compile_options(-fsanitize=${FX_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${FX_SANITIZE})
endif()

# With FX_FAST_BUILD the sources of these targets are compiled as one: the headers once, the templates
# behind command lines once.
function(fx_compile_as_one)
    if(FX_FAST_BUILD)
        set_target_properties(${ARGN} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
        foreach(target ${ARGN})  # what a source keeps to itself is not for others after all
            target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
        endforeach()
    endif()
endfunction()
