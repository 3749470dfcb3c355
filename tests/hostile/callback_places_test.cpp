// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Every place where a callback is made, crossed with every entry point that a host can call from
// inside it. Three of them a host may call there; the others make no sense, and break nothing
// either: the state stays sound, and the driver goes on after the next set-up.

#include "tests/model/driver_properties.h"
#include "tests/support/driver_fixture.h"

namespace {

class Host : public DriverTest
{
public:
    Host() { setUpDriver("1#0#0#1#32"); }

    using DriverTest::acknowledge;
    using DriverTest::mark;
    using DriverTest::merge;
    using DriverTest::nextRequest;
    using DriverTest::readOnce;
    using DriverTest::reply;
    using DriverTest::requestUpload;
    using DriverTest::setRecipe;
    using DriverTest::setUpDriver;
    using DriverTest::write;

    // A write that is in flight, and whose elements are monitored since.
    void sendWrite(const char* registerType, int start, const Bytes& data, int count)
    {
        write(registerType, start, data, count);
        mark(registerType, start, count);
        nextRequest();
    }

    void askForRead(const char* registerType, int start, int length)
    {
        merge({watch(registerType, start, length)});
        nextRequest();
    }

    void askOnce()
    {
        readOnce(watch("D", 100, 2));
        nextRequest();
    }

    void askForUpload(const char* registerType, int start, int count)
    {
        setRecipe({recipeEntry(registerType, start, count, 10), recipeEntry("D", 0, 1, 30)});
        requestUpload();
        nextRequest();
    }
};

using Step = void (*)(Host&);

struct Place
{
    const char* name;
    Step lead;     // up to the moment
    Step provoke;  // the call inside which the host is called
};

void PrintTo(const Place& place, std::ostream* out)
{
    *out << place.name;
}

const Step refuse = [](Host& host) { host.reply("<NAK>"); };
const Step accept = [](Host& host) { host.acknowledge(); };
const Step twoWords = [](Host& host) { host.reply("<STX>12345678<ETX>A7"); };

const Step sendWords = [](Host& host) { host.sendWrite("D", 0, Bytes{1, 2, 3, 4}, 2); };
const Step sendBits = [](Host& host) { host.sendWrite("M", 3, Bytes{1, 1}, 2); };
const Step sendCounter = [](Host& host) { host.sendWrite("32CV", 200, Bytes{1, 2, 3, 4}, 2); };

const Place places[] = {
    {"WordMirrored", [](Host&) { Host::mark("D", 0, 2); },
     [](Host& host) {
         host.write("D", 0, Bytes{1, 2, 3, 4}, 2);
     }},
    {"BitMirrored", [](Host&) { Host::mark("M", 3, 2); },
     [](Host& host) {
         host.write("M", 3, Bytes{1, 1}, 2);
     }},
    {"CounterMirrored", [](Host&) { Host::mark("32CV", 200, 2); },
     [](Host& host) {
         host.write("32CV", 200, Bytes{1, 2, 3, 4, 5, 6, 7, 8}, 4);
     }},
    {"WordConfirmed", sendWords, accept},
    {"BitConfirmed", sendBits, accept},
    {"CounterConfirmed", sendCounter, accept},
    {"WordUndone", sendWords, refuse},
    {"BitUndone", sendBits, refuse},
    {"CounterUndone", sendCounter, refuse},
    {"WordRead", [](Host& host) { host.askForRead("D", 100, 2); }, twoWords},
    {"CounterRead", [](Host& host) { host.askForRead("32CV", 200, 2); }, twoWords},
    {"OneOffReadGood", [](Host& host) { host.askOnce(); }, twoWords},
    {"OneOffReadFailed", [](Host& host) { host.askOnce(); }, refuse},
    {"WordUploaded", [](Host& host) { host.askForUpload("D", 100, 2); }, twoWords},
    {"CounterUploaded", [](Host& host) { host.askForUpload("32CV", 200, 1); }, twoWords},
};

struct Call
{
    const char* name;
    Step make;
};

void PrintTo(const Call& call, std::ostream* out)
{
    *out << call.name;
}

// The first three are those that a host may make.
const Call hostCalls[] = {
    {"GetData",
     [](Host&) {
         std::vector<unsigned char> bytes(2000);
         intf_getData(9, QLatin1String("D"), 0, 1000, bytes.data());
     }},
    {"SetData",
     [](Host&) {
         std::vector<unsigned char> bytes(2000, 1);
         intf_setData(9, QLatin1String("M"), 0, 2000, bytes.data(), 0);
         intf_setData(9, QLatin1String("32CV"), 200, 100, bytes.data(), 0);
     }},
    {"AddConditionRead",
     [](Host&) {
         for (int i = 0; i < 600; ++i)
             Host::readOnce(watch("TV", i, 1, 9));
     }},
    {"GetSendFrame", [](Host& host) { host.nextRequest(); }},
    {"DealRcvFrame", [](Host& host) { host.acknowledge(); }},
    {"DealRcvFrameBad", [](Host& host) { host.reply("<NAK>"); }},
    {"AddrMerge", [](Host&) { Host::merge({watch("TV", 0, 200)}); }},
    {"AddrMergeOfNothing", [](Host&) { Host::merge({}); }},
    {"SetRcpAddressOfNothing", [](Host&) { Host::setRecipe({}); }},
    {"InitProperty", [](Host& host) { host.setUpDriver(); }},
    {"InitPropertyWithoutMemory",
     [](Host&) { intf_initProperty(nullptr, 0, nullptr, nullptr, nullptr, nullptr); }},
    {"SetNoCallBack", [](Host&) { intf_setAddrValueChangeCallBack(nullptr); }},
};

std::string nameOfPair(const ::testing::TestParamInfo<std::tuple<Place, Call>>& row)
{
    return std::string(std::get<0>(row.param).name) + std::get<1>(row.param).name;
}

}  // namespace

class CallbackPlace : public Host, public ::testing::WithParamInterface<std::tuple<Place, Call>>
{
protected:
    void expectSound()
    {
        EXPECT_EQ("", brokenState());
        EXPECT_EQ("", brokenCache());
        EXPECT_TRUE(mutexIsFree());
    }
};

TEST_P(CallbackPlace, StaysSound)
{
    const auto& [place, call] = GetParam();
    int called = 0;
    place.lead(*this);
    onCall = [this, &called, make = call.make](QString&, int) {
        EXPECT_TRUE(called > 0 || mutexIsFree());
        if (called++ == 0)  // or the host would call itself for ever
            make(*this);
    };
    place.provoke(*this);
    onCall = nullptr;
    EXPECT_GT(called, 0) << "no callback was made here";
    expectSound();

    hostMemory[fxUploadRequestByte] = 0;
    setUpDriver();
    merge({watch("D", 100, 2)});
    EXPECT_EQ("1#D100/2", nextRequest());
    EXPECT_EQ(1, reply("<STX>12345678<ETX>A7"));
    EXPECT_EQ((Bytes{0x12, 0x34, 0x56, 0x78}), values("D", 100, 2, 4));
    expectSound();
}

INSTANTIATE_TEST_SUITE_P(Every, CallbackPlace,
                         ::testing::Combine(::testing::ValuesIn(places),
                                            ::testing::ValuesIn(hostCalls)),
                         nameOfPair);
