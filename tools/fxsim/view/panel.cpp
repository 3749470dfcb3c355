// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/view/panel.h"

#include "tools/fxsim/plc/devices.h"

#include <algorithm>

namespace fxsim {

namespace {

constexpr int nameWidth = 5;
constexpr int groupWidth = nameWidth + bitsPerGroup + 3;
constexpr int wordWidth = 13;  // "D7999 -32768 "
constexpr int roomyRows = 20;
constexpr int roomyGroups = 4;
constexpr int tightGroups = 2;
constexpr int groupsInAll = inputCount / bitsPerGroup;
constexpr int linesBelow = 2;  // message and keys

struct GroupColumn
{
    const char* title;
    Device first;
};

QString bitText(const PanelState& state, const Simulator& plc, const Device& device, bool on)
{
    const bool byHand = *device.type->name == 'X' && plc.switches().contains(device.number);
    if (state.isUtf8)
        return byHand ? (on ? "■" : "□") : (on ? "●" : "○");
    return QString(byHand ? (on ? '#' : '-') : (on ? '*' : '.'));
}

QString groupText(const PanelState& state, Simulator& plc, const Device& first)
{
    const PlcMemory& memory = plc.memory();
    if (!memory.has(first.address(), 1))
        return {};
    QString text = first.name().leftJustified(nameWidth);
    for (int bit = 0; bit < bitsPerGroup; ++bit)
        text += bitText(state, plc, first.next(bit), valueOf(memory, first.next(bit)) != 0);
    return text;
}

QString stateText(const PanelState& state, Simulator& plc)
{
    const QString mode = state.isOff ? "OFF" : plc.isRunning() ? "RUN" : "STOP";
    return QString("fxsim  %1  exchanges %2  faults %3")
        .arg(mode.leftJustified(4))
        .arg(plc.statistics().exchanges)
        .arg(faultPlanText(plc.settings().faults));
}

void addGroups(Panel& panel, const PanelState& state, Simulator& plc)
{
    const QVector<GroupColumn> all = {{"inputs", device("X0")},
                                      {"outputs", device("Y0")},
                                      {"relays", device("M0")},
                                      {"timers", device("T0")},
                                      {"counters", device("C0")}};
    const int columnCount = qBound(1, (state.columns + 3) / groupWidth, all.size());
    const int groups = state.rows >= roomyRows ? roomyGroups : tightGroups;
    const int firstGroup =
        qBound(0, state.selected / bitsPerGroup - groups + 1, groupsInAll - groups);
    QString titles;
    for (int column = 0; column < columnCount; ++column)
        titles += QString::fromLatin1(all[column].title).leftJustified(groupWidth);
    panel.lines.append(titles);
    for (int group = firstGroup; group < firstGroup + groups; ++group) {
        QString line;
        for (int column = 0; column < columnCount; ++column)
            line += groupText(state, plc, all[column].first.next(bitsPerGroup * group))
                        .leftJustified(groupWidth);
        if (group == state.selected / bitsPerGroup) {
            panel.selectedLine = panel.lines.size();
            panel.selectedColumn = nameWidth + state.selected % bitsPerGroup;
        }
        panel.lines.append(line);
    }
}

void addWords(Panel& panel, const PanelState& state, Simulator& plc)
{
    const Device first = device("D0");
    const int perLine = std::max(1, (state.columns + 1) / wordWidth);
    const int last = first.type->last;
    int number = qBound(0, state.firstWord, last);
    while (panel.lines.size() < state.rows - linesBelow) {
        QString line;
        for (int column = 0; column < perLine && number <= last; ++column, ++number) {
            const Device word{first.type, number};
            if (plc.memory().has(word.address(), 2))
                line += (word.name().leftJustified(nameWidth) + ' ' +
                         QString::number(valueOf(plc.memory(), word)).rightJustified(6))
                            .leftJustified(wordWidth);
        }
        panel.lines.append(line);
    }
}

QString keysText(const PanelState& state)
{
    const QString whole = "arrows choose  space switch  a automatic  s RUN/STOP  "
                          ": command  q quit";
    return whole.size() <= state.columns ? whole : "space switch  s stop  : command  q quit";
}

}  // namespace

Panel makePanel(const PanelState& state, Simulator& plc)
{
    Panel panel;
    panel.lines.append(stateText(state, plc));
    panel.lines.append(state.links);
    if (state.rows >= roomyRows)
        panel.lines.append(QString());
    addGroups(panel, state, plc);
    panel.lines.append(QString());
    if (!state.answer.isEmpty())
        panel.lines += state.answer;
    else
        addWords(panel, state, plc);
    while (panel.lines.size() > std::max(0, state.rows - linesBelow))
        panel.lines.removeLast();
    while (panel.lines.size() < state.rows - linesBelow)
        panel.lines.append(QString());
    panel.lines.append(state.prompt.isEmpty() ? state.message
                                              : state.prompt.right(state.columns - 1) + '_');
    panel.lines.append(keysText(state));
    for (QString& line : panel.lines)
        line.truncate(state.columns);
    while (panel.lines.size() > state.rows)
        panel.lines.removeFirst();
    if (panel.selectedLine >= state.rows - linesBelow || panel.selectedColumn >= state.columns)
        panel.selectedLine = -1;
    return panel;
}

}  // namespace fxsim
