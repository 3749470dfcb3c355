// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The calls of a session, how often each is made, and the comparison.

#include "tests/model/session.h"

#include <algorithm>

namespace {

constexpr std::size_t keptCalls = 40;  // of the history that a difference is shown with

std::string plain(const QString& text)
{
    return text.toStdString();
}

std::string describe(const KEY_ADDRESS& key)
{
    return std::to_string(key.stationNo) + "#" + plain(key.registerType) + " " +
           std::to_string(key.startIndex) + " length " + std::to_string(key.length) + " bitIndex " +
           std::to_string(key.bitIndex);
}

}  // namespace

Session::Session(Choices& source) : choices(source), world(source)
{
    const int flood = choices.oneIn(5) ? 10 : 1;       // sessions that fill the queues
    const int planning = choices.oneIn(5) ? 5 : 1;     // sessions that change the plan a lot
    const int recipes = choices.oneIn(4) ? 8 : 1;      // sessions full of recipe transfers
    const int exchanges = choices.oneIn(6) ? 5 : 100;  // sessions with few exchanges
    acts = {{exchanges, &Session::exchange},
            {20, &Session::getFrame},
            {20, &Session::giveReply},
            {1, &Session::getFrameIntoNothing},
            {12 * flood, &Session::writeData},
            {8 * flood, &Session::queueRead},
            {10, &Session::readData},
            {2 * planning, &Session::mergeAddresses},
            {2 * recipes, &Session::setRecipe},
            {3 * recipes, &Session::request},
            {2, &Session::scribble},
            {1, &Session::setUp},
            {1, &Session::registerCallback},
            {1, &Session::queryParameters},
            {1, &Session::passNull},
            {2, &Session::askEditor},
            {1, &Session::copyAddresses}};
}

std::string Session::play(int calls)
{
    if (!choices.oneIn(8))
        registerCallback();
    if (!choices.oneIn(8))
        setUp();
    for (int i = 0; i < calls && difference.empty() && !choices.exhausted(); ++i) {
        (this->*draw())();
        if (i % 64 == 63)
            compareDeeply();
    }
    compareDeeply();
    if (difference.empty())
        return "";
    std::string report;
    for (const std::string& call : history)
        report += call + "\n";
    return report + difference;
}

Session::Act Session::draw()
{
    int total = 0;
    for (const Weighted& each : acts)
        total += each.weight;
    int drawn = choices.below(total);
    for (const Weighted& each : acts) {
        drawn -= each.weight;
        if (drawn < 0)
            return each.act;
    }
    return &Session::getFrame;
}

// Adds a call to the history, and what it showed to be different.
void Session::keep(const std::string& text, const std::string& found)
{
    history.push_back(text);
    for (const std::string& line : sides.model.record)
        history.back() += "\n    " + line.substr(0, 300);
    if (history.size() > keptCalls)
        history.pop_front();
    difference += found;
    if (inspect)
        difference += inspect();
}

void Session::compareDeeply()
{
    if (difference.empty())
        difference += sides.deepDifference();
}

template <class Call>
void Session::both(const std::string& text, const Call& call)
{
    keep(text, sides.both(call, world.nestedCalls()));
}

void Session::setUp()
{
    const QByteArray properties = world.propertyString();
    const bool whole = !choices.oneIn(8);
    const int missing = whole ? 0 : choices.below(16);
    const bool keepText = whole || !choices.oneIn(3);
    both("initProperty " + properties.toStdString() + " without " + std::to_string(missing),
         [&](auto& driver, Host& host) {
             int status = 77;
             const int result = driver.initProperty(
                 missing & 1 ? nullptr : host.memory.data(), 5,
                 missing & 2 ? nullptr : host.recipe.data(), missing & 4 ? nullptr : &status,
                 keepText ? properties.constData() : nullptr, missing & 8 ? nullptr : &host.mutex);
             host.note(std::to_string(result) + " status " + std::to_string(status));
         });
}

void Session::registerCallback()
{
    const bool none = choices.oneIn(10);
    both(none ? "no callback" : "callback", [&](auto& driver, Host&) {
        driver.setAddrValueChangeCallBack(none ? nullptr : callActiveHost);
    });
}

void Session::queryParameters()
{
    both("parameters", [](auto& driver, Host& host) {
        QString texts[3] = {"old", "old", "old"};
        int type = 77;
        driver.getDriverParameter(texts[0]);
        driver.getDriverPropertyPage(texts[1]);
        driver.SetDriverPropertyPage(texts[2]);
        driver.getProtocolType(&type);
        for (const QString& text : texts)
            host.note(plain(text));
        host.note(std::to_string(type));
    });
}

void Session::mergeAddresses()
{
    const QList<KEY_ADDRESS> keys = world.keys();
    std::string text = "addrMerge";
    for (const KEY_ADDRESS& key : keys)
        text += " [" + describe(key) + "]";
    keep(text, sides.merge(keys));
}

void Session::queueRead()
{
    const KEY_ADDRESS key = world.key();
    const int tag = world.tag();
    keep("addConditionRead " + describe(key), sides.queueRead(key, tag, world.nestedCalls()));
}

