// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One PLC as the window sees it: tags by their index, readings in the order in which they came,
// writes that are answered once each. A source lives in the window's thread and never makes it
// wait; what talks to the line is a thread of its own behind it. Times are UTC, in milliseconds
// since 1970.

#pragma once

#include "tools/exchange/statistics.h"
#include "tools/library/register_file.h"
#include "tools/service/tag_service.h"
#include "tools/tags/shortest_plan.h"
#include "tools/tags/tag.h"

#include <QObject>

namespace fxview {

enum class Quality
{
    Good,
    Stale,  // older than three of its periods
    Bad,    // refused or damaged, or the link is down
};

struct Reading
{
    int tag = 0;
    Quality quality = Quality::Bad;
    QString reason;         // why it is not good
    QJsonValue raw, value;  // as in the registers, and scaled; a bit is 0 or 1; null unless good
    qint64 timeMs = 0;      // when the reply came, or the quality changed
};

struct WriteResult
{
    using Outcome = fxtools::WriteAnswer::Outcome;

    int id = 0;
    int tag = 0;
    Outcome outcome = Outcome::Unknown;
    QJsonValue before, after;     // scaled; null: not read
    QString reason;               // why it is not done
    bool isAcknowledged = false;  // where it failed: the PLC took it, and holds another value
};

// A block of the polling plan and what a read of it costs on the line.
struct BlockOfPlan
{
    fxtools::PlannedBlock block;
    double costMs = 0;
};

struct LineReport
{
    fxtools::Statistics statistics;
    QString verdict;      // what is the matter with the line and what to do, in a sentence or two
    int loadPercent = 0;  // how much of the line the periods need
    QStringList late;     // the tags whose periods the line cannot keep
    QVector<BlockOfPlan> blocks;
};

struct RecipeOrder
{
    enum class Act
    {
        Open,      // of a file
        Compare,   // with the PLC
        Download,  // to the PLC, then compared
        Upload,    // from the PLC to a file, then compared
    };

    int id = 0;
    Act act = Act::Open;
    QVector<fxtools::RegisterRun> recipe;  // to compare or to download
    QString file;                          // to open or to upload into; of the recipe
    QString registers;                     // to upload: "D1000:64 32CV210:4"
    bool mayReplace = false;               // an existing file
};

// One register of a recipe.
struct RecipeValue
{
    enum class State
    {
        Untouched,   // by the last download
        NotWritten,  // it ended before
        Written,     // and acknowledged
        Unknown,     // sent, without a clear answer
    };

    fxtools::RegisterRange one;
    quint32 inFile = 0;
    State state = State::Untouched;
    std::optional<quint32> inPlc;  // as read after it
    QString whyNotRead;            // unless it was
    QString objection;             // why it may not be written
};

struct RecipeResult
{
    int id = 0;
    RecipeOrder::Act act = RecipeOrder::Act::Open;
    QString problem;      // what it ended with; empty: it is done
    QString notCompared;  // why not all is read back after it; empty: it is
    QVector<fxtools::RegisterRun> recipe;
    QVector<RecipeValue> values;  // of its registers
};

class PlcSource : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    ~PlcSource() override;

    virtual QString name() const = 0;  // "press1" or "serial:/dev/ttyUSB0"
    virtual bool isSimulated() const = 0;
    virtual QVector<fxtools::Tag> tags() const = 0;  // the same from the beginning to the end

    // A value as a person types it; the source judges it. written() tells the result with this id:
    // of the write bar they count up from 1, of the screens down from -1.
    virtual void write(int id, int tag, const QString& text) = 0;

    // The same for what moves something: it is sent within a second, or refused.
    virtual void writeSoon(int id, int tag, const QString& text) = 0;

    // A command for a simulated PLC, such as "faults silence=0.1" or "poke D100 5".
    virtual void benchCommand(const QString& command) = 0;

    // recipeEnded() tells the result of each order once; one that is cancelled ends early. Before
    // and after each entry of a transfer, recipeMoved() tells how many are over: of those written,
    // and after a download of those read back.
    virtual void order(const RecipeOrder& order) = 0;
    virtual void cancelRecipe(int id) = 0;

signals:
    void linkChanged(bool isUp, const QString& reason);

    // All since the last, 60 times a second at most; of the exchanges the newest thousand.
    void readings(const QVector<Reading>& readings);
    void exchanges(const QVector<fxtools::Exchange>& exchanges);

    void lineReport(const LineReport& report);  // once a second
    void written(const WriteResult& result);
    void recipeMoved(int id, int done, int total, bool isReadingBack);
    void recipeEnded(const RecipeResult& result);
    void benchRefused(const QString& command, const QString& reason);
};

}  // namespace fxview
