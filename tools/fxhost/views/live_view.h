// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A screen of values that change. The first line tells the state of the link, the last one the
// keys; between them stands one cell a value, side by side where the screen is wide, scrolled where
// they do not fit:
//
//   sim:  connected, cycle 12: 34 ms
//   D0      12345  ▁▂▃▅▇█▆▃   now      TV0       60  ▁▁▁▁▁▁▁█   now
//   X0:16   ○○●●○○○○ ○○○○○○○○ now
//   1-3 of 3  q quit  space pause  s sort  w write
//
// Nothing in it knows a PLC, a terminal or a clock.

#pragma once

#include "tools/fxhost/views/console.h"
#include "tools/fxhost/views/keyboard.h"

#include <QVector>

#include <functional>
#include <optional>

namespace fxtools {

// What one cycle says of one cell.
struct Reading
{
    QString name;                  // as it was asked for: "D8000", "X0:16"
    QString text;                  // "12345", "○○●●○○○○"
    std::optional<double> number;  // nothing: bits and texts, which have no trend
    QString problem;               // one word for why it was not read; empty: it was
    std::optional<double> deadband = std::nullopt;  // nothing: that of all
    bool isAlarm = false;                           // the text says which
};

class LiveView
{
public:
    // What a key asks the owner to do.
    enum class Wish
    {
        Nothing,
        Quit,
        Write,  // what takeAssignment() returns
    };

    struct Settings
    {
        QString link;
        bool hasTitles = true;  // and the keys
        bool mayWrite = true;
        std::function<QString(const QString& assignment)> mistakeIn = {};  // empty: none
    };

    explicit LiveView(const Settings& settings) : m_settings(settings) {}

    // After each cycle. The cells keep their places.
    // A change by `deadband` or less is not marked.
    void update(const QVector<Reading>& readings, qint64 nowMs, double deadband = 0);
    void markAllStale(const QString& problem);

    void setState(const QString& state, bool isGood, qint64 nowMs);
    void setMessage(const QString& message) { m_message = message; }
    bool isPaused() const { return m_isPaused; }

    Wish press(const Key& key);
    QString takeAssignment();  // "D100=5", once

    // All lines, for a screen of this size whose last line stays free for the cursor.
    QStringList lines(const Console& console, ScreenSize size, qint64 nowMs);
    void end() { m_hasEnded = true; }  // no key is taken any more

private:
    struct Cell
    {
        Reading reading;
        QVector<double> history;  // of the last cycles, the newest at the end
        qint64 readMs = -1;       // -1: never
        qint64 changedMs = -1;
        bool isChanged = false;  // in the last cycle
    };

    enum class Order
    {
        AsAsked,
        ByName,
        LastChanged,
    };

    struct Layout
    {
        int nameColumns = 0;
        int valueColumns = 0;   // of numbers; bits may reach into the trend
        int middleColumns = 0;  // value and trend
        int abreast = 1;
        int rows = 1;
    };

    Layout layoutFor(ScreenSize size) const;
    QVector<int> order() const;
    int staleCells() const;
    QString cellText(const Console& console, const Cell& cell, const Layout& layout,
                     qint64 nowMs) const;
    QString stateLine(const Console& console, qint64 nowMs) const;
    QString keyLine() const;
    QString question() const;
    QString example() const;
    Wish command(const Key& key);
    Wish edit(const Key& key);
    void scroll(Key::Kind kind);

    Settings m_settings;
    QVector<Cell> m_cells;
    QString m_state = QStringLiteral("waiting for the first reply");
    bool m_isGood = true;
    qint64 m_badSinceMs = 0;
    QString m_message;  // of the last command, until the next key
    Order m_order = Order::AsAsked;
    bool m_isPaused = false;
    bool m_hasEnded = false;
    int m_scrolled = 0;              // cells above the screen
    int m_pageCells = 1;             // as last drawn
    int m_valueColumns = 5;          // the widest so far: cells do not jump to and fro
    std::optional<QString> m_input;  // what is being typed after "write"
    bool m_isAsking = false;         // whether to write it
};

// The last numbers as bars of eight heights between the least and the greatest; blank while they
// are all the same.
QString trendText(const QVector<double>& history, int columns);

// "now", "12 s", "3 min", "5 h", "2 d"; "never" below zero.
QString ageText(qint64 ageMs);

}  // namespace fxtools
