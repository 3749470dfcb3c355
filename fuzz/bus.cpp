// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Messages that anybody on the bus may send to fxgate. An input is a list of messages: a byte that
// chooses the topic and whether it is retained, a byte for the length, the payload. Asserted:
//  - what is asked to be written is a value of a served tag, of the tag's kind in Sparkplug;
//  - a plain write that cannot be read is answered with a refusal, where no values are looked for;
//  - Sparkplug is born and dies in order: seq counts, NBIRTH comes first;
//  - a payload that can be read is the same when it is written and read again.

#include "fuzz/support/fuzz_target.h"
#include "tools/fxgate/bus/plain_form.h"
#include "tools/fxgate/bus/sparkplug_form.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace fxgate;

namespace {

constexpr qint64 nowMs = 1795348800000;

Plant plantOfAllKinds()
{
    LinkView view;
    view.isUp = true;
    for (const auto& [name, kind] : {std::pair("flow", ValueKind::Real),
                                     {"pump", ValueKind::Bit},
                                     {"count", ValueKind::Integer},
                                     {"batch", ValueKind::Text}}) {
        ServedTag tag;
        tag.name = name;
        tag.kind = kind;
        tag.isWritable = true;
        view.tags.append(tag);
    }
    return {{"press1", view}};
}

void requireKind(const WriteRequest& request)
{
    const QJsonValue& value = request.value;
    require(request.link == "press1", "a write to a link that is not there");
    require(request.tag == "pump"    ? value.isBool()
            : request.tag == "batch" ? value.isString()
                                     : value.isDouble(),
            "a write of another kind, or to a tag that is not there");
}

class Node
{
public:
    Node()
    {
        m_form.will(nowMs);
        m_form.connected(nowMs);
    }

    void take(const Message& message)
    {
        const Received received = m_form.received(message, nowMs);
        for (const WriteRequest& request : received.writes)
            requireKind(request);
        for (const Message& sent : received.messages)
            requireNext(sent);
        if (received.mustLeave) {
            require(m_form.leaving(nowMs).size() == 1, "it left without a death");
            m_form.disconnected();
            m_form.will(nowMs);
            require(m_form.connected(nowMs).isEmpty(), "it did not wait for its host");
        }
    }

private:
    void requireNext(const Message& sent)
    {
        const auto payload = decoded(sent.payload);
        require(payload && payload->sequence, "a message that cannot be read, or has no seq");
        const bool isBirth = sent.topic.contains("NBIRTH");
        require(*payload->sequence == (isBirth ? 0 : m_sequence), "seq does not count");
        m_sequence = (*payload->sequence + 1) % 256;
    }

    Plant m_plant = plantOfAllKinds();
    SparkplugForm m_form = SparkplugForm({"g", "n", "h"}, m_plant);
    int m_sequence = -1;
};

void takePlain(PlainForm& form, const Message& message)
{
    const Received received = form.received(message, nowMs);
    require(received.writes.size() + received.messages.size() <= 2, "more than one answer");
    for (const WriteRequest& request : received.writes) {
        const QJsonValue& value = request.value;
        require(value.isBool() || value.isDouble() || value.isString(), "a write without a value");
        require(request.id.size() <= 128, "an id without end");
        require(request.isRetained == message.isRetained, "a retained write looks new");
    }
    for (const Message& reply : received.messages) {
        require(reply.topic.endsWith("/set/reply") || reply.topic == message.responseTopic,
                "a reply among the values");
        require(QJsonDocument::fromJson(reply.payload).object()["outcome"] == "refused",
                "an answer that is no refusal");
    }
}

void readAgain(const QByteArray& payload)
{
    const auto once = decoded(payload);
    if (!once)
        return;
    const auto twice = decoded(encoded(*once));
    require(twice && twice->metrics.size() == once->metrics.size(), "a payload changes");
    for (int place = 0; place < once->metrics.size(); ++place) {
        const Metric& one = once->metrics[place];
        require(one.name == twice->metrics[place].name && one.alias == twice->metrics[place].alias,
                "a metric changes");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    static const QStringList topics = {"spBv1.0/STATE/h",         "spBv1.0/g/NCMD/n",
                                       "spBv1.0/g/DCMD/n/press1", "spBv1.0/g/DCMD/n/press2",
                                       "fx/n/press1/count/set",   "fx/n/press1/nobody/set",
                                       "fx/n/press1/count"};
    Node node;
    const Plant plant = plantOfAllKinds();
    PlainForm plain("fx", "n", plant);
    while (byteCount >= 2) {
        const std::size_t length = std::min<std::size_t>(bytes[1], byteCount - 2);
        Message message;
        message.topic = topics[(bytes[0] & 0x7F) % topics.size()];
        message.isRetained = (bytes[0] & 0x80) != 0;
        message.payload =
            QByteArray(reinterpret_cast<const char*>(bytes + 2), static_cast<int>(length));
        message.responseTopic = QString::fromUtf8(message.payload.left(20));
        if (message.topic.startsWith("fx"))
            takePlain(plain, message);
        else
            node.take(message);
        readAgain(message.payload);
        bytes += 2 + length;
        byteCount -= 2 + length;
    }
    return 0;
}
