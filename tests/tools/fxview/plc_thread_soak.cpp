// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// plc_thread_soak: the thread that talks to the PLC of the window, in real time, with a simulated
// PLC inside: life after life of writes, recipes, cancels, faults, lost links and an end in the
// middle, all drawn from the seed. Best built with -DFX_SANITIZE=thread. Exit code 0: each order
// was answered once, and what was said of each register of each recipe was so.

#include "tests/tools/support/loaded_driver.h"
#include "tools/fxview/plc/plc_thread.h"
#include "tools/link/link_settings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <random>

using namespace fxview;

namespace {

using Act = RecipeOrder::Act;

constexpr int registers = 40;
const fxtools::RegisterRange recipeRange = tool_tests::range("D1000:40");  // before any thread
constexpr int writable = 0;                // the tag that is written
constexpr qint64 longestAnswerMs = 60000;  // of an order, on a line without faults

const char* const tagRows = "name,address,period_ms\n"
                            "setpoint,D100,20\ncount,D101,50\nlamp,M50,20\nslow,D103,60000\n";

const QStringList faults = {
    "faults none",  "faults silence=0.3",   "faults silence=1",          "faults nak=0.2",
    "faults nak=1", "faults wrong-sum=0.3", "faults link-drop=0.05:300", "faults delay=0.2",
    "faults none"};

class Life
{
public:
    Life(std::mt19937& random, const QString& folder, QStringList& findings)
        : m_random(random), m_folder(folder), m_findings(findings), m_known(registers)
    {
        fxtools::ConnectionSettings settings;
        settings.library = QStringLiteral(FX_DRIVER_FILE);
        settings.link = fxtools::parseLink(QStringLiteral("sim:"));
        settings.session.failLimit = 3;
        auto services = std::make_unique<fxtools::AddressServices>(
            settings.library, fxtools::TagSource{folder + "/tags.csv", {}});
        const QVector<fxtools::Tag> tags = services->tags();
        m_plc = std::make_unique<PlcThread>(settings, "sim:", std::move(services), tags);
        QObject::connect(m_plc.get(), &PlcSource::written,
                         [this](const WriteResult& result) { take(result); });
        QObject::connect(m_plc.get(), &PlcSource::recipeEnded,
                         [this](const RecipeResult& result) { take(result); });
        QObject::connect(
            m_plc.get(), &PlcSource::readings,
            [this](const QVector<Reading>& readings) { m_readings += readings.size(); });
        m_plc->start();
    }

    void live(int acts)
    {
        for (int act = 0; act < acts; ++act) {
            actOnce();
            QCoreApplication::processEvents();
            QThread::msleep(static_cast<unsigned long>(draw(30)));
        }
        if (draw(3) == 0)
            return;  // closed in the middle
        m_plc->benchCommand("faults none");
        QElapsedTimer waited;
        for (waited.start(); !m_open.isEmpty() && waited.elapsed() < longestAnswerMs;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        if (!m_open.isEmpty())
            note(QStringLiteral("%1 orders were not answered").arg(m_open.size()));
    }

    qint64 orders() const { return m_orders; }
    qint64 readings() const { return m_readings; }
    qint64 checks() const { return m_checks; }

private:
    int draw(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    void note(const QString& finding) { m_findings += finding; }

    int open()
    {
        ++m_orders;
        m_open.append(++m_id);
        return m_id;
    }
    void close(int id)
    {
        if (m_open.removeAll(id) != 1)
            note(QStringLiteral("order %1 was answered twice").arg(id));
    }

    void actOnce()
    {
        switch (draw(8)) {
        case 0:
        case 1:
            m_plc->write(open(), writable, QString::number(draw(30000)));
            break;
        case 2:
            m_plc->writeSoon(open(), writable, QString::number(draw(30000)));
            break;
        case 3:
        case 4:
            orderRecipe();
            break;
        case 5:
            m_plc->cancelRecipe(m_id);
            break;
        default:
            m_plc->benchCommand(faults[draw(faults.size())]);
            break;
        }
    }

    void orderRecipe()
    {
        RecipeOrder order;
        order.act = draw(4) == 0 ? Act::Upload : draw(3) == 0 ? Act::Compare : Act::Download;
        order.id = open();
        if (order.act == Act::Upload) {
            order.file = m_folder + QStringLiteral("/up%1.csv").arg(order.id);
            order.registers = QStringLiteral("D1000:%1").arg(registers);
        } else {
            for (int first = 0; first < registers; first += registers / 4) {
                fxtools::RegisterRun run;
                run.range = recipeRange.part(first, registers / 4);
                for (int index = 0; index < run.range.count; ++index)
                    run.values.append(static_cast<quint32>(draw(30000)));
                order.recipe.append(run);
            }
        }
        m_plc->order(order);
    }

    void take(const WriteResult& result)
    {
        close(result.id);
        if (result.outcome != WriteResult::Outcome::Done && result.reason.isEmpty())
            note(QStringLiteral("write %1 failed without a reason").arg(result.id));
    }

    // What each register holds follows from what was said of it before.
    void take(const RecipeResult& result)
    {
        close(result.id);
        for (int index = 0; index < result.values.size(); ++index) {
            const RecipeValue& value = result.values[index];
            std::optional<quint32>& known = m_known[index];
            if (value.state == RecipeValue::State::Written)
                known = value.inFile;
            if (value.state == RecipeValue::State::Unknown)
                known.reset();
            if (!value.inPlc)
                continue;
            ++m_checks;
            if (known && known != value.inPlc)
                note(QStringLiteral("order %1: %2 holds %3, not %4")
                         .arg(result.id)
                         .arg(value.one.text())
                         .arg(*value.inPlc)
                         .arg(*known));
            known = value.inPlc;
        }
    }

    std::mt19937& m_random;
    const QString m_folder;
    QStringList& m_findings;
    QVector<std::optional<quint32>> m_known;
    QVector<int> m_open;
    int m_id = 0;
    qint64 m_orders = 0, m_readings = 0, m_checks = 0;
    std::unique_ptr<PlcThread> m_plc;
};

}  // namespace

int main(int argumentCount, char** arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    QCommandLineParser parser;
    parser.setApplicationDescription("Soaks the thread that talks to the PLC of the window");
    parser.addHelpOption();
    parser.addOptions({{"lives", "How many windows, one after the other.", "N", "100"},
                       {"seed", "What happens is made from.", "N", "1"}});
    parser.process(application);
    const int lives = parser.value("lives").toInt();
    if (lives <= 0) {
        (void)std::fprintf(stderr, "plc_thread_soak: --lives takes a number above 0\n");
        return 2;
    }
    std::mt19937 random(parser.value("seed").toUInt());
    QStringList findings;
    qint64 orders = 0, readings = 0, checks = 0;
    for (int life = 0; life < lives; ++life) {
        const QTemporaryDir folder;
        QFile file(folder.filePath("tags.csv"));
        if (!file.open(QIODevice::WriteOnly) || file.write(tagRows) < 0)
            qFatal("no place for tags");
        file.close();
        Life one(random, folder.path(), findings);
        one.live(10 + static_cast<int>(random() % 50));
        orders += one.orders();
        readings += one.readings();
        checks += one.checks();
    }
    std::printf("%d lives: %lld orders, %lld readings, %lld registers of recipes checked\n", lives,
                orders, readings, checks);
    for (const QString& finding : qAsConst(findings))
        std::printf("WRONG: %s\n", qPrintable(finding));
    return findings.isEmpty() ? 0 : 1;
}
