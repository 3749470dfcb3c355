// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The thread that talks to the PLC of the window. What it reads waits until the window takes it, so
// the line never waits for the window, nor the window for the line: a write or an end that is asked
// for while something is awaited is noticed within a tenth of a second.

#pragma once

#include "tools/fxview/plc/news_for_window.h"
#include "tools/fxview/plc/plc_source.h"
#include "tools/service/tag_service.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <memory>
#include <variant>

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
    ~PlcThread() override;  // writes what was asked for, and waits until the thread has ended

    void start();

    QString name() const override { return m_name; }
    bool isSimulated() const override;
    QVector<fxtools::Tag> tags() const override { return m_tags; }
    void write(int id, int tag, const QString& text) override;
    void writeSoon(int id, int tag, const QString& text) override;
    void benchCommand(const QString& command) override;
    void order(const RecipeOrder& order) override;
    void cancelRecipe(int id) override;

private:
    struct WriteOrder
    {
        int id;
        int tag;
        QString text;
        qint64 sinceMs;  // by m_clock
        qint64 withinMs;
    };
    struct BenchOrder
    {
        QString command;
    };
    using Order = std::variant<WriteOrder, BenchOrder, RecipeOrder>;

    void run();
    bool tick();
    void obey(const WriteOrder& order);
    void obey(const BenchOrder& order);
    void obey(const RecipeOrder& order);
    void refuse(const Order& order, const QString& reason);
    void refuseUntilEnd(const QString& reason);
    void wait(qint64 timeMs);
    void noteReadings(const QVector<int>& tags);
    void noteChanges();
    void noteReport();
    void noteResult(int id, int tag, const fxtools::WriteAnswer& answer);
    LineReport report();
    bool isRecipeCancelled();
    fxtools::Progress progressOf(int id, bool isReadingBack = false);
    void transfer(const RecipeOrder& order, fxtools::Connection& connection);
    void openRecipe(RecipeResult& result, const QString& file) const;
    void compareRecipe(RecipeResult& result, fxtools::Connection& connection,
                       const fxtools::Progress& progress);
    void requireUnchanged(const QString& file, const QVector<fxtools::RegisterRun>& recipe) const;
    void downloadRecipe(RecipeResult& result, fxtools::Connection& connection,
                        const RecipeOrder& order, const fxtools::Progress& progress);
    void uploadRecipe(RecipeResult& result, fxtools::Connection& connection,
                      const RecipeOrder& order, const fxtools::Progress& progress);
    void noteRecipe(const RecipeResult& result);
    Reading readingOf(int tag, const fxtools::TagState& state) const;
    void add(const Order& order);

    const fxtools::ConnectionSettings m_settings;
    const QString m_name;
    const QVector<fxtools::Tag> m_tags;
    std::unique_ptr<QThread> m_thread;

    // Of the thread alone, once it runs.
    std::unique_ptr<fxtools::AddressServices> m_services;
    std::unique_ptr<fxtools::TagService> m_service;
    qint64 m_changesMs = 0;
    qint64 m_reportMs = 0;
    QByteArray m_heard;           // that something on the line sent by itself
    std::optional<int> m_recipe;  // the one whose transfer may be cancelled now
    QElapsedTimer m_clock;
    QElapsedTimer m_ending;

    NewsForWindow m_news;

    QMutex m_mutex;  // for the rest
    QWaitCondition m_hasOrders;
    QVector<Order> m_orders;
    bool m_mustEnd = false;
    std::optional<int> m_cancelledRecipe;
};

}  // namespace fxview
