// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// docs/frames.md says what the library does: its memory map is the table of register types, its
// requests are the frames that are built, its replies are judged as it says.

#include "address/register_types.h"
#include "protocol/frame_codec.h"
#include "tests/support/driver_fixture.h"

#include <QFile>
#include <QStringList>

namespace {

using Row = QStringList;

// The rows of the table whose first row is this, cell by cell.
QList<Row> tableRows(const QString& title)
{
    QFile file(FX_FRAMES_DOCUMENT);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << FX_FRAMES_DOCUMENT;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    QList<Row> rows;
    for (int i = static_cast<int>(lines.indexOf(title)) + 2; i > 1 && lines[i].startsWith('|');
         ++i) {
        Row cells = lines[i].split('|').mid(1);
        cells.removeLast();
        for (QString& cell : cells)
            cell = cell.trimmed();
        rows << cells;
    }
    return rows;
}

std::string hexBytes(const unsigned char* bytes, int length)
{
    QStringList texts;
    for (int i = 0; i < length; ++i)
        texts << QString("%1").arg(bytes[i], 2, 16, QChar('0')).toUpper();
    return texts.join(" ").toStdString();
}

QString baseText(int base)
{
    return base == noBase ? QString() : "0x" + QString("%1").arg(base, 4, 16, QChar('0')).toUpper();
}

Row mapRow(const RegisterType& type)
{
    const char* const kind = isBit(type) ? "bit" : isDoubleWord(type) ? "counter" : "word";
    return Row() << type.name << kind << QString::number(type.first, type.numberBase)
                 << QString::number(type.last, type.numberBase) << baseText(type.readBase)
                 << baseText(type.writeBase) << baseText(type.forceBase);
}

}  // namespace

TEST(FramesDocument, MapsEveryRegisterType)
{
    QList<Row> rows =
        tableRows("| type | holds | kind | first | last | read base | write base | force base |");
    ASSERT_EQ(int(std::size(registerTypes)), rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        rows[i].removeAt(1);  // what the type holds
        EXPECT_EQ(mapRow(registerTypes[std::size_t(i)]), rows[i]) << qPrintable(rows[i].join(" "));
    }
}

class DocumentedRequests : public DriverTest
{
protected:
    // The one frame that a builder made, as hex bytes.
    static std::string takeFrame()
    {
        const FRAME_PRO frame = driver.frames.takeLast();
        return hexBytes(frame.frame, frame.frameLength);
    }
    static std::string readFrameOf(const QString& registerName)
    {
        VARIABLE request = requestOf(registerName);
        getReadFrame(request);
        return takeFrame();
    }
    static std::string writeFrameOf(const QString& registerName)
    {
        VARIABLE request = requestOf(registerName);
        getWriteFrame(request);
        return takeFrame();
    }

private:
    // One register, by its name: "M1536".
    static VARIABLE requestOf(const QString& registerName)
    {
        int letters = 0;
        while (letters < registerName.size() && registerName[letters].isLetter())
            ++letters;
        bool isNumber = false;
        const int number = registerName.mid(letters).toInt(&isNumber);
        EXPECT_TRUE(letters > 0 && isNumber) << qPrintable(registerName);
        return request(qPrintable(registerName.left(letters)), number, 1);
    }
};

TEST_F(DocumentedRequests, AreBuiltAsTheyStandThere)
{
    const QList<Row> rows = tableRows("| request | type | number | count | data | frame | reply |");
    ASSERT_EQ(13, rows.size());
    for (const Row& row : rows) {
        VARIABLE request;
        request.registerType = row[1];
        request.addressIndex = row[2].toInt();
        request.count = row[3].toInt();
        const QByteArray data = QByteArray::fromHex(row[4].toLatin1());
        std::copy(data.begin(), data.end(), request.data);
        if (row[0].startsWith("read"))
            getReadFrame(request);
        else
            getWriteFrame(request);
        EXPECT_EQ(row[6].toInt(), driver.frames.last().replyLength) << qPrintable(row[0]);
        EXPECT_EQ(row[5].toStdString(), takeFrame());
    }
}

TEST_F(DocumentedRequests, GoOutAsOthersWhereRegistersShareAPlace)
{
    const QList<Row> rows = tableRows("| | from | to | goes out as | |");
    ASSERT_EQ(3, rows.size());
    for (const Row& row : rows) {
        for (int end : {1, 2}) {
            const QString name = row[end], other = row[end + 2];
            EXPECT_EQ(writeFrameOf(other), writeFrameOf(name)) << qPrintable(name);
            const bool isReadAlike = readFrameOf(other) == readFrameOf(name);
            EXPECT_EQ(row[0].contains("read"), isReadAlike) << qPrintable(name);
        }
    }
}

class DocumentedReplies : public DriverTest
{
protected:
    // Puts the request in flight that the reply answers.
    void send(const QString& request)
    {
        setUpDriver();
        KEY_ADDRESS key;
        key.stationNo = 1;
        key.registerType = "D";
        key.startIndex = 100;
        key.length = 2;
        if (request == "read")
            intf_addConditionRead(key, 0);
        else
            write("D", 100, {1, 0}, 1);
        ASSERT_NE("", nextFrame());
    }
};

TEST_F(DocumentedReplies, EndAsTheyStandThere)
{
    const QList<Row> rows = tableRows("| reply | to | bytes | result | values |");
    ASSERT_EQ(12, rows.size());
    for (const Row& row : rows) {
        send(row[1]);
        QByteArray bytes = QByteArray::fromHex(row[2].toLatin1());
        QString text;
        EXPECT_EQ(row[3].toInt(), intf_dealRcvFrame(bytes, text)) << qPrintable(row[0]);
        if (row[1] == "read") {
            unsigned char values[4] = {};
            intf_getData(1, "D", 100, 2, values);
            EXPECT_EQ(row[4].toStdString(), hexBytes(values, 4)) << qPrintable(row[0]);
        }
    }
}
