// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any type and text as an address, and the series that starts there. Asserted:
//  - results are 0 to 6 (0 to 4 without the data type), the same as the model's;
//  - a valid address has no sign, and its number written in the type's base is valid again;
//  - a series has a text and a number for each copy, never past the type's last number, rising,
//    and each text that was not clamped checks as its number.

#include "fuzz/support/driver_pair.h"

#include <algorithm>

namespace {

struct Question
{
    QString type;
    QString text;
    int numbers[3];
};

bool isOctal(const QString& type)
{
    return type == "X" || type == "Y";
}

void check(FuzzedPair& pair, const Question& asked)
{
    int index = 77;
    int modelIndex = 77;
    const int result = pair.library.driver.checkAddr(
        asked.type, asked.text, &index, asked.numbers[0], asked.numbers[1], asked.numbers[2]);
    require(result == pair.model.driver.checkAddr(asked.type, asked.text, &modelIndex,
                                                  asked.numbers[0], asked.numbers[1],
                                                  asked.numbers[2]),
            "the model checks otherwise");
    require(index == modelIndex && result >= 0 && result <= 6, "an undocumented answer");
    const int valid =
        intf_checkAddrValidity(asked.type, asked.text, &index, asked.numbers[1], asked.numbers[0]);
    require(valid == pair.model.driver.checkAddrValidity(asked.type, asked.text, &modelIndex,
                                                         asked.numbers[1], asked.numbers[0]),
            "the model checks the width otherwise");
    require(index == modelIndex && valid >= 0 && valid <= 4, "an undocumented answer");
    if (valid != 0)
        return;
    require(!asked.text.contains('-') && !asked.text.contains('+'), "a sign was accepted");
    const QString written = QString::number(index, isOctal(asked.type) ? 8 : 10);
    int again = 0;
    require(intf_checkAddrValidity(asked.type, written, &again, asked.numbers[1],
                                   asked.numbers[0]) == 0 &&
                again == index,
            "a valid number is not valid when written again");
}

void copy(FuzzedPair& pair, const QString& type, int start, int copies, int step)
{
    QVector<QString> texts;
    QVector<QString> modelTexts;
    QVector<int> values;
    QVector<int> modelValues;
    const int result = intf_multiCopy(type, start, copies, step, texts, values);
    require(
        result == pair.model.driver.multiCopy(type, start, copies, step, modelTexts, modelValues) &&
            texts == modelTexts && values == modelValues,
        "the model copies otherwise");
    require(result >= 0 && result <= 2 && texts.size() == values.size(), "an undocumented answer");
    require(std::is_sorted(values.begin(), values.end()), "a series falls");
    for (int i = 0; i < texts.size(); ++i) {
        int index = 0;
        const int valid =
            intf_checkAddrValidity(type, texts[i], &index, 1, modelIsBit(type) ? 0 : 1);
        require(values[i] < 0 || (valid == 0 && index == values[i]) || valid == 2,
                "a copied address does not check as its number");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    static FuzzedPair& pair = FuzzedPair::fresh();  // asking changes nothing
    SessionWorld world(choices);
    Question asked;
    asked.type = world.anyType();
    for (int i = choices.oneIn(5) ? choices.below(5) : 0; i > 0; --i)
        asked.type += QChar(choices.below(65536));
    for (int& number : asked.numbers)
        number = world.anyInt();
    while (!choices.exhausted() && asked.text.size() < 20)
        asked.text += QChar(choices.oneIn(8) ? choices.below(65536) : choices.below(128));
    if (showAnswer)
        showAnswer("\"" + (asked.type + "\" \"" + asked.text).toStdString() + "\"");
    check(pair, asked);
    copy(pair, asked.type, asked.numbers[0], asked.numbers[1] % 40, asked.numbers[2]);
    return 0;
}
