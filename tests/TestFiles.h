#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QVector>

#include <cstring>

/// The samples that lie in bytes, as many whole ones as there are.
inline QVector<float> floatsOf(const QByteArray &bytes)
{
    QVector<float> samples(bytes.size() / static_cast<int>(sizeof(float)));
    std::memcpy(samples.data(), bytes.constData(), sizeof(float) * std::size_t(samples.size()));
    return samples;
}

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
