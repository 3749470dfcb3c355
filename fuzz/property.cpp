// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any bytes as the property string of one set-up, then of another. Asserted:
//  - the result is 1 and the status 0; lists, cache and exchange are reset;
//  - the limits follow frameWordLimit, without overflow;
//  - fewer than five fields change no number; the model reads the same numbers.

#include "fuzz/support/driver_pair.h"

#include "driver/mitsubishi_fx1s.h"

#include <algorithm>
#include <climits>

namespace {

void setUp(FuzzedPair& pair, const std::string& text)
{
    const int before[] = {driver.linkNo, driver.failLimit, driver.frameWordLimit};
    FuzzedPair::agree(pair.setUp(text.c_str()));
    require(pair.library.record.at(0) == "1 status 0", "a set-up failed");
    require(driver.readList.isEmpty() && driver.writeList.isEmpty() && driver.frames.isEmpty() &&
                driver.conditionReadList.isEmpty() && driver.dataAreas.isEmpty(),
            "a set-up left something behind");
    const long long bits = std::clamp(driver.frameWordLimit * 8LL, 0LL + INT_MIN, 0LL + INT_MAX);
    require(driver.maxWordsPerFrame == driver.frameWordLimit && driver.maxBitsPerFrame == bits,
            "the limits do not follow the property string");
    const std::string seen = text.c_str();  // the driver reads up to the first NUL
    if (std::count(seen.begin(), seen.end(), '#') < 4)
        require(before[0] == driver.linkNo && before[1] == driver.failLimit &&
                    before[2] == driver.frameWordLimit,
                "a short property string changed a number");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    const std::string text(bytes, bytes + byteCount);
    FuzzedPair& pair = FuzzedPair::fresh();
    setUp(pair, text.substr(0, byteCount / 2));
    KEY_ADDRESS key;
    key.stationNo = 1;
    key.registerType = "D";
    key.length = 3;
    FuzzedPair::agree(pair.merge({key}));
    FuzzedPair::agree(pair.write(key, std::vector<unsigned char>(12, 7), 0, {}));
    setUp(pair, text);
    return 0;
}
