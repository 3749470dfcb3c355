// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipes: down to the PLC, changed there, and up again.

#include "tests/end_to_end/session_fixture.h"

#include <cstring>

namespace {
constexpr std::size_t downloadByte = fxDownloadRequestByte;
constexpr std::size_t uploadByte = fxUploadRequestByte;

class Recipe : public Session
{
protected:
    Recipe()
    {
        connect();
        QVector<_RCP_VAR_PRO> list;
        list << recipeEntry("D", 100, 2, 0) << recipeEntry("TV", 4, 1, 2);
        EXPECT_EQ(2, driver.setRcpAddress(list));
    }
    void raise(std::size_t requestByte)
    {
        hostMutex.lock();
        hostMemory.at(requestByte) = 1;
        hostMutex.unlock();
    }
    void putRecipe(const Bytes& bytes)
    {
        std::size_t offset = 0;
        for (const int byte : bytes) {
            const unsigned char value = static_cast<unsigned char>(byte);
            std::memcpy(reinterpret_cast<unsigned char*>(recipeWords.data()) + offset++, &value, 1);
        }
    }
    Bytes recipe(int byteCount)
    {
        const unsigned char* bytes = reinterpret_cast<unsigned char*>(recipeWords.data());
        return Bytes(bytes, bytes + byteCount);
    }
};

TEST_F(Recipe, GoesDownEntryByEntry)
{
    putRecipe({1, 2, 3, 4, 5, 6});
    raise(downloadByte);
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(1, hostMemory.at(downloadByte));
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(0, hostMemory.at(downloadByte));
    EXPECT_EQ(nothingToSend, exchange());
    EXPECT_EQ((Bytes{1, 2, 3, 4}), plc.at(0x10C8, 4));
    EXPECT_EQ((Bytes{5, 6}), plc.at(0x0808, 2));
    EXPECT_EQ(Texts(), calls);
}

TEST_F(Recipe, ComesUpAsThePlcChangedIt)
{
    putRecipe({1, 2, 3, 4, 5, 6});
    raise(downloadByte);
    EXPECT_EQ(2, exchanges(2));
    plc.put(0x10CA, {0x99, 0xAA});
    raise(uploadByte);
    EXPECT_EQ(2, exchanges(2));
    EXPECT_EQ(0, hostMemory.at(uploadByte));
    EXPECT_EQ((Bytes{1, 2, 0x99, 0xAA, 5, 6, 0, 0}), recipe(8));
    EXPECT_EQ((Texts{"0,-1,RWI,0", "0,-1,RWI,1", "0,-1,RWI,2"}), calls);
}
}  // namespace
