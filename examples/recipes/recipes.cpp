// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Transfers a recipe to the PLC and back: sets the list, raises a request byte under the mutex, and
// makes exchanges until the driver has cleared the byte. The PLC is in this program, so that it can
// print the frames; with a real one use minimal_host/plc_exchange.h.

#include <mitsubishi_fx1s/intf.h>

#include <QMutex>

#include <cstdio>
#include <vector>

namespace {

constexpr int linkNo = 1;
constexpr int firstDataRegister = 0x1000;  // byte address of D0

std::vector<unsigned char> hostMemory(fxHostMemoryBytes, 0);
unsigned short recipeWords[8] = {};
QMutex hostMutex;
unsigned char dataRegisters[2000] = {};

QByteArray framed(const QByteArray& content)
{
    const QByteArray summed = content + '\x03';
    unsigned char sum = 0;
    for (const char character : summed)
        sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(character));
    return '\x02' + summed + QByteArray(1, static_cast<char>(sum)).toHex().toUpper();
}

// Answers reads ("0") and word writes ("1") of data registers.
QByteArray answer(const QByteArray& frame)
{
    const int place = frame.mid(2, 4).toInt(nullptr, 16) - firstDataRegister;
    const int byteCount = frame.mid(6, 2).toInt(nullptr, 16);
    if (frame[1] == '0')
        return framed(QByteArray(reinterpret_cast<char*>(dataRegisters) + place, byteCount)
                          .toHex()
                          .toUpper());
    const QByteArray data = QByteArray::fromHex(frame.mid(8, 2 * byteCount));
    for (int i = 0; i < byteCount; ++i)
        dataRegisters[place + i] = static_cast<unsigned char>(data[i]);
    return QByteArray(1, '\x06');
}

// The host locks the mutex to read or set the request bytes, but never while it calls the driver.
void request(int requestByte)
{
    const QMutexLocker lock(&hostMutex);
    hostMemory[requestByte] = fxRecipeRequested;
}

bool isRequested(int requestByte)
{
    const QMutexLocker lock(&hostMutex);
    return hostMemory[requestByte] == fxRecipeRequested;
}

// Raises the request byte and makes exchanges until the driver has cleared it.
void transfer(int requestByte)
{
    request(requestByte);
    FRAME_PRO frame;
    while (isRequested(requestByte) && intf_getSendFrame(&frame) == fxFrameToSend) {
        const QByteArray sent(reinterpret_cast<char*>(frame.frame), frame.frameLength);
        QByteArray reply = answer(sent);
        QString errorText;
        const int result = intf_dealRcvFrame(reply, errorText);
        std::printf("  %s -> result %d\n", sent.mid(1, sent.size() - 4).constData(), result);
    }
}

int recipeWordStored(int, int stationNo, QString& text, int word)
{
    if (stationNo == -1 && text == fxRecipeWordText)
        std::printf("  recipe word %d is now %u\n", word, static_cast<unsigned>(recipeWords[word]));
    return 0;
}

_RCP_VAR_PRO entry(int addressIndex, int count, int recipeWordOffset)
{
    _RCP_VAR_PRO recipe;
    recipe.linkNo = linkNo;
    recipe.stationNo = 1;
    recipe.registerType = "D";
    recipe.addressIndex = addressIndex;
    recipe.count = count;
    recipe.recipeWordOffset = recipeWordOffset;
    return recipe;
}

}  // namespace

int main()
{
    int status = 0;
    intf_setAddrValueChangeCallBack(recipeWordStored);
    intf_initProperty(hostMemory.data(), 0, recipeWords, &status, "1#0#0#3#32", &hostMutex);
    QVector<_RCP_VAR_PRO> list;
    list << entry(100, 2, 0) << entry(200, 1, 2);
    const int entries = intf_setRcpAddress(list);
    std::printf("%d entries have the number of this link\n", entries);
    if (entries == 0)
        return 1;  // never raise a request byte for an empty list

    recipeWords[0] = 180;  // temperature
    recipeWords[1] = 45;   // seconds
    recipeWords[2] = 7;    // programme
    std::printf("Download\n");
    transfer(fxDownloadRequestByte);

    dataRegisters[2 * 100] = 181;  // the PLC changes the temperature
    std::printf("Upload\n");
    transfer(fxUploadRequestByte);
    return recipeWords[0] == 181 && recipeWords[1] == 45 && recipeWords[2] == 7 ? 0 : 1;
}
