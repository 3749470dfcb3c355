// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a screen editor asks of the driver: which register types there are, whether an address is
// valid, and which addresses the copies of an object get. None of it needs a set-up or a link.

#include <mitsubishi_fx1s/intf.h>

#include <QStringList>

#include <cstdio>

namespace {

constexpr int bitTypes = 0;
constexpr int wordTypes = 1;
constexpr int wordData = 0;    // data type: anything but -1 is a word
constexpr int readAccess = 0;  // access mode: 1 and 2 write

void listTypes(int kind)
{
    QList<QString> names;
    intf_getRegListByType(kind, names);
    for (const QString& name : names) {
        QList<QString> fields;
        intf_getRegDiscription(name, fields);
        std::printf("  %-5s %-6s from %s to %s%s\n", qPrintable(name), qPrintable(fields[0]),
                    qPrintable(fields[1]), qPrintable(fields[2]),
                    fields[4] == "1" ? "" : ", read only");
    }
}

const char* meaning(int result)
{
    switch (result) {
    case 0:
        return "valid";
    case 1:
        return "the width does not suit the type";
    case 2:
        return "out of the type's range";
    case 3:
        return "no such type";
    case 4:
        return "no number";
    case 5:
        return "not a data type for counters";
    default:
        return "inputs cannot be written";
    }
}

void check(const char* registerType, const char* addressText, int dataType)
{
    int number = 0;
    const int result = intf_checkAddr(registerType, addressText, &number, dataType, 1, readAccess);
    std::printf("  %s%s: %s\n", registerType, addressText, meaning(result));
}

void copy(const char* registerType, int start, int copies, int step)
{
    QVector<QString> texts;
    QVector<int> values;
    const int result = intf_multiCopy(registerType, start, copies, step, texts, values);
    std::printf("  %s: %s%s\n", registerType, qPrintable(QStringList(texts.toList()).join(" ")),
                result == 2 ? "  (ran past the end)" : "");
}

}  // namespace

int main()
{
    std::printf("Bit types\n");
    listTypes(bitTypes);
    std::printf("Word types\n");
    listTypes(wordTypes);
    std::printf("Addresses\n");
    check("D", "7999", wordData);
    check("D", "8000", wordData);
    check("X", "17", -1);
    check("X", "18", -1);
    check("D", "100", -1);
    std::printf("Copies\n");
    copy("X", 6, 4, 1);
    copy("D", 100, 3, -2);
    copy("D", 7996, 5, -1);
    return 0;
}
