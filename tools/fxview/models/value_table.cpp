// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/value_table.h"

#include "tools/library/csv.h"

#include <QCollator>
#include <QDateTime>

#include <algorithm>
#include <numeric>

namespace fxview {

namespace {

constexpr qint64 reorderMs = 2000;  // rows that jump about more often cannot be read

// By what a row is sorted: by a number, and where that is the same as in the tag file.
struct SortKey
{
    double number;
    int tag;
};

double numberOf(const ValueBook& book, int tag, int column, qint64 nowMs)
{
    switch (column) {
    case ValueTable::Value:
    case ValueTable::Trend:
        return book.hasValue(tag, nowMs)
                   ? book.state(tag).value.toDouble(-std::numeric_limits<double>::max())
                   : -std::numeric_limits<double>::infinity();
    case ValueTable::Age: {
        const qint64 ageMs = book.ageMs(tag, nowMs);
        return ageMs < 0 ? std::numeric_limits<double>::infinity() : static_cast<double>(ageMs);
    }
    case ValueTable::State:
        return (book.alarm(tag, nowMs).isEmpty() ? 0 : 0.5) +
               static_cast<int>(book.qualityAt(tag, nowMs));
    default:
        return 0;
    }
}

}  // namespace

QString qualityText(Quality quality)
{
    switch (quality) {
    case Quality::Good:
        return ValueTable::tr("good");
    case Quality::Stale:
        return ValueTable::tr("stale");
    case Quality::Bad:
        break;
    }
    return ValueTable::tr("bad");
}

ValueTable::ValueTable(const ValueBook& book, QObject* parent)
    : QAbstractTableModel(parent), m_book(book), m_rows(book.size())
{
    std::iota(m_rows.begin(), m_rows.end(), 0);
    for (int tag = 0; tag < book.size(); ++tag) {
        const fxtools::Tag& each = book.tag(tag);
        m_searched += QStringList{each.name, each.asked.text(), each.unit, each.description}
                          .join('\n')
                          .toLower();
    }
}

int ValueTable::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int ValueTable::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant ValueTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Name");
    case Value:
        return tr("Value");
    case Trend:
        return tr("Last minute");
    case Age:
        return tr("Age");
    case State:
        return tr("State");
    case Address:
        return tr("Address");
    default:
        return tr("Description");
    }
}

QString ValueTable::stateText(int tag) const
{
    const QString quality = qualityText(m_book.qualityAt(tag, m_nowMs));
    const QString reason = m_book.reasonAt(tag, m_nowMs);
    const QString alarm = m_book.alarm(tag, m_nowMs);
    QString text = reason.isEmpty() ? quality : quality + ": " + reason;
    if (alarm.isEmpty())
        return text;
    return (alarm == QLatin1String("low") ? tr("ALARM low") : tr("ALARM high")) +
           (m_book.qualityAt(tag, m_nowMs) == Quality::Good ? QString() : ", " + text);
}

QString ValueTable::toolTip(int tag) const
{
    const fxtools::Tag& each = m_book.tag(tag);
    QStringList lines{each.name + "  " + each.asked.text()};
    if (!each.description.isEmpty())
        lines += each.description;
    lines += stateText(tag);
    return lines.join('\n');
}

QString ValueTable::text(int tag, int column) const
{
    switch (column) {
    case Name:
        return m_book.tag(tag).name;
    case Value:
        return m_book.hasValue(tag, m_nowMs)
                   ? valueWithUnit(m_book.tag(tag), m_book.state(tag).value)
                   : QStringLiteral("–");
    case Trend:
        return {};
    case Age:
        return ageText(m_book.ageMs(tag, m_nowMs));
    case State:
        return stateText(tag);
    case Address:
        return m_book.tag(tag).asked.text();
    default:
        return m_book.tag(tag).description;
    }
}

QVariant ValueTable::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int tag = m_rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return text(tag, index.column());
    case Qt::ToolTipRole:
        return toolTip(tag);
    case Qt::TextAlignmentRole:
        return int(
            Qt::AlignVCenter |
            (index.column() == Value || index.column() == Age ? Qt::AlignRight : Qt::AlignLeft));
    case TagRole:
        return tag;
    case QualityRole:
        return static_cast<int>(m_book.qualityAt(tag, m_nowMs));
    case AlarmRole:
        return m_book.alarm(tag, m_nowMs);
    case LampRole:
        if (m_book.tag(tag).isOneBit() && m_book.hasValue(tag, m_nowMs))
            return m_book.state(tag).value.toDouble() != 0;
        return {};
    default:
        return {};
    }
}

