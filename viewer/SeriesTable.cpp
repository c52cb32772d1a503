#include "viewer/SeriesTable.h"

#include "analysis/Statistics.h"
#include "instrument/NumberText.h"

#include <algorithm>

int SeriesTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows.size();
}

int SeriesTable::columnCount(const QModelIndex &parent) const
{
    constexpr int columns = 6;
    return parent.isValid() ? 0 : columns;
}

QVariant SeriesTable::data(const QModelIndex &index, int role) const
{
    const Row &row = rows[index.row()];
    if (role == Qt::DisplayRole) {
        return row.cells[index.column()];
    }
    if (role == Qt::TextAlignmentRole && index.column() > 0) {
        return int(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role == Qt::ToolTipRole) {
        const QString &remark = row.series.oscilloscope.remark;
        return row.series.fileName + (remark.isEmpty() ? QString() : '\n' + remark);
    }
    return {};
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
    for (const Series &one : series) {
        remove(one.fileName);
        Row row = {one, {seriesName(one), QString::number(one.count())}};
        for (const DelayKind kind : delayKinds) {
            const QVector<double> values = selectValues(one, kind, false);
            row.cells +=
                values.isEmpty() ? QString("-") : numberText(computeStatistics(values).median);
        }
        row.cells += one.oscilloscope.contradicts ? "wrong" : QString::number(flaggedCount(one));
        const auto *place = std::find_if(rows.cbegin(), rows.cend(), [&](const Row &other) {
            return other.series.time < one.time;
        });
        const int index = static_cast<int>(place - rows.cbegin());
        beginInsertRows({}, index, index);
        rows.insert(index, row);
        endInsertRows();
    }
}

void SeriesTable::remove(const QString &fileName)
{
    const int index = find(fileName);
    if (index >= 0) {
        beginRemoveRows({}, index, index);
        rows.remove(index);
        endRemoveRows();
    }
}

int SeriesTable::find(const QString &fileName) const
{
    const auto *found = std::find_if(rows.cbegin(), rows.cend(), [&](const Row &row) {
        return row.series.fileName == fileName;
    });
    return found == rows.cend() ? -1 : static_cast<int>(found - rows.cbegin());
}
