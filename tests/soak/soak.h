// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host that polls, writes, queues one-off reads and moves recipes without end over a line on
// which everything goes wrong now and then, while the PLC's own program changes its memory. After
// each exchange what the driver says is compared with what the PLC holds and with the book of
// writes.

#pragma once

#include "memory_trend.h"
#include "plc_map.h"
#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/polling.h"
#include "write_book.h"

#include <random>

namespace fxsoak {

struct SoakSettings
{
    qint64 exchanges = 0;
    unsigned int seed = 1;
    fxsim::FaultPlan faults;
};

struct SoakCounts
{
    qint64 ended = 0;  // exchanges
    qint64 failed = 0;
    qint64 valuesRight = 0;
    qint64 valuesWaiting = 0;  // that a queued write covered: either may show
    qint64 sumsForged = 0;     // replies that came with such a sum, and were not judged
    qint64 writesConfirmed = 0;
    qint64 writesFailed = 0;
    qint64 recipesDone = 0;
    qint64 recipesFailed = 0;
    qint64 changes = 0;  // callbacks
};

class Soak
{
public:
    Soak(const fxtools::DriverLibrary& library, const SoakSettings& settings);

    // Until so many exchanges have ended in all, or something is wrong.
    void run(qint64 exchanges);

    // No more new writes: until the last one and the last recipe have ended.
    void finish();

    const SoakCounts& counts() const { return m_counts; }
    const QVector<QString>& findings() const { return m_findings; }
    const fxtools::Statistics& line() const { return m_loop.statistics(); }
    const fxsim::Statistics& plc() { return m_line.plc().statistics(); }
    qint64 writesReplaced() const { return m_book.replaced(); }
    qint64 simulatedUs() const { return m_line.nowUs(); }

private:
    struct RunningRecipe
    {
        fxtools::RecipeDirection direction = fxtools::RecipeDirection::Download;
        QVector<fxtools::RegisterRange> entries;
        int next = 0;
        size_t nextWord = 0;  // in the recipe memory
    };

    void act();
    void changePlc();
    void write();
    void startRecipe();
    void exchange();

    void check(const fxtools::Exchange& exchange);
    void checkRead(const fxtools::Exchange& exchange);
    void checkWrite(const fxtools::Exchange& exchange);
    void checkConfirmed(const QString& typeName, int number, quint32 value);
    void checkRecipe(const fxtools::Exchange& exchange);
    void checkRecipeWords(const fxtools::RegisterRange& entry, Side side);
    void checkCache(const fxtools::RegisterRange& range);
    void expect(bool good, const QString& finding);

    bool chance(double probability);
    int below(int limit);
    quint32 someBits(int bits);
    fxtools::RegisterRange someRange(const PlcRun& run);
    const PlcRun& someWritableRun(bool wordsOnly);
    QVector<quint32> someValues(const fxtools::RegisterRange& range);

    fxtools::RegisterCatalogue m_catalogue;
    tool_tests::VirtualLine m_line;
    fxtools::DriverSession m_session;
    fxtools::ExchangeLoop m_loop;
    std::mt19937 m_random;
    WriteBook m_book;
    bool m_isWriting = false;
    bool m_sumIsForged = false;  // a spoilt sum can be the right one of the flipped bits
    std::optional<RunningRecipe> m_recipe;
    SoakCounts m_counts;
    QVector<QString> m_findings;
};

}  // namespace fxsoak
