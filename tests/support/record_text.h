// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Short makers of the driver's records, and short texts of them to compare with: a request is
// "station#TypeNumber/count" ("1#D100/2"), a data area "station#TypeNumber" ("1#D100"); a list is
// its entries with blanks between them.

#ifndef TESTS_SUPPORT_RECORD_TEXT_H
#define TESTS_SUPPORT_RECORD_TEXT_H

#include "driver/records.h"

#include <QList>
#include <QString>

#include <string>
#include <vector>

// Bytes that a test writes down as plain numbers.
using Bytes = std::vector<int>;

std::string plain(const QString& text);

VARIABLE request(const char* registerType, int addressIndex, int count, int stationNo = 1);
KEY_ADDRESS watch(const char* registerType, int startIndex, int length, int stationNo = 1);
_RCP_VAR_PRO recipeEntry(const char* registerType, int addressIndex, int wordCount,
                         int recipeWordOffset, int linkNo = 1);

std::string textOf(const VARIABLE& request);
std::string textOf(const QList<VARIABLE>& requests);
std::string textOf(const QList<_DATA_>& areas);

Bytes firstBytes(const unsigned char* bytes, int byteCount);

#endif
