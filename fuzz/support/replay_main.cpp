// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Runs a fuzz target over the files of a directory, so that every test run, with any compiler,
// repeats what the fuzzer found worth keeping. Usage:
//   fuzz_replay_<target> [--show] FILE-OR-DIRECTORY...
// With --show it prints what the library answers to each call that an input makes.

#include "fuzz/support/fuzz_target.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

namespace fs = std::filesystem;

void replay(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int replayAll(const fs::path& place)
{
    if (!fs::is_directory(place)) {
        replay(place);
        return 1;
    }
    int files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(place)) {
        std::fprintf(stderr, "%s\n", entry.path().c_str());  // the last line names a crash
        replay(entry.path());
        ++files;
    }
    return files;
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    int files = 0;
    int first = 1;
    if (argumentCount > 1 && std::strcmp(arguments[1], "--show") == 0) {
        showAnswer = [](const std::string& line) { std::fprintf(stderr, "  %s\n", line.c_str()); };
        ++first;
    }
    for (int i = first; i < argumentCount; ++i)
        files += replayAll(arguments[i]);
    std::printf("%d inputs replayed\n", files);
    return files > 0 ? 0 : 1;
}
