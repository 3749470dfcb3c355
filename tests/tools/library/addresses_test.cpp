// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Addresses as people write them: what they mean, and in one line what is wrong with others.

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
    {"M8000", "SM", 8000, 1, 1, "SM8000"},
    {"D7999", "D", 7999, 1, 1, "D7999"},
    {"D8000", "SD", 8000, 1, 1, "SD8000"},
    {"CV199", "CV", 199, 1, 1, "CV199"},
    {"CV200", "32CV", 200, 1, 1, "32CV200"},
    {"32cv255", "32CV", 255, 1, 1, "32CV255"},
    {"T5", "T", 5, 1, 1, "T5"},
    {"TV5", "TV", 5, 1, 1, "TV5"},
};

struct BadAddress
{
    const char* text;
    const char* says;  // behind the address in quotes
};

const char* const noAddress = "is not an address; use for example D100, X17, D100:32 or 2#M8";

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
    {"X18", "has an invalid number; use X0 to X377 in octal"},
    {"M3072", "is out of range: M0 to M3071 in decimal"},
    {"D7999:2", "is out of range: D0 to D7999 in decimal"},
    {"D8256", "is out of range: SD8000 to SD8255 in decimal"},
    {"Q7", "has an unknown register type; use one of X Y M S SM T C D SD "
           "TV CV 32CV"},
};

}  // namespace

TEST(Addresses, SayTypeNumberCountAndStation)
{
    for (const Address& address : addresses) {
        const RegisterRange parsed = range(address.text);
        EXPECT_EQ(parsed.type.name, address.type) << address.text;
        EXPECT_EQ(parsed.first, address.first) << address.text;
        EXPECT_EQ(parsed.count, address.count) << address.text;
        EXPECT_EQ(parsed.station, address.station) << address.text;
        EXPECT_EQ(parsed.text(), address.name) << address.text;
    }
}

TEST(BadAddresses, AreToldWithWhatWouldBeRight)
{
    for (const BadAddress& address : badAddresses) {
        try {
            range(address.text);
            ADD_FAILURE() << "took " << address.text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::Usage) << address.text;
            EXPECT_EQ(failure.what(), "'" + std::string(address.text) + "' " + address.says);
        }
    }
}
