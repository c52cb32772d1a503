#include "viewer/SeriesTable.h"

#include "analysis/DelayText.h"
#include "analysis/Statistics.h"

#include <QFileInfo>
#include <QSignalBlocker>
#include <QTextDocument>

#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const QStringList headings{"Series (medians in ms)", "Count", "RF", "HDMI", "Sink", "Flags"};

/// The text of a cell, and the value by which it is sorted.
struct Cell
{
    QString text;
    QVariant sortKey;
};

/// Returns the cell for the flags. Wrong delays sort above any number of flags.
Cell flagCell(const Series &series)
{
    if (!series.hasReadTraces) {
        return {"...", -1.0};
    }
    if (series.oscilloscope.contradicts) {
        return {"wrong", infinity};
    }
    const int count = flaggedCount(series);
    if (count == 0 && !series.oscilloscope.type) {
        return {"no type", 0.5};
    }
    return {QString::number(count), double(count)};
}

QVector<Cell> cellsOf(const Series &series)
{
    QVector<Cell> cells{{seriesName(series), series.time},
                        {QString::number(series.count()), series.count()}};
    for (const DelayKind kind : delayKinds) {
        const Statistics statistics =
            computeStatistics(selectValues(series, kind, Select::Unflagged));
        cells += {delayText(statistics.median, delayStep(series, kind)),
                  statistics.n == 0 ? -infinity : statistics.median};
    }
    return cells << flagCell(series);
}

} // namespace

SeriesTable::SeriesTable(QObject *parent) : QStandardItemModel(parent)
{
    setHorizontalHeaderLabels(headings);
}

void SeriesTable::put(const Series &series)
{
    Entry &entry = entries[series.fileName];
    entry.series = series;
    const bool isNew = entry.cells.isEmpty();
    const QVector<Cell> cells = cellsOf(series);
    QSignalBlocker blocker(this); // one signal for all cells
    for (int column = 0; column < cells.size(); ++column) {
        if (isNew) {
            entry.cells += new QStandardItem;
            entry.cells[column]->setTextAlignment((column == 0 ? Qt::AlignLeft : Qt::AlignRight) |
                                                  Qt::AlignVCenter);
        }
        entry.cells[column]->setText(cells[column].text);
        entry.cells[column]->setData(cells[column].sortKey, SortRole);
    }
    QStandardItem *name = entry.cells[0];
    name->setData(series.fileName, FileRole);
    name->setData(name->text() + ' ' + QFileInfo(series.fileName).fileName(), FilterRole);
    name->setToolTip( // shown as HTML, which a name is not
        Qt::convertFromPlainText(series.fileName + '\n' + series.oscilloscope.remark));
    blocker.unblock();
    if (isNew) {
        appendRow(entry.cells);
    } else {
        emit dataChanged(name->index(), entry.cells.last()->index());
    }
}

void SeriesTable::remove(const QString &fileName)
{
    const Entry removed = entries.take(fileName);
    if (!removed.cells.isEmpty()) {
        removeRow(removed.cells[0]->row());
    }
}

void SeriesTable::readTraces(const QString &fileName)
{
    Series series = at(fileName);
    if (entries.contains(fileName) && !series.hasReadTraces) {
        addTraces(&series);
        put(series);
    }
}
