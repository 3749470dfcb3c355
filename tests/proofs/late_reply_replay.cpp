// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Replays traces of late_reply.pml on the real exchange loop: what the model's line does is done to
// the loop, and the loop must send, wait and accept as the model's host does. Time is virtual: a
// wait that passes takes none, so that the usual response time stays what the first replies make
// it, and each kind of wait can be told by its length.

#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/exchange_loop.h"

#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr int usualUs = 20000;
constexpr int usualMs = usualUs / 1000;
constexpr int turnMs = 100;  // of a longer wait
constexpr int timeoutMs = turnMs;
constexpr int longestReplyMs = 5000;
constexpr int longestQuietMs = 250;  // while the usual time is not known
constexpr int blockWords = 4;
constexpr int readsBefore = 20;  // from which the loop knows the usual time

struct Event
{
    int line = 0;
    QStringList words;

    QString word(int index) const { return words.value(index); }
};

struct WaitFacts
{
    const char* name;
    int shortestMs;
    int longestMs;
};

constexpr WaitFacts waits[] = {
    {"moment", 0, usualMs / 4 - 1},    {"reply", timeoutMs, timeoutMs},
    {"rest", timeoutMs, timeoutMs},    {"another", 1, turnMs},
    {"quiet", usualMs / 4, turnMs},    {"lateQuiet", usualMs / 4, turnMs},
    {"enquiry", timeoutMs, timeoutMs}, {"clearing", usualMs * 2, timeoutMs},
    {"longEnquiry", 1, turnMs},        {"outwait", 1, turnMs},
};

[[noreturn]] void fail(const Event& event, const QString& found)
{
    std::printf("line %d: the model has '%s', the exchange loop %s\n", event.line,
                qPrintable(event.words.join(' ')), qPrintable(found));
    std::exit(1);
}

// The data of a reply is the same for both registers, as it may be in the model.
QByteArray dataFrame(int value)
{
    const QByteArray data =
        QByteArray::number(value, 16).rightJustified(4, '0').repeated(blockWords);
    int sum = etx;
    for (const char character : data)
        sum += character;
    return stx + data + etx + QByteArray::number(sum & 0xFF, 16).toUpper().rightJustified(2, '0');
}

QByteArray bytesOf(const Event& event)
{
    QByteArray frame = dataFrame(event.word(2).toInt());
    const QString kind = event.word(1);
    if (kind == "data")
        return frame;
    if (kind == "damaged")
        return frame.left(frame.size() - 1) + '?';
    if (kind == "cut")
        return frame.left(frame.size() - 1);
    if (kind == "refusal")
        return {1, nak};
    if (kind == "acknowledge")
        return {1, ack};
    return {};
}

class Trace
{
public:
    explicit Trace(QTextStream& text)
    {
        for (int line = 1; !text.atEnd(); ++line) {
            const QStringList words = text.readLine().simplified().split(' ');
            if (words.value(0) == ">")
                m_events.push_back({line, words.mid(1)});
        }
    }

    bool isOver() const { return m_events.empty(); }
    Event next() const { return isOver() ? Event{0, {"its end"}} : m_events.front(); }
    bool nextIs(const char* word) const { return next().word(0) == word; }

    // Which register the host reads next; nothing if it does not.
    std::optional<int> takeRead()
    {
        const Event event = next();
        return take("want") ? std::optional(event.word(1).toInt()) : std::nullopt;
    }

    bool take(const char* word)
    {
        const bool is = nextIs(word);
        if (is)
            m_events.pop_front();
        return is;
    }

private:
    std::deque<Event> m_events;
};

// The host ends in the middle of what it does, and is started again.
struct Restart
{};

class ReplayedLine : public Link
{
public:
    explicit ReplayedLine(Trace& trace) : m_trace(trace) {}

    QString name() const override { return "replayed"; }
    void open() override {}
    bool isOpen() const override { return true; }
    qint64 nowUs() const { return m_nowUs; }

    std::function<bool()> usualIsKnown;

    void start() { m_isStarted = true; }

    bool send(const QByteArray& bytes) override
    {
        const bool isEnquiry = bytes == QByteArray(1, enq);
        if (!m_isStarted)
            m_firstReply = isEnquiry ? QByteArray() : dataFrame(m_firstValue++);
        m_hasEnded = m_hasEnded || m_trace.isOver();
        const char* act = isEnquiry ? "enquire" : "send";
        if (isEnquiry)
            m_enquiredUs = m_nowUs;
        if (m_isStarted && !m_hasEnded && !m_trace.take(act))
            fail(m_trace.next(), QString("sends %1").arg(act));
        return true;
    }

