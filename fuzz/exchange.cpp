// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any bytes as what a host hears after each of its frames, at any time; some are right replies.
// Asserted:
//  - an exchange is good exactly where the driver took bytes that are right by themselves;
//  - each exchange ends in bounded time, however much is said.

#include "fuzz/support/tool_catalogue.h"
#include "tests/model/choices.h"
#include "tools/exchange/exchange_loop.h"

#include <algorithm>

using namespace fxtools;

namespace {

constexpr qint64 longestStepUs = 60LL * 1000 * 1000;
constexpr int mostSteps = 50;

QByteArray framed(const QByteArray& content)
{
    int sum = etx;
    for (const char character : content)
        sum += static_cast<unsigned char>(character);
    return stx + content + etx + QByteArray::number(0x100 + sum % 0x100, 16).right(2).toUpper();
}

class HeardLink : public Link
{
public:
    explicit HeardLink(Choices& choices) : m_choices(choices) {}

    QString name() const override { return QStringLiteral("heard"); }
    void open() override {}
    bool isOpen() const override { return true; }
    bool send(const QByteArray& bytes) override
    {
        m_request = bytes;
        return true;
    }
    QByteArray receive(int timeoutMs) override
    {
        const int afterMs = m_choices.below(256) * m_choices.oneOf({0, 1, 50});
        m_nowUs += 1000LL * std::min(timeoutMs, afterMs);
        if (m_choices.exhausted() || afterMs > timeoutMs) {
            m_nowUs += 1000LL * std::max(0, timeoutMs - afterMs);
            return {};
        }
        return said();
    }
    qint64 nowUs() const { return m_nowUs; }

private:
    QByteArray said()
    {
        switch (m_choices.below(6)) {
        case 0:
            return QByteArray(1, ack);
        case 1:
            return QByteArray(1, nak);
        case 2:
            return m_request;
        case 3:
            return anything();
        default:
            return reply();
        }
    }
    QByteArray anything()
    {
        QByteArray bytes;
        for (int left = m_choices.below(32); left > 0; --left)
            bytes += static_cast<char>(m_choices.below(256));
        return bytes;
    }
    QByteArray reply()
    {
        QByteArray digits;
        for (int left = 2 * m_request.mid(6, 2).toInt(nullptr, 16); left > 0; --left)
            digits += "0123456789ABCDEF"[m_choices.below(16)];
        const QByteArray whole = framed(digits);
        return whole.left(m_choices.oneIn(8) ? m_choices.below(whole.size()) : whole.size());
    }

    Choices& m_choices;
    QByteArray m_request;
    qint64 m_nowUs = 0;
};

RegisterRange range(const char* type, int first, int count)
{
    RegisterRange range;
    range.type = *catalogue().find(QString::fromLatin1(type));
    range.first = first;
    range.count = count;
    return range;
}

void request(Choices& choices, DriverSession& session)
{
    switch (choices.below(8)) {
    case 0:
        session.write(range("D", 3, 2), {1, 2});
        break;
    case 1:
        session.write(range("M", 8, 1), {1});
        break;
    case 2:
        session.queueRead(range("TV", 1, 2));
        break;
    case 3:
        session.startRecipe(choices.oneIn(2) ? RecipeDirection::Upload : RecipeDirection::Download,
                            {range("D", 10, 4), range("D", 20, 2)});
        break;
    default:
        break;
    }
}

void check(const Exchange& exchange, bool isTolerant)
{
    const bool isTaken = exchange.verdict == ReplyVerdict::Good ||
                         (isTolerant && exchange.verdict == ReplyVerdict::Surrounded);
    require(isTaken == (exchange.answer == DriverAnswer::Accepted), "good without being accepted");
    require(!isTaken || judgeReply(exchange.frame, exchange.handed) == ReplyVerdict::Good,
            "accepted without being good");
    if (showAnswer)
        showAnswer(
            (verdictText(exchange.verdict) + ": " + exchange.handed.toHex(' ')).toStdString());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    const DriverLibrary& library = catalogue().library();
    DriverSession session(library, {});
    HeardLink link(choices);
    LoopSettings settings;
    settings.clockUs = [&link] { return link.nowUs(); };
    settings.tolerant = choices.oneIn(2);
    ExchangeLoop loop(session, link, settings);
    session.setPlan({range("D", 0, 8), range("X", 0, 8), range("32CV", 200, 1)});
    for (int step = 0; step < mostSteps && !choices.exhausted(); ++step) {
        request(choices, session);
        const qint64 startedUs = link.nowUs();
        if (const std::optional<Exchange> exchange = loop.step())
            check(*exchange, settings.tolerant);
        require(link.nowUs() - startedUs <= longestStepUs, "an exchange takes too long");
    }
    return 0;
}
