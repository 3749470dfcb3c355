// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/main_window.h"

#include <QTabBar>

namespace fxview {

void MainWindow::listenToScreen()
{
    connect(&m_screenWrites, &ScreenWrites::changed, this, &MainWindow::showReleases);
    connect(&m_screenWrites, &ScreenWrites::stillOn, this, [this](int tag) {
        qWarning("fxview: %s is still on", qPrintable(m_values.tag(tag).name));
        m_problems->set(Problem::StillOn,
                        tr("%1 is still on, though the release of its push button was sent three "
                           "times: the program of the PLC may hold it.")
                            .arg(m_values.tag(tag).name));
    });
    connect(m_screenPage, &ScreenPage::mistakesFound, this, [this](const QStringList& mistakes) {
        for (const QString& mistake : mistakes)
            qWarning("fxview: %s", qPrintable(mistake));
        if (mistakes.isEmpty()) {
            m_problems->clear(Problem::Screen);
        } else if (mistakes.size() == 1) {
            m_problems->set(Problem::Screen, mistakes.first());
        } else {
            m_problems->set(Problem::Screen, tr("%1 (the first of %2 mistakes; the page Screen "
                                                "lists them)")
                                                 .arg(mistakes.first())
                                                 .arg(mistakes.size()));
        }
    });
}

void MainWindow::openScreen(const QString& file, bool isFirstPage)
{
    if (isFirstPage) {
        m_pages->tabBar()->moveTab(m_pages->indexOf(m_screenPage), 0);
        m_pages->setCurrentWidget(m_screenPage);
    }
    m_screenPage->open(file);
}

void MainWindow::showReleases()
{
    QStringList names;
    for (const int tag : m_screenWrites.overdue())
        names += m_values.tag(tag).name;
    if (names.isEmpty()) {
        m_problems->clear(Problem::Release);
    } else {
        m_problems->set(Problem::Release,
                        tr("%1 may still be on: the PLC has not confirmed the release of the push "
                           "button. It is sent again as soon as the PLC answers; until then, stop "
                           "the machine by its own switches.")
                            .arg(names.join(QStringLiteral(", "))));
    }
    if (m_closingMs && m_screenWrites.isReleased())
        QMetaObject::invokeMethod(this, "close", Qt::QueuedConnection);
}

}  // namespace fxview
