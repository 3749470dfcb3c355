// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The thread that talks to the PLC, with a simulated one inside.

#include "tests/tools/support/programs.h"
#include "tools/fxview/plc/plc_thread.h"
#include "tools/link/link_settings.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace fxview;
using fxtools::AddressServices;

namespace {

int argumentCount = 0;
const QCoreApplication application(argumentCount, nullptr);

const char* const tagRows = "name,address,scale,access,min,max,period_ms\n"
                            "count,D100,,,,,\n"
                            "setpoint,D101,0.1,rw,10,90,\n"
                            "sensor,D102,,ro,,,\n"
                            "slow,D103,,,,,60000\n"
                            "lamp,M50,,rw,,,\n";

class PlcThreadTest : public testing::Test
{
protected:
    PlcThreadTest() { EXPECT_TRUE(m_folder.isValid()); }

    QString newFile(const char* name, const QByteArray& text)
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }

    void start(const QString& link = QStringLiteral("sim:"), const char* rows = tagRows)
    {
        const QString tagFile = newFile("tags.csv", rows);
        fxtools::ConnectionSettings settings;
        settings.library = QStringLiteral(FX_DRIVER_FILE);
        settings.link = fxtools::parseLink(link);
        settings.session.failLimit = m_failLimit;
        auto services =
            std::make_unique<AddressServices>(settings.library, fxtools::TagSource{tagFile, {}});
        const QVector<fxtools::Tag> tags = services->tags();
        m_plc = std::make_unique<PlcThread>(settings, link, std::move(services), tags);
        QObject::connect(m_plc.get(), &PlcSource::readings,
                         [this](const QVector<Reading>& some) { m_readings += some; });
        QObject::connect(m_plc.get(), &PlcSource::linkChanged,
                         [this](bool isUp, const QString& reason) {
                             m_links += (isUp ? "up" : "down: " + reason);
                         });
        QObject::connect(m_plc.get(), &PlcSource::written,
                         [this](const WriteResult& result) { m_results.append(result); });
        QObject::connect(
            m_plc.get(), &PlcSource::exchanges,
            [this](const QVector<fxtools::Exchange>& some) { m_exchanges += some.size(); });
        QObject::connect(m_plc.get(), &PlcSource::lineReport,
                         [this](const LineReport& report) { m_report = report; });
        QObject::connect(
            m_plc.get(), &PlcSource::benchRefused,
            [this](const QString&, const QString& reason) { m_refusals.append(reason); });
        QObject::connect(m_plc.get(), &PlcSource::recipeEnded,
                         [this](const RecipeResult& result) { m_recipes.append(result); });
        QObject::connect(m_plc.get(), &PlcSource::recipeMoved,
                         [this](int id, int done, int total, bool) {
                             m_moves += QString("%1: %2 of %3").arg(id).arg(done).arg(total);
                         });
        m_plc->start();
    }

    bool waitUntil(const std::function<bool()>& isSo) const
    {
        QElapsedTimer waited;
        for (waited.start(); !isSo() && waited.elapsed() < 60000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        return isSo();
    }

    std::optional<Reading> last(int tag) const
    {
        for (int index = m_readings.size() - 1; index >= 0; --index) {
            if (m_readings[index].tag == tag)
                return m_readings[index];
        }
        return std::nullopt;
    }

    WriteResult written(int tag, const QString& text)
    {
        m_results.clear();
        m_plc->write(7, tag, text);
        EXPECT_TRUE(waitUntil([this] { return !m_results.isEmpty(); }));
        EXPECT_EQ(m_results.value(0).id, 7);
        return m_results.value(0);
    }

    int m_failLimit = 3;
    QTemporaryDir m_folder;
    std::unique_ptr<PlcThread> m_plc;
    QVector<Reading> m_readings;
    QStringList m_links;
    QVector<WriteResult> m_results;
    int m_exchanges = 0;
    std::optional<LineReport> m_report;
    QStringList m_refusals;
    QVector<RecipeResult> m_recipes;
    QStringList m_moves;
};

// A PLC that is read once a minute, so that the exchanges of a transfer can be counted.
class RecipeInThread : public PlcThreadTest
{
protected:
    static constexpr int registers = 100;
    static constexpr int inEntry = 16;
    static constexpr int entries = 7;        // the last of four registers
    static constexpr int forEver = 1000000;  // attempts

