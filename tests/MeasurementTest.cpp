#include "measurement/DelayComputation.h"
#include "measurement/Globals.h"
#include "measurement/MeasurementRun.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TimeAxis.h"
#include "measurement/TraceFile.h"
#include "measurement/VectorCapacity.h"
#include "measurement/WaveformTransfer.h"
#include "VisaDouble.h"

#include <QtTest>

#include <cmath>
#include <cstring>

namespace {

constexpr int kvx = 0;
constexpr int lpa4004 = 1;

/// A trace of n samples at one level, with another level from one index on.
QVector<double> step(int n, double from, int index, double to)
{
    QVector<double> trace(n, from);
    std::fill(trace.begin() + index, trace.end(), to);
    return trace;
}

QByteArray blockOf(const QVector<double> &trace)
{
    return blockOf(QVector<float>(trace.begin(), trace.end()));
}

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

bool traceFileIsLeft()
{
    QDirIterator files(QDir::tempPath(), {"Trace.tmp"}, QDir::Files, QDirIterator::Subdirectories);
    return files.hasNext();
}

const QVector<double> goodSource = step(11, 0.005, 2, 0.15);

/// Instruments that answer a whole series, in records of 11 samples.
struct Instruments : VisaDouble
{
    explicit Instruments(int type = lpa4004)
    {
        settings.oscilloscope = openQuietly("osc");
        settings.spectrumAnalyzer = openQuietly("sa");
        settings.videoAnalyzer = openQuietly("va");
        settings.oscilloscopeType = type;
        settings.count = 1;
        answer = [this](const QString &, const QByteArray &command) -> std::optional<QByteArray> {
            if (command == "CHAN1:DATA?\n") {
                return blockOf(sources.value(attempts++, goodSource));
            }
            if (command == "CHAN2:DATA?\n") {
                return blockOf(step(11, 0.01, 9, 0.0625));
            }
            if (command == "CHAN3:DATA?\n" || command.startsWith("TRAC? ")) {
                return blockOf(step(11, -80, 3, -20));
            }
            return command == "READ:AVDA:TTV:STAT?\n"  ? hdmiState
                   : command == "READ:AVDA:TTV:VAL?\n" ? QByteArray("95.5\n")
                                                       : QByteArray("1\n");
        };
    }

    int run() { return runSeries(settings, &d1_src, &d2_rf, &d3_snk, &t); }

    SeriesSettings settings;
    QVector<QVector<double>> sources; ///< one for each attempt; then good ones
    QByteArray hdmiState = "1\n";
    int attempts = 0;
};

} // namespace

class MeasurementTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> directory;

    /// The saved files, without their time stamp.
    QStringList savedFiles() const
    {
        QStringList names = QDir(directory->path()).entryList(QDir::Files, QDir::Name);
        return names.replaceInStrings(
            QRegularExpression("^data\\d{4}-\\d\\d-\\d\\d_\\d\\d-\\d\\d-\\d\\d_"), "*");
    }

