// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of values as a person uses it, by keyboard and by mouse.

#include "tests/tools/fxview/window_support.h"

#include <QClipboard>
#include <QHeaderView>

using namespace fxview;
using namespace view_tests;

namespace {

struct ValuesPageInWindow : Window
{
    QTableView* table = find<QTableView>("Values");
    QLineEdit* field = find<QLineEdit>("New value");

    std::string said() const { return texts("writeBar").toStdString(); }
    void choose(int row) { table->selectRow(row); }
    void type(const char* text)
    {
        field->setFocus();
        QTest::keyClicks(field, text);
    }
    void answer(WriteResult::Outcome outcome, const QJsonValue& after, const char* reason = "")
    {
        emit plc.written({plc.writes.last().id, plc.writes.last().tag, outcome, 71.5, after,
                          QString::fromUtf8(reason)});
    }
};

}  // namespace

TEST_F(ValuesPageInWindow, WritesAfterOneQuestionAndShowsWhatWasReadBack)
{
    emit plc.readings({good(0, 71.5)});
    window.showMoment();
    choose(0);
    EXPECT_EQ(said(), "oven.temp is 71.5 °C | 0 °C to 200 °C");
    type("80");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(said(), "oven.temp is 71.5 °C | 0 °C to 200 °C | "
                      "Write to oven.temp (D100): now 71.5 °C, new 80 °C?");
    EXPECT_TRUE(plc.writes.isEmpty());
    button("Yes, write")->setFocus();
    QTest::keyClick(button("Yes, write"), Qt::Key_Return);
    ASSERT_EQ(plc.writes.size(), 1);
    EXPECT_EQ(plc.writes[0].tag, 0);
    EXPECT_EQ(plc.writes[0].text, "80");
    EXPECT_FALSE(field->isEnabled());
    answer(WriteResult::Outcome::Done, 80);
    EXPECT_EQ(said(), "oven.temp is 71.5 °C | 0 °C to 200 °C | "
                      "Done: oven.temp was 71.5 °C, is now 80.0 °C (read back)");
    EXPECT_EQ(field->text(), "");
}

TEST_F(ValuesPageInWindow, SaysBeforeThatAValueIsRounded)
{
    emit plc.readings({good(0, 71.5)});
    window.showMoment();
    choose(0);
    type("42.26");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_NE(said().find("new 42.26 °C, rounded to steps of 0.1?"), std::string::npos) << said();
}

TEST_F(ValuesPageInWindow, TellsWhenAWriteDidNotDoWhatWasWanted)
{
    const auto resultOf = [this](WriteResult::Outcome outcome, const char* reason) {
        choose(0);
        type("80");
        button("Write…")->click();
        button("Yes, write")->click();
        answer(outcome, 70, reason);
        return texts("writeBar").section(" | ", 2).toStdString();
    };
    EXPECT_EQ(resultOf(WriteResult::Outcome::Refused, "refused by the PLC"),
              "Not written: refused by the PLC");
    EXPECT_EQ(resultOf(WriteResult::Outcome::Failed, "the program holds it"),
              "NOT as wanted: oven.temp is now 70.0 °C; the program holds it");
    EXPECT_EQ(resultOf(WriteResult::Outcome::Unknown, "no answer"),
              "UNKNOWN whether oven.temp was written: no answer");
    EXPECT_EQ(plc.writes.size(), 3);
}

TEST_F(ValuesPageInWindow, AsksNothingThatIsBeyondTheLimits)
{
    choose(0);
    type("201");
    EXPECT_FALSE(button("Write…")->isEnabled());
    EXPECT_EQ(said(),
              "oven.temp is – (not read yet) | 0 °C to 200 °C – above the maximum of 200 °C");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_FALSE(button("Yes, write"));
    field->clear();
    type("-1");
    EXPECT_FALSE(button("Write…")->isEnabled());
    field->clear();
    type("0");
    EXPECT_TRUE(button("Write…")->isEnabled());
}

TEST_F(ValuesPageInWindow, SaysHowLongATextMayBe)
{
    emit plc.readings({good(3, "")});
    window.showMoment();
    choose(3);
    EXPECT_EQ(said(), "recipe.name is \"\" | up to 8 characters");
    type("WHEAT 123");
    EXPECT_EQ(said(), "recipe.name is \"\" | up to 8 characters – 9 characters are too many");
    EXPECT_FALSE(button("Write…")->isEnabled());
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_NE(said().find("now \"\", new WHEAT 12?"), std::string::npos) << said();
    button("Yes, write")->click();
    emit plc.written({1, 3, WriteResult::Outcome::Done, "", "WHEAT 12", {}});
    EXPECT_NE(said().find("was \"\", is now WHEAT 12"), std::string::npos) << said();
}

