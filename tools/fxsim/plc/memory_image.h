// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A memory image as Intel HEX text: records of up to sixteen bytes, types 00 (data) and 01 (end),
// each with its sum. The addresses are those of the wire; extended addresses (types 02 and 04) are
// taken where they stay within 64 KiB. Files from other tools load, and what is saved loads
// elsewhere.

#pragma once

#include <QByteArray>
#include <QString>

namespace fxsim {

// Writes the records of `text` over `image` (64 KiB), or changes nothing and says what is wrong,
// and in which line.
QString applyHex(const QByteArray& text, QByteArray& image);

// Runs of zeros are left out: a loaded image starts from zeros.
QByteArray hexText(const QByteArray& image);

// The same from and to a file. The file is replaced only when it was written whole.
QString loadImage(const QString& path, QByteArray& image);
QString saveImage(const QString& path, const QByteArray& image);

// Why nothing can be saved there, as far as it can be told without doing it; empty: nothing.
QString obstacleToSaving(const QString& path);

}  // namespace fxsim
