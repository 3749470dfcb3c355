// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipes in the thread that talks to the PLC. What a download has left in the PLC is read back
// however it ended, unless the link is lost.

#include "tools/exchange/blocks.h"
#include "tools/fxview/plc/plc_thread.h"
#include "tools/fxview/plc/recipe_orders.h"

#include <QFileInfo>
#include <QMutexLocker>

#include <algorithm>

namespace fxview {

namespace {

using Act = RecipeOrder::Act;

QVector<fxtools::RegisterRange> registersIn(const QString& text,
                                            const fxtools::RegisterCatalogue& catalogue)
{
    QVector<fxtools::RegisterRange> ranges;
    for (const QString& address : text.simplified().split(' ', Qt::SkipEmptyParts))
        ranges.append(fxtools::askedAddress(fxtools::takeApart(address), catalogue).range);
    return ranges;
}

}  // namespace

void PlcThread::order(const RecipeOrder& order)
{
    add(order);
}

void PlcThread::cancelRecipe(int id)
{
    const QMutexLocker locker(&m_mutex);
    m_cancelledRecipe = id;
    m_hasOrders.wakeAll();
}

// The end of the window cancels a transfer too: it would take long.
bool PlcThread::isRecipeCancelled()
{
    const QMutexLocker locker(&m_mutex);
    return m_recipe && (m_mustEnd || m_cancelledRecipe == m_recipe);
}

fxtools::Progress PlcThread::progressOf(int id, bool isReadingBack)
{
    return [this, id, isReadingBack](int done, int total) {
        m_news.tell([=](News& news) { news.recipeMoved = {id, done, total, isReadingBack}; });
    };
}

void PlcThread::obey(const RecipeOrder& order)
{
    if (order.act == Act::Open) {
        RecipeResult result = resultOf(order);
        openRecipe(result, order.file);
        noteRecipe(result);
        return;
    }
    m_service->perform(
        {[this, order](fxtools::Connection& connection) { transfer(order, connection); },
         [this, order](const QString& reason) { refuse(order, reason); }});
}

void PlcThread::transfer(const RecipeOrder& order, fxtools::Connection& connection)
{
    m_recipe = order.id;
    if (isRecipeCancelled()) {
        m_recipe.reset();
        refuse(order, fxtools::verdictText(fxtools::ReplyVerdict::Interrupted));
        return;
    }
    const fxtools::Progress progress = progressOf(order.id);
    RecipeResult result = resultOf(order);
    try {
        if (order.act == Act::Compare)
            compareRecipe(result, connection, progress);
        else if (order.act == Act::Download)
            downloadRecipe(result, connection, order, progress);
        else
            uploadRecipe(result, connection, order, progress);
    } catch (const fxtools::Failure& failure) {
        result = refusedRecipe(order, failure.text());
    }
    m_recipe.reset();
    noteRecipe(result);
}

void PlcThread::openRecipe(RecipeResult& result, const QString& file) const
{
    result.recipe =
        fxtools::readRecipe(file, m_services->catalogue, m_settings.session.wordsPerFrame, false);
    result.values = valuesOf(result.recipe);
    for (const fxtools::RecipeObjection& objection :
         fxtools::objectionsTo(result.recipe, m_tags, m_services->catalogue)) {
        for (RecipeValue& value : result.values) {
            if (fxtools::overlap(value.one, objection.registers))
                value.objection = objection.text;
        }
    }
}

// Who has changed the file since it was opened wants the new values in the PLC.
void PlcThread::requireUnchanged(const QString& file,
                                 const QVector<fxtools::RegisterRun>& recipe) const
{
    const QVector<RecipeValue> now = valuesOf(
        fxtools::registersOf(file, m_services->catalogue, m_settings.session.wordsPerFrame).runs);
    const QVector<RecipeValue> opened = valuesOf(recipe);
    const bool isSame = std::equal(now.begin(), now.end(), opened.begin(), opened.end(),
                                   [](const RecipeValue& one, const RecipeValue& other) {
                                       return one.one.identity(0) == other.one.identity(0) &&
                                              one.inFile == other.inFile;
                                   });
    if (!isSame)
        throw fxtools::Failure(fxtools::ExitCode::File,
                               file + " has changed since it was opened; open it again");
}

void PlcThread::compareRecipe(RecipeResult& result, fxtools::Connection& connection,
                              const fxtools::Progress& progress)
{
    noteComparison(result, fxtools::compareWithPlc(connection, result.recipe, progress));
}

void PlcThread::downloadRecipe(RecipeResult& result, fxtools::Connection& connection,
                               const RecipeOrder& order, const fxtools::Progress& progress)
{
    const QVector<fxtools::RecipeObjection> objections =
        fxtools::objectionsTo(result.recipe, m_tags, m_services->catalogue);
    if (!objections.isEmpty())
        throw fxtools::Failure(fxtools::ExitCode::Usage, objections.first().text);
    if (!order.file.isEmpty())
        requireUnchanged(order.file, result.recipe);
    // A recipe that came up from the PLC has not been judged yet.
    fxtools::requireWritable(QStringLiteral("the recipe"), result.recipe, m_services->catalogue);
    noteOutcome(result, fxtools::downloadRecipe(connection, result.recipe, progress));
    {
        const QMutexLocker locker(&m_mutex);
        m_cancelledRecipe.reset();  // the next cancel is for the reading
    }
    compareRecipe(result, connection, progressOf(result.id, true));
}

void PlcThread::uploadRecipe(RecipeResult& result, fxtools::Connection& connection,
                             const RecipeOrder& order, const fxtools::Progress& progress)
{
    const QVector<fxtools::RegisterRange> entries = fxtools::recipeEntries(
        registersIn(order.registers, m_services->catalogue), connection.wordsPerFrame());
    using Mode = fxtools::OutputFile::Mode;
    if (!order.mayReplace && QFileInfo::exists(order.file))
        throw fxtools::Failure(fxtools::ExitCode::File, order.file + " exists");
    fxtools::OutputFile file(order.file, order.mayReplace ? Mode::Replace : Mode::New,
                             m_services->catalogue);
    const fxtools::RecipeOutcome outcome =
        fxtools::uploadRecipe(connection, entries, result.recipe, progress);
    if (!outcome.isGood()) {
        result.problem = fxtools::verdictText(*outcome.problem);
        return;
    }
    fxtools::saveRecipe(file, result.recipe);
    result.values = valuesOf(result.recipe);
    compareRecipe(result, connection, progressOf(result.id, true));
}

void PlcThread::noteRecipe(const RecipeResult& result)
{
    m_news.tell([&result](News& news) { news.recipes.append(result); });
}

}  // namespace fxview
