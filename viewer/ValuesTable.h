#pragma once

#include "analysis/Series.h"

#include <QAbstractTableModel>

class QTableView;

/// The table of measurements of the selected series: delays and flags.
class ValuesTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    /// Show these series, one below the other.
    void show(const QVector<Series> &series);

private:
    QVector<Series> selection;
};

/// Returns the selected cells as text that spreadsheets read: a line for each row, tabs between
/// columns.
QString selectedText(const QTableView &view);
