// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/view/view.h"

#include "tools/fxsim/plc/devices.h"

#include <QTextCodec>

#include <csignal>

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace fxsim {

namespace {

constexpr int refreshMs = 100;
constexpr int keyBytes = 256;
constexpr char escape = 0x1B;
constexpr char backspace = 0x08;
constexpr char deleteKey = 0x7F;
constexpr int wordsPerPage = 30;

int suspensionDescriptor()
{
    sigset_t suspension;
    sigemptyset(&suspension);
    sigaddset(&suspension, SIGTSTP);
    ::sigprocmask(SIG_BLOCK, &suspension, nullptr);
    return ::signalfd(-1, &suspension, SFD_CLOEXEC | SFD_NONBLOCK);
}

void put(const QByteArray& bytes)
{
    for (int at = 0; at < bytes.size();) {
        const ssize_t written =
            ::write(STDOUT_FILENO, bytes.constData() + at, static_cast<size_t>(bytes.size() - at));
        if (written <= 0)
            return;
        at += static_cast<int>(written);
    }
}

}  // namespace

bool ViewTerminal::exists()
{
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

bool ViewTerminal::isInForeground()
{
    return tcgetpgrp(STDIN_FILENO) == getpgrp();
}

void ViewTerminal::enter()
{
    if (m_isEntered || tcgetattr(STDIN_FILENO, &m_before) != 0)
        return;
    termios settings = m_before;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    settings.c_iflag &= ~static_cast<tcflag_t>(IXON);  // Ctrl-S would hold up the PLC
    tcsetattr(STDIN_FILENO, TCSADRAIN, &settings);
    put("\x1b[?1049h\x1b[?25l");
    m_isEntered = true;
    m_drawn.clear();
}

void ViewTerminal::leave()
{
    if (!m_isEntered)
        return;
    put("\x1b[?25h\x1b[?1049l");
    tcsetattr(STDIN_FILENO, TCSADRAIN, &m_before);
    m_isEntered = false;
}

void ViewTerminal::draw(const Panel& panel)
{
    QByteArray text = "\x1b[H";
    for (int line = 0; line < panel.lines.size(); ++line) {
        const QString& characters = panel.lines[line];
        const int at = line == panel.selectedLine ? panel.selectedColumn : characters.size();
        text += characters.left(at).toLocal8Bit();
        if (at < characters.size())
            text += "\x1b[7m" + characters.mid(at, 1).toLocal8Bit() + "\x1b[0m" +
                    characters.mid(at + 1).toLocal8Bit();
        text += line + 1 < panel.lines.size() ? "\x1b[K\r\n" : "\x1b[J";
    }
    pollfd terminal{STDOUT_FILENO, POLLOUT, 0};
    if (text == m_drawn || ::poll(&terminal, 1, 0) != 1)
        return;  // nothing new, or a terminal that takes nothing: the PLC does not wait for it
    put(text);
    m_drawn = text;
}

View::View(Simulator& plc, Control& control, const ControlActions& actions)
    : m_plc(plc), m_control(control), m_actions(actions),
      m_keys(STDIN_FILENO, QSocketNotifier::Read), m_suspensions(suspensionDescriptor()),
      m_suspended(m_suspensions, QSocketNotifier::Read)
{
    m_state.isUtf8 = QTextCodec::codecForLocale()->name() == "UTF-8";
    connect(&m_timer, &QTimer::timeout, this, &View::refresh);
    connect(&m_keys, &QSocketNotifier::activated, this, &View::readKeys);
    connect(&m_suspended, &QSocketNotifier::activated, this, &View::suspend);
    m_timer.start(refreshMs);
}

View::~View()
{
    m_suspended.setEnabled(false);
    ::close(m_suspensions);
}

void View::suspend()
{
    signalfd_siginfo info{};
    while (::read(m_suspensions, &info, sizeof info) > 0) {
    }
    m_terminal.leave();
    static_cast<void>(::raise(SIGSTOP));
}

// Nothing tells that the terminal is ours again after it was another's: so it is asked each time.
void View::refresh()
{
    m_keys.setEnabled(ViewTerminal::isInForeground());
    if (!m_keys.isEnabled())
        return;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        m_state.columns = size.ws_col;
        m_state.rows = size.ws_row;
    }
    m_state.isOff = m_plc.isOff(m_actions.nowUs());
    m_terminal.enter();
    m_terminal.draw(makePanel(m_state, m_plc));
}

void View::readKeys()
{
    char buffer[keyBytes];
    const ssize_t got = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (got <= 0 && ViewTerminal::isInForeground())
        m_actions.quit();  // the terminal is gone
    m_keys.setEnabled(got > 0);
    for (ssize_t at = 0; at < got; ++at)
        take(buffer[at]);
    refresh();
}

// A key that sends several characters may come in pieces.
void View::take(char character)
{
    const bool isEscape = character == escape;
    const bool inSequence = !isEscape && !m_sequence.isEmpty();
    if (isEscape) {
        m_state.prompt.clear();
        m_sequence = QByteArray(1, escape);
    } else if (inSequence && m_sequence.size() == 1 && (character == '[' || character == 'O')) {
        m_sequence += character;
    } else if (inSequence && m_sequence.size() > 1) {
        m_sequence += character;
        if (character < '@')
            return;  // digits
        pressSequence(m_sequence);
        m_sequence.clear();
    } else {
        m_sequence.clear();
        m_state.prompt.isEmpty() ? press(character) : pressInPrompt(character);
    }
}

void View::pressSequence(const QByteArray& key)
{
    clearAnswer();
    const char last = key[key.size() - 1];
    if (last == '~') {  // page up is 5, page down 6
        const int lines = key.contains('6') ? wordsPerPage : -wordsPerPage;
        m_state.firstWord = std::max(0, m_state.firstWord + lines);
        return;
    }
    const int steps = last == 'A'   ? -bitsPerGroup
                      : last == 'B' ? bitsPerGroup
                      : last == 'C' ? 1
                      : last == 'D' ? -1
                                    : 0;
    select(m_state.selected + steps);
}

void View::press(char key)
{
    clearAnswer();
    if (key >= '0' && key < '0' + bitsPerGroup) {
        select(m_state.selected / bitsPerGroup * bitsPerGroup + (key - '0'));
        switchSelected();
    } else if (key == ' ' || key == '\n' || key == '\r') {
        switchSelected();
    } else if (key == 'a') {
        m_plc.releaseInputs();
    } else if (key == 's') {
        m_plc.setRunning(!m_plc.isRunning(), m_actions.nowUs());
    } else if (key == ':') {
        m_state.prompt = ':';
    } else if (key == 'q') {
        m_actions.quit();
    }
}

void View::pressInPrompt(char key)
{
    if (key == '\n' || key == '\r') {
        const QByteArray answer = m_control.run(m_state.prompt.mid(1));
        m_state.prompt.clear();
        QStringList lines = QString::fromUtf8(answer).split('\n', Qt::SkipEmptyParts);
        m_state.message = lines.isEmpty() ? QString() : lines.takeLast();
        m_state.answer = lines;
    } else if (key == deleteKey || key == backspace) {
        m_state.prompt.chop(1);
    } else if (key >= ' ') {
        m_state.prompt += key;
    }
}

void View::clearAnswer()
{
    m_state.answer.clear();
    m_state.message.clear();
}

void View::select(int input)
{
    m_state.selected = qBound(0, input, inputCount - 1);
    m_state.message = device("X0").next(m_state.selected).name();
}

void View::switchSelected()
{
    const Device input = device("X0").next(m_state.selected);
    if (!m_plc.memory().has(input.address(), 1)) {
        m_state.message = QString("this PLC does not have %1").arg(input.name());
        return;
    }
    const bool on = valueOf(m_plc.memory(), input) == 0;
    m_plc.switchInput(m_state.selected, on);
    m_state.message = QString("%1 switched %2").arg(input.name(), on ? "on" : "off");
}

}  // namespace fxsim
