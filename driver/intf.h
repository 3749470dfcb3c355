// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Every function that the driver exports, in the order in which a host needs them; those for a
/// screen editor are in address_services.h.
//
/// @mainpage
/// The driver opens no port, starts no thread, never sleeps and reads no file: the host owns the
/// link and all timing.
///
/// Conventions
/// -----------
/// 1. Any thread may call, but only one call may run at a time.
/// 2. Inside the value-change callback the host may call intf_getData, intf_setData and
///    intf_addConditionRead, and nothing else.
/// 3. No function throws or writes a log. Results are integers; their names are below.
/// 4. The driver uses the host's texts, lists and buffers only during the call and copies what it
///    needs later. Exceptions: the two memories and the mutex of intf_initProperty.
/// 5. An output or a buffer may be null: the call does the rest of its work. The driver ignores
///    requests that make no sense, with two exceptions: a one-off read is queued as it is, and a
///    recipe entry of an unknown type is transferred as words from byte address 0 on.
/// 6. Register types are exact texts. Bits: "X" "Y" "M" "S" "SM" "T" "C". Words: "D" "SD" "TV"
///    "CV". 32-bit counters: "32CV". "X" and "Y" are numbered in octal on paper, but every integer
///    here is the value of that number: X17 is 15. "SM" and "SD" begin at 8000, "32CV" at 200.
/// 7. Values have the byte order of the PLC, low byte first. A bit is one byte, 0 or 1.
/// 8. One call handles at most #fxMaxElements registers. Further ones are ignored, and so are those
///    whose number does not fit into 32 bits.
/// 9. Build the library with the same major version of Qt as its host (4, 5 or 6).
/// 10. The link is the FX programming port: 9600 baud, 7 data bits, even parity, 1 stop bit.
/// 11. Stations are numbers from 1 on that keep requests and values apart. No frame carries one:
///     the station that a frame is for is in its `variable.stationNo`.

#ifndef DRIVER_INTF_H
#define DRIVER_INTF_H

#include "address_services.h"
#include "entry_point.h"
#include "records.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVector>

class QMutex;

/// The result of the functions that cannot fail.
constexpr int fxDone = 1;

// ---- Set-up -----------------------------------------------------------------------------------

/// Gives the default settings of a new device.
/// @param[out] text  22 fields, separated by commas: a host setting, baud rate, data bits, parity,
///                   stop bits, two host settings, network address, network port, model name, and
///                   the twelve register types
FX_ENTRY_POINT void intf_getDriverParameter(QString& text);

/// Gives the identifier of the property page to show.
/// @param[out] text  "0_0"
FX_ENTRY_POINT void intf_getDriverPropertyPage(QString& text);

/// Empties a text. The driver does not use it.
/// @param[out] text  empty afterwards
FX_ENTRY_POINT void intf_SetDriverPropertyPage(QString& text);

/// Gives the protocol type.
/// @param[out] type  always 0
FX_ENTRY_POINT void intf_getProtocolType(int* type);

/// The host's callback. It runs on the thread and inside the call that caused it, without any lock.
/// Its result is ignored. `text` is valid only during the callback. Arguments:
///
///  - (link, station, register type, number): a monitored register has changed, or a write of it
///    has ended
///  - (-1, -1, #fxReadEndText, an FxReadEnd): the one-off read that was queued last has ended
///  - (0, -1, #fxRecipeWordText, word): an upload has stored this word of recipe memory
///
/// Bits that change in the PLC are cached but not reported: read them with intf_getData.
typedef int (*FxValueChangeCallback)(int linkNo, int stationNo, QString& text, int value);

constexpr char fxReadEndText[] = "-1";      ///< `text` at the end of a one-off read
constexpr char fxRecipeWordText[] = "RWI";  ///< `text` when a recipe word is stored

/// How a one-off read ended.
enum FxReadEnd
{
    fxReadSucceeded = 0,  ///< its values are in the cache
    fxReadFailed = -1     ///< the cache has its earlier values
};

/// Registers the host's callback in place of any earlier one.
/// @param callback  null for none
FX_ENTRY_POINT void intf_setAddrValueChangeCallBack(FxValueChangeCallback callback);

