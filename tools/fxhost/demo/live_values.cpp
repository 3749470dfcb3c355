// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values that change because the PLC runs its program: polled in every cycle, read from the cache
// of the driver.

#include "tools/fxhost/demo/chapters.h"
#include "tools/fxhost/views/table.h"
#include "tools/library/values.h"

namespace fxtools {

namespace {

constexpr int redrawEveryMs = 50;
constexpr int snapshotEveryMs = 2500;  // where nothing can be redrawn

QString valuesText(const ScreenItem& item, const DriverSession& session)
{
    const ValueFormat format = item.isSigned ? ValueFormat::Signed : ValueFormat::Unsigned;
    const QVector<quint32> values = session.values(item.range);
    if (item.range.type.isBit())
        return bitsText(values);
    QStringList texts;
    for (const quint32 value : values)
        texts += valueText(value, item.range.type, format);
    return texts.join(QStringLiteral("  "));
}

class LiveTable
{
public:
    explicit LiveTable(DemoBench& bench) : m_bench(bench), m_last(bench.screen().size()) {}

    void noteCycle() { ++m_cycles; }
    void draw(qint64 cycleMs);
    int rowsChanged() const { return m_rowsChanged.count(true); }

private:
    DemoBench& m_bench;
    QVector<QString> m_last;
    QVector<bool> m_rowsChanged = QVector<bool>(m_last.size(), false);
    int m_cycles = 0;
};

void LiveTable::draw(qint64 cycleMs)
{
    const Console& console = m_bench.console();
    Table table({{"address"}, {"value"}, {"meaning"}});
    for (int row = 0; row < m_last.size(); ++row) {
        const ScreenItem& item = m_bench.screen()[row];
        const QString text = valuesText(item, m_bench.session());
        const bool isNew = !m_last[row].isEmpty() && text != m_last[row];
        m_rowsChanged[row] |= isNew;
        m_last[row] = text;
        const QString wide = text.leftJustified(28);  // keeps the columns where they are
        table.add({item.range.text(), isNew ? console.changed(wide) : wide, item.label});
    }
    QStringList lines = table.lines();
    lines += console.dim(QStringLiteral("  cycle %1: %2 ms; the driver reported %3 changed values")
                             .arg(m_cycles)
                             .arg(cycleMs)
                             .arg(m_bench.valuesChanged));
    m_bench.console().redraw(lines);
}

}  // namespace

void showLiveValues(DemoBench& bench, int forMs)
{
    bench.console().heading(forMs < 0 ? "Live values, until Ctrl-C" : "Live values");
    LiveTable table(bench);
    const qint64 startedUs = bench.loop().elapsedUs();
    qint64 nowUs = startedUs;
    qint64 nextDrawUs = startedUs;
    const int drawEveryMs = bench.console().isTerminal() ? redrawEveryMs : snapshotEveryMs;
    while (forMs < 0 || nowUs - startedUs < qint64(1000) * forMs) {
        const qint64 cycleStartUs = nowUs;
        const Round cycle = bench.pollOnce();
        nowUs = bench.loop().elapsedUs();
        if (cycle.end != RoundEnd::Done)
            break;
        table.noteCycle();
        if (nowUs < nextDrawUs)
            continue;
        table.draw((nowUs - cycleStartUs) / 1000);
        nextDrawUs = nowUs + qint64(1000) * drawEveryMs;
    }
    bench.console().endRedraw();
    if (forMs >= 0) {
        bench.confirm(table.rowsChanged() > 0,
                      QStringLiteral("%1 rows changed while the PLC ran its program")
                          .arg(table.rowsChanged()));
    }
}

}  // namespace fxtools
