// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim: reads the command line, puts the simulator together with its links, controls and trace,
// and runs the event loop until a signal or `quit`.

#include "tools/fxsim/control/control_channels.h"
#include "tools/fxsim/links/link.h"
#include "tools/fxsim/options.h"
#include "tools/fxsim/plc/memory_image.h"
#include "tools/fxsim/plc/sample_program.h"
#include "tools/fxsim/plc/script_program.h"
#include "tools/fxsim/view/view.h"
#include "tools/standard_streams.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <iostream>
#include <memory>
#include <vector>

#include <sys/signalfd.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int shortestScanMs = 10;  // the sample program counts tenths of a second

void say(const QString& text)
{
    std::cout << "fxsim: " << qPrintable(text) << std::endl;
}

// Prints it; returns its exit code.
ExitCode complain(const Error& error)
{
    std::cerr << "fxsim: " << qPrintable(error.text()) << std::endl;
    return error.code();
}

class Application : public QObject
{
public:
    explicit Application(const Options& options) : m_options(options) {}

    void start();       // throws an Error; prints "fxsim: ready on ..." when all is open
    ExitCode finish();  // after the event loop ended; prints what could not be written

private:
    void preparePlc();
    void prepareTrace();
    void openControls();
    void openLinks();
    void addLink(std::unique_ptr<Link> link);
    void dropLinks(int forMs);
    void checkView() const;
    void openView();
    QString linkNames() const;
    void tell(const QString& news);
    void printStatistics();
    void endTrace();
    void saveMemory();

    Options m_options;
    Clock m_clock;
    std::unique_ptr<Simulator> m_simulator;
    ControlActions m_actions;
    std::unique_ptr<Control> m_control;
    std::unique_ptr<InputControl> m_inputControl;
    std::unique_ptr<SocketControl> m_socketControl;
    std::vector<std::unique_ptr<Link>> m_links;
    std::unique_ptr<View> m_view;
    QTimer m_scanTimer;
    QFile m_traceFile;
};

void Application::start()
{
    checkView();
    preparePlc();
    prepareTrace();
    openControls();
    openLinks();
    connect(&m_scanTimer, &QTimer::timeout, this,
            [this] { m_simulator->advance(m_clock.nowUs()); });
    m_scanTimer.start(std::max(shortestScanMs, m_options.settings.timing.scanMs));
    say(QString("ready on %1").arg(linkNames()));
    if (m_options.view)
        openView();
}

ExitCode Application::finish()
{
    m_view.reset();  // what follows is for the terminal as it was before
    for (const std::unique_ptr<Link>& link : m_links)
        link->close();
    ExitCode code = ExitCode::Good;
    for (const auto step :
         {&Application::printStatistics, &Application::endTrace, &Application::saveMemory}) {
        try {
            (this->*step)();
        } catch (const Error& error) {
            code = complain(error);
        }
    }
    return code;
}

void Application::checkView() const
{
    if (!m_options.view)
        return;
    if (!ViewTerminal::exists())
        throw Error(ExitCode::Usage, "--view needs a terminal");
    const bool tracesToTerminal =
        m_options.trace && m_options.tracePath.isEmpty() && isatty(STDERR_FILENO) == 1;
    if (tracesToTerminal) {
        throw Error(ExitCode::Usage,
                    "--view and --trace both need the terminal; write the trace to a "
                    "file, as in --trace FILE");
    }
}

void Application::preparePlc()
{
    if (!m_options.savePath.isEmpty())
        checkSaving(m_options.savePath);  // before the run, not after it, when the memory is lost
    PlcMemory memory = memoryOf(*m_options.settings.model);
    if (!m_options.present.isEmpty())
        memory.setPresent(m_options.present);
    for (const AddressRange& hole : m_options.missing) {
        if (!memory.has(hole.first, hole.last - hole.first + 1))
            throw Error(ExitCode::Usage, "--holes: this PLC does not have all of that "
                                         "memory without holes either");
    }
    memory.setMissing(m_options.missing);
    memory.setMirrors(m_options.mirrors);
    if (!m_options.loadPath.isEmpty()) {
        QByteArray image = memory.image();
        loadImage(m_options.loadPath, image);
        memory.setImage(image);
    }
    std::unique_ptr<Program> program;
    if (m_options.program == "sample")
        program = std::make_unique<SampleProgram>();
    else if (m_options.program != "none")
        program = loadScript(m_options.program, memory, m_options.settings.seed);
    m_options.settings.startedAt =
        QDateTime::currentDateTime().addMSecs(-m_clock.nowUs() / usPerMs);
    m_simulator =
        std::make_unique<Simulator>(m_options.settings, std::move(program), m_clock.nowUs());
    m_simulator->powerOnWith(memory, m_clock.nowUs());
}

