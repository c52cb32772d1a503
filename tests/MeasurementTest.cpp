#include "measurement/DelayComputation.h"
#include "measurement/Globals.h"
#include "measurement/MeasurementRun.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TimeAxis.h"
#include "measurement/VectorCapacity.h"
#include "TestFiles.h"
#include "VisaDouble.h"

#include <QtTest>

#include <cmath>

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

    const QTemporaryDir temporaryFiles; // its own, for other tests may be transferring traces
    std::unique_ptr<QTemporaryDir> directory;

    /// The saved files by their names without prefix and time stamp, with their contents.
    [[nodiscard]] QMap<QString, QByteArray> savedFiles() const
    {
        const QRegularExpression stamp(R"(^data\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d_)");
        QMap<QString, QByteArray> files;
        const QMap<QString, QByteArray> stamped = filesIn(directory->path());
        for (QString name : stamped.keys()) {
            const QByteArray &bytes = stamped[name];
            files[name.remove(stamp)] = bytes;
        }
        return files;
    }

    /// What the instruments see of a series of two, and the files that it leaves.
    void wholeSeries(int type, bool ifDemodulation)
    {
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
        for (const char *item : {"STAT", "COUN", "VAL"}) {
            record << QString("va < READ:AVDA:TTV:%1?\\n").arg(item) << "va >";
        }
        record << trace("osc < CHAN2:DATA?");

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

        QCOMPARE(d2_rf, step(11, 0, 3, 0.2));
        QMap<QString, QByteArray> expected;
        for (const auto &[kind, samples] :
             {std::pair{"src", d1_src}, std::pair{"rf", d2_rf}, std::pair{"snk", d3_snk}}) {
            expected[QString("001_%1.bin").arg(kind)] = bytesOf(samples);
            expected[QString("002_%1.bin").arg(kind)] = bytesOf(samples);
        }
        QByteArray results = "Source2RF Delay: 120 120\nSource2RF Mean: 120\n"
                             "Source2HD Delay: 95.5 95.5\nSource2HD Mean: 95.5\n"
                             "Source2Snk Delay: 840 840\nSource2Snk Mean: 840";
        if (type == kvx) {
            results.replace("120", "100").replace("840", "700");
        }
        expected["Results.txt"] = results;
        QCOMPARE(savedFiles(), expected);
    }

