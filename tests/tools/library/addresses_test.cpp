// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Addresses as people write them: what they mean, and in one line what is wrong with others.

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
    {"0#D1", "has the station 0; use a number from 1 to 2147483647"},
    {"D1:0", "has the count 0; use a number from 1 to 2147483647"},
    {"D1:2147483648", "has the count 2147483648; use a number from 1 to 2147483647"},
    {"X18", "has an invalid number; X is octal: after X17 comes X20"},
    {"Y80", "has an invalid number; Y is octal: after Y17 comes Y20"},
    {"M3072", "is out of range: M0 to M3071 or M8000 to M8255 in decimal"},
    {"D7999:2", "is out of range: D0 to D7999 or D8000 to D8255 in decimal"},
    {"D8256", "is out of range: D0 to D7999 or D8000 to D8255 in decimal"},
    {"D99999", "is out of range: D0 to D7999 or D8000 to D8255 in decimal"},
    {"SD8256", "is out of range: SD8000 to SD8255 in decimal"},
    {"X400", "is out of range: X0 to X377 in octal"},
    {"32CV256", "is out of range: 32CV200 to 32CV255 in decimal"},
    {"32CV255:2", "is out of range: 32CV200 to 32CV255 in decimal"},
    {"D7990-D8010", "is out of range: D0 to D7999 or D8000 to D8255 in decimal"},
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

TEST(Addresses, MayBeAList)
{
    QStringList names;
    for (const AskedAddress& asked : askedAddresses("D1, D8000,X0-X7", catalogue()))
        names += asked.text();
    EXPECT_EQ(names.join(' ').toStdString(), "D1 D8000 X0:8");
    EXPECT_THROW(askedAddresses("D1,", catalogue()), Failure);
}

TEST(Addresses, AreOfTheLinksOwnStationOrRefused)
{
    const RegisterCatalogue ofStation2(driver(), 2);
    EXPECT_EQ(parseAddress("D5", ofStation2).station, 2);
    EXPECT_EQ(parseAddress("2#D5", ofStation2).station, 2);
    EXPECT_EQ(
        failureOf(ExitCode::Usage, [&] { parseAddress("3#D5", ofStation2); }),
        "'3#D5' is out of reach: no frame carries a station, so this link has station 2 only; "
        "each PLC needs its link");
}
