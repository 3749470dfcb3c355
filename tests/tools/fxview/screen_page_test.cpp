// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of the screen as a person uses it, by keyboard and by mouse.

#include "tests/tools/fxview/window_support.h"
#include "tools/fxview/screens/widgets/element_controls.h"
#include "tools/fxview/screens/widgets/hold_button.h"
#include "tools/fxview/screens/widgets/scale_face.h"

#include <QFile>
#include <QPlainTextEdit>
#include <QTemporaryDir>

using namespace fxview;
using namespace view_tests;
using Outcome = WriteResult::Outcome;

namespace {

const char* const panel = R"([[page]]
title = "First"
[[page.push-button]]
tag = "motor.run"
row = 1
column = 1
width = 3
label = "Jog"
[[page.push-button]]
tag = "motor.run"
row = 1
column = 4
width = 3
label = "Start"
action = "set"
[[page.switch]]
tag = "motor.run"
row = 1
column = 7
width = 3
label = "Motor"
[[page.numeric-entry]]
tag = "oven.temp"
row = 2
column = 1
width = 6
label = "Temperature"
[[page.lamp]]
tag = "door"
row = 3
column = 1
width = 3
label = "Door"
on-text = "shut"
[[page.numeric-display]]
tag = "oven.temp"
row = 3
column = 4
width = 3
label = "Oven"
decimals = 2
[[page.text]]
text = "Press 1"
row = 3
column = 7
width = 3
[[page]]
title = "Second"
[[page.bar]]
tag = "oven.temp"
row = 1
column = 1
width = 6
label = "Bar"
[[page.dial]]
tag = "oven.temp"
row = 2
column = 1
width = 6
height = 3
label = "Dial"
[[page.trend]]
tag = "oven.temp"
row = 5
column = 1
width = 6
label = "Curve"
)";

struct ScreenPageInWindow : Window
{
    ScreenPageInWindow()
    {
        emit plc.linkChanged(true, {});
        emit plc.readings({good(0, 71.5), good(1, 0), good(2, 1)});
        passMs(0);
        jog->setFocus();
    }

    void write(const QByteArray& toml)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(toml);
    }

    ElementView* view(const char* label) const { return find<ElementView>(label); }
    std::string shown(const char* label) const
    {
        return view(label)->accessibleDescription().toStdString();
    }
    std::string said() const  // after the time
    {
        return texts("screenPage").section("  ", 1).toStdString();
    }
    std::string sent() const
    {
        std::string texts;
        for (const FakePlc::Write& write : plc.writes)
            texts += write.text.toStdString();
        return texts;
    }
    void answer(int write, Outcome outcome, const QJsonValue& after = 0)
    {
        const FakePlc::Write& sent = plc.writes[write];
        emit plc.written(
            {sent.id, sent.tag, outcome, 1, after, outcome == Outcome::Done ? "" : "why", true});
    }
    void press() { QTest::mousePress(jog, Qt::LeftButton); }

    // Writes the panel and opens it.
    QString opened()
    {
        path = folder.filePath("screen.toml");
        write(panel);
        window.openScreen(path, true);
        return path;
    }

    QTemporaryDir folder;
    QString path;
    QString screenFile = opened();
    QTabWidget* pages = find<QTabWidget>("Pages");
    QTabWidget* inner = find<QTabWidget>("Pages of the screen");
    HoldButton* jog = window.findChild<HoldButton*>();
};

}  // namespace

TEST_F(ScreenPageInWindow, StandsFirstAndShowsWhatThePlcHas)
{
    EXPECT_EQ(pages->currentIndex(), 0);
    EXPECT_EQ(pages->tabText(0), "S&creen");
    EXPECT_EQ(shown("Oven"), "71.50 °C");
    EXPECT_EQ(shown("Door"), "shut");
    EXPECT_EQ(shown("Motor"), "off");
    EXPECT_EQ(shown("Jog"), "off");
    EXPECT_TRUE(view("Press 1"));
    emit plc.readings({good(0, 250), good(1, 1)});
    passMs(200);
    EXPECT_EQ(shown("Oven"), "250.00 °C, ALARM high");
    EXPECT_EQ(shown("Motor"), "on");
}

