// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What stands on the page of recipes, and what of it can be used now.

#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>

namespace fxview {

struct RecipeControls
{
    RecipeControls(QWidget& page, QAbstractItemModel& table);

    struct Possible
    {
        bool isIdle = true;     // neither asks nor waits for the PLC
        bool isAsking = false;  // yes or no
        bool isLinkUp = false;
        bool isOpen = false;     // the file that is named
        bool isAllowed = false;  // to write what is in it
    };
    void enable(const Possible& possible) const;

    QLineEdit* file;
    QPushButton* browse;
    QPushButton* open;
    QLineEdit* registers;
    QPushButton* compare;
    QPushButton* download;
    QPushButton* upload;
    QTableView* view;
    QLabel* said;
    QProgressBar* progress;
    QPushButton* cancel;
    QPushButton* yes;
    QPushButton* no;

private:
    void name() const;
    void layOut(QWidget& page) const;
    void setUp(QAbstractItemModel& table) const;
};

}  // namespace fxview