    void startQuietly(const char* link = "sim:")
    {
        start(link, "name,address,period_ms,access,max\n"
                    "slow,D0,60000,,\nlocked,D500,60000,ro,\nlimited,D501,60000,,50\n");
        EXPECT_TRUE(waitUntil([this] { return last(0) && last(1) && last(2); }));
    }

    QString recipeFile(int first = 1000)
    {
        QByteArray text = "address,value\n";
        for (int index = 0; index < registers; ++index)
            text += 'D' + QByteArray::number(first + index) + ',' + QByteArray::number(index + 1) +
                    '\n';
        return newFile("recipe.csv", text);
    }

    RecipeResult ended(const RecipeOrder& order)
    {
        m_recipes.clear();
        m_plc->order(order);
        EXPECT_TRUE(waitUntil([this] { return !m_recipes.isEmpty(); }));
        EXPECT_EQ(m_recipes.value(0).id, order.id);
        EXPECT_EQ(m_recipes.value(0).act, order.act);
        return m_recipes.value(0);
    }

    RecipeResult opened(const QString& file)
    {
        RecipeOrder order;
        order.id = 1;
        order.file = file;
        return ended(order);
    }

    RecipeOrder orderFor(RecipeOrder::Act act, const QVector<fxtools::RegisterRun>& recipe)
    {
        RecipeOrder order;
        order.id = 2;
        order.act = act;
        order.recipe = recipe;
        return order;
    }

    RecipeResult uploaded(const QString& from)
    {
        RecipeOrder order = orderFor(RecipeOrder::Act::Upload, {});
        order.file = m_folder.filePath("up.csv");
        order.registers = from;
        return ended(order);
    }

    RecipeResult downloaded(const char* faults)
    {
        const RecipeResult file = opened(recipeFile());
        m_plc->benchCommand(faults);
        return ended(orderFor(RecipeOrder::Act::Download, file.recipe));
    }

    // "16 written, 16 unknown, 68 not written"
    static QString states(const RecipeResult& result)
    {
        std::array<int, 4> counts = {};
        for (const RecipeValue& value : result.values)
            ++counts[static_cast<size_t>(value.state)];
        return QString("%1 written, %2 unknown, %3 not written")
            .arg(counts[static_cast<size_t>(RecipeValue::State::Written)])
            .arg(counts[static_cast<size_t>(RecipeValue::State::Unknown)])
            .arg(counts[static_cast<size_t>(RecipeValue::State::NotWritten)]);
    }

    static int same(const RecipeResult& result)
    {
        return static_cast<int>(
            std::count_if(result.values.begin(), result.values.end(),
                          [](const RecipeValue& value) { return value.inPlc == value.inFile; }));
    }

    static int read(const RecipeResult& result)
    {
        return static_cast<int>(
            std::count_if(result.values.begin(), result.values.end(),
                          [](const RecipeValue& value) { return value.inPlc.has_value(); }));
    }
};

}  // namespace

TEST_F(PlcThreadTest, ReadsEachTagAndSaysWhyOneCannotBeRead)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0) && last(1) && m_report; }));
    EXPECT_EQ(last(0)->quality, Quality::Good);
    EXPECT_TRUE(last(0)->value.isDouble());
    EXPECT_EQ(m_links, QStringList("up"));
    EXPECT_GT(m_exchanges, 0);
    EXPECT_FALSE(m_report->blocks.isEmpty());
    EXPECT_GT(m_report->statistics.total().accepted, 0);
    m_plc->benchCommand("faults nak=1");
    EXPECT_TRUE(waitUntil([this] { return last(0)->quality == Quality::Bad; }));
    EXPECT_EQ(last(0)->reason, "refused by the PLC (NAK)");
    EXPECT_TRUE(last(0)->value.isNull());
}

TEST_F(PlcThreadTest, TellsEachReadingAlsoWhatDidNotChange)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(2).has_value(); }));
    const auto readings = [this](int tag) {
        return std::count_if(m_readings.begin(), m_readings.end(),
                             [tag](const Reading& reading) { return reading.tag == tag; });
    };
    EXPECT_TRUE(waitUntil([&] { return readings(2) > 20; }));
    EXPECT_EQ(readings(3), 1) << "once a minute";
}

TEST_F(PlcThreadTest, WritesAndTellsWhatWasReadBack)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(1).has_value(); }));
    const WriteResult done = written(1, "71.5");
    EXPECT_EQ(done.outcome, WriteResult::Outcome::Done) << qPrintable(done.reason);
    EXPECT_EQ(done.after, 71.5);
    EXPECT_TRUE(waitUntil([this] { return last(1)->value == 71.5; }));
    EXPECT_EQ(last(1)->raw, 715);
}