    QByteArray receive(int forMs) override
    {
        if (!m_isStarted) {
            m_nowUs += usualUs;
            return std::exchange(m_firstReply, {});
        }
        m_hasEnded = m_hasEnded || m_trace.isOver();
        if (m_hasEnded)
            return {};
        if (m_trace.take("restart")) {
            m_leftMs = 0;
            throw Restart();
        }
        const Event event = m_trace.next();
        if (mustGoOn(event, forMs))
            return {};
        for (const WaitFacts& facts : waits) {
            if (event.word(0) == facts.name && forMs >= facts.shortestMs &&
                forMs <= facts.longestMs)
                return arriving(facts.name);
        }
        fail(event, QString("waits for %1 ms").arg(forMs));
    }

    bool hasEnded() const { return m_hasEnded; }

private:
    // Whether this is only a turn of a wait that passes.
    bool mustGoOn(const Event& event, int forMs)
    {
        const bool goesOn = std::exchange(m_isClearing, event.word(0) == "clearing");
        const bool isLong = event.word(0) == "longEnquiry" || event.word(0) == "outwait";
        const bool isQuiet = event.word(0) == "quiet" || event.word(0) == "lateQuiet" ||
                             (goesOn && m_isClearing) ||
                             (event.word(0) == "another" && (forMs == turnMs || m_leftMs > 0));
        if (!(isLong || (isQuiet && !usualIsKnown())) || event.word(1) != "nothing")
            return false;
        if (m_leftMs == 0)
            m_leftMs = isLong ? longestReplyMs - static_cast<int>(m_nowUs - m_enquiredUs) / 1000
                              : longestQuietMs;
        if (forMs != std::min(m_leftMs, turnMs))
            fail(event, QString("waits for %1 ms").arg(forMs));
        m_leftMs -= forMs;
        return m_leftMs > 0;
    }

    QByteArray arriving(const char* wait)
    {
        QByteArray bytes = bytesOf(m_trace.next());
        m_trace.take(wait);
        if (wait == QByteArray("reply") && !m_trace.take("early")) {
            m_isLater = !m_isLater;
            m_nowUs += m_isLater ? usualUs : usualUs / 2;
        }
        for (Event event = m_trace.next(); m_trace.take("with"); event = m_trace.next())
            bytes += bytesOf(event);
        return bytes;
    }

    Trace& m_trace;
    qint64 m_nowUs = 0;
    qint64 m_enquiredUs = 0;
    int m_leftMs = 0;  // of a long wait
    bool m_isClearing = false;
    bool m_isLater = false;
    bool m_isStarted = false;
    bool m_hasEnded = false;
    int m_firstValue = 0x100;
    QByteArray m_firstReply;
};

class Host
{
public:
    explicit Host(ReplayedLine& line) : m_line(line)
    {
        m_settings.timeout = TimeoutLimits::fixed(timeoutMs);
        m_settings.clockUs = [&line] { return line.nowUs(); };
        line.usualIsKnown = [this] { return m_loop->timeout().typicalResponseUs() > 0; };
        start();
    }

    // Nothing if the host was started again.
    std::optional<Exchange> step()
    {
        try {
            return m_loop->step();
        } catch (const Restart&) {
            start();
            return std::nullopt;
        }
    }

    std::optional<DriverSession> session;

private:
    void start()
    {
        m_loop.reset();
        session.reset();
        session.emplace(driver(),
                        SessionSettings{1, 32});  // the model chooses what comes after a rejection
        m_loop.emplace(*session, m_line, m_settings);
    }

    ReplayedLine& m_line;
    LoopSettings m_settings;
    std::optional<ExchangeLoop> m_loop;
};

}  // namespace

int main()
{
    QTextStream text(stdin);
    Trace trace(text);
    ReplayedLine line(trace);
    Host host(line);
    host.session->setPlan({range("D200:4")});
    for (int read = 0; read < readsBefore; ++read)
        host.step();
    line.start();

    int exchanges = 0;
    int taken = 0;
    for (; const std::optional<int> read = trace.takeRead(); ++exchanges) {
        host.session->setPlan({range(*read == 0 ? "D0:4" : "D100:4")});
        const std::optional<Exchange> exchange = host.step();
        if (line.hasEnded() || trace.isOver())
            break;
        if (!exchange)
            continue;
        const Event event = trace.next();
        const bool isTaken = exchange->answer == DriverAnswer::Accepted;
        if (trace.take("take") != isTaken)
            fail(event, isTaken ? "takes the reply" : "rejects: " + verdictName(exchange->verdict));
        if (isTaken && exchange->handed != dataFrame(event.word(1).toInt()))
            fail(event, "takes " + QString::fromLatin1(exchange->handed));
        taken += isTaken;
    }
    std::printf("%d exchanges, %d values taken\n", exchanges, taken);
    return taken > 0 ? 0 : 1;
}
