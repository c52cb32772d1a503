#pragma once

#include <QDateTime>
#include <QHash>
#include <QStringList>

/// The results files in some folders, as they come, change and go.
class LiveFiles
{
public:
    struct Changes
    {
        QStringList changed; ///< files that are new, or were written again: the newest first
        QStringList gone;
    };

    /// Follow these files, and all series in these folders, also while one of them is not there.
    void follow(const QStringList &filesAndFolders);
    /// Returns whether findChanges() is worth a call: since its last call a file came or went, or a
    /// file in `shown` was written again. After a call that found changes it is, too, since the
    /// files may still be being written. This is quick, also on a network.
    [[nodiscard]] bool isStirred(const QStringList &shown) const;
    /// Find what has changed since the last time. A file that was named and is not there counts as
    /// changed, and so does a folder without series, so that the window names them.
    Changes findChanges();
    /// Let isStirred() be true.
    void stir() { lastTimes.clear(); }
    /// Take everything for changed the next time.
    void forget() { known.clear(); }

private:
    [[nodiscard]] QVector<QDateTime> times() const;

    QStringList followed;
    QHash<QString, QVector<qint64>> known; ///< times and sizes of the series' files
    QVector<QDateTime> lastTimes;          ///< of what is followed
};
