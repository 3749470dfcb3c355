// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/alarm_page.h"

#include "tools/fxview/models/value_book.h"
#include "tools/fxview/widgets/scrolled.h"
#include "tools/fxview/widgets/theme.h"

#include <QDateTime>
#include <QHeaderView>
#include <QLabel>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace fxview {

namespace {

constexpr qint64 bellEveryMs = 5000;
constexpr int shownEvents = 200;

// A shape for each state.
class AlarmDelegate : public QStyledItemDelegate
{
public:
    explicit AlarmDelegate(const AlarmTable& table, QObject* parent)
        : QStyledItemDelegate(parent), m_table(table)
    {}

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const Alarm& alarm = m_table.alarmAt(index.row());
        option->font.setBold(alarm.isActive() && !alarm.acknowledgedMs);
        if (index.column() != AlarmTable::State)
            return;
        const Sign open = alarm.acknowledgedMs ? Sign::Disc : Sign::Triangle;
        const int size = option->fontMetrics.height();
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = {size, size};
        option->icon = signPixmap(alarm.isActive() ? open : Sign::Ring,
                                  colourOf(Meaning::Alarm, option->palette), size,
                                  option->widget->devicePixelRatioF());
    }

private:
    const AlarmTable& m_table;
};

QString lineOf(const AlarmEvent& event, const fxtools::Tag& tag)
{
    const QString time = QDateTime::fromMSecsSinceEpoch(event.timeMs)
                             .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    return QStringLiteral("%1  %2  %3 %4  %5")
        .arg(time, tag.name, kindText(event.kind), whatText(event.what),
             event.value.isNull() ? QString() : valueWithUnit(tag, event.value))
        .trimmed();
}

}  // namespace

AlarmPage::AlarmPage(AlarmBook& book, QWidget* parent)
    : QWidget(parent), m_book(book), m_table(new AlarmTable(book, this)),
      m_view(new QTableView(this)), m_history(new QPlainTextEdit(this))
{
    m_view->setModel(m_table);
    m_view->setItemDelegate(new AlarmDelegate(*m_table, m_view));
    m_view->setAccessibleName(tr("Open alarms"));
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setTabKeyNavigation(false);
    m_view->setWordWrap(false);
    m_view->verticalHeader()->hide();
    QHeaderView& header = *m_view->horizontalHeader();
    header.setSectionResizeMode(QHeaderView::ResizeToContents);
    header.setSectionResizeMode(AlarmTable::Value, QHeaderView::Stretch);
    m_history->setAccessibleName(tr("History of alarms"));
    m_history->setReadOnly(true);
    m_history->setTabChangesFocus(true);
    auto* rows = new QVBoxLayout(scrolledIn(this));
    rows->addLayout(buttons());
    rows->addWidget(m_view, 2);
    rows->addWidget(new QLabel(tr("What happened, the newest first:"), this));
    rows->addWidget(m_history, 1);
    refresh();
}

QLayout* AlarmPage::buttons()
{
    auto* one = new QPushButton(tr("Ac&knowledge"), this);
    auto* all = new QPushButton(tr("Acknowle&dge all"), this);
    connect(one, &QPushButton::clicked, this, &AlarmPage::acknowledgeChosen);
    connect(all, &QPushButton::clicked, this, [this] {
        m_book.acknowledgeAll(m_nowMs);
        refresh();
    });
    connect(m_view, &QTableView::activated, this, &AlarmPage::acknowledgeChosen);
    auto* row = new QHBoxLayout;
    row->addWidget(one);
    row->addWidget(all);
    row->addStretch();
    return row;
}

void AlarmPage::acknowledgeChosen()
{
    QVector<Alarm> chosen;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows())
        chosen += m_table->alarmAt(index.row());
    for (const Alarm& alarm : chosen)
        m_book.acknowledge(alarm.tag, alarm.kind, m_nowMs);
    refresh();
}

// What is chosen stays chosen while it is open.
void AlarmPage::refresh()
{
    const QModelIndex current = m_view->currentIndex();
    const std::optional<Alarm> chosen =
        current.isValid() ? std::optional<Alarm>(m_table->alarmAt(current.row())) : std::nullopt;
    m_shownChanges = m_book.changes();
    m_table->refresh();
    if (chosen && m_table->rowOf(*chosen) >= 0)
        m_view->selectRow(m_table->rowOf(*chosen));
    QStringList lines;
    for (auto event = m_book.events().rbegin();
         event != m_book.events().rend() && lines.size() < shownEvents; ++event)
        lines += lineOf(*event, m_book.tag(event->tag));
    m_history->setPlainText(lines.join('\n'));
    emit openChanged(m_book.unacknowledged());
}

void AlarmPage::ring()
{
    if (!m_book.isAlerting()) {
        m_rungMs = 0;
        return;
    }
    if (std::abs(m_nowMs - m_rungMs) < bellEveryMs)
        return;
    m_rungMs = m_nowMs;
    if (bell)
        bell();
}

void AlarmPage::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    if (m_book.changes() != m_shownChanges)
        refresh();
    ring();
}

}  // namespace fxview
