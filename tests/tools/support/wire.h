// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Bytes of the wire as one reads them: "␂1234␃CD".

#pragma once

#include <QByteArray>

namespace tool_tests {

inline QByteArray wire(QByteArray text)
{
    return text.replace("␂", "\x02")
        .replace("␃", "\x03")
        .replace("␅", "\x05")
        .replace("␆", "\x06")
        .replace("␊", "\x0A")
        .replace("␍", "\x0D")
        .replace("␕", "\x15");
}

}  // namespace tool_tests