void ValueTable::setFilter(const QString& words)
{
    beginResetModel();
    m_words = words.toLower().split(' ', Qt::SkipEmptyParts).toVector();
    m_rows.clear();
    for (int tag = 0; tag < m_book.size(); ++tag) {
        if (std::all_of(m_words.begin(), m_words.end(),
                        [&](const QString& word) { return m_searched[tag].contains(word); }))
            m_rows += tag;
    }
    order();
    endResetModel();
}

void ValueTable::sort(int column, Qt::SortOrder order)
{
    m_sortColumn = column;
    m_sortOrder = order;
    reorder();
}

// As people sort names: pump2 before pump10.
const QVector<int>& ValueTable::places(int column)
{
    QVector<int>& places = m_places[static_cast<size_t>(column)];
    if (!places.isEmpty())
        return places;
    QCollator collator(QLocale{QLocale::English});  // the plain locale counts no numbers
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<std::pair<QCollatorSortKey, int>> tags;
    tags.reserve(static_cast<size_t>(m_book.size()));
    for (int tag = 0; tag < m_book.size(); ++tag)
        tags.emplace_back(collator.sortKey(text(tag, column)), tag);
    std::sort(tags.begin(), tags.end(), [](const auto& one, const auto& other) {
        const int order = one.first.compare(other.first);
        return order != 0 ? order < 0 : one.second < other.second;
    });
    places.resize(m_book.size());
    for (size_t place = 0; place < tags.size(); ++place) {
        const bool isSame = place > 0 && tags[place].first.compare(tags[place - 1].first) == 0;
        places[tags[place].second] =
            isSame ? places[tags[place - 1].second] : static_cast<int>(place);
    }
    return places;
}

// Without a column, as in the tag file.
void ValueTable::order()
{
    m_orderedMs = m_nowMs;
    if (m_sortColumn < 0) {
        std::sort(m_rows.begin(), m_rows.end());
        return;
    }
    const bool isText = m_sortColumn == Name || m_sortColumn > State;
    std::vector<SortKey> keys;
    keys.reserve(static_cast<size_t>(m_rows.size()));
    for (const int tag : qAsConst(m_rows))
        keys.push_back(
            {isText ? places(m_sortColumn)[tag] : numberOf(m_book, tag, m_sortColumn, m_nowMs),
             tag});
    const bool isRising = m_sortOrder == Qt::AscendingOrder;
    std::sort(keys.begin(), keys.end(), [isRising](const SortKey& one, const SortKey& other) {
        if (one.number != other.number)
            return isRising == (one.number < other.number);
        return one.tag < other.tag;
    });
    std::transform(keys.begin(), keys.end(), m_rows.begin(),
                   [](const SortKey& key) { return key.tag; });
}

// What is selected stays selected, wherever its row goes.
void ValueTable::reorder()
{
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QVector<int> before = m_rows;
    order();
    QVector<int> rowOfTag(m_book.size(), -1);
    for (int row = 0; row < m_rows.size(); ++row)
        rowOfTag[m_rows[row]] = row;
    const QModelIndexList old = persistentIndexList();
    QModelIndexList moved;
    for (const QModelIndex& each : old)
        moved += index(rowOfTag[before[each.row()]], each.column());
    changePersistentIndexList(old, moved);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void ValueTable::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    if (m_rows.isEmpty())
        return;
    if (isMoving() && std::abs(nowMs - m_orderedMs) >= reorderMs)
        reorder();
    emit dataChanged(index(0, Value), index(m_rows.size() - 1, State));
}

QString ValueTable::csv(const QVector<int>& rows) const
{
    QString csv = fxtools::csvLine({tr("name"), tr("address"), tr("value"), tr("unit"), tr("state"),
                                    tr("read (UTC)"), tr("description")}) +
                  '\n';
    for (const int row : rows) {
        const int tag = m_rows[row];
        const TagState& state = m_book.state(tag);
        const fxtools::Tag& each = m_book.tag(tag);
        const bool hasValue = m_book.hasValue(tag, m_nowMs);
        csv += fxtools::csvLine(
                   {each.name, each.asked.text(), hasValue ? valueText(each, state.value) : "",
                    each.unit, stateText(tag),
                    state.readMs == 0 ? QString()
                                      : QDateTime::fromMSecsSinceEpoch(state.readMs, Qt::UTC)
                                            .toString(Qt::ISODateWithMs),
                    each.description}) +
               '\n';
    }
    return csv;
}

}  // namespace fxview
