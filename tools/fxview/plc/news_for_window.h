// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the thread of the line has to tell and the window has not taken yet. The thread puts in, the
// window takes all there is, 60 times a second at most; neither waits for the other.

#pragma once

#include "tools/fxview/plc/pending_readings.h"
#include "tools/fxview/plc/plc_source.h"

#include <QElapsedTimer>
#include <QMutex>

namespace fxview {

struct News
{
    struct RecipeProgress
    {
        int id, done, total;
        bool isReadingBack;
    };

    void add(const fxtools::Exchange& exchange);

    std::optional<QPair<bool, QString>> link;
    QVector<fxtools::Exchange> exchanges;
    std::optional<LineReport> report;
    QVector<WriteResult> results;
    std::optional<RecipeProgress> recipeMoved;
    QVector<RecipeResult> recipes;
    QVector<QPair<QString, QString>> refusals;  // of commands
};

class NewsForWindow
{
public:
    // The signals of `source` bring them, in its thread.
    explicit NewsForWindow(PlcSource& source, const QVector<fxtools::Tag>& tags);

    // From any thread.
    void tell(const std::function<void(News&)>& add);
    void tell(const QVector<Reading>& readings);

private:
    void give();

    PlcSource& m_source;
    QMutex m_mutex;  // for the three below
    News m_news;
    PendingReadings m_readings;
    bool m_isAnnounced = false;

    QElapsedTimer m_given;  // when the window got news last
};

}  // namespace fxview
