// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Exchanges in a file and out of it again.

#include "tests/tools/support/loaded_driver.h"
#include "tests/tools/support/wire.h"
#include "tools/exchange/recording.h"

#include "tools/failure.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace fxtools;
using namespace tool_tests;

namespace {

class Recordings : public testing::Test
{
protected:
    std::string content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none";
    }

    std::string errorOf(const std::string& content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.c_str());
        file.close();
        try {
            readRecording(path);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::File);
            return std::string(failure.what()).substr(path.toStdString().size());
        }
        return "no error";
    }

    QTemporaryDir folder;
    QString path = folder.filePath("session.jsonl");
};

Exchange lateExchange()
{
    Exchange exchange;
    const QByteArray request = wire("␂01");
    std::copy(request.begin(), request.end(), exchange.frame.frame);
    exchange.frame.frameLength = request.size();
    exchange.reply = wire("␂1");
    exchange.thrownAway = wire("2␃");
    exchange.handed = wire("␕␕");
    exchange.answer = DriverAnswer::Repeat;
    exchange.errorText = "1#D0";
    exchange.startedUs = 12;
    return exchange;
}

const std::string head = R"({"addresses":["D0:2","M5"],"fxhost":1,"property":"1#0#0#3#32"})";
const std::string lateLine =
    R"({"answer":8,"handed":"1515","received":"02313203","sent":"023031","text":"1#D0","us":12})";

}  // namespace

TEST_F(Recordings, HoldWhatWasSentReceivedAndHandedOver)
{
    OutputFile file(path, OutputFile::Mode::New, catalogue());
    Recorder recorder(file, "1#0#0#3#32", {"D0:2", "M5"});
    recorder.add(lateExchange());
    EXPECT_EQ(content(), head + "\n" + lateLine + "\n");
    const Recording recording = readRecording(path);
    EXPECT_EQ(recording.failLimit, 3);
    EXPECT_EQ(recording.wordsPerFrame, 32);
    EXPECT_EQ(recording.addresses, QStringList({"D0:2", "M5"}));
    ASSERT_EQ(recording.exchanges.size(), 1);
    const RecordedExchange& exchange = recording.exchanges[0];
    EXPECT_EQ(exchange.line, 2);
    EXPECT_EQ(exchange.sent, wire("␂01"));
    EXPECT_EQ(exchange.handed, wire("␕␕"));
    EXPECT_EQ(exchange.answer, 8);
    EXPECT_EQ(exchange.text, "1#D0");
}

TEST_F(Recordings, NameTheLineOfAMistake)
{
    const std::string good = R"({"answer":1,"handed":"","sent":"02","text":""})";
    EXPECT_EQ(errorOf(head + "\n" + good + "\n" + good + "\n"), "no error");
    const std::string least = R"({"addresses":[],"fxhost":1,"property":"1#0#0#1#1"})";
    EXPECT_EQ(errorOf(least + "\n" + good + "\n"), "no error");
    const struct
    {
        std::string content;
        std::string says;
    } rows[] = {
        {"D0,1\n", ", line 1: not a recording made by fxhost: illegal value"},
        {"[1]\n", ", line 1: not a recording made by fxhost: an array"},
        {"{}\n", ", line 1: not a recording made by fxhost"},
        {R"({"fxhost":2,"property":"1#0#0#3#32"})", ", line 1: not a recording made by fxhost"},
        {R"({"fxhost":1,"property":"1#0#0#3"})",
         ", line 1: \"property\" is '1#0#0#3'; expected for example 1#0#0#3#32"},
        {R"({"fxhost":1,"property":"1#0#0#0#32"})",
         ", line 1: \"property\" is '1#0#0#0#32'; expected for example 1#0#0#3#32"},
        {head + "\n" + good + "\n" + R"({"sent":"0"})",
         ", line 3: \"sent\" must be hexadecimal bytes"},
        {head + "\n" + R"({"sent":2})", ", line 2: \"sent\" is missing or has the wrong type"},
        {head + "\n" + R"({"sent":"02"})", ", line 2: \"handed\" is missing or has the wrong type"},
        {head + "\n" + R"({"sent":"02","handed":"","text":""})",
         ", line 2: \"answer\" is missing or has the wrong type"},
        {head + "\n" + R"({"sent":"02","handed":"","answer":1})",
         ", line 2: \"text\" is missing or has the wrong type"},
        {head + "\n" + R"({"sent":"02)", ", line 2: not a JSON object: unterminated string"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorOf(row.content), row.says) << row.content;
}

TEST_F(Recordings, ThatAreNotThereAreNamed)
{
    EXPECT_THROW(readRecording("/no/place"), Failure);
}
TEST_F(Recordings, AreOrdinaryFilesOfAReasonableSize)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(qint64(300) << 20));
    const auto errorOfFile = [](const QString& name) {
        try {
            readRecording(name);
        } catch (const Failure& failure) {
            return failure.text().section(": ", 1);
        }
        return QString();
    };
    EXPECT_EQ(errorOfFile(path), "300 MB is too large: at most 256 MB make sense");
    EXPECT_EQ(errorOfFile("/dev/zero"), "not a regular file");
}
