// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/page_pictures.h"

#include <QDir>
#include <QTimer>
#include <QWindow>

#include <iostream>

namespace fxview {

namespace {

constexpr int pageMs = 2000;

int end(const MainWindow& window)
{
    if (!window.windowHandle()->isExposed())
        throw fxtools::Failure(fxtools::ExitCode::SomeFailed,
                               QStringLiteral("the window is not on the screen"));
    const QStringList bad = window.tagsNotGood();
    if (!bad.isEmpty())
        throw fxtools::Failure(fxtools::ExitCode::SomeFailed, "not good: " + bad.join(", "));
    std::cout << "fxview: all tags are good\n" << std::flush;
    return 0;
}

}  // namespace

void takePictures(MainWindow& window, const QString& folder)
{
    auto* timer = new QTimer(&window);
    QObject::connect(timer, &QTimer::timeout, &window, [timer, &window, folder] {
        QTabWidget& pages = window.pages();
        const QString file =
            QDir(folder).filePath(QStringLiteral("page-%1.png").arg(pages.currentIndex() + 1));
        try {
            if (!QDir().mkpath(folder) || !window.grab().save(file))
                throw fxtools::Failure(fxtools::ExitCode::File, "could not write " + file);
            std::cout << "fxview: saved " << qPrintable(file) << '\n';
            if (pages.currentIndex() + 1 < pages.count())
                pages.setCurrentIndex(pages.currentIndex() + 1);
            else
                QApplication::exit(end(window));
        } catch (const fxtools::Failure& failure) {
            timer->stop();
            std::cerr << "fxview: " << qPrintable(failure.text()) << '\n';
            QApplication::exit(static_cast<int>(failure.code()));
        }
    });
    timer->start(pageMs);
}

}  // namespace fxview
