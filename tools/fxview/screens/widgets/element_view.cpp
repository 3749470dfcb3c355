// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/element_view.h"

#include "tools/fxview/models/value_table.h"

#include <QStyle>

namespace fxview {

namespace {

constexpr int leastLetters = 6;     // that an element is wide
constexpr double leastLines = 3.3;  // that it is high: label, face, state

// "NOT as wanted" and so on; empty for what was done.
QString shortResult(WriteResult::Outcome outcome)
{
    switch (outcome) {
    case WriteResult::Outcome::Done:
        return {};
    case WriteResult::Outcome::Refused:
        return ElementView::tr("Not written");
    case WriteResult::Outcome::Failed:
        return ElementView::tr("NOT as wanted");
    case WriteResult::Outcome::Unknown:
        break;
    }
    return ElementView::tr("UNKNOWN");
}

}  // namespace

ElementView::ElementView(const Element& element, const ValueBook& book, ScreenWrites& writes,
                         QWidget* parent)
    : QWidget(parent), m_element(element), m_book(book), m_writes(writes)
{
    setAccessibleName(element.label.isEmpty() ? element.text : element.label);
}

QSize ElementView::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * leastLetters,
            static_cast<int>(fontMetrics().height() * leastLines)};
}

QString ElementView::stateText() const
{
    if (m_element.tag < 0)
        return {};
    QStringList texts;
    const Face face = this->face();
    if (face.quality != Quality::Good)
        texts += qualityText(face.quality) + ": " + m_book.reasonAt(m_element.tag, m_nowMs);
    else if (!face.alarm.isEmpty())
        texts += face.alarm == QLatin1String("low") ? tr("ALARM low") : tr("ALARM high");
    if (m_writes.overdue().contains(m_element.tag))
        texts.prepend(tr("RELEASE not confirmed"));
    else if (isWriting(m_element.kind) && m_writes.isWaiting(m_element.tag))
        texts += tr("writing…");
    else if (!m_lastResult.isEmpty())
        texts += m_lastResult;
    return texts.isEmpty() ? hint() : texts.join(QStringLiteral(", "));
}

Sign ElementView::stateSign() const
{
    if (m_element.tag < 0)
        return Sign::None;
    const Face face = this->face();
    if (face.quality != Quality::Good)
        return signOf(face.quality);
    const bool isWarning = !face.alarm.isEmpty() || !m_lastResult.isEmpty() ||
                           m_writes.overdue().contains(m_element.tag);
    return isWarning ? Sign::Triangle : Sign::None;
}

void ElementView::noteResult(const WriteResult& result)
{
    if (result.tag == m_element.tag)
        m_lastResult = shortResult(result.outcome);
}

void ElementView::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    announce(*this);
    update();
}

void ElementView::announce(QWidget& control)
{
    const QString state = stateText();
    const QString value = m_element.tag < 0 ? QString() : faceText(face());
    const QString text = state.isEmpty() ? value : value + ", " + state;
    if (control.accessibleDescription() == text)
        return;
    control.setAccessibleDescription(text);
    control.setToolTip(m_element.tag < 0 ? QString()
                                         : tag().name + "  " + tag().asked.text() + '\n' + text);
}

QRect ElementView::middle() const
{
    const int line = fontMetrics().height();
    const bool isPlainText = m_element.tag < 0;
    const int above = hasLabelAbove() && !m_element.label.isEmpty() ? line : 0;
    return rect().adjusted(2, above, -2, isPlainText ? 0 : -line);
}

void ElementView::place(const QRect& middle)
{
    m_faceArea = middle;
}

void ElementView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    place(middle());
}

void ElementView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int line = fontMetrics().height();
    const auto paintLine = [&](const QRect& area, const QString& text) {
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(text, Qt::ElideRight, area.width()));
    };
    painter.setPen(palette().color(QPalette::WindowText));
    if (hasLabelAbove())
        paintLine(QRect(2, 0, width() - 4, line), m_element.label);
    if (!m_faceArea.isEmpty())
        paintFace(painter, m_faceArea, face(), palette());
    const QString state = stateLine();
    if (state.isEmpty())
        return;
    const Sign sign = stateSign();
    const Face face = this->face();
    const QColor colour =
        face.quality == Quality::Good
            ? colourOf(sign == Sign::None ? Meaning::Plain : Meaning::Alarm, palette())
            : faceColour(face, palette());
    QRect area(2, height() - line, width() - 4, line);
    painter.setPen(colour);
    if (sign != Sign::None) {
        paintSign(painter, QRect(area.left(), area.top(), line, line), sign, colour);
        area.setLeft(area.left() + line);
    }
    paintLine(area, state);
}

}  // namespace fxview
