// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/recipe_notes.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>

namespace fxview {

RecipeNotes::RecipeNotes(const QString& path) : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts))
        m_texts.insert(line.section('\t', 0, 0), line.section('\t', 1));
    m_written = m_texts;
}

QString RecipeNotes::set(const QString& recipe, const QString& text, bool isNoneKnownWritten)
{
    const QString line = QString(text).replace('\n', ' ');
    if (!isNoneKnownWritten)
        m_written.insert(recipe, line);
    const QString known = isNoneKnownWritten ? m_written.value(recipe) : QString();
    m_texts.insert(recipe, (line + ' ' + known).trimmed());
    if (m_texts.value(recipe).isEmpty())
        m_texts.remove(recipe);
    return write();
}

QString RecipeNotes::clear()
{
    m_texts.clear();
    m_written.clear();
    return write();
}

QString RecipeNotes::text() const
{
    return m_texts.values().join('\n');
}

QString RecipeNotes::write() const
{
    const bool isNowhere = m_path.isEmpty();
    if (isNowhere || (m_texts.isEmpty() && (!QFile::exists(m_path) || QFile::remove(m_path))))
        return {};
    QByteArray lines;
    for (auto text = m_texts.begin(); text != m_texts.end(); ++text)
        lines += text.key().toUtf8() + '\t' + text.value().toUtf8() + '\n';
    QSaveFile file(m_path);
    if (file.open(QIODevice::WriteOnly) && file.write(lines) == lines.size() && file.commit())
        return {};
    return QCoreApplication::translate(
               "fxview::RecipeNotes",
               "What is known of the transfer cannot be kept on the disk: %1: %2. Do not close the "
               "window before the transfer has ended.")
        .arg(m_path, file.errorString());
}

}  // namespace fxview
