// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipes: the file beside the PLC, down and up, and what is told of a transfer that did not come
// to its end.

#include "tests/tools/fxview/window_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/fxview/models/recipe_notes.h"
#include "tools/fxview/plc/recipe_orders.h"

#include <QFileDialog>
#include <QTemporaryDir>

using namespace fxview;
using namespace view_tests;
using Act = RecipeOrder::Act;
using State = RecipeValue::State;

namespace {

const QString fileName = QStringLiteral("/recipes/oven.csv");

// Six registers in two entries: D100 of the oven, and its neighbours.
QVector<fxtools::RegisterRun> ovenRecipe()
{
    return {{tool_tests::range("D100:4"), {800, 2, 3, 65535}},
            {tool_tests::range("D10:2"), {5, 6}}};
}

struct RecipeInWindow : Window
{
    RecipePage* page = window.findChild<RecipePage*>();
    QTableView* table = find<QTableView>("Recipe");

    RecipeInWindow()
    {
        window.findChild<QTabWidget*>()->setCurrentWidget(page);
        emit plc.linkChanged(true, {});
    }

    QString said() const { return page->findChild<QLabel*>("recipeSaid")->text(); }
    QString bar() const { return texts("problemBar"); }
    QString cell(int row, RecipeTable::Column column) const
    {
        return table->model()->index(row, column).data().toString();
    }
    const RecipeOrder& order() const { return plc.recipes.last(); }
    RecipeResult result() const { return resultOf(order()); }

    void open(const QString& objection = {})
    {
        QTest::keyClicks(find<QLineEdit>("Recipe file"), fileName);
        QTest::keyClick(find<QLineEdit>("Recipe file"), Qt::Key_Return);
        ASSERT_EQ(order().act, Act::Open);
        RecipeResult opened = result();
        opened.recipe = ovenRecipe();
        opened.values = valuesOf(opened.recipe);
        opened.values[1].objection = objection;
        emit plc.recipeEnded(opened);
    }

    // The PLC holds the file's values, but another one in the first register.
    RecipeResult comparison() const
    {
        RecipeResult compared = result();
        for (RecipeValue& value : compared.values)
            value.inPlc = value.inFile;
        compared.values[0].inPlc = 815;
        return compared;
    }

    void openAndCompare()
    {
        open();
        ASSERT_EQ(order().act, Act::Compare);
        emit plc.recipeEnded(comparison());
    }

    void startDownload()
    {
        openAndCompare();
        button("Download…")->click();
        button("Yes, write")->click();
        ASSERT_EQ(order().act, Act::Download);
    }

    // The first entry written, of the second nothing known.
    RecipeResult halfDone(const QString& problem) const
    {
        RecipeResult half = result();
        fxtools::RecipeOutcome outcome;
        outcome.entries = 2;
        outcome.transferred = 1;
        outcome.problem = fxtools::ReplyVerdict::Silence;
        outcome.isUncertain = true;
        noteOutcome(half, outcome);
        half.problem = problem;
        return half;
    }

    RecipeResult wholeDone() const
    {
        RecipeResult whole = result();
        for (RecipeValue& value : whole.values) {
            value.state = State::Written;
            value.inPlc = value.inFile;
        }
        return whole;
    }
};

}  // namespace

TEST_F(RecipeInWindow, StandsBesideThePlc)
{
    openAndCompare();
    EXPECT_EQ(order().recipe.size(), 2);
    EXPECT_EQ(table->model()->rowCount(), 6);
    EXPECT_EQ(cell(0, RecipeTable::Address), "D100");
    EXPECT_EQ(cell(0, RecipeTable::TagName), "oven.temp");
    EXPECT_EQ(cell(0, RecipeTable::InFile), "800");
    EXPECT_EQ(cell(0, RecipeTable::InPlc), "815");
    EXPECT_EQ(cell(0, RecipeTable::Difference), QString::fromUtf8("≠ the PLC has 15 more"));
    EXPECT_EQ(cell(1, RecipeTable::Difference), "= same");
    EXPECT_EQ(cell(3, RecipeTable::InFile), "-1");
    EXPECT_EQ(said(), "oven.csv: 6 registers; 1 differ from the PLC, 0 were not read");
    EXPECT_EQ(find<QLineEdit>("Registers to upload")->text(), "D100:4 D10:2");
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
}

