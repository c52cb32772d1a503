#pragma once

#include "analysis/Series.h"

#include <QAbstractTableModel>
#include <QHash>

/// The series that are open: name, count, medians without flagged values, flags. The newest come
/// first when it is sorted by the first column, downwards.
class SeriesTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role
    {
        SortRole = Qt::UserRole,
        FilterRole, ///< the text in which a filter is looked for
    };

    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    /// Add series, or put them in place of what the same file was before.
    void add(const QVector<Series> &series);
    /// Remove the series of these files.
    void remove(const QStringList &files);
    /// Read the traces of a series, unless that was done.
    void readTraces(int row);
    /// Find the newest series of which the traces were not read yet; -1 when there is none.
    [[nodiscard]] int findUnread() const;
    [[nodiscard]] const Series &at(int row) const { return rows[row].series; }

private:
    struct Row
    {
        explicit Row(const Series &from);

        Series series;
        QStringList cells;
        QVariantList sortKeys;
    };

    QVector<Row> rows;
    QHash<QString, int> places; ///< the row of each file
};
