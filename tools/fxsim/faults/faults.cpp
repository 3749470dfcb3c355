// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See faults.h: the table of faults, and plans from and to text.

#include "tools/fxsim/faults/faults.h"

#include <QStringList>

#include <limits>

namespace fxsim {

namespace {

constexpr int maxMs = 600000;  // ten minutes: nobody waits longer for a reply
constexpr int maxCount = 1000;

// clang-format off
const FaultFacts facts[faultKinds] = {
    // kind                    value  least  most      name             text
    {FaultKind::PowerCycle,     500,     0, maxMs,    "power-cycle",   "the PLC goes off for VALUE ms; memory and program start anew"},
    {FaultKind::LinkDrop,      1000,     0, maxMs,    "link-drop",     "the link is closed under the host and comes back after VALUE ms"},
    {FaultKind::Silence,          0,     0, 0,        "silence",       "the request is carried out, its reply is lost"},
    {FaultKind::Nak,              0,     0, 0,        "nak",           "the request is refused with NAK and not carried out"},
    {FaultKind::Delay,         1500,     0, maxMs,    "delay",         "the reply comes VALUE ms late"},
    {FaultKind::WrongSum,         0,     0, 0,        "wrong-sum",     "the reply carries a wrong sum (not on a lone ACK)"},
    {FaultKind::FlippedBits,      1,     1, maxCount, "flipped-bits",  "VALUE bits of the reply are flipped (two can hide from the sum)"},
    {FaultKind::Bit7,             0,     0, 0,        "bit7",          "bit 7 carries even parity, as when a 7E1 line is read as 8N1"},
    {FaultKind::Truncated,        0,     0, maxCount, "truncated",     "only the first VALUE characters arrive (0: a number at random)"},
    {FaultKind::LostStx,          0,     0, 0,        "lost-stx",      "the STX is missing (not on a lone ACK)"},
    {FaultKind::LostEtx,          0,     0, 0,        "lost-etx",      "the ETX is missing (not on a lone ACK)"},
    {FaultKind::JunkBefore,       0,     0, maxCount, "junk-before",   "VALUE stray characters come before the reply (0: 1 to 8)"},
    {FaultKind::JunkAfter,        0,     0, maxCount, "junk-after",    "VALUE stray characters come after the reply (0: 1 to 8)"},
    {FaultKind::Duplicate,        0,     0, maxMs,    "duplicate",     "the reply comes twice, VALUE ms apart"},
    {FaultKind::Slices,          20,     0, maxMs,    "slices",        "the reply comes in slices of 32 characters, VALUE ms apart"},
    {FaultKind::Echo,             0,     0, 0,        "echo",          "the request comes back before the reply"},
};
// clang-format on

constexpr const char* mixedName = "mixed";
const FaultKind lineFaults[] = {
    FaultKind::Silence,     FaultKind::Nak,        FaultKind::Delay,     FaultKind::WrongSum,
    FaultKind::FlippedBits, FaultKind::Bit7,       FaultKind::Truncated, FaultKind::LostStx,
    FaultKind::LostEtx,     FaultKind::JunkBefore, FaultKind::JunkAfter, FaultKind::Duplicate,
    FaultKind::Slices,      FaultKind::Echo,
};

struct PlanError
{
    QString text;
};

const FaultFacts* findFacts(const QString& name)
{
    for (const FaultFacts& row : facts) {
        if (name == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

[[noreturn]] void refuse(const QString& item, const QString& why)
{
    throw PlanError{QStringLiteral("fault '%1': %2").arg(item, why)};
}

double parseRate(const QString& item, QString text)
{
    const bool percent = text.endsWith('%');
    if (percent)
        text.chop(1);
    bool ok = false;
    const double rate = text.toDouble(&ok) / (percent ? 100 : 1);
    if (!ok || !(rate >= 0 && rate <= 1))
        refuse(item, QStringLiteral("the rate must be 0 to 1, or 0% to 100%"));
    return rate;
}

qint64 parseExchange(const QString& item, const QString& text)
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    if (!ok || number < 1)
        refuse(item,
               QStringLiteral("exchanges are numbers from 1, as in @3, @7-9, @20- or @3+7-9"));
    return number;
}

ExchangeSpan parseSpan(const QString& item, const QString& text)
{
    const int dash = text.indexOf('-');
    if (dash < 0) {
        const qint64 only = parseExchange(item, text);
        return {only, only};
    }
    const QString end = text.mid(dash + 1);
    const ExchangeSpan span{parseExchange(item, text.left(dash)),
                            end.isEmpty() ? std::numeric_limits<qint64>::max()
                                          : parseExchange(item, end)};
    if (span.last < span.first)
        refuse(item, QStringLiteral("the span ends before it begins"));
    return span;
}

int parseValue(const QString& item, const QString& text, const FaultFacts& row)
{
    if (row.highestValue == 0)
        refuse(item, QStringLiteral("%1 takes no value").arg(row.name));
    bool ok = false;
    const int value = text.toInt(&ok);
    const QString range = QStringLiteral("%1 to %2").arg(row.lowestValue).arg(row.highestValue);
    if (!ok || value < row.lowestValue || value > row.highestValue)
        refuse(item, QStringLiteral("the value must be %1").arg(range));
    return value;
}

// `when` fills in the rate or the spans of a rule from what follows the name.
FaultRule parseWhen(const QString& item, int whenAt)
{
    if (whenAt < 0)
        refuse(item, QStringLiteral("say when, as in NAME=0.05 or NAME@3"));
    FaultRule rule;
    const QString when = item.mid(whenAt + 1);
    if (item[whenAt] == '=') {
        rule.rate = parseRate(item, when);
        return rule;
    }
    for (const QString& span : when.split('+'))
        rule.spans.append(parseSpan(item, span));
    return rule;
}

int whenPosition(const QString& item)
{
    const int rateAt = item.indexOf('=');
    return rateAt >= 0 ? rateAt : item.indexOf('@');
}

// One of the line faults in so many exchanges of a hundred; its value is that of the delays among
// them.
void appendMixed(FaultPlan& plan, const QString& item, const FaultRule& when, const QString& value)
{
    if (!when.spans.isEmpty())
        refuse(item, QStringLiteral("%1 goes by rate only").arg(mixedName));
    const FaultFacts& delay = factsOf(FaultKind::Delay);
    const int delayMs = value.isEmpty() ? delay.value : parseValue(item, value, delay);
    const int kinds = static_cast<int>(std::size(lineFaults));
    for (const FaultKind kind : lineFaults) {
        const int faultValue = kind == FaultKind::Delay ? delayMs : factsOf(kind).value;
        plan.append({kind, faultValue, when.rate / kinds, {}});
    }
}

void appendItem(FaultPlan& plan, const QString& item)
{
    const int whenAt = whenPosition(item);
    const QString named = whenAt < 0 ? item : item.left(whenAt);
    const QString name = named.section(':', 0, 0);
    const QString value = named.section(':', 1);
    const FaultFacts* row = findFacts(name);
    if (row == nullptr && name != QLatin1String(mixedName))
        throw PlanError{
            QStringLiteral("there is no fault '%1'; --faults help lists them").arg(name)};
    FaultRule rule = parseWhen(item, whenAt);
    if (row == nullptr) {
        appendMixed(plan, item, rule, value);
        return;
    }
    rule.kind = row->kind;
    rule.value = value.isEmpty() ? row->value : parseValue(item, value, *row);
    plan.append(rule);
}

QString spanText(const ExchangeSpan& span)
{
    if (span.first == span.last)
        return QString::number(span.first);
    const bool open = span.last == std::numeric_limits<qint64>::max();
    return QString::number(span.first) + '-' + (open ? QString() : QString::number(span.last));
}

QString ruleText(const FaultRule& rule)
{
    const FaultFacts& row = factsOf(rule.kind);
    QString text = QLatin1String(row.name);
    if (rule.value != row.value)
        text += ':' + QString::number(rule.value);
    if (rule.spans.isEmpty())
        return text + '=' + QString::number(rule.rate);
    QStringList spans;
    for (const ExchangeSpan& span : rule.spans)
        spans.append(spanText(span));
    return text + '@' + spans.join('+');
}

}  // namespace

const FaultFacts& factsOf(FaultKind kind)
{
    return facts[static_cast<int>(kind)];
}

ParsedFaults parseFaults(const QString& text)
{
    ParsedFaults parsed;
    if (text.isEmpty() || text == QLatin1String("none"))
        return parsed;
    try {
        for (const QString& item : text.split(','))
            appendItem(parsed.plan, item.trimmed());
    } catch (const PlanError& error) {
        parsed.plan.clear();
        parsed.error = error.text;
    }
    return parsed;
}

QString faultPlanText(const FaultPlan& plan)
{
    QStringList rules;
    for (const FaultRule& rule : plan)
        rules.append(ruleText(rule));
    return rules.isEmpty() ? QStringLiteral("none") : rules.join(',');
}

QByteArray faultHelp()
{
    QByteArray help =
        "Faults, as NAME=RATE or NAME@EXCHANGES, with NAME:VALUE where a value is named:\n";
    for (const FaultFacts& row : facts) {
        help += "  " + QByteArray(row.name).leftJustified(13) + row.text;
        if (row.highestValue > 0)
            help += "; VALUE is " + QByteArray::number(row.value) + " unless given";
        help += '\n';
    }
    help += "  " + QByteArray(mixedName).leftJustified(13) +
            "all from silence to echo, each at a fourteenth of RATE; VALUE is the ms of the "
            "delays\n"
            "Example: --faults silence=0.05,nak=2%,delay:800@3,wrong-sum@7-9+20-\n";
    return help;
}

}  // namespace fxsim
