// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Changes on their way: confirmed by a barrier, or stored in order and marked when the connection
// ends.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tools/fxgate/store/outbox.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

using namespace fxgate;
using namespace gate_tests;

namespace {

Change numbered(int number, const QString& link = "press1")
{
    Change one = change("flow", number, noon + number);
    one.link = link;
    return one;
}

class OutboxTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    StoreSettings m_settings = settings();
    Store m_store = Store(m_settings);
    Outbox m_outbox = Outbox(m_store, "plain");

    StoreSettings settings() const
    {
        StoreSettings settings;
        settings.file = m_folder.filePath("store.db");
        return settings;
    }

    void sent(int first, int count)
    {
        for (int number = first; number < first + count; ++number)
            m_outbox.sent(QVector<Change>{numbered(number)});
    }

    std::string work(int most = 100, const QStringList& withoutLinks = {})
    {
        QStringList texts;
        const QVector<StoredChange> taken = m_outbox.work(noon, most, withoutLinks);
        for (const StoredChange& stored : taken)
            texts.append(QString::number(stored.change.sample.value.toInt()) +
                         (stored.mayBeRepeated ? "r" : ""));
        m_outbox.sent(taken);
        return texts.join(' ').toStdString();
    }
};

TEST_F(OutboxTest, ConfirmedIsForgotten)
{
    sent(0, 3);
    EXPECT_EQ(m_outbox.batchSize(), 3);
    EXPECT_EQ(m_outbox.unconfirmed(), 3);
    m_outbox.barrierSent(40, 5);
    EXPECT_EQ(m_outbox.batchSize(), 0);
    EXPECT_EQ(m_outbox.oldestBarrierMs(9), 5);
    m_outbox.barrierAnswered(39);
    EXPECT_EQ(m_outbox.unconfirmed(), 3);
    m_outbox.barrierAnswered(40);
    EXPECT_EQ(m_outbox.unconfirmed(), 0);
    EXPECT_EQ(m_outbox.oldestBarrierMs(9), 9);
    m_outbox.connectionEnded();
    EXPECT_EQ(work(), "");
    EXPECT_EQ(m_outbox.waiting(), 0);
}

TEST_F(OutboxTest, UnconfirmedIsStoredAndMarked)
{
    sent(0, 2);
    m_outbox.barrierSent(40, 0);
    sent(2, 2);
    m_outbox.barrierSent(41, 0);
    sent(4, 1);
    m_outbox.barrierAnswered(40);
    m_outbox.connectionEnded();
    m_outbox.keep(numbered(5));
    EXPECT_EQ(m_outbox.waiting(), 4);
    EXPECT_EQ(work(), "2r 3r 4r 5");
}

TEST_F(OutboxTest, AcknowledgedMessagesAreNeededToo)
{
    sent(0, 1);
    m_outbox.sent(70);
    m_outbox.barrierSent(71, 0);
    m_outbox.barrierAnswered(71);
    EXPECT_EQ(m_outbox.unconfirmed(), 1);
    m_outbox.acknowledged(70);
    EXPECT_EQ(m_outbox.unconfirmed(), 0);
}

TEST_F(OutboxTest, LaterBarrierConfirmsNothingOfAnEarlierBatch)
{
    sent(0, 1);
    m_outbox.sent(70);
    m_outbox.barrierSent(71, 0);
    sent(1, 1);
    m_outbox.barrierSent(72, 0);
    m_outbox.barrierAnswered(71);
    m_outbox.barrierAnswered(72);
    EXPECT_EQ(m_outbox.unconfirmed(), 2);  // in order: the message of the first is missing
    m_outbox.acknowledged(70);
    EXPECT_EQ(m_outbox.unconfirmed(), 0);
}

TEST_F(OutboxTest, WaitsForWhatWasSentBefore)
{
    sent(0, 1);
    m_outbox.keep(numbered(1));  // its link has gone down
    m_outbox.barrierSent(40, 0);
    EXPECT_EQ(work(), "");
    m_outbox.connectionEnded();
    EXPECT_EQ(work(), "0r 1");
    sent(2, 1);
    m_outbox.keep(numbered(3));
    m_outbox.barrierSent(41, 0);
    m_outbox.barrierAnswered(41);
    EXPECT_EQ(work(), "3");
}

