// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See faults.h: the table of faults, and plans from and to text.

#include "tools/fxsim/faults/faults.h"

#include "tools/fxsim/plc/number_text.h"

#include <QRegularExpression>
#include <QStringList>

#include <limits>

namespace fxsim {

namespace {

constexpr int maxMs = 10 * 60 * 1000;  // nobody waits longer for a reply
constexpr int maxCount = 1000;

// clang-format off
constexpr FaultFacts facts[] = {
    // kind                 default  least  most      name             text
    {FaultKind::PowerCycle,     500,     0, maxMs,    "power-cycle",   "the PLC is off for VALUE ms and starts afresh"},
    {FaultKind::LinkDrop,      1000,     0, maxMs,    "link-drop",     "the link closes and comes back after VALUE ms"},
    {FaultKind::Silence,          0,     0, 0,        "silence",       "the request is carried out, but its reply is lost"},
    {FaultKind::Nak,              0,     0, 0,        "nak",           "the request is refused with NAK and not carried out"},
    {FaultKind::Delay,         1500,     0, maxMs,    "delay",         "the reply is VALUE ms late"},
    {FaultKind::WrongSum,         0,     0, 0,        "wrong-sum",     "the reply has a wrong checksum (a lone ACK or NAK has none)"},
    {FaultKind::FlippedBits,      1,     1, maxCount, "flipped-bits",  "VALUE bits of the reply are flipped"},
    {FaultKind::Bit7,             0,     0, 0,        "bit7",          "bit 7 carries even parity, as when a 7E1 line is read as 8N1"},
    {FaultKind::Truncated,        0,     0, maxCount, "truncated",     "only VALUE characters arrive (0: a random number)"},
    {FaultKind::LostStx,          0,     0, 0,        "lost-stx",      "the STX is missing (a lone ACK or NAK has none)"},
    {FaultKind::LostEtx,          0,     0, 0,        "lost-etx",      "the ETX is missing (a lone ACK or NAK has none)"},
    {FaultKind::JunkBefore,       0,     0, maxCount, "junk-before",   "VALUE characters come before the reply (0: 1 to 8)"},
    {FaultKind::JunkAfter,        0,     0, maxCount, "junk-after",    "VALUE characters come after the reply (0: 1 to 8)"},
    {FaultKind::Duplicate,        0,     0, maxMs,    "duplicate",     "the reply arrives twice, VALUE ms apart"},
    {FaultKind::Slices,          20,     0, maxMs,    "slices",        "the reply comes in slices of 32, VALUE ms apart"},
    {FaultKind::Echo,             0,     0, 0,        "echo",          "the request is echoed before the reply"},
};
// clang-format on

constexpr bool factsStandInOrderOfKinds()
{
    int kind = 0;
    for (const FaultFacts& row : facts) {
        if (static_cast<int>(row.kind) != kind++)
            return false;
    }
    return kind == faultKinds;
}
static_assert(factsStandInOrderOfKinds());

constexpr const char* mixedName = "mixed";  // all faults from silence to echo, the last kind
constexpr int firstMixed = static_cast<int>(FaultKind::Silence);
constexpr int mixedKinds = faultKinds - firstMixed;

[[noreturn]] void refuseFault(const QString& why)
{
    throw Error(ExitCode::Usage, why);
}

QStringList faultNames()
{
    QStringList names{QLatin1String(mixedName)};
    for (const FaultFacts& row : facts)
        names.append(QLatin1String(row.name));
    return names;
}

const FaultFacts* findFacts(const QString& name)
{
    for (const FaultFacts& row : facts) {
        if (name == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

double parseRate(QString text)
{
    const bool percent = text.endsWith('%');
    if (percent)
        text.chop(1);
    bool ok = false;
    const double rate = text.toDouble(&ok) / (percent ? 100 : 1);
    if (!ok || !(rate >= 0 && rate <= 1))
        refuseFault("the rate must be 0 to 1, or 0% to 100%");
    return rate;
}

ExchangeSpan parseSpan(const QString& text)
{
    static const QRegularExpression form("^([0-9]+)(-([0-9]*))?$");
    const QRegularExpressionMatch match = form.match(text);
    ExchangeSpan span{match.captured(1).toLongLong(), match.captured(3).toLongLong()};
    if (match.capturedLength(2) == 0)
        span.last = span.first;
    else if (match.capturedLength(3) == 0)
        span.last = std::numeric_limits<qint64>::max();
    if (span.first < 1 || span.last < 1)
        refuseFault("exchanges are numbered from 1, as in @3, @7-9, @20- or @3+7-9");
    if (span.last < span.first)
        refuseFault("the range of exchanges ends before it starts");
    return span;
}

int parseValue(const QString& text, const FaultFacts& row)
{
    if (text.isEmpty())
        return row.value;
    if (row.highestValue == 0)
        refuseFault(QString("%1 takes no value").arg(row.name));
    return parseNumber(text, row.lowestValue, row.highestValue, "value");
}

// The rate is shared among the faults; the value is that of the delays among them.
void appendMixed(FaultPlan& plan, const FaultRule& when, const QString& value)
{
    if (!when.spans.isEmpty())
        refuseFault(QString("%1 takes a rate, as in %1=0.1").arg(mixedName));
    const int delayMs = parseValue(value, factsOf(FaultKind::Delay));
    for (int index = firstMixed; index < faultKinds; ++index) {
        const FaultFacts& row = facts[index];
        plan.append({row.kind,
                     row.kind == FaultKind::Delay ? delayMs : row.value,
                     when.rate / mixedKinds,
                     {}});
    }
}

void appendItem(FaultPlan& plan, const QString& item)
{
    static const QRegularExpression form("^([^:=@]*)(?::([^=@]*))?(?:=(.*)|@(.*))?$");
    const QRegularExpressionMatch match = form.match(item);
    const QString name = match.captured(1);
    const FaultFacts* row = findFacts(name);
    if (row == nullptr && name != mixedName)
        refuseFault(QString("unknown fault%1; 'help' in place of the plan lists all faults")
                        .arg(didYouMean(name, faultNames())));
    const bool hasRate = match.capturedStart(3) >= 0;
    const bool hasExchanges = match.capturedStart(4) >= 0;
    if (!hasRate && !hasExchanges)
        refuseFault("add a rate or exchanges, as in NAME=0.05 or NAME@3");
    FaultRule rule;
    rule.rate = hasRate ? parseRate(match.captured(3)) : 0;
    for (const QString& span : hasExchanges ? match.captured(4).split('+') : QStringList())
        rule.spans.append(parseSpan(span));
    if (row == nullptr)
        return appendMixed(plan, rule, match.captured(2));
    rule.kind = row->kind;
    rule.value = parseValue(match.captured(2), *row);
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

FaultPlan parseFaults(const QString& text)
{
    FaultPlan plan;
    if (text.isEmpty() || text == "none")
        return plan;
    for (const QString& part : text.split(',')) {
        const QString item = part.trimmed();
        try {
            appendItem(plan, item);
        } catch (const Error& error) {
            throw error.at(QString("fault '%1'").arg(quotable(item)));
        }
    }
    return plan;
}

QString faultPlanText(const FaultPlan& plan)
{
    QStringList rules;
    for (const FaultRule& rule : plan)
        rules.append(ruleText(rule));
    return rules.isEmpty() ? "none" : rules.join(',');
}

QByteArray faultHelp()
{
    constexpr int nameWidth = 13;
    QByteArray help =
        "Write a fault as NAME=RATE or NAME@EXCHANGES, and NAME:VALUE to set its value:\n";
    for (const FaultFacts& row : facts) {
        help += "  " + QByteArray(row.name).leftJustified(nameWidth) + row.text;
        if (row.highestValue > 0)
            help += "; default " + QByteArray::number(row.value);
        help += '\n';
    }
    help += "  " + QByteArray(mixedName).leftJustified(nameWidth) +
            "all faults from silence to echo, each at 1/" + QByteArray::number(mixedKinds) +
            " of RATE\n"
            "Example: silence=0.05,nak=2%,delay:800@3,wrong-sum@7-9+20-\n";
    return help;
}

}  // namespace fxsim
