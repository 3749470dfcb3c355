// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host in a few lines around a fresh load of the library: its memory, its mutex, its callback,
// and an exchange loop with a tiny PLC at the other end of the link.

#ifndef TESTS_END_TO_END_SESSION_FIXTURE_H
#define TESTS_END_TO_END_SESSION_FIXTURE_H

#include "tests/end_to_end/loaded_driver.h"
#include "tests/end_to_end/tiny_plc.h"

#include <QMutex>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Bytes = std::vector<int>;
using Texts = std::vector<std::string>;

class Session : public ::testing::Test
{
protected:
    Session();
    ~Session() override;

    // Link 1, three rejections fail an exchange, 32 words a frame.
    void connect(const char* propertyString = "1#0#0#3#32");
    // The number of requests in the plan of these ranges.
    int monitor(const QList<KEY_ADDRESS>& keys);

    // One exchange with the PLC: the result, or nothingToSend.
    static constexpr int nothingToSend = -1;
    int exchange();
    // One exchange in which the PLC's reply is replaced by the given bytes.
    int exchangeAnswered(const QByteArray& reply);
    // Exchanges until nothing is to be sent or `most` are done; the number of them.
    int exchanges(int most);

    Bytes values(const char* registerType, int start, int count, int byteCount);
    void write(const char* registerType, int start, const Bytes& data, int count);

    LoadedDriver driver;
    TinyPlc plc;
    std::vector<unsigned char> hostMemory;
    std::vector<unsigned short> recipeWords;
    QMutex hostMutex;
    std::string errorText;
    static Texts calls;  // of the callback: "link,station,text,value"
};

KEY_ADDRESS range(const char* registerType, int start, int length);
_RCP_VAR_PRO recipeEntry(const char* registerType, int start, int wordCount, int recipeWord);

#endif
