// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/fault_panel.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace fxview {

namespace {

constexpr int mostPercent = 100;

}  // namespace

FaultPanel::FaultPanel(QWidget* parent) : QWidget(parent)
{
    new QGridLayout(this);
    addFault(tr("No answer"), QStringLiteral("silence"));
    addFault(tr("Refused"), QStringLiteral("nak"));
    addFault(tr("Wrong sum"), QStringLiteral("wrong-sum"));
    addFault(tr("Flipped bits"), QStringLiteral("flipped-bits"));
    addFault(tr("0.4 s late"), QStringLiteral("delay:400"));
    auto* none = new QPushButton(tr("&No faults"), this);
    connect(none, &QPushButton::clicked, this, [this] {
        for (const Fault& fault : qAsConst(m_faults)) {
            const QSignalBlocker once(fault.slider);
            fault.slider->setValue(0);
        }
        tell();
    });
    layout()->addWidget(none);
}

void FaultPanel::addFault(const QString& text, const QString& command)
{
    auto* slider = new QSlider(Qt::Horizontal, this);
    slider->setRange(0, mostPercent);
    slider->setTracking(false);  // one command when it is let go
    slider->setAccessibleName(text);
    auto* percent = new QLabel(this);
    const auto show = [percent](int value) { percent->setText(tr("%1 %").arg(value)); };
    show(0);
    percent->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("100 %")));
    connect(slider, &QSlider::sliderMoved, this, show);
    connect(slider, &QSlider::valueChanged, this, [this, show](int value) {
        show(value);
        tell();
    });
    auto* grid = qobject_cast<QGridLayout*>(layout());
    const int row = m_faults.size();
    grid->addWidget(new QLabel(text, this), row, 0);
    grid->addWidget(slider, row, 1);
    grid->addWidget(percent, row, 2);
    m_faults.append({command, slider});
}

void FaultPanel::tell()
{
    QStringList plan;
    for (const Fault& fault : qAsConst(m_faults)) {
        if (fault.slider->value() > 0)
            plan += QStringLiteral("%1=%2%").arg(fault.command).arg(fault.slider->value());
    }
    emit commanded("faults " + (plan.isEmpty() ? QStringLiteral("none") : plan.join(',')));
}

}  // namespace fxview
