// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Streams cut into frames: however the bytes arrive, the same events come out.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/line/frame_reader.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

// "E" an enquiry, "F<frame>" a frame, "O" one too long, "J<bytes>" junk, joined by blanks.
QByteArray told(const QVector<LineEvent>& events)
{
    QByteArrayList texts;
    for (const LineEvent& event : events) {
        switch (event.kind) {
        case LineEvent::Kind::Enquiry:
            texts.append("E");
            break;
        case LineEvent::Kind::Frame:
            texts.append("F" + event.bytes.toHex());
            break;
        case LineEvent::Kind::Overlong:
            texts.append("O");
            break;
        case LineEvent::Kind::Junk:
            texts.append("J" + event.bytes.toHex());
            break;
        }
    }
    return texts.join(' ');
}

}  // namespace

TEST(FrameReader, FindsAFrameCutAnywhere)
{
    FrameReader byteByByte;
    for (int at = 0; at < readD100.size() - 1; ++at)
        EXPECT_EQ(told(byteByByte.receive(readD100.mid(at, 1))), "") << "byte " << at;
    EXPECT_EQ(told(byteByByte.receive(readD100.right(1))), "F0230313043383034033733");
    for (int cut = 1; cut < readD100.size(); ++cut) {
        FrameReader reader;
        EXPECT_EQ(told(reader.receive(readD100.left(cut))), "");
        EXPECT_EQ(told(reader.receive(readD100.mid(cut))), "F0230313043383034033733");
    }
}

TEST(FrameReader, TellsApartWhatComesInOneRead)
{
    const struct
    {
        const char* name;
        QByteArray bytes;
        const char* events;
    } rows[] = {
        {"junk before, between and after", "ab" + readD100 + "\x15" + readD100 + "c",
         "J6162 F0230313043383034033733 J15 F0230313043383034033733 J63"},
        {"two frames", readD100 + readD100, "F0230313043383034033733 F0230313043383034033733"},
        {"two enquiries", "\x05\x05", "E E"},
        {"an enquiry resets the receiver", readD100.left(5) + "\x05" + readD100,
         "J0230313043 E F0230313043383034033733"},
        {"STX inside a frame starts a new one", readD100.left(9) + readD100,
         "J023031304338303403 F0230313043383034033733"},
        {"any characters are a sum", fromHex("0230030603"), "F0230030603"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(told(FrameReader().receive(row.bytes)), row.events) << row.name;
}

TEST(FrameReader, GivesUpAFrameWithoutEndAndGoesOn)
{
    FrameReader reader;
    EXPECT_EQ(told(reader.receive('\x02' + QByteArray(2046, '0'))), "");
    EXPECT_EQ(told(reader.receive("0")), "O");
    EXPECT_EQ(told(reader.receive("00" + readD100)), "J3030 F0230313043383034033733");
}

TEST(FrameReader, ResetForgetsHalfAFrame)
{
    FrameReader reader;
    reader.receive(readD100.left(10));
    reader.reset();
    EXPECT_EQ(told(reader.receive(readD100.right(1) + readD100)), "J33 F0230313043383034033733");
}
