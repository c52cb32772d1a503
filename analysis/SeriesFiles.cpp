#include "analysis/SeriesFiles.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>

namespace {

const QString ending = QStringLiteral("_Results.txt");

} // namespace

QString resultsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Varnholt";
}

QStringList seriesIn(const QString &folder)
{
    const QDir directory(folder);
    QStringList files;
    for (const QString &name : directory.entryList({'*' + ending}, QDir::Files)) {
        files += directory.filePath(name);
    }
    std::stable_sort(files.begin(), files.end(), [](const QString &a, const QString &b) {
        return seriesTime(a) < seriesTime(b);
    });
    return files;
}

QDateTime seriesTime(const QString &fileName)
{
    static const QRegularExpression stamp("([0-9]{4}(-[0-9]{2}){2}_([0-9]{2}-){2}[0-9]{2})" +
                                          QRegularExpression::escape(ending) + '$');
    return QDateTime::fromString(stamp.match(fileName).captured(1), "yyyy-MM-dd_hh-mm-ss");
}

QString traceFile(const QString &fileName, const QString &trace)
{
    QString prefix = fileName;
    if (prefix.endsWith(ending)) {
        prefix.chop(ending.size() - 1);
    }
    return prefix + "001_" + trace + ".bin";
}
