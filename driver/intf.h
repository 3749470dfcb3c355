// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Every exported entry point of the driver, in the order in which a host needs them.
//
/// @mainpage
/// The driver opens no port, starts no thread, sleeps nowhere, reads no file: the host owns the
/// link and all timing.
///
/// Conventions
/// -----------
/// 1. Call one entry point at a time; calls may come from any thread, never from two at once.
/// 2. From inside the value-change callback the host may call intf_getData, intf_setData and
///    intf_addConditionRead, and nothing else.
/// 3. Nothing throws and nothing is logged. Results are the integer codes given here.
/// 4. Texts, lists and buffers are the host's and are used during the call only: what the driver
///    keeps, it copies. Only the two memories and the mutex of intf_initProperty stay in use.
/// 5. A null pointer in place of an output or a buffer is left alone: the call does what it can
///    without it. A request that makes no sense is left out in silence, but for one-off reads.
/// 6. Register types are exact texts: bits "X" "Y" "M" "S" "SM" "T" "C", words "D" "SD" "TV" "CV",
///    and the 32-bit counters "32CV". "X" and "Y" are numbered in octal on paper; every integer
///    here is the value of that number (X17 is 15). "SM" and "SD" count from 8000, and
///    "32CV" from 200.
/// 7. Values travel as the PLC stores them: low byte first, one byte (0 or 1) for a bit.
/// 8. One call serves at most #fxMaxElements; elements beyond them, or whose number does not fit
///    32 bits, are left out.
/// 9. Build the library with the Qt of its host (4.8, 5 or 6): Qt value types cross the interface.
/// 10. The link is the FX programming port: 9600 baud, 7 data bits, even parity, 1 stop bit.
/// 11. Stations are numbers from 1 up that tell requests and values apart. No frame carries one:
///     whom a frame is for stands in its `variable.stationNo`.

#ifndef DRIVER_INTF_H
#define DRIVER_INTF_H

#include "records.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVector>

class QMutex;

#define FX_EXPORT __attribute__((visibility("default")))
#define FX_ENTRY_POINT extern "C" FX_EXPORT

/// The answer of the entry points that always answer the same.
constexpr int fxDone = 1;

// ---- Set-up -----------------------------------------------------------------------------------

/// Gives the default settings of a new device.
/// @param[out] text  22 comma-separated fields: a host setting, baud rate, data bits, parity, stop
///                   bits, two host settings, network address, network port, model name, and the
///                   twelve register types
FX_ENTRY_POINT void intf_getDriverParameter(QString& text);

/// Gives the identifier of the property page to show.
/// @param[out] text  "0_0"
FX_ENTRY_POINT void intf_getDriverPropertyPage(QString& text);

/// Empties a text; the driver keeps nothing of it.
/// @param[in,out] text  whatever it held, it is empty afterwards
FX_ENTRY_POINT void intf_SetDriverPropertyPage(QString& text);

/// Gives the protocol type.
/// @param[out] type  always 0
FX_ENTRY_POINT void intf_getProtocolType(int* type);

/// The host's callback. It is called on the thread and inside the call that caused it, with no lock
/// held, its result is ignored, and `text` is valid during the call only:
///
///  - (link, station, register type, number): a monitored element changed, or its write has ended
///  - (-1, -1, #fxReadEndText, an FxReadEnd): the one-off read queued last has ended
///  - (0, -1, #fxRecipeWordText, word): an upload stored a word of recipe memory
///
/// The number is that of the bit, word or counter. Bits that change in the PLC are cached but not
/// reported: read them with intf_getData.
typedef int (*FxValueChangeCallback)(int linkNo, int stationNo, QString& text, int value);

constexpr char fxReadEndText[] = "-1";      ///< text of a callback that tells the end of a read
constexpr char fxRecipeWordText[] = "RWI";  ///< text of a callback that tells of a recipe word

/// How a one-off read has ended.
enum FxReadEnd
{
    fxReadSucceeded = 0,  ///< its values are in the cache
    fxReadFailed = -1     ///< the cache keeps what it had
};

/// Registers the host's callback in place of any earlier one.
/// @param callback  null: no calls
FX_ENTRY_POINT void intf_setAddrValueChangeCallBack(FxValueChangeCallback callback);