/// The least size of the host's memory, which contains the two recipe request bytes. The driver
/// reads and clears them only under the host's mutex.
constexpr int fxHostMemoryBytes = 60117;
constexpr int fxDownloadRequestByte = 60115;    ///< position: requests a transfer to the PLC
constexpr int fxUploadRequestByte = 60116;      ///< position: requests a transfer from it
constexpr unsigned char fxRecipeRequested = 1;  ///< value of a raised request byte

/// Starts a connection, or starts it anew: empties the plan, the queues and the cache, and forgets
/// the exchange in flight. The recipe list, the place in a recipe transfer and the callback stay.
/// `hostMemory`, `recipeWords` and `hostMutex` must stay valid until the next call of this function
/// or until the library is unloaded.
/// @param hostMemory      #fxHostMemoryBytes or more; null: no recipe requests
/// @param hostContext     stored, not used
/// @param recipeWords     the host's recipe memory, large enough for every entry (the driver does
///                        not know its size); null: no recipe transfers
/// @param[out] status     0
/// @param propertyString  Latin-1, NUL-terminated: five or six decimal numbers separated by '#':
///                        link number; nonzero: intf_setData writes to the cache only; (unused);
///                        rejections in a row that end an exchange (below 2: the first one); words
///                        in one frame (below 1 means 1); (unused). A field that is not a number
///                        is 0. With fewer than five fields all keep their values
/// @param hostMutex       protects the two request bytes; null: no recipe requests
/// @return #fxDone
FX_ENTRY_POINT int intf_initProperty(unsigned char* hostMemory, unsigned int hostContext,
                                     unsigned short* recipeWords, int* status,
                                     const char* propertyString, QMutex* hostMutex);

// ---- Planning ---------------------------------------------------------------------------------

constexpr int fxPlanTag = 4;          ///< tag of the reads of the plan
constexpr int fxUnpolledStation = 0;  ///< station of a monitored key that is not polled

/// Replaces the plan, and monitors the registers of `keys` in place of earlier ones. Call it
/// whenever the set of monitored registers changes. Bits are read in whole bytes, as many as
/// `length` fills, from the byte of the start: M5 with length 8 reads M0 to M7, not M8 to M12.
/// @param keys  of each key `stationNo`, `registerType`, `startIndex` and `length` are used;
///              `length` is in bits, words or counters. For "32CV" only half as many counters are
///              monitored as are polled
/// @return the number of blocks in the plan, each read by one request
FX_ENTRY_POINT int intf_addrMerge(QList<KEY_ADDRESS>& keys);

constexpr int fxMaxQueuedRequests = 513;  ///< most in one queue; a further one replaces the last

/// The size of the requests into which a long one-off read is cut.
enum FxSplit
{
    fxSplitByBits = -1,  ///< 8 times the words of a frame, which PLCs refuse
    fxSplitByWords = 0   ///< the words of a frame; any other value means the same
};

/// Queues a one-off read. It is sent after the host's writes and before the plan. A request for the
/// same range as a waiting one takes its place, unless that one is at the head of the queue. The
/// callback reports only the end of the request that was queued last. If a request fails, all that
/// wait are dropped, and so is one that the host queues inside the callback of the failure.
/// @param key  what to read:
///   - `stationNo`: PLC station
///   - `registerType`: an unknown type is read as words, but the values are not stored
///   - `startIndex`: for bits a multiple of 8; intf_getData does not find values from other starts
///   - `length`: words or counters; for bits bytes. If it exceeds the number of words in a frame,
///     it is cut into several requests; for bits do not exceed that number, because the next
///     request would start at a wrong number. A length below 1 is queued as it is
///   - `bitIndex`: an FxSplit; use #fxSplitByWords
/// @param tag  the host's mark, stored in each request
/// @return #fxDone
FX_ENTRY_POINT int intf_addConditionRead(KEY_ADDRESS& key, int tag);

// ---- Exchange ---------------------------------------------------------------------------------

constexpr int fxMaxBurst = 3;  ///< most writes and one-off reads between two reads of the plan

/// Whether there is a frame to send.
enum FxSendResult
{
    fxNothingToSend = 0,  ///< `out` is unchanged
    fxFrameToSend = 1     ///< send the first `frameLength` bytes of `out.frame`
};

