// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The library and the model behind one host each, driven with the same calls. Sessions, rule tests
// and fuzzers stand on it.

#ifndef TESTS_MODEL_SIDE_BY_SIDE_H
#define TESTS_MODEL_SIDE_BY_SIDE_H

#include "tests/model/host_side.h"
#include "tests/model/library_driver.h"
#include "tests/model/model_driver.h"

class SideBySide
{
public:
    SideBySide();
    ~SideBySide();
    SideBySide(const SideBySide&) = delete;
    SideBySide& operator=(const SideBySide&) = delete;

    // Both as they are when the library is loaded, with fresh host and recipe memory.
    void reload();

    // Runs `call(driver, host)` on both sides. "" when records, numbers and list sizes agree.
    template <class Call>
    std::string both(const Call& call, const std::deque<NestedCall>& callsInside = {})
    {
        library.run(call, callsInside);
        model.run(call, callsInside);
        for (const std::string& line : show ? library.record : Record())
            show(line);
        return difference();
    }

    // The whole state, host memory and recipe memory.
    std::string deepDifference() const;

    // A set-up with everything that a host gives, and its callback.
    std::string setUp(const char* propertyString);
    std::string merge(const QList<KEY_ADDRESS>& keys);
    std::string queueRead(const KEY_ADDRESS& key, int tag, const std::deque<NestedCall>& inside);
    std::string write(const KEY_ADDRESS& key, const std::vector<unsigned char>& data, int tag,
                      const std::deque<NestedCall>& inside);
    std::string read(const KEY_ADDRESS& key);
    std::string setRecipe(const QVector<_RCP_VAR_PRO>& list);
    // Fills `given` with what the model handed out.
    std::string getFrame(FRAME_PRO& given);
    std::string giveReply(const QByteArray& reply, const std::deque<NestedCall>& inside);

    HostSide<LibraryDriver> library;
    HostSide<ModelDriver> model;

    // Set to see what the library answers, line by line.
    static inline std::function<void(const std::string&)> show;

private:
    std::string difference() const;
};

// Bytes that a buffer for `count` elements takes, whatever the type; 0 below 1. Huge counts are
// served only up to the 65,536 elements that one call takes.
int bufferBytes(int count);

#endif
