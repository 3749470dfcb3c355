// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of the screen: its pages, each a grid of elements; below them what became of the last
// write, and what is wrong in the file. Pages are made when they are first looked at.

#pragma once

#include "tools/fxview/screens/screen_file.h"
#include "tools/fxview/screens/screen_watch.h"
#include "tools/fxview/screens/widgets/element_view.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QTabWidget>

#include <memory>

namespace fxview {

class ScreenPage : public QWidget
{
    Q_OBJECT

public:
    // Shows the plain screen of the tags. The book and the writes outlive it.
    ScreenPage(const ValueBook& book, ScreenWrites& writes, QWidget* parent = nullptr);

    // Shows a file, now and whenever it changes.
    void open(const QString& file);

    void showMoment(qint64 nowMs);
    void forgetWhatWasDone();  // the link is lost

signals:
    void mistakesFound(const QStringList& mistakes);  // of the file; empty: none any more

private:
    void load();
    void showScreen(const Screen& screen);
    void fill(int number);
    QVector<fxtools::Tag> tags() const;

    const ValueBook& m_book;
    ScreenWrites& m_writes;
    QString m_file;
    std::unique_ptr<ScreenWatch> m_watch;
    Screen m_screen;
    QStringList m_shownMistakes;  // of this screen
    bool m_saysDone = false;
    qint64 m_nowMs = 0;
    QVector<QVector<ElementView*>> m_views;  // of each page; none before it is made
    QTabWidget* m_pages;
    QLabel* m_said;
    QPlainTextEdit* m_mistakes;
};

}  // namespace fxview
