#include "measurement/TraceFile.h"

#include "measurement/Record.h"

#include <QFile>

namespace {

constexpr qint64 sampleSize = sizeof(double);

} // namespace

int saveTrace(const QString &fileName, const QVector<double> &trace, int count)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        return -1;
    }
    const qint64 size = qBound(0, count, trace.size()) * sampleSize;
    if (file.write(reinterpret_cast<const char *>(trace.constData()), size) != size ||
        !file.flush()) {
        file.remove(); // the format could not show that it is not complete
        return -1;
    }
    return 0;
}

int loadTrace(const QString &fileName, QVector<double> *trace, int *count)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const int first = trace->size();
    const qint64 samples = qMin<qint64>(file.size() / sampleSize, maxVectorSize - first);
    trace->resize(first + static_cast<int>(samples));
    const qint64 bytes =
        file.read(reinterpret_cast<char *>(trace->data() + first), samples * sampleSize);
    *count = static_cast<int>(qMax<qint64>(bytes, 0) / sampleSize);
    trace->resize(first + *count);
    return 0;
}
