// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A second driver, written as plainly as the rules can be put down: linear scans, if-chains, no
// table, no look-aside, nothing shared with the library but the records that the host knows. Its
// methods are the entry points without their prefix, and its frame codec. The model tests and the
// fuzzers drive both and compare.

#ifndef TESTS_MODEL_MODEL_DRIVER_H
#define TESTS_MODEL_MODEL_DRIVER_H

#include "driver/intf.h"

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QString>
#include <QVector>

#include <deque>
#include <vector>

class ModelDriver
{
public:
    using Callback = int (*)(int linkNo, int stationNo, QString& text, int value);

    // Set-up
    void getDriverParameter(QString& text) const;
    void getDriverPropertyPage(QString& text) const;
    void SetDriverPropertyPage(QString& text) const;
    void getProtocolType(int* type) const;
    void setAddrValueChangeCallBack(Callback callback);
    int initProperty(unsigned char* memory, unsigned int context, unsigned short* words,
                     int* status, const char* propertyString, QMutex* mutex);

    // Planning
    int addrMerge(QList<KEY_ADDRESS>& keys);
    int addConditionRead(KEY_ADDRESS& key, int tag);

    // Exchange
    int getSendFrame(FRAME_PRO* out);
    int dealRcvFrame(QByteArray& reply, QString& errorText);

    // Frames: builders append to `frames`, `judge` goes by its first: 0 rejected, 1 data, 2 ACK.
    void buildReadFrame(const VARIABLE& request);
    void buildWriteFrame(const VARIABLE& request);
    int judge(const QByteArray& reply) const;

    // Values and recipes
    int getData(int stationNo, QString registerType, int startIndex, int count, unsigned char* out);
    int setData(int stationNo, QString registerType, int startIndex, int count, unsigned char* data,
                int tag);
    int setRcpAddress(QVector<_RCP_VAR_PRO>& list);

    // Addresses
    int checkAddr(const QString& registerType, const QString& addressText, int* addressIndex,
                  int dataType, int count, int accessMode) const;
    int checkAddrValidity(const QString& registerType, const QString& addressText,
                          int* addressIndex, int count, int wordAccess) const;
    int getRegListByType(int kind, QList<QString>& names) const;
    int getRegDiscription(const QString& registerType, QList<QString>& fields) const;
    int multiCopy(const QString& registerType, int startIndex, int copies, int step,
                  QVector<QString>& texts, QVector<int>& values) const;

    // All state, under the names that the library's object uses.
    Callback valueChangeCallback = nullptr;
    int linkNo = 0;
    int cacheOnlyWrites = 0;
    int propertyField2 = 0;
    int failLimit = 0;
    int frameWordLimit = 0;
    int propertyField5 = 0;
    unsigned char* hostMemory = nullptr;
    unsigned int hostContext = 0;
    unsigned short* recipeWords = nullptr;
    QMutex* hostMutex = nullptr;
    std::deque<VARIABLE> readList;
    std::deque<VARIABLE> writeList;
    std::deque<VARIABLE> conditionReadList;
    std::vector<_DATA_> dataAreas;
    std::vector<_RCP_VAR_PRO> recipeVars;
    VARIABLE lastConditionRead;
    VARIABLE current;
    int operationKind = 0;
    int burstCount = 0;
    int spareCounter0 = 0;
    int failCount = 0;
    int maxBitsPerFrame = 0;
    int maxWordsPerFrame = 0;
    int lastExchangeFailed = 0;
    int spareCounter1 = 0;
    int propertyInitialised = 0;
    std::deque<FRAME_PRO> frames;
    int recipeIndex = 0;

private:
    struct Piece
    {
        int start;
        int length;
    };
    using Pieces = std::vector<Piece>;

    int wordLimit() const;
    int bitLimit() const;
    static Pieces cut(int start, int length, int limit);
    Pieces piecesOf(QList<KEY_ADDRESS>& keys, const QString& type, int station) const;
    static void sortByAddress(Pieces& pieces);
    void mergeGroup(const QString& type, int station, Pieces pieces);
    static void queue(std::deque<VARIABLE>& list, const VARIABLE& request);
    bool joinsBits(const Piece& piece, long long& blockStart, long long& blockCount) const;
    bool joinsWords(const Piece& piece, long long& blockStart, long long& blockCount) const;

    QString errorInfo(int replyBytes) const;

    void chooseFrame();
    void choosePolling();
    bool transferRecipe(bool download);
    bool canCarry(const _RCP_VAR_PRO& entry, bool download) const;
    void repeatCurrent();
    void endRecipe(bool download);
    void endExchange();
    void endConditionRead();
    void stepRecipe(bool download);
    void decode(const QByteArray& reply);
    void decodeArea(int number, const unsigned char* bytes, int byteCount);
    void storeRecipeWords(long long firstWord, const unsigned char* bytes, int wordCount);
    void markStale();

    int areaOf(int stationNo, const QString& type, int start);
    void mark(int stationNo, const QString& type, int start, int length);
    void report(int link, int stationNo, const QString& text, int value) const;
    void reportElement(int stationNo, const QString& type, int number);
    void reportBits(int stationNo, const QString& type, int number, int newBits, int oldBits);
    void mirror(int stationNo, const QString& type, int start, int count,
                const unsigned char* data);
    void mirrorBit(int stationNo, const QString& type, int number, bool on);
    void mirrorBytes(int stationNo, const QString& type, int number, const unsigned char* bytes,
                     int byteCount);
    void endWrite(const VARIABLE& request, bool success);
};

// What several of the model's files ask of a type or a number.
bool modelIsBit(const QString& type);
bool modelIsWord(const QString& type);
bool modelFitsInt(long long number);
int modelNumbered(int start, int count);  // of `count` elements those whose number is an integer
QString modelNumberText(const QString& type, int number);  // as the operator writes it

#endif