void Session::getFrame()
{
    keep("getSendFrame", sides.getFrame(lastFrame));
}

void Session::getFrameIntoNothing()
{
    both("getSendFrame into nothing",
         [](auto& driver, Host& host) { host.note(std::to_string(driver.getSendFrame(nullptr))); });
}

void Session::giveReply()
{
    const QByteArray reply = world.replyTo(lastFrame);
    keep(std::string("dealRcvFrame ") + reply.toHex().constData(),
         sides.giveReply(reply, world.nestedCalls()));
}

void Session::exchange()
{
    getFrame();
    if (difference.empty())
        giveReply();
}

void Session::readData()
{
    const KEY_ADDRESS key = world.key();
    keep("getData " + describe(key), sides.read(key));
}

void Session::writeData()
{
    const KEY_ADDRESS key = world.key();
    const int tag = world.tag();
    const std::vector<unsigned char> data = world.bytes(bufferBytes(key.length));
    const std::size_t shown = std::min<std::size_t>(data.size(), 16);
    keep("setData " + describe(key) + " data " + hexOf(data.data(), shown),
         sides.write(key, data, tag, world.nestedCalls()));
}

void Session::passNull()
{
    const KEY_ADDRESS key = world.key();
    both("null buffers " + describe(key), [&](auto& driver, Host& host) {
        driver.getProtocolType(nullptr);
        const int read =
            driver.getData(key.stationNo, key.registerType, key.startIndex, key.length, nullptr);
        const int written =
            driver.setData(key.stationNo, key.registerType, key.startIndex, key.length, nullptr, 1);
        host.note(std::to_string(read) + std::to_string(written));
        host.note(std::to_string(driver.checkAddr(key.registerType, "8", nullptr, -1, 1, 1)));
        host.note(std::to_string(driver.checkAddrValidity(key.registerType, "8", nullptr, 1, 1)));
    });
}

void Session::setRecipe()
{
    const QVector<_RCP_VAR_PRO> list = world.recipe();
    std::string text = "setRcpAddress";
    for (const _RCP_VAR_PRO& entry : list)
        text += " [" + std::to_string(entry.linkNo) + ":" + std::to_string(entry.stationNo) + "#" +
                plain(entry.registerType) + std::to_string(entry.addressIndex) + "(" +
                std::to_string(entry.count) + ")" + std::to_string(entry.recipeWordOffset) + "]";
    keep(text, sides.setRecipe(list));
}

void Session::request()
{
    const int position = choices.oneOf({fxDownloadRequestByte, fxUploadRequestByte});
    const int value = choices.oneOf({1, 1, 1, 0, 2, 255});
    both("request byte " + std::to_string(position) + " = " + std::to_string(value),
         [&](auto&, Host& host) {
             host.memory[static_cast<std::size_t>(position)] = static_cast<unsigned char>(value);
         });
}

void Session::scribble()
{
    const int word = choices.below(Host::recipeWordCount);
    const int value = choices.below(65536);
    both("recipe word", [&](auto&, Host& host) {
        host.recipe[static_cast<std::size_t>(word)] = static_cast<unsigned short>(value);
    });
}

void Session::askEditor()
{
    const QString type = world.anyType();
    const QString text = world.addressText();
    const int numbers[] = {world.anyInt(), world.anyInt(), world.anyInt()};
    both("checkAddr " + plain(type) + " " + plain(text) + " " + std::to_string(numbers[0]) + "," +
             std::to_string(numbers[1]) + "," + std::to_string(numbers[2]),
         [&](auto& driver, Host& host) {
             int index = 77;
             const int checked =
                 driver.checkAddr(type, text, &index, numbers[0], numbers[1], numbers[2]);
             host.note(std::to_string(checked) + " " + std::to_string(index));
             index = 77;
             const int valid = driver.checkAddrValidity(type, text, &index, numbers[1], numbers[0]);
             host.note(std::to_string(valid) + " " + std::to_string(index));
             QList<QString> names{"before"};
             host.note(std::to_string(driver.getRegListByType(numbers[2], names)));
             host.note(std::to_string(driver.getRegDiscription(type, names)));
             for (const QString& name : names)
                 host.note(plain(name));
         });
}

void Session::copyAddresses()
{
    const QString type = world.anyType();
    const int start = choices.oneOf({0, 6, 190, 198, 250, 254, 7990, 8250, world.anyInt()});
    const int copies = choices.oneIn(40) ? world.anyInt() : choices.between(-1, 20);
    const int step = world.anyInt();
    both("multiCopy " + plain(type) + " " + std::to_string(start) + " " + std::to_string(copies) +
             " " + std::to_string(step),
         [&](auto& driver, Host& host) {
             QVector<QString> texts{"before"};
             QVector<int> values{-7};
             host.note(std::to_string(driver.multiCopy(type, start, copies, step, texts, values)));
             std::string line;
             for (int i = 0; i < texts.size(); ++i)
                 line += plain(texts[i]) + " ";
             for (int i = 0; i < values.size(); ++i)
                 line += std::to_string(values[i]) + " ";
             host.note(line);
         });
}
