// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Register types as the driver describes them, runs of registers and their parts. Addresses as
// people write them: what they mean, and in one line what is wrong with others.

#include "tests/tools/support/failure_of.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/library/addresses.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

struct Address
{
    const char* text;
    const char* type;
    int first;
    int count;
    int station;
    const char* name;  // as it is shown again
};

const Address addresses[] = {
    {"D100", "D", 100, 1, 1, "D100"},
    {" d100:32 ", "D", 100, 32, 1, "D100:32"},
    {"X17", "X", 15, 1, 1, "X17"},
    {"Y0:256", "Y", 0, 256, 1, "Y0:256"},
    {"2#D100:2", "D", 100, 2, 2, "2#D100:2"},
    {"1#D5", "D", 5, 1, 1, "D5"},
    {"M8000", "SM", 8000, 1, 1, "M8000"},
    {"SM8000", "SM", 8000, 1, 1, "SM8000"},
    {"D7999", "D", 7999, 1, 1, "D7999"},
    {"D8000", "SD", 8000, 1, 1, "D8000"},
    {"CV199", "CV", 199, 1, 1, "CV199"},
    {"CV200", "32CV", 200, 1, 1, "CV200"},
    {"32cv255", "32CV", 255, 1, 1, "32CV255"},
    {"T5", "T", 5, 1, 1, "T5"},
    {"TV5", "TV", 5, 1, 1, "TV5"},
    {"D0..D9", "D", 0, 10, 1, "D0:10"},
    {"d0-d9", "D", 0, 10, 1, "D0:10"},
    {"D0-9", "D", 0, 10, 1, "D0:10"},
    {"X10-X20", "X", 8, 9, 1, "X10:9"},
    {"3#D5-D5", "D", 5, 1, 3, "3#D5"},
    {"M8000..M8007", "SM", 8000, 8, 1, "M8000:8"},
    {"D100.5", "D", 100, 1, 1, "D100.5"},
    {"D100.15", "D", 100, 1, 1, "D100.15"},
    {"D100.f", "D", 100, 1, 1, "D100.15"},
    {"K4M0", "M", 0, 16, 1, "K4M0"},
    {"2#k1x17", "X", 15, 4, 2, "2#K1X17"},
};

struct BadAddress
{
    const char* text;
    const char* says;  // behind the address in quotes
};

const char* const noAddress = "is not an address; use for example D100, X17, D100:32 or D0-D9";

const BadAddress badAddresses[] = {
    {"", noAddress},
    {"D", noAddress},
    {"100", noAddress},
    {"D-1", noAddress},
    {"D1:", noAddress},
    {"#D1", noAddress},
    {"0#D1", "has an invalid station 0; use 1 or more"},
    {"D1:0", "has an invalid count 0; use 1 or more"},
    {"D1:2147483648", "has an invalid count 2147483648; use 1 or more"},
    {"X18", "has an invalid number; X is octal: after X17 comes X20"},
    {"Y80", "has an invalid number; Y is octal: after Y17 comes Y20"},
    {"M3072", "is out of range: M0 to M3071 or M8000 to M8255"},
    {"D7999:2", "is out of range: D0 to D7999 or D8000 to D8255"},
    {"D8256", "is out of range: D0 to D7999 or D8000 to D8255"},
    {"D99999", "is out of range: D0 to D7999 or D8000 to D8255"},
    {"D99999999999", "has an invalid number; use D0 to D7999 or D8000 to D8255"},
    {"SD8256", "is out of range: SD8000 to SD8255"},
    {"X400", "is out of range: X0 to X377, in octal"},
    {"32CV256", "is out of range: 32CV200 to 32CV255"},
    {"32CV255:2", "is out of range: 32CV200 to 32CV255"},
    {"D7990-D8010", "is out of range: D0 to D7999 or D8000 to D8255"},
    {"D9-D0", "ends before it begins"},
    {"D0-M9", "has two register types"},
    {"D0.16", "has no such bit; a word has the bits 0 to 15"},
    {"M0.5", "names a bit, which only 16-bit registers have"},
    {"32CV200.5", "names a bit, which only 16-bit registers have"},
    {"K9M0", "is not a group of bits; use K1 to K8 and one bit, such as K4M0 for M0 to M15"},
    {"K4D0", "is not a group of bits; use K1 to K8 and one bit, such as K4M0 for M0 to M15"},
    {"K4M0:2", "is not a group of bits; use K1 to K8 and one bit, such as K4M0 for M0 to M15"},
    {"Q7", "has an unknown register type; use one of X Y M S SM T C D SD "
           "TV CV 32CV"},
};

}  // namespace