TEST_F(ValuesPageInWindow, ShowsDescriptionsAndHidesAColumn)
{
    EXPECT_EQ(table->model()->index(0, ValueTable::Description).data(), "Temperature of the oven");
    EXPECT_FALSE(table->isColumnHidden(ValueTable::Description));
    const QList<QAction*> columns = table->horizontalHeader()->actions();
    EXPECT_EQ(columns.first()->text(), "Value");
    columns.last()->trigger();
    EXPECT_TRUE(table->isColumnHidden(ValueTable::Description));
    table->sortByColumn(ValueTable::Description, Qt::DescendingOrder);
    EXPECT_EQ(table->model()->index(0, 0).data(), "oven.temp");
    EXPECT_EQ(table->model()->index(1, 0).data(), "door");
    FakePlc other(someTags().mid(4));
    const MainWindow withoutDescriptions(other, [] { return view_tests::nowMs; });
    EXPECT_TRUE(
        withoutDescriptions.findChild<ValuesPage*>()->findChild<QTableView*>()->isColumnHidden(
            ValueTable::Description));
}

TEST_F(ValuesPageInWindow, SwitchesBitsAndLeavesWhatIsReadOnly)
{
    choose(1);
    button("On")->click();
    EXPECT_EQ(said(), "motor.run is – (not read yet) | "
                      "Write to motor.run (M0): now – (not read yet), new on?");
    button("Yes, write")->click();
    EXPECT_EQ(plc.writes.last().text, "1");
    answer(WriteResult::Outcome::Done, 1);
    choose(2);
    EXPECT_EQ(said(), "door is – (not read yet) | read-only");
    EXPECT_FALSE(button("On"));
    choose(4);
    EXPECT_FALSE(field->isVisible());
}

TEST_F(ValuesPageInWindow, SendsNothingWhenTheAnswerIsNo)
{
    choose(0);
    type("80");
    button("Write…")->click();
    button("No")->click();
    EXPECT_EQ(field->text(), "80");
    EXPECT_EQ(window.focusWidget(), field);
    QTest::keyClicks(field, "9");
    EXPECT_EQ(field->text(), "9") << "not 809";
    button("Write…")->click();
    QTest::keyClick(button("Yes, write"), Qt::Key_Escape);
    EXPECT_FALSE(button("Yes, write"));
    EXPECT_TRUE(plc.writes.isEmpty());
}

TEST_F(ValuesPageInWindow, WritesNothingWhenAKeyIsPressedAgainAndAgain)
{
    for (const int row : {0, 1}) {
        choose(row);
        table->setFocus();
        QTest::keyClick(table, Qt::Key_Return);
        QTest::keyClicks(window.focusWidget(), row == 0 ? "80" : "");
        for (const Qt::Key key :
             {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Return, Qt::Key_Return, Qt::Key_Return,
              Qt::Key_Space, Qt::Key_Return, Qt::Key_Space, Qt::Key_Return})
            QTest::keyClick(window.focusWidget(), key);
        EXPECT_TRUE(plc.writes.isEmpty()) << row;
    }
    EXPECT_TRUE(button("Yes, write")) << "it did ask";
    QTest::keyClick(window.focusWidget(), Qt::Key_Y, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return plc.writes.size() == 1; }, 30000));
    EXPECT_EQ(plc.writes[0].text, "1");
    answer(WriteResult::Outcome::Done, 1);
    EXPECT_EQ(window.focusWidget(), table);
}

TEST_F(ValuesPageInWindow, StaysWithAWriteUntilItsResultIsKnown)
{
    choose(0);
    type("80");
    button("Write…")->click();
    button("Yes, write")->click();
    choose(3);
    EXPECT_EQ(said(), "oven.temp is – (not read yet) | 0 °C to 200 °C | "
                      "Writing oven.temp; waiting for what the PLC has then…");
    button("Do not wait")->click();
    EXPECT_EQ(said(), "oven.temp is – (not read yet) | 0 °C to 200 °C | "
                      "UNKNOWN whether oven.temp was written: no result so far");
    answer(WriteResult::Outcome::Done, 80);
    EXPECT_NE(said().find("Done: oven.temp"), std::string::npos);
}

