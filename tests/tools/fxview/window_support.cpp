// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/fxview/window_support.h"

#include "tools/fxview/widgets/theme.h"

namespace view_tests {

namespace {

// The application, for all tests of the program.
class Screenless : public testing::Environment
{
public:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QApplication>(m_count, m_arguments);
        fxview::applyTheme(*m_application, false);
    }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    std::unique_ptr<QApplication> m_application;
};

const auto* const screenless = testing::AddGlobalTestEnvironment(new Screenless);

}  // namespace

QPushButton* Window::button(const char* text) const
{
    for (QPushButton* button : window.findChildren<QPushButton*>()) {
        if (button->text().remove('&') == QString::fromUtf8(text) && button->isVisible())
            return button;
    }
    return nullptr;
}

QString Window::texts(const char* objectName) const
{
    QStringList texts;
    for (const QLabel* label : window.findChild<QWidget*>(objectName)->findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty())
            texts += label->text();
    }
    return texts.join(" | ");
}

void Window::passMs(qint64 ms)
{
    nowMs += ms;
    window.showMoment();
}

}  // namespace view_tests
