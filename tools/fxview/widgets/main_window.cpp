// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/main_window.h"

#include "tools/fxview/widgets/theme.h"

#include <QCloseEvent>
#include <QEvent>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

namespace fxview {

namespace {

constexpr int refreshMs = 200;
constexpr qint64 longestClosingMs = 5000;

}  // namespace

MainWindow::MainWindow(PlcSource& source, const Clock& clock)
    : m_source(source), m_clock(clock), m_values(source.tags()), m_alarms(source.tags()),
      m_screenWrites(source), m_problems(new ProblemBar), m_pages(new QTabWidget),
      m_valuesPage(new ValuesPage(m_values)),
      m_screenPage(new ScreenPage(m_values, m_screenWrites)), m_trendPage(new TrendPage(m_values)),
      m_alarmPage(new AlarmPage(m_alarms)), m_recipePage(new RecipePage(source.tags())),
      m_linePage(new LinePage(m_values, source.isSimulated())), m_linkSign(new QLabel),
      m_linkText(new QLabel), m_lineText(new QLabel)
{
    setWindowTitle(source.isSimulated() ? tr("%1 (a simulated PLC) – fxview").arg(source.name())
                                        : tr("%1 – fxview").arg(source.name()));
    layOut();
    listen();
    listenToRecipes();
    listenToScreen();
    connect(m_pages, &QTabWidget::currentChanged, this, &MainWindow::showMoment);
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &MainWindow::showMoment);
    timer->start(refreshMs);
    showMoment();
}

// The pages look into the books, which end before what a window owns.
MainWindow::~MainWindow()
{
    delete takeCentralWidget();
}

void MainWindow::layOut()
{
    auto* centre = new QWidget;
    auto* rows = new QVBoxLayout(centre);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(m_problems);
    rows->addWidget(m_pages, 1);
    setCentralWidget(centre);
    m_pages->setDocumentMode(true);
    m_pages->setAccessibleName(tr("Pages"));
    m_pages->addTab(m_valuesPage, tr("&Values"));
    m_pages->addTab(m_screenPage, tr("S&creen"));
    m_pages->addTab(m_trendPage, tr("&Trends"));
    m_pages->addTab(m_alarmPage, tr("&Alarms"));
    m_pages->addTab(m_recipePage, tr("&Recipes"));
    m_pages->addTab(m_linePage, tr("&Line"));
    m_alarmPage->bell = &QApplication::beep;
    statusBar()->addWidget(m_linkSign);
    statusBar()->addWidget(m_linkText, 1);
    if (m_source.isSimulated()) {
        auto* simulated = new QLabel(tr("Simulated PLC"));
        simulated->setContentsMargins(0, 0, fontMetrics().height(), 0);
        statusBar()->addPermanentWidget(simulated);
    }
    statusBar()->addPermanentWidget(m_lineText);
    resize(QSize(1024, 600).boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    m_linkText->setTextFormat(Qt::PlainText);
    m_linkText->setText(tr("Connecting…"));
}

void MainWindow::listen()
{
    connect(&m_source, &PlcSource::readings, this, &MainWindow::take);
    connect(&m_source, &PlcSource::linkChanged, this, &MainWindow::showLink);
    connect(&m_source, &PlcSource::lineReport, this, [this](const LineReport& report) {
        m_lineText->setText(loadText(report));
        m_linePage->take(report);
    });
    connect(&m_source, &PlcSource::exchanges, this,
            [this](const QVector<fxtools::Exchange>& exchanges) { m_linePage->take(exchanges); });
    connect(m_linePage, &LinePage::commanded, &m_source, &PlcSource::benchCommand);
    connect(&m_source, &PlcSource::benchRefused, this,
            [this](const QString& command, const QString& reason) {
                m_problems->set(Problem::Command, tr("'%1': %2").arg(command, reason));
            });
    connect(m_valuesPage, &ValuesPage::trendAsked, this, [this](int tag) {
        m_trendPage->add(tag);
        m_pages->setCurrentWidget(m_trendPage);
    });
    connect(m_trendPage, &TrendPage::exportFailed, this,
            [this](const QString& text) { m_problems->set(Problem::Export, text); });
    connect(m_alarmPage, &AlarmPage::openChanged, this, [this](int unacknowledged) {
        m_pages->setTabText(m_pages->indexOf(m_alarmPage),
                            unacknowledged == 0 ? tr("&Alarms")
                                                : tr("&Alarms (%1)").arg(unacknowledged));
    });
    WriteBar& writeBar = m_valuesPage->writeBar();
    connect(&writeBar, &WriteBar::writeConfirmed, &m_source, &PlcSource::write);
    connect(&m_source, &PlcSource::written, &writeBar, &WriteBar::take);
}

// The one who closes the window in the middle of a download sees first what is in the PLC by then.
// Who closes it once more sees it at the next start. It closes when all push buttons are known to
// be released, or after a while.
void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_recipePage->isDownloading() && !std::exchange(m_mustClose, true)) {
        event->ignore();
        m_recipePage->cancel();
        m_pages->setCurrentWidget(m_recipePage);
        return;
    }
    m_screenWrites.end();
    if (!m_closingMs)
        m_closingMs = m_clock();
    const bool isTooLate = std::abs(m_clock() - *m_closingMs) >= longestClosingMs;
    event->setAccepted(m_screenWrites.isReleased() || isTooLate);
}