TEST_F(ScreenPageInWindow, SaysOfEveryElementWhenItsValueIsOldOrBad)
{
    passMs(30000);
    for (const char* const label : {"Oven", "Motor", "Jog", "Start", "Door", "Temperature"})
        EXPECT_TRUE(view(label)->stateText().startsWith("stale: no newer reading")) << label;
    EXPECT_EQ(shown("Oven"), "71.50 °C, stale: no newer reading");
    EXPECT_FALSE(find<SwitchControl>("Motor")->isEnabled()) << "which way to switch?";
    emit plc.readings({bad(0, "refused"), bad(1, "refused"), bad(2, "refused")});
    passMs(0);
    EXPECT_EQ(shown("Oven"), "–, bad: refused");
    EXPECT_EQ(shown("Door"), "–, bad: refused");
    EXPECT_EQ(shown("Motor"), "–, bad: refused");
    inner->setCurrentIndex(1);
    for (const char* const label : {"Bar", "Dial", "Curve"})
        EXPECT_EQ(shown(label), "–, bad: refused") << label;
}

// Below the face, by its shape and not by its colour alone: pictures without colours must differ.
TEST_F(ScreenPageInWindow, PaintsGoodStaleAndBadDifferently)
{
    const auto picture = [](QWidget* of) {
        const int line = of->fontMetrics().height();
        const QRect area(0, of->height() - line, of->width(), line);
        return of->grab(area).toImage().convertToFormat(QImage::Format_Mono, Qt::ThresholdDither);
    };
    for (int page = 0; page < 2; ++page) {
        inner->setCurrentIndex(page);
        for (ElementView* each : window.findChildren<ElementView*>()) {
            if (each->element().tag < 0 || !each->isVisible())
                continue;
            emit plc.readings({good(0, 71.5), good(1, 1), good(2, 1)});
            passMs(0);
            const QImage good = picture(each);
            emit plc.readings({stale(0, "old"), stale(1, "old"), stale(2, "old")});
            passMs(0);
            const QImage stale = picture(each);
            emit plc.readings({bad(0, "old"), bad(1, "old"), bad(2, "old")});
            passMs(0);
            EXPECT_NE(good, stale) << qPrintable(each->accessibleName());
            EXPECT_NE(stale, picture(each)) << qPrintable(each->accessibleName());
        }
    }
}

TEST_F(ScreenPageInWindow, HoldsABitWhileTheMousePressesItsButton)
{
    press();
    EXPECT_EQ(sent(), "1");
    EXPECT_EQ(plc.writes[0].tag, 1);
    EXPECT_EQ(view("Jog")->stateText(), "writing…");
    QTest::mouseRelease(jog, Qt::LeftButton);
    EXPECT_EQ(sent(), "10");
    answer(0, Outcome::Done, 1);
    answer(1, Outcome::Done, 0);
    EXPECT_EQ(said(), "Done: motor.run was on, is now off (read back)");
    QTest::mouseClick(jog, Qt::RightButton);
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, HoldsABitWhileTheSpaceKeyIsDown)
{
    QTest::keyPress(jog, Qt::Key_Space);
    for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent repeat(type, Qt::Key_Space, Qt::NoModifier, " ", true);
        QApplication::sendEvent(jog, &repeat);
    }
    EXPECT_EQ(sent(), "1");
    QTest::keyRelease(jog, Qt::Key_Space);
    EXPECT_EQ(sent(), "10");
    QTest::keyClick(jog, Qt::Key_Return);
    EXPECT_EQ(sent(), "10");
    QTest::keyPress(jog, Qt::Key_Space);
    QTest::keyClick(jog, Qt::Key_Escape);
    EXPECT_EQ(sent(), "1010");
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
    QApplication::sendEvent(jog, &repeat);
    QTest::keyRelease(jog, Qt::Key_Space);
    EXPECT_EQ(sent(), "1010");
}

