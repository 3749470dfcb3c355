// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/recipe_controls.h"

#include "tools/fxview/models/recipe_table.h"
#include "tools/fxview/widgets/recipe_page.h"
#include "tools/fxview/widgets/scrolled.h"

#include <QHeaderView>
#include <QVBoxLayout>

#include <array>

namespace fxview {

RecipeControls::RecipeControls(QWidget& page, QAbstractItemModel& table)
    : file(new QLineEdit(&page)), browse(new QPushButton(RecipePage::tr("&Browse…"), &page)),
      open(new QPushButton(RecipePage::tr("&Open"), &page)), registers(new QLineEdit(&page)),
      compare(new QPushButton(RecipePage::tr("Co&mpare"), &page)),
      download(new QPushButton(RecipePage::tr("&Download…"), &page)),
      upload(new QPushButton(RecipePage::tr("&Upload…"), &page)), view(new QTableView(&page)),
      said(new QLabel(&page)), progress(new QProgressBar(&page)),
      cancel(new QPushButton(RecipePage::tr("Canc&el"), &page)),
      yes(new QPushButton(RecipePage::tr("&Yes, write"), &page)),
      no(new QPushButton(RecipePage::tr("&No"), &page))
{
    name();
    setUp(table);
    layOut(page);
}

void RecipeControls::name() const
{
    file->setAccessibleName(RecipePage::tr("Recipe file"));
    file->setPlaceholderText(RecipePage::tr("recipe file"));
    registers->setAccessibleName(RecipePage::tr("Registers to upload"));
    registers->setPlaceholderText(RecipePage::tr("registers to upload, for example D1000:64 D200"));
    download->setToolTip(RecipePage::tr("From the file to the PLC"));
    upload->setToolTip(RecipePage::tr("From the PLC to the file"));
    said->setObjectName(QStringLiteral("recipeSaid"));
    said->setWordWrap(true);
    said->setTextFormat(Qt::PlainText);
    progress->setAccessibleName(RecipePage::tr("Progress"));
    for (QPushButton* button : {browse, open, compare, download, upload, cancel, yes, no})
        button->setAutoDefault(true);  // Enter presses it
}

void RecipeControls::layOut(QWidget& page) const
{
    auto* files = new QHBoxLayout;
    files->addWidget(new QLabel(RecipePage::tr("File"), &page));
    files->addWidget(file, 1);
    files->addWidget(browse);
    files->addWidget(open);
    auto* acts = new QHBoxLayout;
    acts->addWidget(new QLabel(RecipePage::tr("Registers"), &page));
    acts->addWidget(registers, 1);
    for (QPushButton* button : {compare, download, upload})
        acts->addWidget(button);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(said, 2);
    bottom->addWidget(progress, 1);
    for (QPushButton* button : {cancel, yes, no})
        bottom->addWidget(button);
    auto* rows = new QVBoxLayout(scrolledIn(&page));
    rows->addLayout(files);
    rows->addLayout(acts);
    rows->addWidget(view, 1);
    rows->addLayout(bottom);
}

void RecipeControls::setUp(QAbstractItemModel& table) const
{
    view->setModel(&table);
    view->setAccessibleName(RecipePage::tr("Recipe"));
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setAlternatingRowColors(true);
    view->setTabKeyNavigation(false);
    view->setWordWrap(false);
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() * 3 / 2);
    QHeaderView& header = *view->horizontalHeader();
    const int letter = view->fontMetrics().averageCharWidth();
    const std::array<int, RecipeTable::columns> letters = {12, 20, 12, 20, 30, 10};
    for (int column = 0; column < RecipeTable::columns; ++column)
        header.resizeSection(column, letters[static_cast<size_t>(column)] * letter);
    header.setSectionResizeMode(RecipeTable::State, QHeaderView::Stretch);
}

void RecipeControls::enable(const Possible& possible) const
{
    const bool isIdle = possible.isIdle;
    const bool hasFile = !file->text().trimmed().isEmpty();
    const bool isBusy = !isIdle && !possible.isAsking;
    for (QWidget* widget : {static_cast<QWidget*>(file), static_cast<QWidget*>(browse),
                            static_cast<QWidget*>(registers)})
        widget->setEnabled(isIdle);
    open->setEnabled(isIdle && hasFile);
    compare->setEnabled(isIdle && possible.isLinkUp && possible.isOpen);
    download->setEnabled(isIdle && possible.isLinkUp && possible.isOpen && possible.isAllowed);
    upload->setEnabled(isIdle && possible.isLinkUp && hasFile &&
                       !registers->text().trimmed().isEmpty());
    progress->setVisible(isBusy);
    cancel->setVisible(isBusy);
    yes->setVisible(possible.isAsking);
    no->setVisible(possible.isAsking);
}

}  // namespace fxview
