// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Replies of each kind with every byte at every place, of every length, with every sum: which are
// accepted, and as which values, is what the model says.

#include "protocol/frame_codec.h"
#include "tests/model/host_side.h"
#include "tests/model/library_driver.h"
#include "tests/model/state_difference.h"
#include "tests/support/times_shorter.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

// Under a sanitizer or an emulator one in 17 characters goes through the whole driver.
constexpr int characterStep = timesShorter > 1 ? 17 : 1;

constexpr int byteValues = 256;
constexpr int frameEnds = 4;  // STX, ETX, sum
const QByteArray acknowledgement("\x06");
const QByteArray refusal("\x15");

struct Request
{
    const char* type;
    int first;
    int count;  // as a read takes it
    bool isRead;
};

void PrintTo(const Request& request, std::ostream* out)
{
    *out << (request.isRead ? "read of " : "write of ") << request.type << " " << request.count;
}

const Request requests[] = {
    {"X", 8, 1, true},     {"Y", 3, 2, true},      {"M", 8, 32, true},      {"S", 0, 3, true},
    {"SM", 8000, 1, true}, {"T", 0, 40, true},     {"C", 0, 1, true},       {"D", 100, 1, true},
    {"D", 100, 2, true},   {"D", 0, 32, true},     {"SD", 8000, 1, true},   {"TV", 0, 3, true},
    {"CV", 0, 40, true},   {"32CV", 200, 1, true}, {"32CV", 200, 2, true},  {"32CV", 210, 16, true},
    {"Z", 0, 1, true},     {"D", 0, 0, true},      {"Y", 8, 1, false},      {"D", 100, 1, false},
    {"D", 100, 32, false}, {"SD", 8000, 1, false}, {"32CV", 200, 2, false},
};

char hexDigit(int nibble)
{
    return "0123456789ABCDEF"[nibble & 15];
}

// STX, the characters, ETX and their sum.
QByteArray framed(const QByteArray& characters)
{
    QByteArray reply = '\x02' + characters + '\x03';
    int sum = 0;
    for (int i = 1; i < reply.size(); ++i)
        sum += static_cast<unsigned char>(reply.at(i));
    return reply + hexDigit(sum >> 4) + hexDigit(sum);
}

std::string textOf(const QByteArray& reply)
{
    return hexOf(reply.constData(), static_cast<std::size_t>(reply.size()));
}

QByteArray someCharacters(int length)
{
    QByteArray characters;
    for (int i = 0; i < length; ++i)
        characters += hexDigit(7 * i + i / 16 + 3);
    return characters;
}

class EveryReply : public testing::TestWithParam<Request>
{
protected:
    EveryReply()
    {
        reloadDriver();
        library.initProperty(nullptr, 0, nullptr, nullptr, "1#0#0#2147483647#64", nullptr);
        model.initProperty(nullptr, 0, nullptr, nullptr, "1#0#0#2147483647#64", nullptr);
        VARIABLE request;
        request.stationNo = 1;
        request.registerType = GetParam().type;
        request.addressIndex = GetParam().first;
        request.count = GetParam().count;
        queue(driver.readList, driver.writeList, request);
        queue(model.readList, model.writeList, request);
        send();
    }
    ~EveryReply() override { reloadDriver(); }

    int dataChars() const { return driver.frames.at(0).replyDataChars; }
    bool waitsForData() const { return dataChars() > 0; }  // a read of nothing waits for ACK
    QByteArray goodReply() const
    {
        return waitsForData() ? framed(someCharacters(dataChars())) : acknowledgement;
    }

    // Whether the reply is accepted, by both alike.
    bool isAccepted(const QByteArray& reply) const
    {
        const int right = model.judge(reply);
        EXPECT_EQ(static_cast<int>(judgeReply(reply, driver.frames.at(0))), right) << textOf(reply);
        return right != 0;
    }