TEST_F(RecipeInWindow, ShowsTheAgeOfWhatThePlcHeld)
{
    openAndCompare();
    const auto header = [this] {
        return table->model()->headerData(RecipeTable::InPlc, Qt::Horizontal).toString();
    };
    EXPECT_EQ(header(), "PLC, 0 s ago");
    const auto isDimmed = [this] {
        return table->model()->index(0, RecipeTable::InPlc).data(Qt::ForegroundRole).isValid();
    };
    EXPECT_FALSE(isDimmed());
    passMs(12000);
    EXPECT_EQ(header(), "PLC, 12 s ago");
    EXPECT_TRUE(isDimmed());
}

TEST_F(RecipeInWindow, NamesWhatIsWrongInItsFile)
{
    QTest::keyClicks(find<QLineEdit>("Recipe file"), fileName);
    button("Open")->click();
    emit plc.recipeEnded(refusedRecipe(order(), "oven.csv, line 2: 'x' is not a number"));
    EXPECT_EQ(said(), "Not opened: oven.csv, line 2: 'x' is not a number");
    EXPECT_EQ(table->model()->rowCount(), 0);
    EXPECT_FALSE(button("Download…")->isEnabled());
}

TEST_F(RecipeInWindow, GoesDownWhenThatIsConfirmed)
{
    openAndCompare();
    const int before = plc.recipes.size();
    button("Download…")->click();
    EXPECT_EQ(said(), "Write 6 values of oven.csv to the PLC? 1 differ from what it held, 0 were "
                      "not read.");
    EXPECT_EQ(QApplication::focusWidget(), button("No")) << "Enter alone writes nothing";
    button("No")->click();
    EXPECT_EQ(said(), "Nothing was written");
    EXPECT_EQ(plc.recipes.size(), before);
    button("Download…")->click();
    button("Yes, write")->click();
    ASSERT_EQ(plc.recipes.size(), before + 1);
    EXPECT_EQ(order().recipe.size(), 2);
    emit plc.recipeMoved(order().id, 1, 2, false);
    EXPECT_EQ(page->findChild<QProgressBar*>()->value(), 1);
    emit plc.recipeMoved(order().id, 2, 2, false);
    emit plc.recipeMoved(order().id, 0, 2, true);
    EXPECT_EQ(said(), QString::fromUtf8("Reading oven.csv back…"));
    emit plc.recipeEnded(wholeDone());
    EXPECT_EQ(said(), "Done: all 6 values of oven.csv are in the PLC, read back");
    EXPECT_EQ(cell(0, RecipeTable::State), "written and read back");
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
}

TEST_F(RecipeInWindow, ThatIsInThePlcByHalfIsToldUntilItIsWhole)
{
    startDownload();
    emit plc.recipeEnded(halfDone("no reply in time"));
    const QString text = QString::fromUtf8(
        "Only a part of oven.csv is in the PLC (no reply in time). written: 4 (D100 … D103); "
        "UNKNOWN whether written: 2 (D10 … D11). Download it again, or write the old values back.");
    EXPECT_EQ(said(), text);
    EXPECT_EQ(bar(), text);
    EXPECT_EQ(cell(0, RecipeTable::State), "written, not read back");
    EXPECT_EQ(cell(4, RecipeTable::State), "UNKNOWN whether written");
    button("Compare")->click();
    emit plc.recipeEnded(comparison());
    EXPECT_EQ(bar(), text) << "it lasts";
    button("Download…")->click();
    button("Yes, write")->click();
    emit plc.recipeEnded(wholeDone());
    EXPECT_FALSE(window.findChild<QWidget*>("problemBar")->isVisible());
}

