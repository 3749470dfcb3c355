// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/plc/plc_thread.h"

#include "tools/exchange/diagnosis.h"
#include "tools/fxview/plc/recipe_orders.h"

#include <QMutexLocker>

namespace fxview {

namespace {

using fxtools::Failure;

constexpr qint64 betweenChangesMs = 100;
constexpr qint64 betweenReportsMs = 1000;
constexpr qint64 longestEndMs = 3000;  // of writes that wait when the program ends
constexpr qint64 soonMs = 1000;

Quality qualityOf(fxtools::Quality quality)
{
    switch (quality) {
    case fxtools::Quality::Good:
        return Quality::Good;
    case fxtools::Quality::Unknown:
    case fxtools::Quality::Stale:
        return Quality::Stale;
    case fxtools::Quality::Bad:
        break;
    }
    return Quality::Bad;
}

}  // namespace

PlcThread::PlcThread(const fxtools::ConnectionSettings& settings, const QString& name,
                     std::unique_ptr<fxtools::AddressServices> services,
                     const QVector<fxtools::Tag>& tags)
    : m_settings(settings), m_name(name), m_tags(tags), m_services(std::move(services)),
      m_news(*this, tags)
{
    m_clock.start();
}

PlcThread::~PlcThread()
{
    if (!m_thread)
        return;
    {
        const QMutexLocker locker(&m_mutex);
        m_mustEnd = true;
        m_hasOrders.wakeAll();
    }
    m_thread->wait();
}

void PlcThread::start()
{
    m_thread.reset(QThread::create([this] { run(); }));
    m_thread->start();
}

bool PlcThread::isSimulated() const
{
    return std::holds_alternative<fxtools::SimulatedSettings>(m_settings.link);
}

void PlcThread::write(int id, int tag, const QString& text)
{
    add(WriteOrder{id, tag, text, m_clock.elapsed(), fxtools::TagService::usualWaitMs});
}

void PlcThread::writeSoon(int id, int tag, const QString& text)
{
    add(WriteOrder{id, tag, text, m_clock.elapsed(), soonMs});
}

void PlcThread::benchCommand(const QString& command)
{
    add(BenchOrder{command});
}

void PlcThread::add(const Order& order)
{
    const QMutexLocker locker(&m_mutex);
    m_orders.append(order);
    m_hasOrders.wakeAll();
}

void PlcThread::run()
{
    fxtools::ConnectionSettings settings = m_settings;
    settings.onBabble = [this](const QByteArray& heard) { m_heard = heard; };
    m_service = std::make_unique<fxtools::TagService>(settings, m_tags);
    m_service->onTick = [this] { return tick(); };
    m_service->onPause = [this] { noteChanges(); };
    m_service->wait = [this](qint64 timeMs) { wait(timeMs); };
    m_service->onRead = [this](const QVector<int>& tags) { noteReadings(tags); };
    m_service->onLinkChanged = [this] {
        const QPair<bool, QString> link = {m_service->link() == fxtools::LinkState::Up,
                                           m_service->reason()};
        m_news.tell([&link](News& news) { news.link = link; });
    };
    m_service->onExchange = [this](const fxtools::Exchange& exchange) {
        m_news.tell([&exchange](News& news) { news.add(exchange); });
    };
    m_service->onWritten = [this](const QString& id, int tag, const fxtools::WriteAnswer& answer) {
        noteResult(id.toInt(), tag, answer);
    };
    QString reason = QStringLiteral("the link was lost");
    try {
        m_service->run();
    } catch (const Failure& failure) {
        reason = failure.text();
    }
    m_news.tell([&reason](News& news) { news.link = {false, reason}; });
    refuseUntilEnd(reason);
    m_service.reset();
}

// Who asks is answered also when nothing runs any more.
void PlcThread::refuseUntilEnd(const QString& reason)
{
    QMutexLocker locker(&m_mutex);
    while (!m_mustEnd) {
        QVector<Order> orders;
        orders.swap(m_orders);
        locker.unlock();
        for (const Order& order : qAsConst(orders))
            refuse(order, reason);
        locker.relock();
        if (m_orders.isEmpty() && !m_mustEnd)
            m_hasOrders.wait(&m_mutex);
    }
}

bool PlcThread::tick()
{
    QVector<Order> orders;
    bool mustEnd = false;
    {
        const QMutexLocker locker(&m_mutex);
        orders.swap(m_orders);
        mustEnd = m_mustEnd;
    }
    for (const Order& order : qAsConst(orders)) {
        try {
            std::visit([this](const auto& each) { obey(each); }, order);
        } catch (const Failure& failure) {
            refuse(order, failure.text());
        }
    }
    if (m_clock.elapsed() - m_changesMs >= betweenChangesMs)
        noteChanges();
    if (mustEnd && !m_ending.isValid())
        m_ending.start();
    const bool isInTime = m_ending.isValid() && m_ending.elapsed() < longestEndMs;
    const bool mustWrite = isInTime && m_service->areJobsWaiting();
    return isRecipeCancelled() || (mustEnd && !m_service->isBusy() && !mustWrite);
}

void PlcThread::obey(const WriteOrder& order)
{
    const fxtools::Assignment assignment =
        fxtools::assignmentOf(m_tags.at(order.tag), order.text, m_services->catalogue);
    fxtools::requireOwnMemory(assignment.asked.range, m_services->catalogue);
    if (m_clock.elapsed() - order.sinceMs > order.withinMs)  // the line was being opened
        throw Failure(fxtools::ExitCode::Silence, QStringLiteral("not sent: it would be too late"));
    m_service->write(QString::number(order.id), order.tag, assignment, order.withinMs);
}

void PlcThread::obey(const BenchOrder& order)
{
    fxtools::Connection* const connection = m_service->connection();
    if (connection == nullptr || connection->control() == nullptr)
        throw Failure(fxtools::ExitCode::Usage,
                      QStringLiteral("only a simulated PLC takes commands"));
    connection->control()->run(order.command);
}

void PlcThread::refuse(const Order& order, const QString& reason)
{
    if (const auto* const write = std::get_if<WriteOrder>(&order))
        noteResult(write->id, write->tag, fxtools::refusal(reason));
    else if (const auto* const bench = std::get_if<BenchOrder>(&order))
        m_news.tell([&](News& news) { news.refusals.append({bench->command, reason}); });
    else
        noteRecipe(refusedRecipe(std::get<RecipeOrder>(order), reason));
}

void PlcThread::wait(qint64 timeMs)
{
    const QMutexLocker locker(&m_mutex);
    if (m_orders.isEmpty() && !m_mustEnd)
        m_hasOrders.wait(&m_mutex, static_cast<unsigned long>(timeMs));
}

Reading PlcThread::readingOf(int tag, const fxtools::TagState& state) const
{
    Reading reading;
    reading.tag = tag;
    reading.quality = qualityOf(state.quality);
    reading.reason = state.reason;
    reading.timeMs = state.readUtc;
    if (reading.quality == Quality::Good) {
        reading.raw = m_tags[tag].rawOf(state.registers);
        reading.value = m_tags[tag].valueOf(reading.raw);
    }
    return reading;
}

void PlcThread::noteReadings(const QVector<int>& tags)
{
    const fxtools::Moment now = m_service->now();
    QVector<Reading> readings;
    for (const int tag : tags) {
        const fxtools::TagState state = m_service->tags().stateOf(tag, now);
        m_service->tags().noteTold({tag, state});
        readings.append(readingOf(tag, state));
    }
    m_news.tell(readings);
}

// What became old, was refused or was lost with the link.
void PlcThread::noteChanges()
{
    m_changesMs = m_clock.elapsed();
    const fxtools::Moment now = m_service->now();
    QVector<Reading> readings;
    for (const fxtools::ServedTags::Change& change : m_service->tags().changes(now)) {
        m_service->tags().noteTold(change);
        readings.append(readingOf(change.index, change.state));
        readings.last().timeMs = now.utc;
    }
    if (!readings.isEmpty())
        m_news.tell(readings);
    if (m_service->polling() != nullptr && m_changesMs - m_reportMs >= betweenReportsMs)
        noteReport();
}

void PlcThread::noteReport()
{
    m_reportMs = m_changesMs;
    const LineReport line = report();
    m_news.tell([&line](News& news) { news.report = line; });
}

LineReport PlcThread::report()
{
    LineReport report;
    fxtools::Connection& connection = *m_service->connection();
    report.statistics = connection.loop().statistics();
    fxtools::LineCheck check =
        fxtools::checkOf(report.statistics, m_service->link() == fxtools::LinkState::Down);
    check.unasked = m_heard;
    report.verdict = fxtools::meaning({m_settings.link, m_name, true, false, check});
    report.loadPercent = qRound(100 * m_service->polling()->load().used);
    report.late = m_service->polling()->late();
    QVector<fxtools::RegisterRange> ranges;
    for (const fxtools::Tag& tag : m_tags)
        ranges.append(tag.asked.range);
    const fxtools::LineCost line = fxtools::measuredLine(fxtools::acceptedUse(report.statistics),
                                                         fxtools::baudOf(m_settings.link));
    for (const fxtools::PlannedBlock& block :
         fxtools::shortestPlan(ranges, m_settings.session.wordsPerFrame, line))
        report.blocks.append(
            {block, fxtools::milliseconds(fxtools::exchangeCost(line, block.bytes()), line)});
    return report;
}

void PlcThread::noteResult(int id, int tag, const fxtools::WriteAnswer& answer)
{
    const auto asNumber = [](const QJsonValue& value) {
        return value.isBool() ? QJsonValue(value.toBool() ? 1 : 0) : value;
    };
    const WriteResult result = {id,
                                tag,
                                answer.outcome,
                                asNumber(answer.before),
                                asNumber(answer.after),
                                answer.reason,
                                answer.isAcknowledged};
    m_news.tell([&result](News& news) { news.results.append(result); });
}

}  // namespace fxview
