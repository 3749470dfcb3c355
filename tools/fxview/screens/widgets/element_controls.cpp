// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/element_controls.h"

#include "tools/fxview/screens/widgets/hold_button.h"
#include "tools/fxview/widgets/theme.h"
#include "tools/fxview/widgets/write_bar.h"

#include <QKeyEvent>

#include <algorithm>

namespace fxview {

PushButtonView::PushButtonView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                               QWidget* parent)
    : ElementView(element, book, writes, parent)
{
    const int tag = element.tag;
    if (element.action == ButtonAction::Momentary) {
        auto* button = new HoldButton(this);
        m_button = button;
        connect(button, &HoldButton::held, this, [this, tag] { this->writes().press(tag); });
        connect(button, &HoldButton::letGo, this, [this, tag] { this->writes().release(tag); });
    } else {
        const QString text = element.action == ButtonAction::Set ? "1" : "0";
        m_button = new QPushButton(this);
        m_button->setAutoDefault(true);  // Enter clicks it, too
        connect(m_button, &QPushButton::clicked, this,
                [this, tag, text] { this->writes().write(tag, text); });
    }
    m_button->setText(QString(element.label).replace('&', QLatin1String("&&")));
    m_button->setAccessibleName(element.label);
}

void PushButtonView::showMoment(qint64 nowMs)
{
    ElementView::showMoment(nowMs);
    m_button->setEnabled(writes().mayWrite());
    const int size = m_button->fontMetrics().height();
    m_button->setIconSize({size, size});
    m_button->setIcon(bitPixmap(face(), palette(), size, devicePixelRatioF()));
    announce(*m_button);
}

// A large button has a large text.
void PushButtonView::place(const QRect& middle)
{
    m_button->setGeometry(middle);
    const double letter = fontMetrics().height();
    const double width = fontMetrics().horizontalAdvance(element().label) + 4 * letter;
    QFont large = font();
    large.setPointSizeF(
        large.pointSizeF() *
        std::clamp(std::min(middle.height() / (3 * letter), middle.width() / width), 1.0, 2.0));
    if (m_button->font() != large)
        m_button->setFont(large);
}

SwitchControl::SwitchControl(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

void SwitchControl::showFace(const Face& face)
{
    m_isOn = face.isOn();
    m_hasValue = face.hasValue;
    m_text = faceText(face);
    QPalette colours = QApplication::palette();
    colours.setColor(QPalette::WindowText, faceColour(face, colours));
    colours.setColor(QPalette::Highlight, face.quality == Quality::Good
                                              ? colourOf(Meaning::LampOn, colours)
                                              : faceColour(face, colours));
    setPalette(colours);
    update();
}

void SwitchControl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double high = std::min(fontMetrics().height() * 1.4, height() - 4.0);
    const QRectF rail(3, (height() - high) / 2, std::min(high * 2, width() / 2.0), high);
    const QColor line = palette().color(QPalette::WindowText);
    painter.setPen(QPen(hasFocus() ? QApplication::palette().color(QPalette::Highlight) : line,
                        hasFocus() ? 3 : 1));
    painter.setBrush(m_hasValue && m_isOn ? palette().brush(QPalette::Highlight)
                                          : palette().brush(QPalette::Base));
    painter.drawRoundedRect(rail, high / 2, high / 2);
    if (m_hasValue) {
        const double knob = high * 0.7;
        const double middle = m_isOn ? rail.right() - high / 2 : rail.left() + high / 2;
        painter.setPen(line);
        painter.setBrush(palette().brush(QPalette::Button));
        painter.drawEllipse(QPointF(middle, rail.center().y()), knob / 2, knob / 2);
    } else {
        paintSign(painter, rail, Sign::Cross, line);
    }
    painter.setPen(line);
    painter.drawText(rect().adjusted(static_cast<int>(rail.right()) + 6, 0, 0, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, m_text);
}

void SwitchControl::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !event->isAutoRepeat())
        click();
    else if (!isEnter)
        QAbstractButton::keyPressEvent(event);
}

SwitchView::SwitchView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                       QWidget* parent)
    : ElementView(element, book, writes, parent), m_switch(new SwitchControl(this))
{
    m_switch->setAccessibleName(element.label);
    connect(m_switch, &SwitchControl::clicked, this,
            [this] { this->writes().write(this->element().tag, face().isOn() ? "0" : "1"); });
}

void SwitchView::showMoment(qint64 nowMs)
{
    ElementView::showMoment(nowMs);
    const Face shown = face();
    m_switch->setEnabled(writes().mayWrite() && shown.quality == Quality::Good);
    m_switch->showFace(shown);
    announce(*m_switch);
}

void SwitchView::place(const QRect& middle)
{
    m_switch->setGeometry(middle);
}

NumericEntryView::NumericEntryView(const Element& element, const ValueBook& book,
                                   ScreenWrites& writes, QWidget* parent)
    : ElementView(element, book, writes, parent), m_field(new QLineEdit(this))
{
    m_field->setAccessibleName(tr("New value: %1").arg(element.label));
    m_field->setPlaceholderText(tr("new value"));
    m_field->setMaxLength(200);
    m_field->installEventFilter(this);
    connect(m_field, &QLineEdit::returnPressed, this, &NumericEntryView::write);
    connect(m_field, &QLineEdit::textEdited, this, [this] { refresh(); });
}

void NumericEntryView::showMoment(qint64 nowMs)
{
    ElementView::showMoment(nowMs);
    m_field->setEnabled(writes().mayWrite());
    announce(*m_field);
}

void NumericEntryView::write()
{
    const QString text = m_field->text().trimmed();
    if (!text.isEmpty() && limitObjection(tag(), text).isEmpty())
        writes().write(element().tag, text);
}

void NumericEntryView::noteResult(const WriteResult& result)
{
    ElementView::noteResult(result);
    if (result.tag == element().tag && result.outcome == WriteResult::Outcome::Done)
        m_field->clear();
}

QString NumericEntryView::hint() const
{
    QString objection = limitObjection(tag(), m_field->text().trimmed());
    if (!objection.isEmpty())
        return objection;
    return m_field->hasFocus() ? limitsText(tag()) : QString();
}

bool NumericEntryView::eventFilter(QObject* watched, QEvent* event)
{
    const bool isKey = event->type() == QEvent::KeyPress;
    if (isKey && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        m_field->clear();
        refresh();
        return true;
    }
    return ElementView::eventFilter(watched, event);
}

void NumericEntryView::place(const QRect& middle)
{
    const int half = middle.width() / 2;
    m_faceArea = middle.adjusted(0, 0, -half, 0);
    const int high = std::min(m_field->sizeHint().height(), middle.height());
    m_field->setGeometry(middle.left() + middle.width() - half + 2,
                         middle.top() + (middle.height() - high) / 2, half - 2, high);
}

ElementView* makeElementView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                             QWidget* parent)
{
    switch (element.kind) {
    case ElementKind::PushButton:
        return new PushButtonView(element, book, writes, parent);
    case ElementKind::Switch:
        return new SwitchView(element, book, writes, parent);
    case ElementKind::NumericEntry:
        return new NumericEntryView(element, book, writes, parent);
    case ElementKind::Lamp:
    case ElementKind::NumericDisplay:
    case ElementKind::Bar:
    case ElementKind::Dial:
    case ElementKind::Trend:
    case ElementKind::Text:
        break;
    }
    return new ElementView(element, book, writes, parent);
}

}  // namespace fxview
