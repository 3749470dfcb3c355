// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One element on a screen: its label, its face, and below it in words and with a sign what must be
// known of it: a quality that is not good, a write under way or one that was not done, an alarm.
// These words are never cut: they take several lines, and the place of the label.

#pragma once

#include "tools/fxview/screens/screen_writes.h"
#include "tools/fxview/screens/widgets/element_face.h"
#include "tools/fxview/widgets/theme.h"

#include <QWidget>

namespace fxview {

class ElementView : public QWidget
{
    Q_OBJECT

public:
    // The book and the writes outlive it.
    ElementView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                QWidget* parent);

    const Element& element() const { return m_element; }
    virtual void showMoment(qint64 nowMs);
    QString stateText() const;  // "stale: no newer reading"; empty: nothing to say
    const QStringList& shownLines() const { return m_lines; }  // of it
    bool showsLabelAbove() const;
    QSize minimumSizeHint() const override;

    virtual void noteResult(const WriteResult& result);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    virtual void place(const QRect& middle);          // between label and state
    virtual QString hint() const { return {}; }       // if there is no more to say
    virtual QString stateWord() const { return {}; }  // of the value, where the face has none
    virtual bool hasLabelAbove() const { return true; }
    void refresh();
    void announce(QWidget& control);  // its name and its value, for screen readers

    Face face() const { return faceOf(m_element, m_book, m_nowMs); }
    const fxtools::Tag& tag() const { return m_book.tag(m_element.tag); }
    ScreenWrites& writes() { return m_writes; }
    const ScreenWrites& writes() const { return m_writes; }

    QRect m_faceArea;

private:
    struct State
    {
        QStringList words;  // the gravest first
        QString reason;
    };

    State state() const;
    QStringList stateLines() const;
    Sign stateSign() const;
    bool isOverdue() const { return m_writes.overdue().contains(m_element.tag); }
    QStringList gravestTexts() const;
    int linesHigh(int lines) const { return lines * fontMetrics().height(); }
    QRect middle() const;

    const Element m_element;
    const ValueBook& m_book;
    ScreenWrites& m_writes;
    qint64 m_nowMs = 0;
    QString m_lastResult;  // that was not Done
    QStringList m_lines;   // of the state
};

}  // namespace fxview