private slots:
    void initTestCase() { qputenv("TMPDIR", temporaryFiles.path().toLocal8Bit()); }

    void init()
    {
        directory = std::make_unique<QTemporaryDir>();
        for (QVector<double> *trace : {&d1_src, &d2_rf, &d3_snk, &t}) {
            trace->clear();
        }
        NSmp = 0;
    }

    /// Edges by index, in records of 101 samples.
    void delays()
    {
        const int n = 101;
        const auto source = step(n, 0.0, 20, 0.1);
        const auto rf = step(n, 0.0, 40, 0.2);
        const auto sink = step(n, 0.0, 60, 0.1);
        const auto runs = [&](const QVector<QPair<int, int>> &startsAndLengths) {
            QVector<double> trace(n, 0.05);
            for (const auto &[start, length] : startsAndLengths) {
                std::fill_n(trace.begin() + start, length, 0.0501);
            }
            return trace;
        };
        // Instants by the axis, but for the RF instant, which is computed.
        QVector<double> axis(n + 1);
        for (int i = 0; i <= n; ++i) {
            axis[i] = i * 10;
        }
        using Trace = QVector<double>;
        using Edges = QVector<int>;
        for (const auto &[name, sourceTrace, rfTrace, sinkTrace, edges] :
             std::initializer_list<std::tuple<const char *, Trace, Trace, Trace, Edges>>{
                 {"rise of 35 mV", step(n, 0.0, 20, 0.035), rf, sink, {n, n, 60}},
                 {"rise just above", step(n, 0.0, 20, 0.0351), rf, sink, {20, 40, 60}},
                 {"rise from its first sample", step(n, 0.2, 20, 0.23), rf, sink, {n, n, 60}},
                 {"source NaN", step(n, 0.0, 20, qQNaN()), rf, sink, {n, n, 60}},
                 {"seven, then eight", source, runs({{30, 7}, {38, 8}}), sink, {20, 38, 60}},
                 {"too short after it", source, runs({{15, 12}}), sink, {20, n, 60}},
                 {"last eight of RF", source, runs({{n - 8, 8}}), sink, {20, n - 8, 60}},
                 {"last seven of RF", source, runs({{n - 7, 7}}), sink, {20, n, 60}},
                 {"RF past the record",
                  source,
                  step(n + 7, 0.0, n - 1, 0.2),
                  sink,
                  {20, n - 1, 60}},
                 {"RF after the record", source, step(n + 20, 0.0, n, 0.2), sink, {20, n, 60}},
                 {"sink of 60 mV", source, rf, step(n, 0.0, 60, 0.06), {20, 40, 60}},
                 {"sink just below", source, rf, step(n, 0.0, 60, 0.0599), {20, 40, n}},
                 {"no traces", {}, {}, {}, {n, n, n}},
                 {"short source and sink", source.mid(0, 20), rf, sink.mid(0, 60), {n, n, n}},
                 {"short RF", source, rf.mid(0, 47), sink, {20, n, 60}}}) {
            const Delays found = computeDelays(n, sourceTrace, rfTrace, sinkTrace, axis, kvx);
            const Edges foundEdges = {qRound(found.sourceInstant / 10),
                                      qRound((found.rfInstant + 0.5) * 100),
                                      qRound(found.sinkInstant / 10)};
            QVERIFY2(foundEdges == edges, name);
        }
    }

    /// Edges at 300 (source), 500 (RF) and 600 (sink) of 1001 samples, over some axes.
    void delaysOnAxes()
    {
        const double past = 100 / 99.0 - 0.5; // index 100 of 100 samples
        for (const auto &[type, n, axes, expected] :
             {std::tuple{kvx, 1001, 1, Delays{-0.2, 0, 0.1, 0, 300}}, // RF on the trigger
              {lpa4004, 1001, 1, {-0.24, 0, 0.12, 0, 360}},
              {kvx, 1001, 0, {-0.2, 0, 0.1, 0, 300}},
              {kvx, 100, 1, {past, past, past, 0, 0}},
              {kvx, 100, 2, {-0.5, past, -0.5, (past + 0.5) * 1000, 0}},
              {lpa4004, 0, 1, {-0.6, -0.6, -0.6, 0, 0}},
              {kvx, -5, 0, {-0.5, -0.5, -0.5, 0, 0}}}) {
            QVector<double> axis;
            for (int i = 0; i < axes; ++i) {
                appendTimeAxis(n, type, &axis);
            }
            const Delays found = computeDelays(n, step(1001, 0, 300, 0.1), step(1001, 0, 500, 0.2),
                                               step(1001, 0, 600, 0.1), axis, type);
            QCOMPARE(found.sourceInstant, expected.sourceInstant);
            QCOMPARE(found.rfInstant, expected.rfInstant);
            QCOMPARE(found.sinkInstant, expected.sinkInstant);
            QCOMPARE(found.sourceToRf, expected.sourceToRf);
            QCOMPARE(found.sourceToSink, expected.sourceToSink);
        }
    }

    void envelope()
    {
        QVector<double> rf = {-80, -20, -50, qQNaN()};
        normaliseEnvelope(&rf);
        QCOMPARE(rf.mid(0, 3), QVector<double>({0.0, 0.2, 0.1}));
        rf = {-80};
        normaliseEnvelope(&rf);
        QVERIFY(std::isnan(rf[0]));
    }

    /// At its ceiling the vector is full, and another axis changes nothing.
    void timeAxis()
    {
        QVector<double> axes;
        axes.reserve(maxVectorSize);
        axes.resize(maxVectorSize - 1);
        for (int i = 0; i < 2; ++i) {
            appendTimeAxis(1001, kvx, &axes);
            QCOMPARE(axes.size(), maxVectorSize);
            QCOMPARE(axes.last(), -0.5);
        }
    }

    void seriesLpa4004() { wholeSeries(lpa4004, false); }

    void seriesLpa4004WithIfOutput() { wholeSeries(lpa4004, true); }

    void seriesKvx() { wholeSeries(kvx, false); }

    void seriesKvxWithIfOutput() { wholeSeries(kvx, true); }

    void retakes()
    {
        for (const auto &[start, accepted] :
             {std::pair{double(std::nextafter(0.3F, 1.0F)), false},
              {0.2999, true},
              {double(-0.05F), false}, // the nearest float lies below -0.05
              {-0.0499, true},
              {qQNaN(), false},
              {qInf(), false}}) {
            init();
            Instruments visa;
            QVector<double> doubtful = goodSource;
            doubtful[0] = start;
            visa.sources = {doubtful, doubtful};
            QCOMPARE(visa.run(), 0);
            QVERIFY2(visa.attempts == (accepted ? 1 : 3), qPrintable(QString::number(start)));
            QCOMPARE(t.size(), visa.attempts * 11); // rejected records have their axes too
            QCOMPARE(visa.takeTranscript().filter("CHAN2:DATA?").size(), 1);
        }
    }

    /// A failure ends its acquisition; the record before it serves instead.
    void brokenAcquisition()
    {
        for (const auto &[type, chain] :
             {std::pair{kvx, QStringList{"sa < INIT:CONT OFF", "osc < INIT:CONT OFF", "osc < *TRG",
                                         "osc < FORM REAL,32", "osc < CHAN1:DATA?"}},
              {lpa4004, QStringList{"sa < INIT:CONT OFF", "osc < SING", "osc < FORM REAL,32",
                                    "osc < *TRG", "osc < CHAN1:DATA?", "sa < SWE:POIN 11"}}}) {
            for (int failing = 0; failing < 5; ++failing) {
                Instruments visa(type);
                visa.sources = {step(11, 0.1, 5, 0.2)};
                visa.failAt(VisaDouble::At::Write, failing, VI_ERROR_TMO);
                t.clear();
                d1_src = goodSource;
                NSmp = 11;
                QCOMPARE(visa.run(), 0);
                QStringList written = visa.takeTranscript().filter(" < ");
                written.replaceInStrings(QRegularExpression(R"((;\*OPC\?)?\\n.*)"), "");
                // SING is not waited for; a source query that was not written counts as a record.
                const bool goesOn = failing == 4 || (type == lpa4004 && failing == 1);
                const QStringList rest = {
                    "sa < FORM REAL,32", "sa < TRAC? TRACE1, 11", "osc < CHAN2:DATA?",
                    type == kvx ? "osc < RUNC" : "osc < RUN", "sa < INIT:CONT ON"};
                QCOMPARE(written, chain.mid(0, goesOn ? chain.size() : failing + 1) + rest);
                QCOMPARE(d1_src == goodSource, visa.attempts == 0);
                QCOMPARE(t.size(), 11);
            }
        }
    }

    /// The delay is read once the state is 1; the n-th query of the three may fail.
    void hdmiStates()
    {
        const int before = 7; // writes: analyzer and record five, RF two
        for (const auto &[state, failing, delay, queries] : {std::tuple{"1\n", 3, 95.5, 3},
                                                             {"0\n", 3, 0.0, 1},
                                                             {"2\n", 3, 0.0, 1},
                                                             {"1\n", 0, 0.0, 1},
                                                             {"1\n", 1, 0.0, 2},
                                                             {"1\n", 2, 0.0, 3}}) {
            Instruments visa(kvx);
            visa.hdmiState = state;
            visa.settings.measureHdmi = true;
            visa.failAt(VisaDouble::At::Write, before + failing, VI_ERROR_TMO);
            visa.run();
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
        const QMap<QString, QByteArray> emptyResults = {
            {"Results.txt", "Source2RF Delay:\nSource2RF Mean: nan\nSource2HD Delay:\n"
                            "Source2HD Mean: nan\nSource2Snk Delay:\nSource2Snk Mean: nan"}};
        QCOMPARE(savedFiles(), emptyResults);

        visa.settings.count = -3;
        visa.settings.filePrefix = directory->filePath("missing/data");
        QCOMPARE(visa.run(), -1);
        QVERIFY(mS2Rf == 0.0 && std::signbit(mS2Rf));

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
