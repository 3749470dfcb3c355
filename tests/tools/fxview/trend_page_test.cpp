// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The trends as a person uses them.

#include "tests/tools/fxview/window_support.h"
#include "tests/tools/support/full_disk.h"
#include "tools/fxview/widgets/curve.h"
#include "tools/fxview/widgets/trend_page.h"

#include <QDir>
#include <QTemporaryDir>

using namespace fxview;
using namespace view_tests;

namespace {

struct TrendsInWindow : Window
{
    TrendPage* page = window.findChild<TrendPage*>();
    TrendView* view = &page->view();
    QTableWidget* legend = find<QTableWidget>("Values at the cursors");
    QCheckBox* follow = page->findChild<QCheckBox*>();

    TrendsInWindow()
    {
        window.findChild<QTabWidget*>()->setCurrentWidget(page);
        QVector<Reading> readings;
        for (int at = 0; at <= 600; ++at)
            readings += good(0, at, view_tests::nowMs - 60000 + at * 100);
        emit plc.readings(readings);
        view->setTags({0});
        window.showMoment();
    }

    std::string cell(int row, int column) const
    {
        return legend->item(row, column)->text().toStdString();
    }
    QPoint at(double part) const  // of the curves' area, which begins right of its one axis
    {
        return {static_cast<int>(view->width() * part), view->height() / 2};
    }
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

}  // namespace

TEST_F(TrendsInWindow, ShowTheNewestValuesAndThoseAtTheCursors)
{
    EXPECT_EQ(cell(0, 0), "1: oven.temp in °C");
    EXPECT_EQ(cell(0, 1), "600.0");
    EXPECT_EQ(cell(0, 4), "–");
    QTest::mouseClick(view, Qt::LeftButton, {}, at(0.5));
    QTest::mouseClick(view, Qt::LeftButton, Qt::ShiftModifier, at(0.75));
    ASSERT_TRUE(view->cursors().first && view->cursors().second);
    const qint64 differenceMs = *view->cursors().second - *view->cursors().first;
    EXPECT_GT(differenceMs, 10000);
    EXPECT_NEAR(std::stod(cell(0, 4)), static_cast<double>(differenceMs) / 100, 1.01);
    EXPECT_EQ(std::stod(cell(0, 3)) - std::stod(cell(0, 2)), std::stod(cell(0, 4)));
    QTest::keyClick(view, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_LT(*view->cursors().second - *view->cursors().first, differenceMs);
    QTest::keyClick(view, Qt::Key_Escape);
    EXPECT_EQ(cell(0, 2), "–");
}

TEST_F(TrendsInWindow, StopAndFollow)
{
    EXPECT_TRUE(follow->isChecked());
    follow->click();
    passMs(5000);
    EXPECT_EQ(view->span().endMs(nowMs), nowMs - 5000);
    follow->click();
    EXPECT_EQ(view->span().endMs(nowMs), nowMs);
}

TEST_F(TrendsInWindow, ZoomAndPanByMouseAndKeyboard)
{
    QTest::keyClick(view, Qt::Key_Plus);
    EXPECT_EQ(view->span().lengthMs(), 48000);
    EXPECT_EQ(find<QComboBox>("How much time")->currentText(), "48 s");
    QTest::keyClick(view, Qt::Key_Plus);
    EXPECT_EQ(find<QComboBox>("How much time")->currentText(), "38.4 s");
    EXPECT_EQ(find<QComboBox>("How much time")->findText("48 s"), -1);
    QTest::keyClick(view, Qt::Key_Minus);
    QTest::keyClick(view, Qt::Key_Minus);
    EXPECT_EQ(find<QComboBox>("How much time")->currentText(), "1 minute");
    QTest::keyClick(view, Qt::Key_Left);
    EXPECT_EQ(view->span().endMs(nowMs), nowMs - 6000);
    EXPECT_FALSE(follow->isChecked());
    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_FALSE(view->span().isStopped());
    EXPECT_TRUE(follow->isChecked());
    QTest::mousePress(view, Qt::LeftButton, {}, at(0.5));
    QMouseEvent move(QEvent::MouseMove, at(0.7), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(view, &move);
    QTest::mouseRelease(view, Qt::LeftButton, {}, at(0.7));
    EXPECT_LT(view->span().endMs(nowMs), nowMs - 10000);
    EXPECT_FALSE(view->cursors().first);
    QWheelEvent wheel(at(0.5), view->mapToGlobal(at(0.5)), {}, {0, 120}, {}, {}, {}, false);
    QApplication::sendEvent(view, &wheel);
    EXPECT_EQ(view->span().lengthMs(), 48000);
}

TEST_F(TrendsInWindow, AreChosenByNameAndFromTheValues)
{
    auto* field = find<QLineEdit>("Add a tag");
    field->setText("PUMP10");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(view->tags(), QVector<int>({0, 4}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return field->text().isEmpty(); }));
    field->setText("no such tag");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(view->tags().size(), 2);
    legend->selectRow(0);
    button("Remove")->click();
    EXPECT_EQ(view->tags(), QVector<int>({4}));
    auto* table = find<QTableView>("Values");
    window.findChild<QTabWidget*>()->setCurrentIndex(0);
    table->selectRow(5);
    table->setFocus();
    QTest::keyClick(table, Qt::Key_Space);
    EXPECT_EQ(view->tags(), QVector<int>({4, 5}));
    EXPECT_TRUE(view->isVisible());
}

TEST_F(TrendsInWindow, BeginWithTheFirstNumbersOrBits)
{
    const MainWindow other(plc, [] { return view_tests::nowMs; });
    EXPECT_EQ(other.findChild<TrendPage*>()->view().tags(), QVector<int>({0, 4, 5}));
    FakePlc bits(someTags().mid(1, 3));
    const MainWindow ofBits(bits, [] { return view_tests::nowMs; });
    EXPECT_EQ(ofBits.findChild<TrendPage*>()->view().tags(), QVector<int>({0, 1}));
}

TEST_F(TrendsInWindow, SayOnAndOffOfBits)
{
    view->setTags({1});
    QVector<Reading> readings;
    for (int second = 60; second >= 0; --second)
        readings += good(1, second < 30 ? 1 : 0, nowMs - second * 1000);
    emit plc.readings(readings);
    QTest::mouseClick(view, Qt::LeftButton, {}, at(0.3));
    QTest::mouseClick(view, Qt::LeftButton, Qt::ShiftModifier, at(0.8));
    EXPECT_EQ(cell(0, 1), "on");
    EXPECT_EQ(cell(0, 2), "off");
    EXPECT_EQ(cell(0, 3), "on");
    EXPECT_EQ(cell(0, 4), "–");
    const QTemporaryDir folder;
    const QByteArray svg = contentOf(page->exportTo(folder.path(), "svg"));
    EXPECT_TRUE(svg.contains(">off</text>"));
    EXPECT_TRUE(svg.contains(">1: motor.run</text>"));
}

TEST_F(TrendsInWindow, AreExported)
{
    const QTemporaryDir folder;
    const QByteArray csv = contentOf(page->exportTo(folder.path(), "csv"));
    EXPECT_TRUE(csv.startsWith("time (UTC),oven.temp lowest,oven.temp highest\n"
                               "2023-11-14T22:12:20.000Z,0,0\n"));
    EXPECT_TRUE(csv.endsWith("2023-11-14T22:13:20.000Z,600,600\n"));
    EXPECT_EQ(csv.count('\n'), 602);
    EXPECT_TRUE(contentOf(page->exportTo(folder.path(), "svg")).contains("<polyline"));
    EXPECT_TRUE(contentOf(page->exportTo(folder.path(), "png")).startsWith("\x89PNG"));
    EXPECT_THROW(page->exportTo(folder.path(), "png"), fxtools::Failure);  // there is one already
    EXPECT_THROW(page->exportTo(folder.filePath("nowhere"), "csv"), fxtools::Failure);
}

TEST_F(TrendsInWindow, LeaveNoPartOfAFileOnAFullDisk)
{
    const QTemporaryDir folder;
    {
        const tool_tests::FullDisk full(100);
        try {
            page->exportTo(folder.path(), "csv");
            ADD_FAILURE();
        } catch (const fxtools::Failure& failure) {
            EXPECT_TRUE(failure.text().contains("csv: File too large. Make room on the disk"))
                << failure.text().toStdString();
        }
    }
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(TrendsInWindow, ExportTheLowestAndTheHighestOfEachStep)
{
    view->setTags({5});
    emit plc.readings({good(5, 9, nowMs - 1000), good(5, 1, nowMs - 990), good(5, 4, nowMs - 980)});
    EXPECT_TRUE(view->csv().contains("19.000Z,1,9\n")) << view->csv().toStdString();
}

TEST_F(TrendsInWindow, ExportNoMoreRowsThanASpreadsheetHolds)
{
    view->span().setLength(TrendSpan::longestMs);
    EXPECT_LE(view->csv().count('\n'), 100001);
    EXPECT_TRUE(view->csv().contains(",600\n"));
}

TEST(Curves, JoinColumnsAndLeaveGaps)
{
    const QVector<Extent> columns = {{0, 0}, {0, 10}, {}, {5, 5}};
    const auto lines = curveLines({0, 0, 4, 10}, columns, {0, 10});
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QPolygonF(QVector<QPointF>{{0.5, 10}, {0.5, 10}, {1.5, 10}, {1.5, 0}}));
    EXPECT_EQ(lines[1].first(), QPointF(3.5, 5));
}

TEST(Curves, ArePaintedFromTheLowestToTheHighestOfEachColumn)
{
    QImage picture(4, 11, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setPen(Qt::black);
    paintCurve(painter, {0, 0, 4, 10}, {{0, 0}, {0, 10}, {}, {5, 5}}, {0, 10});
    const auto blackIn = [&picture](int column) {
        int black = 0;
        for (int y = 0; y < picture.height(); ++y)
            black += picture.pixelColor(column, y) == QColor(Qt::black);
        return black;
    };
    EXPECT_EQ(blackIn(0), 1);
    EXPECT_EQ(blackIn(1), 11);
    EXPECT_EQ(blackIn(2), 0);
    EXPECT_EQ(blackIn(3), 1);
}

TEST(Curves, InLanesTakeTheirPartOfTheHeight)
{
    const auto heightOf = [](int lane, double value) {
        return curveLines({0, 0, 1, 300}, {{value, value}}, inLane({0, 10}, lane, 3))[0][0].y();
    };
    EXPECT_EQ(heightOf(0, 10), 0);
    EXPECT_EQ(heightOf(0, 0), 100);
    EXPECT_EQ(heightOf(1, 5), 150);
    EXPECT_EQ(heightOf(2, 0), 300);
}

TEST(Curves, HaveRoomAlsoWhereNothingChanges)
{
    EXPECT_LT(roomFor({{5, 5}}).lowest, 5);
    EXPECT_GT(roomFor({{0, 0}}).highest, 0);
    EXPECT_EQ(roomFor({}).highest, 1);
}
