// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/values_page.h"

#include "tools/fxview/widgets/scrolled.h"
#include "tools/fxview/widgets/value_delegate.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>

namespace fxview {

ValuesPage::ValuesPage(const ValueBook& book, QWidget* parent)
    : QWidget(parent), m_table(new ValueTable(book, this)), m_filter(new QLineEdit(this)),
      m_shown(new QLabel(this)), m_view(new QTableView(this)), m_writeBar(new WriteBar(book, this))
{
    m_filter->setPlaceholderText(tr("Filter by name, address or description (Ctrl+F)"));
    m_filter->setAccessibleName(tr("Filter"));
    m_filter->setClearButtonEnabled(true);
    connect(m_filter, &QLineEdit::textChanged, this, &ValuesPage::filter);
    auto* top = new QHBoxLayout;
    top->addWidget(m_filter, 1);
    top->addWidget(m_shown);
    auto* rows = new QVBoxLayout(scrolledIn(this));
    rows->addLayout(top);
    rows->addWidget(m_view, 1);
    rows->addWidget(m_writeBar);
    setUpTable();
    letColumnsBeHidden();
    addActions();
    filter({});
}

void ValuesPage::setUpTable()
{
    m_view->setModel(m_table);
    m_view->setItemDelegate(new ValueDelegate(*m_table, m_view));
    m_view->setAccessibleName(tr("Values"));
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setAlternatingRowColors(true);
    m_view->setShowGrid(false);
    m_view->setWordWrap(false);
    m_view->setTabKeyNavigation(false);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
    QHeaderView& header = *m_view->horizontalHeader();
    header.setSortIndicator(-1, Qt::AscendingOrder);
    header.setHighlightSections(false);
    m_view->setSortingEnabled(true);
    const int letter = fontMetrics().averageCharWidth();
    const std::array<int, ValueTable::columns> letters = {22, 18, 16, 8, 24, 10, 24};
    for (int column = 0; column < ValueTable::columns; ++column)
        header.resizeSection(column, letters[static_cast<size_t>(column)] * letter);
    header.setSectionResizeMode(ValueTable::State, QHeaderView::Stretch);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) {
                if (index.isValid())
                    m_writeBar->choose(m_table->tagAt(index.row()));
            });
    connect(m_writeBar, &WriteBar::left, m_view, [this] { m_view->setFocus(); });
}

// By a menu on the headings. Without a description there is nothing to see of them.
void ValuesPage::letColumnsBeHidden()
{
    QHeaderView& header = *m_view->horizontalHeader();
    header.setContextMenuPolicy(Qt::ActionsContextMenu);
    for (int column = ValueTable::Value; column < ValueTable::columns; ++column) {
        auto* action = new QAction(
            m_table->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), &header);
        action->setCheckable(true);
        action->setChecked(true);
        connect(action, &QAction::toggled, &header,
                [&header, column](bool isShown) { header.setSectionHidden(column, !isShown); });
        header.addAction(action);
    }
    const ValueBook& book = m_table->book();
    bool isDescribed = false;
    for (int tag = 0; tag < book.size(); ++tag)
        isDescribed = isDescribed || !book.tag(tag).description.isEmpty();
    header.actions().last()->setChecked(isDescribed);
}

void ValuesPage::addActions()
{
    const auto add = [this](QWidget& owner, const QString& text, const QKeySequence& keys,
                            auto&& act) {
        auto* action = new QAction(text, this);
        action->setShortcut(keys);
        action->setShortcutContext(&owner == this ? Qt::WidgetWithChildrenShortcut
                                                  : Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, act);
        owner.addAction(action);
    };
    add(*this, tr("Filter"), QKeySequence::Find, [this] {
        m_filter->setFocus();
        m_filter->selectAll();
    });
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    add(*m_view, tr("Write its value"), Qt::Key_Return, [this] { m_writeBar->edit(); });
    add(*m_view, tr("Show its trend"), Qt::Key_Space, [this] {
        if (currentTag() >= 0)
            emit trendAsked(currentTag());
    });
    add(*m_view, tr("Copy as CSV"), QKeySequence::Copy, [this] { copy(); });
    connect(m_filter, &QLineEdit::returnPressed, m_view, [this] {
        m_view->setFocus();
        if (!m_view->currentIndex().isValid())
            m_view->selectRow(0);
    });
}

int ValuesPage::currentTag() const
{
    const QModelIndex index = m_view->currentIndex();
    return index.isValid() ? m_table->tagAt(index.row()) : -1;
}

void ValuesPage::filter(const QString& words)
{
    const int tag = currentTag();
    m_table->setFilter(words);
    m_shown->setText(tr("%1 of %2 tags").arg(m_table->rowCount()).arg(m_table->book().size()));
    const int row = tag < 0 ? -1 : m_table->rowOf(tag);
    if (row >= 0)
        m_view->selectRow(row);
}

// The selected rows, or all of them.
void ValuesPage::copy() const
{
    QVector<int> rows;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows())
        rows += index.row();
    if (rows.isEmpty()) {
        rows.resize(m_table->rowCount());
        std::iota(rows.begin(), rows.end(), 0);
    }
    std::sort(rows.begin(), rows.end());
    QApplication::clipboard()->setText(m_table->csv(rows));
}

void ValuesPage::showMoment(qint64 nowMs)
{
    m_table->showMoment(nowMs);
    m_writeBar->showMoment(nowMs);
}

}  // namespace fxview
