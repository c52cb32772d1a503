#include "measurement/ResultsFile.h"

#include "instrument/NumberText.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>

#include <cmath>

namespace {

constexpr EachDelay<const char *> names = {"Source2RF", "Source2HD", "Source2Snk"};

constexpr qint64 largestFile = 1 << 30; // bytes: some 40 million measurements

/// Returns why a file cannot hold results; an empty text when it can.
QString whyNoResults(const QFileInfo &info)
{
    if (!info.exists()) {
        return "does not exist";
    }
    if (info.isDir()) {
        return "is a folder";
    }
    if (!info.isFile()) {
        return "is not an ordinary file"; // reading might never end
    }
    if (info.size() == 0) {
        return "is empty";
    }
    return info.size() > largestFile ? "is larger than any results file" : "";
}

/// Read a whole file. Returns false and a reason when it cannot hold results or cannot be opened.
bool readWhole(const QString &fileName, QByteArray *text, QString *reason)
{
    *reason = whyNoResults(QFileInfo(fileName));
    if (!reason->isEmpty()) {
        return false;
    }
    QFile file(fileName);
    if (!file.open(QFile::ReadOnly)) {
        *reason = "cannot be read: " + file.errorString();
        return false;
    }
    *text = file.readAll();
    return true;
}

/// Read numbers, each after one blank. Returns false and a reason when something else is there.
bool readNumbers(const QByteArray &text, QVector<double> *numbers, QString *reason)
{
    for (int start = 0; start < text.size();) {
        const int blank = text.indexOf(' ', start + 1);
        const int end = blank < 0 ? text.size() : blank;
        const auto word = QByteArray::fromRawData(text.constData() + start + 1, end - start - 1);
        bool isNumber = false;
        numbers->append(word.toDouble(&isNumber));
        if (!isNumber || text[start] != ' ') {
            constexpr int shown = 20;
            *reason = QString("\"%1\" is not a number").arg(QString::fromUtf8(word.left(shown)));
            return false;
        }
        start = end;
    }
    return true;
}

/// Returns whether a number can be the mean of the values. All were rounded to six digits.
bool isMean(double mean, const QVector<double> &values)
{
    constexpr double rounding = 5e-6;
    constexpr double summable = 1e300; // larger sums may overflow, here or where they were written
    double sum = 0.0;
    double magnitude = 0.0;
    for (const double value : values) {
        sum += value;
        magnitude += std::abs(value);
    }
    if (values.isEmpty() || !(magnitude < summable)) {
        return true;
    }
    const double error = rounding * (magnitude / values.size() + std::abs(mean)) * 1.001;
    return std::abs(mean - sum / values.size()) <= error + std::numeric_limits<double>::min();
}

} // namespace

bool readResults(const QString &fileName, SeriesResults *results, QString *reason)
{
    QByteArray text;
    if (!readWhole(fileName, &text, reason)) {
        return false;
    }
    if (!text.startsWith("Source2RF Delay:")) {
        *reason = "is not a results file: it does not begin with \"Source2RF Delay:\"";
        return false;
    }
    // writeResults() does not end the last line, but editors do.
    const int lineCount = text.count('\n') + (text.endsWith('\n') ? 0 : 1);
    if (lineCount != 6) {
        *reason = QString(lineCount < 6 ? "is cut off: it has %1 of 6 lines"
                                        : "is not one results file: it has %1 lines instead of 6")
                      .arg(lineCount);
        return false;
    }
    const QByteArrayList lines = QByteArray(text).replace("\r\n", "\n").split('\n');
    const auto fail = [reason](int line, const QString &what) {
        *reason = QString("has a wrong line %1: %2").arg(line + 1).arg(what);
        return false;
    };
    SeriesResults read;
    for (int line = 0; line < 6; ++line) {
        const DelayKind kind = delayKinds[static_cast<std::size_t>(line / 2)];
        const bool isDelays = line % 2 == 0;
        const QByteArray heading = QByteArray(names[kind]) + (isDelays ? " Delay:" : " Mean:");
        if (!lines[line].startsWith(heading)) {
            return fail(line, QString("it does not begin with \"%1\"").arg(heading.constData()));
        }
        QVector<double> numbers;
        if (!readNumbers(lines[line].mid(heading.size()), &numbers, reason)) {
            return fail(line, *reason);
        }
        if (isDelays) {
            read[kind].values = numbers;
            continue;
        }
        if (numbers.size() != 1) {
            return fail(line, "it does not have one mean");
        }
        read[kind].mean = numbers[0];
        if (!isMean(numbers[0], read[kind].values)) {
            return fail(line, "the mean is not that of the delays: cut off or changed");
        }
    }
    const auto count = [&read](DelayKind kind) { return read[kind].values.size(); };
    if (count(SourceToRf) != count(SourceToHdmi) || count(SourceToRf) != count(SourceToSink)) {
        *reason = QString("has lines of different counts: %1, %2 and %3 delays")
                      .arg(count(SourceToRf))
                      .arg(count(SourceToHdmi))
                      .arg(count(SourceToSink));
        return false;
    }
    *results = read;
    return true;
}

bool writeResults(const QString &fileName, const SeriesResults &results)
{
    QSaveFile file(fileName); // leaves no file that is not complete
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QStringList lines;
    for (const DelayKind kind : delayKinds) {
        const QString name = names[kind];
        lines += name + " Delay:";
        for (const double delay : results[kind].values) {
            lines.last() += ' ' + numberText(delay);
        }
        lines += name + " Mean: " + numberText(results[kind].mean);
    }
    const QByteArray bytes = lines.join('\n').toUtf8();
    if (file.write(bytes) != bytes.size() || !file.flush()) { // commit() notices neither
        file.cancelWriting();
    }
    return file.commit();
}
