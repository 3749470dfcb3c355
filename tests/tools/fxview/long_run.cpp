// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// view_long_run: the window for a day of simulated time in front of a PLC with troubles: a lost
// link, silence, refused tags, values beyond their limits for a moment, a window that is busy for a
// while, a clock that is set, a disk that takes nothing. Each is drawn from the seed. Says how long
// the window took for its pictures and how its memory grew. Exit code 0: no alarm was missed,
// nothing looked good that was not, no spike is missing in the trends, and memory stayed the same.

#include "tests/tools/fxview/view_support.h"
#include "tools/fxview/widgets/alarm_page.h"
#include "tools/fxview/widgets/main_window.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>

#include <malloc.h>
#include <time.h>

#include <cstdio>
#include <random>

using namespace fxview;

namespace {

constexpr qint64 readingMs = 100;
constexpr qint64 pictureMs = 500;
constexpr qint64 minuteMs = 60000;
constexpr qint64 hourMs = 60 * minuteMs;
constexpr qint64 staleMs = 10000;
constexpr int numbers = 24;  // tags; bits follow
constexpr int bits = 8;
constexpr int low = 10, high = 180;  // the limits of each number
constexpr int spike = 30000;
constexpr qint64 mostGrowthBytes = 8 << 20;  // what fills up for hours: caches, lists of a thousand

QVector<fxtools::Tag> tags()
{
    QByteArray rows;
    for (int number = 0; number < numbers; ++number)
        rows += "oven" + QByteArray::number(number) + ".temp,D" + QByteArray::number(number) +
                ",signed,,,°C,,,,,,10,180,,\n";
    for (int bit = 0; bit < bits; ++bit)
        rows +=
            "pump" + QByteArray::number(bit) + ",M" + QByteArray::number(bit) + ",,,,,,,,,,,,,\n";
    return view_tests::tagsOf(rows);
}

qint64 threadCpuUs()
{
    timespec time{};
    (void)clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * 1000000 + time.tv_nsec / 1000;
}

class LongRun
{
public:
    LongRun(unsigned int seed, const QString& folder)
        : m_random(seed), m_folder(folder), m_plc(tags()), m_said(numbers + bits), m_kinds(numbers)
    {
        QDir().mkpath(m_folder + "/alarms");
        m_window = std::make_unique<MainWindow>(m_plc, [this] { return m_nowMs; });
        m_window->keepAlarmsIn(m_folder + "/alarms/alarms.csv");
        m_window->findChild<AlarmPage*>()->bell = nullptr;
        for (int number = 0; number < 4; ++number)
            trends().add(number);
        m_window->show();
        emit m_plc.linkChanged(true, {});
    }

    void run(qint64 durationMs)
    {
        const qint64 endMs = m_steadyMs + durationMs;
        while (m_steadyMs < endMs) {
            m_steadyMs += readingMs;
            m_nowMs += readingMs;
            makeTrouble();
            read();
            if (m_steadyMs >= m_busyUntilMs && m_steadyMs % pictureMs == 0)
                show();
            if (m_steadyMs % hourMs == 0)
                std::printf("hour %2lld: %5.1f MB of history, %.1f MB else\n", m_steadyMs / hourMs,
                            megabytes(historyBytes()), megabytes(otherBytes()));
            if (m_steadyMs == settledMs)
                m_settledBytes = otherBytes();
        }
        if (!m_isDiskThere)
            setDisk(true);
        m_busyUntilMs = 0;
        show();
        lookForSpikes();
    }

