// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/write_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShortcut>
#include <QVBoxLayout>

namespace fxview {

namespace {

// As in the tag file, where 200 is not 200.0.
QString limitText(const fxtools::Tag& tag, double limit)
{
    return valueWithUnit(tag, QJsonValue(limit).toVariant().toString());
}

int mostCharacters(const fxtools::Tag& tag)
{
    return tag.asked.range.type.valueBytes() * tag.asked.range.count;
}

// The Enter that asks in the field must not, passed on or held down, be the answer too.
void clickByEnter(QPushButton* button)
{
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* shortcut = new QShortcut(key, button, nullptr, nullptr, Qt::WidgetShortcut);
        shortcut->setAutoRepeat(false);
        QObject::connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
    }
}

// Registers hold whole raw values: what lies between two is written as one of them.
QString wantedText(const fxtools::Tag& tag, const QString& text)
{
    if (tag.isOneBit())
        return valueWithUnit(tag, text.toInt());
    const QString wanted = valueWithUnit(tag, text);
    const double raw = (text.toDouble() - tag.offset) / tag.scale;
    const bool isWhole = std::abs(raw - std::round(raw)) < 1e-6;
    return isWhole || !tag.isNumber() || tag.style.format == fxtools::ValueFormat::Float
               ? wanted
               : WriteBar::tr("%1, rounded to steps of %2").arg(wanted).arg(std::abs(tag.scale));
}

}  // namespace

QString resultText(const fxtools::Tag& tag, const WriteResult& result)
{
    const QString after = valueWithUnit(tag, result.after);
    switch (result.outcome) {
    case WriteResult::Outcome::Done:
        return WriteBar::tr("Done: %1 was %2, is now %3 (read back)")
            .arg(tag.name, valueWithUnit(tag, result.before), after);
    case WriteResult::Outcome::Refused:
        return WriteBar::tr("Not written: %1").arg(result.reason);
    case WriteResult::Outcome::Failed:
        return WriteBar::tr("NOT as wanted: %1 is now %2; %3").arg(tag.name, after, result.reason);
    case WriteResult::Outcome::Unknown:
        break;
    }
    return WriteBar::tr("UNKNOWN whether %1 was written: %2").arg(tag.name, result.reason);
}

QString limitsText(const fxtools::Tag& tag)
{
    if (isReadOnly(tag))
        return WriteBar::tr("read-only");
    if (tag.style.format == fxtools::ValueFormat::Text)
        return WriteBar::tr("up to %1 characters").arg(mostCharacters(tag));
    if (!tag.isNumber())
        return {};
    if (tag.min && tag.max)
        return WriteBar::tr("%1 to %2").arg(limitText(tag, *tag.min), limitText(tag, *tag.max));
    if (tag.min)
        return WriteBar::tr("%1 or more").arg(limitText(tag, *tag.min));
    if (tag.max)
        return WriteBar::tr("%1 or less").arg(limitText(tag, *tag.max));
    const fxtools::ValueSpan span = tag.span();
    return WriteBar::tr("%1 to %2").arg(limitText(tag, span.lowest), limitText(tag, span.highest));
}

QString limitObjection(const fxtools::Tag& tag, const QString& text)
{
    if (tag.style.format == fxtools::ValueFormat::Text && text.size() > mostCharacters(tag))
        return WriteBar::tr("%1 characters are too many").arg(text.size());
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!tag.isNumber() || !isNumber)
        return {};
    if (tag.min && value < *tag.min)
        return WriteBar::tr("below the minimum of %1").arg(limitText(tag, *tag.min));
    if (tag.max && value > *tag.max)
        return WriteBar::tr("above the maximum of %1").arg(limitText(tag, *tag.max));
    return {};
}

WriteBar::WriteBar(const ValueBook& book, QWidget* parent)
    : QFrame(parent), m_book(book), m_now(new QLabel(this)), m_limits(new QLabel(this)),
      m_said(new QLabel(this)), m_field(new QLineEdit(this)),
      m_off(new QPushButton(tr("O&ff"), this)), m_on(new QPushButton(tr("O&n"), this)),
      m_write(new QPushButton(tr("&Write…"), this)),
      m_yes(new QPushButton(tr("&Yes, write"), this)), m_no(new QPushButton(this))
{
    layOut();
    connect(m_field, &QLineEdit::textEdited, this, &WriteBar::showStep);
    connect(m_field, &QLineEdit::returnPressed, this, &WriteBar::ask);
    connect(m_write, &QPushButton::clicked, this, &WriteBar::ask);
    connect(m_yes, &QPushButton::clicked, this, &WriteBar::confirm);
    connect(m_no, &QPushButton::clicked, this, &WriteBar::cancel);
    for (QPushButton* each : {m_off, m_on, m_write, m_yes, m_no})
        clickByEnter(each);
    for (QPushButton* each : {m_off, m_on}) {
        connect(each, &QPushButton::clicked, this, [this, each] {
            m_field->setText(each == m_on ? "1" : "0");
            ask();
        });
    }
    showStep();
}

