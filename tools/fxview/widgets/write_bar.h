// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Writing a value, without a dialog: the value there now, the new one and its limits; one question;
// then what the PLC has after it. Nothing is sent before the question is answered, and the next
// write waits for the result of this one.

#pragma once

#include "tools/fxview/models/value_book.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace fxview {

class WriteBar : public QFrame
{
    Q_OBJECT

public:
    explicit WriteBar(const ValueBook& book, QWidget* parent = nullptr);

    void choose(int tag);  // -1: none; ignored while a result is awaited
    void edit();           // goes to the field
    void take(const WriteResult& result);
    void showMoment(qint64 nowMs);
    void setLinkUp(bool isUp);

signals:
    void writeConfirmed(int id, int tag, const QString& text);
    void left();  // with the keyboard: back to the table

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Step
    {
        Editing,
        Asking,
        Waiting,
    };

    void layOut();
    void ask();
    void confirm();
    void cancel();
    void showStep();
    QString objection() const;  // why the text is not even worth asking; empty: none
    QString newText() const { return m_field->text().trimmed(); }

    const ValueBook& m_book;
    Step m_step = Step::Editing;
    int m_tag = -1;
    int m_lastId = 0;
    qint64 m_nowMs = 0;
    bool m_isLinkUp = true;
    QLabel* m_now;
    QLabel* m_limits;
    QLabel* m_said;  // the question, then the result
    QLineEdit* m_field;
    QPushButton* m_off;
    QPushButton* m_on;
    QPushButton* m_write;
    QPushButton* m_yes;
    QPushButton* m_no;
};

// "Done: oven.temp 71.5 °C → 80 °C, read back", or why not.
QString resultText(const fxtools::Tag& tag, const WriteResult& result);

QString limitsText(const fxtools::Tag& tag);  // "0 °C to 200 °C", of what may be written
QString limitObjection(const fxtools::Tag& tag, const QString& text);  // empty: none

}  // namespace fxview
