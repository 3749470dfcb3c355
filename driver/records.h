// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
/// @file
/// The five plain records: a request for a range of registers, an address to monitor or read, a
/// frame, a cached data area and a recipe entry. Host and driver exchange them by memory layout, so
/// fields keep their order and widths, and value bytes are part of the record. The few functions
/// are inline because a host may include this header without linking.

#ifndef DRIVER_RECORDS_H
#define DRIVER_RECORDS_H

#include <QString>

#include <cstddef>

constexpr int fxRecordBytes = 1024;  ///< space for values or a frame in a record

/// A request for consecutive registers of one type in one station.
struct VARIABLE
{
    int tag = 0;           ///< the host's mark, or fxPlanTag; a recipe keeps the last request's
    int stationNo = 0;     ///< PLC station
    QString registerType;  ///< "X", "Y", "M", "S", "SM", "T", "C", "D", "SD", "TV", "CV", "32CV"
    int addressIndex = 0;  ///< first number; X and Y: the value of the octal number
    int count = 0;         ///< read: words, counters, or bytes of bits; write: words, or 1 bit
    unsigned char data[fxRecordBytes] = {};  ///< values to write

    VARIABLE() = default;
    VARIABLE(const VARIABLE&) = default;
    VARIABLE& operator=(const VARIABLE&) = default;  // all data bytes travel, used or not
};

/// A range of registers that the host monitors or reads once.
struct KEY_ADDRESS
{
    QString hostText1;     ///< for the host
    int hostValue1 = 0;    ///< for the host
    int hostValue2 = 0;    ///< for the host
    int stationNo = 0;     ///< PLC station, or fxUnpolledStation
    QString registerType;  ///< as in VARIABLE
    QString hostText2;     ///< for the host
    int startIndex = 0;    ///< first register number
    int bitIndex = 0;      ///< an FxSplit, for one-off reads
    int length = 0;        ///< bits, words or counters; see intf_addrMerge, intf_addConditionRead
    unsigned char data[fxRecordBytes] = {};  ///< for the host

    KEY_ADDRESS() = default;
    KEY_ADDRESS(const KEY_ADDRESS&) = default;
    KEY_ADDRESS& operator=(const KEY_ADDRESS&) = default;
    ~KEY_ADDRESS() = default;
};

/// A frame to send, and the reply that is expected.
struct FRAME_PRO
{
    unsigned char frame[fxRecordBytes] = {};  ///< from STX to the end of the checksum
    int frameLength = 0;                      ///< bytes of `frame` to send
    int replyLength = 0;                      ///< bytes of a whole reply
    int isRead = 0;          ///< 1: a read, whose data begins at reply[1]; 0: a write
    int replyDataChars = 0;  ///< data characters of a whole reply, 2 for each byte
    int spare = 0;           ///< not used
    VARIABLE variable;       ///< the request of this frame
};

/// A cached data area: eight bits, one word or one 32-bit counter.
struct _DATA_
{
    unsigned char flag0 = 0;         ///< 1: the last read of it, or of areas just below, failed
    unsigned char bufferSelect = 0;  ///< nonzero: a host write waits in valueBuffer1
    int word1 = 0;                   ///< not used
    int monitorFlags = 0;            ///< words and counters: bit 0 set: monitored
    int changeFlags = 0;             ///< bits: bit k set: startIndex + k is monitored, not changed
    int stationNo = 0;               ///< key, compared first
    QString registerType;            ///< key, compared second
    int startIndex = 0;              ///< key, compared third
    unsigned char valueBuffer0[4] = {};  ///< read from the PLC, or confirmed by it
    unsigned char valueBuffer1[4] = {};  ///< written by the host
};

/// An entry of the recipe list.
struct _RCP_VAR_PRO
{
    int linkNo = 0;            ///< used only if it is the number of this link
    int stationNo = 0;         ///< PLC station
    QString registerType;      ///< as in VARIABLE
    int addressIndex = 0;      ///< first number
    int count = 0;             ///< words; for an upload of 32CV counters, of two words each
    int recipeWordOffset = 0;  ///< index of its first word in the host's recipe memory
    int hostValue = 0;         ///< for the host
};

// Offsets that host and driver must agree on. A text field takes the pointer-sized (Qt 4, Qt 5)
// or three-pointer (Qt 6) QString of the Qt that both are built with.
static_assert(offsetof(VARIABLE, tag) == 0);
static_assert(offsetof(VARIABLE, stationNo) == 4);
static_assert(offsetof(VARIABLE, registerType) == 8);
static_assert(offsetof(VARIABLE, addressIndex) == 8 + sizeof(QString));
static_assert(offsetof(VARIABLE, count) == 12 + sizeof(QString));
static_assert(offsetof(VARIABLE, data) == 16 + sizeof(QString));

static_assert(offsetof(KEY_ADDRESS, hostText1) == 0);
static_assert(offsetof(KEY_ADDRESS, hostValue1) == sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, hostValue2) == 4 + sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, stationNo) == 8 + sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, registerType) ==
              (12 + sizeof(QString) + alignof(QString) - 1) / alignof(QString) * alignof(QString));
static_assert(offsetof(KEY_ADDRESS, hostText2) ==
              offsetof(KEY_ADDRESS, registerType) + sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, startIndex) ==
              offsetof(KEY_ADDRESS, hostText2) + sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, bitIndex) == offsetof(KEY_ADDRESS, startIndex) + 4);
static_assert(offsetof(KEY_ADDRESS, length) == offsetof(KEY_ADDRESS, startIndex) + 8);
static_assert(offsetof(KEY_ADDRESS, data) == offsetof(KEY_ADDRESS, startIndex) + 12);

static_assert(offsetof(FRAME_PRO, frame) == 0);
static_assert(offsetof(FRAME_PRO, frameLength) == fxRecordBytes);
static_assert(offsetof(FRAME_PRO, replyLength) == fxRecordBytes + 4);
static_assert(offsetof(FRAME_PRO, isRead) == fxRecordBytes + 8);
static_assert(offsetof(FRAME_PRO, replyDataChars) == fxRecordBytes + 12);
static_assert(offsetof(FRAME_PRO, spare) == fxRecordBytes + 16);
static_assert(offsetof(FRAME_PRO, variable) ==
              (fxRecordBytes + 20 + alignof(VARIABLE) - 1) / alignof(VARIABLE) * alignof(VARIABLE));

static_assert(offsetof(_RCP_VAR_PRO, linkNo) == 0);
static_assert(offsetof(_RCP_VAR_PRO, stationNo) == 4);
static_assert(offsetof(_RCP_VAR_PRO, registerType) == 8);
static_assert(offsetof(_RCP_VAR_PRO, addressIndex) == 8 + sizeof(QString));
static_assert(offsetof(_RCP_VAR_PRO, count) == 12 + sizeof(QString));
static_assert(offsetof(_RCP_VAR_PRO, recipeWordOffset) == 16 + sizeof(QString));
static_assert(offsetof(_RCP_VAR_PRO, hostValue) == 20 + sizeof(QString));

#endif
