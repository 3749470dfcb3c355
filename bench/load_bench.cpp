// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What loading and unloading the library costs a program that runs on Qt already.

#include <QString>

#include <benchmark/benchmark.h>
#include <dlfcn.h>

namespace {

void loadLibrary(benchmark::State& state)
{
    const QString qtIsLoaded = QString::number(state.max_iterations);
    for (auto _ : state) {
        void* library = dlopen(FX_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr || dlclose(library) != 0) {
            state.SkipWithError(dlerror());
            break;
        }
    }
    benchmark::DoNotOptimize(qtIsLoaded);
}
BENCHMARK(loadLibrary)->Unit(benchmark::kMicrosecond);

}  // namespace