/// The least size of the host's memory. Its two request bytes are read and cleared under the host's
/// mutex only.
constexpr int fxHostMemoryBytes = 60117;
constexpr int fxDownloadRequestByte = 60115;    ///< requests a recipe transfer to the PLC
constexpr int fxUploadRequestByte = 60116;      ///< requests a recipe transfer from the PLC
constexpr unsigned char fxRecipeRequested = 1;  ///< any other value is no request

/// Sets a connection up, or up anew: empties the plan, the queues and the cache, forgets the
/// exchange in flight, keeps the recipe list and the callback. The host keeps `hostMemory`,
/// `recipeWords` and `hostMutex` valid until the next set-up or until it unloads the library.
/// @param hostMemory      #fxHostMemoryBytes or more; null: no recipe requests
/// @param hostContext     stored only
/// @param recipeWords     the host's recipe memory, large enough for every entry; the driver does
///                        not know its size; null: no recipe can be carried
/// @param[out] status     0
/// @param propertyString  Latin-1, NUL-terminated, decimal numbers separated by '#':
///                        link number, cache-only writes (nonzero: intf_setData queues nothing),
///                        (stored), rejections in a row that end an exchange (below 2: the first
///                        does), words in one frame (below 1 counts as 1), (optional, stored);
///                        a field that is no number is 0; below five fields all keep their values
/// @param hostMutex       guards the two request bytes; null: no recipe requests
/// @return #fxDone
FX_ENTRY_POINT int intf_initProperty(unsigned char* hostMemory, unsigned int hostContext,
                                     unsigned short* recipeWords, int* status,
                                     const char* propertyString, QMutex* hostMutex);

// ---- Planning ---------------------------------------------------------------------------------

constexpr int fxPlanTag = 4;          ///< tag of the read requests of the plan
constexpr int fxUnpolledStation = 0;  ///< station of a key that is marked but not polled

/// Replaces the polling plan and the monitor marks by those of some keys. Call it whenever the set
/// of monitored addresses changes. Of bits as many whole bytes are read as `length` fills, from the
/// byte of the start: M5 with length 8 reads M0 to M7.
/// @param keys  used of each: station, type, start and length (bits, words, counters; for "32CV"
///              the marks count words, two a counter)
/// @return the number of read requests in the plan
FX_ENTRY_POINT int intf_addrMerge(QList<KEY_ADDRESS>& keys);

constexpr int fxMaxQueuedRequests = 513;  ///< in each queue: a further one replaces the last

/// By which limit a one-off read is cut to requests.
enum FxSplit
{
    fxSplitByBits = -1,  ///< eight times as many as by words, more than a PLC answers at once
    fxSplitByWords = 0   ///< or any other number
};

/// Queues a one-off read, which goes out behind the host's writes and ahead of the plan.
/// The callback tells the end of the request queued last. A request for the same range as a waiting
/// one other than the head takes its place. A request that fails takes all that wait with it, also
/// one that the host queues from inside the callback that tells of the failure.
/// @param key  what to read; used of it:
///   - `registerType`: an unknown one is read as words all the same, which nobody keeps
///   - `startIndex`: of bits a multiple of 8: intf_getData does not find what other starts read
///   - `length`: words, counters, or, of bit types, bytes; cut to the words of one frame. Keep bits
///     within one: the next would start as many bits on as this one has bytes. Below 1 it is queued
///     as it stands, to fail
///   - `bitIndex`: an FxSplit
/// @param tag  carried with each request
/// @return #fxDone
FX_ENTRY_POINT int intf_addConditionRead(KEY_ADDRESS& key, int tag);

// ---- Exchange ---------------------------------------------------------------------------------

constexpr int fxMaxBurst = 3;  ///< writes and one-off reads between two reads of the plan

/// Whether there is a frame to send.
enum FxSendResult
{
    fxNothingToSend = 0,  ///< the frame is left as it was
    fxFrameToSend = 1     ///< send its first `frameLength` bytes and hand over the reply
};

/// Gives the next frame to send: of a recipe transfer, else of a write, a one-off read, the plan in
/// rotation. If the plan is empty, #fxMaxBurst writes and one-off reads go out in all: the rest
/// waits for a plan or a set-up. Until its exchange has ended the same frame is given again.
/// @param[out] out  the frame
/// @return an FxSendResult
FX_ENTRY_POINT int intf_getSendFrame(FRAME_PRO* out);

