// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The columns of a tag file: how each reads its field and writes it again, and what names, numbers
// and types look like in them.

#pragma once

#include "tools/tags/tag.h"

#include <vector>

namespace fxtools {

// What a field is read with.
struct FieldReading
{
    const RegisterCatalogue& catalogue;
    bool hasDecimalComma;
};

struct TagColumn
{
    const char* title;
    bool needsNumber;  // means nothing for bits and texts
    void (*take)(Tag& tag, const QString& text, const FieldReading& reading);  // throws Failure
    QString (*text)(const Tag& tag);
};

// In the order in which they are read: a type belongs to an address.
const std::vector<TagColumn>& tagColumns();

constexpr const char* bitTypeText = "bit";  // a type that only says what the address says

// Why this is not a name; empty if it is one.
QString nameMistake(const QString& name, const RegisterCatalogue& catalogue);

// A name made of a text: what a name cannot have becomes "_".
QString asName(const QString& text);

// A number as the file has it: with all its digits and no more.
QString numberText(double number);

// The type as the file has it: "float", or "float swap" with the high word first.
QString typeText(ValueStyle style);

// Whether a number of milliseconds can be a period.
bool isPeriod(const QString& text);

}  // namespace fxtools
