// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A memory image as Intel HEX text: records of up to sixteen bytes, types 00 (data) and 01 (end),
// each with its checksum. The addresses are those of the wire; extended addresses (types 02 and 04)
// are accepted as long as they stay within 64 KiB. Files from other tools can be loaded, and other
// tools can load what is saved here. All of these throw an Error that names the file or the line.

#pragma once

#include <QByteArray>
#include <QString>

namespace fxsim {

// Writes the records of `text` over `image` (64 KiB); an Error leaves the image as it was.
void applyHex(const QByteArray& text, QByteArray& image);

// Leaves out runs of zeros: a loaded image starts from zeros.
QByteArray hexText(const QByteArray& image);

// The same from and to a file. An existing file is replaced only once all is written.
void loadImage(const QString& path, QByteArray& image);
void saveImage(const QString& path, const QByteArray& image);

// All of a file that somebody wrote, for example a script. Throws when it is no regular file or
// larger than any that makes sense.
QByteArray wholeFile(const QString& path);

// Throws when it is certain that nothing can be saved there. Changes nothing.
void checkSaving(const QString& path);

}  // namespace fxsim