/// What became of a reply.
enum FxReplyResult
{
    fxNoFrameInFlight = 0,  ///< the reply is ignored, the error text is empty
    fxReplyAccepted = 1,    ///< the exchange has ended
    fxExchangeFailed = 2,   ///< rejected as often as the property string allows: it has ended, too
    fxSendAgain = 8         ///< rejected: send the same frame again
};

/// Takes the reply to the frame in flight.
/// @param reply           what came back; empty after a time-out
/// @param[out] errorText  "station#register(count)(reply bytes)" of the frame in flight, whatever
///                        the result
/// @return an FxReplyResult
FX_ENTRY_POINT int intf_dealRcvFrame(QByteArray& reply, QString& errorText);

// ---- Values -----------------------------------------------------------------------------------

constexpr int fxMaxElements = 65536;  ///< that one call serves: more than the PLC can address

/// Reads values from the cache, never from the link. What was neither polled nor written is 0. An
/// unknown type or a count below 1 (below 2 for "32CV") leaves `out` alone.
/// @param stationNo     PLC station
/// @param registerType  exact text, such as "D" or "32CV"
/// @param startIndex    first number
/// @param count         bits, words, or for "32CV" words, two a counter
/// @param[out] out      count bytes for bits, 2 x count for words, 4 x (count / 2) for "32CV"
/// @return #fxDone
FX_ENTRY_POINT int intf_getData(int stationNo, QString registerType, int startIndex, int count,
                                unsigned char* out);

constexpr int fxMaxWriteWords = 253;  ///< that one frame writes: no record holds a longer one

/// Writes values: into the cache at once, to the PLC by queued requests (one a bit; words cut to
/// the frame limit, #fxMaxWriteWords at most). "X" reaches the cache only. A request for the same
/// range as a waiting one other than the head takes its place. Keep a write of "32CV" to the words
/// of one frame: a further request would start as many counters on as the one before has words, and
/// a counter has two. Half a counter is sent, but not cached.
/// @param stationNo     PLC station
/// @param registerType  exact text, such as "D" or "32CV"
/// @param startIndex    first number
/// @param count         as in intf_getData
/// @param data          as `out` of intf_getData; a bit is on only if its byte is exactly 1
/// @param tag           carried with each request
/// @return #fxDone
FX_ENTRY_POINT int intf_setData(int stationNo, QString registerType, int startIndex, int count,
                                unsigned char* data, int tag);

// ---- Recipes ----------------------------------------------------------------------------------

constexpr int fxMaxUploadWords = fxRecordBytes / 2;  ///< that one entry fetches; of "32CV" counters

/// Replaces the recipe list. Call it after intf_initProperty.
///
/// A transfer starts when the host sets a request byte to #fxRecipeRequested, under its mutex, and
/// has ended when the driver has set it back to 0: all was carried, or an exchange failed. An entry
/// that no frame can carry (count or offset below 0, count above #fxMaxUploadWords to upload, above
/// #fxMaxWriteWords to download words) ends it too. With no entries a request repeats the last
/// exchange until the host sets its byte back; if that was a write, each repeat that is
/// acknowledged takes the head of the waiting writes with it, unsent. An entry of a bit type forces
/// one bit whatever its count, on if the low byte of its first word is exactly 1, and fetches
/// nothing into recipe memory.
/// @param list  of which the entries with this link's number are kept
/// @return the number of entries kept
FX_ENTRY_POINT int intf_setRcpAddress(QVector<_RCP_VAR_PRO>& list);

// ---- Address services for the editor ----------------------------------------------------------

constexpr int fxBitDataType = -1;                      ///< data type of a bit; any other is a word
constexpr int fxCounterDataTypes[] = {1, 3, 5, 6, 9};  ///< those of 32 bits, which "32CV" takes

/// What is to be done at an address; any other number reads.
enum FxAccessMode
{
    fxReadAccess = 0,      ///< read
    fxWriteAccess = 1,     ///< write
    fxReadWriteAccess = 2  ///< both
};

