// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/recipe.h"

#include "tools/tags/tag_columns.h"

#include <QHash>

namespace fxtools {

namespace {

void needWords(const QVector<RegisterRange>& entries)
{
    for (const RegisterRange& entry : entries) {
        if (entry.type.isBit())
            throw Failure(ExitCode::Usage, entry.text() + ": recipes hold words, not bits");
    }
}

int wordsPerRegister(const RegisterRange& range)
{
    return range.type.driverCount(1);
}

void requireRoom(const QVector<RegisterRange>& entries, const std::vector<quint16>& memory)
{
    qint64 words = 0;
    for (const RegisterRange& entry : entries)
        words += qint64(wordsPerRegister(entry)) * entry.count;
    if (words > static_cast<qint64>(memory.size()))
        throw Failure(ExitCode::File,
                      QStringLiteral("the recipe is too long: the recipe memory holds %1 words")
                          .arg(memory.size()));
}

void loadWords(const QVector<RegisterRun>& runs, std::vector<quint16>& memory)
{
    size_t word = 0;
    for (const RegisterRun& run : runs) {
        const int words = wordsPerRegister(run.range);
        for (const quint32 value : run.values) {
            memory[word++] = static_cast<quint16>(value & 0xFFFF);
            if (words == 2)
                memory[word++] = static_cast<quint16>(value >> 16);
        }
    }
}

QVector<RegisterRun> runsOf(const QVector<RegisterRange>& entries,
                            const std::vector<quint16>& memory)
{
    QVector<RegisterRun> runs;
    size_t word = 0;
    for (const RegisterRange& entry : entries) {
        RegisterRun run{entry, {}};
        for (int index = 0; index < entry.count; ++index) {
            quint32 value = memory.at(word++);
            if (wordsPerRegister(entry) == 2)
                value |= static_cast<quint32>(memory.at(word++)) << 16;
            run.values.append(value);
        }
        runs.append(run);
    }
    return runs;
}

// Why these registers may not be written; empty if they may.
QString objectionTo(const Tag& tag, const QVector<quint32>& registers,
                    const RegisterCatalogue& catalogue)
{
    if (tag.isReadOnly())
        return "the tag " + tag.name + " is read-only";
    if (!tag.isNumber() || (!tag.min && !tag.max))
        return {};
    if (registers.size() < tag.asked.range.count)
        return "of the tag " + tag.name + " the recipe has only a part";
    try {
        assignmentOf(tag, numberText(tag.valueOf(tag.rawOf(registers)).toDouble()), catalogue);
    } catch (const Failure& failure) {
        return failure.text();
    }
    return {};
}

}  // namespace

QVector<RegisterRange> rangesOf(const QVector<RegisterRun>& runs)
{
    QVector<RegisterRange> ranges;
    for (const RegisterRun& run : runs)
        ranges.append(run.range);
    return ranges;
}

QVector<RegisterRun> readRecipe(const QString& path, const RegisterCatalogue& catalogue,
                                int wordsPerFrame, bool force)
{
    const QVector<RegisterRun> recipe =
        writableRegistersOf(path, catalogue, wordsPerFrame, force).runs;
    needWords(rangesOf(recipe));
    return recipe;
}

QVector<RegisterRange> recipeEntries(const QVector<RegisterRange>& registers, int wordsPerFrame)
{
    needWords(registers);
    return cutToFrames(registers, wordsPerFrame);
}

QVector<RecipeObjection> objectionsTo(const QVector<RegisterRun>& recipe, const QVector<Tag>& tags,
                                      const RegisterCatalogue& catalogue)
{
    QHash<QString, quint32> values;  // by the register's identity
    for (const RegisterRun& run : recipe) {
        for (int index = 0; index < run.range.count; ++index)
            values.insert(run.range.identity(index), run.values[index]);
    }
    QVector<RecipeObjection> objections;
    for (const Tag& tag : tags) {
        const RegisterRange& range = tag.asked.range;
        QVector<quint32> registers;
        for (int index = 0; index < range.count; ++index) {
            const auto value = values.constFind(range.identity(index));
            if (value != values.constEnd())
                registers.append(*value);
        }
        const QString text =
            registers.isEmpty() ? QString() : objectionTo(tag, registers, catalogue);
        if (!text.isEmpty())
            objections.append({range, text});
    }
    return objections;
}

RecipeOutcome downloadRecipe(Connection& connection, const QVector<RegisterRun>& recipe,
                             const Progress& progress)
{
    std::vector<quint16>& memory = connection.session().recipeWords();
    requireRoom(rangesOf(recipe), memory);
    loadWords(recipe, memory);
    return transferRecipe(connection.loop(), RecipeDirection::Download, rangesOf(recipe), progress);
}

RecipeOutcome uploadRecipe(Connection& connection, const QVector<RegisterRange>& entries,
                           QVector<RegisterRun>& recipe, const Progress& progress)
{
    requireRoom(entries, connection.session().recipeWords());
    RecipeOutcome outcome =
        transferRecipe(connection.loop(), RecipeDirection::Upload, entries, progress);
    if (outcome.isGood())
        recipe = runsOf(entries, connection.session().recipeWords());
    return outcome;
}

void saveRecipe(OutputFile& file, const QVector<RegisterRun>& recipe)
{
    RegisterFileWriter writer(file);
    try {
        for (const RegisterRun& run : recipe)
            writer.add(run);
        writer.finish();
    } catch (const Failure&) {
        file.discard();
        throw;
    }
}

// An entry that was sent without a clear reply is "possibly written".
QString stoppedText(const RecipeOutcome& outcome, RecipeDirection direction,
                    const QVector<RegisterRange>& entries)
{
    const QString entry = entries.value(outcome.transferred).text();
    QString text = QStringLiteral("%1: %2; %3 of %4 entries transferred")
                       .arg(entry, verdictText(*outcome.problem))
                       .arg(outcome.transferred)
                       .arg(outcome.entries);
    if (direction == RecipeDirection::Upload)
        return text + ", the file is unchanged";
    if (outcome.transferred > 0)
        text += ", up to " + entries[outcome.transferred - 1].text();
    return outcome.isUncertain ? text + "; " + entry + " possibly written" : text;
}

}  // namespace fxtools