// A read of these words takes 2 s at this speed.
TEST_F(PlcThreadTest, SendsNothingLateThatIsToMoveSomething)
{
    start("sim:?baud=600", "name,address,type\nlong,D200:32,text\nlamp,M50,\n");
    ASSERT_TRUE(waitUntil([this] { return last(1).has_value(); }));
    const auto refused = [this] {
        m_results.clear();
        m_plc->writeSoon(7, 1, "1");
        EXPECT_TRUE(waitUntil([this] { return !m_results.isEmpty(); }));
        return m_results.value(0).reason == "not sent within 1 s";
    };
    bool isRefused = false;
    for (int tries = 0; tries < 20 && !isRefused; ++tries)
        isRefused = refused();
    EXPECT_TRUE(isRefused);
    EXPECT_EQ(written(1, "1").outcome, WriteResult::Outcome::Done) << "it has ten seconds";
}

TEST_F(PlcThreadTest, ShowsBitsAsNumbers)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(4).has_value(); }));
    const WriteResult done = written(4, "1");
    EXPECT_EQ(done.outcome, WriteResult::Outcome::Done) << qPrintable(done.reason);
    EXPECT_EQ(done.before, 0);
    EXPECT_EQ(done.after, 1);
    EXPECT_TRUE(waitUntil([this] { return last(4)->value == 1; }));
}

TEST_F(PlcThreadTest, SendsNothingThatATagForbids)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(1).has_value(); }));
    for (const auto& [tag, text] : {QPair<int, QString>(1, "90.1"), {2, "5"}, {0, "five"}}) {
        const WriteResult refused = written(tag, text);
        EXPECT_EQ(refused.outcome, WriteResult::Outcome::Refused);
        EXPECT_FALSE(refused.reason.isEmpty());
    }
    ASSERT_TRUE(m_report.has_value() || waitUntil([this] { return m_report.has_value(); }));
    EXPECT_EQ(m_report->statistics.of(fxtools::ExchangeKind::Write).sent, 0);
}

TEST_F(PlcThreadTest, MakesAllValuesBadWhenThePlcFallsSilentAndRefusesWrites)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0) && last(3); }));
    m_plc->benchCommand("faults silence=1");
    EXPECT_TRUE(waitUntil([this] { return m_links.last().startsWith("down"); }));
    EXPECT_TRUE(waitUntil([this] { return last(3)->quality == Quality::Bad; }));
    EXPECT_EQ(last(0)->quality, Quality::Bad);
    EXPECT_TRUE(last(0)->value.isNull());
    EXPECT_EQ(written(1, "50").outcome, WriteResult::Outcome::Refused);
    m_plc->benchCommand("faults none");
    EXPECT_TRUE(waitUntil([this] { return last(0)->quality == Quality::Good; }));
    EXPECT_EQ(m_links.last(), "up");
}

TEST_F(PlcThreadTest, KeepsEveryReadingForAWindowThatIsBusy)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0).has_value(); }));
    m_readings.clear();
    QThread::msleep(500);  // the window does something else
    EXPECT_TRUE(waitUntil([this] { return !m_readings.isEmpty(); }));
    for (int index = 1; index < m_readings.size(); ++index)
        EXPECT_LE(m_readings[index - 1].timeMs, m_readings[index].timeMs);
    EXPECT_GT(m_readings.size(), 1) << "all of them at once";
}

TEST_F(PlcThreadTest, ReadsTheInputsThatAreSwitched)
{
    start("sim:", "name,address\ndoor,X0\n");
    ASSERT_TRUE(waitUntil([this] { return last(0).has_value(); }));
    for (const int position : {1, 0}) {
        m_plc->benchCommand(position == 1 ? "switch X0 on" : "switch X0 off");
        EXPECT_TRUE(waitUntil([this, position] { return last(0)->value == position; }));
    }
}