TEST_F(OutboxTest, WhatWaitsForWhatWasSentBeforeIsNotForgotten)
{
    m_outbox.keep(numbered(0));
    EXPECT_EQ(work(0), "");  // stored
    sent(1, 1);
    m_outbox.keep(numbered(2));
    EXPECT_EQ(work(), "0");
    EXPECT_EQ(m_outbox.waiting(), 2);
    m_outbox.connectionEnded();
    EXPECT_EQ(work(0), "");
    EXPECT_EQ(work(), "1r 2");
}

TEST_F(OutboxTest, RowsAreRemovedWhenConfirmed)
{
    m_outbox.keep(numbered(0));
    m_outbox.keep(numbered(1));
    EXPECT_EQ(work(1), "0");
    m_outbox.barrierSent(40, 0);
    EXPECT_EQ(work(1), "1");
    EXPECT_EQ(work(1), "");
    m_outbox.barrierAnswered(40);
    m_outbox.connectionEnded();
    m_outbox.rewind();
    EXPECT_EQ(work(), "1r");
    EXPECT_EQ(m_outbox.waiting(), 1);
    m_outbox.barrierSent(41, 0);
    m_outbox.barrierAnswered(41);
    work();
    EXPECT_EQ(m_outbox.waiting(), 0);
}

TEST_F(OutboxTest, RewindDoesNotSendAgainWhatIsUnderWay)
{
    m_outbox.keep(numbered(0));
    m_outbox.keep(numbered(1, "press2"));
    EXPECT_EQ(work(100, {"press2"}), "0");
    sent(2, 5);
    EXPECT_EQ(m_outbox.rowsUnderWay(), 1);
    EXPECT_EQ(work(100, {}), "");
    m_outbox.rewind();
    EXPECT_EQ(work(100, {}), "1");
}

TEST_F(OutboxTest, NothingIsTakenWithoutAConnection)
{
    m_outbox.keep(numbered(0));
    EXPECT_EQ(work(0), "");
    EXPECT_EQ(m_store.rows("plain"), 1);
    EXPECT_EQ(work(), "0");
}

TEST_F(OutboxTest, UnwantedRowsAreCountedAsDropped)
{
    m_outbox.keep(numbered(0));
    const QVector<StoredChange> taken = m_outbox.work(noon, 100, {});
    ASSERT_EQ(taken.size(), 1);
    m_outbox.drop({taken[0].row});
    m_outbox.keep(numbered(1));
    EXPECT_EQ(work(), "1");
    EXPECT_EQ(m_outbox.dropped(), 1);
    EXPECT_EQ(m_outbox.waiting(), 1);
}

// As after damage: a new file numbers its rows from 1.
TEST(OutboxWithAnotherStore, RemovesNothingForTheOneBefore)
{
    const QTemporaryDir folder;
    StoreSettings settings;
    std::optional<Store> store;
    const auto begin = [&](const char* name) {
        store.reset();
        settings.file = folder.filePath(name);
        store.emplace(settings);
    };
    begin("first.db");
    Outbox outbox(*store, "plain");
    outbox.keep(numbered(0));
    outbox.sent(outbox.work(noon, 100, {}));
    outbox.barrierSent(40, 0);
    outbox.barrierAnswered(40);
    outbox.work(noon, 0, {});
    EXPECT_EQ(outbox.waiting(), 0);
    begin("second.db");
    for (const int number : {1, 2}) {
        outbox.keep(numbered(number));
        outbox.work(noon, 0, {});
        EXPECT_EQ(outbox.waiting(), number);
    }
}

TEST(OutboxWithoutStore, KeepsAFewAndCountsTheRest)
{
    const QTemporaryDir folder;
    StoreSettings settings;
    settings.file = folder.filePath("later/store.db");
    Store store(settings);
    Outbox outbox(store, "plain");
    for (int number = 0; number < 10007; ++number)
        outbox.keep(numbered(number));
    EXPECT_TRUE(outbox.work(noon, 100, {}).isEmpty());
    EXPECT_EQ(outbox.dropped(), 7);
    EXPECT_EQ(outbox.waiting(), 10000);
    QDir(folder.path()).mkdir("later");
    const QVector<StoredChange> taken = outbox.work(noon, 1, {});
    ASSERT_EQ(taken.size(), 1);
    EXPECT_EQ(taken[0].change.sample.value, 7);
}

}  // namespace