TEST_F(RecipeInWindow, ThatThePlcChangedIsTold)
{
    startDownload();
    RecipeResult other = wholeDone();
    other.values[5].inPlc = 7;
    emit plc.recipeEnded(other);
    EXPECT_EQ(bar(), "All 6 values of oven.csv were written, but the PLC holds others in D11. Does "
                     "its program write there?");
    EXPECT_EQ(cell(5, RecipeTable::State), "written, but read back DIFFERENT");
}

TEST_F(RecipeInWindow, ThatCouldNotBeReadBackIsTold)
{
    startDownload();
    RecipeResult unseen = wholeDone();
    unseen.values[5].inPlc.reset();
    unseen.notCompared = "no reply in time";
    emit plc.recipeEnded(unseen);
    EXPECT_EQ(bar(), "All 6 values of oven.csv were written, but not all could be read back: no "
                     "reply in time. Compare again.");
}

TEST_F(RecipeInWindow, ThatIsSeenToBeWholeIsTroubleNoMore)
{
    startDownload();
    emit plc.recipeEnded(halfDone("no reply in time"));
    button("Compare")->click();
    RecipeResult compared = comparison();
    compared.values[0].inPlc = compared.values[0].inFile;
    compared.notCompared = "no reply";
    emit plc.recipeEnded(compared);
    EXPECT_NE(bar(), "") << "not all was seen";
    button("Compare")->click();
    compared.id = order().id;
    compared.notCompared.clear();
    emit plc.recipeEnded(compared);
    EXPECT_EQ(bar(), "");
}

TEST_F(RecipeInWindow, NamesNeighboursTogether)
{
    QTest::keyClicks(find<QLineEdit>("Recipe file"), fileName);
    button("Open")->click();
    RecipeResult opened = result();
    opened.recipe = {{tool_tests::range("D100:2"), {1, 2}},
                     {tool_tests::range("D102:3"), {3, 4, 5}}};
    opened.values = valuesOf(opened.recipe);
    emit plc.recipeEnded(opened);
    EXPECT_EQ(find<QLineEdit>("Registers to upload")->text(), "D100:5");
}

TEST_F(RecipeInWindow, ThatWasRefusedAtOnceLeftNothing)
{
    startDownload();
    emit plc.recipeEnded(refusedRecipe(order(), "not sent: the link is not open yet"));
    EXPECT_EQ(said(), "Nothing of oven.csv was written: not sent: the link is not open yet");
    EXPECT_EQ(cell(0, RecipeTable::State), "NOT written");
    EXPECT_EQ(bar(), "");
}

TEST_F(RecipeInWindow, IsCancelledByAButton)
{
    startDownload();
    button("Cancel")->click();
    EXPECT_EQ(plc.cancelled, QVector<int>({order().id}));
    EXPECT_TRUE(page->isDownloading()) << "until the PLC's thread has told what it did";
    emit plc.recipeEnded(halfDone("interrupted"));
    EXPECT_TRUE(bar().startsWith("Only a part of oven.csv")) << qPrintable(bar());
}

TEST_F(RecipeInWindow, IsAnsweredByItsOwnResultOnly)
{
    startDownload();
    RecipeResult other = wholeDone();
    other.id -= 1;
    emit plc.recipeEnded(other);
    EXPECT_TRUE(page->isDownloading());
}

TEST_F(RecipeInWindow, IsStillThereByHalfWhenTheNextAttemptWritesNothing)
{
    startDownload();
    emit plc.recipeEnded(halfDone("no reply in time"));
    const QString half = bar();
    button("Download…")->click();
    button("Yes, write")->click();
    RecipeResult nothing = refusedRecipe(order(), "refused by the PLC (NAK)");
    emit plc.recipeEnded(nothing);
    EXPECT_EQ(bar(), half);
}

