#include "analysis/Summary.h"

#include "analysis/MedianDifference.h"
#include "analysis/Statistics.h"
#include "instrument/NumberText.h"

#include <QStringList>

#include <cmath>

namespace {

constexpr int nameWidth = 20;
constexpr int countWidth = 6;
constexpr int numberWidth = 9; // with a blank before it

QString cell(double value)
{
    const QString text = std::isnan(value) ? QString("-") : numberText(value);
    return ' ' + text.rightJustified(numberWidth - 1);
}

QString headingLine()
{
    QString line =
        QString("Delay / ms").leftJustified(nameWidth) + QString("n").rightJustified(countWidth);
    for (const char *name : {"minimum", "median", "mean", "maximum", "std.dev.", "p-p", "P5", "P95",
                             "P99", "P95-P50"}) {
        line += QString(name).rightJustified(numberWidth);
    }
    return line + '\n';
}

QString statisticsLine(const QString &name, const Statistics &of)
{
    QString line = name.leftJustified(nameWidth) + QString::number(of.n).rightJustified(countWidth);
    for (const double value : {of.minimum, of.median, of.mean, of.maximum, of.deviation,
                               of.peakToPeak(), of.p5, of.p95, of.p99, of.p95 - of.median}) {
        line += cell(value);
    }
    return line + '\n';
}

/// Numbers of measurements, from 1, with ranges: "2, 5-7".
QString numbersText(const QVector<int> &numbers)
{
    constexpr int mostParts = 20;
    QStringList parts;
    for (int i = 0; i < numbers.size(); ++i) {
        const int first = i;
        while (i + 1 < numbers.size() && numbers[i + 1] == numbers[i] + 1) {
            ++i;
        }
        if (parts.size() == mostParts) {
            parts += "...";
            break;
        }
        parts += QString::number(numbers[first]);
        if (i > first) {
            parts.last() += '-' + QString::number(numbers[i]);
        }
    }
    return parts.join(", ");
}

QString flagLines(const Series &series, DelayKind kind)
{
    const QVector<Flags> &flags = series.flagsOf(kind);
    QString lines;
    for (const Flag flag : allFlags()) {
        QVector<int> flagged;
        for (int i = 0; i < flags.size(); ++i) {
            if (flags[i].testFlag(flag)) {
                flagged += i + 1;
            }
        }
        if (!flagged.isEmpty()) {
            lines += QString("Flag: %1, %2 of %3: %4 (measurement %5)\n")
                         .arg(delayName(kind))
                         .arg(flagged.size())
                         .arg(flags.size())
                         .arg(flagReason(flag), numbersText(flagged));
        }
    }
    return lines;
}

QString oscilloscopeLine(const Series &series)
{
    if (!series.oscilloscope.type) {
        return QString("%1: %2\n")
            .arg(series.oscilloscope.contradicts
                     ? "WRONG DELAYS"
                     : "Oscilloscope type unknown, so ends of the time axis "
                       "are not flagged",
                 series.oscilloscope.remark);
    }
    return QString("Oscilloscope %1, records of %2 samples, %3 ms apart\n")
        .arg(typeName(*series.oscilloscope.type))
        .arg(series.samples)
        .arg(numberText(samplingInterval(series)));
}

} // namespace

QString summarise(const Series &series)
{
    QString text = QString("%1\nSeries of %2, %3 measurements\n")
                       .arg(series.fileName, seriesName(series), QString::number(series.count())) +
                   oscilloscopeLine(series) + headingLine();
    QString flags;
    for (const DelayKind kind : delayKinds) {
        if (!isMeasured(series.results, kind)) {
            text += delayName(kind).leftJustified(nameWidth) + "  not used: every value is 0\n";
            continue;
        }
        const QVector<double> all = selectValues(series, kind, true);
        const QVector<double> unflagged = selectValues(series, kind, false);
        text += statisticsLine(delayName(kind), computeStatistics(all));
        const QString reasons = flagLines(series, kind);
        if (!reasons.isEmpty()) {
            text += statisticsLine("  without flagged", computeStatistics(unflagged));
        }
        flags += reasons;
    }
    return text +
           "Median and percentiles by nearest rank; std.dev. with n - 1; p-p: peak to peak\n" +
           flags;
}

QString compareSeries(const Series &first, const Series &second)
{
    QString text = QString("Medians of %2 less those of %1, without flagged values\n")
                       .arg(seriesName(first), seriesName(second));
    text += QString("Delay / ms").leftJustified(nameWidth) +
            QString("difference").rightJustified(numberWidth + 3) +
            QString("   95 % interval (bootstrap, %1 resamplings)\n").arg(resamplings);
    for (const DelayKind kind : delayKinds) {
        const QVector<double> of1 = selectValues(first, kind, false);
        const QVector<double> of2 = selectValues(second, kind, false);
        text += delayName(kind).leftJustified(nameWidth);
        if (of1.isEmpty() || of2.isEmpty()) {
            text += QString("-").rightJustified(numberWidth + 3) + "   no values in both\n";
            continue;
        }
        const MedianDifference found = compareMedians(of1, of2);
        text += "   " + cell(found.difference) +
                QString("   %1 to %2%3\n")
                    .arg(numberText(found.low), numberText(found.high),
                         found.low <= 0.0 && found.high >= 0.0 ? ", no difference shown" : "");
    }
    return text;
}