TEST_F(ScreenPageInWindow, ReleasesWhenTheMouseLeavesTheButton)
{
    press();
    QTest::mouseMove(jog, jog->rect().center() + QPoint(1, 1));
    EXPECT_EQ(sent(), "1");
    const auto move = [this](const QPoint& to) {
        QMouseEvent event(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(jog, &event);
    };
    move({-5, 5});
    EXPECT_EQ(sent(), "10");
    move(jog->rect().center());
    EXPECT_EQ(sent(), "10") << "to hold it again needs a new press";
    QTest::mouseRelease(jog, Qt::LeftButton);
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, ReleasesWhenTheMouseIsTakenAway)
{
    press();
    QEvent taken(QEvent::UngrabMouse);
    QApplication::sendEvent(jog, &taken);
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, ReleasesWhenTheFocusGoes)
{
    press();
    find<QLineEdit>("New value: Temperature")->setFocus();
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, ReleasesWhenAnotherWindowIsInFront)
{
    QWidget other;
    other.show();
    press();
    QApplication::setActiveWindow(&other);
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, ReleasesWhenAnotherPageComes)
{
    press();
    inner->setCurrentIndex(1);
    EXPECT_EQ(sent(), "10");
    inner->setCurrentIndex(0);
    press();
    pages->setCurrentIndex(1);
    EXPECT_EQ(sent(), "1010");
}

TEST_F(ScreenPageInWindow, ReleasesWhenTheWindowIsHidden)
{
    press();
    window.hide();
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, ReleasesWhenTheWindowEndsWithoutBeingClosed)
{
    auto other = std::make_unique<MainWindow>(plc, [this] { return nowMs; });
    other->openScreen(screenFile, true);
    emit plc.linkChanged(true, {});
    QTest::mousePress(other->findChild<HoldButton*>(), Qt::LeftButton);
    EXPECT_EQ(sent(), "1");
    other.reset();
    EXPECT_EQ(sent(), "10");
}

// Each reason by itself: elsewhere the focus goes at the same time.
TEST_F(ScreenPageInWindow, LetsGoOfAButtonThatNeverHadTheFocus)
{
    HoldButton button;
    button.setFocusPolicy(Qt::NoFocus);
    int held = 0, letGo = 0;
    QObject::connect(&button, &HoldButton::held, [&] { ++held; });
    QObject::connect(&button, &HoldButton::letGo, [&] { ++letGo; });
    button.show();
    QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_TRUE(button.isHeld());
    button.setEnabled(false);
    EXPECT_EQ(letGo, 1);
    button.setEnabled(true);
    EXPECT_FALSE(button.isHeld());
    QTest::mousePress(&button, Qt::LeftButton);
    button.hide();
    EXPECT_EQ(held, 2);
    EXPECT_EQ(letGo, 2);
}

TEST_F(ScreenPageInWindow, ReleasesAfterALostLinkWithABarUntilItIsConfirmed)
{
    press();
    emit plc.linkChanged(false, "no answer");
    EXPECT_EQ(sent(), "1");
    EXPECT_FALSE(jog->isEnabled());
    EXPECT_FALSE(jog->isDown());
    EXPECT_TRUE(texts("problemBar").startsWith("motor.run may still be on")) << said();
    EXPECT_FALSE(button("Close"));
    EXPECT_TRUE(view("Jog")->stateText().startsWith("RELEASE not confirmed"));
    emit plc.linkChanged(true, {});
    EXPECT_EQ(sent(), "10");
    EXPECT_TRUE(texts("problemBar").startsWith("motor.run may still be on"));
    QTest::mouseRelease(jog, Qt::LeftButton);
    answer(1, Outcome::Done, 0);
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
    EXPECT_EQ(sent(), "10");
}

TEST_F(ScreenPageInWindow, LetsNoRecipeBeginBeforeTheRelease)
{
    RecipeOrder order;
    order.act = RecipeOrder::Act::Compare;
    press();
    emit window.findChild<RecipePage*>()->ordered(order);
    EXPECT_TRUE(plc.recipes.isEmpty());
    QTest::mouseRelease(jog, Qt::LeftButton);
    answer(1, Outcome::Done, 0);
    emit window.findChild<RecipePage*>()->ordered(order);
    EXPECT_EQ(plc.recipes.size(), 1);
}

TEST_F(ScreenPageInWindow, TellsWhenThePlcHoldsABitThatWasReleased)
{
    press();
    QTest::mouseRelease(jog, Qt::LeftButton);
    for (int write = 1; write <= 3; ++write) {
        answer(write, Outcome::Failed, 1);
        passMs(1000);
    }
    EXPECT_TRUE(texts("problemBar").startsWith("motor.run is still on"));
    button("Close")->click();
    passMs(200);
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
}

TEST_F(ScreenPageInWindow, ClosesOnlyWhenTheReleaseIsConfirmed)
{
    press();
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(sent(), "10");
    answer(0, Outcome::Done, 1);
    EXPECT_TRUE(window.isVisible());
    answer(1, Outcome::Done, 0);
    QApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ScreenPageInWindow, ClosesInTheEndWithoutAConfirmation)
{
    press();
    emit plc.linkChanged(false, "no answer");
    EXPECT_FALSE(window.close());
    passMs(4999);
    EXPECT_TRUE(window.isVisible());
    passMs(1);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ScreenPageInWindow, ClosesAtOnceWhenNothingIsPressed)
{
    EXPECT_TRUE(window.close());
    EXPECT_EQ(sent(), "");
}

TEST_F(ScreenPageInWindow, ReleasesBeforeItShowsAFileThatHasChanged)
{
    press();
    write(QByteArray(panel).replace("Jog", "Inch"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return view("Inch") != nullptr; }, 30000));
    EXPECT_EQ(sent(), "10");
    EXPECT_FALSE(view("Jog"));
}

