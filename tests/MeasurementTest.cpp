#include "Line.h"
#include "measurement/DelayComputation.h"
#include "measurement/MeasurementRun.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TimeAxis.h"
#include "measurement/VectorCapacity.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr OscilloscopeType kvx = OscilloscopeType::Kvx;
constexpr OscilloscopeType lpa4004 = OscilloscopeType::Lpa4004;

/// A trace of n samples at one level, with another level from one index on.
QVector<double> step(int n, double from, int index, double to)
{
    QVector<double> trace(n, from);
    std::fill(trace.begin() + index, trace.end(), to);
    return trace;
}

const QVector<double> goodSource = step(11, 0.005, 2, 0.15);

QByteArray blockOf(const QVector<double> &samples)
{
    const QByteArray data = bytesOf(QVector<float>(samples.begin(), samples.end()));
    const QByteArray length = QByteArray::number(data.size());
    return '#' + QByteArray::number(length.size()) + length + data + '\n';
}

/// Instruments that answer a whole series, in records of 11 samples.
struct Instruments : Line
{
    explicit Instruments(OscilloscopeType type = lpa4004)
    {
        settings.oscilloscope = 1;
        settings.spectrumAnalyzer = 2;
        settings.videoAnalyzer = 3;
        open = {{1, "osc"}, {2, "sa"}, {3, "va"}};
        settings.oscilloscopeType = type;
        settings.count = 1;
        answer = [this](auto &, const QByteArray &command) -> std::optional<QByteArray> {
            return command == "CHAN1:DATA?\n"   ? blockOf(sources.value(attempts++, goodSource))
                   : command == "CHAN2:DATA?\n" ? blockOf(step(11, 0.01, 9, 0.0625))
                   : command == "CHAN3:DATA?\n" || command.startsWith("TRAC? ")
                       ? blockOf(step(11, -80, 3, -20))
                   : command.endsWith("STAT?\n") ? hdmiState
                   : command.endsWith("VAL?\n")  ? QByteArray("95.5\n")
                                                 : QByteArray("1\n");
        };
    }

    int run() { return runSeries(settings, &record, &results); }
    /// The n-th command is not sent.
    void failWrite(int n)
    {
        fails = [n, i = 0](auto &entry) mutable {
            return entry.contains(" < ") && i++ == n ? VI_ERROR_IO : VI_SUCCESS;
        };
    }
    /// The commands of the transcript, without what every query has.
    QStringList written()
    {
        QStringList commands = takeTranscript().filter(" < ");
        return commands.replaceInStrings(QRegularExpression(R"((;\*OPC\?)?\\n.*)"), "");
    }

    SeriesSettings settings;
    Record record;
    SeriesResults results;
    QVector<QVector<double>> sources; ///< one for each attempt; then good ones
    QByteArray hdmiState = "1\n";
    int attempts = 0;
};

} // namespace

class MeasurementTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir directory;

    /// The results files so far, by their names, which are removed.
    QByteArray takeResults() const
    {
        QByteArray text;
        for (const QString &name : QDir(directory.path()).entryList({"data*_Results.txt"})) {
            text += contents(directory.filePath(name));
            QFile::remove(directory.filePath(name));
        }
        return text;
    }