private slots:
    void initTestCase() { QVERIFY(!traceFileIsLeft()); }

    void init()
    {
        directory = std::make_unique<QTemporaryDir>();
        for (QVector<double> *trace : {&d1_src, &d2_rf, &d3_snk, &t}) {
            trace->clear();
        }
        NSmp = 0;
    }

    void transfer_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QVector<double>>("samples");

        const auto good = [](const char *name, const QByteArray &reply, QVector<double> samples) {
            QTest::newRow(name) << reply << true << samples;
        };
        const auto bad = [](const char *name, const QByteArray &reply) {
            QTest::newRow(name) << reply << false << QVector<double>{7, 8};
        };
        const QByteArray one("\0\0\x80\x3F", 4); // 1.0F in little-endian order
        good("two samples", "#18" + one + one + "\n", {1, 1});
        good("nine digits", "#9000000004" + one + "\n", {1});
        good("no terminator", "#14" + one, {1});
        good("terminators in the data", "#14\n\n\n\n\n", {double(0x1.141414p-107F)});
        good("infinity", QByteArray("#14\0\0\x80\x7F\n", 8), {qInf()});
        good("empty", "#10\n", {});
        good("three bytes", "#13abc\n", {});
        good("rest of a sample", "#16" + one + "ab\n", {1});
        good("declared longer", "#3400" + one + one, {1, 1});
        good("declared shorter", "#14" + one + one + "\n", {1});
        bad("text", "0.1,0.2\n");
        bad("one byte", "#");
        bad("no digit count", "#x4abcd\n");
        bad("just below the digits", "#/4abcd\n");
        bad("no digit in the length", "#21x" + one + one + "\n");
        bad("sign in the length", "#2+4" + one + "\n");
        bad("ends in the length", "#512");
        bad("nothing after the length", "#14");
    }

    void transfer()
    {
        QFETCH(const QByteArray, reply);
        QFETCH(const bool, success);
        QFETCH(const QVector<double>, samples);

        VisaDouble visa;
        visa.answer = [&](const QString &, const QByteArray &) { return reply; };
        QVector<double> trace = {7, 8};
        QCOMPARE(queryTrace(visa.openQuietly("osc"), "CHAN1:DATA?\n", &trace), success);
        QCOMPARE(trace, samples);
        QVERIFY(!traceFileIsLeft());
    }

    /// Remarks of VISA are no failures of a transfer; a failed write is, but not to its caller.
    void transferStatuses()
    {
        struct Case
        {
            VisaDouble::At where;
            int call;
            ViStatus status;
            bool result;
            bool replaced;
        };
        using At = VisaDouble::At;
        for (const Case &c : {Case{At::Write, 0, VI_ERROR_IO, true, false},
                              Case{At::Write, 0, VI_SUCCESS_TERM_CHAR, true, false},
                              Case{At::Read, 0, VI_SUCCESS_TERM_CHAR, true, true},
                              Case{At::Read, 1, VI_SUCCESS_TERM_CHAR, true, true},
                              Case{At::Read, 2, VI_SUCCESS_TERM_CHAR, true, true},
                              Case{At::Read, 0, VI_ERROR_TMO, false, false},
                              Case{At::Read, 1, VI_ERROR_TMO, false, false},
                              Case{At::Read, 2, VI_ERROR_TMO, false, false}}) {
            VisaDouble visa;
            visa.answer = [&](const QString &, const QByteArray &) { return blockOf(goodSource); };
            visa.failAt(c.where, c.call, c.status);
            QVector<double> trace = {7};
            QCOMPARE(queryTrace(visa.openQuietly("osc"), "CHAN1:DATA?\n", &trace), c.result);
            QCOMPARE(trace.size(), c.replaced ? 11 : 1);
            QCOMPARE(visa.takeTranscript().size(), c.where == At::Write ? 1
                                                   : c.result           ? 4
                                                                        : c.call + 2);
            QVERIFY(!traceFileIsLeft());
        }
    }

    /// Edges by index, in records of 101 samples.
    void delays_data()
    {
        QTest::addColumn<QVector<double>>("source");
        QTest::addColumn<QVector<double>>("rf");
        QTest::addColumn<QVector<double>>("sink");
        QTest::addColumn<QVector<int>>("edges");

        const int n = 101;
        const auto source = step(n, 0.0, 20, 0.1);
        const auto rf = step(n, 0.0, 40, 0.2);
        const auto sink = step(n, 0.0, 60, 0.1);
        const auto add = [](const char *name, const QVector<double> &sourceTrace,
                            const QVector<double> &rfTrace, const QVector<double> &sinkTrace,
                            const QVector<int> &edges) {
            QTest::newRow(name) << sourceTrace << rfTrace << sinkTrace << edges;
        };
        const auto runs = [&](const QVector<QPair<int, int>> &startsAndLengths) {
            QVector<double> trace(n, 0.05);
            for (const auto &[start, length] : startsAndLengths) {
                std::fill_n(trace.begin() + start, length, 0.0501);
            }
            return trace;
        };
        add("three edges", source, rf, sink, {20, 40, 60});
        add("rise of 35 mV", step(n, 0.0, 20, 0.035), rf, sink, {n, n, 60});
        add("rise just above", step(n, 0.0, 20, 0.0351), rf, sink, {20, 40, 60});
        add("rise from its first sample", step(n, 0.2, 20, 0.23), rf, sink, {n, n, 60});
        add("source NaN", step(n, 0.0, 20, qQNaN()), rf, sink, {n, n, 60});
        add("seven, then eight", source, runs({{30, 7}, {38, 8}}), sink, {20, 38, 60});
        add("RF before the source", source, runs({{5, 12}}), sink, {20, n, 60});
        add("RF across the source", source, runs({{15, 13}}), sink, {20, 20, 60});
        add("too short after it", source, runs({{15, 12}}), sink, {20, n, 60});
        add("last eight of RF", source, runs({{n - 8, 8}}), sink, {20, n - 8, 60});
        add("last seven of RF", source, runs({{n - 7, 7}}), sink, {20, n, 60});
        add("RF run past the record", source, step(n + 7, 0.0, n - 1, 0.2), sink, {20, n - 1, 60});
        add("RF run after the record", source, step(n + 20, 0.0, n, 0.2), sink, {20, n, 60});
        add("sink of 60 mV", source, rf, step(n, 0.0, 60, 0.06), {20, 40, 60});
        add("sink just below", source, rf, step(n, 0.0, 60, 0.0599), {20, 40, n});
        add("sink high from the start", source, rf, step(n, 0.1, 0, 0.1), {20, 40, 0});
        add("no traces", {}, {}, {}, {n, n, n});
        add("short source and sink", source.mid(0, 20), rf, sink.mid(0, 60), {n, n, n});
        add("short RF", source, rf.mid(0, 47), sink, {20, n, 60});
    }

    void delays()
    {
        QFETCH(const QVector<double>, source);
        QFETCH(const QVector<double>, rf);
        QFETCH(const QVector<double>, sink);
        QFETCH(const QVector<int>, edges);

        // The RF instant alone is computed; the others are what the axis says.
        QVector<double> axis;
        for (int i = 0; i <= 101; ++i) {
            axis << i * 10.0;
        }
        const Delays found = computeDelays(101, source, rf, sink, axis, kvx);
        QCOMPARE(found.sourceInstant, edges[0] * 10.0);
        QCOMPARE(found.rfInstant, edges[1] / 100.0 - 0.5);
        QCOMPARE(found.sinkInstant, edges[2] * 10.0);
        QCOMPARE(found.sourceToRf, (found.rfInstant - found.sourceInstant) * 1000);
        QCOMPARE(found.sourceToSink, (found.sinkInstant - found.sourceInstant) * 1000);
    }

    /// Edges at 300 (source), 500 (RF) and 600 (sink) of 1001 samples, over some axes.
    void delaysOnAxes()
    {
        const double past = 100 / 99.0 - 0.5; // index 100 of 100 samples
        struct Case
        {
            int type;
            int n;
            int axes;
            Delays expected;
        };
        for (const Case &c : {Case{kvx, 1001, 1, {-0.2, 0, 0.1, 0, 300}}, // RF on the trigger
                              Case{lpa4004, 1001, 1, {-0.24, 0, 0.12, 0, 360}},
                              Case{kvx, 1001, 0, {-0.2, 0, 0.1, 0, 300}},
                              Case{kvx, 100, 1, {past, past, past, 0, 0}},
                              Case{kvx, 100, 2, {-0.5, past, -0.5, (past + 0.5) * 1000, 0}},
                              Case{lpa4004, 0, 1, {-0.6, -0.6, -0.6, 0, 0}},
                              Case{kvx, -5, 0, {-0.5, -0.5, -0.5, 0, 0}}}) {
            QVector<double> axis;
            for (int i = 0; i < c.axes; ++i) {
                appendTimeAxis(c.n, c.type, &axis);
            }
            const Delays found =
                computeDelays(c.n, step(1001, 0, 300, 0.1), step(1001, 0, 500, 0.2),
                              step(1001, 0, 600, 0.1), axis, c.type);
            QCOMPARE(found.sourceInstant, c.expected.sourceInstant);
            QCOMPARE(found.rfInstant, c.expected.rfInstant);
            QCOMPARE(found.sinkInstant, c.expected.sinkInstant);
            QCOMPARE(found.sourceToRf, c.expected.sourceToRf);
            QCOMPARE(found.sourceToSink, c.expected.sourceToSink);
        }
    }

    void envelope()
    {
        QVector<double> rf = {-80, -20, -50, qQNaN()};
        normaliseEnvelope(&rf);
        QCOMPARE(rf.mid(0, 3), QVector<double>({0.0, 0.2, 0.1}));
        QVector<double> flat = {-80, -80};
        normaliseEnvelope(&flat);
        QVERIFY(std::isnan(flat[0]) && std::isnan(flat[1]));
    }

    void timeAxis()
    {
        QVector<double> axes = {1};
        appendTimeAxis(1001, kvx, &axes);
        appendTimeAxis(1001, lpa4004, &axes);
        QCOMPARE(axes.size(), 1 + 2 * 1001);
        QCOMPARE(QVector<double>({axes[1], axes[2], axes[1001], axes[1002], axes[1003]}),
                 QVector<double>({-0.5, -0.499, 0.5, -0.6, -0.5988}));

        // At its ceiling the vector is full, and another axis changes nothing.
        axes.resize(maxVectorSize - 1);
        for (int i = 0; i < 2; ++i) {
            appendTimeAxis(1001, kvx, &axes);
            QCOMPARE(axes.size(), maxVectorSize);
            QCOMPARE(axes.last(), -0.5);
        }
    }

    void traceFiles()
    {
        const QString name = directory->filePath("trace.bin");
        const QVector<double> trace = {0.1, -1e300, qInf(), qQNaN(), 5};
        QCOMPARE(saveTrace(name, trace, 4), 0);
        QVector<double> loaded = {1, 2, 3};
        int count = -1;
        QCOMPARE(loadTrace(name, &loaded, &count), 0);
        QCOMPARE(count, 4);
        QCOMPARE(loaded.size(), 7);
        QCOMPARE(std::memcmp(loaded.constData() + 3, trace.constData(), 4 * sizeof(double)), 0);

        for (const auto &[asked, written] : {std::pair{9, 5}, std::pair{0, 0}, std::pair{-1, 0}}) {
            QCOMPARE(saveTrace(name, trace, asked), 0); // a shorter file replaces the longer one
            QCOMPARE(contents(name).size(), written * 8);
        }
        for (const auto &[size, samples] : {std::pair{20, 2}, std::pair{0, 0}}) {
            QVERIFY(QFile::resize(name, size));
            loaded = {1};
            QCOMPARE(loadTrace(name, &loaded, &count), 0);
            QCOMPARE(count, samples);
            QCOMPARE(loaded.size(), 1 + samples);
        }
        QCOMPARE(saveTrace(directory->path(), trace, 1), -1);
        QCOMPARE(loadTrace(directory->filePath("none"), &loaded, &count), -1);
        QCOMPARE(loadTrace(directory->path(), &loaded, &count), -1);
        QCOMPARE(loaded.size(), 1);
    }

    /// What the instruments see of a series of two, and the files that it leaves.
    void wholeSeries_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("ifDemodulation");
        for (const int type : {kvx, lpa4004}) {
            for (const bool ifDemodulation : {false, true}) {
                QTest::addRow("%s%s", type == kvx ? "KVx" : "LPA4004", ifDemodulation ? " IF" : "")
                    << type << ifDemodulation;
            }
        }
    }

    void wholeSeries()
    {
        QFETCH(const int, type);
        QFETCH(const bool, ifDemodulation);

        const auto query = [](const QString &command) {
            return QStringList{command + ";*OPC?\\n", command.section(' ', 0, 0) + " >"};
        };
        const auto trace = [](const QString &command) {
            const QString instrument = command.section(' ', 0, 0);
            return QStringList{command + "\\n", instrument + " >", instrument + " >",
                               instrument + " >file"};
        };
        QStringList record = query("sa < INIT:CONT OFF");
        if (type == kvx) {
            record << query("osc < INIT:CONT OFF") << query("osc < *TRG")
                   << query("osc < FORM REAL,32") << trace("osc < CHAN1:DATA?");
        } else {
            record << query("osc < SING") << query("osc < FORM REAL,32") << query("osc < *TRG")
                   << trace("osc < CHAN1:DATA?") << query("sa < SWE:POIN 11");
        }
        record << (ifDemodulation ? trace("osc < CHAN3:DATA?")
                                  : query("sa < FORM REAL,32") + trace("sa < TRAC? TRACE1, 11"));
        record << "va < READ:AVDA:TTV:STAT?\\n"
               << "va >"
               << "va < READ:AVDA:TTV:COUN?\\n"
               << "va >"
               << "va < READ:AVDA:TTV:VAL?\\n"
               << "va >" << trace("osc < CHAN2:DATA?");

        Instruments visa(type);
        visa.settings.count = 2;
        visa.settings.rfFromOscilloscope = ifDemodulation;
        visa.settings.measureHdmi = true;
        visa.settings.save = true;
        visa.settings.filePrefix = directory->filePath("data");
        QCOMPARE(visa.run(), 0);

        QCOMPARE(visa.takeTranscript(), record + record +
                                            query(type == kvx ? "osc < RUNC" : "osc < RUN") +
                                            query("sa < INIT:CONT ON"));
        const double span = type == kvx ? 1.0 : 1.2; // edges at 20, 30 and 90 % of the record
        QCOMPARE(t_src, -0.3 * span);
        QCOMPARE(t_rf, -0.2 * span);
        QCOMPARE(t_snk, 0.4 * span);
        QCOMPARE(t.size(), 2 * 11);
        QVERIFY(!traceFileIsLeft());

        QCOMPARE(savedFiles(),
                 QStringList({"*001_rf.bin", "*001_snk.bin", "*001_src.bin", "*002_rf.bin",
                              "*002_snk.bin", "*002_src.bin", "*Results.txt"}));
        const auto saved = [&](const QString &kind) {
            QByteArrayList files;
            for (const QFileInfo &file : QDir(directory->path()).entryInfoList({"*" + kind})) {
                files << contents(file.filePath());
            }
            return files;
        };
        const auto twice = [](const QVector<double> &samples) {
            const QByteArray raw(reinterpret_cast<const char *>(samples.constData()), 8 * 11);
            return QByteArrayList{raw, raw};
        };
        QCOMPARE(saved("_src.bin"), twice(d1_src));
        QCOMPARE(saved("_rf.bin"), twice(d2_rf));
        QCOMPARE(d2_rf, step(11, 0, 3, 0.2));
        QCOMPARE(saved("_snk.bin"), twice(d3_snk));
        QByteArray results = "Source2RF Delay: 120 120\nSource2RF Mean: 120\n"
                             "Source2HD Delay: 95.5 95.5\nSource2HD Mean: 95.5\n"
                             "Source2Snk Delay: 840 840\nSource2Snk Mean: 840";
        if (type == kvx) {
            results.replace("120", "100").replace("840", "700");
        }
        QCOMPARE(saved("Results.txt"), QByteArrayList{results});
    }

    void retakes_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("0.3") << double(std::nextafter(0.3F, 1.0F)) << false;
        QTest::newRow("0.2999") << 0.2999 << true;
        QTest::newRow("-0.05") << double(-0.05F) << false; // the nearest float lies below -0.05
        QTest::newRow("-0.0499") << -0.0499 << true;
        QTest::newRow("NaN") << qQNaN() << false;
        QTest::newRow("infinity") << qInf() << false;
    }

    void retakes()
    {
        QFETCH(const double, start);
        QFETCH(const bool, accepted);

        Instruments visa;
        QVector<double> doubtful = goodSource;
        doubtful[0] = start;
        visa.sources = {doubtful, doubtful};
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.attempts, accepted ? 1 : 3);
        QCOMPARE(t.size(), visa.attempts * 11); // rejected records have their axes too
        QCOMPARE(visa.takeTranscript().filter("CHAN2:DATA?").size(), 1);
    }

    /// A failure ends its acquisition; the record before it serves instead.
    void brokenAcquisition_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("failing");
        QTest::addColumn<QStringList>("sent");

        const QStringList kvxChain = {"sa < INIT:CONT OFF", "osc < INIT:CONT OFF", "osc < *TRG",
                                      "osc < FORM REAL,32", "osc < CHAN1:DATA?"};
        const QStringList lpaChain = {"sa < INIT:CONT OFF", "osc < SING",
                                      "osc < FORM REAL,32", "osc < *TRG",
                                      "osc < CHAN1:DATA?",  "sa < SWE:POIN 11"};
        for (int i = 0; i < 5; ++i) {
            QTest::addRow("KVx %d", i) << kvx << i << QStringList(kvxChain.mid(0, i + 1));
            // SING is not waited for; a source query that was not written counts as a record.
            const int last = i == 1 || i == 4 ? 6 : i + 1;
            QTest::addRow("LPA4004 %d", i) << lpa4004 << i << QStringList(lpaChain.mid(0, last));
        }
    }

    void brokenAcquisition()
    {
        QFETCH(const int, type);
        QFETCH(const int, failing);
        QFETCH(const QStringList, sent);

        Instruments visa(type);
        visa.sources = {step(11, 0.1, 5, 0.2)};
        visa.failAt(VisaDouble::At::Write, failing, VI_ERROR_TMO);
        d1_src = goodSource;
        NSmp = 11;
        QCOMPARE(visa.run(), 0);
        QStringList written = visa.takeTranscript().filter(" < ");
        written.replaceInStrings(QRegularExpression("(;\\*OPC\\?)?\\\\n.*"), "");
        const QStringList rest = {"sa < FORM REAL,32", "sa < TRAC? TRACE1, 11", "osc < CHAN2:DATA?",
                                  type == kvx ? "osc < RUNC" : "osc < RUN", "sa < INIT:CONT ON"};
        QCOMPARE(written, sent + rest);
        QCOMPARE(d1_src == goodSource, visa.attempts == 0);
        QCOMPARE(t.size(), 11);
    }

    void hdmiStates()
    {
        const int before = 7; // writes: analyzer and record five, RF two
        for (const auto &[state, failing, delay, queries] : {std::tuple{"1\n", -1, 95.5, 3},
                                                             {"0\n", -1, 0.0, 1},
                                                             {"2\n", -1, 0.0, 1},
                                                             {"1\n", 0, 0.0, 1},
                                                             {"1\n", 1, 0.0, 2},
                                                             {"1\n", 2, 0.0, 3}}) {
            Instruments visa(kvx);
            visa.hdmiState = state;
            visa.settings.measureHdmi = true;
            visa.failAt(VisaDouble::At::Write, before + failing,
                        failing < 0 ? VI_SUCCESS : VI_ERROR_TMO);
            QCOMPARE(visa.run(), 0);
            QCOMPARE(mS2Hd, delay);
            QCOMPARE(visa.takeTranscript().filter("va < ").size(), queries);
        }
    }

    /// No measurement, no answer, no place for the results: the series ends all the same.
    void seriesWithoutMeasurements()
    {
        Instruments visa;
        visa.settings.count = 0;
        visa.settings.save = true;
        visa.settings.filePrefix = directory->filePath("data");
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.takeTranscript(), QStringList({"osc < RUN;*OPC?\\n", "osc >",
                                                     "sa < INIT:CONT ON;*OPC?\\n", "sa >"}));
        QVERIFY(std::isnan(mS2Rf) && std::isnan(mS2Hd) && std::isnan(mS2Snk));
        QCOMPARE(savedFiles(), QStringList{"*Results.txt"});
        QCOMPARE(contents(QDir(directory->path()).entryInfoList(QDir::Files).first().filePath()),
                 QByteArray("Source2RF Delay:\nSource2RF Mean: nan\nSource2HD Delay:\n"
                            "Source2HD Mean: nan\nSource2Snk Delay:\nSource2Snk Mean: nan"));

        visa.settings.count = -3;
        visa.settings.filePrefix = directory->filePath("missing/data");
        QCOMPARE(visa.run(), -1);
        QVERIFY(mS2Rf == 0.0 && std::signbit(mS2Rf));
        QCOMPARE(savedFiles().size(), 1);

        visa.settings.count = 1;
        QCOMPARE(visa.run(), -1);
        QCOMPARE(mS2Snk, 840.0);

        d1_src.clear();
        visa.settings.oscilloscope = 0; // it never answered: there is no record to wait for
        QCOMPARE(visa.run(), -1);
        QVERIFY(d1_src.isEmpty());
    }
};

QTEST_GUILESS_MAIN(MeasurementTest)
#include "MeasurementTest.moc"
