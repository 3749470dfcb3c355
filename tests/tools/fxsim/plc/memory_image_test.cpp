// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Memory images as Intel HEX.

#include "tests/tools/fxsim/support.h"
#include "tests/tools/support/full_disk.h"
#include "tools/fxsim/plc/memory_image.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

const QByteArray zeros(65536, '\0');

}  // namespace

TEST(MemoryImage, EmptyMemoryIsTheEndRecord)
{
    EXPECT_EQ(hexText(zeros), ":00000001FF\n");
}

TEST(MemoryImage, IsWrittenInRecordsOfSixteen)
{
    QByteArray image = zeros;
    image.replace(0x10C8, 2, fromHex("ABCD"));
    EXPECT_EQ(hexText(image), ":1010C0000000000000000000ABCD000000000000A8\n:00000001FF\n");
}

TEST(MemoryImage, TakesOtherPeoplesRecords)
{
    QByteArray image = zeros;
    applyHex(":02100000abcd76\r\n\r\n:020000020100FB\r\n:01000000EE11\r\n"
             ":0400000500000000F7\r\n:00000001FF\r\nwhatever follows\r\n",
             image);
    EXPECT_EQ(image.mid(0x1000, 3), fromHex("EECD00")) << "segment 0x0100 begins at 0x1000";
}

TEST(MemoryImage, LeavesWhatItDoesNotName)
{
    QByteArray image(65536, 'x');
    applyHex(":0100050041B9\n:00000001FF\n", image);
    EXPECT_EQ(image.left(8), "xxxxxAxx");
}

TEST(MemoryImage, SaysWhatIsWrongAndChangesNothing)
{
    const char* const noEnd = "the end record (:00000001FF) is missing";
    const char* const noHex = "line 1: expected \":\" followed by pairs of hex digits";
    const char* const noLength = "line 1: the length of the record does not match its byte count";
    const struct
    {
        const char* text;
        const char* error;
    } rows[] = {
        {"", noEnd},
        {":0100000041BE\n", noEnd},
        {":0100000041BE\n\n:0100000041BF\n", "line 3: wrong checksum"},
        {"0100000041BE\n", noHex},
        {":01000000zzBE\n", noHex},
        {":01000000411\n", noHex},
        {":0200000041BD\n", noLength},
        {":\n", noLength},
        {":00000006FA\n", "line 1: unknown record type 6"},
        {":0100000212EB\n", "line 1: an extended address must have 2 bytes"},
        {":02FFFF000102FD\n", "line 1: data beyond 64 KiB"},
        {":020000040001F9\n:0100000041BE\n", "line 2: data beyond 64 KiB"},
    };
    for (const auto& row : rows) {
        QByteArray image = zeros;
        EXPECT_EQ(errorText([&] { applyHex(row.text, image); }), row.error) << row.text;
        EXPECT_EQ(image, zeros) << row.text;
    }
}

TEST(MemoryImage, FilesAreSavedAndLoaded)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plc.hex");
    QByteArray image = zeros;
    for (int at = 0; at < image.size(); at += 7)
        image[at] = static_cast<char>(at * 31);
    saveImage(path, image);
    QByteArray again = zeros;
    loadImage(path, again);
    EXPECT_EQ(again, image);
}

TEST(MemoryImage, FilesThatDoNotWorkAreNamed)
{
    QByteArray image = zeros;
    EXPECT_EQ(errorText([&] { loadImage("/nonexistent/plc.hex", image); }),
              "/nonexistent/plc.hex: No such file or directory");
    EXPECT_EQ(errorText([] { saveImage("/nonexistent/plc.hex", zeros); }),
              "/nonexistent/plc.hex: the folder /nonexistent does not exist");
    EXPECT_EQ(errorText([] { saveImage("/tmp", zeros); }), "/tmp: this is a folder, not a file");
}

// As root, /dev/full was replaced by a file of its name.
TEST(MemoryImage, WhatIsNoOrdinaryFileStays)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_EQ(errorText([&] { saveImage(path, zeros); }), path + ": not a regular file");
    EXPECT_FALSE(QFileInfo(path).isFile());
}

// A memory that found no room was called saved, and the older file was empty.
TEST(MemoryImage, FullDiskLeavesTheOlderFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plc.hex");
    saveImage(path, zeros);
    for (const rlim_t room : {0U, 5U, 20000U}) {
        const tool_tests::FullDisk disk(room);
        const QByteArray image = room < 20000 ? zeros : QByteArray(65536, 'x');
        EXPECT_EQ(errorText([&] { saveImage(path, image); }), path + ": File too large");
        EXPECT_EQ(QFileInfo(path).size(), QByteArray(":00000001FF\n").size())
            << "with room for " << room;
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("plc.hex"));
}
