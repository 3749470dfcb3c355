// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tags in a CSV file whose first row names its columns, in any order; only name and address are
// needed:
//
//   name,address,type,scale,offset,unit,deadband,period_ms,access,min,max,alarm_low,alarm_high,
//   link,description
//
// Reading goes on after a mistake: all of a file are told at once.

#pragma once

#include "tools/library/csv.h"
#include "tools/tags/tag.h"

namespace fxtools {

// What is wrong in a tag file, and where.
struct TagRemark
{
    enum class Kind
    {
        Warning,
        Error,
    };

    Kind kind;
    int line;
    QString column;  // its title; empty: the whole line
    QString text;

    QString place() const;  // "line 3, column scale"
};

// The title of a column without what would control the screen.
QString shownTitle(const QString& title);

struct TagFile
{
    QVector<Tag> tags;  // those without an error
    QVector<TagRemark> remarks;

    int errors() const;
};

// Throws Failure only if the file cannot be read at all.
TagFile readTagFile(const QString& path, const RegisterCatalogue& catalogue);
TagFile tagsIn(const CsvFile& csv, const RegisterCatalogue& catalogue);

// Throws Failure with all errors among the remarks, if there are any.
void requireNoErrors(const QString& path, const QVector<TagRemark>& remarks);

// Throws Failure with all errors of the file.
QVector<Tag> readTags(const QString& path, const RegisterCatalogue& catalogue);

// All columns that a tag needs.
QByteArray tagFileText(const QVector<Tag>& tags);

// A column in which two tags differ.
struct TagDifference
{
    QString title;
    QString one;
    QString other;
};
QVector<TagDifference> differences(const Tag& one, const Tag& other);

}  // namespace fxtools
