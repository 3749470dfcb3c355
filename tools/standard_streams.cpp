// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/standard_streams.h"

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
