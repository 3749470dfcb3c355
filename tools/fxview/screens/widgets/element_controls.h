// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The elements that write: push button, switch and numeric entry. While the PLC does not answer
// they are disabled.

#pragma once

#include "tools/fxview/screens/widgets/element_view.h"

#include <QLineEdit>
#include <QPushButton>

namespace fxview {

class PushButtonView : public ElementView
{
    Q_OBJECT

public:
    PushButtonView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                   QWidget* parent);

    void showMoment(qint64 nowMs) override;

protected:
    void place(const QRect& middle) override;
    QString stateWord() const override { return faceText(face()); }
    bool hasLabelAbove() const override { return false; }

private:
    QPushButton* m_button;
};

// A rail with a knob, on the right when it is on.
class SwitchControl : public QAbstractButton
{
    Q_OBJECT

public:
    explicit SwitchControl(QWidget* parent);

    void showFace(const Face& face);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_isOn = false;
    bool m_hasValue = false;
    QString m_text;
};

// Writes the opposite of what the PLC has.
class SwitchView : public ElementView
{
    Q_OBJECT

public:
    SwitchView(const Element& element, const ValueBook& book, ScreenWrites& writes,
               QWidget* parent);

    void showMoment(qint64 nowMs) override;

protected:
    void place(const QRect& middle) override;

private:
    SwitchControl* m_switch;
};

// The value of the PLC, and beside it a field for a new one, which Enter writes.
class NumericEntryView : public ElementView
{
    Q_OBJECT

public:
    NumericEntryView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                     QWidget* parent);

    void showMoment(qint64 nowMs) override;
    void noteResult(const WriteResult& result) override;

protected:
    void place(const QRect& middle) override;
    QString hint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void write();

    QLineEdit* m_field;
};

// The widget that shows this element.
ElementView* makeElementView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                             QWidget* parent);

}  // namespace fxview
