#include "instrument/InstrumentIo.h"
#include "Line.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"

#include <QtTest>

namespace {

/// A set-up of SetUpTranscripts.txt: its heading there, its instrument, and what it does.
struct SetUp
{
    QString name;
    QString host;
    QStringList transcript;
};

SetUp setUpOf(const QString &name)
{
    static const QString text = contents(QFINDTESTDATA("SetUpTranscripts.txt"));
    const QString section = text.section('[' + name + ": ", 1).section("\n\n", 0, 0);
    QStringList lines = section.trimmed().split('\n');
    const QString host = lines.takeFirst().remove(']');
    return {name, host, lines};
}

} // namespace

class SetUpTest : public QObject
{
    Q_OBJECT

    ViSession manager = 0;
    ViSession spectrumAnalyzer = 0; // the one that the video analyzer sends to local

    /// Set an instrument up. Returns whether it is ready.
    bool isReady(const SetUp &which, ViSession *session) const
    {
        const QString resource = "TCPIP0::" + which.host + "::INSTR";
        const bool reset = which.name.contains("reset");
        const auto type = which.host == "scope-kvx" || which.host == "analyzer-qan"
                              ? OscilloscopeType::Kvx
                              : OscilloscopeType::Lpa4004;
        if (which.host == "video") {
            return setUpVideoAnalyzer(manager, {resource, reset, 35.5}, spectrumAnalyzer,
                                      session) == VI_SUCCESS;
        }
        if (which.host.startsWith("scope")) {
            return setUpOscilloscope(manager, {resource, reset, type, 0.125, reset}, session) ==
                   VI_SUCCESS;
        }
        return setUpSpectrumAnalyzer(manager, {resource, 2.437e9, type}, session) == VI_SUCCESS;
    }

    /// What the line has seen, without reads, the instrument's name and statuses.
    static QStringList seen(Line &line, const SetUp &which)
    {
        QStringList entries = line.takeTranscript().filter(QRegularExpression("[^>]$"));
        return entries.replaceInStrings(QRegularExpression("^" + which.host + " (< )?| -> .*"), "");
    }

private slots:
    void initTestCase()
    {
        setVisaLibraryPaths({BENCH_LIBRARY});
        QVERIFY(iaVisaDll_Init());
        QCOMPARE(iaOpenDefaultRM(&manager), VI_SUCCESS);
        iaOpen(manager, "TCPIP0::analyzer::INSTR", VI_NO_LOCK, 10000, &spectrumAnalyzer);
    }

