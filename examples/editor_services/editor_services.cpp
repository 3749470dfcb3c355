// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The functions for a screen editor: they list the register types, check addresses, and make the
// addresses for copies of an object. They need no set-up and no link.

#include <mitsubishi_fx1s/intf.h>

#include <QStringList>

#include <cstdio>

namespace {

constexpr int wordDataType = 0;  // any but fxBitDataType and fxCounterDataTypes

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
    case fxAddressValid:
        return "valid";
    case fxWrongWidth:
        return "wrong width for this type";
    case fxAddressOutOfRange:
        return "out of range";
    case fxUnknownType:
        return "unknown type";
    case fxNotANumber:
        return "not a number";
    case fxNotACounterDataType:
        return "not a data type for counters";
    default:
        return "inputs cannot be written";
    }
}

void check(const char* registerType, const char* addressText, int dataType)
{
    int number = 0;
    const int result =
        intf_checkAddr(registerType, addressText, &number, dataType, 1, fxReadAccess);
    std::printf("  %s%s: %s\n", registerType, addressText, meaning(result));
}

void copy(const char* registerType, int start, int copies, int step)
{
    QVector<QString> texts;
    QVector<int> values;
    const int result = intf_multiCopy(registerType, start, copies, step, texts, values);
    std::printf("  %s: %s%s\n", registerType, qPrintable(QStringList(texts.toList()).join(" ")),
                result == fxSeriesClamped ? "  (the last ones are too high)" : "");
}

}  // namespace

int main()
{
    std::printf("Bit types\n");
    listTypes(fxBitTypes);
    std::printf("Word types\n");
    listTypes(fxWordTypes);
    std::printf("Addresses\n");
    check("D", "7999", wordDataType);
    check("D", "8000", wordDataType);
    check("X", "17", fxBitDataType);
    check("X", "18", fxBitDataType);
    check("D", "100", fxBitDataType);
    std::printf("Copies\n");
    copy("X", 6, 4, 1);
    copy("D", 100, 3, fxStepOf32Bits);
    copy("D", 7996, 5, fxPlainStep);
    return 0;
}
