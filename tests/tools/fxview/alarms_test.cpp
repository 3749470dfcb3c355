// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Alarms: raised, cleared and acknowledged in any order; none is missed, and none is forgotten
// before a person has seen it.

#include "tests/tools/fxview/window_support.h"
#include "tests/tools/support/full_disk.h"
#include "tools/fxview/models/alarm_file.h"
#include "tools/fxview/widgets/alarm_page.h"

#include <QFile>
#include <QTemporaryDir>

using namespace fxview;
using namespace view_tests;

namespace {

struct Alarms : testing::Test
{
    AlarmBook book{someTags()};
    QStringList events;

    Alarms()
    {
        book.onEvent = [this](const AlarmEvent& event) {
            events += event.kind + ' ' + whatText(event.what);
        };
    }

    void read(double value) { book.take(good(0, value)); }
    std::string seen() const { return events.join(", ").toStdString(); }
};

struct AlarmsInWindow : Window
{
    AlarmPage* page = window.findChild<AlarmPage*>();
    QTableView* table = find<QTableView>("Open alarms");
    QTabWidget* pages = window.findChild<QTabWidget*>();
    int rung = 0;

    AlarmsInWindow()
    {
        page->bell = [this] { ++rung; };
        pages->setCurrentWidget(page);
    }
    void read(double value)
    {
        emit plc.readings({good(0, value, nowMs)});
        passMs(0);
    }
    std::string state() const
    {
        return table->model()->rowCount() == 0
                   ? ""
                   : table->model()->index(0, AlarmTable::State).data().toString().toStdString();
    }
};

}  // namespace

TEST_F(Alarms, AreRaisedAndClearedByReadings)
{
    read(100);
    EXPECT_TRUE(book.open().empty());
    read(181);
    read(190);
    ASSERT_EQ(book.open().size(), 1U);
    EXPECT_EQ(book.open()[0].value, 181);
    EXPECT_TRUE(book.isAlerting());
    read(180);
    EXPECT_FALSE(book.isAlerting());
    EXPECT_EQ(book.unacknowledged(), 1);
    book.acknowledge(0, "high", nowMs);
    EXPECT_TRUE(book.open().empty());
    EXPECT_EQ(seen(), "high raised, high cleared, high acknowledged");
}

TEST_F(Alarms, StayOpenWhileTheyAreActive)
{
    read(5);
    book.acknowledgeAll(nowMs);
    EXPECT_EQ(book.open().size(), 1U);
    EXPECT_FALSE(book.isAlerting());
    book.acknowledge(0, "low", nowMs);
    read(50);
    EXPECT_TRUE(book.open().empty());
    EXPECT_EQ(seen(), "low raised, low acknowledged, low cleared");
}

TEST_F(Alarms, AreTwoWhenAValueJumpsFromOneLimitToTheOther)
{
    read(5);
    read(185);
    EXPECT_EQ(book.open().size(), 2U);
    EXPECT_EQ(seen(), "low raised, low cleared, high raised");
}

TEST_F(Alarms, ThatComeAgainAreTheSameButToBeAcknowledgedAgain)
{
    for (int time = 0; time < 5000; ++time) {
        read(185);
        read(100);
    }
    ASSERT_EQ(book.open().size(), 1U);
    EXPECT_EQ(book.open()[0].times, 5000);
    EXPECT_EQ(events.size(), 10000);
    EXPECT_EQ(book.events().size(), AlarmBook::mostEvents);
    read(185);
    book.acknowledgeAll(nowMs);
    read(100);
    read(185);
    EXPECT_TRUE(book.isAlerting());
}

TEST_F(Alarms, AreNeitherRaisedNorClearedByWhatIsNotGood)
{
    read(185);
    book.take(bad(0, "refused"));
    book.take(stale(0, "no answer"));
    EXPECT_TRUE(book.isAlerting());
    read(185);
    EXPECT_EQ(seen(), "high raised");
}

TEST_F(Alarms, AreWrittenToAFileAndWaitForARoomyDisk)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("new/alarms.csv");
    AlarmFile file(path);
    const fxtools::Tag tag = someTags()[0];
    const AlarmEvent raised{AlarmEvent::What::Raised, nowMs, 0, "high", 185};
    file.add(raised, tag);
    EXPECT_TRUE(file.write().contains("1 events wait, 0 are lost"));
    for (int more = 0; more < 1001; ++more)
        file.add(raised, tag);
    EXPECT_TRUE(file.write().contains("1000 events wait, 2 are lost"));
    QDir().mkpath(folder.filePath("new"));
    file.add({AlarmEvent::What::Acknowledged, nowMs + 1, 0, "high", {}}, tag);
    EXPECT_EQ(file.write(), "");
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QByteArray text = written.readAll();
    EXPECT_EQ(text.count('\n'), 1001);
    EXPECT_TRUE(text.startsWith("time (UTC),tag,alarm,event,value,unit\n"
                                "2023-11-14T22:13:20.000Z,oven.temp,high,raised,185,°C\n"));
    EXPECT_TRUE(text.endsWith("2023-11-14T22:13:20.001Z,oven.temp,high,acknowledged,,°C\n"));
}

