// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Replays traces of send_scheduling.pml on the driver: after what the model's host did, the driver
// must give a frame of the same kind, from queues of the same length, and only that one.

#include "tests/support/driver_fixture.h"

#include <cstdio>
#include <iostream>
#include <sstream>

namespace {

struct Lengths
{
    int writes = 0;
    int oneOffs = 0;
    int frames = 0;
};

Lengths lengthsInDriver()
{
    return {static_cast<int>(driver.writeList.size()),
            static_cast<int>(driver.conditionReadList.size()),
            static_cast<int>(driver.frames.size())};
}

bool operator==(const Lengths& a, const Lengths& b)
{
    return a.writes == b.writes && a.oneOffs == b.oneOffs && a.frames == b.frames;
}

class Replay : public DriverTest
{
public:
    Replay() { setUpDriver("1#0#0#2#32"); }
    void TestBody() override {}

    bool follow(const std::string& act, const std::string& what, const Lengths& lengths);
    int frames() const { return m_frames; }

private:
    void queue(QList<VARIABLE>& list, const char* registerType)
    {
        list << request(registerType, m_next++ % 100, 1);
    }
    void setPlan(int size);
    void setEntries(int size);
    bool givesFrame(const std::string& kind, const Lengths& lengths);
    bool endsWith(bool isGood);

    int m_next = 0;
    int m_frames = 0;
    FRAME_PRO m_frame;
};

OperationKind kindNamed(const std::string& name)
{
    const struct
    {
        const char* name;
        OperationKind kind;
    } kinds[] = {
        {"write", OperationKind::HostWrite},     {"oneOff", OperationKind::ConditionalRead},
        {"cyclic", OperationKind::CyclicRead},   {"download", OperationKind::RecipeDownload},
        {"upload", OperationKind::RecipeUpload},
    };
    for (const auto& known : kinds) {
        if (name == known.name)
            return known.kind;
    }
    return OperationKind::Idle;
}

void Replay::setPlan(int size)
{
    driver.readList.clear();
    for (int block = 0; block < size; ++block)
        driver.readList << request("CV", block, 1);
}

void Replay::setEntries(int size)
{
    driver.recipeVars.clear();
    for (int entry = 0; entry < size; ++entry)
        driver.recipeVars << recipeEntry("D", 100 + entry, 1, entry);
}

bool Replay::givesFrame(const std::string& kind, const Lengths& lengths)
{
    ++m_frames;
    FRAME_PRO again;
    return intf_getSendFrame(&m_frame) == fxFrameToSend &&
           intf_getSendFrame(&again) == fxFrameToSend &&
           textOf(m_frame.variable) == textOf(again.variable) && driver.kind() == kindNamed(kind) &&
           lengthsInDriver() == lengths;
}

bool Replay::endsWith(bool isGood)
{
    if (!isGood)
        return reply("<NAK>") != fxReplyAccepted;
    return (m_frame.isRead == 1 ? reply("<STX>0000<ETX>C3") : acknowledge()) == fxReplyAccepted;
}

bool Replay::follow(const std::string& act, const std::string& what, const Lengths& lengths)
{
    if (act == "frame")
        return givesFrame(what, lengths);
    if (act == "nothing")
        return intf_getSendFrame(&m_frame) == fxNothingToSend;
    if (act == "good" || act == "bad")
        return endsWith(act == "good");
    if (act == "write")
        queue(driver.writeList, "D");
    else if (act == "oneOff")
        queue(driver.conditionReadList, "TV");
    else if (act == "plan")
        setPlan(std::stoi(what));
    else if (act == "entries")
        setEntries(std::stoi(what));
    else if (act == "download")
        requestDownload();
    else if (act == "upload")
        requestUpload();
    else if (act == "takeBack")
        hostMemory[fxDownloadRequestByte] = hostMemory[fxUploadRequestByte] = 0;
    else
        return false;
    return true;
}

}  // namespace

int main()
{
    Replay replay;
    std::string line;
    for (int number = 1; std::getline(std::cin, line); ++number) {
        std::istringstream words(line);
        std::string mark;
        std::string act;
        std::string what;
        Lengths lengths;
        words >> mark >> act >> what >> lengths.writes >> lengths.oneOffs >> lengths.frames;
        if (mark != ">" || replay.follow(act, what, lengths))
            continue;
        const Lengths found = lengthsInDriver();
        std::printf("line %d: the model has '%s', the driver %s %d %d %d\n", number, line.c_str(),
                    textOf(driver.current).c_str(), found.writes, found.oneOffs, found.frames);
        return 1;
    }
    std::printf("%d frames\n", replay.frames());
    return replay.frames() > 0 ? 0 : 1;
}
