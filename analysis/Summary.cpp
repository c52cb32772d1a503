#include "analysis/Summary.h"

#include "analysis/DelayText.h"
#include "analysis/MedianDifference.h"
#include "analysis/Statistics.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr double correlationStep = 0.1; // gives two decimals
constexpr int nameWidth = 15;
constexpr int countWidth = 6;
constexpr int numberWidth = 9; // with a blank before it

QString tableLine(const QString &name, int width, const QString &count, const QStringList &numbers)
{
    QString line = name.leftJustified(width) + count.rightJustified(countWidth);
    for (const QString &number : numbers) {
        line += ' ' + number.rightJustified(numberWidth - 1);
    }
    return line;
}

QString statisticsLine(const QString &name, const Statistics &statistics, double step)
{
    QStringList numbers;
    for (const double value :
         {statistics.minimum, statistics.median, statistics.mean, statistics.maximum,
          statistics.deviation, statistics.peakToPeak(), statistics.p5, statistics.p95,
          statistics.p99, statistics.p95 - statistics.median}) {
        numbers += delayText(value, step);
    }
    numbers += delayText(statistics.correlation, correlationStep);
    return tableLine(name, nameWidth, QString::number(statistics.n), numbers) + '\n';
}

/// Returns the numbers of measurements as text, with ranges: "2, 5-7".
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

QString flagLines(const QVector<Flags> &flags, DelayKind kind)
{
    QString lines;
    for (const auto &[flag, reason] : reasonsByFlag) {
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
                         .arg(reason, numbersText(flagged));
        }
    }
    return lines;
}

QString oscilloscopeLine(const Series &series)
{
    if (!series.oscilloscope.type) {
        return QString("%1: %2\n")
            .arg(series.oscilloscope.contradicts ? "WRONG DELAYS"
                                                 : "Oscilloscope type unknown, so delays at the "
                                                   "ends of both types' axes are flagged",
                 series.oscilloscope.remark);
    }
    const double step = delayStep(series, SourceToRf);
    return QString("Oscilloscope %1, records of %2 samples; resolution: step %3 ms, "
                   "step / sqrt(12) %4 ms\n")
        .arg(typeName(*series.oscilloscope.type))
        .arg(series.samples)
        .arg(step, 0, 'g', 3)
        .arg(step / std::sqrt(12.0), 0, 'g', 3);
}

/// Returns the warnings that a comparison with a series begins with.
QString warningLines(const Series &series, const QString &name)
{
    QString lines;
    if (!series.oscilloscope.type) {
        lines += QString("Warning: %1: ").arg(name) + oscilloscopeLine(series);
    }
    if (const int flagged = flaggedCount(series)) {
        lines += QString("Warning: %1 has flags; values left out: %2\n")
                     .arg(name, QString::number(flagged));
    }
    return lines;
}

/// Returns a warning when neighbouring values are correlated; otherwise an empty text. The interval
/// assumes independent measurements: it is too narrow for values that resemble their neighbours.
QString dependenceLine(const Series &series, const QString &name, DelayKind kind)
{
    constexpr double negligible = 0.2;
    const Statistics statistics = computeStatistics(selectValues(series, kind, Select::Unflagged));
    if (!(std::abs(statistics.correlation) > negligible)) { // or there are too few values
        return {};
    }
    QString line =
        QString(
            "Warning: %1 of %2: the interval is %3 because the measurements depend on each other "
            "(lag-1 correlation %4)")
            .arg(delayName(kind), name, statistics.correlation > 0 ? "too narrow" : "unreliable",
                 delayText(statistics.correlation, correlationStep));
    // In one of twenty series of independent values, chance exceeds 2 / sqrt(n).
    if (std::abs(statistics.correlation) <= 2.0 / std::sqrt(statistics.n)) {
        line += QString(", unless this is chance (%1 values)").arg(statistics.n);
    }
    return line + '\n';
}

QString verdict(const MedianDifference &found, double step)
{
    if (!found.hasInterval()) {
        return QString("   no interval: that takes %1 values in each series")
            .arg(fewestForInterval);
    }
    const QString interval = QString("%1 to%2   ")
                                 .arg(delayText(found.low, step), numberWidth)
                                 .arg(delayText(found.high, step), numberWidth);
    if (found.isSlower()) {
        return interval + "difference shown: slower";
    }
    if (found.isFaster()) {
        return interval + "difference shown: faster";
    }
    return interval + QString("no difference shown (it would have to be about %1 ms or more)")
                          .arg(delayText((found.high - found.low) / 2, step));
}

} // namespace

