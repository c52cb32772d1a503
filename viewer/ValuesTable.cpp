#include "viewer/ValuesTable.h"

#include "analysis/Csv.h"
#include "instrument/NumberText.h"

#include <QTableView>

#include <algorithm>

namespace {

enum Column
{
    Name,
    Number,
    FirstDelay,
    Reasons = FirstDelay + static_cast<int>(delayKinds.size()),
    Columns,
};

} // namespace

int ValuesTable::rowCount(const QModelIndex &parent) const
{
    int count = 0;
    for (const Series &series : selection) {
        count += series.count();
    }
    return parent.isValid() ? 0 : count;
}

int ValuesTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Columns;
}

QVariant ValuesTable::data(const QModelIndex &index, int role) const
{
    const int column = index.column();
    if (role == Qt::TextAlignmentRole && column >= Number && column < Reasons) {
        return int(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    int row = index.row();
    const auto *series = selection.cbegin();
    for (; row >= series->count(); ++series) {
        row -= series->count();
    }
    switch (column) {
    case Name:
        return seriesName(*series);
    case Number:
        return row + 1;
    case Reasons:
        return measurementFlags(*series, row);
    default:
        return numberText(
            series->results[static_cast<std::size_t>(column - FirstDelay)].values[row]);
    }
}

QVariant ValuesTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical || role != Qt::DisplayRole) {
        return {};
    }
    return QStringList{
        "Series", "Measurement", "RF / ms", "HDMI / ms", "Sink / ms", "Flags"}[section];
}

void ValuesTable::show(const QVector<Series> &series)
{
    beginResetModel();
    selection = series;
    endResetModel();
}

QString selectedText(const QTableView &view)
{
    QModelIndexList cells = view.selectionModel()->selectedIndexes();
    std::sort(cells.begin(), cells.end());
    QString text;
    for (int i = 0; i < cells.size(); ++i) {
        if (i > 0) {
            text += cells[i].row() == cells[i - 1].row() ? '\t' : '\n';
        }
        text += cells[i].data().toString();
    }
    return text;
}
