// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/progress.h"

#include "tools/fxhost/views/console.h"

#include <QElapsedTimer>

namespace fxtools {

Progress progressOf(const OutputOptions& options, const QString& label)
{
    if (options.quiet || options.mode != OutputMode::People)
        return [](int, int) {};
    return [label](int done, int total) { Console().progress(label, done, total); };
}

Progress timedProgressOf(const OutputOptions& options, const QString& label)
{
    const Progress plain = progressOf(options, label + " (frames)");
    QElapsedTimer running;
    running.start();
    return [=](int done, int total) {
        const qint64 leftMs = done > 0 ? running.elapsed() * (total - done) / done : 0;
        if (leftMs < 1000)
            return plain(done, total);
        const QString left = QStringLiteral("%1 (frames, %2 s left)").arg(label).arg(leftMs / 1000);
        progressOf(options, left)(done, total);
    };
}

Progress lateProgressOf(const OutputOptions& options, const QString& label)
{
    if (options.quiet || options.mode != OutputMode::People || !Console().isTerminal())
        return [](int, int) {};
    QElapsedTimer running;
    running.start();
    return [label, running](int done, int total) {
        if (done < total && running.elapsed() >= 1000)
            Console().progress(label, done, total);
    };
}

}  // namespace fxtools
