// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The thread that talks to the PLC of the window. What it reads waits until the window takes it, so
// the line never waits for the window, nor the window for the line: a write or an end that is asked
// for while something is awaited is noticed within a tenth of a second.

#pragma once

#include "tools/fxview/plc/plc_source.h"
#include "tools/service/tag_service.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <memory>

namespace fxview {

class PlcThread : public PlcSource
{
    Q_OBJECT

public:
    // The driver serves one connection, so there is one thread at a time. It takes over what knows
    // the addresses. Nothing is sent before start().
    PlcThread(const fxtools::ConnectionSettings& settings, const QString& name,
              std::unique_ptr<fxtools::AddressServices> services,
              const QVector<fxtools::Tag>& tags);
    ~PlcThread() override;  // waits until the thread has ended

    void start();

    QString name() const override { return m_name; }
    bool isSimulated() const override;
    QVector<fxtools::Tag> tags() const override { return m_tags; }
    void write(int id, int tag, const QString& text) override;
    void benchCommand(const QString& command) override;

private:
    // What the window asks for: a write, or a command without an id.
    struct Order
    {
        std::optional<int> id;
        int tag;
        QString text;
    };

    // What the window has not taken yet.
    struct News
    {
        std::optional<QPair<bool, QString>> link;
        QVector<Reading> readings;
        QVector<fxtools::Exchange> exchanges;
        std::optional<LineReport> report;
        QVector<WriteResult> results;
        QVector<QPair<QString, QString>> refusals;  // of commands
    };

    void run();
    bool tick();
    void obey(const Order& order);
    void wait(qint64 timeMs);
    void noteReadings(const QVector<int>& tags);
    void noteChanges();
    void noteReport();
    void noteResult(int id, int tag, const fxtools::WriteAnswer& answer);
    LineReport report();
    Reading readingOf(int tag, const fxtools::TagState& state) const;
    void tell(const std::function<void(News&)>& add);
    void order(const Order& order);
    void giveNews();

    const fxtools::ConnectionSettings m_settings;
    const QString m_name;
    const QVector<fxtools::Tag> m_tags;
    std::unique_ptr<QThread> m_thread;

    // Of the thread alone, once it runs.
    std::unique_ptr<fxtools::AddressServices> m_services;
    std::unique_ptr<fxtools::TagService> m_service;
    qint64 m_changesMs = 0;
    qint64 m_reportMs = 0;
    QElapsedTimer m_clock;

    QMutex m_mutex;  // for the rest
    QWaitCondition m_hasOrders;
    QVector<Order> m_orders;
    bool m_mustEnd = false;
    News m_news;
    bool m_isNewsAnnounced = false;

    QElapsedTimer m_given;  // when the window got news last
};

}  // namespace fxview
