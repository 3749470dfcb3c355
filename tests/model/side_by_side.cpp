// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The calls that need more than passing on, and the comparison of two records.

#include "tests/model/side_by_side.h"

#include "tests/model/state_difference.h"

#include <algorithm>

int bufferBytes(int count)
{
    return 4 * std::max(0, std::min(count, fxMaxElements));
}

SideBySide::SideBySide()
{
    reload();
}

SideBySide::~SideBySide()
{
    reloadDriver();
}

void SideBySide::reload()
{
    reloadDriver();
    model.driver = ModelDriver();
    library.refill();
    model.refill();
}

std::string SideBySide::difference() const
{
    for (std::size_t i = 0; i < std::max(library.record.size(), model.record.size()); ++i) {
        const std::string got = i < library.record.size() ? library.record[i] : "(nothing)";
        const std::string expected = i < model.record.size() ? model.record[i] : "(nothing)";
        if (got != expected)
            return "library: " + got + "\nmodel:   " + expected + "\n";
    }
    return stateDifference(model.driver, false);
}

std::string SideBySide::deepDifference() const
{
    std::string text = stateDifference(model.driver, true);
    if (library.memory != model.memory)
        text += "host memory differs\n";
    if (library.recipe != model.recipe)
        text += "recipe memory differs\n";
    return text;
}

std::string SideBySide::setUp(const char* propertyString)
{
    return both([&](auto& driver, Host& host) {
        int status = 77;
        driver.setAddrValueChangeCallBack(callActiveHost);
        const int result = driver.initProperty(host.memory.data(), 5, host.recipe.data(), &status,
                                               propertyString, &host.mutex);
        host.note(std::to_string(result) + " status " + std::to_string(status));
    });
}

std::string SideBySide::merge(const QList<KEY_ADDRESS>& keys)
{
    return both([&](auto& driver, Host& host) {
        QList<KEY_ADDRESS> own = keys;
        host.note(std::to_string(driver.addrMerge(own)));
    });
}

std::string SideBySide::queueRead(const KEY_ADDRESS& key, int tag,
                                  const std::deque<NestedCall>& inside)
{
    const auto call = [&](auto& driver, Host& host) {
        KEY_ADDRESS own = key;
        host.note(std::to_string(driver.addConditionRead(own, tag)));
    };
    return both(call, inside);
}

std::string SideBySide::write(const KEY_ADDRESS& key, const std::vector<unsigned char>& data,
                              int tag, const std::deque<NestedCall>& inside)
{
    const auto call = [&](auto& driver, Host& host) {
        std::vector<unsigned char> own = data;
        host.note(std::to_string(driver.setData(key.stationNo, key.registerType, key.startIndex,
                                                key.length, own.data(), tag)));
    };
    return both(call, inside);
}

std::string SideBySide::read(const KEY_ADDRESS& key)
{
    return both([&](auto& driver, Host& host) {
        std::vector<unsigned char> out(static_cast<std::size_t>(bufferBytes(key.length)), 0xEE);
        const int result =
            driver.getData(key.stationNo, key.registerType, key.startIndex, key.length, out.data());
        host.note(std::to_string(result) + " " + hexOf(out.data(), out.size()));
    });
}

std::string SideBySide::setRecipe(const QVector<_RCP_VAR_PRO>& list)
{
    return both([&](auto& driver, Host& host) {
        QVector<_RCP_VAR_PRO> own = list;
        host.note(std::to_string(driver.setRcpAddress(own)));
    });
}

std::string SideBySide::getFrame(FRAME_PRO& given)
{
    return both([&](auto& driver, Host& host) {
        FRAME_PRO out;
        out.frame[0] = 99;  // stays when nothing is given
        out.frameLength = 1;
        out.spare = 77;
        host.note(std::to_string(driver.getSendFrame(&out)) + " " + describe(out));
        given = out;
    });
}

std::string SideBySide::giveReply(const QByteArray& reply, const std::deque<NestedCall>& inside)
{
    const auto call = [&](auto& driver, Host& host) {
        QByteArray own = reply;
        QString errorText = "old";
        const int result = driver.dealRcvFrame(own, errorText);
        host.note(std::to_string(result) + " " + errorText.toStdString());
    };
    return both(call, inside);
}
