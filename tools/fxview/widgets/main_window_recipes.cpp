// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/main_window.h"

#include "tools/fxview/plc/recipe_orders.h"

namespace fxview {

void MainWindow::listenToRecipes()
{
    connect(m_recipePage, &RecipePage::ordered, this, [this](const RecipeOrder& order) {
        // A release that is owed must not wait for a transfer of minutes.
        if (m_screenWrites.isReleased() || order.act == RecipeOrder::Act::Open)
            m_source.order(order);
        else
            m_recipePage->take(refusedRecipe(order, tr("a push button is not released yet")));
    });
    connect(m_recipePage, &RecipePage::cancelled, &m_source, &PlcSource::cancelRecipe);
    connect(&m_source, &PlcSource::recipeMoved, m_recipePage, &RecipePage::showProgress);
    connect(m_recipePage, &RecipePage::stated, this,
            [this](const QString& recipe, const QString& text, bool isNoneKnownWritten) {
                showRecipeNotes(m_recipeNotes.set(recipe, text, isNoneKnownWritten));
            });
    connect(&m_source, &PlcSource::recipeEnded, this, [this](const RecipeResult& result) {
        m_recipePage->take(result);
        m_mustClose = false;
    });
    connect(m_problems, &ProblemBar::closed, this, [this](Problem problem) {
        if (problem == Problem::Recipe)
            showRecipeNotes(m_recipeNotes.clear());
    });
}

// While a download runs, the page says how far it is.
void MainWindow::showRecipeNotes(const QString& problem)
{
    const QString text = m_recipePage->isDownloading() ? QString() : m_recipeNotes.text();
    if (problem.isEmpty() && text.isEmpty())
        m_problems->clear(Problem::Recipe);
    else
        m_problems->set(Problem::Recipe, problem.isEmpty() ? text : text + ' ' + problem);
}

void MainWindow::keepRecipeNotesIn(const QString& file)
{
    m_recipeNotes = RecipeNotes(file);
    showRecipeNotes({});
}

}  // namespace fxview
