#include "BoundBench.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"
#include "TestFiles.h"

#include <QtTest>

#include <algorithm>
#include <ctime>
#include <unistd.h>

QString visaLibraryPath()
{
    return {}; // the bench is linked, and bound by hand
}

namespace {

/// Bytes of this process that are in memory.
qint64 residentBytes()
{
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// Processor time of this process, which other programs do not lengthen.
double processorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double median(QVector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

/// What is noted at the beginning of every record.
struct Mark
{
    double time = 0.0;
    qint64 bytes = 0;
};
QVector<Mark> marks;

} // namespace

class LongSeriesTest : public QObject
{
    Q_OBJECT

private slots:
    /// An afternoon in one series: only the time axes grow, and nothing becomes slower.
    void afternoon()
    {
        constexpr int measurements = 2000;
        constexpr int samples = 4000;
        bindBench();
        BenchInstruments bench(0, true);
        QVERIFY(bench.setUpAll() && bench.shortenRecords(samples));
        bench.series.measureHdmi = true;
        p_viWrite = [](ViSession session, const ViByte *buffer, ViUInt32 count, ViUInt32 *written) {
            const QByteArray command(reinterpret_cast<const char *>(buffer),
                                     static_cast<int>(count));
            if (command == "*TRG;*OPC?\n") {
                marks.append({processorSeconds(), residentBytes()});
            }
            return viWrite(session, buffer, count, written);
        };

        bench.series.count = 10;
        QCOMPARE(runSeries(bench.series, &d1_src, &d2_rf, &d3_snk, &t), 0);
        const int descriptors = openDescriptors();
        ViSession before = 0;
        ViSession after = 0;
        viOpenDefaultRM(&before);
        marks.clear();
        marks.reserve(2 * measurements);

        bench.series.count = measurements;
        t.clear();
        t.squeeze();
        QCOMPARE(runSeries(bench.series, &d1_src, &d2_rf, &d3_snk, &t), 0);

        const int attempts = marks.size();
        QVERIFY(attempts > measurements); // the retakes were seen
        QCOMPARE(t.size(), attempts * samples);
        QCOMPARE(openDescriptors(), descriptors);
        viOpenDefaultRM(&after);
        QCOMPARE(after, before + 1); // handles are counted up: nothing was opened in between
        viClose(before);
        viClose(after);

        // The first and the last hundred records.
        QVector<double> times;
        for (int i = 1; i < attempts; ++i) {
            times.append(marks[i].time - marks[i - 1].time);
        }
        const double early = median(times.mid(0, 100));
        const double late = median(times.mid(times.size() - 100));
        qInfo("%d attempts; processor time of a record: first hundred %.3f ms, last %.3f ms (%+.1f "
              "%%)",
              attempts, early * 1e3, late * 1e3, (late / early - 1.0) * 100.0);
        QVERIFY(late < 2.0 * early); // generous: moving the axes at every record costs ten times

#ifndef __SANITIZE_ADDRESS__ // which keeps a shadow of the memory, and what was freed
        const int warm = 100;
        const auto grown = static_cast<double>(marks.last().bytes - marks[warm].bytes);
        const double perAttempt = grown / (attempts - 1 - warm);
        qInfo("memory: %.0f bytes for each attempt, %d of them its time axis", perAttempt,
              samples * 8);
        QVERIFY(std::abs(perAttempt - samples * 8) < 0.01 * samples * 8);
#endif
    }
};

QTEST_GUILESS_MAIN(LongSeriesTest)
#include "LongSeriesTest.moc"