TEST_F(Alarms, StandInTheFileOnceThoughTheDiskWasFullInTheMiddleOfALine)
{
    const QTemporaryDir folder;
    AlarmFile file(folder.filePath("alarms.csv"));
    file.add({AlarmEvent::What::Raised, nowMs, 0, "high", 185}, someTags()[0]);
    {
        const tool_tests::FullDisk full(50);  // the heading and some of the line
        EXPECT_TRUE(file.write().contains("File too large. Make room on the disk; 1 events wait"));
    }
    EXPECT_EQ(file.write(), "");
    QFile written(folder.filePath("alarms.csv"));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "time (UTC),tag,alarm,event,value,unit\n"
                                 "2023-11-14T22:13:20.000Z,oven.temp,high,raised,185,°C\n");
}

TEST_F(Alarms, HaveAFileThatDoesNotGrowForEver)
{
    const QTemporaryDir folder;
    QFile large(folder.filePath("alarms.csv"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(10 << 20));
    AlarmFile file(large.fileName());
    file.add({AlarmEvent::What::Raised, nowMs, 0, "high", 185}, someTags()[0]);
    EXPECT_EQ(file.write(), "");
    EXPECT_LT(QFile(large.fileName()).size(), 1000);
    EXPECT_EQ(QFile(large.fileName() + ".1").size(), 10 << 20);
}

TEST_F(AlarmsInWindow, AreInTheFileWhenTheWindowHasEnded)
{
    const QTemporaryDir folder;
    QString problem;
    {
        AlarmWriter writer(folder.filePath("new/alarms.csv"));
        QObject::connect(&writer, &AlarmWriter::tried, &window,
                         [&](const QString& text) { problem = text; });
        writer.add({AlarmEvent::What::Raised, nowMs, 0, "high", 185}, someTags()[0]);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !problem.isEmpty(); }, 30000));
        QDir().mkpath(folder.filePath("new"));
    }
    EXPECT_GT(QFile(folder.filePath("new/alarms.csv")).size(), 0);
}

TEST_F(AlarmsInWindow, ThatNoDiskTakesAreTriedAgainAndSaidSo)
{
    const QTemporaryDir folder;
    window.keepAlarmsIn(folder.filePath("new/alarms.csv"));
    read(185);
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return texts("problemBar").contains("1 events wait"); }, 30000));
    QDir().mkpath(folder.filePath("new"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return texts("problemBar").isEmpty(); }, 30000));
    EXPECT_GT(QFile(folder.filePath("new/alarms.csv")).size(), 0);
}

TEST_F(AlarmsInWindow, ShowThreeStates)
{
    EXPECT_EQ(state(), "");
    read(185);
    EXPECT_EQ(state(), "ACTIVE");
    EXPECT_EQ(table->model()->index(0, AlarmTable::Value).data(),
              "too high: 185.0 °C, limit 180.0");
    EXPECT_EQ(pages->tabText(pages->indexOf(page)), "&Alarms (1)");
    read(100);
    EXPECT_EQ(state(), "cleared, not acknowledged");
    read(185);
    button("Acknowledge all")->click();
    EXPECT_EQ(state(), "active, acknowledged");
    EXPECT_EQ(pages->tabText(pages->indexOf(page)), "&Alarms");
    read(100);
    EXPECT_EQ(state(), "");
    const QString history = find<QPlainTextEdit>("History of alarms")->toPlainText();
    EXPECT_EQ(history.count('\n'), 4);
    EXPECT_TRUE(history.section('\n', 0, 0).endsWith("oven.temp  too high cleared  100.0 °C"));
}

TEST_F(AlarmsInWindow, AreAcknowledgedByKeyboard)
{
    read(185);
    table->selectRow(0);
    button("Acknowledge")->click();
    EXPECT_EQ(state(), "active, acknowledged");
}

TEST_F(AlarmsInWindow, AreAcknowledgedOnlyWhereTheyAreChosen)
{
    read(190);
    read(5);
    EXPECT_EQ(table->model()->rowCount(), 2);
    table->selectRow(1);
    button("Acknowledge")->click();
    EXPECT_EQ(table->model()->rowCount(), 1);
    EXPECT_EQ(state(), "ACTIVE");
}

TEST_F(AlarmsInWindow, RingUntilTheyAreAcknowledged)
{
    read(100);
    EXPECT_EQ(rung, 0);
    pages->setCurrentIndex(0);
    read(185);
    EXPECT_EQ(rung, 1);
    passMs(4000);
    EXPECT_EQ(rung, 1);
    passMs(1000);
    EXPECT_EQ(rung, 2);
    pages->setCurrentWidget(page);
    button("Acknowledge all")->click();
    passMs(9000);
    EXPECT_EQ(rung, 2);
}

// Whatever comes in one go, each event counts.
TEST_F(AlarmsInWindow, AreNotMissedWhileTheWindowIsBusy)
{
    QVector<Reading> readings;
    for (int time = 0; time < 100; ++time)
        readings << good(0, 185, nowMs + 2 * time) << good(0, 100, nowMs + 2 * time + 1);
    emit plc.readings(readings);
    passMs(0);
    EXPECT_TRUE(
        table->model()->index(0, AlarmTable::Raised).data().toString().endsWith("(100 times)"));
}
