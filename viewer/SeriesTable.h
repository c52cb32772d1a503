#pragma once

#include "analysis/Series.h"

#include <QHash>
#include <QStandardItemModel>

/// The series that are open: name, count, medians without flagged values, flags. The newest come
/// first when it is sorted by the first column, downwards.
class SeriesTable : public QStandardItemModel
{
public:
    enum Role
    {
        SortRole = Qt::UserRole,
        FilterRole, ///< of the first column: the text in which a filter is looked for
        FileRole,   ///< of the first column
    };

    explicit SeriesTable(QObject *parent);

    /// Add a series, or put it in place of what the same file was before.
    void put(const Series &series);
    /// Remove the series of a file, if there is one.
    void remove(const QString &fileName);
    /// Read the traces of the series of a file, if there is one and they were not read yet.
    void readTraces(const QString &fileName);
    /// Returns the series of a file; an empty one when there is none.
    [[nodiscard]] Series at(const QString &fileName) const { return entries[fileName].series; }

private:
    struct Entry
    {
        Series series;
        QList<QStandardItem *> cells; ///< its row
    };

    QHash<QString, Entry> entries; ///< by file
};
