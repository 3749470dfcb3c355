// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/screen_page.h"

#include "tools/fxview/screens/plain_screen.h"
#include "tools/fxview/screens/widgets/element_controls.h"
#include "tools/fxview/screens/widgets/element_grid.h"
#include "tools/fxview/widgets/write_bar.h"

#include <QDateTime>
#include <QScrollArea>
#include <QTabBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace fxview {

namespace {

constexpr int linesOfMistakes = 5;

}  // namespace

ScreenPage::ScreenPage(const ValueBook& book, ScreenWrites& writes, QWidget* parent)
    : QWidget(parent), m_book(book), m_writes(writes), m_pages(new QTabWidget(this)),
      m_said(new QLabel(this)), m_mistakes(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("screenPage"));
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(m_pages, 1);
    rows->addWidget(m_said);
    rows->addWidget(m_mistakes);
    m_pages->setDocumentMode(true);
    m_pages->setTabBarAutoHide(true);
    m_pages->setAccessibleName(tr("Pages of the screen"));
    m_pages->tabBar()->setAccessibleName(tr("Pages of the screen"));
    m_said->setTextFormat(Qt::PlainText);
    m_said->setWordWrap(true);
    m_said->setMinimumHeight(fontMetrics().lineSpacing());  // no button moves under the mouse
    m_mistakes->setReadOnly(true);
    m_mistakes->setTabChangesFocus(true);
    m_mistakes->setAccessibleName(tr("Mistakes in the screen file"));
    m_mistakes->setFixedHeight(fontMetrics().lineSpacing() * (linesOfMistakes + 1));
    m_mistakes->hide();
    connect(m_pages, &QTabWidget::currentChanged, this, &ScreenPage::fill);
    connect(&writes, &ScreenWrites::changed, this, [this] { showMoment(m_nowMs); });
    connect(&writes, &ScreenWrites::told, this, [this](const WriteResult& result) {
        const QTime time = QDateTime::fromMSecsSinceEpoch(m_nowMs).time();
        m_said->setText(time.toString(Qt::ISODate) + "  " +
                        resultText(m_book.tag(result.tag), result));
        m_saysDone = result.outcome == WriteResult::Outcome::Done;
        for (const QVector<ElementView*>& views : qAsConst(m_views)) {
            for (ElementView* view : views)
                view->noteResult(result);
        }
    });
    showScreen(plainScreen(tags()));
}

QVector<fxtools::Tag> ScreenPage::tags() const
{
    QVector<fxtools::Tag> tags;
    for (int tag = 0; tag < m_book.size(); ++tag)
        tags.append(m_book.tag(tag));
    return tags;
}

void ScreenPage::open(const QString& file)
{
    m_file = file;
    m_watch = std::make_unique<ScreenWatch>(file);
    connect(m_watch.get(), &ScreenWatch::changed, this, &ScreenPage::load);
    showScreen({});
    load();
}

// A file that cannot be read at all leaves what is shown, and what is wrong with that.
void ScreenPage::load()
{
    const ScreenFile file = readScreenFile(m_file, tags());
    QStringList lines;
    for (const fxtools::Mistake& mistake : file.mistakes)
        lines += mistake.in(m_file);
    if (file.screen) {
        showScreen(*file.screen);
        m_shownMistakes = lines;
    } else if (!m_screen.pages.isEmpty()) {
        lines.last() = tr("%1. The last good screen is still shown.").arg(lines.last());
        for (const QString& mistake : qAsConst(m_shownMistakes))
            lines += tr("of the screen that is shown: %1").arg(mistake);
    }
    m_mistakes->setPlainText(lines.join('\n'));
    m_mistakes->setVisible(!lines.isEmpty());
    emit mistakesFound(lines);
}

// What was done before says nothing of values that are old now.
void ScreenPage::forgetWhatWasDone()
{
    if (std::exchange(m_saysDone, false))
        m_said->clear();
}

void ScreenPage::showScreen(const Screen& screen)
{
    m_writes.releaseAll();
    const int shown = std::max(m_pages->currentIndex(), 0);
    const QSignalBlocker untilAllAreThere(m_pages);
    m_screen = screen;
    m_views.clear();
    while (m_pages->count() > 0)
        delete m_pages->widget(0);
    for (const GridPage& page : qAsConst(m_screen.pages)) {
        auto* scroll = new QScrollArea;
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setFocusPolicy(Qt::NoFocus);
        scroll->setWidgetResizable(true);
        m_pages->addTab(scroll, QString(page.title).replace('&', QLatin1String("&&")));
        m_views.append(QVector<ElementView*>());
    }
    m_pages->setCurrentIndex(std::min(shown, m_pages->count() - 1));
    fill(m_pages->currentIndex());
}

// In the order of their places, so that the Tab key goes from one to the next.
void ScreenPage::fill(int number)
{
    auto* scroll = number < 0 ? nullptr : qobject_cast<QScrollArea*>(m_pages->widget(number));
    if (!scroll)
        return;
    if (!scroll->widget()) {
        const GridPage& page = m_screen.pages[number];
        auto* grid = new ElementGrid(page.columns, page.rows);
        for (const Element& element : page.elements) {
            ElementView* view = makeElementView(element, m_book, m_writes, grid);
            grid->add(view);
            m_views[number].append(view);
        }
        scroll->setWidget(grid);
    }
    showMoment(m_nowMs);
}

void ScreenPage::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    for (ElementView* view : m_views.value(m_pages->currentIndex()))
        view->showMoment(nowMs);
}

}  // namespace fxview