TEST(Addresses, SayTypeNumberCountAndStation)
{
    for (const Address& address : addresses) {
        const AskedAddress asked = askedAddress(takeApart(address.text), catalogue());
        const RegisterRange& parsed = asked.range;
        EXPECT_EQ(parsed.type.name, address.type) << address.text;
        EXPECT_EQ(parsed.first, address.first) << address.text;
        EXPECT_EQ(parsed.count, address.count) << address.text;
        EXPECT_EQ(parsed.station, address.station) << address.text;
        EXPECT_EQ(asked.text(), address.name) << address.text;
    }
}

TEST(BadAddresses, AreToldWithWhatWouldBeRight)
{
    for (const auto& [text, says] : badAddresses)
        EXPECT_EQ(failureOf(ExitCode::Usage, [text = text] { range(text); }),
                  "'" + std::string(text) + "' " + says);
}

TEST(Addresses, AreOfTheLinksOwnStationOrRefused)
{
    const RegisterCatalogue ofStation2(driver(), 2);
    EXPECT_EQ(parseAddress("D5", ofStation2).station, 2);
    EXPECT_EQ(parseAddress("2#D5", ofStation2).station, 2);
    EXPECT_EQ(
        failureOf(ExitCode::Usage, [&] { parseAddress("3#D5", ofStation2); }),
        "'3#D5' names another station than 2, the one of this link; each PLC needs a link of its "
        "own");
}

TEST(Catalogue, HoldsEachTypeAsTheDriverDescribesIt)
{
    QStringList rows;
    for (const RegisterType& type : catalogue().all()) {
        rows += QStringLiteral("%1 %2..%3 base %4, %5%6")
                    .arg(type.name, type.numberText(type.lowest), type.numberText(type.highest))
                    .arg(type.numberBase)
                    .arg(widthText(type.width), type.writable ? ", writable" : "");
    }
    EXPECT_EQ(rows.join('\n').toStdString(), R"(X 0..377 base 8, bit
Y 0..377 base 8, bit, writable
M 0..3071 base 10, bit, writable
S 0..999 base 10, bit, writable
SM 8000..8255 base 10, bit, writable
T 0..255 base 10, bit, writable
C 0..255 base 10, bit, writable
D 0..7999 base 10, 16 bits, writable
SD 8000..8255 base 10, 16 bits, writable
TV 0..255 base 10, 16 bits, writable
CV 0..199 base 10, 16 bits, writable
32CV 200..255 base 10, 32 bits, writable)");
    EXPECT_EQ(catalogue().find("x"), nullptr);
}

TEST(DriverLibrary, HasEntryPointsThatNoToolCalls)
{
    EXPECT_NE(driver().getProtocolType, nullptr);
}

TEST(Catalogue, LeavesTheDriverEmpty)
{
    const RegisterCatalogue made(driver());
    FRAME_PRO frame;
    EXPECT_EQ(driver().getSendFrame(&frame), fxNothingToSend);
}

TEST(RegisterTypes, CountAsTheDriverDoes)
{
    struct Row
    {
        const char* type;
        int registers;
        int valueBytes;
        int driverCountOf3;
        int mostInFrameOf32Words;
        int mostInFrameOf1Word;
    };
    const Row rows[] = {
        {"X", 256, 1, 3, 256, 8},
        {"D", 8000, 2, 3, 32, 1},
        {"32CV", 56, 4, 6, 16, 1},
    };
    for (const Row& row : rows) {
        const RegisterType& type = *catalogue().find(row.type);
        EXPECT_EQ(type.registers(), row.registers) << row.type;
        EXPECT_EQ(type.valueBytes(), row.valueBytes) << row.type;
        EXPECT_EQ(type.driverCount(3), row.driverCountOf3) << row.type;
        EXPECT_EQ(type.mostInFrame(32), row.mostInFrameOf32Words) << row.type;
        EXPECT_EQ(type.mostInFrame(1), row.mostInFrameOf1Word) << row.type;
    }
}

