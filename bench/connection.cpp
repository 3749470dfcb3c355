// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "bench/connection.h"

namespace fxbench {

namespace {

int ignoreChange(int, int, QString&, int)
{
    return 0;
}

}  // namespace

KEY_ADDRESS wordKey(int stationNo, int startIndex, int length)
{
    KEY_ADDRESS key;
    key.stationNo = stationNo;
    key.registerType = "D";
    key.startIndex = startIndex;
    key.length = length;
    return key;
}

QByteArray wordPattern(int wordCount, int variant, int changedEach)
{
    QByteArray values;
    for (int i = 0; i < wordCount; ++i) {
        const int value = i + (i % changedEach == 0 ? variant : 0);
        values.append(static_cast<char>(value & 0xFF));
        values.append(static_cast<char>((value >> 8) & 0xFF));
    }
    return values;
}

QByteArray readReply(const QByteArray& values)
{
    QByteArray summed = values.toHex().toUpper() + '\x03';
    unsigned int sum = 0;
    for (const char character : summed)
        sum += static_cast<unsigned char>(character);
    return '\x02' + summed + QByteArray(1, static_cast<char>(sum)).toHex().toUpper();
}

Connection::Connection(int areaCount) : m_memory(fxHostMemoryBytes, 0), m_recipeWords(512, 0)
{
    int status = 0;
    intf_setAddrValueChangeCallBack(ignoreChange);
    intf_initProperty(m_memory.data(), 0, m_recipeWords.data(), &status, "1#0#0#3#32", &m_mutex);
    fillCache(areaCount);
}

void Connection::fillCache(int areaCount)
{
    std::vector<unsigned char> values(2 * static_cast<std::size_t>(fxMaxElements));
    for (int done = 0; done < areaCount; done += fxMaxElements)
        intf_getData(station, "D", firstFilled + done, qMin(fxMaxElements, areaCount - done),
                     values.data());
}

}  // namespace fxbench