TEST_F(ScreenPageInWindow, FollowsAFileThatAnEditorReplaces)
{
    inner->setCurrentIndex(1);
    for (const char* const label : {"Inch", "Move"}) {
        path = folder.filePath("new.toml");
        write(QByteArray(panel).replace("Curve", label));
        QFile::remove(screenFile);
        ASSERT_TRUE(QFile::rename(path, screenFile));
        ASSERT_TRUE(QTest::qWaitFor([&] { return view(label) != nullptr; }, 30000)) << label;
        EXPECT_EQ(inner->currentIndex(), 1);
    }
    path = screenFile;
    write(panel);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view("Curve") != nullptr; }, 30000))
        << "changed in its place";
}

TEST_F(ScreenPageInWindow, TakesAFileThatIsThereAgain)
{
    auto* list = find<QPlainTextEdit>("Mistakes in the screen file");
    QFile::remove(screenFile);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->isVisible(); }, 30000));
    EXPECT_EQ(list->toPlainText(), screenFile + ": No such file or directory. The last good screen "
                                                "is still shown.");
    EXPECT_TRUE(view("Jog")) << "the last screen stays";
    write(QByteArray(panel).replace("Jog", "Inch"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view("Inch") != nullptr; }, 30000));
    EXPECT_FALSE(list->isVisible());
}

TEST_F(ScreenPageInWindow, ListsTheMistakesOfItsFileAndShowsTheRest)
{
    auto* list = find<QPlainTextEdit>("Mistakes in the screen file");
    EXPECT_FALSE(list->isVisible());
    write(QByteArray(panel).replace("\"door\"", "\"dor\"").replace("\"set\"", "\"sett\""));
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->isVisible(); }, 30000));
    EXPECT_EQ(list->toPlainText(),
              screenFile +
                  ", line 15, column 10: action must be \"momentary\" or \"set\" or \"reset\", "
                  "not 'sett'\n" +
                  screenFile + ", line 29, column 7: unknown tag 'dor'; did you mean 'door'?");
    EXPECT_EQ(texts("problemBar"), list->toPlainText().section('\n', 0, 0) +
                                       " (the first of 2 mistakes; the page Screen lists them)");
    EXPECT_FALSE(view("Door"));
    EXPECT_TRUE(view("Oven"));
    const QString before = list->toPlainText();
    write("[[page]]\ntitle = x\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->toPlainText() != before; }, 30000));
    EXPECT_TRUE(view("Oven")) << "the last screen stays";
    const QString broken = screenFile + ", line 2, column 9: cannot read 'title = x': a text "
                                        "stands in quotes, such as \"Press 1\". The last good "
                                        "screen is still shown.";
    const QString shown = "of the screen that is shown: ";
    EXPECT_EQ(list->toPlainText(),
              broken + '\n' + shown + QString(before).replace("\n", '\n' + shown));
    EXPECT_EQ(texts("problemBar"),
              broken + " (the first of 3 mistakes; the page Screen lists them)");
    write(panel);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !list->isVisible(); }, 30000));
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
}

