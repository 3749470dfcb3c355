// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/simulated/make_link.h"

#include "tools/fxsim/control/control.h"
#include "tools/fxsim/line/session.h"
#include "tools/fxsim/plc/sample_program.h"
#include "tools/link/links.h"

#include <QFileInfo>
#include <QThread>

#include <algorithm>

namespace fxtools {

namespace {

constexpr qint64 receiverUs = 1000;  // for which a port collects characters

// A simulated PLC inside this process, with the sample program running in it, so that every
// example works without hardware. Nothing but bytes passes between it and the rest of the host.
class SimLink : public Link, public BenchControl
{
public:
    explicit SimLink(const fxsim::Settings& settings)
        : m_plc(settings, std::make_unique<fxsim::SampleProgram>(), m_clock.nowUs()),
          m_control(m_plc, {[] {}, [](int) {}, [this] { return m_clock.nowUs(); }})
    {}

    QString name() const override { return "sim:"; }
    void open() override { m_session = std::make_unique<fxsim::Session>(m_plc, "inside"); }
    bool isOpen() const override { return m_session != nullptr; }

    bool send(const QByteArray& bytes) override
    {
        if (!isOpen())
            return false;
        m_plc.advance(m_clock.nowUs());
        m_session->receive(bytes, m_clock.nowUs());
        return true;
    }

    QByteArray receive(int timeoutMs) override
    {
        if (!isOpen())
            return {};
        waitForBytes(m_clock.nowUs() + qint64(1000) * timeoutMs);
        m_plc.advance(m_clock.nowUs());
        QByteArray bytes = m_session->takeDue(m_clock.nowUs());
        if (m_session->takeLinkDrop())
            m_session.reset();
        return bytes;
    }

    void run(const QString& command) override
    {
        const QByteArray answer = m_control.run(command);
        if (answer.startsWith("error: "))
            throw Failure(ExitCode::LinkNotOpened, QString::fromUtf8(answer.trimmed()));
    }

private:
    // Characters come together, as from the receiver of a port, but the last of a reply on time.
    void waitForBytes(qint64 untilUs) const
    {
        const qint64 nowUs = m_clock.nowUs();
        const qint64 dueUs = m_session->nextDueUs();
        const qint64 togetherUs = std::min(nowUs + receiverUs, m_session->queuedUntilUs());
        const qint64 wakeUs =
            dueUs == fxsim::nothingDue ? untilUs : std::min(std::max(dueUs, togetherUs), untilUs);
        const qint64 waitUs = wakeUs - nowUs;
        if (waitUs > 0)
            QThread::usleep(static_cast<unsigned long>(waitUs));
    }

    fxsim::Clock m_clock;
    fxsim::Simulator m_plc;
    fxsim::Control m_control;
    std::unique_ptr<fxsim::Session> m_session;
};

MadeLink makeSimulated(const SimulatedSettings& simulated)
{
    fxsim::Settings settings;
    try {
        settings.faults = fxsim::parseFaults(simulated.faults);
    } catch (const fxsim::Error& error) {
        throw Failure(ExitCode::Usage,
                      "invalid link '" + linkText(simulated) + "': " + error.text());
    }
    settings.model = &fxsim::findModel("any");
    settings.startedAt = QDateTime::currentDateTime();
    settings.timing.baud = simulated.baud.value_or(settings.timing.baud);
    auto link = std::make_unique<SimLink>(settings);
    BenchControl* const control = link.get();
    return {std::move(link), control};
}

constexpr int controlTimeoutMs = 5000;

}  // namespace

MadeLink makeLink(const LinkSettings& settings)
{
    if (const auto* serial = std::get_if<SerialSettings>(&settings))
        return {std::make_unique<SerialLink>(*serial), nullptr};
    if (const auto* tcp = std::get_if<TcpSettings>(&settings))
        return {std::make_unique<TcpLink>(*tcp), nullptr};
    return makeSimulated(std::get<SimulatedSettings>(settings));
}

SocketBenchControl::SocketBenchControl(const QString& path)
{
    m_socket.connectToServer(QFileInfo(path).absoluteFilePath());
    if (!m_socket.waitForConnected(controlTimeoutMs)) {
        throw Failure(ExitCode::LinkNotOpened,
                      "control socket " + path + ": no simulator is listening");
    }
}

// The simulator replies with lines; the last one is "ok" or starts with "error: ".
void SocketBenchControl::run(const QString& command)
{
    m_socket.write(command.toUtf8() + '\n');
    m_socket.flush();
    while (m_socket.canReadLine() || m_socket.waitForReadyRead(controlTimeoutMs)) {
        if (!m_socket.canReadLine())
            continue;
        const QByteArray line = m_socket.readLine().trimmed();
        if (line == "ok")
            return;
        if (line.startsWith("error: "))
            throw Failure(ExitCode::LinkNotOpened, "the simulator refused '" + command +
                                                       "': " + QString::fromUtf8(line.mid(7)));
    }
    throw Failure(ExitCode::LinkNotOpened, "the simulator did not answer '" + command + "'");
}

}  // namespace fxtools
