#include "analysis/Statistics.h"
#include "analysis/Histogram.h"
#include "analysis/MedianDifference.h"
#include "instrument/NumberText.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace {

using Values = QVector<double>;

/// Returns values without order. The results for them were computed with numpy 1.24.
Values numbers(int n, int factor = 37, double offset = 40.0)
{
    Values values(n);
    for (int i = 0; i < n; ++i) {
        values[i] = i * i * factor % 101 * 0.1 + offset;
    }
    return values;
}

} // namespace

class StatisticsTest : public QObject
{
    Q_OBJECT

private slots:
    void statistics_data()
    {
        QTest::addColumn<int>("n");
        // minimum median mean maximum deviation P5 P95 P99 correlation
        QTest::addColumn<QString>("numpy");
        QTest::newRow("no value") << 0 << "nan nan nan nan nan nan nan nan nan";
        QTest::newRow("one value") << 1 << "40 40 40 40 nan nan nan nan nan";
        QTest::newRow("no P5") << 19 << "40 46.4 45.6368 49.6 2.87503 nan nan nan 0.0312407";
        QTest::newRow("P5") << 20 << "40 44.7 45.48 49.6 2.88492 40 49.2 nan 0.00778843";
        QTest::newRow("no P99") << 99 << "40 45.2 45.0162 50 3.08627 40.4 49.6 nan -0.0763393";
        QTest::newRow("P99") << 100 << "40 44.9 45.013 50 3.0708 40.4 49.6 50 -0.0756314";
    }
    void statistics()
    {
        QFETCH(const int, n);
        const Statistics s = computeStatistics(numbers(n));
        QStringList found;
        for (const double value : {s.minimum, s.median, s.mean, s.maximum, s.deviation, s.p5, s.p95,
                                   s.p99, s.correlation}) {
            found += numberText(value);
        }
        QTEST(found.join(' '), "numpy");
    }

    /// Equal values have no correlation, whatever the rounding of their mean leaves.
    void equalValues() { QVERIFY(std::isnan(computeStatistics(Values(7, 45.0038)).correlation)); }

    /// The interval is that of numpy's resamplings, within their spread, and always the same.
    void medianDifference()
    {
        const Values first = numbers(40);
        const Values second = numbers(60, 53, 41.5);
        const MedianDifference found = compareMedians(first, second, 0.1);
        QVERIFY(std::abs(found.difference - 1.3) < 1e-9);
        QVERIFY2(std::abs(found.low + 1.0) < 0.15, qPrintable(QString::number(found.low)));
        QVERIFY2(std::abs(found.high - 3.4) < 0.15, qPrintable(QString::number(found.high)));
        QCOMPARE(compareMedians(first, second, 0.1).low, found.low);
        QVERIFY(!compareMedians(Values(5, 40.0), Values(5, 40.1), 0.1).isSlower()); // one step
        QVERIFY(!compareMedians(first.mid(36), second, 0.1).hasInterval());
    }

    /// Of fifty comparisons, few show a difference between equal links. Most show a real one.
    void coverage()
    {
        std::mt19937 random; // NOLINT(cert-msc32-c,cert-msc51-cpp): always the same numbers
        std::normal_distribution<> delay(120.0, 4.0);
        const auto countShown = [&](int n, double shift) {
            int shown = 0;
            for (int i = 0; i < 50; ++i) {
                Values first(n);
                Values second(n);
                std::generate(first.begin(), first.end(), [&] { return delay(random); });
                std::generate(second.begin(), second.end(), [&] { return delay(random) + shift; });
                const MedianDifference found = compareMedians(first, second, 0.1);
                shown += int(found.isSlower() || found.isFaster());
            }
            return shown;
        };
        QVERIFY(countShown(5, 0.0) <= 5);
        QVERIFY(countShown(20, 0.0) <= 5);
        QVERIFY(countShown(20, 6.0) >= 40);
    }

    /// If every sampling instant has the same number of values, so has every bin.
    void histogramHasNoComb()
    {
        const double interval = 0.10000833; // ms
        for (const int instants : {17, 90, 333, 5000}) {
            Values values;
            for (int i = 0; i < 3 * instants; ++i) {
                values += (450 + i % instants) * interval;
            }
            const Bins bins = chooseBins({values}, interval, values.first(), values.last());
            QVector<int> counts = countValues(values, bins).mid(1, bins.count);
            QCOMPARE(std::accumulate(counts.begin(), counts.end(), 0), values.size());
            QVERIFY(counts.size() < 502);
            counts.removeLast(); // it need not be full
            QCOMPARE(counts.count(counts.value(0)), counts.size());
        }
        QCOMPARE(countValues({5, 5}, chooseBins({{5, 5}}, 0.1, 5, 5)), (QVector<int>{0, 2, 0}));
    }
};

QTEST_GUILESS_MAIN(StatisticsTest)
#include "StatisticsTest.moc"
