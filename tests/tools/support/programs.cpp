// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/programs.h"

#include <QFile>
#include <QRegularExpression>

#include <csignal>
#include <stdexcept>

namespace tool_tests {

namespace {

constexpr int patienceMs = 120000;  // of a loaded machine, under sanitizers, in an emulator

}  // namespace

QProcessEnvironment hostEnvironment()
{
    QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
    all.insert("FX_DRIVER", QStringLiteral(FX_DRIVER_FILE));
    all.insert("FX_LINK", "sim:");
    return all;
}

void PrintTo(Road road, std::ostream* out)
{
    *out << (road == Road::Tcp ? "Tcp" : "PseudoTerminal");
}

void PrintTo(const Ended& ended, std::ostream* out)
{
    *out << "exit code " << ended.code << "\n" << ended.out << "\n" << ended.err;
}

RunningSimulator::RunningSimulator(Road road, const QStringList& options)
    : m_process(options + (road == Road::Tcp
                               ? QStringList{"--tcp", "127.0.0.1:0"}
                               : QStringList{"--pty", "--link", m_folder.filePath("plc")}))
{
    const QString place = m_process.waitReady();
    if (place.isEmpty())
        throw std::runtime_error("the simulator did not come up: " +
                                 m_process.errors().toStdString());
    m_link = road == Road::Tcp ? place : "pty:" + m_folder.filePath("plc");
}

QByteArray RunningSimulator::command(const QString& line)
{
    static const QRegularExpression news("^fxsim: .*\n", QRegularExpression::MultilineOption);
    QString answer = QString::fromUtf8(m_process.command(line.toUtf8())).remove(news);
    if (!answer.endsWith("ok\n"))
        throw std::runtime_error("the simulator did not carry out: " + line.toStdString());
    answer.chop(3);
    return answer.toUtf8();
}

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

int times(const std::string& text, const std::string& part)
{
    int found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

Ended fxhost(const QStringList& arguments, const QProcessEnvironment& environment,
             const QByteArray& input)
{
    ChildProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(FXHOST_FILE), arguments);
    process.write(input);
    process.closeWriteChannel();
    Ended ended;
    if (!process.waitForFinished(patienceMs))
        process.kill();
    else if (process.exitStatus() == QProcess::NormalExit)
        ended.code = process.exitCode();
    ended.out = process.readAllStandardOutput().toStdString();
    ended.err = process.readAllStandardError().toStdString();
    return ended;
}

RunningHost::RunningHost(const QStringList& arguments)
{
    m_process.setProcessEnvironment(hostEnvironment());
    m_process.start(QStringLiteral(FXHOST_FILE), arguments);
}

RunningHost::~RunningHost()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
}

bool RunningHost::hasPrinted()
{
    return m_process.waitForReadyRead(patienceMs);
}

bool RunningHost::hasComplained()
{
    m_process.setReadChannel(QProcess::StandardError);
    return m_process.waitForReadyRead(patienceMs);
}

void RunningHost::send(int signal)
{
    kill(static_cast<pid_t>(m_process.processId()), signal);
}

Ended RunningHost::end()
{
    Ended ended;
    if (m_process.waitForFinished(patienceMs) && m_process.exitStatus() == QProcess::NormalExit)
        ended.code = m_process.exitCode();
    ended.out = m_process.readAllStandardOutput().toStdString();
    ended.err = m_process.readAllStandardError().toStdString();
    return ended;
}

QString newFile(const QTemporaryDir& folder, const char* name, const QByteArray& content)
{
    QFile file(folder.filePath(QString::fromLatin1(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("cannot write a file for the test");
    return file.fileName();
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace tool_tests