// That of the one before came while this one was on its way.
TEST_F(ValuesPageInWindow, TakesTheResultOfAnotherWriteForNoneOfItsOwn)
{
    for (int write = 0; write < 2; ++write) {
        choose(0);
        field->clear();
        type("80");
        button("Write…")->click();
        button("Yes, write")->click();
        if (write == 0)
            button("Do not wait")->click();
    }
    emit plc.written({1, 0, WriteResult::Outcome::Done, 70, 80, {}});
    EXPECT_TRUE(button("Do not wait"));
    EXPECT_NE(said().find("Writing oven.temp"), std::string::npos) << said();
    answer(WriteResult::Outcome::Done, 80);
    EXPECT_FALSE(button("Do not wait"));
}

TEST_F(ValuesPageInWindow, ShowsEachStateByAShapeOfItsOwn)
{
    const auto paintedAt = [this](int row, int column) {
        window.showMoment();
        const QRect cell = table->visualRect(table->model()->index(row, column));
        const bool isState = column == ValueTable::State;
        const QImage picture =
            table->viewport()
                ->grab(isState ? QRect(cell.topLeft(), QSize(24, cell.height())) : cell)
                .toImage();
        QVector<QPoint> points;
        for (int x = 0; x < picture.width(); ++x) {
            for (int y = 0; y < picture.height(); ++y) {
                if (picture.pixel(x, y) != picture.pixel(0, 0))
                    points += QPoint(x, y);
            }
        }
        return points;
    };
    QVector<QVector<QPoint>> shapes;
    for (const Reading& reading : {good(0, 71), stale(0, "?"), bad(0, "?"), good(0, 190)}) {
        emit plc.readings({reading});
        shapes += paintedAt(0, ValueTable::State);
        EXPECT_EQ(shapes.indexOf(shapes.last()), shapes.size() - 1) << shapes.size();
    }
    emit plc.readings({good(1, 1), good(4, 1)});
    const int on = paintedAt(1, ValueTable::Value).size();
    emit plc.readings({good(1, 0), stale(4, "?")});
    EXPECT_GT(on, paintedAt(1, ValueTable::Value).size());
}

TEST_F(ValuesPageInWindow, WritesNothingWhileThePlcIsSilent)
{
    choose(0);
    type("80");
    emit plc.linkChanged(false, "no answer");
    EXPECT_FALSE(button("Write…")->isEnabled());
    emit plc.linkChanged(true, {});
    button("Write…")->click();
    emit plc.linkChanged(false, "no answer");
    EXPECT_FALSE(button("Yes, write")->isEnabled());
    EXPECT_LE(window.minimumSizeHint().width(), 1024);
    emit plc.linkChanged(true, {});
    EXPECT_TRUE(button("Yes, write")->isEnabled());
}

TEST_F(ValuesPageInWindow, IsUsedByKeyboard)
{
    table->setFocus();
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    QLineEdit* filter = find<QLineEdit>("Filter");
    ASSERT_EQ(window.focusWidget(), filter);
    QTest::keyClicks(filter, "oven");
    QTest::keyClick(filter, Qt::Key_Return);
    EXPECT_EQ(window.focusWidget(), table);
    EXPECT_EQ(table->currentIndex().row(), 0);
    QTest::keyClick(table, Qt::Key_Return);
    EXPECT_EQ(window.focusWidget(), field);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(window.focusWidget(), table);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("name,address,value"));
    EXPECT_EQ(QApplication::clipboard()->text().count('\n'), 2);
}

TEST_F(ValuesPageInWindow, KeepsItsRowWhenTheFilterChanges)
{
    choose(5);
    QTest::keyClicks(find<QLineEdit>("Filter"), "pump");
    EXPECT_EQ(table->model()->rowCount(), 2);
    EXPECT_EQ(table->currentIndex().row(), 1);
    find<QLineEdit>("Filter")->clear();
    EXPECT_EQ(table->currentIndex().row(), 5);
}

TEST_F(ValuesPageInWindow, SortsByAClickOnAHeading)
{
    EXPECT_EQ(table->model()->index(0, 0).data(), "oven.temp");
    table->sortByColumn(ValueTable::Name, Qt::AscendingOrder);
    EXPECT_EQ(table->model()->index(0, 0).data(), "door");
    choose(0);
    EXPECT_EQ(said(), "door is – (not read yet) | read-only");
    table->sortByColumn(-1, Qt::AscendingOrder);
    EXPECT_EQ(table->model()->index(0, 0).data(), "oven.temp");
}
