// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A session: a host's calls to the library and to the model side by side. After each call results,
// outputs, callbacks and the driver's numbers are compared, now and then the whole state.

#ifndef TESTS_MODEL_SESSION_H
#define TESTS_MODEL_SESSION_H

#include "tests/model/choices.h"
#include "tests/model/session_world.h"
#include "tests/model/side_by_side.h"

class Session
{
public:
    explicit Session(Choices& choices);

    // Makes at most `calls` calls. "" when library and model agree, else what differed and the
    // last calls before it.
    std::string play(int calls);

    // Asked after each call; a text that is not empty ends the session like a difference.
    std::function<std::string()> inspect;

private:
    using Act = void (Session::*)();
    struct Weighted
    {
        int weight;
        Act act;
    };

    template <class Call>
    void both(const std::string& text, const Call& call);
    void keep(const std::string& text, const std::string& found);
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
    SideBySide sides;
    FRAME_PRO lastFrame;
    std::deque<std::string> history;
    std::string difference;
};

#endif
