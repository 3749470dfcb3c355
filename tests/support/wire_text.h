// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Frames and replies as readable text, for expectations that stand in the tests as literals:
// printable characters as they are, control bytes by name, any other byte as two hex digits:
// "<STX>010C804<ETX>73", "<ACK>", "<NAK>", "<FF>".

#ifndef TESTS_SUPPORT_WIRE_TEXT_H
#define TESTS_SUPPORT_WIRE_TEXT_H

#include <QByteArray>

#include <string>

// The text of `length` bytes.
std::string wireText(const unsigned char* bytes, int length);

// The bytes of such a text.
QByteArray wireBytes(const std::string& text);

// A well-framed data reply around the given data, itself such a text, for replies in bulk.
QByteArray framedReply(const std::string& dataChars);

#endif