private slots:
    void initTestCase()
    {
        qputenv("TMPDIR", directory.path().toLocal8Bit()); // other tests may be transferring traces
        qputenv("XDG_RUNTIME_DIR", directory.path().toLocal8Bit());
    }

    /// Edges by index, in records of 101 samples.
    void edges()
    {
        const int n = 101;
        const auto src = step(n, 0.0, 20, 0.1);
        const auto rf = step(n, 0.0, 40, 0.2);
        const auto snk = step(n, 0.0, 60, 0.1);
        const auto runs = [&](const QVector<QPair<int, int>> &startsAndLengths) {
            QVector<double> trace(n, 0.05);
            for (const auto &[start, length] : startsAndLengths) {
                std::fill_n(trace.begin() + start, length, 0.0501);
            }
            return trace;
        };
        QVector<double> axis(n + 1); // of all instants but that of RF, which is computed
        std::iota(axis.begin(), axis.end(), 0.0);
        using Trace = QVector<double>;
        for (const auto &[name, sourceTrace, rfTrace, sinkTrace, source, burst, sink] :
             std::initializer_list<std::tuple<const char *, Trace, Trace, Trace, int, int, int>>{
                 {"rise of 35 mV", step(n, 0.0, 20, 0.035), rf, snk, n, n, 60},
                 {"rise just above", step(n, 0.0, 20, 0.0351), rf, snk, 20, 40, 60},
                 {"rise from its first sample", step(n, 0.2, 20, 0.23), rf, snk, n, n, 60},
                 {"source NaN", step(n, 0.0, 20, qQNaN()), rf, snk, n, n, 60},
                 {"seven, then eight", src, runs({{30, 7}, {38, 8}}), snk, 20, 38, 60},
                 {"too short after it", src, runs({{15, 12}}), snk, 20, n, 60},
                 {"last eight of RF", src, runs({{n - 8, 8}}), snk, 20, n - 8, 60},
                 {"last seven of RF", src, runs({{n - 7, 7}}), snk, 20, n, 60},
                 {"RF past the record", src, step(n + 7, 0.0, n - 1, 0.2), snk, 20, n - 1, 60},
                 {"RF after the record", src, step(n + 20, 0.0, n, 0.2), snk, 20, n, 60},
                 {"sink of 60 mV", src, rf, step(n, 0.0, 60, 0.06), 20, 40, 60},
                 {"sink just below", src, rf, step(n, 0.0, 60, 0.0599), 20, 40, n},
                 {"no traces", {}, {}, {}, n, n, n},
                 {"short traces", src.mid(0, 20), rf.mid(0, 47), snk.mid(0, 60), n, n, n}}) {
            const Delays found = computeDelays(n, sourceTrace, rfTrace, sinkTrace, axis, kvx);
            QVERIFY2(found.instants.source == source && found.instants.sink == sink &&
                         qRound((found.instants.rf + 0.5) * 100) == burst,
                     name);
        }
    }

    /// Edges at 300 (source), 500 (RF) and 600 (sink) of 1001 samples, over some axes.
    void delaysOnAxes()
    {
        const double past = 100 / 99.0 - 0.5; // index 100 of 100 samples
        for (const auto &[type, n, axes, expected] :
             {std::tuple{kvx, 1001, 1, Delays{{-0.2, 0, 0.1}, 0, 300}}, // RF on the trigger
              {lpa4004, 1001, 1, {{-0.24, 0, 0.12}, 0, 360}},
              {kvx, 1001, 0, {{-0.2, 0, 0.1}, 0, 300}},
              {kvx, 100, 1, {{past, past, past}, 0, 0}},
              {kvx, 100, 2, {{-0.5, past, -0.5}, (past + 0.5) * 1000, 0}},
              {lpa4004, 0, 1, {{-0.6, -0.6, -0.6}, 0, 0}},
              {kvx, -5, 0, {{-0.5, -0.5, -0.5}, 0, 0}}}) {
            QVector<double> axis;
            for (int i = 0; i < axes; ++i) {
                appendTimeAxis(n, type, &axis);
            }
            const Delays found = computeDelays(n, step(1001, 0, 300, 0.1), step(1001, 0, 500, 0.2),
                                               step(1001, 0, 600, 0.1), axis, type);
            const auto same = [](double a, double b) { return qAbs(a - b) < 1e-9; };
            QVERIFY(same(found.instants.source, expected.instants.source) &&
                    same(found.instants.rf, expected.instants.rf) &&
                    same(found.instants.sink, expected.instants.sink) &&
                    same(found.sourceToRf, expected.sourceToRf) &&
                    same(found.sourceToSink, expected.sourceToSink));
        }
    }

    /// At its ceiling the axis is full, and another changes nothing.
    void envelopeAndTimeAxis()
    {
        QVector<double> rf = {-80, -20, -50, qQNaN()};
        normaliseEnvelope(&rf);
        QCOMPARE(rf.mid(0, 3), QVector<double>({0.0, 0.2, 0.1}));

        QVector<double> axes;
        axes.reserve(maxVectorSize);
        axes.resize(maxVectorSize - 1);
        for (int i = 0; i < 2; ++i) {
            appendTimeAxis(1001, kvx, &axes);
            QVERIFY(axes.size() == maxVectorSize && axes.last() == -0.5);
        }
    }

    /// What the instruments see of a series of two, and the results.
    void series()
    {
        for (const auto &[type, record, rf, release, toRf, toSink] :
             {std::tuple{kvx, "osc < INIT:CONT OFF|osc < *TRG|osc < FORM REAL,32|osc < CHAN1:DATA?",
                         "sa < FORM REAL,32|sa < TRAC? TRACE1, 11", "osc < RUNC", "100", "700"},
              {lpa4004,
               "osc < SING|osc < FORM REAL,32|osc < *TRG|osc < CHAN1:DATA?|sa < SWE:POIN 11",
               "osc < CHAN3:DATA?", "osc < RUN", "120", "840"}}) {
            const QString measurement = QString("sa < INIT:CONT OFF|") + record + '|' + rf +
                                        "|va < READ:AVDA:TTV:STAT?|va < READ:AVDA:TTV:COUN?|"
                                        "va < READ:AVDA:TTV:VAL?|osc < CHAN2:DATA?|";
            Instruments visa(type);
            visa.settings.count = 2;
            visa.settings.rfFromOscilloscope = type == lpa4004;
            visa.settings.measureHdmi = true;
            visa.settings.save = true;
            visa.settings.filePrefix = directory.filePath("data");
            QCOMPARE(visa.run(), 0);
            QCOMPARE(visa.written().join('|'),
                     measurement + measurement + release + "|sa < INIT:CONT ON");
            QCOMPARE(visa.record.rf, step(11, 0, 3, 0.2));
            QCOMPARE(visa.record.time.size(), 2 * 11);
            QCOMPARE(QString(takeResults()),
                     QString("Source2RF Delay: %1 %1\nSource2RF Mean: %1\n"
                             "Source2HD Delay: 95.5 95.5\nSource2HD Mean: 95.5\n"
                             "Source2Snk Delay: %2 %2\nSource2Snk Mean: %2")
                         .arg(toRf, toSink));
        }
    }

    void retakes()
    {
        for (const auto &[start, accepted] :
             {std::pair{double(std::nextafter(0.3F, 1.0F)), false},
              {0.2999, true},
              {double(-0.05F), false}, // the nearest float lies below -0.05
              {-0.0499, true},
              {qQNaN(), false}}) {
            Instruments visa;
            visa.sources = {2, step(11, start, 1, 0.15)};
            visa.fails = [](auto &entry) { // a remark is no failure of a transfer
                return entry.endsWith(">file") ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS;
            };
            QCOMPARE(visa.run(), 0);
            QVERIFY2(visa.attempts == (accepted ? 1 : 3), qPrintable(QString::number(start)));
            QCOMPARE(visa.record.time.size(),
                     visa.attempts * 11); // rejected records have their axes too
        }
    }

    /// No measurement, no answer, no place for the results: the series ends all the same.
    void withoutMeasurements()
    {
        Instruments visa;
        visa.settings.count = 0;
        visa.settings.save = true;
        visa.settings.filePrefix = directory.filePath("data");
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.written(), QStringList({"osc < RUN", "sa < INIT:CONT ON"}));
        QVERIFY(takeResults().startsWith("Source2RF Delay:\nSource2RF Mean: nan\n"));

        visa.settings.count = 1;
        visa.settings.filePrefix = directory.filePath("missing/data");
        QCOMPARE(visa.run(), -1);
        QCOMPARE(visa.results.sourceToSink.mean, 840.0);

        visa.record = {};
        visa.fails = [](auto &entry) { // it never answered: there is no record to wait for
            return entry.startsWith("osc") ? VI_ERROR_INV_OBJECT : VI_SUCCESS;
        };
        QCOMPARE(visa.run(), -1);
    }
};

QTEST_GUILESS_MAIN(MeasurementTest)
#include "MeasurementTest.moc"