TEST_F(RecipeInWindow, KeepsTheWindowThatIsClosedInTheMiddle)
{
    QTemporaryDir folder;
    const QString notes = folder.filePath("recipes.txt");
    window.keepRecipeNotesIn(notes);
    startDownload();
    emit plc.recipeMoved(order().id, 1, 2, false);
    EXPECT_FALSE(window.close());
    EXPECT_EQ(plc.cancelled.size(), 1);
    const QString known = QString::fromUtf8(
        "The window ended while oven.csv was written to the PLC. Written: D100 … D103. UNKNOWN "
        "whether written: D10 … D11. Download it again, or compare.");
    EXPECT_EQ(RecipeNotes(notes).text(), known);
    EXPECT_TRUE(window.close()) << "who insists is not kept";
    FakePlc again(someTags());
    MainWindow next(again, [] { return view_tests::nowMs; });
    next.keepRecipeNotesIn(notes);
    next.show();
    const auto* bar = next.findChild<ProblemBar*>();
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->findChildren<QLabel*>().last()->text(), known);
    for (QPushButton* close : bar->findChildren<QPushButton*>())
        close->click();
    EXPECT_FALSE(QFile::exists(notes)) << "what was read is done with";
}

TEST_F(RecipeInWindow, ClosesTheWindowAfterItsEnd)
{
    startDownload();
    EXPECT_FALSE(window.close());
    emit plc.recipeEnded(halfDone("interrupted"));
    EXPECT_TRUE(bar().startsWith("Only a part of oven.csv"));
    EXPECT_TRUE(window.close());
}

TEST_F(RecipeInWindow, TellsWhenTheDiskTakesNoNotes)
{
    window.keepRecipeNotesIn("/no/such/folder/recipes.txt");
    startDownload();
    EXPECT_TRUE(bar().contains("Do not close the window")) << qPrintable(bar());
}

TEST_F(RecipeInWindow, IsNotWrittenWhereATagForbidsIt)
{
    open("the tag pump10 is read-only");
    emit plc.recipeEnded([this] {
        RecipeResult compared = result();
        compared.values[1].objection = "the tag pump10 is read-only";
        return compared;
    }());
    EXPECT_FALSE(button("Download…")->isEnabled());
    EXPECT_EQ(cell(1, RecipeTable::State), "may not be written: the tag pump10 is read-only");
    EXPECT_TRUE(said().endsWith("May not be downloaded: the tag pump10 is read-only"));
}

TEST_F(RecipeInWindow, StaysAsItIsWhileThePlcIsSilent)
{
    openAndCompare();
    button("Download…")->click();
    emit plc.linkChanged(false, "no reply");
    EXPECT_FALSE(button("Yes, write"));
    EXPECT_EQ(said(), "Nothing was written");
    for (const char* text : {"Compare", "Download…", "Upload…"})
        EXPECT_FALSE(button(text)->isEnabled()) << text;
    EXPECT_TRUE(button("Open")->isEnabled());
}

TEST_F(RecipeInWindow, ComesUpIntoAFileThatIsNew)
{
    QTemporaryDir folder;
    QTest::keyClicks(find<QLineEdit>("Registers to upload"), "D100:4 D10:2");
    EXPECT_FALSE(button("Upload…")->isEnabled()) << "into what?";
    QTest::keyClicks(find<QLineEdit>("Recipe file"), folder.filePath("new.csv"));
    button("Upload…")->click();
    ASSERT_EQ(order().act, Act::Upload);
    EXPECT_EQ(order().registers, "D100:4 D10:2");
    EXPECT_FALSE(order().mayReplace);
    RecipeResult up = result();
    up.recipe = ovenRecipe();
    up.values = valuesOf(up.recipe);
    for (RecipeValue& value : up.values)
        value.inPlc = value.inFile;
    emit plc.recipeEnded(up);
    EXPECT_EQ(said(), "Done: 6 values of the PLC are in " + order().file + ", compared");
    EXPECT_EQ(table->model()->rowCount(), 6);
}

