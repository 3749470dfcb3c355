// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A window without a screen in front of a PLC and a clock that do as the test says.

#pragma once

#include "tests/tools/fxview/view_support.h"
#include "tools/fxview/widgets/main_window.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

namespace view_tests {

struct Window : testing::Test
{
    explicit Window(const QVector<fxtools::Tag>& tags = someTags()) : plc(tags)
    {
        window.show();
        QApplication::setActiveWindow(&window);
    }

    template <typename Widget>
    Widget* find(const char* accessibleName) const
    {
        for (Widget* widget : window.findChildren<Widget*>()) {
            if (widget->accessibleName() == QLatin1String(accessibleName))
                return widget;
        }
        return nullptr;
    }

    QPushButton* button(const char* text) const;  // by its text without "&"
    QString texts(const char* objectName) const;  // of the visible labels in it
    void passMs(qint64 ms);

    qint64 nowMs = view_tests::nowMs;
    FakePlc plc;
    fxview::MainWindow window{plc, [this] { return nowMs; }};
};

}  // namespace view_tests