void WriteBar::layOut()
{
    setObjectName(QStringLiteral("writeBar"));
    setFrameShape(StyledPanel);
    setAccessibleName(tr("Write a value"));
    m_field->setAccessibleName(tr("New value"));
    m_field->setPlaceholderText(tr("new value"));
    m_field->setMaxLength(200);
    for (QLabel* label : {m_now, m_limits, m_said}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
    }
    auto* rows = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    top->addWidget(m_now, 2);
    top->addWidget(m_field, 1);
    for (QPushButton* button : {m_off, m_on, m_write})
        top->addWidget(button);
    top->addWidget(m_limits, 2);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_said, 1);
    bottom->addWidget(m_yes);
    bottom->addWidget(m_no);
    rows->addLayout(top);
    rows->addLayout(bottom);
}

void WriteBar::choose(int tag)
{
    if (m_step == Step::Waiting || tag == m_tag)
        return;
    m_tag = tag;
    m_step = Step::Editing;
    m_field->clear();
    m_said->clear();
    showStep();
}

void WriteBar::edit()
{
    if (m_field->isVisible() && m_field->isEnabled()) {
        m_field->setFocus();
        m_field->selectAll();  // what is typed now does not lengthen an older number
    } else if (m_on->isVisible() && m_on->isEnabled())
        m_on->setFocus();
}

QString WriteBar::objection() const
{
    if (!m_isLinkUp)
        return tr("The PLC does not answer: nothing can be written now");
    return limitObjection(m_book.tag(m_tag), newText());
}

void WriteBar::ask()
{
    if (m_tag < 0 || m_step != Step::Editing || newText().isEmpty() || !objection().isEmpty())
        return;
    m_step = Step::Asking;
    showStep();
    m_no->setFocus();  // whoever presses Enter or Space twice writes nothing
}

void WriteBar::confirm()
{
    if (m_step != Step::Asking || !objection().isEmpty())
        return;
    m_step = Step::Waiting;
    ++m_lastId;
    showStep();
    emit writeConfirmed(m_lastId, m_tag, newText());
}

// A write that was sent cannot be taken back: its result is only no longer waited for.
void WriteBar::cancel()
{
    const bool wasWaiting = m_step == Step::Waiting;
    m_step = Step::Editing;
    if (wasWaiting)
        m_said->setText(
            tr("UNKNOWN whether %1 was written: no result so far").arg(m_book.tag(m_tag).name));
    else
        m_said->clear();
    showStep();
    if (!wasWaiting)
        edit();
}

void WriteBar::take(const WriteResult& result)
{
    if (result.id <= 0)
        return;  // of another one who writes
    if (result.id == m_lastId && m_step == Step::Waiting) {
        m_step = Step::Editing;
        m_field->clear();
        if (window()->focusWidget() == m_no)
            emit left();  // a hidden button would hand the keyboard to the tabs
        showStep();
    }
    if (m_step == Step::Editing)
        m_said->setText(resultText(m_book.tag(result.tag), result));
}

void WriteBar::setLinkUp(bool isUp)
{
    m_isLinkUp = isUp;
    showStep();
}

void WriteBar::showStep()
{
    const bool hasTag = m_tag >= 0;
    const bool mayWrite = hasTag && !isReadOnly(m_book.tag(m_tag));
    const bool isBit = hasTag && m_book.tag(m_tag).isOneBit();
    const bool isEditing = m_step == Step::Editing;
    m_field->setVisible(mayWrite && !isBit);
    m_write->setVisible(mayWrite && !isBit);
    m_off->setVisible(mayWrite && isBit);
    m_on->setVisible(mayWrite && isBit);
    m_field->setEnabled(isEditing);
    const QString objection = hasTag ? this->objection() : QString();
    m_write->setEnabled(isEditing && !newText().isEmpty() && objection.isEmpty());
    m_off->setEnabled(isEditing && objection.isEmpty());
    m_on->setEnabled(isEditing && objection.isEmpty());
    m_yes->setEnabled(objection.isEmpty());
    m_yes->setVisible(m_step == Step::Asking);
    m_no->setVisible(!isEditing);
    m_no->setText(m_step == Step::Waiting ? tr("Do not wa&it") : tr("N&o"));
    m_limits->setText(!hasTag               ? QString()
                      : objection.isEmpty() ? limitsText(m_book.tag(m_tag))
                                            : limitsText(m_book.tag(m_tag)) + " – " + objection);
    if (m_step == Step::Waiting)
        m_said->setText(
            tr("Writing %1; waiting for what the PLC has then…").arg(m_book.tag(m_tag).name));
    showMoment(m_nowMs);
}

void WriteBar::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    if (m_tag < 0) {
        m_now->setText(tr("Choose a row to write its value"));
        return;
    }
    const fxtools::Tag& tag = m_book.tag(m_tag);
    const QString now = m_book.hasValue(m_tag, nowMs)
                            ? valueWithUnit(tag, m_book.state(m_tag).value)
                            : QStringLiteral("–");
    const bool isGood = m_book.qualityAt(m_tag, nowMs) == Quality::Good;
    const QString shown = isGood ? now : tr("%1 (%2)").arg(now, m_book.reasonAt(m_tag, nowMs));
    m_now->setText(tr("%1 is %2").arg(tag.name, shown));
    if (m_step == Step::Asking) {
        m_said->setText(tr("Write to %1 (%2): now %3, new %4?")
                            .arg(tag.name, tag.asked.text(), shown, wantedText(tag, newText())));
    }
}

void WriteBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_step == Step::Asking)
        cancel();
    else if (event->key() == Qt::Key_Escape)
        emit left();
    else
        QFrame::keyPressEvent(event);
}

}  // namespace fxview
