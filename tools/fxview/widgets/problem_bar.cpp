// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/problem_bar.h"

#include "tools/fxview/widgets/theme.h"

#include <QHBoxLayout>

namespace fxview {

ProblemBar::ProblemBar(QWidget* parent)
    : QFrame(parent), m_sign(new QLabel(this)), m_text(new QLabel(this)),
      m_close(new QPushButton(tr("Clo&se"), this))
{
    setObjectName(QStringLiteral("problemBar"));
    setAccessibleName(tr("What is wrong"));
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0xB0, 0x00, 0x20));
    colours.setColor(QPalette::WindowText, Qt::white);
    setPalette(colours);
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    const int size = fontMetrics().height() * 3 / 2;
    m_sign->setPixmap(signPixmap(Sign::Triangle, Qt::white, size, devicePixelRatioF()));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->addWidget(m_sign);
    row->addWidget(m_text, 1);
    row->addWidget(m_close);
    connect(m_close, &QPushButton::clicked, this, [this] {
        const Problem problem = m_texts.firstKey();
        clear(problem);
        emit closed(problem);
    });
    refresh();
}

void ProblemBar::set(Problem problem, const QString& text)
{
    m_texts.insert(problem, text);
    refresh();
}

void ProblemBar::clear(Problem problem)
{
    m_texts.remove(problem);
    refresh();
}

void ProblemBar::refresh()
{
    setVisible(!m_texts.isEmpty());
    if (m_texts.isEmpty())
        return;
    const int others = m_texts.size() - 1;
    m_text->setText(others == 0 ? m_texts.first()
                                : tr("%1 (and %n more)", nullptr, others).arg(m_texts.first()));
    m_close->setVisible(m_texts.firstKey() > Problem::LinkLost);
}

}  // namespace fxview
