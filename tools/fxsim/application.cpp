// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See application.h.

#include "tools/fxsim/application.h"

#include "tools/fxsim/line/trace_text.h"
#include "tools/fxsim/links/pty_link.h"
#include "tools/fxsim/links/serial_link.h"
#include "tools/fxsim/links/tcp_link.h"
#include "tools/fxsim/plc/memory_image.h"
#include "tools/fxsim/plc/sample_program.h"
#include "tools/fxsim/plc/script_program.h"

#include <QCoreApplication>

#include <iostream>

#include <unistd.h>

namespace fxsim {

namespace {

constexpr int shortestScanMs = 10;  // often enough for a program of tenths of a second

void say(const QString& text)
{
    std::cout << "fxsim: " << qPrintable(text) << std::endl;
}

int fail(ExitCode code, const QString& text)
{
    std::cerr << "fxsim: " << qPrintable(text) << std::endl;
    return code;
}

}  // namespace

Application::Application(const Options& options) : m_options(options) {}

int Application::start()
{
    for (const auto step :
         {&Application::prepareProgram, &Application::prepareMemory, &Application::prepareTrace,
          &Application::openControls, &Application::openLinks}) {
        const int code = (this->*step)();
        if (code != exitGood)
            return code;
    }
    connect(&m_scanTimer, &QTimer::timeout, this,
            [this] { m_simulator->advance(m_clock.nowUs()); });
    m_scanTimer.start(std::max(shortestScanMs, m_options.settings.timing.scanMs));
    sayReady();
    return exitGood;
}

int Application::finish()
{
    for (const std::unique_ptr<Link>& link : m_links)
        link->close();
    int code = exitGood;
    if (m_options.stats && !(std::cout << m_simulator->statistics().text().constData()).flush())
        code = fail(exitFile, QStringLiteral("standard output took not all that was printed"));
    if (!m_options.tracePath.isEmpty() && !m_traceFile.flush())
        code = fail(exitFile, QStringLiteral("%1: the trace is not whole: %2")
                                  .arg(m_options.tracePath, m_traceFile.errorString()));
    if (m_options.savePath.isEmpty())
        return code;
    const QString error = saveImage(m_options.savePath, m_simulator->memory().image());
    return error.isEmpty() ? code : fail(exitFile, error);
}

int Application::prepareProgram()
{
    std::unique_ptr<Program> program;
    if (m_options.program == QLatin1String("sample")) {
        program = std::make_unique<SampleProgram>();
    } else if (m_options.program != QLatin1String("none")) {
        LoadedScript script = loadScript(m_options.program);
        if (!script.error.isEmpty())
            return fail(exitFile, script.error);
        program = std::move(script.program);
    }
    m_simulator =
        std::make_unique<Simulator>(m_options.settings, std::move(program), m_clock.nowUs());
    return exitGood;
}

int Application::prepareMemory()
{
    if (!m_options.savePath.isEmpty()) {
        // Told before the run, not after it, when the memory would be lost.
        const QString obstacle = obstacleToSaving(m_options.savePath);
        if (!obstacle.isEmpty())
            return fail(exitFile, obstacle);
    }
    PlcMemory memory;
    memory.setPresent(m_options.present);
    memory.setMissing(m_options.missing);
    memory.setMirrors(m_options.mirrors);
    if (!m_options.loadPath.isEmpty()) {
        QByteArray image = memory.image();
        const QString error = loadImage(m_options.loadPath, image);
        if (!error.isEmpty())
            return fail(exitFile, error);
        memory.setImage(image);
    }
    m_simulator->powerOnWith(memory, m_clock.nowUs());
    return exitGood;
}

int Application::prepareTrace()
{
    if (!m_options.trace)
        return exitGood;
    m_traceFile.setFileName(m_options.tracePath);
    const bool opened = m_options.tracePath.isEmpty()
                            ? m_traceFile.open(stderr, QIODevice::WriteOnly)
                            : m_traceFile.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (!opened)
        return fail(exitFile,
                    QStringLiteral("%1: %2").arg(m_options.tracePath, m_traceFile.errorString()));
    m_simulator->setTrace([this](const TraceEntry& entry) {
        m_traceFile.write(traceLine(entry) + '\n');
        m_traceFile.flush();
    });
    return exitGood;
}

int Application::openControls()
{
    const ControlActions actions = {&QCoreApplication::quit,
                                    [this](int forMs) { dropLinks(forMs); },
                                    [this] { return m_clock.nowUs(); }};
    m_control = std::make_unique<Control>(*m_simulator, actions);
    if (!m_options.controlPath.isEmpty()) {
        m_socketControl = std::make_unique<SocketControl>(*m_control);
        const QString error = m_socketControl->listen(m_options.controlPath);
        if (!error.isEmpty())
            return fail(exitLink, error);
    }
    if (m_options.commands)
        m_inputControl = std::make_unique<InputControl>(*m_control, STDIN_FILENO);
    return exitGood;
}

int Application::openLinks()
{
    if (m_options.pty)
        addLink(std::make_unique<PtyLink>(*m_simulator, m_clock, m_options.linkPath));
    if (m_options.tcp)
        addLink(std::make_unique<TcpLink>(*m_simulator, m_clock, m_options.tcpAddress,
                                          m_options.tcpPort));
    if (!m_options.serialDevice.isEmpty())
        addLink(std::make_unique<SerialLink>(*m_simulator, m_clock, m_options.serialDevice,
                                             m_options.settings.timing.baud));
    for (const std::unique_ptr<Link>& link : m_links) {
        const QString error = link->open();
        if (!error.isEmpty())
            return fail(exitLink, error);
    }
    return exitGood;
}

void Application::addLink(std::unique_ptr<Link> link)
{
    connect(link.get(), &Link::message, this, &say);
    m_links.push_back(std::move(link));
}

void Application::dropLinks(int forMs)
{
    for (const std::unique_ptr<Link>& link : m_links)
        link->drop(forMs);
}

void Application::sayReady() const
{
    QStringList names;
    for (const std::unique_ptr<Link>& link : m_links)
        names.append(link->name());
    say(QStringLiteral("ready on %1").arg(names.join(QStringLiteral(", "))));
}

}  // namespace fxsim
