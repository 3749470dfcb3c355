// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "simulated_worker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace chaos {

using fxgate::Quality;

namespace {

QByteArray lineOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace

SimulatedWorker::~SimulatedWorker()
{
    m_timeline.forget(this);
    if (m_link.worker == this)
        m_link.worker = nullptr;
    if (m_isRunning)
        m_witness.workerGone(m_link.number);
}

void SimulatedWorker::start()
{
    if (m_timeline.steadyMs() < m_link.absentUntilMs) {
        m_hasEnded = true;
        return onEnded("cannot start it");
    }
    m_isRunning = true;
    m_link.worker = this;
    const bool isMute = chance(m_random, 0.02);
    m_timeline.after(isMute ? 60000 : 50 + below(m_random, 500), this, [this] { begin(); });
}

void SimulatedWorker::end(const QString& how, qint64 delayMs)
{
    if (m_hasEnded)
        return;
    m_hasEnded = true;
    m_pipeMs = std::max(m_pipeMs, m_timeline.steadyMs() + delayMs);
    m_timeline.after(m_pipeMs - m_timeline.steadyMs(), this, [this, how] {
        m_timeline.forget(this);
        m_isRunning = false;
        m_link.worker = nullptr;
        m_witness.workerGone(m_link.number);
        onEnded(how);
    });
}

// What it has printed before is read, but by a gateway that has killed it.
void SimulatedWorker::kill()
{
    m_timeline.forget(this);
    m_hasEnded = false;
    end("killed", 1 + below(m_random, 20));
}

void SimulatedWorker::die()
{
    if (m_hasEnded)
        return;
    if (chance(m_random, 0.5))
        say(lineOf({{"event", "values"}}).left(1 + below(m_random, 15)), nullptr);
    end("died", 1 + below(m_random, 20));
}

void SimulatedWorker::flood()
{
    QByteArray bytes;
    for (int line = 0; line < 3000; ++line)
        bytes += "{\"event\":\"alive\",\"exchanges\":1,\"good\":1}\n";
    say(bytes, nullptr);
}

void SimulatedWorker::talkNonsense()
{
    const QByteArray lines[] = {
        "what?\n",
        "{\"event\":\"values\",\"time\":1,\"good\":{\"tag9\":1}}\n",
        "{\"event\":\"values\",\"time\":1,\"good\":{\"tag2\":1}}\n",
        "{\"event\":\"values\",\"time\":-1,\"good\":{}}\n",
        "{\"event\":\"hello\",\"protocol\":1,\"tags\":[]}\n",
    };
    say(lines[below(m_random, 5)], nullptr);
}

bool SimulatedWorker::waitUntilEnded(int timeoutMs)
{
    bool isOver = false;
    // onEnded may hand this object to its end, but not delete it.
    const auto tell = onEnded;
    onEnded = [&isOver, tell](const QString& how) {
        isOver = true;
        tell(how);
    };
    m_timeline.runUntil(m_timeline.steadyMs() + timeoutMs, this, [&isOver] { return isOver; });
    onEnded = tell;
    return isOver;
}

// In one piece or in two.
void SimulatedWorker::say(const QByteArray& line, const std::function<void()>& heard)
{
    if (m_hasEnded)
        return;
    const int cut = chance(m_random, 0.1) ? below(m_random, line.size()) : 0;
    const qint64 now = m_timeline.steadyMs();
    m_pipeMs = std::max(m_pipeMs, now + 1 + below(m_random, 10));
    if (cut > 0)
        m_timeline.after(m_pipeMs - now, this, [this, part = line.left(cut)] { onOutput(part); });
    m_pipeMs += cut > 0 ? below(m_random, 50) : 0;
    m_timeline.after(m_pipeMs - now, this, [this, rest = line.mid(cut), heard] {
        if (heard) {
            m_witness.workerHeard(m_link.number);
            heard();
        }
        onOutput(rest);
    });
}

void SimulatedWorker::begin()
{
    QJsonArray tags;
    for (int tag = 0; tag < tagsOfLink; ++tag) {
        const char* const kinds[] = {"bit", "integer", "real", "text"};
        QJsonObject object{{"name", tagName(tag)}, {"kind", kinds[int(kindOf(tag))]}};
        if (tag == setpoint)
            object["writable"] = true;
        tags.append(object);
    }
    say(lineOf({{"event", "hello"}, {"protocol", 1}, {"version", "1"}, {"tags", tags}}),
        [this] { m_witness.workerBegins(m_link.number); });
    m_saysUp = !isLinkUp();
    cycle();
    everySecond();
}

void SimulatedWorker::everySecond()
{
    if (!hangs())
        say(lineOf({{"event", "alive"}, {"exchanges", 1}, {"good", 1}}), [] {});
    m_timeline.after(1000, this, [this] { everySecond(); });
}

void SimulatedWorker::tellState()
{
    m_saysUp = isLinkUp();
    QJsonObject state{{"event", "state"}, {"link", m_saysUp ? "up" : "down"}};
    if (!m_saysUp)
        state["reason"] = "lost " + QString::number(++m_reasons);
    say(lineOf(state), [this, isUp = m_saysUp] { m_witness.workerToldState(m_link.number, isUp); });
}

void SimulatedWorker::cycle()
{
    if (!hangs()) {
        const bool isNew = m_saysUp != isLinkUp();
        if (isNew)
            tellState();
        for (int tag = 0; tag < tagsOfLink; ++tag)
            m_link.changes[size_t(tag)] += tag != setpoint && chance(m_random, 0.6);
        tellValues(isNew);
    }
    m_timeline.after(m_link.periodMs, this, [this] { cycle(); });
}

void SimulatedWorker::tellValues(bool all)
{
    struct Word
    {
        int tag;
        qint64 number;
        Quality quality;
    };
    QVector<Word> words;
    QJsonObject good, stale, bad;
    for (int tag = 0; tag < tagsOfLink; ++tag) {
        const auto place = static_cast<size_t>(tag);
        const qint64 number = m_link.changes[place];
        const bool isGood = m_saysUp && m_timeline.steadyMs() >= m_link.badUntilMs[place];
        const QString reason = "reason " + QString::number(++m_reasons);
        if (isGood) {
            good[tagName(tag)] = valueOf({number, m_link.number, tag});
            words.append({tag, number, Quality::Good});
        } else if (all || m_saysGood[place]) {
            const bool isStale = m_saysUp && chance(m_random, 0.5);
            (isStale ? stale : bad)[tagName(tag)] = reason;
            words.append({tag, number, isStale ? Quality::Stale : Quality::Bad});
        }
        m_saysGood[place] = isGood;
    }
    const qint64 timeMs = m_timeline.now().utcMs;
    say(lineOf({{"event", "values"},
                {"time", timeMs},
                {"good", good},
                {"stale", stale},
                {"bad", bad}}),
        [this, words, timeMs] {
            for (const Word& word : words)
                m_witness.workerTold(m_link.number, word.tag, word.number, word.quality, timeMs);
        });
}

void SimulatedWorker::write(const QByteArray& bytes)
{
    for (const QByteArray& line : bytes.split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        const qint64 delayMs = std::max<qint64>(m_hangsUntilMs - m_timeline.steadyMs(), 0) + 5;
        if (object.contains("refresh"))
            m_timeline.after(delayMs, this, [this] {
                tellState();
                tellValues(true);
            });
        else if (object.contains("stop"))
            m_timeline.after(delayMs, this, [this] { end("stopped", 5); });
        else if (object.contains("write"))
            m_timeline.after(delayMs + 50, this,
                             [this, write = object["write"].toObject()] { carryOut(write); });
    }
}

void SimulatedWorker::endInput()
{
    if (!hangs())
        m_timeline.after(50, this, [this] { end("ended its input", 5); });
}

void SimulatedWorker::carryOut(const QJsonObject& write)
{
    const char* outcome = "done";
    const TagCode code = codeOf(write["value"]);
    const double luck = std::uniform_real_distribution<>(0, 1)(m_random);
    if (luck < m_link.deafness / 2)
        return;
    if (!isLinkUp() || luck > 0.9)
        outcome = "refused";
    else if (luck > 0.8)
        outcome = "failed";
    else {
        m_link.changes[setpoint] = std::max(m_link.changes[setpoint], code.number);
        m_witness.written(code.number);
        tellValues(false);
        if (luck > 0.7)
            outcome = "unknown";
    }
    const QByteArray answer = lineOf(
        {{"event", "written"}, {"id", write["id"]}, {"outcome", outcome}, {"reason", "PLC"}});
    say(answer, [] {});
    if (luck < m_link.deafness)
        say(answer, [] {});
}

}  // namespace chaos
