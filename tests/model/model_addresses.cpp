// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's answers to the editor: address checks, the catalogue, series of copies.

#include "tests/model/model_driver.h"

namespace {

bool isWordOr32(const QString& type)
{
    return modelIsWord(type) || type == "32CV";
}

int parsed(const QString& type, const QString& text, bool& ok)
{
    return text.toInt(&ok, type == "X" || type == "Y" ? 8 : 10);
}

// Numbers below `lowest`, or that run past `highest` with `count` more, are out of range.
bool inRange(long long number, long long count, long long lowest, long long highest)
{
    return number >= lowest && number + count <= highest;
}

bool inRangeOf(const QString& type, long long n, long long c)
{
    if (type == "M")
        return inRange(n, c, 0, 3072);
    if (type == "S")
        return inRange(n, c, 0, 1000);
    if (type == "SM" || type == "SD")
        return inRange(n, c, 8000, 8256);
    if (type == "D")
        return inRange(n, c, 0, 8000);
    if (type == "CV")
        return inRange(n, c, 0, 200);
    if (type == "32CV")
        return inRange(n, c, 200, 257);
    return inRange(n, c, 0, 256);  // X, Y, T, C, TV
}

// The steps that both checks end in: the text's number and its range.
int checkNumber(const QString& type, const QString& text, int* addressIndex, int count)
{
    if (!modelIsBit(type) && !isWordOr32(type))
        return 3;
    bool ok = false;
    const int number = parsed(type, text, ok);
    if (addressIndex)
        *addressIndex = number;
    if (!ok)
        return 4;
    return inRangeOf(type, number, count) ? 0 : 2;
}

int lastNumber(const QString& type)
{
    if (type == "X" || type == "Y" || type == "T" || type == "C" || type == "TV" || type == "32CV")
        return 255;
    if (type == "M")
        return 3071;
    if (type == "D")
        return 7999;
    if (type == "SM" || type == "SD")
        return 8255;
    if (type == "S")
        return 999;
    return 199;  // CV
}

long long stepWidth(const QString& type, int step)
{
    if (step == -1)
        return 1;
    if (step == -2)
        return type == "32CV" || modelIsBit(type) ? 1 : 2;
    return step < 1 ? 1 : step;
}

}  // namespace

int ModelDriver::checkAddr(const QString& registerType, const QString& addressText,
                           int* addressIndex, int dataType, int count, int accessMode) const
{
    if (modelIsBit(registerType) && dataType != -1)
        return 1;
    if (isWordOr32(registerType) && dataType == -1)
        return 1;
    if (addressText.contains('-') || addressText.contains('+'))
        return 4;
    if (registerType == "X" && (accessMode == 1 || accessMode == 2))
        return 6;
    if (registerType == "32CV" && dataType != 1 && dataType != 3 && dataType != 5 &&
        dataType != 6 && dataType != 9)
        return 5;
    return checkNumber(registerType, addressText, addressIndex, count);
}

int ModelDriver::checkAddrValidity(const QString& registerType, const QString& addressText,
                                   int* addressIndex, int count, int wordAccess) const
{
    if (modelIsBit(registerType) && wordAccess != 0)
        return 1;
    if (isWordOr32(registerType) && wordAccess == 0)
        return 1;
    if (addressText.contains('-') || addressText.contains('+'))
        return 4;
    return checkNumber(registerType, addressText, addressIndex, count);
}

int ModelDriver::getRegListByType(int kind, QList<QString>& names) const
{
    if (kind == 0) {
        for (const char* name : {"X", "Y", "M", "S", "SM", "T", "C"})
            names.append(name);
        return 1;
    }
    if (kind == 1) {
        for (const char* name : {"D", "SD", "TV", "CV", "32CV"})
            names.append(name);
        return 1;
    }
    return 0;
}

int ModelDriver::getRegDiscription(const QString& registerType, QList<QString>& fields) const
{
    const char* const rows[][6] = {
        {"X", "ooo", "0", "377", "0", "0"},       {"Y", "ooo", "0", "377", "0", "1"},
        {"M", "dddd", "0", "3071", "0", "1"},     {"S", "ddd", "0", "999", "0", "1"},
        {"SM", "dddd", "8000", "8255", "0", "1"}, {"T", "ddd", "0", "255", "0", "1"},
        {"C", "ddd", "0", "255", "0", "1"},       {"D", "dddd", "0", "7999", "1", "1"},
        {"SD", "dddd", "8000", "8255", "1", "1"}, {"TV", "ddd", "0", "255", "1", "1"},
        {"CV", "ddd", "0", "199", "1", "1"},      {"32CV", "ddddd", "200", "255", "2", "1"},
    };
    for (const auto& row : rows) {
        for (int field = 1; registerType == row[0] && field < 6; ++field)
            fields.append(row[field]);
    }
    return registerType == "32CV" ? 1 : 0;
}

int ModelDriver::multiCopy(const QString& registerType, int startIndex, int copies, int step,
                           QVector<QString>& texts, QVector<int>& values) const
{
    if (!modelIsBit(registerType) && !isWordOr32(registerType))
        return 0;
    const int last = lastNumber(registerType);
    const long long width = stepWidth(registerType, step);
    for (int copy = 0; copy < copies && copy < 1000000; ++copy) {
        const int shown = static_cast<int>(std::min<long long>(last, startIndex + width * copy));
        texts.append(modelNumberText(registerType, shown));
        values.append(shown);
    }
    return copies >= 1 && startIndex + width * (copies - 1) > last ? 2 : 1;
}
