// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The memory that two plans read, in rows of neighbouring registers. Rows in which nothing is read
// are left out.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/views/plan_report.h"

#include <algorithm>
#include <set>

namespace fxtools {

namespace {

// Of one register or, where a row is coarse, of several: what stands further down wins.
enum class Mark
{
    NotRead,
    Unasked,
    Asked,
    AskedInNextBlock,  // blocks that touch look different
};

const QString markTexts = QStringLiteral("▁░█▆");

constexpr int wordsInRow = 50;
constexpr int bitsInRow = 48;
constexpr int mostRowsOfAType = 12;
constexpr int nameColumns = 9;  // "shortest "

int marksInRow(const RegisterType& type)
{
    return type.isBit() ? bitsInRow : wordsInRow;
}

// The rows in which a plan reads something, each `registers` wide.
QVector<RegisterRange> rowsOf(const QVector<PlannedBlock>& blocks, const RegisterRange& kind,
                              int registers)
{
    std::set<int> numbers;
    for (const PlannedBlock& block : blocks) {
        const RegisterRange& read = block.registers;
        if (read.station != kind.station || read.type.name != kind.type.name)
            continue;
        for (int row = read.first / registers; row <= (read.first + read.count - 1) / registers;
             ++row)
            numbers.insert(row);
    }
    QVector<RegisterRange> rows;
    for (const int row : numbers)
        rows.append({kind.type, kind.station, row * registers, registers});
    return rows;
}

// One of each type and station.
QVector<RegisterRange> kindsOf(const QVector<PlannedBlock>& blocks)
{
    QVector<RegisterRange> kinds;
    for (const PlannedBlock& block : blocks) {
        const RegisterRange& read = block.registers;
        if (std::none_of(kinds.begin(), kinds.end(), [&read](const RegisterRange& kind) {
                return kind.station == read.station && kind.type.name == read.type.name;
            }))
            kinds.append(read);
    }
    return kinds;
}

// The given plan reads all that the shortest reads: its rows are those of both.
QVector<RegisterRange> allRows(const PlanReport& report, int mostRows)
{
    const QVector<PlannedBlock> blocks = report.given.blocks + report.shortest.blocks;
    QVector<RegisterRange> all;
    for (const RegisterRange& kind : kindsOf(blocks)) {
        int registers = marksInRow(kind.type);
        QVector<RegisterRange> rows = rowsOf(blocks, kind, registers);
        while (rows.size() > mostRows) {
            registers *= 2;
            rows = rowsOf(blocks, kind, registers);
        }
        all += rows;
    }
    return all;
}

void mark(QVector<Mark>& marks, const RegisterRange& row, const RegisterRange& read, Mark as)
{
    if (!overlap(row, read))
        return;
    const int registersOfMark = row.count / marks.size();
    const int first = std::max(read.first - row.first, 0);
    const int last = std::min(read.first + read.count - row.first, row.count) - 1;
    for (int place = first / registersOfMark; place <= last / registersOfMark; ++place)
        marks[place] = std::max(marks[place], as);
}

QVector<Mark> marksOf(const QVector<PlannedBlock>& blocks, const RegisterRange& row)
{
    QVector<Mark> marks(marksInRow(row.type), Mark::NotRead);
    bool isNext = false;
    for (const PlannedBlock& block : blocks) {
        if (!overlap(row, block.registers))
            continue;
        mark(marks, row, block.registers, Mark::Unasked);
        for (const RegisterRange& range : block.due)
            mark(marks, row, range, isNext ? Mark::AskedInNextBlock : Mark::Asked);
        isNext = !isNext;
    }
    return marks;
}

QString textOf(const QVector<Mark>& marks)
{
    QString text;
    for (const Mark one : marks)
        text += markTexts[static_cast<int>(one)];
    return text;
}

// Drawn from here on; a register is so wide that a row of words takes the same place as one of
// bits.
constexpr int leftEdge = 90;
constexpr int rightEdge = 770;
constexpr int barHeight = 12;
constexpr int rowHeight = 2 * barHeight + 14;
constexpr int headHeight = 78;

QByteArray text(int x, double y, const QString& words)
{
    return QStringLiteral("<text x=\"%1\" y=\"%2\">%3</text>\n")
        .arg(x)
        .arg(y)
        .arg(words.toHtmlEscaped())
        .toUtf8();
}

// A run of registers in a row, as a rectangle.
QByteArray bar(const RegisterRange& row, const RegisterRange& run, double y, const char* style)
{
    if (!overlap(row, run))
        return {};
    const double step = double(rightEdge - leftEdge) / row.count;
    const int first = std::max(run.first, row.first) - row.first;
    const int end = std::min(run.first + run.count, row.first + row.count) - row.first;
    return QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" class=\"%5\"/>\n")
        .arg(leftEdge + step * first, 0, 'f', 1)
        .arg(y)
        .arg(step * (end - first), 0, 'f', 1)
        .arg(barHeight)
        .arg(QLatin1String(style))
        .toUtf8();
}

QByteArray bars(const QVector<PlannedBlock>& blocks, const RegisterRange& row, double y)
{
    QByteArray drawn = bar(row, row, y, "gap");
    for (const PlannedBlock& block : blocks) {
        drawn += bar(row, block.registers, y, "read");
        for (const RegisterRange& range : block.due)
            drawn += bar(row, range, y, "asked");
        drawn += bar(row, block.registers, y, "block");
    }
    return drawn;
}

QByteArray legend(const PlanReport& report)
{
    QByteArray lines;
    double y = 20;
    for (const ReportedPlan* const plan : {&report.given, &report.shortest}) {
        lines +=
            text(10, y,
                 QStringLiteral("%1: %2 blocks, %3 characters, %4 ms a cycle at %5 baud")
                     .arg(plan->name)
                     .arg(plan->blocks.size())
                     .arg(plan->characters())
                     .arg(milliseconds(costOf(plan->blocks, report.line), report.line), 0, 'f', 0)
                     .arg(report.line.baud));
        y += 18;
    }
    return lines + text(10, y,
                        QStringLiteral("Upper bar given, lower bar shortest. Dark: asked "
                                       "for; light: read with it; frame: a block."));
}

}  // namespace