// As by a person who closes it, and once more when what is written by then is known.
void MainWindow::closeSoon()
{
    if (!m_mustClose || !m_recipePage->isDownloading())
        close();
}

// What cannot be released in this time is told to whoever started the program.
void MainWindow::goOnClosing()
{
    if (!m_closingMs || !isVisible())
        return;
    if (std::abs(m_clock() - *m_closingMs) >= longestClosingMs) {
        for (const int tag : m_screenWrites.overdue()) {
            qWarning("fxview: %s may still be on: its release was not confirmed",
                     qPrintable(m_values.tag(tag).name));
        }
        close();
    }
}

void MainWindow::take(const QVector<Reading>& readings)
{
    for (const Reading& reading : readings) {
        m_values.take(reading);
        m_alarms.take(reading);
    }
    if (!std::exchange(m_hasReadings, true))
        showMoment();  // the first ones at once
}

void MainWindow::keepAlarmsIn(const QString& file)
{
    m_alarmWriter.emplace(file);
    m_alarms.onEvent = [this](const AlarmEvent& event) {
        m_alarmWriter->add(event, m_alarms.tag(event.tag));
    };
    connect(&*m_alarmWriter, &AlarmWriter::tried, this, [this](const QString& problem) {
        if (problem.isEmpty())
            m_problems->clear(Problem::AlarmFile);
        else
            m_problems->set(Problem::AlarmFile, problem);
    });
}

// A PLC that falls silent counts as one that answers for a few attempts more; its values do not.
void MainWindow::showQuality()
{
    Quality best = m_values.size() == 0 || !m_hasReadings ? Quality::Good : Quality::Stale;
    for (int tag = 0; tag < m_values.size() && best != Quality::Good; ++tag) {
        if (m_values.qualityAt(tag, m_clock()) == Quality::Good)
            best = Quality::Good;
    }
    if (m_linkQuality && *m_linkQuality != Quality::Bad && *m_linkQuality != best)
        showLinkAs(best);
}

void MainWindow::showLinkAs(Quality quality)
{
    m_linkQuality = quality;
    showLinkSign();
    m_linkText->setText(quality == Quality::Good  ? tr("%1 answers").arg(m_source.name())
                        : quality == Quality::Bad ? tr("%1 does not answer").arg(m_source.name())
                                                  : tr("%1: no new values").arg(m_source.name()));
}

void MainWindow::showLink(bool isUp, const QString& reason)
{
    showLinkAs(isUp ? Quality::Good : Quality::Bad);
    m_valuesPage->writeBar().setLinkUp(isUp);
    m_recipePage->setLinkUp(isUp);
    if (isUp) {
        m_problems->clear(Problem::LinkLost);
    } else {
        m_screenPage->forgetWhatWasDone();
        m_problems->set(Problem::LinkLost,
                        tr("%1 does not answer: %2. Check the cable and the power of the PLC; "
                           "the window goes on trying.")
                            .arg(m_source.name(), reason));
    }
}

void MainWindow::showLinkSign()
{
    const Quality quality = *m_linkQuality;
    m_linkSign->setPixmap(signPixmap(signOf(quality), colourOf(meaningOf(quality), palette()),
                                     fontMetrics().height(), devicePixelRatioF()));
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_linkQuality)
        showLinkSign();
}

void MainWindow::tellThatNothingStarts(const QString& reason)
{
    m_linkText->setText(tr("not connected"));
    m_problems->set(Problem::Start, tr("%1. Mend this and start fxview again.").arg(reason));
}

QStringList MainWindow::tagsNotGood() const
{
    QStringList names;
    for (int tag = 0; tag < m_values.size(); ++tag) {
        if (m_values.qualityAt(tag, m_clock()) != Quality::Good)
            names += m_values.tag(tag).name;
    }
    return names;
}

void MainWindow::tellOfMistakes(const QString& mistakes)
{
    m_problems->set(Problem::TagFile, tr("%1. Rows with a mistake are left out: there is no value, "
                                         "no alarm for them. Mend the file and start fxview again.")
                                          .arg(mistakes));
}

void MainWindow::showMoment()
{
    const qint64 nowMs = m_clock();
    m_screenWrites.showMoment(nowMs);
    goOnClosing();
    showQuality();
    if (m_pages->currentWidget() == m_valuesPage)
        m_valuesPage->showMoment(nowMs);
    else if (m_pages->currentWidget() == m_screenPage)
        m_screenPage->showMoment(nowMs);
    else if (m_pages->currentWidget() == m_trendPage)
        m_trendPage->showMoment(nowMs);
    m_recipePage->showMoment(nowMs);
    m_linePage->showMoment(nowMs);
    m_alarmPage->showMoment(nowMs);  // its bell is heard on every page
}

}  // namespace fxview
