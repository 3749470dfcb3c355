// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The demo's opening: what can be addressed, and how a screen becomes a polling plan. The driver
// does not show its plan, but its first cycle of frames is the plan.

#include "host/addresses.h"
#include "host/demo/chapters.h"
#include "host/report/table.h"

namespace fxhost {

namespace {

QString widthText(RegisterWidth width)
{
    switch (width) {
    case RegisterWidth::Bit:
        return QStringLiteral("bit");
    case RegisterWidth::Word:
        return QStringLiteral("16 bits");
    case RegisterWidth::DoubleWord:
        return QStringLiteral("32 bits");
    }
    return {};
}

// What one block of the plan reads, as a range.
RegisterRange blockRange(const RegisterCatalogue& catalogue, const VARIABLE& block)
{
    RegisterRange range;
    range.type = *catalogue.find(block.registerType);
    range.station = block.stationNo;
    range.first = block.addressIndex;
    range.count = range.type.isBit() ? 8 * block.count : block.count;
    return range;
}

QString fromToText(const RegisterRange& range)
{
    return range.count == 1
               ? range.nameOf(0)
               : range.nameOf(0) + QStringLiteral(" … ") + range.nameOf(range.count - 1);
}

bool isInside(const RegisterRange& inner, const RegisterRange& outer)
{
    return inner.type.name == outer.type.name && inner.station == outer.station &&
           inner.first >= outer.first && inner.first < outer.first + outer.count;
}

QString askedFor(const QVector<ScreenItem>& screen, const RegisterRange& block)
{
    QStringList names;
    for (const ScreenItem& item : screen) {
        if (isInside(item.range, block))
            names += item.range.text();
    }
    return names.join(' ');
}

QString visibleFrame(const QByteArray& frame)
{
    QString text = QString::fromLatin1(frame);
    return text.replace(QChar(stx), QStringLiteral("␂")).replace(QChar(etx), QStringLiteral("␃"));
}

// A PLC that lets the very first exchange fail is not there: no use in asking for every block.
Round pollOnceOrGiveUp(DemoBench& bench)
{
    return runUntil(bench.loop(), [&bench](const Round& soFar) {
        const bool isDead = !soFar.ended.isEmpty() && soFar.ended.first().hasFailed();
        return isDead || soFar.ended.size() >= bench.blocks();
    });
}

}  // namespace

void showRegisterTypes(DemoBench& bench)
{
    bench.console().heading("Register types, as the driver describes them");
    Table table({{"type"}, {"numbers"}, {"width"}, {"written"}});
    for (const RegisterType& type : bench.catalogue().all()) {
        table.add({type.name, limitsText(type), widthText(type.width),
                   type.writable ? QStringLiteral("yes") : QStringLiteral("no")});
    }
    for (const QString& line : table.lines())
        bench.console().line(line);
}

void showPlan(DemoBench& bench)
{
    bench.console().heading(
        QStringLiteral("%1 ranges of a screen become a plan of %2 blocks; its first cycle")
            .arg(bench.screen().size())
            .arg(bench.blocks()));
    const qint64 startedUs = bench.loop().elapsedUs();
    const Round cycle = pollOnceOrGiveUp(bench);
    const qint64 cycleMs = (bench.loop().elapsedUs() - startedUs) / 1000;
    Table table({{"block"}, {"bytes", Align::Right}, {"frame"}, {"asked for"}});
    for (const Exchange& exchange : cycle.ended) {
        const RegisterRange block = blockRange(bench.catalogue(), exchange.frame.variable);
        table.add({fromToText(block), QString::number(exchange.frame.replyDataChars / 2),
                   visibleFrame(requestBytes(exchange.frame)), askedFor(bench.screen(), block)});
    }
    for (const QString& line : table.lines())
        bench.console().line(line);
    bench.confirm(cycle.allGood() && cycle.ended.size() == bench.blocks(),
                  QStringLiteral("every block was answered; the cycle took %1 ms").arg(cycleMs));
}

}  // namespace fxhost