    int acceptedWithOneByteChanged(QByteArray reply) const
    {
        int accepted = 0;
        for (int position = 0; position < reply.size(); ++position) {
            const char before = reply.at(position);
            for (int value = 0; value < byteValues; ++value) {
                reply[position] = static_cast<char>(value);
                accepted += isAccepted(reply);
            }
            reply[position] = before;
        }
        return accepted;
    }

    // Hands the reply to both: the same answer and the same values in the cache.
    void expectSameEffect(const QByteArray& reply)
    {
        ASSERT_EQ(answerOf(library, reply), answerOf(model, reply)) << textOf(reply);
        ASSERT_EQ(stateDifference(model, true), "") << textOf(reply);
        send();
    }

    LibraryDriver library;
    ModelDriver model;

private:
    template <class List>
    static void queue(List& reads, List& writes, const VARIABLE& request)
    {
        (GetParam().isRead ? reads : writes).push_back(request);
    }

    void send()
    {
        FRAME_PRO out;
        library.getSendFrame(&out);
        model.getSendFrame(&out);
    }

    template <class Driver>
    static std::string answerOf(Driver& driver, QByteArray reply)
    {
        QString errorText;
        const int answer = driver.dealRcvFrame(reply, errorText);
        return std::to_string(answer) + " " + errorText.toStdString();
    }
};

}  // namespace

TEST_P(EveryReply, WithOneByteChangedIsAcceptedOnlyIfItIsTheSame)
{
    EXPECT_EQ(acceptedWithOneByteChanged(goodReply()), goodReply().size());
    for (const QByteArray& single : {acknowledgement, refusal})
        EXPECT_EQ(acceptedWithOneByteChanged(single), waitsForData() ? 0 : 1);
    for (const int length : {0, 2, 4, 8}) {
        const QByteArray reply = framed(someCharacters(length));
        EXPECT_EQ(acceptedWithOneByteChanged(reply), waitsForData() ? reply.size() : 0);
    }
}

TEST_P(EveryReply, OfTwoBytesIsRejected)
{
    for (int value = 0; value < byteValues * byteValues; ++value) {
        const char bytes[] = {static_cast<char>(value >> 8), static_cast<char>(value)};
        ASSERT_FALSE(isAccepted(QByteArray(bytes, sizeof bytes)));
    }
}

TEST_P(EveryReply, HasOneRightSum)
{
    QByteArray reply = framed(someCharacters(dataChars()));
    const auto sumAt = reply.size() - 2;
    int accepted = 0;
    for (int value = 0; value < byteValues * byteValues; ++value) {
        reply[sumAt] = static_cast<char>(value >> 8);
        reply[sumAt + 1] = static_cast<char>(value);
        accepted += isAccepted(reply);
    }
    EXPECT_EQ(accepted, waitsForData() ? 1 : 0);
}

TEST_P(EveryReply, OfAnyLengthHasTheEffectThatItHasInTheModel)
{
    const QByteArray good = framed(someCharacters(dataChars() + 8));
    for (int length = 0; length < good.size(); ++length) {
        ASSERT_NO_FATAL_FAILURE(expectSameEffect(good.left(length)));
        ASSERT_NO_FATAL_FAILURE(expectSameEffect(framed(good.mid(1, length))));
    }
}

TEST_P(EveryReply, WithOneCharacterChangedAndTheSumToMatchHasTheEffectThatItHasInTheModel)
{
    QByteArray characters = someCharacters(dataChars());
    for (int position = 0; position < characters.size(); ++position) {
        const char before = characters.at(position);
        for (int value = 0; value < byteValues; value += characterStep) {
            characters[position] = static_cast<char>(value);
            ASSERT_NO_FATAL_FAILURE(expectSameEffect(framed(characters)));
        }
        characters[position] = before;
    }
}

INSTANTIATE_TEST_SUITE_P(Requests, EveryReply, testing::ValuesIn(requests));