    // When the window has ended, with what it still had to write.
    bool finish()
    {
        const qint64 grownBytes = m_steadyMs > settledMs ? otherBytes() - m_settledBytes : 0;
        m_window.reset();
        compareAlarms();
        std::sort(m_pictureUs.begin(), m_pictureUs.end());
        const auto share = [this](double part) {
            const auto place = static_cast<size_t>(part * double(m_pictureUs.size() - 1));
            return static_cast<double>(m_pictureUs[place]) / 1000;
        };
        std::printf("%.1f simulated hours, %lld readings, %zu alarms raised and cleared; %lld rows "
                    "looked at, %lld spikes found\n",
                    double(m_steadyMs) / hourMs, m_readings, m_expected.size(), m_looks, m_spikes);
        std::printf("%zu pictures: half took %.1f ms of processor time, 99 %% at most %.1f ms, the "
                    "longest %.1f ms\n",
                    m_pictureUs.size(), share(0.5), share(0.99), share(1));
        std::printf("memory besides the history grew by %lld KB\n", grownBytes / 1024);
        if (grownBytes > mostGrowthBytes)
            note("memory grew");
        return m_findings == 0;
    }

private:
    static constexpr qint64 settledMs = hourMs;

    struct Said
    {
        Quality quality = Quality::Bad;
        QJsonValue value;
        qint64 atMs = 0;  // of the newest good one
    };

    int draw(qint64 below)
    {
        return static_cast<int>(m_random() % static_cast<std::uint32_t>(below));
    }
    bool once(qint64 everyMs) { return draw(everyMs / readingMs) == 0; }

    TrendPage& trends() const { return *m_window->findChild<TrendPage*>(); }

    void note(const QString& finding)
    {
        if (++m_findings <= 20)
            std::printf("WRONG at %lld ms: %s\n", m_steadyMs, qPrintable(finding));
    }

    static double megabytes(qint64 bytes) { return static_cast<double>(bytes) / (1 << 20); }
    qint64 historyBytes() const { return table().book().historyBytes(); }
    qint64 otherBytes() const
    {
        const struct mallinfo2 used = mallinfo2();
        return static_cast<qint64>(used.uordblks + used.hblkhd) - historyBytes();
    }
    ValueTable& table() const { return *m_window->findChild<ValueTable*>(); }

    void makeTrouble();
    void actAsPerson();
    void setDisk(bool isThere);
    void read();
    int valueOf(int tag);
    void say(QVector<Reading>& readings, const Reading& reading);
    void expectAlarm(const Reading& reading);
    void show();
    void look();
    void lookForSpikes();
    void compareAlarms();

    std::mt19937 m_random;
    const QString m_folder;
    view_tests::FakePlc m_plc;
    qint64 m_nowMs = view_tests::nowMs;
    qint64 m_steadyMs = 0;
    std::unique_ptr<MainWindow> m_window;

    QVector<Said> m_said;
    QVector<QString> m_kinds;  // the alarm of each number
    std::vector<QByteArray> m_expected;
    QVector<QPair<int, qint64>> m_planted;  // spikes: tag and time
    QVector<Reading> m_waiting;             // while the window is busy

    // Until when which trouble lasts.
    qint64 m_silentUntilMs = 0, m_lostUntilMs = 0, m_refusedUntilMs = 0, m_beyondUntilMs = 0;
    qint64 m_busyUntilMs = 0, m_diskUntilMs = 0;
    bool m_isLost = false;
    bool m_isDiskThere = true;
    int m_refused = 0, m_beyond = 0, m_beyondValue = 0;