QString summarise(const Series &series)
{
    QString text = QString("%1\nSeries of %2, %3 measurements\n")
                       .arg(series.fileName, seriesName(series), QString::number(series.count())) +
                   oscilloscopeLine(series) +
                   tableLine("Delay / ms", nameWidth, "n",
                             {"minimum", "median", "mean", "maximum", "std.dev.", "p-p", "P5",
                              "P95", "P99", "P95-P50", "lag-1"}) +
                   '\n';
    QString flags;
    for (const DelayKind kind : delayKinds) {
        if (!isMeasured(series.results, kind)) {
            text += delayName(kind).leftJustified(nameWidth) + "  not used: every value is 0\n";
            continue;
        }
        const double step = delayStep(series, kind);
        text += statisticsLine(delayName(kind),
                               computeStatistics(selectValues(series, kind, Select::All)), step);
        const QString reasons = flagLines(series.flags[kind], kind);
        if (!reasons.isEmpty()) {
            text += statisticsLine("  unflagged",
                                   computeStatistics(selectValues(series, kind, Select::Unflagged)),
                                   step);
        }
        flags += reasons;
    }
    return text +
           "Median and percentiles by nearest rank; std.dev. with n - 1; p-p: peak to peak; lag-1: "
           "correlation of neighbours\n" +
           flags;
}

QString summariseBriefly(const QVector<Series> &series)
{
    const QString heading = "Series (medians in ms, without flagged values)";
    const QStringList names = seriesNames(series);
    int width = heading.size();
    for (const QString &name : names) {
        width = std::max(width, name.size());
    }
    QStringList columns;
    for (const DelayKind kind : delayKinds) {
        columns << delayEnd(kind) << "P95-P50";
    }
    QString text = tableLine(heading, width, "count", columns) + "  flags\n";
    for (int i = 0; i < series.size(); ++i) {
        const Series &one = series[i];
        QStringList numbers;
        for (const DelayKind kind : delayKinds) {
            const Statistics statistics =
                computeStatistics(selectValues(one, kind, Select::Unflagged));
            const double step = delayStep(one, kind);
            numbers << delayText(statistics.median, step)
                    << delayText(statistics.p95 - statistics.median, step);
        }
        text += tableLine(names[i], width, QString::number(one.count()), numbers) +
                QString("  %1%2\n")
                    .arg(flaggedCount(one))
                    .arg(one.oscilloscope.contradicts ? ", wrong delays"
                         : one.oscilloscope.type      ? ""
                                                      : ", type unknown");
    }
    return text;
}

QString compareSeries(const Series &first, const Series &second)
{
    constexpr int differenceWidth = 13;
    const QStringList names = seriesNames({first, second});
    QString warnings = warningLines(first, names[0]) + warningLines(second, names[1]);
    QString lines;
    for (const DelayKind kind : delayKinds) {
        const QVector<double> firstValues = selectValues(first, kind, Select::Unflagged);
        const QVector<double> secondValues = selectValues(second, kind, Select::Unflagged);
        lines += delayName(kind).leftJustified(nameWidth);
        if (firstValues.isEmpty() || secondValues.isEmpty()) {
            lines += QString("-").rightJustified(differenceWidth) + "   one series has no values\n";
            continue;
        }
        const double step = std::max(delayStep(first, kind), delayStep(second, kind));
        const MedianDifference found = compareMedians(firstValues, secondValues, step);
        lines += delayText(found.difference, step).rightJustified(differenceWidth) +
                 verdict(found, step) + '\n';
        if (found.hasInterval()) {
            warnings +=
                dependenceLine(first, names[0], kind) + dependenceLine(second, names[1], kind);
        }
    }
    return warnings +
           QString("%1 compared with %2: difference of the medians, without flagged values\n")
               .arg(names[1], names[0]) +
           QString("Delay / ms").leftJustified(nameWidth) +
           QString("difference").rightJustified(differenceWidth) +
           QString("   95 % interval (bootstrap, %1 resamplings)\n").arg(resamplings) + lines;
}

QString describeSelection(const QVector<Series> &selection)
{
    QStringList parts;
    if (selection.size() == 2) {
        parts += compareSeries(selection[0], selection[1]);
    }
    for (const Series &series : selection) {
        parts += summarise(series);
    }
    return parts.join('\n');
}

QString wrapText(const QString &text, int width)
{
    QStringList lines;
    for (QString line : text.split('\n')) {
        while (line.size() > width) {
            const int blank = line.lastIndexOf(' ', width);
            if (blank <= 2) {
                line = shortenText(line, width);
                break;
            }
            lines += line.left(blank);
            line = "  " + line.mid(blank + 1);
        }
        lines += line;
    }
    return lines.join('\n');
}

QString shortenText(const QString &text, int width)
{
    const int half = (width - 3) / 2;
    return text.size() <= width ? text : text.left(half) + "..." + text.right(width - 3 - half);
}
