// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of recipes: a file beside the PLC, down and up. What a download has left in the PLC is
// told until the same recipe is whole, also of one that did not come to its end.

#pragma once

#include "tools/fxview/models/recipe_table.h"
#include "tools/fxview/widgets/recipe_controls.h"

namespace fxview {

class RecipePage : public QWidget
{
    Q_OBJECT

public:
    explicit RecipePage(const QVector<fxtools::Tag>& tags, QWidget* parent = nullptr);

    void take(const RecipeResult& result);
    void showProgress(int id, int done, int total, bool isReadingBack);
    void showMoment(qint64 nowMs);
    void setLinkUp(bool isUp);

    bool isDownloading() const;
    void cancel();

signals:
    void ordered(const RecipeOrder& order);
    void cancelled(int id);

    // What is to be known of a recipe that is in the PLC by half, or may be; empty: it is whole.
    // Where nothing was written, what was known before still holds.
    void stated(const QString& recipe, const QString& text, bool isNoneKnownWritten);

private:
    enum class Step
    {
        Idle,
        AskingToDownload,
        AskingToReplace,
        Busy,
    };

    void listen();
    void nameFile();
    void browse();
    void start(RecipeOrder::Act act, bool mayReplace = false);
    void askToDownload();
    void upload();
    void answer(bool isYes);
    void takeOpened(const RecipeResult& result);
    void takeDownload(const RecipeResult& result);
    void sayDifferences();
    void say(const QString& text);
    void setStep(Step step);
    bool isOpen() const;        // what the file's name stands for
    QString objection() const;  // why nothing may be downloaded

    RecipeTable* m_table;
    RecipeControls m_controls;
    Step m_step = Step::Idle;
    RecipeOrder m_order;  // the last one
    QString m_recipe;     // the file that the table shows
    QVector<fxtools::RegisterRun> m_runs;
    qint64 m_nowMs = 0;
    qint64 m_readingMs = 0;  // when the reading of the PLC began
    bool m_isReadingBack = false;
    bool m_isLinkUp = false;
};

}  // namespace fxview
