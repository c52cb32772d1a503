#include "app/SettingsDirectory.h"

#include <QRegExp>
#include <QStandardPaths>
#include <QStringList>

QString settingsDirectoryIn(const QString &dataLocation)
{
    QStringList parts = dataLocation.split(QRegExp("[/\\\\]"));
    parts.insert(parts.size() - 1, "Varnholt");
    return parts.join('/');
}

QString settingsDirectory()
{
    return settingsDirectoryIn(
        QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
}
