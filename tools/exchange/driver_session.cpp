// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/driver_session.h"

#include <algorithm>
#include <limits>

namespace fxtools {

namespace {

constexpr int linkNumber = 1;
constexpr size_t recipeMemoryWords = fxMaxElements;

// The tags of the host's own requests, to tell them from those of the plan.
constexpr int writeTag = 2;
constexpr int conditionalTag = 3;
static_assert(writeTag != fxPlanTag && conditionalTag != fxPlanTag);

constexpr int noStation = -1;  // of callbacks that are not about a register

// The callback of the driver is a plain function, and the driver serves one session.
DriverSession* activeSession = nullptr;

size_t requestByte(RecipeDirection direction)
{
    return direction == RecipeDirection::Download ? fxDownloadRequestByte : fxUploadRequestByte;
}

quint32 valueAt(const std::vector<unsigned char>& bytes, size_t position, size_t byteCount)
{
    quint32 value = 0;
    for (size_t byte = byteCount; byte > 0; --byte)
        value = value << 8 | bytes[position + byte - 1];
    return value;
}

void appendValue(std::vector<unsigned char>& bytes, quint32 value, int byteCount)
{
    for (int byte = 0; byte < byteCount; ++byte)
        bytes.push_back(static_cast<unsigned char>(value >> 8 * byte & 0xFF));
}

int wordsOf(const RegisterRange& range)
{
    return range.type.driverCount(range.count);
}

}  // namespace

DriverSession::DriverSession(const DriverLibrary& library, const SessionSettings& settings)
    : m_library(library), m_settings(settings), m_hostMemory(fxHostMemoryBytes, 0),
      m_recipeWords(recipeMemoryWords, 0)
{
    activeSession = this;
    m_library.setAddrValueChangeCallBack(&DriverSession::forwardCallback);
    forgetValues();
}

DriverSession::~DriverSession()
{
    int status = 0;
    m_library.setAddrValueChangeCallBack(nullptr);
    m_library.initProperty(nullptr, 0, nullptr, &status, "", nullptr);
    activeSession = nullptr;
}

QString DriverSession::propertyString() const
{
    return QString("%1#0#0#%2#%3")
        .arg(linkNumber)
        .arg(m_settings.failLimit)
        .arg(m_settings.wordsPerFrame);
}

void DriverSession::forgetValues()
{
    int status = 0;
    m_library.initProperty(m_hostMemory.data(), 0, m_recipeWords.data(), &status,
                           propertyString().toLatin1().constData(), &m_mutex);
}

void DriverSession::fitFrames(const QVector<RegisterRange>& ranges)
{
    qint64 first = std::numeric_limits<int>::max();
    qint64 end = 0;
    for (const RegisterRange& range : ranges) {
        if (range.type.width != RegisterWidth::DoubleWord)
            continue;
        first = std::min<qint64>(first, range.first);
        end = std::max<qint64>(end, range.first + range.count);
    }
    if (m_isHalved || end - first <= m_settings.wordsPerFrame / 2)
        return;
    m_isHalved = true;
    m_settings.wordsPerFrame /= 2;
    forgetValues();
}

int DriverSession::setPlan(const QVector<RegisterRange>& ranges)
{
    QList<KEY_ADDRESS> keys;
    for (const RegisterRange& range : ranges)
        keys.append(planKey(range));
    return m_library.addrMerge(keys);
}

KEY_ADDRESS DriverSession::queueRead(const RegisterRange& range)
{
    KEY_ADDRESS key = planKey(range);
    if (range.type.isBit())
        key.length =
            (key.length + bitsPerByte - 1) / bitsPerByte;  // a one-off read of bits counts bytes
    m_library.addConditionRead(key, conditionalTag);
    return key;
}

QVector<quint32> DriverSession::values(const RegisterRange& range) const
{
    const auto valueBytes = static_cast<size_t>(range.type.valueBytes());
    std::vector<unsigned char> bytes(static_cast<size_t>(range.count) * valueBytes, 0);
    m_library.getData(range.station, range.type.name, range.first,
                      range.type.driverCount(range.count), bytes.data());
    QVector<quint32> values;
    for (int index = 0; index < range.count; ++index)
        values.append(valueAt(bytes, static_cast<size_t>(index) * valueBytes, valueBytes));
    return values;
}

void DriverSession::write(const RegisterRange& range, const QVector<quint32>& values)
{
    std::vector<unsigned char> bytes;
    for (const quint32 value : values)
        appendValue(bytes, value, range.type.valueBytes());
    m_library.setData(range.station, range.type.name, range.first,
                      range.type.driverCount(values.size()), bytes.data(), writeTag);
}

int DriverSession::startRecipe(RecipeDirection direction, const QVector<RegisterRange>& entries)
{
    QVector<_RCP_VAR_PRO> list;
    int recipeWord = 0;
    for (const RegisterRange& entry : entries) {
        _RCP_VAR_PRO row;
        row.linkNo = linkNumber;
        row.stationNo = entry.station;
        row.registerType = entry.type.name;
        row.addressIndex = entry.first;
        // The count is used in the frame unchanged: words to write, registers to read.
        row.count = direction == RecipeDirection::Download ? wordsOf(entry) : entry.count;
        row.recipeWordOffset = recipeWord;
        list.append(row);
        recipeWord += wordsOf(entry);
    }
    const int entryCount = m_library.setRcpAddress(list);
    if (entryCount == 0)
        return 0;  // a request without a list would stop everything else
    const QMutexLocker lock(&m_mutex);
    m_hostMemory[requestByte(direction)] = fxRecipeRequested;
    return entryCount;
}

bool DriverSession::recipeRuns(RecipeDirection direction)
{
    const QMutexLocker lock(&m_mutex);
    return m_hostMemory[requestByte(direction)] == fxRecipeRequested;
}

// Rejected as often as the driver wants it to be.
void DriverSession::giveUpFrame()
{
    FRAME_PRO frame;
    QByteArray nothing;
    QString errorText;
    m_library.getSendFrame(&frame);
    while (m_library.dealRcvFrame(nothing, errorText) == fxSendAgain) {
    }
}

ExchangeKind DriverSession::kindOf(const FRAME_PRO& frame)
{
    // Recipe steps go before everything else, and the download before the upload.
    if (recipeRuns(RecipeDirection::Download))
        return ExchangeKind::RecipeDownload;
    if (recipeRuns(RecipeDirection::Upload))
        return ExchangeKind::RecipeUpload;
    if (frame.isRead == 0)
        return ExchangeKind::Write;
    return frame.variable.tag == fxPlanTag ? ExchangeKind::CyclicRead
                                           : ExchangeKind::ConditionalRead;
}

int DriverSession::forwardCallback(int, int stationNo, QString& text, int value)
{
    if (activeSession)
        activeSession->handleCallback(stationNo, text, value);
    return 0;
}

void DriverSession::handleCallback(int stationNo, const QString& text, int value)
{
    if (stationNo != noStation) {
        if (onValueChanged)
            onValueChanged(text, stationNo, value);
    } else if (onRecipeWord && text == QLatin1String(fxRecipeWordText)) {
        onRecipeWord(value);
    }
}

}  // namespace fxtools