    qint64 m_settledBytes = 0;
    std::vector<qint64> m_pictureUs;
    qint64 m_readings = 0, m_looks = 0, m_spikes = 0;
    int m_findings = 0;
};

void LongRun::makeTrouble()
{
    const auto lasting = [this](qint64 everyMs, qint64 mostMs, qint64& untilMs) {
        if (m_steadyMs < untilMs || !once(everyMs))
            return false;
        untilMs = m_steadyMs + readingMs * (1 + draw(mostMs / readingMs));
        return true;
    };
    lasting(10 * minuteMs, minuteMs, m_silentUntilMs);
    lasting(30 * minuteMs, 5 * minuteMs, m_lostUntilMs);
    if (lasting(20 * minuteMs, 5 * minuteMs, m_refusedUntilMs))
        m_refused = draw(numbers);
    if (lasting(2 * minuteMs, minuteMs, m_beyondUntilMs)) {
        m_beyond = draw(numbers);
        m_beyondValue = draw(2) != 0 ? high + 1 : low - 1;
    }
    lasting(60 * minuteMs, minuteMs / 2, m_busyUntilMs);
    if (lasting(90 * minuteMs, 2 * minuteMs, m_diskUntilMs))
        setDisk(false);
    if (!m_isDiskThere && m_steadyMs >= m_diskUntilMs)
        setDisk(true);
    if (once(300 * minuteMs))
        m_nowMs += draw(2 * minuteMs) - minuteMs;  // the clock is set by up to a minute
    if (once(minuteMs) && m_steadyMs >= m_busyUntilMs)
        actAsPerson();
}

void LongRun::setDisk(bool isThere)
{
    m_isDiskThere = isThere;
    const QString there = m_folder + "/alarms", gone = m_folder + "/away";
    QDir().rename(isThere ? gone : there, isThere ? there : gone);
}

void LongRun::actAsPerson()
{
    auto& pages = *m_window->findChild<QTabWidget*>();
    switch (draw(7)) {
    case 0:
        for (QPushButton* button : m_window->findChildren<QPushButton*>()) {
            if (button->text().remove('&') == QLatin1String("Acknowledge all"))
                button->click();
        }
        break;
    case 1:
        table().sort(draw(ValueTable::columns + 1) - 1, Qt::AscendingOrder);
        break;
    case 2:
        table().setFilter(draw(2) != 0 ? QString() : QStringLiteral("oven1"));
        break;
    case 3:
        trends().view().span().setLength(1000 + draw(TrendSpan::longestMs - 1000));
        break;
    case 4:
        pages.setCurrentWidget(m_window->findChild<ValuesPage*>());
        break;
    default:
        pages.setCurrentIndex(draw(pages.count()));
        break;
    }
}

int LongRun::valueOf(int tag)
{
    if (tag >= numbers)
        return static_cast<int>(m_steadyMs / ((tag - numbers + 1) * qint64(1000)) % 2);
    if (tag == m_beyond && m_steadyMs < m_beyondUntilMs)
        return m_beyondValue;
    if (once(30 * minuteMs)) {
        m_planted += {tag, m_nowMs};
        return spike;
    }
    return 20 + static_cast<int>((m_steadyMs / 1000 + tag) % 150);
}

void LongRun::read()
{
    QVector<Reading> readings;
    const bool isLost = m_steadyMs < m_lostUntilMs;
    if (isLost != m_isLost)
        emit m_plc.linkChanged(!isLost, isLost ? QStringLiteral("no answer") : QString());
    for (int tag = 0; tag < m_said.size(); ++tag) {
        if (isLost) {
            if (!m_isLost)
                say(readings, view_tests::bad(tag, "link lost", m_nowMs));
        } else if (tag == m_refused && m_steadyMs < m_refusedUntilMs) {
            say(readings, view_tests::bad(tag, "refused", m_nowMs));
        } else if (m_steadyMs >= m_silentUntilMs) {
            say(readings, view_tests::good(tag, valueOf(tag), m_nowMs));
        }
    }
    m_isLost = isLost;
    m_readings += readings.size();
    m_waiting += readings;
}

void LongRun::say(QVector<Reading>& readings, const Reading& reading)
{
    Said& said = m_said[reading.tag];
    said.quality = reading.quality;
    if (reading.quality == Quality::Good) {
        said.value = reading.value;
        said.atMs = m_nowMs;
        if (reading.tag < numbers)
            expectAlarm(reading);
    }
    readings += reading;
}

void LongRun::expectAlarm(const Reading& reading)
{
    const int value = reading.value.toInt();
    const QString kind = value > high ? "high" : value < low ? "low" : "";
    const QString before = std::exchange(m_kinds[reading.tag], kind);
    if (kind == before)
        return;
    const auto expect = [&](const QString& which, const char* event) {
        m_expected.push_back(QStringLiteral("oven%1.temp,%2,%3,%4,°C")
                                 .arg(reading.tag)
                                 .arg(which, QString(event))
                                 .arg(value)
                                 .toUtf8());
    };
    if (!before.isEmpty())
        expect(before, "cleared");
    if (!kind.isEmpty())
        expect(kind, "raised");
}

void LongRun::show()
{
    const qint64 beganUs = threadCpuUs();
    emit m_plc.readings(m_waiting);
    m_window->showMoment();
    QCoreApplication::processEvents();
    m_pictureUs.push_back(threadCpuUs() - beganUs);
    m_waiting.clear();
    look();
}

// What a row shows, where rows are shown.
void LongRun::look()
{
    if (!m_window->findChild<ValuesPage*>()->isVisible())
        return;
    const ValueTable& rows = table();
    for (int row = 0; row < rows.rowCount(); row += 5) {
        ++m_looks;
        const int tag = rows.tagAt(row);
        const Said& said = m_said[tag];
        const QString state = rows.index(row, ValueTable::State).data().toString();
        const QString value = rows.index(row, ValueTable::Value).data().toString();
        const bool isFresh = m_nowMs - said.atMs <= staleMs && said.atMs - m_nowMs <= staleMs;
        const bool looksGood = state == QLatin1String("good") || state.startsWith("ALARM");
        if (looksGood && !state.contains("stale") && (said.quality != Quality::Good || !isFresh))
            note(QStringLiteral("tag %1 looks good: %2 %3").arg(tag).arg(value, state));
        const QString right = said.quality == Quality::Bad || said.atMs == 0
                                  ? QStringLiteral("–")
                                  : valueWithUnit(rows.book().tag(tag), said.value);
        if (value != right)
            note(QStringLiteral("tag %1 shows %2, not %3").arg(tag).arg(value, right));
    }
}

// The spikes of the last hours, in the coarsest picture.
void LongRun::lookForSpikes()
{
    constexpr int columns = 500;
    const qint64 fromMs = m_nowMs - historyMs + hourMs;
    for (const auto& [tag, timeMs] : qAsConst(m_planted)) {
        if (timeMs < fromMs + hourMs || timeMs >= m_nowMs)
            continue;
        const TagState& state = table().book().state(tag);
        double highest = 0;
        for (const Extent& extent : state.history->columns(
                 timeMs - hourMs, std::min(timeMs + hourMs, m_nowMs + 1), columns))
            highest = std::fmax(highest, extent.highest);
        ++m_spikes;
        if (highest != spike)
            note(QStringLiteral("the spike of tag %1 at %2 is not there").arg(tag).arg(timeMs));
    }
}

void LongRun::compareAlarms()
{
    std::vector<QByteArray> written;
    for (const char* name : {"alarms.csv.1", "alarms.csv"}) {
        QFile file(m_folder + "/alarms/" + name);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        file.readLine();  // the heading
        while (!file.atEnd()) {
            const QByteArray line = file.readLine().trimmed();
            if (!line.contains(",acknowledged,"))
                written.push_back(line.mid(line.indexOf(',') + 1));
        }
    }
    if (written != m_expected)
        note(QStringLiteral("%1 alarms are in the file, not %2, or others")
                 .arg(written.size())
                 .arg(m_expected.size()));
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    QCommandLineParser parser;
    parser.setApplicationDescription("Shows the window a day of troubles, in simulated time");
    parser.addHelpOption();
    parser.addOptions({{"hours", "How long, in simulated hours.", "N", "24"},
                       {"seed", "What the troubles are made from.", "N", "1"}});
    parser.process(application);
    const double hours = parser.value("hours").toDouble();
    if (hours <= 0) {
        (void)std::fprintf(stderr, "view_long_run: --hours takes a number above 0\n");
        return 2;
    }
    const QTemporaryDir folder;
    LongRun run(parser.value("seed").toUInt(), folder.path());
    run.run(static_cast<qint64>(hours * hourMs));
    return run.finish() ? 0 : 1;
}
