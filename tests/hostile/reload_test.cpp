// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The library loaded, used and unloaded a thousand times in one process: each load starts afresh,
// each unload really unloads and gives everything back. And two copies of its file, one for each
// of two links: each keeps to an object of its own.

#include "tests/support/loaded_library.h"
#include "tests/support/record_text.h"
#include "tests/support/times_shorter.h"

#include <QMutex>

#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int loadsToSettle = 100;
constexpr int loads = loadsToSettle + 900 / timesShorter;
constexpr std::size_t smallestBlock = 4 * sizeof(void*);  // of the heap

// A process' pages would count an emulator's as well. Checkers have a heap of their own, which
// grows by nothing here, and look for leaks themselves.
std::size_t heapBytes()
{
    return mallinfo2().uordblks;
}

unsigned char valueOfD0(void* library)
{
    unsigned char value[2] = {};
    ENTRY_POINT(library, intf_getData)(1, QLatin1String("D"), 0, 1, value);
    return value[0];
}

// A short life: nothing is there, then set up, recipes, plan, write, one exchange left open.
void live(void* library, std::vector<unsigned char>& memory, std::vector<unsigned short>& words)
{
    FRAME_PRO frame;
    ASSERT_EQ(0, ENTRY_POINT(library, intf_getSendFrame)(&frame));
    ASSERT_EQ(0, valueOfD0(library));
    QVector<_RCP_VAR_PRO> list{recipeEntry("D", 0, 1, 0, 7)};
    ASSERT_EQ(0, ENTRY_POINT(library, intf_setRcpAddress)(list));  // its link is 0
    QMutex mutex;
    int status = 77;
    ENTRY_POINT(library, intf_initProperty)
    (memory.data(), 0, words.data(), &status, "7#0#0#3#32", &mutex);
    ASSERT_EQ(0, status);
    ASSERT_EQ(1, ENTRY_POINT(library, intf_setRcpAddress)(list));
    KEY_ADDRESS key = watch("D", 0, 100);
    ENTRY_POINT(library, intf_addConditionRead)(key, 0);
    QList<KEY_ADDRESS> keys{key};
    ASSERT_EQ(4, ENTRY_POINT(library, intf_addrMerge)(keys));
    unsigned char data[40] = {1};
    ENTRY_POINT(library, intf_setData)(1, QLatin1String("D"), 0, 20, data, 0);
    ASSERT_EQ(1, ENTRY_POINT(library, intf_getSendFrame)(&frame));
    ASSERT_EQ(11 + 4 * 20, frame.frameLength);
}

// Loaded with its symbols open to all, and not unloaded: the end of the process destroys the
// object.
void* loadCopy(const char* name)
{
    const std::filesystem::path copy =
        std::filesystem::path(::testing::TempDir()) / (std::to_string(getpid()) + name);
    std::filesystem::copy_file(DRIVER_LIBRARY, copy);
    void* const library = dlopen(copy.c_str(), RTLD_NOW | RTLD_GLOBAL);
    std::filesystem::remove(copy);
    return library;
}

}  // namespace

TEST(Reload, AThousandLoadsLeaveNothingBehind)
{
    std::vector<unsigned char> memory(fxHostMemoryBytes);
    std::vector<unsigned short> words(16);
    std::size_t settled = 0;
    for (int load = 0; load < loads; ++load) {
        ASSERT_NO_FATAL_FAILURE(live(LoadedLibrary().handle, memory, words));
        ASSERT_EQ(nullptr, dlopen(DRIVER_LIBRARY, RTLD_NOW | RTLD_NOLOAD)) << "still loaded";
        if (load == loadsToSettle)
            settled = heapBytes();
    }
    EXPECT_LT(heapBytes(), settled + (loads - loadsToSettle) * smallestBlock);
}

TEST(TwoCopies, ShareNoValuesThoughLoadedForAll)
{
    void* const first = loadCopy("first.so");
    void* const second = loadCopy("second.so");
    ASSERT_TRUE(first != nullptr && second != nullptr) << dlerror();
    unsigned char written[2] = {7, 0};
    ENTRY_POINT(first, intf_setData)(1, QLatin1String("D"), 0, 1, written, 0);
    EXPECT_EQ(7, valueOfD0(first));
    EXPECT_EQ(0, valueOfD0(second));
    EXPECT_NE(dlsym(first, "driver"), dlsym(second, "driver"));
}
