// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/standard_streams.h"

#include <cerrno>
#include <cstdio>
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
    if (errno == 0)  // it failed before, for a reason that is gone: what is left fails again
        std::fflush(stdout);
    const std::string problem = "could not write all output";
    return errno == 0 ? problem : problem + ": " + std::strerror(errno);
}
