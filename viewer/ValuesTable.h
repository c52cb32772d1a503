#pragma once

#include "analysis/Series.h"

#include <QAbstractTableModel>

class QTableView;

/// The measurements of the series selected: their delays and flags.
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

/// Give the cells that are selected as text: rows on lines, columns between tabulators, as
/// spreadsheets take it.
QString selectedText(const QTableView &view);