    void transcript_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name :
             {"KVx", "KVx with reset and IF", "LPA4004 with reset", "analyzer", "QAN analyzer",
              "QEL analyzer", "video analyzer", "video analyzer with reset"}) {
            QTest::newRow(name) << QString(name);
        }
    }

    void transcript()
    {
        QFETCH(const QString, name);
        const SetUp which = setUpOf(name);
        Line line;
        line.open[spectrumAnalyzer] = "analyzer";
        ViSession session = 0;
        QVERIFY(isReady(which, &session));
        QCOMPARE(seen(line, which), which.transcript);
        iaClose(session);
    }

    void failures_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("first"); // of the commands of which one fails
        QTest::addColumn<QString>("last");
        QTest::addColumn<QString>("goesOnAt");
        QTest::addColumn<bool>("ready");
        const auto row = [](const char *name, const char *setUp, const char *first,
                            const char *last, const char *goesOnAt, bool ready) {
            QTest::newRow(name) << setUp << first << last << goesOnAt << ready;
        };
        const char *const nothing = "";
        row("KVx, error query or reset", "KVx with reset and IF", "SYST:ERR", "*RST",
            "ACQ:POIN:AUTO", true);
        row("KVx, record and channels", "KVx", "ACQ:POIN:AUTO", "CHAN2:POS", nothing, false);
        row("KVx, time base", "KVx", "TIM:SCAL", "TIM:SCAL", "CHAN3:SCAL", true);
        row("KVx, trigger and export", "KVx", "CHAN3:SCAL", "RUN", "local", false);
        row("LPA4004, reset", "LPA4004 with reset", "*RST", "*RST", "TRIG:B", true);
        row("LPA4004", "LPA4004 with reset", "TRIG:B", "CHAN1:BAND", nothing, false);
        row("analyzer, identity", "QAN analyzer", "*IDN", "*IDN", "DISP", true);
        row("analyzer, mode", "QAN analyzer", "FREQ:MODE", "FREQ:MODE", "DISP", true);
        row("analyzer, zero span", "analyzer", "DISP", "TRIG1:SOUR", "SWE:TIME", true);
        row("analyzer, sweep", "analyzer", "SWE:TIME", "BWID:VID", nothing, false);
        row("analyzer, trigger", "analyzer", "TRIG1:HOLD", "OUTP:IF:IFFR", "local", true);
        row("video, reset", "video analyzer with reset", "*RST", "*RST", "SYST:DISP", true);
        row("video", "video analyzer", "SYST:DISP", "INIT:AVDA", nothing, false);
    }

    /// Each of the commands fails in turn.
    void failures()
    {
        QFETCH(const QString, name);
        const SetUp which = setUpOf(name);
        QFETCH(const QString, first);
        QFETCH(const QString, last);
        QFETCH(const QString, goesOnAt);
        QFETCH(const bool, ready);
        const QStringList &whole = which.transcript;
        const auto index = [&](const QString &start) {
            const auto found = std::find_if(whole.begin(), whole.end(), [&](const QString &entry) {
                return entry.startsWith(start);
            });
            return int(found - whole.begin());
        };
        const QStringList rest = goesOnAt.isEmpty() ? QStringList() : whole.mid(index(goesOnAt));
        QVERIFY(index(last) < whole.size());
        for (int failing = index(first); failing <= index(last); ++failing) {
            Line line;
            line.fails = [=, call = 0](const QString &entry) mutable {
                const bool fails = !entry.endsWith(" >") && call++ == failing;
                return fails ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS;
            };
            line.open[spectrumAnalyzer] = "analyzer";
            ViSession session = 0;
            QCOMPARE(isReady(which, &session), ready);
            QCOMPARE(seen(line, which), whole.mid(0, failing + 1) + rest);
            iaClose(session);
        }
    }

    void ifChannel_data()
    {
        QTest::addColumn<int>("failures");
        QTest::addColumn<QString>("lastSent");
        QTest::addColumn<bool>("ready");
        QTest::newRow("first command fails") << 1 << "CHAN3:POS -3.0;CHAN3:COUP DC;*OPC?\\n"
                                             << true;
        QTest::newRow("two commands fail") << 2 << "CHAN3:TYPE RMS;*OPC?\\n" << true;
        QTest::newRow("all commands fail") << 3 << "CHAN3:TYPE RMS;*OPC?\\n" << false;
    }

    /// The IF channel's commands are sent until one succeeds.
    void ifChannel()
    {
        QFETCH(const int, failures);
        QFETCH(const bool, ready);
        Line line;
        line.fails = [left = failures](const QString &entry) mutable {
            return entry.contains("< CHAN3") && left-- > 0 ? VI_ERROR_IO : VI_SUCCESS;
        };
        ViSession session = 0;
        const SetUp which = setUpOf("KVx with reset and IF");
        QCOMPARE(isReady(which, &session), ready);
        const QRegularExpression fallback("^CHAN3( ON|:POS|:TYPE)");
        QTEST(seen(line, which).filter(fallback).last(), "lastSent");
        iaClose(session);
    }

    void again_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("readyWithoutLocal");
        QTest::addColumn<int>("sentWithoutSession");
        QTest::addColumn<bool>("readyWithoutTimeout");
        QTest::newRow("oscilloscope") << "LPA4004 with reset" << true << 1 << true;
        QTest::newRow("analyzer") << "QAN analyzer" << false << 2 << true;
        QTest::newRow("video analyzer") << "video analyzer with reset" << false << 0 << false;
    }

    /// Init is pressed again, and something other than a command fails.
    void again()
    {
        QFETCH(const QString, name);
        const SetUp which = setUpOf(name);
        Line line;
        ViSession session = 0;
        const auto setUpWithout = [&](const char *what) {
            line.fails = [=](auto &entry) {
                return entry.contains(what) ? VI_ERROR_NSUP_OPER : VI_SUCCESS;
            };
            line.takeTranscript();
            return isReady(which, &session);
        };
        QTEST(setUpWithout(" local"), "readyWithoutLocal");

        QVERIFY(!setUpWithout(" open"));
        QCOMPARE(session, 0U);
        QCOMPARE(line.transcript.first(), which.host + " close");
        QTEST(line.transcript.filter("session 0 < ").size(), "sentWithoutSession");

        QTEST(setUpWithout(" timeout"), "readyWithoutTimeout");
        const QRegularExpression needAnAnswer("ERR|IDN|RST|FREQ:MODE");
        QCOMPARE(line.transcript.filter(needAnAnswer), QStringList());
        iaClose(session);
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
