// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any bytes as a text that the tools read; the first byte chooses which kind. Asserted:
//  - a reader answers, or throws the one kind of error that its program shows, with a text;
//  - links, addresses and fault plans are written as a text that means the same;
//  - what is asked for or assigned lies in the range of its type; each register has a value.

#include "fuzz/support/tool_catalogue.h"
#include "tools/fxhost/serving/serve_protocol.h"
#include "tools/fxsim/control/control.h"
#include "tools/fxsim/faults/faults.h"
#include "tools/fxsim/plc/number_text.h"
#include "tools/library/assignments.h"
#include "tools/tags/tag_file.h"

using namespace fxtools;

namespace {

void requireInRange(const RegisterRange& range)
{
    require(range.count > 0 && range.first >= range.type.lowest &&
                range.first <= range.type.highest - range.count + 1,
            "registers that are not there");
}

void readLink(const QString& text)
{
    const QString written = linkText(parseLink(text));
    require(linkText(readAgain([&] { return parseLink(written); })) == written,
            "a link changes when it is written");
}

void readAddress(const QString& text)
{
    const AskedAddress asked = askedAddress(takeApart(text), catalogue());
    requireInRange(asked.range);
    const AskedAddress again =
        readAgain([&] { return askedAddress(takeApart(asked.text()), catalogue()); });
    require(again.text() == asked.text() && again.bit == asked.bit &&
                again.range.first == asked.range.first && again.range.count == asked.range.count,
            "an address changes when it is written");
}

void readAssignment(const QString& text)
{
    constexpr int formats = static_cast<int>(ValueFormat::Text) + 1;
    for (int format = 0; format < formats; ++format) {
        try {
            const Assignment assignment =
                parseAssignment(text, catalogue(), {static_cast<ValueFormat>(format), false});
            requireInRange(assignment.asked.range);
            require(assignment.asked.bit ||
                        assignment.values.size() == assignment.asked.range.count,
                    "not a value for each register");
        } catch (const Failure& failure) {
            require(!failure.text().isEmpty(), "an error without a text");
        }
    }
}

void readFaults(const QString& text)
{
    const QString written = fxsim::faultPlanText(fxsim::parseFaults(text));
    require(fxsim::faultPlanText(readAgain([&] { return fxsim::parseFaults(written); })) == written,
            "a fault plan changes when it is written");
}

// All but those that write or read files.
void command(const QString& text)
{
    if (text.contains(QLatin1String("save")) || text.contains(QLatin1String("load")))
        return;
    fxsim::Settings settings;
    settings.model = &fxsim::findModel(QStringLiteral("any"));
    fxsim::Simulator plc(settings, nullptr, 0);
    fxsim::Control control(plc, {[] {}, [](int) {}, [] { return qint64(0); }});
    const QByteArray answer = control.run(text);
    require(answer.isEmpty() || answer.endsWith("ok\n") || answer.contains("error: "),
            "an answer that is neither good nor an error");
}

const QVector<Tag>& tags()
{
    static const TagFile file = tagsIn({{{1, {}, {"name", "address", "type", "scale"}},
                                         {2, {}, {"word", "D0", "", "0.1"}},
                                         {3, {}, {"bit", "M0", "", ""}},
                                         {4, {}, {"float", "D2", "float", ""}},
                                         {5, {}, {"text", "D10:4", "text", ""}}}},
                                       catalogue());
    require(file.errors() == 0 && file.tags.size() == 4, "not the tags that were meant");
    return file.tags;
}

void readOrder(const QString& text)
{
    const ServeOrder order = parseOrder(text.toUtf8());
    if (order.kind != ServeOrder::Kind::Write)
        return;
    for (const Tag& tag : tags()) {
        try {
            const Assignment write = assignmentOf(tag, writtenText(tag, order.value), catalogue());
            requireInRange(write.asked.range);
            require(write.values.size() == write.asked.range.count,
                    "not a value for each register");
        } catch (const Failure& failure) {
            require(!failure.text().isEmpty(), "an error without a text");
        }
    }
}

void readAs(int kind, const QString& text)
{
    switch (kind) {
    case 0:
        readLink(text);
        break;
    case 1:
        readAddress(text);
        break;
    case 2:
        readAssignment(text);
        break;
    case 3:
        readFaults(text);
        break;
    case 4:
        command(text);
        break;
    case 5:
        readOrder(text);
        break;
    default:
        fxsim::parseRanges(text);
        fxsim::parseMirrors(text);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    readOneOf(
        7, [](int kind, const QByteArray& text) { readAs(kind, QString::fromUtf8(text)); }, bytes,
        byteCount);
    return 0;
}
