// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of the line: what the plan reads, how long answers take, what goes wrong.

#include "tests/tools/fxview/window_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/fxview/widgets/line_page.h"

#include <QStatusBar>

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
    report.loadPercent = 112;
    report.late = QStringList{"D0", "D1", "D2", "D3", "D4"};
    report.blocks = {{{range("D0:8"), {range("D0:2"), range("D6:2")}}, 41.26}};
    emit plc.lineReport(report);
    auto* plan = find<QTableWidget>("Polling plan");
    ASSERT_EQ(plan->rowCount(), 1);
    EXPECT_EQ(plan->item(0, 0)->text(), "D0:8");
    EXPECT_EQ(plan->item(0, 2)->text(), "4");
    EXPECT_EQ(plan->item(0, 3)->text(), "41.3");
    EXPECT_EQ(neededIn(report.blocks[0].block),
              QVector<bool>({true, true, false, false, false, false, true, true}));
    EXPECT_TRUE(says("Line load 112 %\nThe line is too slow for D0, D1, D2, D3, D4"));
    EXPECT_TRUE(window.statusBar()->findChildren<QLabel*>().last()->text() == "Line load 112 %");
    EXPECT_TRUE(says("No errors"));
    report.late += {"D5", "D6"};
    report.blocks.clear();
    emit plc.lineReport(report);
    EXPECT_EQ(plan->rowCount(), 0);
    EXPECT_TRUE(says("Line load 112 %\nThe line is too slow for D0, D1, D2, D3, D4 and 2 more"));
    emit plc.lineReport({});
    EXPECT_TRUE(says("Line load 0 %\nAll tags are read as often as they should be"));
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

TEST_F(LineInWindow, SaysWhatIsTheMatterWithEachReport)
{
    LineReport report;
    report.verdict = "The PLC answers (press1). All is well.";
    emit plc.lineReport(report);
    EXPECT_EQ(page->findChild<QLabel*>("verdict")->text(), report.verdict);
    report.verdict = "Something on this line sends by itself.";
    emit plc.lineReport(report);
    EXPECT_EQ(page->findChild<QLabel*>("verdict")->text(), report.verdict);
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
    EXPECT_FALSE(window.findChild<InputPanel*>());
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

struct SimulatedInputs : testing::Test
{
    SimulatedInputs()
    {
        plc.simulated = true;
        window = std::make_unique<MainWindow>(plc, [this] { return now; });
        window->show();
        panel = window->findChild<InputPanel*>();
        window->findChild<QTabWidget*>()->setCurrentWidget(window->findChild<LinePage*>());
        window->findChild<LinePage*>()->findChild<QTabWidget*>()->setCurrentWidget(panel);
    }

    template <typename Widget>
    Widget* find(const char* name) const
    {
        for (Widget* widget : panel->findChildren<Widget*>()) {
            if (widget->accessibleName() == QLatin1String(name))
                return widget;
        }
        return nullptr;
    }

    bool shows(const char* text)
    {
        window->showMoment();
        for (const QLabel* label : panel->findChildren<QLabel*>()) {
            if (label->isVisible() && label->text() == QString::fromUtf8(text))
                return true;
        }
        return false;
    }

    qint64 now = nowMs;
    FakePlc plc{someTags()};
    std::unique_ptr<MainWindow> window;
    InputPanel* panel = nullptr;
};

TEST_F(SimulatedInputs, AreSwitchedByMouseAndKeyboard)
{
    ASSERT_TRUE(panel);
    EXPECT_TRUE(find<QPushButton>("X0 Program")->isChecked());
    QTest::mouseClick(find<QPushButton>("X0 On"), Qt::LeftButton);
    find<QPushButton>("X0 Off")->setFocus();
    QTest::keyClick(find<QPushButton>("X0 Off"), Qt::Key_Space);
    EXPECT_TRUE(find<QPushButton>("X0 Off")->isChecked());
    EXPECT_FALSE(find<QPushButton>("X0 On")->isChecked());
    find<QPushButton>("X0 Program")->click();
    EXPECT_EQ(plc.benchCommands, QStringList({"switch X0 on", "switch X0 off", "switch X0 auto"}));
}

TEST_F(SimulatedInputs, AreShownAsThePlcTellsThem)
{
    EXPECT_TRUE(shows("– (not read yet)"));
    find<QPushButton>("X0 On")->click();
    EXPECT_FALSE(shows("on")) << "that is only what was asked for";
    emit plc.readings({good(2, 1)});
    EXPECT_TRUE(shows("on"));
    emit plc.readings({good(2, 0)});
    EXPECT_TRUE(shows("off"));
    now += 60000;
    EXPECT_TRUE(shows("off (no newer reading)"));
    emit plc.readings({bad(2, "no reply in time", now)});
    EXPECT_TRUE(shows("– (no reply in time)"));
}

TEST_F(SimulatedInputs, GoWithARegisterToSet)
{
    QTest::keyClicks(find<QLineEdit>("Register to set"), "D100");
    QTest::keyClick(find<QLineEdit>("Value to set"), Qt::Key_Return);
    EXPECT_TRUE(plc.benchCommands.isEmpty()) << "to what?";
    QTest::keyClicks(find<QLineEdit>("Value to set"), "815");
    QTest::keyClick(find<QLineEdit>("Value to set"), Qt::Key_Return);
    EXPECT_EQ(plc.benchCommands, QStringList("poke D100 815"));
    emit plc.benchRefused("poke D100 x", "invalid value");
    EXPECT_TRUE(window->findChild<ProblemBar*>()->isVisible());
}
