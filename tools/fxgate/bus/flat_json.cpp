// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/flat_json.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace fxgate {

namespace {

bool isNested(const QByteArray& payload)
{
    bool isInText = false;
    int objects = 0;
    for (int place = 0; place < payload.size(); ++place) {
        const char character = payload[place];
        if (isInText && character == '\\')
            ++place;
        else if (character == '"')
            isInText = !isInText;
        else if (!isInText && (character == '[' || (character == '{' && ++objects > 1)))
            return true;
    }
    return false;
}

}  // namespace

std::optional<QJsonValue> flatJson(const QByteArray& payload)
{
    if (payload.size() > mostJsonBytes || isNested(payload))
        return std::nullopt;
    // A value alone is no document; in brackets it is one.
    const QJsonArray values = QJsonDocument::fromJson('[' + payload + ']').array();
    return values.size() == 1 ? std::optional(values[0]) : std::nullopt;
}

}  // namespace fxgate
