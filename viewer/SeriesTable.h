#pragma once

#include "analysis/Series.h"

#include <QHash>
#include <QStandardItemModel>

/// The table of open series: name, count, medians without flagged values, flags. Sorted by the
/// first column in descending order, it begins with the newest.
class SeriesTable : public QStandardItemModel
{
public:
    enum Role
    {
        SortRole = Qt::UserRole,
        FilterRole, ///< of the first column: the text that is filtered
        FileRole,   ///< of the first column: the name of the results file
    };

    explicit SeriesTable(QObject *parent);

    /// Add a series, or replace the one of the same file.
    void put(const Series &series);
    /// Remove the series of a file, if there is one.
    void remove(const QString &fileName);
    /// Read the traces of the series of a file, if there is one whose traces were not read yet.
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