void Application::prepareTrace()
{
    if (!m_options.trace)
        return;
    if (!m_options.force && QFileInfo(m_options.tracePath).isFile())
        throw Error(ExitCode::File, "the file already exists; --force replaces it")
            .at(m_options.tracePath);
    m_traceFile.setFileName(m_options.tracePath);
    const bool opened = m_options.tracePath.isEmpty()
                            ? m_traceFile.open(stderr, QIODevice::WriteOnly)
                            : m_traceFile.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (!opened)
        throw Error(ExitCode::File, m_traceFile.errorString()).at(m_options.tracePath);
    m_simulator->setTrace([this](const TraceEntry& entry) {
        m_traceFile.write(traceLine(entry) + '\n');
        m_traceFile.flush();
    });
}

void Application::openControls()
{
    m_actions = {&QCoreApplication::quit, [this](int forMs) { dropLinks(forMs); },
                 [this] { return m_clock.nowUs(); }};
    m_control = std::make_unique<Control>(*m_simulator, m_actions);
    if (!m_options.controlPath.isEmpty()) {
        m_socketControl = std::make_unique<SocketControl>(*m_control);
        m_socketControl->listen(m_options.controlPath);
    }
    if (!m_options.noCommands && !m_options.view)
        m_inputControl = std::make_unique<InputControl>(*m_control, STDIN_FILENO);
}

void Application::openLinks()
{
    if (m_options.pty)
        addLink(makePtyLink(*m_simulator, m_clock, m_options.linkPath));
    if (m_options.tcp)
        addLink(makeTcpLink(*m_simulator, m_clock, m_options.tcp->address, m_options.tcp->port));
    if (!m_options.serialDevice.isEmpty())
        addLink(makeSerialLink(*m_simulator, m_clock, m_options.serialDevice,
                               m_options.settings.timing.baud));
    for (const std::unique_ptr<Link>& link : m_links)
        link->open();
}

void Application::addLink(std::unique_ptr<Link> link)
{
    connect(link.get(), &Link::message, this, &Application::tell);
    m_links.push_back(std::move(link));
}

void Application::dropLinks(int forMs)
{
    for (const std::unique_ptr<Link>& link : m_links)
        link->drop(forMs);
}

void Application::tell(const QString& news)
{
    if (!m_view)
        return say(news);
    m_view->say(news);
    m_view->setLinks(linkNames());
}

QString Application::linkNames() const
{
    QStringList names;
    for (const std::unique_ptr<Link>& link : m_links)
        names.append(link->name());
    return names.join(", ");
}

void Application::openView()
{
    m_view = std::make_unique<View>(*m_simulator, *m_control, m_actions);
    m_view->setLinks(linkNames());
}

void Application::printStatistics()
{
    if (m_options.stats && !(std::cout << m_simulator->statistics().text().constData()).flush())
        throw Error(ExitCode::File, "could not write all statistics to standard output");
}

void Application::endTrace()
{
    if (!m_options.tracePath.isEmpty() && !m_traceFile.flush())
        throw Error(ExitCode::File, QString("%1: the trace is incomplete: %2")
                                        .arg(m_options.tracePath, m_traceFile.errorString()));
}

void Application::saveMemory()
{
    if (!m_options.savePath.isEmpty())
        saveImage(m_options.savePath, m_simulator->memory().image());
}

// SIGINT, SIGTERM and SIGHUP end the event loop, so that links are closed and files written.
void endOnSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    struct sigaction onHangUp = {};
    ::sigaction(SIGHUP, nullptr, &onHangUp);
    if (onHangUp.sa_handler != SIG_IGN)  // nohup ignores it
        sigaddset(&ending, SIGHUP);
    ::sigprocmask(SIG_BLOCK, &ending, nullptr);
    auto* notifier = new QSocketNotifier(::signalfd(-1, &ending, SFD_CLOEXEC),
                                         QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, &QCoreApplication::quit);
    // A client that left is no reason to end; in the background the terminal belongs to others.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGTTIN, SIG_IGN));
}

ExitCode run(const Options& options)
{
    if (!options.tellCommand.isEmpty()) {
        tell(options.controlPath, options.tellCommand);
        return ExitCode::Good;
    }
    endOnSignals();
    Application application(options);
    application.start();
    QCoreApplication::exec();
    return application.finish();
}

// Help and version are all that was asked for.
ExitCode textPrinted()
{
    const std::string problem = fxtools::outputProblem();
    return problem.empty() ? ExitCode::Good
                           : complain({ExitCode::File, QString::fromStdString(problem)});
}

ExitCode runCommandLine(int argumentCount, char** arguments)
{
    try {
        const std::optional<Options> options = parseOptions(argumentCount, arguments);
        if (!options)
            return textPrinted();
        // GLib's event loop takes more turns and system calls for a request than Qt's own.
        qputenv("QT_NO_GLIB", "1");
        const QCoreApplication loop(argumentCount, arguments);
        return run(*options);
    } catch (const Error& error) {
        return complain(error);
    }
}

}  // namespace

}  // namespace fxsim

int main(int argumentCount, char** arguments)
{
    fxtools::openClosedStreams();
    return static_cast<int>(fxsim::runCommandLine(argumentCount, arguments));
}
