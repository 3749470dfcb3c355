// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/end_to_end/transcript.h"

#include <QDir>
#include <QRegularExpression>

#include <sstream>

namespace fx_end_to_end {

namespace {

const QString hostPrompt = QStringLiteral("fxhost> ");
const QString simulatorPrompt = QStringLiteral("fxsim> ");
const QString filePrompt = QStringLiteral("cat> ");

bool isTyped(const QString& line)
{
    return line.startsWith(hostPrompt) || line.startsWith(simulatorPrompt) ||
           line.startsWith(filePrompt);
}

std::string partsOf(const std::string& text, const QString& pattern)
{
    QRegularExpressionMatchIterator parts =
        QRegularExpression(pattern).globalMatch(QString::fromStdString(text));
    std::string found;
    while (parts.hasNext())
        found += parts.next().captured().toStdString() + '\n';
    return found;
}

}  // namespace

TerminalSession::TerminalSession(Road road, const QStringList& simulatorOptions)
    : m_plc(road, simulatorOptions)
{
    QDir::setCurrent(m_folder.path());
}

std::string TerminalSession::play(const std::string& transcript)
{
    std::istringstream lines(transcript);
    std::string played;
    for (std::string line; std::getline(lines, line);) {
        const QString typed = QString::fromStdString(line);
        if (isTyped(typed))
            played += line + '\n' + answerTo(typed);
    }
    return played;
}

std::string TerminalSession::answerTo(const QString& typed)
{
    if (typed.startsWith(hostPrompt))
        return runHost(typed.mid(hostPrompt.size()));
    if (typed.startsWith(simulatorPrompt))
        return m_plc.command(typed.mid(simulatorPrompt.size())).toStdString();
    return tool_tests::contentOf(typed.mid(filePrompt.size())).toStdString();
}

std::string TerminalSession::runHost(const QString& arguments) const
{
    const QStringList pipe = arguments.split(QStringLiteral(" | grep -o "));
    const QStringList command = pipe.first().split(QStringLiteral(" <<< "));
    const tool_tests::Ended ended = tool_tests::fxhost(
        QStringList{"--link", m_plc.link()} + QProcess::splitCommand(command.first()),
        tool_tests::hostEnvironment(), command.mid(1).join(QString()).toUtf8());
    std::string printed = ended.out + ended.err;
    if (pipe.size() > 1)
        printed = partsOf(printed, pipe.last());
    if (ended.code != 0)
        printed += '[' + std::to_string(ended.code) + "]\n";
    return printed;
}

}  // namespace fx_end_to_end
