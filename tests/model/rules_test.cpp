// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Rules that are small enough to be compared with the model over their whole range: address
// checks, address series, the frames of registers all over their numbers, and many plans.

#include "tests/model/library_driver.h"
#include "tests/model/session_world.h"
#include "tests/model/state_difference.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

const char* const types[] = {"X", "Y",  "M",  "S",  "SM",   "T", "C",
                             "D", "SD", "TV", "CV", "32CV", "Z", ""};

constexpr int numberStep = 13;  // odd, so that every bit of a byte comes up

// Sets library and model up alike, and compares them call by call.
class ModelRules : public ::testing::Test
{
protected:
    ModelRules()
    {
        reloadDriver();
        setUp("1#0#0#1#64");
    }
    ~ModelRules() override { reloadDriver(); }

    void setUp(const char* properties)
    {
        library.initProperty(nullptr, 0, nullptr, nullptr, properties, nullptr);
        model.initProperty(nullptr, 0, nullptr, nullptr, properties, nullptr);
    }

    template <class Driver>
    static std::string frameOf(Driver& driver)
    {
        FRAME_PRO out;
        return driver.getSendFrame(&out) == 1 ? describe(out) : "";
    }

    template <class Driver>
    static std::string answerTo(Driver& driver, QByteArray reply)
    {
        QString errorText;
        const int result = driver.dealRcvFrame(reply, errorText);
        return std::to_string(result) + " " + errorText.toStdString();
    }

    void expectSameExchange(const QByteArray& reply)
    {
        ASSERT_EQ(frameOf(library), frameOf(model));
        ASSERT_EQ(answerTo(library, reply), answerTo(model, reply));
        ASSERT_EQ(stateDifference(model, false), "");
    }

    LibraryDriver library;
    ModelDriver model;
};

}  // namespace

TEST_F(ModelRules, EveryNumberIsCheckedAlike)
{
    for (const char* type : types) {
        for (int number = 0; number < 8400; ++number) {
            const QString texts[] = {QString::number(number), QString::number(number, 8)};
            for (const QString& text : texts) {
                for (const int count : {0, 2, 257}) {
                    int libraryIndex = 0;
                    int modelIndex = 0;
                    ASSERT_EQ(library.checkAddrValidity(type, text, &libraryIndex, count, 0),
                              model.checkAddrValidity(type, text, &modelIndex, count, 0));
                    ASSERT_EQ(library.checkAddr(type, text, &libraryIndex, 5, count, 0),
                              model.checkAddr(type, text, &modelIndex, 5, count, 0));
                    ASSERT_EQ(libraryIndex, modelIndex) << type << text.toStdString();
                }
            }
        }
    }
}

TEST_F(ModelRules, EverySeriesIsCopiedAlike)
{
    for (const char* type : types) {
        for (int start = -20; start < 8300; start += 7) {
            for (const int step : {-3, -2, -1, 0, 1, 2, 3, 100, INT_MAX}) {
                QVector<QString> libraryTexts;
                QVector<QString> modelTexts;
                QVector<int> libraryValues;
                QVector<int> modelValues;
                ASSERT_EQ(library.multiCopy(type, start, 12, step, libraryTexts, libraryValues),
                          model.multiCopy(type, start, 12, step, modelTexts, modelValues));
                ASSERT_EQ(libraryTexts, modelTexts);
                ASSERT_EQ(libraryValues, modelValues);
            }
        }
    }
}

TEST_F(ModelRules, RegistersAreReadAlike)
{
    KEY_ADDRESS key;
    key.stationNo = 1;
    for (const char* type : types) {
        key.registerType = type;
        for (int number = -9; number < 8300; number += numberStep) {
            key.startIndex = number;
            key.length = 1 + (number & 63);
            setUp("1#0#0#1#64");
            library.addConditionRead(key, number);
            model.addConditionRead(key, number);
            ASSERT_NO_FATAL_FAILURE(expectSameExchange(QByteArray()));
        }
    }
}

TEST_F(ModelRules, RegistersAreWrittenAlike)
{
    unsigned char data[128];
    for (std::size_t i = 0; i < sizeof data; ++i)
        data[i] = static_cast<unsigned char>(i);
    for (const char* type : types) {
        for (int number = -9; number < 8300; number += numberStep) {
            setUp("1#0#0#1#64");
            const int count = 1 + (number & 31);
            library.setData(1, type, number, count, data + (number & 3), 5);
            model.setData(1, type, number, count, data + (number & 3), 5);
            ASSERT_NO_FATAL_FAILURE(expectSameExchange(QByteArray(1, '\x06')));
            ASSERT_EQ(stateDifference(model, true), "");
        }
    }
}

TEST_F(ModelRules, ManyPlansAreMergedAlike)
{
    for (unsigned int seed = 1; seed <= 4000; ++seed) {
        RandomChoices choices(seed);
        SessionWorld world(choices);
        setUp(world.propertyString().constData());
        QList<KEY_ADDRESS> keys = world.keys();
        ASSERT_EQ(library.addrMerge(keys), model.addrMerge(keys)) << "seed " << seed;
        ASSERT_EQ(stateDifference(model, true), "") << "seed " << seed;
    }
}
