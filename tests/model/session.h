// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A session: a host's calls to the library and to the model side by side. After each call results,
// outputs, callbacks and the driver's numbers are compared, now and then the whole state.

#ifndef TESTS_MODEL_SESSION_H
#define TESTS_MODEL_SESSION_H

#include "tests/model/choices.h"
#include "tests/model/host_side.h"
#include "tests/model/library_driver.h"
#include "tests/model/model_driver.h"
#include "tests/model/session_world.h"

class Session
{
public:
    explicit Session(Choices& choices);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Makes at most `calls` calls. "" when library and model agree, else what differed and the
    // last calls before it.
    std::string play(int calls);

private:
    using Act = void (Session::*)();
    struct Weighted
    {
        int weight;
        Act act;
    };

    template <class Call>
    void both(const std::string& text, const Call& call);
    void compare(const std::string& text);
    void compareDeeply();
    Act draw();

    void setUp();
    void registerCallback();
    void queryParameters();
    void mergeAddresses();
    void queueRead();
    void getFrame();
    void getFrameIntoNothing();
    void giveReply();
    void exchange();
    void readData();
    void writeData();
    void passNull();
    void setRecipe();
    void request();
    void scribble();
    void askEditor();
    void copyAddresses();

    Choices& choices;
    SessionWorld world;
    std::vector<Weighted> acts;
    HostSide<LibraryDriver> library;
    HostSide<ModelDriver> model;
    FRAME_PRO lastFrame;
    std::deque<std::string> history;
    std::string difference;
};

#endif