/// Gives the next frame to send: of a recipe transfer, else a write, else a one-off read, else the
/// next block of the plan. While an exchange is in flight it gives the same frame again. With an
/// empty plan only #fxMaxBurst writes and one-off reads are sent in all; the others wait for a
/// plan.
/// @param[out] out  the frame; null: the call does nothing and gives #fxNothingToSend
/// @return an FxSendResult
FX_ENTRY_POINT int intf_getSendFrame(FRAME_PRO* out);

/// What became of a reply.
enum FxReplyResult
{
    fxNoFrameInFlight = 0,  ///< the reply is ignored; the error text is empty
    fxReplyAccepted = 1,    ///< the exchange has succeeded
    fxExchangeFailed = 2,   ///< rejected as often as the property string allows
    fxSendAgain = 8         ///< rejected; intf_getSendFrame gives the same frame again
};

/// Takes the reply to the frame in flight. It checks the form and the checksum of the reply, but
/// not its length: pass only replies of exactly `replyLength` bytes, or empty ones.
/// @param reply           the bytes that came back; empty after a time-out
/// @param[out] errorText  "station#register(count)(bytes of the reply)", also after a good exchange
/// @return an FxReplyResult
FX_ENTRY_POINT int intf_dealRcvFrame(QByteArray& reply, QString& errorText);

// ---- Values -----------------------------------------------------------------------------------

constexpr int fxMaxElements = 65536;  ///< most registers in one call; a PLC has fewer

/// Reads values from the cache, never from the link. A register that was neither read nor written
/// is 0. For an unknown type, or a count below 1 (below 2 for "32CV"), `out` is unchanged.
/// @param stationNo     PLC station
/// @param registerType  exact text, such as "D" or "32CV"
/// @param startIndex    first number
/// @param count         bits or words; for "32CV" words, 2 for each counter
/// @param[out] out      1 byte for each bit, 2 bytes for each word, 4 bytes for each counter
/// @return #fxDone
FX_ENTRY_POINT int intf_getData(int stationNo, QString registerType, int startIndex, int count,
                                unsigned char* out);

constexpr int fxMaxWriteWords = 253;  ///< most words in a frame: FRAME_PRO holds no more

/// Writes values to the cache at once, and queues requests that write them to the PLC: one for each
/// bit; words in frames of as many words as the property string allows, at most #fxMaxWriteWords.
/// "X" is written to the cache only. A request for the same range as a waiting one takes its place,
/// unless that one is at the head of the queue. Write at most one frame of "32CV" in one call: the
/// next request would start at a wrong number. An odd count sends half a counter, which is not
/// cached.
/// @param stationNo     PLC station
/// @param registerType  exact text, such as "D" or "32CV"
/// @param startIndex    first number
/// @param count         as in intf_getData
/// @param data          as `out` of intf_getData; a bit is on only if its byte is exactly 1
/// @param tag           the host's mark, stored in each request
/// @return #fxDone
FX_ENTRY_POINT int intf_setData(int stationNo, QString registerType, int startIndex, int count,
                                unsigned char* data, int tag);

// ---- Recipes ----------------------------------------------------------------------------------

/// Most words, or counters for "32CV", that one recipe entry uploads.
constexpr int fxMaxUploadWords = fxRecordBytes / 2;

/// Replaces the recipe list. Call it after intf_initProperty.
///
/// To start a transfer, set a request byte to #fxRecipeRequested under the mutex. The transfer has
/// ended when the driver has set the byte back to 0: after the last entry, or after a failed
/// exchange. An entry that no frame can carry ends it, too: count or offset below 0, count above
/// #fxMaxUploadWords (upload) or #fxMaxWriteWords (download of words).
///
/// Never raise a request byte while the list is empty: the driver would repeat the last exchange
/// until the host clears the byte. If that exchange was a write, each repeat that the PLC accepts
/// removes the next waiting write unsent.
///
/// An entry of a bit type forces one bit, whatever its count: on if the low byte of its first word
/// is exactly 1, off with count 0. An upload of bits stores nothing in recipe memory.
/// @param list  only entries with this link's number are kept
/// @return the number of entries kept
FX_ENTRY_POINT int intf_setRcpAddress(QVector<_RCP_VAR_PRO>& list);

#endif
