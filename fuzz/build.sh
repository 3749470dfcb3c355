#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Builds the fuzz targets for a service that runs them, with its compiler and its engine, and puts
# into OUT what it needs: targets, committed inputs as archives, dictionaries, and the shared
# libraries that they load. Takes all from the environment and nothing from the network:
#   CC CXX CFLAGS CXXFLAGS   compilers, and flags that instrument (clang, clang++, -fsanitize=...)
#   LIB_FUZZING_ENGINE       what to link (-fsanitize=fuzzer)
#   OUT WORK                 folders (build/fuzz-out, build/fuzz-work)
# scripts/fuzz does all of it on one machine.

set -euo pipefail
cd "$(dirname "$0")/.."

export CC=${CC:-clang} CXX=${CXX:-clang++}
instrument="-O1 -g -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all"
out=$(realpath -m "${OUT:-build/fuzz-out}")
work=$(realpath -m "${WORK:-build/fuzz-work}")
mkdir -p "$out/lib" "$work"

CFLAGS=${CFLAGS-$instrument} CXXFLAGS=${CXXFLAGS-$instrument} \
    cmake -S . -B "$work" -G Ninja -DCMAKE_BUILD_TYPE=None -DFX_BUILD_FUZZERS=ON \
    -DFX_FUZZING_ENGINE="${LIB_FUZZING_ENGINE:--fsanitize=fuzzer}" -DFX_FAST_BUILD=ON \
    -DCMAKE_BUILD_RPATH="\$ORIGIN/lib" -DCMAKE_BUILD_RPATH_USE_ORIGIN=ON

targets="reply property address merge session exchange line files texts bus worker"
for target in $targets; do
    cmake --build "$work" --target "fuzz_$target"
    cp "$work/bin/fuzz_$target" "$out"
    rm -f "$out/fuzz_${target}_seed_corpus.zip"
    (cd "fuzz/corpus/$target" && python3 -m zipfile -c "$out/fuzz_${target}_seed_corpus.zip" ./*)
    [ ! -e "fuzz/$target.dict" ] || cp "fuzz/$target.dict" "$out/fuzz_$target.dict"
done

# The tools' targets load the library from their own folder.
cmake --build "$work" --target mitsubishi_fx1s
cp "$work/libmitsubishi_fx1s.so.0" "$out"

# Qt, what the gateway links, and what these load; the C and C++ libraries are there wherever
# targets run.
ldd "$out/fuzz_files" "$out/fuzz_bus" |
    awk '$2 == "=>" && $3 !~ /\/(ld-linux.*|lib(c|m|dl|rt|pthread|gcc_s|stdc\+\+))\.so/ { print $3 }' |
    sort -u | xargs -r cp -L -t "$out/lib"