TEST_F(RecipeInWindow, ThatChangedWhileItCameUpIsTold)
{
    RecipeResult up;
    up.recipe = ovenRecipe();
    up.values = valuesOf(up.recipe);
    up.notCompared = "no reply";
    EXPECT_EQ(uploadText("up.csv", up), "6 values of the PLC are in up.csv, but not all could be "
                                        "compared afterwards: no reply");
    up.notCompared.clear();
    up.values[5].inPlc = 7;
    EXPECT_EQ(uploadText("up.csv", up), "6 values of the PLC are in up.csv, but the PLC now holds "
                                        "others in D11. Does its program write there?");
}

TEST_F(RecipeInWindow, IsTheFileThatIsNamed)
{
    openAndCompare();
    QTest::keyClicks(find<QLineEdit>("Recipe file"), "2");
    EXPECT_FALSE(button("Download…")->isEnabled()) << "it would write the other one";
    EXPECT_FALSE(button("Compare")->isEnabled());
    EXPECT_EQ(said(), "Open the file first: the table still shows " + fileName);
    QTest::keyClick(find<QLineEdit>("Recipe file"), Qt::Key_Backspace);
    EXPECT_TRUE(button("Download…")->isEnabled());
}

TEST_F(RecipeInWindow, HasTheAgeOfItsOwnReadingBack)
{
    const auto readBackAfter12s = [this] {
        button("Download…")->click();
        button("Yes, write")->click();
        passMs(12000);
        emit plc.recipeMoved(order().id, 0, 2, true);
        emit plc.recipeEnded(wholeDone());
        return table->model()->headerData(RecipeTable::InPlc, Qt::Horizontal).toString();
    };
    openAndCompare();
    EXPECT_EQ(readBackAfter12s(), "PLC, 0 s ago");
    EXPECT_EQ(readBackAfter12s(), "PLC, 0 s ago");
    passMs(1000);
    EXPECT_EQ(table->model()->headerData(RecipeTable::InPlc, Qt::Horizontal), "PLC, 1 s ago");
}

TEST_F(RecipeInWindow, AsksBeforeItReplacesAFile)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("old.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QTest::keyClicks(find<QLineEdit>("Registers to upload"), "D100");
    QTest::keyClicks(find<QLineEdit>("Recipe file"), file.fileName());
    button("Upload…")->click();
    EXPECT_TRUE(plc.recipes.isEmpty());
    EXPECT_EQ(said(),
              file.fileName() + " exists. Replace it by the values that the PLC holds in D100?");
    button("No")->click();
    EXPECT_TRUE(plc.recipes.isEmpty());
    button("Upload…")->click();
    button("Yes, replace")->click();
    ASSERT_EQ(plc.recipes.size(), 1);
    EXPECT_TRUE(order().mayReplace);
    emit plc.recipeEnded(refusedRecipe(order(), "no reply in time"));
    EXPECT_EQ(said(), "Nothing was uploaded: no reply in time. The file is as it was.");
}

TEST_F(RecipeInWindow, ChoosesItsFileBesideTheWindow)
{
    button("Browse…")->click();
    auto* dialog = page->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(dialog->isModal());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    emit dialog->fileSelected(fileName);
    EXPECT_EQ(find<QLineEdit>("Recipe file")->text(), fileName);
}

TEST_F(RecipeInWindow, NotesSeveralRecipes)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("recipes.txt");
    RecipeNotes notes(path);
    EXPECT_EQ(notes.set("a.csv", "a is half\nthere"), "");
    EXPECT_EQ(notes.set("b.csv", "b too"), "");
    EXPECT_EQ(RecipeNotes(path).text(), "a is half there\nb too");
    EXPECT_EQ(notes.set("a.csv", {}), "");
    EXPECT_EQ(RecipeNotes(path).text(), "b too");
    EXPECT_EQ(notes.clear(), "");
    EXPECT_FALSE(QFile::exists(path));
}