TEST_F(PlcThreadTest, JudgesItsLineAndCallsNoDamageWell)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return m_report.has_value(); }));
    EXPECT_EQ(m_report->verdict, "The PLC answers (sim:). All is well.");
    m_plc->benchCommand("faults wrong-sum=0.2");
    EXPECT_TRUE(waitUntil([this] { return !m_report->verdict.endsWith("All is well."); }));
    EXPECT_TRUE(m_report->verdict.contains("Replies are damaged."))
        << qPrintable(m_report->verdict);
    m_plc->benchCommand("faults silence=1");
    EXPECT_TRUE(waitUntil(
        [this] { return m_report->verdict.startsWith("The PLC answered (sim:), then no more."); }));
}

TEST_F(PlcThreadTest, RefusesCommandsThatNoSimulatedPlcKnows)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0).has_value(); }));
    m_plc->benchCommand("dance");
    EXPECT_TRUE(waitUntil([this] { return !m_refusals.isEmpty(); }));
    EXPECT_TRUE(m_refusals[0].contains("dance")) << qPrintable(m_refusals[0]);
}

TEST_F(PlcThreadTest, EndsAtOnceAlsoWhereNothingIsDueForAMinute)
{
    start("sim:", "name,address,period_ms\nslow,D0,60000\n");
    ASSERT_TRUE(waitUntil([this] { return last(0).has_value(); }));
    m_readings.clear();
    m_plc.reset();
    EXPECT_TRUE(m_readings.isEmpty()) << "it waited for the next";
}

// The release of a push button, for one.
TEST_F(PlcThreadTest, WritesWhatWasAskedForBeforeItEnds)
{
    tool_tests::RunningSimulator plc(tool_tests::Road::PseudoTerminal, tool_tests::quickPlc);
    start(plc.link());
    ASSERT_TRUE(waitUntil([this] { return last(4).has_value(); }));
    m_plc->write(1, 4, "1");
    m_plc->write(2, 1, "50");
    m_plc.reset();
    EXPECT_EQ(plc.command("peek M50"), "M50: 1\n");
    EXPECT_EQ(plc.command("peek D101"), "D101: 500\n");
}

TEST_F(PlcThreadTest, EndsWithWritesForALinkThatIsNotThere)
{
    start("serial:/dev/there-is-no-such-port?baud=9600");
    ASSERT_TRUE(waitUntil([this] { return !m_links.isEmpty(); }));
    m_plc->write(1, 4, "1");
    m_plc.reset();
    SUCCEED() << "and not only when the port is there";
}

TEST_F(PlcThreadTest, WaitsForALinkThatIsNotThereAndEnds)
{
    start("serial:/dev/there-is-no-such-port?baud=9600");
    EXPECT_TRUE(waitUntil([this] { return !m_links.isEmpty(); }));
    EXPECT_TRUE(m_links[0].contains("there-is-no-such-port")) << qPrintable(m_links[0]);
    EXPECT_EQ(written(1, "50").outcome, WriteResult::Outcome::Refused);
}

TEST_F(RecipeInThread, GoesDownAndIsReadBack)
{
    startQuietly();
    const RecipeResult result = downloaded("faults none");
    EXPECT_EQ(result.problem, "");
    EXPECT_EQ(result.notCompared, "");
    EXPECT_EQ(result.recipe.size(), entries);
    EXPECT_EQ(states(result), "100 written, 0 unknown, 0 not written");
    EXPECT_EQ(same(result), registers);
    EXPECT_TRUE(m_moves.contains("2: 7 of 7")) << qPrintable(m_moves.join(' '));
    m_plc->benchCommand("poke D1003 77");
    const RecipeResult compared = ended(orderFor(RecipeOrder::Act::Compare, result.recipe));
    EXPECT_EQ(same(compared), registers - 1);
    EXPECT_EQ(compared.values[3].inPlc, 77U);
}

TEST_F(RecipeInThread, ThatIsRefusedInTheMiddleTellsWhatIsWritten)
{
    startQuietly();
    const RecipeResult result = downloaded("faults nak@3-5");  // the third entry, each attempt
    EXPECT_EQ(result.problem, "refused by the PLC (NAK)");
    EXPECT_EQ(states(result), "32 written, 0 unknown, 68 not written");
    EXPECT_EQ(same(result), 2 * inEntry);
    EXPECT_EQ(read(result), registers) << "all is read back however it ended";
    EXPECT_EQ(result.values[2 * inEntry].state, RecipeValue::State::NotWritten);
}

TEST_F(RecipeInThread, ThatLosesItsAnswersInTheMiddleTellsWhatIsUnknown)
{
    startQuietly();
    const RecipeResult result = downloaded("faults silence@3-5");
    EXPECT_NE(result.problem, "");
    EXPECT_EQ(states(result), "32 written, 16 unknown, 52 not written");
    EXPECT_EQ(read(result), registers);
    EXPECT_EQ(result.values[2 * inEntry].state, RecipeValue::State::Unknown);
}

