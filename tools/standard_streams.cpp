// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/standard_streams.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

void fxtools::openClosedStreams()
{
    int file = open("/dev/null", O_RDONLY | O_NOCTTY);
    while (file >= 0 && file <= STDERR_FILENO)
        file = open("/dev/null", O_RDONLY | O_NOCTTY);
    if (file >= 0)
        close(file);
}

std::string fxtools::outputProblem()
{
    errno = 0;
    if (std::cout.flush())
        return {};
    // If it failed before, the reason is gone, but one more byte fails for the same.
    const bool isKnown = errno != 0 || write(STDOUT_FILENO, "\n", 1) < 0;
    const std::string problem = "could not write all output";
    return isKnown ? problem + ": " + std::strerror(errno) : problem;
}
