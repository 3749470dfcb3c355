// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The window as a whole: what it says of the link, and that it lives on while nothing comes.

#include "tests/tools/fxview/window_support.h"

#include "tools/fxview/widgets/theme.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStatusBar>

using namespace fxview;
using namespace view_tests;

using MainWindowInFrontOfAPlc = Window;

TEST_F(MainWindowInFrontOfAPlc, SaysWhichPlcItShows)
{
    EXPECT_EQ(window.windowTitle(), "press1 – fxview");
    plc.simulated = true;
    const MainWindow other(plc, [] { return view_tests::nowMs; });
    EXPECT_EQ(other.windowTitle(), "press1 (a simulated PLC) – fxview");
    const auto saysIt = [](const MainWindow& of) {
        const QList<QLabel*> labels = of.findChild<QStatusBar*>()->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [](const QLabel* label) { return label->text() == "Simulated PLC"; });
    };
    EXPECT_TRUE(saysIt(other)) << "a panel shows no title";
    EXPECT_FALSE(saysIt(window));
}

TEST_F(MainWindowInFrontOfAPlc, HasOneBarForALostLink)
{
    auto* bar = window.findChild<QWidget*>("problemBar");
    EXPECT_FALSE(bar->isVisible());
    emit plc.linkChanged(false, "no answer for 3 s");
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(
        texts("problemBar").toStdString(),
        "press1 does not answer: no answer for 3 s. Check the cable and the power of the PLC; "
        "the window goes on trying.");
    EXPECT_FALSE(button("Close"));
    emit plc.benchRefused("faults x", "unknown fault");
    EXPECT_TRUE(texts("problemBar").endsWith("(and 1 more)"));
    emit plc.linkChanged(true, {});
    EXPECT_EQ(texts("problemBar").toStdString(), "'faults x': unknown fault");
    button("Close")->click();
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(MainWindowInFrontOfAPlc, DoesNotSayThatThePlcAnswersWhenAllIsOld)
{
    const auto says = [this](const char* text) {
        const QList<QLabel*> labels = window.statusBar()->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* label) { return label->text() == text; });
    };
    emit plc.linkChanged(true, {});
    emit plc.readings({good(0, 71)});
    passMs(0);
    EXPECT_TRUE(says("press1 answers"));
    passMs(60000);
    EXPECT_TRUE(says("press1: no new values"));
    emit plc.readings({good(0, 72, nowMs)});
    passMs(0);
    EXPECT_TRUE(says("press1 answers"));
}

TEST_F(MainWindowInFrontOfAPlc, ShowsTheFirstReadingsAtOnce)
{
    const QSignalSpy shown(find<QTableView>("Values")->model(), &QAbstractItemModel::dataChanged);
    emit plc.readings({good(0, 71)});
    EXPECT_GT(shown.count(), 0);
}

TEST_F(MainWindowInFrontOfAPlc, TellsWhyNothingStarts)
{
    window.tellThatNothingStarts("tags.csv, line 2: unknown address");
    EXPECT_EQ(texts("problemBar").toStdString(),
              "tags.csv, line 2: unknown address. Mend this and start fxview again.");
    EXPECT_FALSE(button("Close"));
}

TEST_F(MainWindowInFrontOfAPlc, TellsOfMistakesInTheTagFileBesideItsValues)
{
    window.tellOfMistakes("tags.csv, line 3: unknown address (and 2 more in this file)");
    EXPECT_EQ(
        texts("problemBar").toStdString(),
        "tags.csv, line 3: unknown address (and 2 more in this file). Rows with a mistake are "
        "left out: there is no value, no alarm for them. Mend the file and start fxview "
        "again.");
    emit plc.readings({good(0, 71.5)});
    passMs(0);
    EXPECT_EQ(find<QTableView>("Values")->model()->index(0, ValueTable::Value).data(), "71.5 °C");
    button("Close")->click();
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
}

TEST_F(MainWindowInFrontOfAPlc, CountsAgesWhileNothingComes)
{
    emit plc.readings({good(0, 71.5)});
    passMs(0);
    const QAbstractItemModel* model = find<QTableView>("Values")->model();
    EXPECT_EQ(model->index(0, ValueTable::Age).data(), "0.0 s");
    passMs(30000);
    EXPECT_EQ(model->index(0, ValueTable::Age).data(), "30 s");
    EXPECT_EQ(model->index(0, ValueTable::State).data(), "stale: no newer reading");
}

TEST_F(MainWindowInFrontOfAPlc, ShowsTimesByItself)
{
    nowMs += 5000;
    emit plc.readings({good(0, 71.5)});
    const QAbstractItemModel* model = find<QTableView>("Values")->model();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return model->index(0, ValueTable::Value).data() == "71.5 °C"; }));
}

TEST_F(MainWindowInFrontOfAPlc, IsAsSmallAsItsScreen)
{
    auto* line = window.findChild<LinePage*>();
    window.findChild<QTabWidget*>()->setCurrentWidget(line);
    window.resize(400, 240);
    QApplication::processEvents();
    EXPECT_EQ(window.size(), QSize(400, 240));
    const auto* area = line->findChild<QScrollArea*>();
    EXPECT_GT(area->verticalScrollBar()->maximum(), 0);
}

TEST_F(MainWindowInFrontOfAPlc, ShowsTheLinkInTheColoursOfThePalette)
{
    const auto centre = [this] {
        for (const QLabel* label : window.statusBar()->findChildren<QLabel*>()) {
            const QImage sign = label->pixmap(Qt::ReturnByValue).toImage();
            if (!sign.isNull())
                return sign.pixelColor(sign.rect().center());
        }
        return QColor();
    };
    emit plc.linkChanged(true, {});
    const QColor light = centre();
    QPalette dark = window.palette();
    dark.setColor(QPalette::Window, Qt::black);
    window.setPalette(dark);
    EXPECT_EQ(centre(), colourOf(Meaning::Good, dark));
    EXPECT_NE(centre(), light);
}

// For screen readers.
TEST_F(MainWindowInFrontOfAPlc, HasNamesForAllControls)
{
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool isInner = widget->objectName().startsWith("qt_");
        if (widget->focusPolicy() == Qt::NoFocus || isInner)
            continue;
        QAccessibleInterface* shown = QAccessible::queryAccessibleInterface(widget);
        ASSERT_TRUE(shown);
        EXPECT_FALSE(shown->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
    }
}
