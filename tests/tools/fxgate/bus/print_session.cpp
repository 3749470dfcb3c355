// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Prints a Sparkplug B session, a message a line: its topic, and its payload in hexadecimal.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tools/fxgate/bus/sparkplug_form.h"

#include <cstdio>

using namespace fxgate;
using namespace gate_tests;

namespace {

void print(const Messages& messages)
{
    for (const Message& message : messages)
        std::printf("%s %s\n", qPrintable(message.topic), message.payload.toHex().constData());
}

}  // namespace

int main()
{
    Plant plant = {{"press1", pressView()}, {"press2", pressView()}};
    plant["press2"].samples.remove("flow");
    SparkplugForm form({"plant", "cabinet1", {}}, plant);
    form.recall("254");
    print({form.will(noon)});
    print(form.connected(noon));
    for (int number = 0; number < 300; ++number)  // seq begins anew
        print(form.values({change("count", -number, noon + number)}, noon + number));
    print(form.values({change("flow", 0.1, noon, Quality::Stale, "not read"),
                       change("pump", false, noon + 1),
                       change("batch", QString::fromUtf8("\xc3\xa9\xe2\x82\xac"), noon + 2),
                       change("count", 4294967295.0, noon + 3),
                       change("flow", {}, noon + 4, Quality::Bad, "refused")},
                      noon + 400));
    print(form.history(
        {{1, change("count", 7, noon - 9000), false}, {2, change("count", 8, noon - 8000), true}},
        noon + 401));
    print(form.dropped(12, noon + 402));
    plant["press1"].isUp = false;
    print(form.linkChanged("press1", noon + 403));
    print(form.leaving(noon + 404));
    return 0;
}
