#include "measurement/ResultsFile.h"

#include "instrument/NumberText.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <array>
#include <cmath>

namespace {

QString paragraph(const QString &name, const DelaySeries &series)
{
    QString text = name + " Delay:";
    for (const double delay : series.values) {
        text += ' ' + numberText(delay);
    }
    return text + '\n' + name + " Mean: " + numberText(series.mean);
}

constexpr qint64 largestFile = 1 << 30; // bytes: some 40 million measurements

/// The whole of a file; nothing and the reason if it is none that holds results.
QByteArray readWhole(const QString &fileName, QString *reason)
{
    const QFileInfo info(fileName);
    QFile file(fileName);
    *reason = !info.exists()                ? "does not exist"
              : info.isDir()                ? "is a folder"
              : !info.isFile()              ? "is not an ordinary file" // reading might never end
              : info.size() == 0            ? "is empty"
              : info.size() > largestFile   ? "is larger than any results file"
              : !file.open(QFile::ReadOnly) ? "cannot be read: " + file.errorString()
                                            : QString();
    return reason->isEmpty() ? file.readAll() : QByteArray();
}

/// Read numbers, each after one blank. Returns false and what stands there instead.
bool readNumbers(const QByteArray &text, QVector<double> *numbers, QString *reason)
{
    for (int start = 0; start < text.size();) {
        const int blank = text.indexOf(' ', start + 1);
        const int end = blank < 0 ? text.size() : blank;
        const auto word = QByteArray::fromRawData(text.constData() + start + 1, end - start - 1);
        bool isNumber = text[start] == ' ' && !word.isEmpty() && word[0] > ' ' && word.back() > ' ';
        numbers->append(isNumber ? word.toDouble(&isNumber) : 0.0);
        if (!isNumber) {
            constexpr int shown = 20;
            *reason = QString("\"%1\" is not a number").arg(QString::fromUtf8(word.left(shown)));
            return false;
        }
        start = end;
    }
    return true;
}

/// Whether this can be the mean, to the six digits that both have.
bool isMean(double mean, const QVector<double> &values)
{
    constexpr double rounding = 5e-6;
    constexpr double summable = 1e300; // greater ones may overflow here, or where they were summed
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
    const QByteArray text = readWhole(fileName, reason);
    if (!reason->isEmpty()) {
        return false;
    }
    if (!text.startsWith("Source2RF Delay:")) {
        *reason = "is not a results file: it does not begin with \"Source2RF Delay:\"";
        return false;
    }
    // Editors end the last line, too.
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
    std::array<DelaySeries, 3> delays;
    for (int line = 0; line < 6; ++line) {
        constexpr std::array<const char *, 3> names = {"Source2RF", "Source2HD", "Source2Snk"};
        const auto index = static_cast<std::size_t>(line / 2);
        const QByteArray heading =
            QByteArray(names[index]) + (line % 2 == 0 ? " Delay:" : " Mean:");
        if (!lines[line].startsWith(heading)) {
            return fail(line, QString("it does not begin with \"%1\"").arg(heading.constData()));
        }
        QVector<double> means;
        const bool isDelays = line % 2 == 0;
        QVector<double> *numbers = isDelays ? &delays[index].values : &means;
        if (!readNumbers(lines[line].mid(heading.size()), numbers, reason)) {
            return fail(line, *reason);
        }
        if (!isDelays && means.size() != 1) {
            return fail(line, "it does not have one mean");
        }
        if (!isDelays && !isMean(delays[index].mean = means[0], delays[index].values)) {
            return fail(line, "the mean is not that of the delays: cut off or changed");
        }
    }
    if (delays[0].values.size() != delays[1].values.size() ||
        delays[0].values.size() != delays[2].values.size()) {
        *reason = QString("has lines of different counts: %1, %2 and %3 delays")
                      .arg(delays[0].values.size())
                      .arg(delays[1].values.size())
                      .arg(delays[2].values.size());
        return false;
    }
    *results = {delays[0], delays[1], delays[2]};
    return true;
}

bool writeResults(const QString &fileName, const SeriesResults &results)
{
    QSaveFile file(fileName); // a file that cannot be written whole is none
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QString text = paragraph("Source2RF", results.sourceToRf) + '\n' +
                         paragraph("Source2HD", results.sourceToHdmi) + '\n' +
                         paragraph("Source2Snk", results.sourceToSink);
    const QByteArray bytes = text.toUtf8();
    if (file.write(bytes) != bytes.size() || !file.flush()) { // neither is noticed by commit()
        file.cancelWriting();
    }
    return file.commit();
}
