#include "analysis/Statistics.h"
#include "analysis/Histogram.h"
#include "analysis/MedianDifference.h"
#include "instrument/NumberText.h"

#include <QtTest>

#include <cmath>
#include <numeric>

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

    void medianDifference_data()
    {
        QTest::addColumn<Values>("first");
        QTest::addColumn<Values>("second");
        QTest::addColumn<double>("difference");
        QTest::addColumn<double>("low"); // the ends of the interval, by 200000 resamplings
        QTest::addColumn<double>("high");
        QTest::newRow("no difference")
            << numbers(40) << numbers(60, 53, 41.5) << 1.3 << -1.0 << 3.4;
        QTest::newRow("slower") << numbers(21) << numbers(20, 53, 44.5) << 4.1 << 1.1 << 6.1;
        QTest::newRow("fewest values") << numbers(5) << numbers(8, 53, 41.5) << 1.8 << -3.2 << 5.8;
        QTest::newRow("one step") << Values(5, 40.0) << Values(5, 40.1) << 0.1 << 0.0 << 0.2;
        QTest::newRow("one step less") << Values(5, 40.1) << Values(5, 40.0) << -0.1 << -0.2 << 0.0;
    }
    void medianDifference()
    {
        QFETCH(const Values, first);
        QFETCH(const Values, second);
        const MedianDifference found = compareMedians(first, second, 0.1);
        const double spread = 0.15; // of intervals by 10000 resamplings
        QTEST(numberText(found.difference).toDouble(), "difference");
        QFETCH(const double, low);
        QVERIFY2(std::abs(found.low - low) < spread, qPrintable(QString::number(found.low)));
        QFETCH(const double, high);
        QVERIFY2(std::abs(found.high - high) < spread, qPrintable(QString::number(found.high)));
        QCOMPARE(found.isSlower(), low > 0);
        QCOMPARE(found.isFaster(), high < 0);
        QCOMPARE(compareMedians(first, second, 0.1).low, found.low); // always the same
        QVERIFY(!compareMedians(first.mid(0, 4), second, 0.1).hasInterval());
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
        const double between = 1199.5 * interval; // two steps: rounding must leave a bin
        QCOMPARE(chooseBins({{between}}, interval, between, between).count, 1);
        QCOMPARE(countValues({5, 5}, chooseBins({{5, 5}}, 0.1, 5, 5)), (QVector<int>{0, 2, 0}));
    }
};

QTEST_GUILESS_MAIN(StatisticsTest)
#include "StatisticsTest.moc"
