// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The statistics of the whole demo, and how many checks passed.

#include "tools/fxhost/demo/chapters.h"
#include "tools/fxhost/views/statistics_report.h"

namespace fxtools {

void showSummary(DemoBench& bench)
{
    bench.console().heading("Summary");
    for (const QString& line : statisticsLines(bench.loop().statistics(), bench.loop().elapsedUs()))
        bench.console().line(line);
    bench.console().line();
    if (bench.wasCutShort()) {
        bench.console().line(
            bench.console().bad(QStringLiteral("Interrupted after %1 of %2 checks.")
                                    .arg(bench.judged())
                                    .arg(bench.checks())));
    } else if (bench.refuted() == 0) {
        bench.console().line(bench.console().good(
            QStringLiteral("All %1 checks passed: the values read back are the values written.")
                .arg(bench.confirmed())));
    } else {
        bench.console().line(bench.console().bad(
            QStringLiteral("%1 of %2 checks failed.").arg(bench.refuted()).arg(bench.judged())));
    }
}

}  // namespace fxtools
