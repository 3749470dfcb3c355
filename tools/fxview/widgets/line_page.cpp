// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/line_page.h"

#include "tools/fxview/widgets/scrolled.h"

#include <QFontDatabase>
#include <QTabWidget>
#include <QVBoxLayout>

namespace fxview {

namespace {

constexpr int mostFrames = 1000;
constexpr int mostLate = 5;  // that are named

// Control characters by their names, since few fonts have pictures of them.
QString visible(char byte)
{
    switch (byte) {
    case fxtools::stx:
        return QStringLiteral("<STX>");
    case fxtools::etx:
        return QStringLiteral("<ETX>");
    case fxtools::enq:
        return QStringLiteral("<ENQ>");
    case fxtools::ack:
        return QStringLiteral("<ACK>");
    case fxtools::nak:
        return QStringLiteral("<NAK>");
    default:
        break;
    }
    if (byte >= ' ' && byte <= '~')
        return QString(QLatin1Char(byte));
    const auto code = static_cast<unsigned char>(byte);
    return '<' + QString::number(code, 16).toUpper().rightJustified(2, '0') + '>';
}

QString visible(const QByteArray& bytes)
{
    QString text;
    for (const char byte : bytes)
        text += visible(byte);
    return text;
}

QString periodsText(const QStringList& late)
{
    if (late.isEmpty())
        return LinePage::tr("All tags are read as often as they should be");
    const int more = late.size() - mostLate;
    const QString names = QStringList(late.mid(0, mostLate)).join(QStringLiteral(", "));
    return more > 0
               ? LinePage::tr("The line is too slow for %1 and %n more", nullptr, more).arg(names)
               : LinePage::tr("The line is too slow for %1").arg(names);
}

QString msText(qint64 us)
{
    return QString::number(static_cast<double>(us) / 1000, 'f', 1);
}

}  // namespace

QString exchangeText(const fxtools::Exchange& exchange)
{
    const QByteArray sent = exchange.wasSent ? fxtools::requestBytes(exchange.frame) : QByteArray();
    return QStringLiteral("%1  %2  %3  →  %4  %5, %6 ms")
        .arg(static_cast<double>(exchange.startedUs) / 1e6, 9, 'f', 3)
        .arg(fxtools::kindText(exchange.kind), visible(sent), visible(exchange.reply),
             fxtools::verdictText(exchange.verdict), msText(exchange.tookUs));
}

QString loadText(const LineReport& report)
{
    return LinePage::tr("Line load %1 %").arg(report.loadPercent);
}

LinePage::LinePage(const ValueBook& book, bool isSimulated, QWidget* parent)
    : QWidget(parent), m_verdict(new QLabel(this)), m_load(new QLabel(this)),
      m_plan(new PlanView(this)), m_responses(new HistogramView(this)), m_times(new QLabel(this)),
      m_causes(new QLabel(this)), m_frames(new QPlainTextEdit(this))
{
    m_frames->setReadOnly(true);
    m_frames->setTabChangesFocus(true);
    m_frames->setAccessibleName(tr("Frames"));
    m_frames->setMaximumBlockCount(mostFrames);
    m_frames->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_frames->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    for (QLabel* label : {m_verdict, m_load, m_times, m_causes}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
    }
    auto* left = new QVBoxLayout;
    left->addWidget(m_load);
    left->addWidget(m_plan, 1);
    auto* right = new QVBoxLayout;
    right->addWidget(m_responses, 1);
    right->addWidget(m_times);
    right->addWidget(m_causes);
    if (isSimulated) {
        auto* faults = new FaultPanel(this);
        connect(faults, &FaultPanel::commanded, this, &LinePage::commanded);
        m_inputs = new InputPanel(book, this);
        connect(m_inputs, &InputPanel::commanded, this, &LinePage::commanded);
        auto* bench = new QTabWidget(this);
        bench->setAccessibleName(tr("The simulated PLC"));
        bench->addTab(faults, tr("&Faults"));
        bench->addTab(m_inputs, tr("&Inputs"));
        right->addWidget(bench);
    }
    auto* top = new QHBoxLayout;
    top->addLayout(left, 1);
    top->addLayout(right, 1);
    auto* rows = new QVBoxLayout(scrolledIn(this));
    rows->addWidget(m_verdict);
    rows->addLayout(top, 2);
    rows->addWidget(m_frames, 1);
    m_verdict->setObjectName(QStringLiteral("verdict"));
    m_verdict->setText(tr("Nothing is known of the line yet"));
}

void LinePage::take(const LineReport& report)
{
    m_verdict->setText(report.verdict);
    m_load->setText(loadText(report) + '\n' + periodsText(report.late));
    m_plan->show(report.blocks);
    const fxtools::Histogram& responses = report.statistics.responses;
    m_responses->show(responses);
    m_times->setText(tr("%1 answers; half within %2 ms, 99 of 100 within %3 ms, the slowest %4 ms")
                         .arg(responses.total())
                         .arg(msText(responses.percentileUs(50)),
                              msText(responses.percentileUs(99)), msText(responses.largestUs())));
    showCauses(report.statistics);
}

void LinePage::showMoment(qint64 nowMs)
{
    if (m_inputs)
        m_inputs->showMoment(nowMs);
}

void LinePage::showCauses(const fxtools::Statistics& statistics)
{
    QStringList causes;
    for (const fxtools::ReplyVerdict verdict : fxtools::allVerdicts()) {
        const qint64 times = statistics.of(verdict);
        if (verdict != fxtools::ReplyVerdict::Good && times > 0)
            causes += tr("%1: %2").arg(fxtools::verdictText(verdict)).arg(times);
    }
    if (statistics.linksLost > 0)
        causes += tr("links lost: %1").arg(statistics.linksLost);
    m_causes->setText(causes.isEmpty() ? tr("No errors") : tr("Errors: %1").arg(causes.join("; ")));
}

void LinePage::take(const QVector<fxtools::Exchange>& exchanges)
{
    QStringList lines;
    for (const fxtools::Exchange& exchange : exchanges.mid(qMax(exchanges.size() - mostFrames, 0)))
        lines += exchangeText(exchange);
    if (isVisible() && !lines.isEmpty())
        m_frames->appendPlainText(lines.join('\n'));
}

}  // namespace fxview
