// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a broken worker may say to fxgate: any bytes, in two pieces. Asserted:
//  - a line is read, or refused with a reason, which ends the worker;
//  - what is told of it is of a tag that the worker serves, and a good value is of the tag's kind;
//  - the plant holds what was told last.

#include "fuzz/support/fuzz_target.h"
#include "tools/failure.h"
#include "tools/fxgate/values/link_values.h"
#include "tools/fxgate/workers/line_feed.h"

using namespace fxgate;

namespace {

class Gateway
{
public:
    Gateway() { m_plant.insert("press1", {}); }

    void take(const WorkerLine& line)
    {
        if (const auto* const hello = std::get_if<HelloLine>(&line))
            m_values.begin(hello->tags);
        if (const auto* const values = std::get_if<ValuesLine>(&line)) {
            QMap<QString, Change> last;  // a line may name a tag as good, as stale and as bad
            for (const Change& change : m_values.take(*values))
                last[change.tag] = change;
            for (const Change& change : qAsConst(last))
                requireRight(change);
        }
    }

private:
    void requireRight(const Change& change) const
    {
        const LinkView view = m_plant.value("press1");
        const auto tag =
            std::find_if(view.tags.begin(), view.tags.end(),
                         [&change](const ServedTag& served) { return served.name == change.tag; });
        require(tag != view.tags.end(), "told of a tag that is not served");
        const Sample& sample = change.sample;
        require(sample.quality != Quality::Good || isOfKind(tag->kind, sample.value),
                "a good value of another kind");
        const Sample held = view.samples.value(change.tag);
        require(held.value == sample.value && held.quality == sample.quality,
                "the plant does not hold what was told");
    }

    Plant m_plant;
    LinkValues m_values = LinkValues("press1", m_plant);
};

}  // namespace

// Qt never frees a list of JSON that an object names twice; a worker is told what it says by
// nobody.
extern "C" const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libQt5Core";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    const QByteArray said(reinterpret_cast<const char*>(bytes), static_cast<int>(byteCount));
    Gateway gateway;
    LineFeed feed;
    const int cut = said.size() / 2;
    for (const QByteArray& piece : {said.left(cut), said.mid(cut), QByteArray("\n")}) {
        for (const QByteArray& line : feed.take(piece, 0)) {
            try {
                gateway.take(parseWorkerLine(line));
            } catch (const fxtools::Failure& failure) {
                require(!failure.text().isEmpty(), "refused without a reason");
                return 0;
            }
        }
    }
    return 0;
}
