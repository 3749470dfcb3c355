// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The texts of the window in both languages: none is left in English, and no two controls that
// are there at once have the same key.

#include "tests/tools/fxview/window_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/diagnosis.h"
#include "tools/fxview/widgets/language.h"

#include <QAction>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTranslator>

using namespace fxview;
using namespace view_tests;

namespace {

// A window in one of the languages, in front of a simulated PLC.
struct Spoken
{
    explicit Spoken(const QString& language) : m_before(translators())
    {
        useLanguage(*qApp, language);
        plc.simulated = true;
        window = std::make_unique<MainWindow>(plc, [] { return nowMs + 1000; });
        window->show();
    }
    ~Spoken()
    {
        window.reset();
        for (QTranslator* translator : translators()) {
            if (!m_before.contains(translator))
                delete translator;
        }
    }

    QList<QTranslator*> translators() const { return qApp->findChildren<QTranslator*>(); }
    QPushButton* buttonOf(const char* source) const
    {
        const QString text = WriteBar::tr(source);
        for (QPushButton* button : window->findChild<WriteBar*>()->findChildren<QPushButton*>()) {
            if (button->text() == text)
                return button;
        }
        return nullptr;
    }
    void beginToWrite() const
    {
        window->findChild<QTableView*>()->selectRow(0);
        window->findChild<WriteBar*>()->findChild<QLineEdit*>()->setText("80");
        buttonOf("&Write…")->click();
    }

    FakePlc plc{someTags()};
    std::unique_ptr<MainWindow> window;

private:
    QList<QTranslator*> m_before;
};

void addCells(QStringList& texts, const QAbstractItemModel& model)
{
    for (int column = 0; column < model.columnCount(); ++column) {
        texts += model.headerData(column, Qt::Horizontal).toString();
        for (int row = 0; row < model.rowCount(); ++row) {
            texts += model.index(row, column).data().toString();
            texts += model.index(row, column).data(Qt::ToolTipRole).toString();
        }
    }
}

QStringList textsOf(QWidget& widget)
{
    QStringList texts = {widget.windowTitle(), widget.accessibleName(), widget.toolTip()};
    for (const QAction* action : widget.actions())
        texts += action->text();
    if (const auto* label = qobject_cast<QLabel*>(&widget))
        texts += label->text();
    if (const auto* button = qobject_cast<QAbstractButton*>(&widget))
        texts += button->text();
    if (const auto* field = qobject_cast<QLineEdit*>(&widget))
        texts += field->placeholderText();
    if (const auto* box = qobject_cast<QComboBox*>(&widget))
        addCells(texts, *box->model());
    if (const auto* view = qobject_cast<QAbstractItemView*>(&widget); view && view->model())
        addCells(texts, *view->model());
    if (const auto* lines = qobject_cast<QPlainTextEdit*>(&widget))
        texts += lines->toPlainText().split('\n');
    if (const auto* tabs = qobject_cast<QTabBar*>(&widget)) {
        for (int tab = 0; tab < tabs->count(); ++tab)
            texts += tabs->tabText(tab);
    }
    return texts;
}

void addTexts(QSet<QString>& all, const MainWindow& window)
{
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        for (const QString& text : textsOf(*widget))
            all += text;
    }
}

LineReport reportWith(fxtools::ReplyVerdict verdict)
{
    LineReport report;
    report.statistics.verdicts[fxtools::ReplyVerdict::Good] = 50;
    report.statistics.verdicts[verdict] = 50;
    report.statistics.linksLost = 2;
    report.verdict = fxtools::meaning({fxtools::TcpSettings(), "press1", true, false,
                                       fxtools::checkOf(report.statistics, false)});
    return report;
}

void takeAllReports(QSet<QString>& texts, Spoken& shown)
{
    for (const fxtools::ReplyVerdict verdict : fxtools::allVerdicts()) {
        emit shown.plc.lineReport(reportWith(verdict));
        fxtools::Exchange exchange;
        exchange.verdict = verdict;
        exchange.kind = fxtools::ExchangeKind::CyclicRead;
        emit shown.plc.exchanges({exchange});
        addTexts(texts, *shown.window);
    }
}

void takeAllResults(QSet<QString>& texts, Spoken& shown)
{
    using Outcome = WriteResult::Outcome;
    int id = 0;
    for (const Outcome outcome :
         {Outcome::Done, Outcome::Refused, Outcome::Failed, Outcome::Unknown}) {
        shown.beginToWrite();
        addTexts(texts, *shown.window);
        shown.buttonOf("&Yes, write")->click();
        addTexts(texts, *shown.window);
        emit shown.plc.written({++id, 0, outcome, 70, 80, "?"});
        addTexts(texts, *shown.window);
    }
}

