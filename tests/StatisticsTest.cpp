#include "analysis/Statistics.h"
#include "analysis/Histogram.h"
#include "analysis/MedianDifference.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace {

using Values = QVector<double>;

/// Values without order: the literals that belong to them are those of numpy 1.24.
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
        QTest::addColumn<Values>("numpy"); // as computeStatistics() has them
        const double none = Statistics::none;
        QTest::newRow("no value") << 0
                                  << Values{none, none, none, none, none, none, none, none, none};
        QTest::newRow("one value") << 1 << Values{40, 40, 40, 40, none, none, none, none, none};
        QTest::newRow("too few for P5")
            << 19 << Values{40,   46.4, 45.636842105263156,  49.6, 2.8750286039767, none,
                            none, none, 0.031240656028269326};
        QTest::newRow("enough for P5")
            << 20
            << Values{
                   40, 44.7, 45.48, 49.6, 2.8849153960047538, 40, 49.2, none, 0.007788429919307244};
        QTest::newRow("too few for P99")
            << 99 << Values{40,   45.2, 45.01616161616161,   50, 3.0862667187603816, 40.4,
                            49.6, none, -0.07633931645412424};
        QTest::newRow("enough for P99")
            << 100 << Values{40,   44.9, 45.01299999999999,   50, 3.070802711495692, 40.4,
                             49.6, 50,   -0.07563144399606209};
    }
    void statistics()
    {
        QFETCH(const int, n);
        QFETCH(const Values, numpy);
        const Statistics s = computeStatistics(numbers(n));
        const Values found = {s.minimum, s.median, s.mean, s.maximum,    s.deviation,
                              s.p5,      s.p95,    s.p99,  s.correlation};
        for (int i = 0; i < found.size(); ++i) {
            QVERIFY2(std::isnan(numpy[i]) ? std::isnan(found[i])
                                          : std::abs(found[i] - numpy[i]) < 1e-11,
                     qPrintable(QString("%1: %2").arg(i).arg(found[i], 0, 'g', 17)));
        }
    }

    /// Where all values are equal, the rounding of their mean is no correlation.
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
        QVERIFY(!compareMedians({5, 5, 5, 5, 5}, {6, 6, 6, 6, 6}, 1.0).isShown());
        QVERIFY(!compareMedians(first.mid(36), second, 0.1).hasInterval());
    }

    /// Equal links differ in few of fifty comparisons, others in most.
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
                shown += int(compareMedians(first, second, 0.1).isShown());
            }
            return shown;
        };
        QVERIFY(countShown(5, 0.0) <= 5);
        QVERIFY(countShown(20, 0.0) <= 5);
        QVERIFY(countShown(20, 6.0) >= 40);
    }

    /// Values at every sampling instant alike fill all bins alike, whatever their number.
    void histogramHasNoComb()
    {
        const double interval = 0.10000833; // ms
        for (const int instants : {17, 90, 333, 5000}) {
            Values values;
            for (int i = 0; i < 3 * instants; ++i) {
                values += (450 + i % instants) * interval;
            }
            for (const double known : {interval, 0.0}) {
                const Bins bins = chooseBins({values}, known, values.first(), values.last());
                QVector<int> counts = countValues(values, bins).mid(1, bins.count);
                QCOMPARE(std::accumulate(counts.begin(), counts.end(), 0), values.size());
                counts.removeLast(); // it need not be full
                QVERIFY(!counts.isEmpty() && counts.size() < 502);
                QCOMPARE(counts.count(counts[0]), counts.size());
            }
        }
        QCOMPARE(countValues({5, 5}, chooseBins({{5, 5}}, 0.0, 5, 5)), (QVector<int>{0, 2, 0}));
        QCOMPARE(chooseBins({{}}, 0.1, 0, 1).count, 0);
    }
};

QTEST_GUILESS_MAIN(StatisticsTest)
#include "StatisticsTest.moc"
