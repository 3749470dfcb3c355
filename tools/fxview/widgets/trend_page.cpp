// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/trend_page.h"

#include "tools/fxview/widgets/scrolled.h"
#include "tools/fxview/widgets/theme.h"
#include "tools/library/output_file.h"

#include <QBuffer>
#include <QCompleter>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QMenu>
#include <QStandardPaths>
#include <QSvgGenerator>
#include <QVBoxLayout>

namespace fxview {

namespace {

constexpr int legendColumns = 5;
constexpr int firstCurves = 3;

struct Length
{
    const char* text;
    qint64 ms;
};
constexpr std::array<Length, 6> lengths = {{
    {QT_TRANSLATE_NOOP("fxview::TrendPage", "10 seconds"), 10000},
    {QT_TRANSLATE_NOOP("fxview::TrendPage", "1 minute"), 60000},
    {QT_TRANSLATE_NOOP("fxview::TrendPage", "10 minutes"), 600000},
    {QT_TRANSLATE_NOOP("fxview::TrendPage", "1 hour"), 3600000},
    {QT_TRANSLATE_NOOP("fxview::TrendPage", "8 hours"), 28800000},
    {QT_TRANSLATE_NOOP("fxview::TrendPage", "1 day"), TrendSpan::longestMs},
}};

QString extentText(const fxtools::Tag& tag, const Extent& extent)
{
    if (extent.isEmpty())
        return QStringLiteral("–");
    const auto text = [&tag](double value) {
        return tag.isOneBit() ? valueText(tag, value) : QString::number(value, 'g', 10);
    };
    return extent.lowest == extent.highest
               ? text(extent.lowest)
               : text(extent.lowest) + QStringLiteral(" … ") + text(extent.highest);
}

QString differenceText(const fxtools::Tag& tag, double difference)
{
    return tag.isOneBit() ? QStringLiteral("–") : extentText(tag, {difference, difference});
}

// "48 s", "2.5 min", "19.2 h".
QString lengthText(qint64 lengthMs)
{
    constexpr double second = 1000, minute = 60 * second, hour = 60 * minute;
    const auto length = static_cast<double>(lengthMs);
    if (length < 2 * minute)
        return QString::number(length / second, 'g', 3) + " s";
    return length < 2 * hour ? QString::number(length / minute, 'g', 3) + " min"
                             : QString::number(length / hour, 'g', 3) + " h";
}

}  // namespace

TrendPage::TrendPage(const ValueBook& book, QWidget* parent)
    : QWidget(parent), m_book(book), m_view(new TrendView(book, this)), m_add(new QLineEdit(this)),
      m_length(new QComboBox(this)), m_follow(new QCheckBox(tr("&Follow"), this)),
      m_legend(new QTableWidget(0, legendColumns, this)), m_said(new QLabel(this))
{
    auto* rows = new QVBoxLayout(scrolledIn(this));
    rows->addLayout(topRow());
    rows->addWidget(m_view, 1);
    rows->addWidget(m_legend);
    rows->addWidget(m_said);
    m_said->setWordWrap(true);
    m_said->setTextFormat(Qt::PlainText);
    m_said->hide();
    m_legend->setAccessibleName(tr("Values at the cursors"));
    m_legend->setHorizontalHeaderLabels(
        {tr("Curve"), tr("Now"), tr("At A"), tr("At B"), tr("B − A")});
    m_legend->verticalHeader()->hide();
    m_legend->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_legend->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_legend->setTabKeyNavigation(false);
    m_legend->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_legend->setMaximumHeight(fontMetrics().height() * 8);
    connect(m_view, &TrendView::changed, this, [this] {
        showSpan();
        showLegend();
    });
    addFirst();
    showSpan();
}

// Something to look at from the beginning: numbers, or bits where there are none.
void TrendPage::addFirst()
{
    for (const bool isBit : {false, true}) {
        for (int tag = 0; tag < m_book.size() && m_view->tags().size() < firstCurves; ++tag) {
            const fxtools::Tag& each = m_book.tag(tag);
            if (isBit ? each.isOneBit() : each.isNumber())
                add(tag);
        }
        if (!m_view->tags().isEmpty())
            return;
    }
}

QLayout* TrendPage::topRow()
{
    QStringList names;
    for (int tag = 0; tag < m_book.size(); ++tag)
        names += m_book.tag(tag).name;
    auto* completer = new QCompleter(names, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_add->setCompleter(completer);
    m_add->setPlaceholderText(tr("Add a tag"));
    m_add->setAccessibleName(tr("Add a tag"));
    connect(m_add, &QLineEdit::returnPressed, this, &TrendPage::addTyped);
    auto* remove = new QPushButton(tr("Re&move"), this);
    connect(remove, &QPushButton::clicked, this, &TrendPage::removeChosen);
    m_length->setAccessibleName(tr("How much time"));
    for (const Length& length : lengths)
        m_length->addItem(tr(length.text), length.ms);
    connect(m_length, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        m_view->span().setLength(m_length->itemData(index).toLongLong());
        m_view->update();
        showSpan();
    });
    connect(m_follow, &QCheckBox::clicked, this, [this](bool isFollowing) {
        if (isFollowing)
            m_view->span().follow();
        else
            m_view->span().stop(m_view->nowMs());
        m_view->update();
    });
    auto* save = new QPushButton(tr("&Export"), this);
    save->setMenu(new QMenu(save));
    for (const char* form : {"csv", "svg", "png"})
        save->menu()->addAction(QString(form).toUpper(), this,
                                [this, form] { exportAs(QString::fromLatin1(form)); });
    auto* row = new QHBoxLayout;
    row->addWidget(m_add, 1);
    for (QWidget* widget : QList<QWidget*>{remove, m_length, m_follow, save})
        row->addWidget(widget);
    return row;
}

void TrendPage::add(int tag)
{
    QVector<int> tags = m_view->tags();
    if (tags.contains(tag))
        return;
    if (tags.size() == TrendView::mostCurves)
        tags.removeFirst();
    m_view->setTags(tags << tag);
    showLegend();
}

void TrendPage::addTyped()
{
    for (int tag = 0; tag < m_book.size(); ++tag) {
        if (m_book.tag(tag).name.compare(m_add->text().trimmed(), Qt::CaseInsensitive) == 0) {
            add(tag);
            // After the completer, which puts back what was chosen.
            QMetaObject::invokeMethod(m_add, &QLineEdit::clear, Qt::QueuedConnection);
            return;
        }
    }
}

void TrendPage::removeChosen()
{
    QVector<int> tags = m_view->tags();
    const int row = m_legend->currentRow() < 0 ? tags.size() - 1 : m_legend->currentRow();
    if (row < 0 || row >= tags.size())
        return;
    tags.remove(row);
    m_view->setTags(tags);
    showLegend();
}

void TrendPage::showMoment(qint64 nowMs)
{
    m_view->showMoment(nowMs);
    showLegend();
}

// A length that was zoomed to stands in the list until another one is chosen.
void TrendPage::showSpan()
{
    const qint64 lengthMs = m_view->span().lengthMs();
    m_length->removeItem(lengths.size());
    if (m_length->findData(lengthMs) < 0)
        m_length->addItem(lengthText(lengthMs), lengthMs);
    m_length->setCurrentIndex(m_length->findData(lengthMs));
    m_follow->setChecked(!m_view->span().isStopped());
}

void TrendPage::showLegend()
{
    const QVector<int>& tags = m_view->tags();
    const TrendView::Cursors& cursors = m_view->cursors();
    m_legend->setVisible(!tags.isEmpty());
    m_legend->setRowCount(tags.size());
    for (int row = 0; row < tags.size(); ++row) {
        const int tag = tags[row];
        const auto at = [&](const std::optional<qint64>& timeMs) {
            return timeMs ? m_view->valueAt(tag, *timeMs) : Extent();
        };
        const Extent first = at(cursors.first);
        const Extent second = at(cursors.second);
        const fxtools::Tag& each = m_book.tag(tag);
        const QStringList cells = {m_view->titleOf(row),
                                   m_book.hasValue(tag, m_view->nowMs())
                                       ? valueText(each, m_book.state(tag).value)
                                       : QStringLiteral("–"),
                                   extentText(each, first), extentText(each, second),
                                   differenceText(each, second.highest - first.highest)};
        for (int column = 0; column < legendColumns; ++column) {
            if (!m_legend->item(row, column))
                m_legend->setItem(row, column, new QTableWidgetItem);
            m_legend->item(row, column)->setText(cells[column]);
        }
        m_legend->item(row, 0)->setForeground(curveColour(row, palette()));
    }
    const bool hasBoth = cursors.first && cursors.second;
    m_legend->horizontalHeaderItem(legendColumns - 1)
        ->setText(hasBoth ? tr("B − A, in %1 s")
                                .arg(static_cast<double>(*cursors.second - *cursors.first) / 1000)
                          : tr("B − A"));
}

QByteArray TrendPage::contentAs(const QString& form) const
{
    if (form == QLatin1String("csv"))
        return m_view->csv().toUtf8();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (form == QLatin1String("png")) {
        m_view->grab().save(&buffer, "PNG");
        return buffer.data();
    }
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(m_view->size());
    generator.setViewBox(m_view->rect());
    generator.setTitle(tr("Trend"));
    QPainter painter(&generator);
    m_view->paintOn(painter, m_view->rect());
    painter.end();
    return buffer.data();
}

QString TrendPage::exportTo(const QString& folder, const QString& form) const
{
    const QString moment = QDateTime::fromMSecsSinceEpoch(m_view->nowMs())
                               .toString(QStringLiteral("yyyyMMdd-hhmmss-zzz"));
    QFile file(QDir(folder).filePath(QStringLiteral("trend-%1.%2").arg(moment, form)));
    const QByteArray content = contentAs(form);
    const auto fail = [&file](const QString& reason) {
        throw fxtools::Failure(fxtools::ExitCode::File,
                               tr("The trend was not saved: %1: %2. Make room on the disk, or make "
                                  "the folder writable.")
                                   .arg(file.fileName(), reason));
    };
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        fail(file.errorString());
    if (!fxtools::writeWhole(file, content)) {
        const QString reason = file.errorString();
        file.remove();  // a part of it
        fail(reason);
    }
    return file.fileName();
}

void TrendPage::exportAs(const QString& form)
{
    try {
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        QDir().mkpath(folder);
        m_said->setText(tr("Saved as %1").arg(exportTo(folder, form)));
        m_said->show();
    } catch (const fxtools::Failure& failure) {
        emit exportFailed(failure.text());
    }
}

}  // namespace fxview