TEST(Ranges, AreCutAndNamed)
{
    const RegisterRange whole = range("2#X6:8");
    EXPECT_EQ(whole.nameOf(2), "2#X10");
    const RegisterRange part = whole.part(2, 3);
    EXPECT_EQ(part.text(), "2#X10:3");
    EXPECT_EQ(part.first, 8);
    EXPECT_EQ(part.part(2, 1).text(), "2#X12");
    const QVector<RegisterRange> parts = range("D0:40").cut(32);
    ASSERT_EQ(parts.size(), 2);
    EXPECT_EQ(parts[0].text(), "D0:32");
    EXPECT_EQ(parts[1].text(), "D32:8");
}

// Bits go into the plan from the first of their byte on.
TEST(Ranges, BecomeKeysOfThePlan)
{
    const KEY_ADDRESS words = planKey(range("3#D5:7"));
    EXPECT_EQ(words.stationNo, 3);
    EXPECT_EQ(words.registerType, "D");
    EXPECT_EQ(words.startIndex, 5);
    EXPECT_EQ(words.length, 7);
    const KEY_ADDRESS bits = planKey(range("M13:4"));
    EXPECT_EQ(bits.startIndex, 8);
    EXPECT_EQ(bits.length, 9);
    EXPECT_EQ(planKey(range("M16")).startIndex, 16);
    EXPECT_EQ(planKey(range("M16")).length, 1);
}

// The frames of the driver say where each type lies.
TEST(RegisterTypes, KnowTheirAddressesOnTheWire)
{
    struct Row
    {
        const char* address;
        int read;
        int write;
    };
    const Row rows[] = {
        {"D100", 0x10C8, 0x10C8}, {"SD8001", 0x0E02, 0x0F02},  {"TV3", 0x0806, 0x0806},
        {"CV5", 0x0A0A, 0x0A0A},  {"32CV201", 0x0C04, 0x0C04}, {"Y11", 0x00A1, 0x0509},
        {"M9", 0x0101, 0x0809},   {"S9", 0x0001, 0x0009},      {"T9", 0x00C1, 0x0609},
        {"C9", 0x01C1, 0x0E09},   {"SM8009", 0x01E1, 0x0F09},
    };
    for (const Row& row : rows) {
        const RegisterRange one = range(row.address);
        EXPECT_EQ(one.type.readAddress(one.first), row.read) << row.address;
        EXPECT_EQ(one.type.writeAddress(one.first), row.write) << row.address;
    }
    EXPECT_EQ(range("X17").type.readAddress(15), 0x0081);
}

TEST(Aliases, AreTheUpperEndsOfTwoTypes)
{
    const auto textOf = [](const char* address) {
        const std::optional<Alias> alias = catalogue().aliasIn(range(address));
        return alias ? alias->text().toStdString() : "none";
    };
    EXPECT_EQ(textOf("D8127"), "none");
    EXPECT_EQ(textOf("D8128"), "a write to D8128 changes D0");
    EXPECT_EQ(textOf("D8200"), "a write to D8200 changes D72");
    EXPECT_EQ(textOf("SD8120:16"), "a write to SD8128:8 changes D0:8");
    EXPECT_EQ(textOf("SD8255"), "a write to SD8255 changes D127");
    EXPECT_EQ(textOf("M1535"), "none");
    EXPECT_EQ(textOf("M1536"), "M1536 and C0 are the same memory");
    EXPECT_EQ(textOf("M1791:2"), "M1791 and C255 are the same memory");
    EXPECT_EQ(textOf("M1792"), "M1792 and SM8000 are the same memory");
    EXPECT_EQ(textOf("M2047"), "M2047 and SM8255 are the same memory");
    EXPECT_EQ(textOf("M2048:1024"), "none");
    for (const char* const own : {"D0:8000", "C0:256", "SM8000:256", "X0:256", "Y0:256", "S0:1000",
                                  "T0:256", "TV0:256", "CV0:200", "32CV200:56"})
        EXPECT_EQ(textOf(own), "none") << own;
}
