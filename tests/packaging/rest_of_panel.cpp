// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the host guide leaves to its reader, put behind the guide's code by installed_tree.sh: a
// link to a PLC inside this program that has a memory and can fall silent, what the
// callback calls, and a main() that goes through the guide and says so at the end.

#include <cstdio>
#include <cstdlib>

namespace {

unsigned char memory[0x2000] = {};                     // of the PLC
unsigned char* const dataRegisters = memory + 0x1000;  // from D0 on
bool isSilent = false;

int changes = 0;
int goodOneOffReads = 0;
int recipeWordsStored = 0;

QByteArray framed(const QByteArray& content)
{
    const QByteArray summed = content + '\x03';
    unsigned int sum = 0;
    for (const char character : summed)
        sum += static_cast<unsigned char>(character);
    return '\x02' + summed + QByteArray(1, static_cast<char>(sum & 0xFF)).toHex().toUpper();
}

QByteArray answerTo(const QByteArray& frame)
{
    if (frame == "\x05")
        return "\x06";
    char* const bytes = reinterpret_cast<char*>(memory) + frame.mid(2, 4).toInt(nullptr, 16);
    const int byteCount = frame.mid(6, 2).toInt(nullptr, 16);
    if (frame[1] == '7')
        return "\x06";  // a force is acknowledged and forgotten
    if (frame[1] == '0')
        return framed(QByteArray(bytes, byteCount).toHex().toUpper());
    const QByteArray data = QByteArray::fromHex(frame.mid(8, 2 * byteCount));
    std::copy(data.begin(), data.end(), bytes);
    return QByteArray(1, '\x06');
}

class PanelLink : public PlcLink
{
public:
    void send(const QByteArray& bytes) override
    {
        if (!isSilent)
            m_onTheLine += answerTo(bytes);
    }
    QByteArray receive(int) override
    {
        const QByteArray bytes = m_onTheLine;
        m_onTheLine.clear();
        return bytes;
    }

private:
    QByteArray m_onTheLine;
};

void expect(bool isSo, const char* what)
{
    if (isSo)
        return;
    std::printf("not so: %s\n", what);
    std::exit(1);
}

}  // namespace

void registerChanged(int, const QString&, int)
{
    ++changes;
}

void oneOffReadEnded(bool isGood)
{
    goodOneOffReads += isGood ? 1 : 0;
}

void recipeWordStored(int)
{
    ++recipeWordsStored;
}

int main(int, char** arguments)
{
    expect(qtMajorOf(arguments[1]) == QByteArray::number(QT_VERSION >> 16), "the file says its Qt");
    QLibrary library("libmitsubishi_fx1s.so.0");
    expect(lookUpGetSendFrame(library) == &intf_getSendFrame, "the library is found by name");

    PanelLink link;
    PlcExchange plc(link);
    const int blocks = connectToPlc();
    dataRegisters[2 * 101] = 7;
    pollOnce(plc, blocks);
    expect(readWord(101) == 7, "a poll brings a value");
    expect(changes == 1, "the change is reported");

    writeWord(100, 1337);
    expect(readWord(100) == 1337, "a write shows at once");
    expect(plc.run() == fxReplyAccepted && dataRegisters[2 * 100] == (1337 & 0xFF),
           "and reaches the PLC");
    expect(changes == 3, "a write is reported twice");

    unsigned char values[4] = {1, 0, 1, 0};
    intf_setData(1, "M", 8, 1, values, 0);
    intf_setData(1, "32CV", 200, 2, values, 0);
    expect(readBit("M", 8) && !readBit("M", 9), "a bit is read");
    expect(readCounter(200) == 65537, "a counter is read");
    while (plc.run() == fxReplyAccepted && plc.frame.isRead == 0)
        ;  // they go out

    KEY_ADDRESS once;
    once.stationNo = 1;
    once.registerType = "D";
    once.startIndex = 150;
    once.length = 1;
    intf_addConditionRead(once, 0);
    expect(plc.run() == fxReplyAccepted && goodOneOffReads == 1, "a one-off read is reported");

    _RCP_VAR_PRO entry;
    entry.linkNo = 1;
    entry.stationNo = 1;
    entry.registerType = "D";
    entry.addressIndex = 100;
    entry.count = 2;
    QVector<_RCP_VAR_PRO> recipe(1, entry);
    expect(intf_setRcpAddress(recipe) == 1, "the entry belongs to this link");
    for (const int requestByte : {fxUploadRequestByte, fxDownloadRequestByte}) {
        request(requestByte);
        expect(plc.run() == fxReplyAccepted && !isRequested(requestByte),
               "a transfer ends by itself");
    }
    expect(recipeWordsStored == 2 && recipeWords[0] == 1337, "recipe words are fetched");

    isSilent = true;
    writeWord(100, 1);
    pollOnce(plc, blocks);  // a write and a block fail, each after three rejections
    expect(readWord(100) == 1337, "a failed write is taken back");
    isSilent = false;
    pollOnce(plc, blocks);
    expect(plc.run() == fxReplyAccepted, "the host recovers");
    std::printf("all as the guide says\n");
    return 0;
}
