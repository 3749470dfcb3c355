// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/question.h"

#include "tools/failure.h"
#include "tools/fxhost/views/console.h"
#include "tools/link/interrupt.h"

#include <iostream>

#include <poll.h>
#include <unistd.h>

namespace fxtools {

namespace {

constexpr int napMs = 20;  // how soon an interrupt is noticed, also one just before the waiting

QString typedLine()
{
    pollfd terminal = {STDIN_FILENO, POLLIN, 0};
    while (poll(&terminal, 1, napMs) <= 0) {
        if (interrupted())
            throw Failure(ExitCode::Interrupted, QStringLiteral("interrupted"));
    }
    QByteArray line;
    char character = 0;
    while (read(STDIN_FILENO, &character, 1) == 1 && character != '\n')
        line += character;
    return QString::fromUtf8(line).trimmed().toLower();
}

}  // namespace

bool isConfirmed(const QString& question)
{
    if (isatty(STDIN_FILENO) == 0)
        throw Failure(ExitCode::Usage, question + " Standard input is not a terminal; use --yes");
    Console::settle();
    std::cerr << question.toStdString() << " [y/N] " << std::flush;
    const QString answer = typedLine();
    return answer == QLatin1String("y") || answer == QLatin1String("yes");
}

}  // namespace fxtools
