// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A screen: pages of elements on a grid, each of which shows or writes one tag. Rows and columns
// count from 1 on. There is no widget in here.

#pragma once

#include "tools/tags/tag.h"

#include <array>

namespace fxview {

enum class ElementKind
{
    Lamp,
    PushButton,
    Switch,
    NumericDisplay,
    NumericEntry,
    Bar,
    Dial,
    Trend,
    Text,
};

// As they are called in a screen file, in the order of ElementKind.
constexpr std::array<const char*, 9> elementNames = {
    "lamp", "push-button", "switch", "numeric-display", "numeric-entry", "bar",
    "dial", "trend",       "text"};

enum class ButtonAction
{
    Momentary,  // on while it is pressed
    Set,
    Reset,
};

struct Element
{
    ElementKind kind = ElementKind::Text;
    int tag = -1;  // -1: only a text
    int row = 1;
    int column = 1;
    int width = 1;  // in columns
    int height = 1;
    QString label;
    QString text;             // of an element without a tag
    QString onText, offText;  // of a bit; empty: "on" and "off"
    QString onColour = QStringLiteral("green");
    QString offColour = QStringLiteral("grey");
    ButtonAction action = ButtonAction::Momentary;
    std::optional<double> min, max;  // the ends of a scale
    std::optional<int> decimals;     // nothing: as many as the value has
    qint64 spanMs = 60000;           // of a trend
};

struct GridPage
{
    QString title;
    int columns = 12;
    int rows = 8;
    QVector<Element> elements;  // by row and column, as the Tab key goes
};

struct Screen
{
    QVector<GridPage> pages;
};

constexpr int mostScreenPages = 100;
constexpr int mostGridCells = 50;  // in a row or a column
extern const QStringList lampColours;

bool isWriting(ElementKind kind);
QString nameOf(ElementKind kind);  // as in a screen file

}  // namespace fxview
