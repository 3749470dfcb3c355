// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the host guide leaves to its reader, put behind the guide's code by installed_tree.sh: a
// link to a PLC inside this program that knows data registers and can fall silent, what the
// callback calls, and a main() that goes through the guide and says so at the end.

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int firstDataRegister = 0x1000;  // byte address of D0
unsigned char dataRegisters[400] = {};
bool isSilent = false;
QByteArray answerOnTheLine;

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
    const int place = frame.mid(2, 4).toInt(nullptr, 16) - firstDataRegister;
    const int byteCount = frame.mid(6, 2).toInt(nullptr, 16);
    char* const bytes = reinterpret_cast<char*>(dataRegisters) + place;
    if (frame[1] == '0')
        return framed(QByteArray(bytes, byteCount).toHex().toUpper());
    const QByteArray data = QByteArray::fromHex(frame.mid(8, 2 * byteCount));
    std::copy(data.begin(), data.end(), bytes);
    return QByteArray(1, '\x06');
}

void expect(bool isSo, const char* what)
{
    if (isSo)
        return;
    std::printf("not so: %s\n", what);
    std::exit(1);
}

}  // namespace

void clearLine()
{
    answerOnTheLine.clear();
}

void sendBytes(const unsigned char* bytes, int byteCount)
{
    if (!isSilent)
        answerOnTheLine = answerTo(QByteArray(reinterpret_cast<const char*>(bytes), byteCount));
}

QByteArray receiveBytes(int byteCount)
{
    return answerOnTheLine.left(byteCount);
}

void elementChanged(int, const QString&, int)
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

int main()
{
    QLibrary library("libmitsubishi_fx1s.so.0");
    expect(lookUpGetSendFrame(library) == &intf_getSendFrame, "the library is found by name");

    connectToPlc();
    dataRegisters[2 * 101] = 7;
    expect(exchange() && readWord(101) == 7, "a poll brings a value");
    expect(changes == 1, "the change is reported");

    writeWord(100, 1337);
    expect(readWord(100) == 1337, "a write shows at once");
    expect(exchange() && dataRegisters[2 * 100] == (1337 & 0xFF), "and reaches the PLC");
    expect(changes == 3, "a write is reported twice");

    KEY_ADDRESS once;
    once.stationNo = 1;
    once.registerType = "D";
    once.startIndex = 150;
    once.length = 1;
    intf_addConditionRead(once, 0);
    expect(exchange() && goodOneOffReads == 1, "a one-off read is reported");

    _RCP_VAR_PRO entry;
    entry.linkNo = 1;
    entry.stationNo = 1;
    entry.registerType = "D";
    entry.addressIndex = 100;
    entry.count = 2;
    QVector<_RCP_VAR_PRO> recipe(1, entry);
    expect(intf_setRcpAddress(recipe) == 1, "the entry belongs to this link");
    for (const std::size_t position : {uploadRequest, downloadRequest}) {
        request(position);
        expect(exchange() && !isRequested(position), "a transfer ends by itself");
    }
    expect(recipeWordsStored == 2 && recipeWords[0] == 1337, "recipe words are fetched");

    isSilent = true;
    for (int i = 0; i < 3; ++i)
        exchange();  // the third gives up and says so
    std::printf("all as the guide says\n");
    return 0;
}
