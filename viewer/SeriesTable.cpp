#include "viewer/SeriesTable.h"

#include "analysis/DelayText.h"
#include "analysis/Statistics.h"

#include <QFileInfo>
#include <QTextDocument>

#include <limits>
#include <utility>

namespace {

enum Column
{
    Name,
    Count,
    FirstMedian,
    FlagCount = FirstMedian + static_cast<int>(delayKinds.size()),
    Columns,
};

/// What stands in the column of flags: a series with wrong delays needs attention first.
QPair<QString, double> flagCell(const Series &series)
{
    if (!series.hasReadTraces) {
        return {"...", -1.0};
    }
    if (series.oscilloscope.contradicts) {
        return {"wrong", std::numeric_limits<double>::infinity()};
    }
    const int count = flaggedCount(series);
    if (count == 0 && !series.oscilloscope.type) {
        return {"no type", 0.5};
    }
    return {QString::number(count), double(count)};
}

} // namespace

SeriesTable::Row::Row(const Series &from)
    : series(from),
      cells{seriesName(from), QString::number(from.count())},
      sortKeys{from.time, from.count()}
{
    for (const DelayKind kind : delayKinds) {
        const Statistics of = computeStatistics(selectValues(from, kind, false));
        cells += delayText(of.median, samplingInterval(from));
        sortKeys += of.n == 0 ? -std::numeric_limits<double>::infinity() : of.median;
    }
    const auto [text, key] = flagCell(from);
    cells += text;
    sortKeys += key;
}

int SeriesTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows.size();
}

int SeriesTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Columns;
}

QVariant SeriesTable::data(const QModelIndex &index, int role) const
{
    const Row &row = rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return row.cells[index.column()];
    case SortRole:
        return row.sortKeys[index.column()];
    case FilterRole:
        return QString(row.cells[Name] + ' ' + QFileInfo(row.series.fileName).fileName());
    case Qt::TextAlignmentRole:
        return int((index.column() == Name ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    case Qt::ToolTipRole: // which would take a name for HTML
        return Qt::convertFromPlainText(row.series.fileName + '\n' +
                                        row.series.oscilloscope.remark);
    default:
        return {};
    }
}

QVariant SeriesTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical || role != Qt::DisplayRole) {
        return {};
    }
    return QStringList{"Series", "Count", "RF / ms", "HDMI / ms", "Sink / ms", "Flags"}[section];
}

void SeriesTable::add(const QVector<Series> &series)
{
    QVector<Row> added;
    for (const Series &one : series) {
        const int place = places.value(one.fileName, -1);
        if (place < 0) {
            places[one.fileName] = rows.size() + added.size();
            added += Row(one);
        } else {
            rows[place] = Row(one);
            emit dataChanged(index(place, Name), index(place, FlagCount));
        }
    }
    if (!added.isEmpty()) {
        beginInsertRows({}, rows.size(), rows.size() + added.size() - 1);
        rows += added;
        endInsertRows();
    }
}

void SeriesTable::remove(const QStringList &files)
{
    for (const QString &file : files) {
        const int place = places.value(file, -1);
        if (place >= 0) {
            beginRemoveRows({}, place, place);
            rows.remove(place);
            places.remove(file);
            for (int &other : places) {
                other -= other > place ? 1 : 0;
            }
            endRemoveRows();
        }
    }
}

void SeriesTable::readTraces(int row)
{
    if (!rows[row].series.hasReadTraces) {
        Series series = rows[row].series;
        addTraces(&series);
        const Row read(series);
        const QStringList before = std::exchange(rows[row], read).cells;
        for (int column = FirstMedian; column < Columns; ++column) {
            if (read.cells[column] != before[column]) {
                emit dataChanged(index(row, column), index(row, column)); // a view paints no more
            }
        }
    }
}

int SeriesTable::findUnread() const
{
    int newest = -1;
    for (int i = 0; i < rows.size(); ++i) {
        if (!rows[i].series.hasReadTraces &&
            (newest < 0 || rows[newest].series.time < rows[i].series.time)) {
            newest = i;
        }
    }
    return newest;
}