TEST_F(RecipeInThread, ThatLosesItsLinkInTheMiddleTellsSoAndIsNotTakenUpAgain)
{
    startQuietly();
    const RecipeResult result = downloaded("faults link-drop@3");
    EXPECT_EQ(result.problem, fxtools::verdictText(fxtools::ReplyVerdict::LinkLost));
    EXPECT_EQ(states(result), "32 written, 16 unknown, 52 not written");
    EXPECT_EQ(read(result), 0);
    EXPECT_EQ(result.notCompared, fxtools::verdictText(fxtools::ReplyVerdict::LinkLost));
    m_plc->benchCommand("faults none");
    EXPECT_TRUE(waitUntil([this] { return m_links.last() == "up"; }));
    const RecipeResult compared = ended(orderFor(RecipeOrder::Act::Compare, result.recipe));
    EXPECT_EQ(compared.problem, "");
    EXPECT_LE(same(compared), 3 * inEntry) << "the rest did not follow by itself";
    EXPECT_GE(same(compared), 2 * inEntry);
}

TEST_F(RecipeInThread, EndsWhereItIsCancelled)
{
    m_failLimit = forEver;
    startQuietly();
    QObject::connect(m_plc.get(), &PlcSource::recipeMoved, [this](int id, int done, int, bool) {
        if (done == 2) {
            m_plc->cancelRecipe(id);
            m_plc->benchCommand("faults none");
        }
    });
    const RecipeResult result = downloaded("faults nak@3-");
    EXPECT_EQ(result.problem, fxtools::verdictText(fxtools::ReplyVerdict::Interrupted));
    EXPECT_TRUE(states(result).startsWith("32 written, ")) << qPrintable(states(result));
    EXPECT_EQ(read(result), registers);
    EXPECT_EQ(written(2, "7").outcome, WriteResult::Outcome::Done) << "polling goes on";
    EXPECT_EQ(m_links, QStringList("up"));
}

// Nothing else is due in this time, so what was cancelled is still in flight.
TEST_F(RecipeInThread, IsReadAnewAfterOneThatWasCancelled)
{
    startQuietly();
    const RecipeResult file = opened(recipeFile());
    RecipeOrder order = orderFor(RecipeOrder::Act::Download, file.recipe);
    EXPECT_EQ(same(ended(order)), registers);
    order.act = RecipeOrder::Act::Compare;
    order.id = 3;
    QObject::connect(m_plc.get(), &PlcSource::recipeMoved, [this](int id, int done, int, bool) {
        if (id == 3 && done == 2)
            m_plc->cancelRecipe(id);
    });
    m_plc->benchCommand("faults silence@3-");
    EXPECT_LT(read(ended(order)), registers);
    m_plc->benchCommand("faults none");
    m_plc->benchCommand("poke D1003 77");
    order.id = 4;
    const RecipeResult again = ended(order);
    EXPECT_EQ(read(again), registers);
    EXPECT_EQ(again.values[3].inPlc, 77U);
}

TEST_F(RecipeInThread, ThatCameUpIsJudgedBeforeItGoesDown)
{
    startQuietly();
    const RecipeResult up = uploaded("SD8130");
    ASSERT_EQ(up.problem, "");
    const RecipeResult result = ended(orderFor(RecipeOrder::Act::Download, up.recipe));
    EXPECT_TRUE(result.problem.contains("SD8130")) << qPrintable(result.problem);
}

TEST_F(RecipeInThread, ThatHasChangedOnTheDiskIsNotWrittenAsItWas)
{
    startQuietly();
    const RecipeResult file = opened(newFile("oven.csv", "D1000,1\nD1001,2\n"));
    RecipeOrder order = orderFor(RecipeOrder::Act::Download, file.recipe);
    order.file = newFile("oven.csv", "D1000,1\nD1001,3\n");
    RecipeResult result = ended(order);
    EXPECT_EQ(result.problem, order.file + " has changed since it was opened; open it again");
    EXPECT_EQ(states(result), "0 written, 0 unknown, 2 not written");
    newFile("oven.csv", "# the same\nD1000,1\nD1001,2\n");
    EXPECT_EQ(ended(order).problem, "");
}

