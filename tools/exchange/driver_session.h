// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One connection of the driver: what the host provides for it (host memory with the two request
// bytes, recipe words, mutex), the property string, and access to the cache. It sends nothing: the
// exchange loop does. The driver serves one connection, so there is one session at a time.

#pragma once

#include "tools/exchange/exchange.h"
#include "tools/library/registers.h"

#include <QMutex>

#include <functional>
#include <vector>

namespace fxtools {

struct SessionSettings
{
    int failLimit = 3;       // rejections in a row that end an exchange
    int wordsPerFrame = 32;  // 64 bytes, what a PLC of this family takes in one frame
};

enum class RecipeDirection
{
    Download,  // host to PLC
    Upload,    // PLC to host
};

class DriverSession
{
public:
    // Called from inside the driver: only values(), write() and queueRead() may be called then.
    std::function<void(const QString& registerType, int station, int number)> onValueChanged;
    std::function<void(int recipeWord)> onRecipeWord;

    DriverSession(const DriverLibrary& library, const SessionSettings& settings);
    ~DriverSession();
    DriverSession(const DriverSession&) = delete;
    DriverSession& operator=(const DriverSession&) = delete;

    const DriverLibrary& library() const { return m_library; }
    const SessionSettings& settings() const { return m_settings; }
    QString propertyString() const;

    // Empties the plan, the queues and the cache.
    void forgetValues();

    // Call it before these ranges are planned, when nothing is queued: empties the cache if the
    // frames must become shorter. The plan takes a counter of two words for one, so that a block of
    // counters could be twice as long as a frame may be.
    void fitFrames(const QVector<RegisterRange>& ranges);

    // Replaces the polling plan and returns the number of blocks.
    int setPlan(const QVector<RegisterRange>& ranges);
    KEY_ADDRESS queueRead(const RegisterRange& range);  // returns the request, as it is queued

    // One number for each register: 0 or 1, 16 bits or 32 bits.
    QVector<quint32> values(const RegisterRange& range) const;
    void write(const RegisterRange& range, const QVector<quint32>& values);

    // Nothing else may use the recipe memory during a transfer.
    std::vector<quint16>& recipeWords() { return m_recipeWords; }
    // The entries use the recipe memory one after the other, from word 0 on. Returns their number.
    int startRecipe(RecipeDirection direction, const QVector<RegisterRange>& entries);
    bool recipeRuns(RecipeDirection direction);
    void giveUpFrame();  // the next one, or the one in flight, fails at once

    // What the last frame is for. Call it before the reply is handed over.
    ExchangeKind kindOf(const FRAME_PRO& frame);

private:
    static int forwardCallback(int linkNo, int stationNo, QString& text, int value);
    void handleCallback(int stationNo, const QString& text, int value);

    const DriverLibrary& m_library;
    SessionSettings m_settings;
    bool m_isHalved = false;
    std::vector<unsigned char> m_hostMemory;
    std::vector<quint16> m_recipeWords;
    QMutex m_mutex;
};

}  // namespace fxtools
