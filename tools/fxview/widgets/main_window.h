// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The window: what is wrong, the pages, the state of the link. Every reading goes into the books as
// it comes; what is shown of them is brought up to date a few times a second, so that a busy line
// costs no more than a quiet one, and that ages count up on a silent one.

#pragma once

#include "tools/fxview/models/alarm_file.h"
#include "tools/fxview/models/recipe_notes.h"
#include "tools/fxview/screens/widgets/screen_page.h"
#include "tools/fxview/widgets/alarm_page.h"
#include "tools/fxview/widgets/line_page.h"
#include "tools/fxview/widgets/problem_bar.h"
#include "tools/fxview/widgets/recipe_page.h"
#include "tools/fxview/widgets/trend_page.h"
#include "tools/fxview/widgets/values_page.h"

#include <QMainWindow>
#include <QTabWidget>

#include <functional>

namespace fxview {

using Clock = std::function<qint64()>;  // UTC, in milliseconds since 1970

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // The source outlives the window.
    MainWindow(PlcSource& source, const Clock& clock);
    ~MainWindow() override;
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    void showMoment();
    void closeSoon();  // to be called until it is closed
    void openScreen(const QString& file, bool isFirstPage);
    void keepAlarmsIn(const QString& file);
    void keepRecipeNotesIn(const QString& file);
    void tellThatNothingStarts(const QString& reason);
    void tellOfMistakes(const QString& mistakes);  // in the tag file
    QStringList tagsNotGood() const;
    QTabWidget& pages() { return *m_pages; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void layOut();
    void listen();
    void listenToRecipes();
    void showRecipeNotes(const QString& problem);
    void listenToScreen();
    void showReleases();
    void goOnClosing();
    void take(const QVector<Reading>& readings);
    void showLink(bool isUp, const QString& reason);
    void showLinkAs(Quality quality);
    void showLinkSign();
    void showQuality();

    PlcSource& m_source;
    Clock m_clock;
    ValueBook m_values;
    AlarmBook m_alarms;
    std::optional<AlarmWriter> m_alarmWriter;
    RecipeNotes m_recipeNotes;
    bool m_mustClose = false;
    ScreenWrites m_screenWrites;
    std::optional<qint64> m_closingMs;  // since when
    ProblemBar* m_problems;
    QTabWidget* m_pages;
    ValuesPage* m_valuesPage;
    ScreenPage* m_screenPage;
    TrendPage* m_trendPage;
    AlarmPage* m_alarmPage;
    RecipePage* m_recipePage;
    LinePage* m_linePage;
    std::optional<Quality> m_linkQuality;  // nothing until it is known
    QLabel* m_linkSign;
    QLabel* m_linkText;
    QLabel* m_lineText;
    bool m_hasReadings = false;
};

}  // namespace fxview