/// What an address check found.
enum FxAddressCheck
{
    fxAddressValid = 0,         ///< nothing is wrong
    fxWrongWidth = 1,           ///< a bit access to a word type, or the other way round
    fxAddressOutOfRange = 2,    ///< out of the type's range, or running past its end
    fxUnknownType = 3,          ///< there is no such register type
    fxNotANumber = 4,           ///< a sign in the text, or no number in the type's base
    fxNotACounterDataType = 5,  ///< "32CV" with a data type that is none of #fxCounterDataTypes
    fxWriteToInput = 6          ///< "X" cannot be written
};

/// Checks the number part of an address: its width, signs, writes to "X", the data type of "32CV",
/// the register type, the number, its range. The first that is wrong is the result.
/// @param registerType       exact text, such as "X" or "32CV"
/// @param addressText        the number, as on paper
/// @param[out] addressIndex  the number as soon as the text is parsed (0 if it is no number),
///                           whatever the range
/// @param dataType           #fxBitDataType, one of #fxCounterDataTypes, or a word
/// @param count              registers that the address covers
/// @param accessMode         an FxAccessMode
/// @return an FxAddressCheck
FX_ENTRY_POINT int intf_checkAddr(const QString& registerType, const QString& addressText,
                                  int* addressIndex, int dataType, int count, int accessMode);

/// The width of an access.
enum FxAccessWidth
{
    fxBitAccess = 0,  ///< one bit
    fxWordAccess = 1  ///< or any other number
};

/// Checks the number part of an address as intf_checkAddr does, where only the width of the access
/// is known.
/// @param registerType       exact text, such as "X" or "32CV"
/// @param addressText        the number, as on paper
/// @param[out] addressIndex  as in intf_checkAddr
/// @param count              registers that the address covers
/// @param wordAccess         an FxAccessWidth
/// @return an FxAddressCheck
FX_ENTRY_POINT int intf_checkAddrValidity(const QString& registerType, const QString& addressText,
                                          int* addressIndex, int count, int wordAccess);

/// Which register types to list.
enum FxTypeList
{
    fxBitTypes = 0,  ///< those of bits
    fxWordTypes = 1  ///< those of words and 32-bit counters
};

/// Lists the names of the register types of one kind.
/// @param kind           an FxTypeList
/// @param[in,out] names  to which they are appended
/// @return 1 for these kinds, else 0 with nothing appended
FX_ENTRY_POINT int intf_getRegListByType(int kind, QList<QString>& names);

/// Describes a register type by five texts.
/// @param registerType    exact text, such as "X" or "32CV"
/// @param[in,out] fields  to which they are appended: number format ('o' an octal digit, 'd' a
///                        decimal one), lowest and highest number, width ("0" bit, "1" word, "2"
///                        32 bits), "1" if it can be written, else "0"; nothing for an unknown type
/// @return 1 for "32CV", else 0: go by the texts
FX_ENTRY_POINT int intf_getRegDiscription(const QString& registerType, QList<QString>& fields);

constexpr int fxMaxCopies = 1000000;  ///< that one call appends

/// Steps with a meaning of their own; any other below 1 is 1.
enum FxSeriesStep
{
    fxPlainStep = -1,    ///< 1
    fxStepOf32Bits = -2  ///< 2 for words, else 1
};

/// What became of a series of addresses.
enum FxSeriesResult
{
    fxSeriesUnknownType = 0,  ///< nothing appended
    fxSeriesFitted = 1,       ///< every number fits
    fxSeriesClamped = 2       ///< at least one is past the type's end and becomes its last number
};

/// Makes the addresses of copies of an object. Nothing is checked against the type's first number.
/// @param registerType    exact text, such as "X" or "32CV"
/// @param startIndex      number of the first copy
/// @param copies          how many; below one nothing is appended
/// @param step            from one copy to the next, or an FxSeriesStep
/// @param[in,out] texts   to which the addresses are appended, of "X" and "Y" in octal
/// @param[in,out] values  to which they are appended as numbers
/// @return an FxSeriesResult, which speaks of all copies asked for
FX_ENTRY_POINT int intf_multiCopy(const QString& registerType, int startIndex, int copies, int step,
                                  QVector<QString>& texts, QVector<int>& values);

#endif
