// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/element_view.h"

#include "tools/fxview/models/value_table.h"
#include "tools/fxview/screens/widgets/wrapped_text.h"

#include <algorithm>

namespace fxview {

namespace {

constexpr int leastLetters = 6;         // that an element is wide
constexpr double leastFaceLines = 1.2;  // that its face is high
constexpr int leastOtherLines = 2;      // label and state, or the state alone
constexpr int margin = 2;               // left and right

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
    int width = fontMetrics().averageCharWidth() * leastLetters;
    for (const QString& text : gravestTexts())
        width = std::max(width, linesHigh(1) + widthOfTwoLines(text, fontMetrics()) + 2 * margin);
    return {width,
            linesHigh(leastOtherLines) + static_cast<int>(linesHigh(1) * leastFaceLines) + 1};
}

// What it may have to say in a place of any size.
QStringList ElementView::gravestTexts() const
{
    if (m_element.tag < 0)
        return {};
    QStringList texts{qualityText(Quality::Stale), qualityText(Quality::Bad)};
    if (tag().alarmLow || tag().alarmHigh)
        texts << tr("ALARM low") << tr("ALARM high");
    if (isWriting(m_element.kind))
        texts << tr("STILL ON?") << shortResult(WriteResult::Outcome::Refused)
              << shortResult(WriteResult::Outcome::Failed)
              << shortResult(WriteResult::Outcome::Unknown);
    return texts;
}

ElementView::State ElementView::state() const
{
    if (m_element.tag < 0)
        return {};
    State state;
    const Face face = this->face();
    if (isOverdue())
        state.words += tr("RELEASE not confirmed");
    else if (!m_lastResult.isEmpty())
        state.words += m_lastResult;
    if (!face.alarm.isEmpty() && face.quality == Quality::Good)
        state.words += face.alarm == QLatin1String("low") ? tr("ALARM low") : tr("ALARM high");
    if (isWriting(m_element.kind) && m_writes.isWaiting(m_element.tag) && !isOverdue())
        state.words += tr("writing…");
    if (face.quality != Quality::Good) {
        state.words += qualityText(face.quality);
        state.reason = m_book.reasonAt(m_element.tag, m_nowMs);
    } else if (state.words.isEmpty()) {
        state.reason = hint();
    }
    return state;
}

QString ElementView::stateText() const
{
    const State state = this->state();
    const QString words = state.words.join(QStringLiteral(", "));
    return words.isEmpty() || state.reason.isEmpty() ? words + state.reason
                                                     : words + ": " + state.reason;
}

// The most that the place has room for: what is left out stands in the tool tip.
QStringList ElementView::stateLines() const
{
    constexpr int mostLinesOfReason = 2;
    const int most =
        std::max(1, static_cast<int>(height() / double(linesHigh(1)) - leastFaceLines));
    QStringList words = state().words;
    const QString text = stateText();
    const QString word = stateWord();
    QVector<WrappedText> texts;
    if (!word.isEmpty())
        texts.append({text.isEmpty() ? word : word + ", " + text, 1});
    texts.append({text, std::min(mostLinesOfReason, most)});
    const auto addWords = [&] {
        for (int first = words.size(); first > 0; --first)
            texts.append({words.mid(0, first).join(QStringLiteral(", ")) +
                              (first < words.size() ? " …" : ""),
                          most});
        texts.append({words.value(0), most});
    };
    addWords();
    if (isOverdue()) {
        words[0] = tr("STILL ON?");
        addWords();
    }
    const int sign = stateSign() == Sign::None ? 0 : linesHigh(1);
    return firstThatFits(texts, width() - 2 * margin - sign, fontMetrics());
}

Sign ElementView::stateSign() const
{
    if (m_element.tag < 0)
        return Sign::None;
    const Face face = this->face();
    if (face.quality != Quality::Good)
        return signOf(face.quality);
    const bool isWarning = !face.alarm.isEmpty() || !m_lastResult.isEmpty() || isOverdue();
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
    refresh();
}

void ElementView::refresh()
{
    m_lines = stateLines();
    place(middle());
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

// Only where the face keeps its room.
bool ElementView::showsLabelAbove() const
{
    const int others = linesHigh(std::max(m_lines.size(), 1) + 1);
    return hasLabelAbove() && !m_element.label.isEmpty() &&
           height() - others >= static_cast<int>(linesHigh(1) * leastFaceLines);
}

QRect ElementView::middle() const
{
    const int below = m_element.tag < 0 ? 0 : linesHigh(std::max(m_lines.size(), 1));
    return rect().adjusted(margin, showsLabelAbove() ? linesHigh(1) : 0, -margin, -below);
}

void ElementView::place(const QRect& middle)
{
    m_faceArea = middle;
}

void ElementView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    refresh();
}

void ElementView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int line = linesHigh(1);
    const auto paintLine = [&](const QRect& area, const QString& text) {
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(text, Qt::ElideRight, area.width()));
    };
    painter.setPen(palette().color(QPalette::WindowText));
    if (showsLabelAbove())
        paintLine(QRect(margin, 0, width() - 2 * margin, line), m_element.label);
    if (!m_faceArea.isEmpty())
        paintFace(painter, m_faceArea, face(), palette());
    if (m_lines.isEmpty())
        return;
    const Sign sign = stateSign();
    const Face face = this->face();
    const QColor colour =
        face.quality == Quality::Good
            ? colourOf(sign == Sign::None ? Meaning::Plain : Meaning::Alarm, palette())
            : faceColour(face, palette());
    QRect area(margin, height() - linesHigh(m_lines.size()), width() - 2 * margin, line);
    painter.setPen(colour);
    if (sign != Sign::None) {
        paintSign(painter, QRect(area.left(), area.top(), line, line), sign, colour);
        area.setLeft(area.left() + line);
    }
    for (const QString& text : m_lines) {
        paintLine(area, text);
        area.translate(0, line);
    }
}

}  // namespace fxview
