// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/terminal.h"

#include <QElapsedTimer>
#include <QProcessEnvironment>

#include <array>
#include <csignal>
#include <stdexcept>
#include <vector>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace tool_tests {

namespace {

constexpr int screenPatienceMs = 30000;  // of a loaded machine, under sanitizers

winsize sizeOf(int columns, int rows)
{
    winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    return size;
}

// Texts as exec wants them; they live as long as this does.
class ArgumentList
{
public:
    explicit ArgumentList(const QStringList& texts)
    {
        for (const QString& text : texts)
            m_bytes.push_back(text.toUtf8());
        for (QByteArray& bytes : m_bytes)
            m_pointers.push_back(bytes.data());
        m_pointers.push_back(nullptr);
    }
    char* const* get() const { return m_pointers.data(); }

private:
    std::vector<QByteArray> m_bytes;
    std::vector<char*> m_pointers;
};

QStringList environmentWith(const QStringList& more)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("NO_COLOR");
    environment.insert("TERM", "xterm");
    environment.insert("LC_ALL", "C.UTF-8");
    for (const QString& entry : more)
        environment.insert(entry.section('=', 0, 0), entry.section('=', 1));
    return environment.toStringList();
}

}  // namespace

Terminal::Terminal(const QStringList& command, int columns, int rows,
                   const QStringList& environment)
    : m_screen(columns, rows)
{
    const ArgumentList arguments(command);
    const ArgumentList variables(environmentWith(environment));
    const winsize size = sizeOf(columns, rows);
    m_child = forkpty(&m_master, nullptr, nullptr, &size);
    if (m_child < 0)
        throw std::runtime_error("no pseudo-terminal for the test");
    if (m_child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // however the test ends
        execve(arguments.get()[0], arguments.get(), variables.get());
        _exit(127);
    }
}

Terminal::~Terminal()
{
    if (m_child > 0) {
        kill(m_child, SIGKILL);
        waitpid(m_child, nullptr, 0);
    }
    close(m_master);
}

Terminal::Heard Terminal::listen(int forMs)
{
    pollfd waiting = {m_master, POLLIN, 0};
    if (poll(&waiting, 1, forMs) <= 0)
        return Heard::Nothing;
    std::array<char, 4096> buffer = {};
    const ssize_t byteCount = read(m_master, buffer.data(), buffer.size());
    m_hasEnded = byteCount <= 0;
    if (m_hasEnded)
        return Heard::End;
    const QByteArray bytes(buffer.data(), static_cast<int>(byteCount));
    m_written += bytes;
    m_screen.write(bytes);
    return Heard::Bytes;
}

bool Terminal::waitFor(const std::function<bool(const Screen&)>& isSo)
{
    QElapsedTimer clock;
    clock.start();
    while (!isSo(m_screen)) {
        const auto leftMs = static_cast<int>(screenPatienceMs - clock.elapsed());
        if (leftMs <= 0 || listen(leftMs) == Heard::End)
            return false;
    }
    return true;
}

bool Terminal::waitForText(const QString& text)
{
    return waitFor([&text](const Screen& screen) { return screen.text().contains(text); });
}

void Terminal::press(char key)
{
    if (write(m_master, &key, 1) != 1)
        throw std::runtime_error("the test cannot press a key");
}

void Terminal::send(int signal)
{
    kill(m_child, signal);
}

void Terminal::resize(int columns, int rows)
{
    const winsize size = sizeOf(columns, rows);
    m_screen.resize(columns, rows);
    ioctl(m_master, TIOCSWINSZ, &size);
}

bool Terminal::echoes() const
{
    termios settings = {};
    return tcgetattr(m_master, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
}

int Terminal::waitForEnd()
{
    waitFor([](const Screen&) { return false; });
    if (!m_hasEnded)
        return -1;
    int status = 0;
    waitpid(m_child, &status, 0);
    m_child = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tool_tests