TEST_F(RecipeInThread, ThatCameUpIsComparedOnceMore)
{
    startQuietly();
    m_plc->benchCommand("faults nak@2-");
    const RecipeResult result = uploaded("D1000:2");
    EXPECT_EQ(result.problem, "") << "the file is whole";
    EXPECT_EQ(result.notCompared, "refused by the PLC (NAK)");
    EXPECT_EQ(read(result), 0) << "nothing is shown that was not read";
}

TEST_F(RecipeInThread, ThatIsTooLongIsRefused)
{
    startQuietly();
    EXPECT_TRUE(uploaded(QString("D0:8000 ").repeated(9)).problem.contains("too long"));
}

TEST_F(RecipeInThread, ThatIsCancelledBeforeItBeginsSendsNothing)
{
    startQuietly();
    const RecipeResult file = opened(recipeFile());
    m_plc->cancelRecipe(2);
    const RecipeResult result = ended(orderFor(RecipeOrder::Act::Download, file.recipe));
    EXPECT_EQ(states(result), "0 written, 0 unknown, 100 not written");
    EXPECT_EQ(same(result), 0);
}

TEST_F(RecipeInThread, EndsWithTheWindow)
{
    m_failLimit = forEver;
    startQuietly();
    const RecipeResult file = opened(recipeFile());
    m_plc->benchCommand("faults nak@3-");
    m_plc->order(orderFor(RecipeOrder::Act::Download, file.recipe));
    EXPECT_TRUE(waitUntil([this] { return m_moves.contains("2: 2 of 7"); }));
    m_plc.reset();
}

TEST_F(RecipeInThread, SendsNothingThatATagForbids)
{
    startQuietly();
    const RecipeResult file = opened(newFile("locked.csv", "D499,1\nD500,1\nD501,51\n"));
    EXPECT_EQ(file.values[0].objection, "");
    EXPECT_EQ(file.values[1].objection, "the tag locked is read-only");
    EXPECT_EQ(file.values[2].objection, "'limited=51' is above the maximum of 50");
    const RecipeResult result = ended(orderFor(RecipeOrder::Act::Download, file.recipe));
    EXPECT_EQ(result.problem, "the tag locked is read-only");
    EXPECT_EQ(states(result), "0 written, 0 unknown, 3 not written");
    const RecipeResult compared = ended(orderFor(RecipeOrder::Act::Compare, file.recipe));
    EXPECT_EQ(same(compared), 0);
}

TEST_F(RecipeInThread, NamesTheLineOfAMistakeInItsFile)
{
    startQuietly();
    const QString file = newFile("wrong.csv", "D1,1\nD2,x\n");
    EXPECT_TRUE(opened(file).problem.startsWith(file + ", line 2: "));
    EXPECT_EQ(opened(newFile("bits.csv", "M1,1\n")).problem, "M1: recipes hold words, not bits");
    const QString pipe = m_folder.filePath("pipe.csv");
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(opened(pipe).problem, pipe + ": not a regular file") << "it would wait for a writer";
    EXPECT_TRUE(opened(m_folder.path()).problem.startsWith(m_folder.path() + ": "));
}

TEST_F(RecipeInThread, ComesUpIntoANewFile)
{
    startQuietly();
    m_plc->benchCommand("poke D1000 5 65534");
    RecipeOrder order = orderFor(RecipeOrder::Act::Upload, {});
    order.file = m_folder.filePath("up.csv");
    order.registers = "D1000:2 D1010";
    const RecipeResult result = ended(order);
    EXPECT_EQ(result.problem, "");
    EXPECT_EQ(same(result), 3);
    QFile file(order.file);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "address,value\nD1000,5\nD1001,-2\nD1010,0\n");
    EXPECT_EQ(ended(order).problem, order.file + " exists");
    order.mayReplace = true;
    order.registers = "D1010";
    EXPECT_EQ(ended(order).problem, "");
    m_plc->benchCommand("faults nak=1");
    EXPECT_NE(ended(order).problem, "");
    file.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "address,value\nD1010,0\n") << "half a recipe replaces nothing";
}

TEST_F(RecipeInThread, IsRefusedWhereThereIsNoLink)
{
    start("serial:/dev/there-is-no-such-port?baud=9600");
    const RecipeResult result = downloaded("faults none");
    EXPECT_NE(result.problem, "");
    EXPECT_EQ(states(result), "0 written, 0 unknown, 100 not written");
}
