// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How soon a lost link is open again, on a clock that only the keeper's own pauses move.

#include "tools/link/link_keeper.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

class PulledCable : public Link
{
public:
    QString name() const override { return "cable"; }
    void open() override
    {
        ++attempts;
        if (nowMs < pluggedInMs)
            throw Failure(ExitCode::LinkNotOpened, "pulled");
    }
    bool isOpen() const override { return nowMs >= pluggedInMs; }
    bool send(const QByteArray&) override { return isOpen(); }
    QByteArray receive(int) override { return {}; }

    qint64 nowMs = 0;
    qint64 pluggedInMs = 0;
    int attempts = 0;
};

}  // namespace

TEST(LinkKeepers, NoticeWithinAboutASecondThatALinkIsBack)
{
    for (const qint64 awayMs : {1, 1000, 60000, 3600000}) {
        PulledCable cable;
        cable.pluggedInMs = awayMs;
        LinkKeeper keeper(cable, std::nullopt);
        keeper.waitWithoutEnd();
        keeper.onState = [](const QString&) {};
        keeper.sleeps = [&cable](qint64 timeMs) {
            cable.nowMs += timeMs;
            return true;
        };
        EXPECT_TRUE(keeper.reopen(0));
        EXPECT_LE(cable.nowMs - awayMs, 1050);
        EXPECT_LE(cable.attempts, awayMs / 350 + 4) << "it must not hammer on the port";
    }
}

TEST(LinkKeepers, GiveUpAtAnInterrupt)
{
    PulledCable cable;
    cable.pluggedInMs = 1000000;
    LinkKeeper keeper(cable, 30);
    keeper.onState = [](const QString&) {};
    keeper.sleeps = [](qint64) { return false; };
    EXPECT_FALSE(keeper.reopen(0));
    EXPECT_EQ(cable.attempts, 0);
}
