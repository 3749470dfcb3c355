// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One seed: a host that polls, writes, queues one-off reads and moves recipes while line, PLC and
// user interfere, all of it on simulated time and in an order that the seed alone decides. After
// each exchange what the driver says is compared with what the PLC held when a frame of it came
// there, and with the books of writes and one-off reads. Now and then the host runs a whole command
// as fxhost does, whose outcome must be what has happened. At the end all troubles stop: what waits
// must end, and every command must succeed.

#pragma once

#include "plc_map.h"
#include "shaken_line.h"
#include "tools/exchange/polling.h"
#include "world.h"
#include "write_book.h"

namespace fxsoak {

struct SoakCounts
{
    qint64 ended = 0;  // exchanges
    qint64 failed = 0;
    qint64 valuesRight = 0;
    qint64 valuesWaiting = 0;  // that a queued write covered: either may show
    qint64 sumsForged = 0;     // replies that came with such a sum, and were not judged
    qint64 writesConfirmed = 0;
    qint64 writesFailed = 0;
    qint64 writesUncertain = 0;  // that reached the PLC, and were said to be uncertain
    qint64 writesReplaced = 0;
    qint64 recipesDone = 0;
    qint64 recipesFailed = 0;
    qint64 recipesAbandoned = 0;
    qint64 recipeEntries = 0;
    qint64 oneOffsDone = 0;
    qint64 oneOffsFailed = 0;
    qint64 commandsDone = 0;
    qint64 commandsFailed = 0;
    qint64 changes = 0;  // callbacks
    qint64 framesSent = 0;
    qint64 linksLost = 0;
    qint64 cutsWhileSending = 0;
    qint64 cutsWhileReceiving = 0;
    qint64 powerCycles = 0;
    qint64 stops = 0;
    qint64 restarts = 0;  // of the host, after an interrupt
    qint64 plans = 0;
    qint64 simulatedUs = 0;
    std::array<qint64, fxsim::faultKinds> faults = {};

    void add(const SoakCounts& more);
};

struct HeldValue
{
    QString type;
    int number = 0;
    quint32 value = 0;
};

using Note = std::function<void(qint64 atUs, const QString& text)>;

class Soak
{
public:
    // With `note` everything that happens is told.
    Soak(const World& world, unsigned int seed, const Note& note = nullptr);

    // So many exchanges among troubles, unless something is wrong earlier, and then until all that
    // waits has ended.
    void run(qint64 exchanges);

    SoakCounts counts();
    const QVector<QString>& findings() const { return m_findings; }
    quint64 digest() const { return m_digest; }  // of all that the host has met

private:
    struct RunningRecipe
    {
        fxtools::RecipeDirection direction = fxtools::RecipeDirection::Download;
        QVector<fxtools::RegisterRange> entries;
        int next = 0;
        size_t nextWord = 0;  // in the recipe memory
    };

    struct EndedWrite
    {
        BookedRequest write;
        bool isConfirmed = false;
        bool isCarriedOut = false;  // as far as the PLC knows
    };

    // What happens
    void startHost();
    void restartHost();
    void reconnect();
    void goOn();
    void act();
    void planAnew();
    void changePlc();
    void write();
    void queueRead();
    RunningRecipe someRecipe();
    void startRecipe();
    void abandonRecipe();
    void calmDown();
    bool waitsForNothing() const { return m_book.isEmpty() && m_reads.isEmpty() && !m_recipe; }
    std::optional<fxtools::Exchange> exchange();

    // Whole commands; whether they succeeded
    enum class Command
    {
        Read,
        ReadBack,
        Write,
        Recipe,
    };
    static constexpr int commandCount = 4;
    bool command(Command command);
    void runEveryCommand();
    bool readCommand(Command command);
    bool writeCommand();
    bool recipeCommand();

    // What must hold
    void meet(const fxtools::Exchange& exchange);
    void check(const fxtools::Exchange& exchange);
    void checkOneOffRead(const fxtools::Exchange& exchange);
    void checkRead(const fxtools::Exchange& exchange);
    void checkWrite(const fxtools::Exchange& exchange);
    void checkConfirmed(const BookedRequest& write);
    void checkRecipe(const fxtools::Exchange& exchange);
    void checkRecipeWords(const fxtools::RegisterRange& entry, Side side);
    void checkCache(const fxtools::RegisterRange& range);
    void checkUncertainty(const fxtools::Exchange& exchange);
    void checkOutcome(const fxtools::RegisterRange& range, const fxtools::WriteOutcome& outcome,
                      int frames);
    bool wasCarriedOut() const;
    void expect(bool good, const QString& finding);
    void expectHeld(const QVector<HeldValue>& values, Side side, const QString& what);

    bool happens(double probability) { return chance(m_random, probability); }
    quint32 someBits(int bits);
    const PlcRun& someRun();
    const PlcRun& someWritableRun(bool wordsOnly);
    fxtools::RegisterRange someRange(const PlcRun& run);
    fxtools::RegisterRange someLongRange(const PlcRun& run);
    QVector<quint32> someValues(const fxtools::RegisterRange& range);
    void note(const QString& text) const;

    World m_world;
    Random m_random;
    Note m_note;
    ShakenLine m_line;
    std::optional<fxtools::DriverLibrary> m_library;  // loaded by each host anew
    std::optional<fxtools::RegisterCatalogue> m_catalogue;
    std::optional<fxtools::DriverSession> m_session;
    std::optional<fxtools::ExchangeLoop> m_loop;
    WriteBook m_book;
    ReadBook m_reads;
    int m_blocks = 0;                       // of the plan
    QVector<EndedWrite> m_endedWrites;      // of a command
    std::optional<qint64> m_commandEndsBy;  // so many tries of frames
    fxsim::Statistics m_before;             // the exchange
    bool m_isStorm = true;
    bool m_othersFrameRepeats = false;  // one of no recipe, which is not to be given up with it
    bool m_isWriting = false;
    bool m_isCarriedOut = false;  // what was just sent, and not taken for done
    bool m_isInterrupted = false;
    bool m_sumIsForged = false;  // a spoilt sum can be the right one of the flipped bits
    std::optional<RunningRecipe> m_recipe;
    SoakCounts m_counts;
    QVector<QString> m_findings;
    quint64 m_digest = 0;
};

}  // namespace fxsoak
