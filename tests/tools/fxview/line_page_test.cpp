// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of the line: what the plan reads, how long answers take, what goes wrong.

#include "tests/tools/fxview/window_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/fxview/widgets/line_page.h"

using namespace fxview;
using namespace view_tests;
using tool_tests::range;

namespace {

struct LineInWindow : Window
{
    LinePage* page = window.findChild<LinePage*>();

    LineInWindow() { window.findChild<QTabWidget*>()->setCurrentWidget(page); }

    bool says(const char* text) const
    {
        for (const QLabel* label : page->findChildren<QLabel*>()) {
            if (label->text() == QString::fromUtf8(text))
                return true;
        }
        return false;
    }
};

fxtools::Exchange exchangeWith(fxtools::ReplyVerdict verdict)
{
    fxtools::Exchange exchange;
    exchange.verdict = verdict;
    exchange.reply = QByteArray("\x02"
                                "12\x9c\x03",
                                5);
    exchange.startedUs = 1234000;
    exchange.tookUs = 21300;
    return exchange;
}

}  // namespace

TEST_F(LineInWindow, ShowsThePlanWithItsGapsAndCosts)
{
    LineReport report;
    report.load = "line load 12 %";
    report.late = QStringList{"D0 each 100 ms: every 150 ms"};
    report.blocks = {{{range("D0:8"), {range("D0:2"), range("D6:2")}}, 41.26}};
    emit plc.lineReport(report);
    auto* plan = find<QTableWidget>("Polling plan");
    ASSERT_EQ(plan->rowCount(), 1);
    EXPECT_EQ(plan->item(0, 0)->text(), "D0:8");
    EXPECT_EQ(plan->item(0, 2)->text(), "4");
    EXPECT_EQ(plan->item(0, 3)->text(), "41.3");
    EXPECT_EQ(neededIn(report.blocks[0].block),
              QVector<bool>({true, true, false, false, false, false, true, true}));
    EXPECT_TRUE(says("line load 12 %\nD0 each 100 ms: every 150 ms"));
    EXPECT_TRUE(says("No errors"));
    report.blocks.clear();
    emit plc.lineReport(report);
    EXPECT_EQ(plan->rowCount(), 0);
}

TEST_F(LineInWindow, ShowsResponseTimesAndErrorsByCause)
{
    LineReport report;
    for (int time = 0; time < 99; ++time)
        report.statistics.responses.add(20000);
    report.statistics.responses.add(900000);
    report.statistics.verdicts[fxtools::ReplyVerdict::Silence] = 7;
    report.statistics.verdicts[fxtools::ReplyVerdict::Good] = 100;
    report.statistics.linksLost = 2;
    emit plc.lineReport(report);
    EXPECT_TRUE(says(
        ("Errors: " + fxtools::verdictText(fxtools::ReplyVerdict::Silence) + ": 7; links lost: 2")
            .toUtf8()));
    const QVector<qint64> bars = HistogramView::barsOf(report.statistics.responses);
    qint64 all = 0;
    for (const qint64 bar : bars)
        all += bar;
    EXPECT_NEAR(static_cast<double>(all), 100, 1);
    EXPECT_GT(bars[17], 90);  // 19 to 22.6 ms
}

TEST_F(LineInWindow, ShowsFramesWhileItIsLookedAt)
{
    auto* frames = find<QPlainTextEdit>("Frames");
    emit plc.exchanges({exchangeWith(fxtools::ReplyVerdict::Good)});
    EXPECT_TRUE(frames->toPlainText().startsWith("    1.234  "))
        << frames->toPlainText().toStdString();
    EXPECT_TRUE(frames->toPlainText().contains(QString::fromUtf8("→  <STX>12<9C><ETX>  ")));
    EXPECT_TRUE(frames->toPlainText().endsWith("21.3 ms"));
    emit plc.exchanges(
        QVector<fxtools::Exchange>(2500, exchangeWith(fxtools::ReplyVerdict::Silence)));
    EXPECT_EQ(frames->blockCount(), 1000);
    window.findChild<QTabWidget*>()->setCurrentIndex(0);
    emit plc.exchanges({exchangeWith(fxtools::ReplyVerdict::Good)});
    EXPECT_FALSE(frames->toPlainText().endsWith("good, 21.3 ms"));
}

TEST_F(LineInWindow, HasNoFaultsToGiveARealPlc)
{
    EXPECT_FALSE(window.findChild<FaultPanel*>());
}

TEST(Faults, AreGivenToASimulatedPlc)
{
    FakePlc plc(someTags());
    plc.simulated = true;
    MainWindow window(plc, [] { return nowMs; });
    auto* faults = window.findChild<FaultPanel*>();
    ASSERT_TRUE(faults);
    const QList<QSlider*> sliders = faults->findChildren<QSlider*>();
    sliders[0]->setValue(5);
    sliders[4]->setValue(20);
    faults->findChild<QPushButton*>()->click();
    EXPECT_EQ(plc.benchCommands,
              QStringList({"faults silence=5%", "faults silence=5%,delay:400=20%", "faults none"}));
    EXPECT_EQ(sliders[4]->value(), 0);
}
