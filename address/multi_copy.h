// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The series of addresses for copies of a screen object: a first address, then further ones at a
// fixed step, clamped to the last register of the type.

#ifndef ADDRESS_MULTI_COPY_H
#define ADDRESS_MULTI_COPY_H

#include <QString>
#include <QVector>

// Appends `copies` decimal addresses, `stepWidth` apart, to `texts` and `values`; those past
// `lastIndex` become `lastText` and `lastIndex`. 1 when every number fitted, 2 when one did not.
int multiCp_dec(int startIndex, int copies, int stepWidth, QVector<QString>& texts,
                QVector<int>& values, int lastIndex, QString lastText);

#endif
