#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

inline QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

/// Write a file anew, empty by default.
inline bool write(const QString &fileName, const QByteArray &bytes = {})
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}
