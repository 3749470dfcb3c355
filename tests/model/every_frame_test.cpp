// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The frame codec over its whole range: the library's objects as they are shipped build and judge
// millions of frames, and the model says of each what is right.

#include "protocol/frame_codec.h"
#include "tests/model/model_driver.h"
#include "tests/support/times_shorter.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

namespace {

// Under a sanitizer or an emulator one in 67 starts: it looks for wrong accesses, which depend on
// the length.
constexpr int startStep = timesShorter > 1 ? 67 : 1;

struct Registers
{
    const char* type;
    int first;
    int last;
    int readBase;   // byte address of the first
    int writeBase;  // byte address, or bit address of a force
    int bytes;      // of one in a read; 0: of eight, of which each is forced alone
};

void PrintTo(const Registers& registers, std::ostream* out)
{
    *out << registers.type;
}

// clang-format off
const Registers allRegisters[] = {
    // type  first  last    read   write  bytes
    {"X",        0,  255, 0x0080, 0x0000, 0},
    {"Y",        0,  255, 0x00A0, 0x0500, 0},
    {"M",        0, 3071, 0x0100, 0x0800, 0},
    {"S",        0,  999, 0x0000, 0x0000, 0},
    {"SM",    8000, 8255, 0x01E0, 0x0F00, 0},
    {"T",        0,  255, 0x00C0, 0x0600, 0},
    {"C",        0,  255, 0x01C0, 0x0E00, 0},
    {"D",        0, 7999, 0x1000, 0x1000, 2},
    {"SD",    8000, 8255, 0x0E00, 0x0F00, 2},
    {"TV",       0,  255, 0x0800, 0x0800, 2},
    {"CV",       0,  199, 0x0A00, 0x0A00, 2},
    {"32CV",   200,  256, 0x0C00, 0x0C00, 4},
    {"Z",        0,  255, 0x0000, 0x0000, 2},
};
// clang-format on

constexpr int mostBytesRead = 0xFF;  // that the field of a request holds
constexpr int mostWordsWritten = 0xFF / 2;
constexpr int mostWordsBuilt = 253;  // that a record holds; the field is cut
constexpr int forceValues = 256;

// Builds each frame with the library and with the model.
class EveryFrame : public testing::TestWithParam<Registers>
{
protected:
    EveryFrame()
    {
        request.registerType = GetParam().type;
        request.stationNo = 1;
        for (std::size_t i = 0; i < sizeof request.data; ++i)
            request.data[i] = static_cast<unsigned char>(7 * i + 1);
    }
    ~EveryFrame() override { driver.frames.clear(); }

    bool isBit() const { return GetParam().bytes == 0; }
    int bytesEach() const { return isBit() ? 1 : GetParam().bytes; }

    bool isReadAlike(int start, int count)
    {
        request.addressIndex = start;
        request.count = count;
        getReadFrame(request);
        model.buildReadFrame(request);
        return isBuiltAlike();
    }

    bool isWrittenAlike(int start, int count)
    {
        request.addressIndex = start;
        request.count = count;
        getWriteFrame(request);
        model.buildWriteFrame(request);
        return isBuiltAlike();
    }

    void expectFrames(qint64 least) const { EXPECT_GE(m_compared, least / startStep); }

    ModelDriver model;
    VARIABLE request;

private:
    bool isBuiltAlike()
    {
        const FRAME_PRO& built = driver.frames.at(0);
        const FRAME_PRO& right = model.frames.front();
        const bool same = std::memcmp(built.frame, right.frame, fxRecordBytes) == 0 &&
                          built.frameLength == right.frameLength &&
                          built.replyLength == right.replyLength && built.isRead == right.isRead &&
                          built.replyDataChars == right.replyDataChars &&
                          isRequest(built.variable) && driver.frames.size() == 1;
        driver.frames.clear();
        model.frames.clear();
        ++m_compared;
        return same;
    }

    bool isRequest(const VARIABLE& carried) const
    {
        return carried.registerType == request.registerType &&
               carried.addressIndex == request.addressIndex && carried.count == request.count &&
               std::memcmp(carried.data, request.data, sizeof request.data) == 0;
    }

    qint64 m_compared = 0;
};

}  // namespace

TEST_P(EveryFrame, ReadsAsTheModelBuildsThem)
{
    const int mostCount = mostBytesRead / bytesEach();
    for (int start = GetParam().first; start <= GetParam().last; start += startStep) {
        for (int count = 1; count <= mostCount; ++count)
            ASSERT_TRUE(isReadAlike(start, count)) << start;
    }
    expectFrames(qint64(GetParam().last - GetParam().first + 1) * mostCount);
}

TEST_P(EveryFrame, WritesAsTheModelBuildsThem)
{
    for (int start = GetParam().first; start <= GetParam().last; start += startStep) {
        if (isBit()) {
            for (int value = 0; value < forceValues; ++value) {
                request.data[0] = static_cast<unsigned char>(value);
                ASSERT_TRUE(isWrittenAlike(start, 1 + value % 3)) << start;
            }
        } else {
            request.data[start % mostWordsWritten] ^= static_cast<unsigned char>(start);
            for (int count = 1; count <= mostWordsWritten; ++count)
                ASSERT_TRUE(isWrittenAlike(start, count)) << start;
        }
    }
    expectFrames(qint64(GetParam().last - GetParam().first + 1) * mostWordsWritten);
}

// Starts whose addresses lie before and behind the end of their field, with all lengths that reach
// across it, and lengths before and behind the ends of theirs, of a record and of an integer.
TEST_P(EveryFrame, IsCutAtTheEndsOfItsFieldsAsTheModelCutsIt)
{
    constexpr int addressEnd = 0x10000;
    constexpr int reach = 0x100;  // bytes
    std::vector<int> starts = {INT_MIN, INT_MIN + 1, -8001, -1, 0, INT_MAX - 1, INT_MAX};
    for (int address = addressEnd - reach - 2; address <= addressEnd + 2; ++address) {
        const int fromRead = address - GetParam().readBase;
        const int fromWrite = address - GetParam().writeBase;  // of a bit: in bits
        starts.push_back(GetParam().first + (isBit() ? 8 * fromRead : fromRead / bytesEach()));
        starts.push_back(GetParam().first + (isBit() ? fromWrite : fromWrite / bytesEach()));
    }
    for (const int start : starts) {
        for (int count = 0; count * bytesEach() <= reach + 4; count += startStep) {
            ASSERT_TRUE(isReadAlike(start, count)) << start;
            ASSERT_TRUE(isWrittenAlike(start, count)) << start;
        }
        for (const int count :
             {-1, 0x7FFF, 0x8000, 0xFFFF, 0x10000, INT_MAX / 8, INT_MAX / 8 + 1, INT_MAX})
            ASSERT_TRUE(isReadAlike(start, count)) << start;
        ASSERT_TRUE(isWrittenAlike(start, isBit() ? INT_MAX : mostWordsBuilt)) << start;
    }
}

INSTANTIATE_TEST_SUITE_P(Types, EveryFrame, testing::ValuesIn(allRegisters));