QStringList planPicture(const PlanReport& report)
{
    QStringList lines;
    const bool isOne = report.areAlike();
    for (const RegisterRange& row : allRows(report, mostRowsOfAType)) {
        const QString label = row.nameOf(0).leftJustified(nameColumns);
        const QString given = textOf(marksOf(report.given.blocks, row));
        const QString shortest = textOf(marksOf(report.shortest.blocks, row));
        if (isOne) {
            lines += "  " + label + given;
            continue;
        }
        lines += "  " + label + report.given.name.leftJustified(nameColumns) + given;
        lines += "  " + QString().leftJustified(nameColumns) +
                 report.shortest.name.leftJustified(nameColumns) + shortest;
    }
    lines +=
        QStringLiteral("  █ and ▆ asked for, in alternate blocks; ░ read with them; ▁ not read");
    return lines;
}

QByteArray planPictureSvg(const PlanReport& report)
{
    const QVector<RegisterRange> rows = allRows(report, fxMaxElements);
    QByteArray svg = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"780\" "
                                    "height=\"%1\" font-family=\"sans-serif\" font-size=\"12\">\n")
                         .arg(headHeight + rowHeight * rows.size())
                         .toUtf8();
    svg += "<style>.gap{fill:#f4f4f4}.read{fill:#f2c98a}.asked{fill:#1f5fa8}"
           ".block{fill:none;stroke:#222}</style>\n"
           "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    svg += legend(report);
    double y = headHeight;
    for (const RegisterRange& row : rows) {
        svg += text(10, y + barHeight, row.nameOf(0));
        svg += bars(report.given.blocks, row, y);
        svg += bars(report.shortest.blocks, row, y + barHeight + 2);
        y += rowHeight;
    }
    return svg + "</svg>\n";
}

}  // namespace fxtools
