// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/input_panel.h"

#include "tools/fxview/widgets/theme.h"

#include <QButtonGroup>
#include <QScrollArea>
#include <QVBoxLayout>

namespace fxview {

namespace {

struct Position
{
    const char* text;
    const char* command;
};
constexpr std::array<Position, 3> positions = {{
    {QT_TRANSLATE_NOOP("fxview::InputPanel", "On"), "on"},
    {QT_TRANSLATE_NOOP("fxview::InputPanel", "Off"), "off"},
    {QT_TRANSLATE_NOOP("fxview::InputPanel", "Program"), "auto"},
}};

bool isInput(const fxtools::Tag& tag)
{
    return tag.isOneBit() && tag.asked.range.type.name == QLatin1String("X");
}

}  // namespace

InputPanel::InputPanel(const ValueBook& book, QWidget* parent)
    : QWidget(parent), m_book(book), m_address(new QLineEdit(this)), m_value(new QLineEdit(this)),
      m_set(new QPushButton(tr("S&et"), this))
{
    auto* rows = new QVBoxLayout(this);
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setAccessibleName(tr("Inputs"));
    scroll->setWidget(inputs());
    scroll->viewport()->setAutoFillBackground(false);  // the ground of the tab it is in
    scroll->widget()->setAutoFillBackground(false);
    rows->addWidget(scroll, 1);
    rows->addLayout(setter());
}

QWidget* InputPanel::inputs()
{
    auto* widget = new QWidget;
    auto* grid = new QGridLayout(widget);
    for (int tag = 0; tag < m_book.size(); ++tag) {
        if (isInput(m_book.tag(tag)))
            addInput(*grid, tag);
    }
    if (m_inputs.isEmpty())
        grid->addWidget(new QLabel(tr("No tag is an input (X)"), widget));
    grid->setRowStretch(grid->rowCount(), 1);
    return widget;
}

void InputPanel::addInput(QGridLayout& grid, int tag)
{
    const fxtools::RegisterRange& range = m_book.tag(tag).asked.range;
    const QString address = range.type.name + range.type.numberText(range.first);
    const Input input = {tag, new QLabel(this), new QLabel(this)};
    const int row = m_inputs.size();
    grid.addWidget(new QLabel(m_book.tag(tag).name + ' ' + address, this), row, 0);
    grid.addWidget(input.sign, row, 1);
    grid.addWidget(input.state, row, 2);
    grid.setColumnStretch(2, 1);
    auto* group = new QButtonGroup(this);
    for (size_t column = 0; column < positions.size(); ++column) {
        const Position& position = positions[column];
        auto* button = new QPushButton(tr(position.text), this);
        button->setCheckable(true);
        button->setAccessibleName(address + ' ' + button->text());
        button->setChecked(column + 1 == positions.size());
        group->addButton(button);
        grid.addWidget(button, row, static_cast<int>(column) + 3);
        connect(button, &QPushButton::clicked, this, [this, address, &position] {
            emit commanded(QStringLiteral("switch %1 %2").arg(address, position.command));
        });
    }
    m_inputs.append(input);
}

QLayout* InputPanel::setter()
{
    m_address->setAccessibleName(tr("Register to set"));
    m_address->setPlaceholderText(tr("register, D100"));
    m_value->setAccessibleName(tr("Value to set"));
    m_value->setPlaceholderText(tr("value"));
    const auto set = [this] {
        if (!m_address->text().isEmpty() && !m_value->text().isEmpty())
            emit commanded(QStringLiteral("poke %1 %2").arg(m_address->text(), m_value->text()));
    };
    connect(m_set, &QPushButton::clicked, this, set);
    connect(m_value, &QLineEdit::returnPressed, this, set);
    auto* row = new QHBoxLayout;
    row->addWidget(m_address, 1);
    row->addWidget(m_value, 1);
    row->addWidget(m_set);
    return row;
}

void InputPanel::showMoment(qint64 nowMs)
{
    for (const Input& input : qAsConst(m_inputs)) {
        const Quality quality = m_book.qualityAt(input.tag, nowMs);
        const QString value = m_book.hasValue(input.tag, nowMs)
                                  ? valueText(m_book.tag(input.tag), m_book.state(input.tag).value)
                                  : QStringLiteral("–");
        const bool isOn = value == valueText(m_book.tag(input.tag), 1);
        const bool isGood = quality == Quality::Good;
        const Sign sign = !isGood ? signOf(quality) : isOn ? Sign::Disc : Sign::Ring;
        const Meaning meaning = !isGood ? meaningOf(quality)
                                : isOn  ? Meaning::LampOn
                                        : Meaning::Plain;
        input.sign->setPixmap(signPixmap(sign, colourOf(meaning, palette()), fontMetrics().height(),
                                         devicePixelRatioF()));
        input.state->setText(isGood ? value
                                    : tr("%1 (%2)").arg(value, m_book.reasonAt(input.tag, nowMs)));
    }
}

}  // namespace fxview
