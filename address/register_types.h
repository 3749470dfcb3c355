// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The one table of facts about register types. Every offset on the wire is the register's number
// less the type's first one, so one row a type serves the checks, the catalogue, the address
// series, the plan and the frames. A name that has no row is an unknown type.

#ifndef ADDRESS_REGISTER_TYPES_H
#define ADDRESS_REGISTER_TYPES_H

#include <QString>

enum class RegisterKind  // numbered as the catalogue tells the editor
{
    Bit = 0,
    Word = 1,
    DoubleWord = 2
};

constexpr int noBase = -1;  // the type has no address of that sort

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the columns stand as one reads them
struct RegisterType
{
    const char* name;
    RegisterKind kind;
    int numberBase;      // of addresses on paper
    int first;           // lowest number
    int last;            // highest number that is listed
    int checkEnd;        // one past the highest number that a check accepts
    int readBase;        // byte address of the first register
    int writeBase;       // byte address of the first word; noBase for bits
    int forceBase;       // bit address of the first bit; noBase for words
    int planOrder;       // place of the type in the polling plan
    const char* format;  // 'o' an octal digit, 'd' a decimal digit
    bool writable;       // as the catalogue tells the editor
};

// Rows stand in the order of the catalogue: bit types, word types, the double-word type.
// clang-format off
inline constexpr RegisterType registerTypes[] = {
//   name    kind                      base  first  last   end    read    write   force   plan  format   writable
    {"X",    RegisterKind::Bit,        8,    0,     255,   256,   0x0080, noBase, 0x0000, 0,    "ooo",   false},  // forces go out with the base of "S": inputs have none
    {"Y",    RegisterKind::Bit,        8,    0,     255,   256,   0x00A0, noBase, 0x0500, 1,    "ooo",   true},
    {"M",    RegisterKind::Bit,        10,   0,     3071,  3072,  0x0100, noBase, 0x0800, 2,    "dddd",  true},
    {"S",    RegisterKind::Bit,        10,   0,     999,   1000,  0x0000, noBase, 0x0000, 4,    "ddd",   true},
    {"SM",   RegisterKind::Bit,        10,   8000,  8255,  8256,  0x01E0, noBase, 0x0F00, 3,    "dddd",  true},   // polled before "S"
    {"T",    RegisterKind::Bit,        10,   0,     255,   256,   0x00C0, noBase, 0x0600, 5,    "ddd",   true},
    {"C",    RegisterKind::Bit,        10,   0,     255,   256,   0x01C0, noBase, 0x0E00, 6,    "ddd",   true},
    {"D",    RegisterKind::Word,       10,   0,     7999,  8000,  0x1000, 0x1000, noBase, 7,    "dddd",  true},
    {"SD",   RegisterKind::Word,       10,   8000,  8255,  8256,  0x0E00, 0x0F00, noBase, 8,    "dddd",  true},   // read and written at different addresses
    {"TV",   RegisterKind::Word,       10,   0,     255,   256,   0x0800, 0x0800, noBase, 9,    "ddd",   true},
    {"CV",   RegisterKind::Word,       10,   0,     199,   200,   0x0A00, 0x0A00, noBase, 10,   "ddd",   true},
    {"32CV", RegisterKind::DoubleWord, 10,   200,   255,   257,   0x0C00, 0x0C00, noBase, 11,   "ddddd", true},   // the check accepts 256, the lists end at 255
};
// clang-format on

// The row of a type, by exact and case-sensitive name; null for an unknown type.
const RegisterType* findRegisterType(const QString& name);

// The type's name as a text that all users share, so that copies cost no memory and comparisons
// of two copies no time.
const QString& registerTypeName(const RegisterType& type);

constexpr bool isBit(const RegisterType& type)
{
    return type.kind == RegisterKind::Bit;
}

constexpr bool isDoubleWord(const RegisterType& type)
{
    return type.kind == RegisterKind::DoubleWord;
}

// Bytes of one value in a frame and in the cache, where eight bits share a byte, and in the host's
// buffers, where each bit takes one.
constexpr int valueBytes(RegisterKind kind)
{
    return kind == RegisterKind::Bit ? 1 : kind == RegisterKind::Word ? 2 : 4;
}

constexpr int valueBytes(const RegisterType& type)
{
    return valueBytes(type.kind);
}

#endif