TEST_F(ScreenPageInWindow, SetsAndSwitchesAtOnce)
{
    button("Start")->click();
    EXPECT_EQ(sent(), "1");
    answer(0, Outcome::Done, 1);
    auto* motor = find<SwitchControl>("Motor");
    QTest::mouseClick(motor, Qt::LeftButton);
    EXPECT_EQ(sent(), "11") << "the PLC still had it off";
    motor->click();
    EXPECT_EQ(sent(), "11") << "a result is awaited";
    answer(1, Outcome::Done, 1);
    emit plc.readings({good(1, 1)});
    passMs(0);
    QTest::keyClick(motor, Qt::Key_Space);
    EXPECT_EQ(sent(), "110");
    answer(2, Outcome::Unknown);
    EXPECT_EQ(said(), "UNKNOWN whether motor.run was written: why");
    EXPECT_EQ(shown("Motor"), "on, UNKNOWN");
    QTest::keyClick(motor, Qt::Key_Return);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "", true);
    QApplication::sendEvent(motor, &repeat);
    EXPECT_EQ(sent(), "1100");
    answer(3, Outcome::Done, 0);
    QApplication::sendEvent(motor, &repeat);
    EXPECT_EQ(sent(), "1100") << "a key that is held";
}

TEST_F(ScreenPageInWindow, WritesANumberOnEnterWithinItsLimits)
{
    auto* field = find<QLineEdit>("New value: Temperature");
    field->setFocus();
    EXPECT_EQ(view("Temperature")->stateText(), "0 °C to 200 °C");
    QTest::keyClicks(field, "201");
    EXPECT_EQ(view("Temperature")->stateText(), "above the maximum of 200 °C");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(sent(), "");
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(field->text(), "");
    QTest::keyClicks(field, " 80 ");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(sent(), "80");
    EXPECT_EQ(plc.writes[0].tag, 0);
    answer(0, Outcome::Refused);
    EXPECT_EQ(said(), "Not written: why");
    EXPECT_EQ(view("Temperature")->stateText(), "Not written");
    QTest::keyClick(field, Qt::Key_Return);
    answer(1, Outcome::Failed, 70);
    EXPECT_EQ(said(), "NOT as wanted: oven.temp is now 70.0 °C; why");
    EXPECT_EQ(field->text(), " 80 ");
    QTest::keyClick(field, Qt::Key_Return);
    answer(2, Outcome::Done, 80);
    EXPECT_EQ(said(), "Done: oven.temp was 1.0 °C, is now 80.0 °C (read back)");
    EXPECT_EQ(field->text(), "");
    pages->setCurrentIndex(1);
    EXPECT_EQ(texts("writeBar"), "Choose a row to write its value") << "it was not asked";
}

TEST_F(ScreenPageInWindow, SaysWhenAWriteWasDoneUntilTheLinkIsLost)
{
    button("Start")->click();
    answer(0, Outcome::Done, 1);
    const QString time = QDateTime::fromMSecsSinceEpoch(nowMs).time().toString("HH:mm:ss");
    EXPECT_EQ(texts("screenPage"), time + "  Done: motor.run was on, is now on (read back)");
    emit plc.linkChanged(false, "no answer");
    EXPECT_EQ(texts("screenPage"), "");
    emit plc.linkChanged(true, {});
    button("Start")->click();
    answer(1, Outcome::Unknown);
    emit plc.linkChanged(false, "no answer");
    EXPECT_EQ(said(), "UNKNOWN whether motor.run was written: why") << "must still be known";
}

TEST_F(ScreenPageInWindow, WritesNothingWhileThePlcIsSilent)
{
    emit plc.linkChanged(false, "no answer");
    EXPECT_FALSE(button("Start")->isEnabled());
    EXPECT_FALSE(find<SwitchControl>("Motor")->isEnabled());
    EXPECT_FALSE(find<QLineEdit>("New value: Temperature")->isEnabled());
    press();
    EXPECT_EQ(sent(), "");
    emit plc.linkChanged(true, {});
    EXPECT_TRUE(button("Start")->isEnabled());
}

