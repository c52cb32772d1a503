#include "analysis/SeriesFiles.h"

#include <QDir>
#include <QMultiMap>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {

const QString ending = QStringLiteral("_Results.txt");

/// The parts in the name of a results file: "label_Orvanta2026-03-05_14-07-09_Results.txt".
struct NameParts
{
    explicit NameParts(const QString &fileName)
    {
        static const QRegularExpression parts(
            R"(^(.*?)[ _-]*((?:Orvanta(?:Demo)?)?(\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d)))" +
                QRegularExpression::escape(ending) + '$',
            QRegularExpression::DotMatchesEverythingOption);
        const QRegularExpressionMatch found = parts.match(QFileInfo(fileName).fileName());
        label = found.captured(1).simplified();
        original = found.captured(2);
        stamp = found.captured(3);
    }

    QString label;
    QString original; ///< how the name began when the series was saved
    QString stamp;
};

} // namespace

QString resultsFolder()
{
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                           "/Varnholt");
}

QStringList seriesIn(const QString &folder)
{
    const QDir directory(folder);
    // By time stamp. Of equal ones, the map returns the one inserted last first.
    QMultiMap<QString, QString> files;
    for (const QString &name : directory.entryList({'*' + ending}, QDir::Files, QDir::Reversed)) {
        files.insert(NameParts(name).stamp, directory.filePath(name));
    }
    return files.values();
}

QDateTime seriesTime(const QString &fileName)
{
    return QDateTime::fromString(NameParts(fileName).stamp, "yyyy-MM-dd_hh-mm-ss");
}

QString seriesLabel(const QString &fileName)
{
    return NameParts(fileName).label;
}

QString traceFile(const QString &fileName, const QString &trace)
{
    QString prefix = fileName;
    if (prefix.endsWith(ending)) {
        prefix.chop(ending.size() - 1);
    }
    const QString end = "001_" + trace + ".bin";
    const NameParts name(fileName);
    return name.label.isEmpty() || QFileInfo::exists(prefix + end)
               ? prefix + end
               : QFileInfo(fileName).dir().filePath(name.original + '_' + end);
}
