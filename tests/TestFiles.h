#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QString>
#include <QVector>

#include <cstring>

/// The samples as they lie in memory, so that NaN compares, too.
template <typename Sample>
QByteArray bytesOf(const QVector<Sample> &samples)
{
    return {reinterpret_cast<const char *>(samples.constData()),
            samples.size() * static_cast<int>(sizeof(Sample))};
}

/// The same backwards, as many whole samples as there are.
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

/// The contents of all files in a directory, by their names.
inline QMap<QString, QByteArray> filesIn(const QString &directory)
{
    QMap<QString, QByteArray> files;
    for (const QString &name : QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        files[name] = contents(directory + '/' + name);
    }
    return files;
}

/// How many files and the like this process has open.
inline int openDescriptors()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
}