TEST_F(ScreenPageInWindow, GoesFromElementToElementByTab)
{
    QStringList names;
    for (int step = 0; step < 4; ++step) {
        names += window.focusWidget()->accessibleName();
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(names, (QStringList{"Jog", "Start", "Motor", "New value: Temperature"}));
}

TEST_F(ScreenPageInWindow, HasNamesAndStatesOnEverythingForScreenReaders)
{
    for (ElementView* each : window.findChildren<ElementView*>())
        EXPECT_FALSE(each->accessibleName().isEmpty());
    EXPECT_EQ(jog->accessibleName(), "Jog");
    EXPECT_EQ(jog->accessibleDescription(), "off");
    EXPECT_EQ(find<QLineEdit>("New value: Temperature")->accessibleDescription(), "71.5 °C");
}

// "RELEASE not confirmed" in the smallest place, where the label makes room for it.
TEST_F(ScreenPageInWindow, NeverCutsAWordThatMustBeKnown)
{
    emit plc.readings({good(0, 250), good(1, 1)});
    press();
    emit plc.linkChanged(false, "no answer");
    for (const double scale : {1.0, 2.5}) {
        QFont font;
        font.setPointSizeF(font.pointSizeF() * scale);
        for (const char* const label : {"Jog", "Motor", "Temperature", "Oven"}) {
            view(label)->setFont(font);
            view(label)->resize(view(label)->minimumSizeHint());
            const QString lines = view(label)->shownLines().join(' ');
            EXPECT_TRUE(lines.startsWith("STILL ON?") || lines.startsWith("ALARM high"))
                << lines.toStdString();
            EXPECT_LE(view(label)->shownLines().size(), 2);
            for (const QString& line : view(label)->shownLines())
                EXPECT_LE(QFontMetrics(font).horizontalAdvance(line),
                          view(label)->width() - QFontMetrics(font).height());
        }
        EXPECT_FALSE(view("Oven")->showsLabelAbove());
    }
    view("Jog")->setFont(QFont());
    view("Jog")->resize(1000, 100);
    EXPECT_EQ(view("Jog")->shownLines(), QStringList("on, RELEASE not confirmed"));
    view("Oven")->resize(1000, 200);
    EXPECT_TRUE(view("Oven")->showsLabelAbove());
}

TEST_F(ScreenPageInWindow, LeavesOutTheReasonWhereItHasNoRoom)
{
    emit plc.readings({bad(0, "the cable of this machine is broken somewhere")});
    passMs(0);
    view("Oven")->resize(view("Oven")->minimumSizeHint());
    EXPECT_EQ(view("Oven")->shownLines(), QStringList("bad"));
    EXPECT_TRUE(view("Oven")->toolTip().endsWith("bad: the cable of this machine is broken "
                                                 "somewhere"));
    view("Oven")->resize(300, 100);
    EXPECT_EQ(view("Oven")->shownLines().join(' '), view("Oven")->stateText());
}

TEST_F(ScreenPageInWindow, WritesLargeButtonsInLargeLetters)
{
    const auto sizeAt = [this](int width, int height) {
        view("Jog")->resize(width, height);
        return jog->font().pointSizeF() / window.font().pointSizeF();
    };
    EXPECT_DOUBLE_EQ(sizeAt(100, 50), 1);
    EXPECT_DOUBLE_EQ(sizeAt(1000, 1000), 2);
    EXPECT_DOUBLE_EQ(sizeAt(40, 1000), 1) << "its label must fit";
}

// Eight rows on a panel of 600 lines, below the tabs of several pages.
TEST_F(ScreenPageInWindow, NeedsLittleHeightForARow)
{
    const QWidget* grid = view("Oven")->parentWidget();
    EXPECT_LT(grid->minimumSizeHint().height(), 8 * (3.3 * grid->fontMetrics().height() + 4));
}

TEST(ScalesOfElements, HaveRoundNumbersBetweenTheirEnds)
{
    const auto texts = [](double least, double most, int upTo) {
        QStringList all;
        for (const ScaleMark& mark : scaleMarks(least, most, upTo))
            all += mark.text;
        return all.join(' ').toStdString();
    };
    EXPECT_EQ(texts(0, 1000, 11), "0 100 200 300 400 500 600 700 800 900 1000");
    EXPECT_EQ(texts(0, 1000, 6), "0 200 400 600 800 1000");
    EXPECT_EQ(texts(0, 1000, 3), "0 500 1000");
    EXPECT_EQ(texts(0, 1000, 2), "0 1000");
    EXPECT_EQ(texts(-10, 250.5, 6), "-10 100 200 250.5") << "none close to an end";
    EXPECT_EQ(texts(-0.3, 0.3, 7), "-0.3 -0.2 -0.1 0 0.1 0.2 0.3");
    EXPECT_EQ(texts(0, 2000000, 3), "0 1000000 2000000");
    EXPECT_EQ(texts(0, 1234567, 2), "0 1234567");
    EXPECT_EQ(texts(1e17, 1e17 + 16, 5), "1e+17 1e+17");
    EXPECT_EQ(texts(-1.7e308, 1.7e308, 5), "-1.7e+308 1.7e+308");
    EXPECT_EQ(scaleMarks(100, 300, 3)[1].part, 0.5);
}

// Nothing but the numbers tells one scale from another while there is no value.
TEST(ScalesOfElements, ShowTheirNumbersWhereTheyHaveRoom)
{
    ValueBook book(someTags());
    const auto isNumbered = [&](ElementKind kind, QSize size, double scale) {
        QVector<QImage> images;
        for (const double most : {100.0, 1000.0}) {
            Element element;
            element.kind = kind;
            element.tag = 5;
            element.min = 0;
            element.max = most;
            QImage image(size, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            QFont font = painter.font();
            font.setPointSizeF(font.pointSizeF() * scale);
            painter.setFont(font);
            paintFace(painter, image.rect(), faceOf(element, book, nowMs), QPalette());
            images += image;
        }
        return images[0] != images[1];
    };
    for (const ElementKind kind : {ElementKind::Bar, ElementKind::Dial}) {
        EXPECT_TRUE(isNumbered(kind, {300, 150}, 1)) << int(kind);
        EXPECT_TRUE(isNumbered(kind, {750, 400}, 2.5)) << int(kind);
        EXPECT_FALSE(isNumbered(kind, {60, 24}, 1)) << int(kind);
    }
    EXPECT_TRUE(isNumbered(ElementKind::Bar, {80, 200}, 1)) << "upright";
    EXPECT_FALSE(isNumbered(ElementKind::Bar, {30, 200}, 1));
    EXPECT_FALSE(isNumbered(ElementKind::Bar, {80, 200}, 2.5));
}

TEST_F(ScreenPageInWindow, HasCellsOfOneSize)
{
    inner->setCurrentIndex(1);
    for (const int height : {600, 300, 1080}) {
        window.resize(800, height);
        QApplication::processEvents();
        const int row = view("Dial")->y() - view("Bar")->y();
        EXPECT_EQ(view("Curve")->y() - view("Dial")->y(), 3 * row);
        EXPECT_EQ(view("Dial")->height() - view("Bar")->height(), 2 * row);
        EXPECT_GE(view("Bar")->height(), view("Bar")->minimumSizeHint().height());
    }
}

TEST_F(ScreenPageInWindow, GrowsWithTheFont)
{
    const int before = view("Oven")->minimumSizeHint().height();
    QFont font = window.font();
    font.setPointSizeF(font.pointSizeF() * 2.5);
    window.setFont(font);
    EXPECT_GE(view("Oven")->minimumSizeHint().height(), 2 * before);
}

using PlainScreenInWindow = Window;

TEST_F(PlainScreenInWindow, IsThereWithoutAFile)
{
    auto* page = find<QTabWidget>("Pages");
    EXPECT_EQ(page->currentIndex(), 0);
    EXPECT_EQ(page->tabText(1), "S&creen");
    page->setCurrentIndex(1);
    emit plc.linkChanged(true, {});
    emit plc.readings({good(0, 71.5)});
    passMs(0);
    EXPECT_EQ(find<ElementView>("oven.temp")->accessibleDescription(), "71.5 °C");
    EXPECT_TRUE(find<SwitchControl>("motor.run"));
}
