// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the window's tests share: tags, readings of them, and a source that does as the test says.

#pragma once

#include "tools/fxview/plc/plc_source.h"

namespace view_tests {

constexpr qint64 nowMs = 1'700'000'000'000;

// A row of a tag file: "temp,D100,signed,0.1,0,°C,..." as its documentation orders the columns.
QVector<fxtools::Tag> tagsOf(const QByteArray& rows);

// Oven with a temperature, alarms and limits; a motor bit; a read-only input; a text.
QVector<fxtools::Tag> someTags();

fxview::Reading good(int tag, const QJsonValue& value, qint64 timeMs = nowMs);
fxview::Reading stale(int tag, const QString& reason, qint64 timeMs = nowMs);
fxview::Reading bad(int tag, const QString& reason, qint64 timeMs = nowMs);

class FakePlc : public fxview::PlcSource
{
public:
    struct Write
    {
        int id;
        int tag;
        QString text;
        bool isSoon;
    };

    explicit FakePlc(const QVector<fxtools::Tag>& tags) : m_tags(tags) {}

    QString name() const override { return QStringLiteral("press1"); }
    bool isSimulated() const override { return simulated; }
    QVector<fxtools::Tag> tags() const override { return m_tags; }
    void write(int id, int tag, const QString& text) override { writes += {id, tag, text, false}; }
    void writeSoon(int id, int tag, const QString& text) override
    {
        writes += {id, tag, text, true};
    }
    void benchCommand(const QString& command) override { benchCommands += command; }
    void order(const fxview::RecipeOrder& order) override { recipes += order; }
    void cancelRecipe(int id) override { cancelled += id; }

    bool simulated = false;
    QVector<Write> writes;
    QStringList benchCommands;
    QVector<fxview::RecipeOrder> recipes;
    QVector<int> cancelled;

private:
    QVector<fxtools::Tag> m_tags;
};

}  // namespace view_tests