// In all the states that a test can bring about.
QSet<QString> textsIn(const QString& language)
{
    QSet<QString> texts;
    Spoken shown(language);
    texts += shown.window->windowTitle();
    addTexts(texts, *shown.window);
    shown.window->findChild<QTabWidget*>()->setCurrentWidget(shown.window->findChild<LinePage*>());
    emit shown.plc.linkChanged(true, {});
    emit shown.plc.readings({good(0, 191), good(1, 1), bad(2, "?"), good(3, ""), good(4, 1)});
    shown.window->showMoment();
    takeAllReports(texts, shown);
    takeAllResults(texts, shown);
    for (int row = 0; row < shown.plc.tags().size(); ++row) {
        shown.window->findChild<QTableView*>()->selectRow(row);
        addTexts(texts, *shown.window);
    }
    shown.window->tellOfMistakes("?");
    addTexts(texts, *shown.window);
    emit shown.plc.linkChanged(false, "?");
    addTexts(texts, *shown.window);
    return texts;
}

// Names, addresses, units, frames; words that are the same in German, and two of Qt's.
bool maySoundAlike(const QString& text)
{
    static const QRegularExpression noWord("^[^a-zäöüß]*$|^[^a-z]*[a-z]?( [a-z]{1,3})?$",
                                           QRegularExpression::CaseInsensitiveOption);
    static const QStringList alike = {"Name",        "Block",       "Filter", "B − A",
                                      "CSV",         "SVG",         "PNG",    "press1 – fxview",
                                      "Scroll Left", "Scroll Right"};
    if (noWord.match(text).hasMatch() || alike.contains(text))
        return true;
    for (const fxtools::Tag& tag : someTags()) {
        if (text.contains(tag.name) || text == tag.description || text.contains(tag.asked.text()))
            return true;
    }
    return false;
}

QStringList captionsOf(const QWidget& widget)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        return {button->text()};
    QStringList captions;
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        for (int tab = 0; tab < tabs->count(); ++tab)
            captions += tabs->tabText(tab);
    }
    return captions;
}

bool isOnAnotherPage(const QTabWidget& pages, int page, const QWidget* widget)
{
    for (int other = 0; other < pages.count(); ++other) {
        if (other != page && pages.widget(other)->isAncestorOf(widget))
            return true;
    }
    return false;
}

struct WindowIn : testing::TestWithParam<const char*>
{
    // By page and letter, the control that has it.
    QMap<QString, const QWidget*> keys;

    void takeKeys(const MainWindow& window)
    {
        const auto& pages = *window.findChild<QTabWidget*>();
        for (int page = 0; page < pages.count(); ++page) {
            for (const QWidget* widget : window.findChildren<QWidget*>()) {
                if (!isOnAnotherPage(pages, page, widget))
                    takeKeysOf(*widget, pages.tabText(page));
            }
        }
    }
    void takeKeysOf(const QWidget& widget, const QString& page)
    {
        QStringList own;
        for (const QString& caption : captionsOf(widget)) {
            const QString key = QKeySequence::mnemonic(caption).toString();
            if (key.isEmpty())
                continue;
            const QWidget*& owner = keys[page + ": " + key];
            EXPECT_TRUE(!own.contains(key) && (owner == nullptr || owner == &widget))
                << caption.toStdString() << " on the page " << page.toStdString();
            owner = &widget;
            own += key;
        }
    }
};

}  // namespace

TEST_P(WindowIn, GivesNoTwoControlsTheSameKey)
{
    Spoken shown(GetParam());
    takeKeys(*shown.window);
    shown.beginToWrite();
    takeKeys(*shown.window);
    shown.buttonOf("&Yes, write")->click();
    takeKeys(*shown.window);
    EXPECT_GT(keys.size(), 50);
}

INSTANTIATE_TEST_SUITE_P(Languages, WindowIn, testing::Values("en", "de"));

TEST(WindowInGerman, HasNoEnglishText)
{
    const QSet<QString> english = textsIn("en");
    EXPECT_GT(english.size(), 200);
    for (const QString& text : textsIn("de")) {
        EXPECT_TRUE(!english.contains(text) || maySoundAlike(text)) << text.toStdString();
    }
}
