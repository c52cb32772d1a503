#pragma once

#include "analysis/Series.h"

#include <QAbstractTableModel>

/// The list of series, newest first: time, count, medians without flagged values, flags.
class SeriesTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    /// Add series, each in its place by time, or put them in place of what the same file was
    /// before.
    void add(const QVector<Series> &series);
    /// Remove the series of a file.
    void remove(const QString &fileName);
    [[nodiscard]] bool has(const QString &fileName) const { return find(fileName) >= 0; }
    [[nodiscard]] const Series &at(int row) const { return rows[row].series; }

private:
    struct Row
    {
        Series series;
        QStringList cells;
    };
    [[nodiscard]] int find(const QString &fileName) const;

    QVector<Row> rows;
};
