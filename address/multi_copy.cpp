// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The generator of address series. A series that runs off the end of its type finishes in a run
// of identical last addresses, which the editor shows as the sign of overflow.

#include "address/multi_copy.h"

#include "address/register_types.h"
#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"

namespace {

struct LastNumber
{
    int index;
    QString text;
};

int stepWidth(const RegisterType& type, int step)
{
    if (step == fxPlainStep)
        return 1;
    if (step == fxStepOf32Bits)
        return type.kind == RegisterKind::Word ? 2 : 1;  // a 32-bit value takes two words
    return step < 1 ? 1 : step;
}

FxSeriesResult appendSeries(int startIndex, int copies, int stepWidth, int numberBase,
                            const LastNumber& last, QVector<QString>& texts, QVector<int>& values)
{
    if (copies < 1)
        return fxSeriesFitted;
    const qint64 highest = startIndex + static_cast<qint64>(stepWidth) * (copies - 1);
    qint64 number = startIndex;
    for (int i = 0; i < qMin(copies, fxMaxCopies); ++i, number += stepWidth) {
        if (number <= last.index) {
            const int index = static_cast<int>(number);
            texts.append(QString::number(static_cast<uint>(index), numberBase));
            values.append(index);
        } else {
            texts.append(last.text);
            values.append(last.index);
        }
    }
    return highest > last.index ? fxSeriesClamped : fxSeriesFitted;
}

}  // namespace

int multiCp_dec(int startIndex, int copies, int stepWidth, QVector<QString>& texts,
                QVector<int>& values, int lastIndex, QString lastText)
{
    return appendSeries(startIndex, copies, stepWidth, 10, {lastIndex, lastText}, texts, values);
}

int intf_multiCopy(const QString& registerType, int startIndex, int copies, int step,
                   QVector<QString>& texts, QVector<int>& values)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return fxSeriesUnknownType;
    const int width = stepWidth(*type, step);
    const QString lastText = QString::number(type->last, type->numberBase);
    if (type->numberBase == 10)
        return multiCp_dec(startIndex, copies, width, texts, values, type->last, lastText);
    return appendSeries(startIndex, copies, width, type->numberBase, {type->last, lastText}, texts,
                        values);
}
