// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/plc/news_for_window.h"

#include <QMutexLocker>
#include <QTimer>

namespace fxview {

namespace {

constexpr qint64 betweenNewsMs = 16;
constexpr int mostExchanges = 1000;

}  // namespace

void News::add(const fxtools::Exchange& exchange)
{
    if (exchanges.size() >= mostExchanges)
        exchanges.removeFirst();
    exchanges.append(exchange);
}

NewsForWindow::NewsForWindow(PlcSource& source, const QVector<fxtools::Tag>& tags)
    : m_source(source), m_readings(tags)
{}

void NewsForWindow::tell(const QVector<Reading>& readings)
{
    tell([&](News&) {
        for (const Reading& reading : readings)
            m_readings.add(reading);
    });
}

// The window is told once that there is something, and takes all there is then.
void NewsForWindow::tell(const std::function<void(News&)>& add)
{
    const QMutexLocker locker(&m_mutex);
    add(m_news);
    if (!std::exchange(m_isAnnounced, true))
        QMetaObject::invokeMethod(
            &m_source, [this] { give(); }, Qt::QueuedConnection);
}

void NewsForWindow::give()
{
    const qint64 leftMs = m_given.isValid() ? betweenNewsMs - m_given.elapsed() : 0;
    if (leftMs > 0) {
        QTimer::singleShot(static_cast<int>(leftMs), &m_source, [this] { give(); });
        return;
    }
    m_given.start();
    News news;
    QVector<Reading> readings;
    {
        const QMutexLocker locker(&m_mutex);
        std::swap(news, m_news);
        readings = m_readings.take();
        m_isAnnounced = false;
    }
    if (!readings.isEmpty())
        emit m_source.readings(readings);
    if (news.link)
        emit m_source.linkChanged(news.link->first, news.link->second);
    if (!news.exchanges.isEmpty())
        emit m_source.exchanges(news.exchanges);
    if (news.report)
        emit m_source.lineReport(*news.report);
    for (const WriteResult& result : qAsConst(news.results))
        emit m_source.written(result);
    if (news.recipeMoved) {
        const News::RecipeProgress& moved = *news.recipeMoved;
        emit m_source.recipeMoved(moved.id, moved.done, moved.total, moved.isReadingBack);
    }
    for (const RecipeResult& result : qAsConst(news.recipes))
        emit m_source.recipeEnded(result);
    for (const auto& [command, reason] : qAsConst(news.refusals))
        emit m_source.benchRefused(command, reason);
}

}  // namespace fxview
