#include "instrument/InstrumentIo.h"
#include "Line.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"

#include <QtTest>

namespace {

// A group of commands: behind its rule they are separated by "|", without ";*OPC?". The rule says
// what follows when one of them fails:
//   ignore    the next group
//   fallback  the next command; the first that succeeds ends the group
//   stop      nothing
//   local     Go To Local

const QStringList kvx = {
    "ignore SYST:ERR?",
    "stop ACQ:POIN:AUTO 1|TIM:RANG 1.0|ACQ:POIN 20000|EXP:WAV:RAW ON|CHAN1 ON;STOP|"
    "SYST:DISP:UPD ON|CHAN1 ON;CHAN1:RANG 0.5|CHAN1:POS -2.0;CHAN1:COUP DC|"
    "CHAN2 ON;CHAN2:RANG 0.5|CHAN2:POS -2.0;CHAN2:COUP DC",
    "ignore TIM:SCAL 100e-3;TIM:REF 50;TRIG3:OFFS:LIM 0",
    "local CHAN3:SCAL 200e-3|CHAN:DIGF:CUT 100e3|CHAN1:BAND B20|TRIG1:LEV1 0.125|TRIG1:MODE NORM|"
    "TRIG1:ANED:NREJ ON|TRIG1:HOLD:MODE TIME|TRIG1:HOLD:TIME 1.3|TRIG1:OUT:STAT ON|FORM ASC|"
    "EXP:WAV:INCX OFF|RUN"};
const char *const ifChannel =
    "fallback CHAN3 ON;CHAN3:RANG 0.5|CHAN3:POS -3.0;CHAN3:COUP DC|CHAN3:TYPE RMS";
const QStringList kvxWithReset = {"ignore SYST:ERR?|*RST", kvx[1], ifChannel, kvx[2], kvx[3]};
const QStringList lpa4004 = {
    "ignore SYST:ERR?|*RST",
    "stop TRIG:B:ENAB OFF|TRIG:A:TYPE EDGE|TRIG:A:SOUR CH1|TRIG:A:ENAB ON|TRIG:A:MODE NORM|"
    "TRIG:A:EDGE:SLOP POS|TRIG:A:EDGE:COUP DC|TRIG:A:EDGE:FILT:LPAS ON|TRIG:A:LEV1 0.125|"
    "ACQ:WRAT MSAM|TIM:SCAL 0.1|TIM:POS 0.0|TIM:REF 50|CHAN2:STAT ON|CHAN2:SCAL 0.05|"
    "CHAN2:POS -3.0|CHAN2:COUP DCL|CHAN2:TYPE SAMP|CHAN2:BAND B20|CHAN1:STAT ON|CHAN1:SCAL 0.05|"
    "CHAN1:POS -3.0|CHAN1:COUP DCL|CHAN1:TYPE SAMP|CHAN1:BAND B20"};

QStringList analyzer(const char *identification, const char *sweepTime, const char *ifOutput)
{
    return {identification,
            "ignore DISP:TRAC:Y:RLEV 0.0|INP1:ATT 0.0|FREQ:CENT 2.437e+09|FREQ:SPAN 0|"
            "TRIG1:SOUR EXT",
            QString("stop SWE:TIME ") + sweepTime +
                "|SWE:POIN 20001|SWE:TYPE SWE;SWE:OPT;BWID:FFT AUTO|BWID 50e6|BWID:VID 20e3",
            QString("ignore TRIG1:HOLD -0.6|TRIG1:SLOP POS|TRIG1:SLOP POS") + ifOutput};
}

const QStringList video = {
    "ignore *RST",
    "stop SYST:DISP:UPD ON|CONF:AVDA:TTV:APL:THR 35.5|CONF:AVDA:TTV:APL:HYST 5|INIT:AVDA"};

/// The transcript of a set-up, without what is read, when a command fails by its number and those
/// before it that have to for it to be sent; and whether the instrument is then ready.
std::pair<QStringList, bool> play(const QString &host, const QStringList &groups, int failing)
{
    const QString fault = " -> 3fff0005";
    QStringList transcript = {host + " open",
                              host + " timeout " + (host == "video" ? "10000" : "5000")};
    int first = 0; // command of the group
    for (const QString &group : groups) {
        const QString rule = group.section(' ', 0, 0);
        const QStringList commands = group.section(' ', 1).split('|');
        const int last = first + commands.size() - 1;
        bool failed = false;
        for (int i = first; i <= last && (i == first || failed == (rule == "fallback")); ++i) {
            failed = i == failing || (rule == "fallback" && i < failing && failing <= last);
            const QString &command = commands[i - first];
            transcript << host + " < " + command + (command.endsWith('?') ? "\\n" : ";*OPC?\\n") +
                              (failed ? fault : "");
        }
        if (failed && rule != "ignore") {
            return {rule == "local" ? transcript << host + " local" : transcript, false};
        }
        first = last + 1;
    }
    return {transcript << (host == "video" ? "analyzer local" : host + " local"), true};
}

} // namespace

class SetUpTest : public QObject
{
    Q_OBJECT

    ViSession manager = 0;

    /// What a row sets up: whether it is ready then.
    bool setUp(ViSession spectrumAnalyzer, ViSession *session) const
    {
        const QString row = QTest::currentDataTag();
        const QString host = row.section(' ', 0, 0);
        const QString resource = "TCPIP0::" + host + "::INSTR";
        const bool reset = row.endsWith("reset");
        const auto type = host == "scope-kvx" || host == "analyzer-qan" ? OscilloscopeType::Kvx
                                                                        : OscilloscopeType::Lpa4004;
        const ViStatus status =
            host == "video"
                ? setUpVideoAnalyzer(manager, {resource, reset, 35.5}, spectrumAnalyzer, session)
            : host.startsWith("scope")
                ? setUpOscilloscope(manager, {resource, reset, type, 0.125, reset}, session)
                : setUpSpectrumAnalyzer(manager, {resource, 2.437e9, type}, session);
        return status == VI_SUCCESS;
    }

private slots:
    void initTestCase()
    {
        setVisaLibraryPaths({BENCH_LIBRARY});
        QVERIFY(iaVisaDll_Init());
        QCOMPARE(iaOpenDefaultRM(&manager), VI_SUCCESS);
    }

    void setUps_data()
    {
        const char *const output = "|OUTP:IF VID|OUTP:IF:IFFR 2.0";
        QTest::addColumn<QStringList>("groups");
        QTest::newRow("scope-kvx") << kvx;
        QTest::newRow("scope-kvx with IF and reset") << kvxWithReset;
        QTest::newRow("scope with IF and reset") << lpa4004;
        QTest::newRow("analyzer") << analyzer("ignore *IDN?", "1.2", output);
        QTest::newRow("analyzer-qan") << analyzer("ignore *IDN?|FREQ:MODE SW", "1", output);
        QTest::newRow("analyzer-qel") << analyzer("ignore *IDN?", "1.2", "");
        QTest::newRow("video") << QStringList{video[1]};
        QTest::newRow("video with reset") << video;
    }

    /// Every chain as a whole, and with each of its commands failing. Then pressed again: the old
    /// session is closed. Go To Local decides the readiness of both analyzers, and never that of
    /// the oscilloscope. Where there is no new session, the first command of each chain is tried,
    /// where its time-out could not be set, the chains run without what needs an answer; but the
    /// video analyzer gets nothing.
    void setUps()
    {
        QFETCH(const QStringList, groups);
        const QString host = QString(QTest::currentDataTag()).section(' ', 0, 0);
        const bool isScope = host.startsWith("scope");
        const bool isVideo = host == "video";
        Line line;
        ViSession analyzer = 0;
        iaOpen(manager, "TCPIP0::analyzer::INSTR", VI_NO_LOCK, 10000, &analyzer);
        line.takeTranscript();

        const int commands = groups.size() + groups.join("").count('|');
        for (int failing = -1; failing < commands; ++failing) {
            if (failing == 0 && host.endsWith("qel")) {
                continue; // nobody knows its family then
            }
            const auto [expected, ready] = play(host, groups, failing);
            line.fails = [&list = expected, i = 0](const QString &entry) mutable {
                const bool fails = !entry.endsWith(" >") && list.value(i++).contains("->");
                return fails ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS;
            };
            ViSession session = 0;
            QCOMPARE(setUp(analyzer, &session), ready);
            const QRegularExpression notRead("[^>]$");
            QCOMPARE(line.takeTranscript().filter(notRead).join('\n'), expected.join('\n'));
            iaClose(session);
            line.takeTranscript();
        }

        ViSession session = 0;
        const auto setUpWithout = [&](const char *what) {
            line.fails = [=](auto &entry) {
                return entry.contains(what) ? VI_ERROR_NSUP_OPER : VI_SUCCESS;
            };
            line.takeTranscript();
            return setUp(analyzer, &session);
        };
        QCOMPARE(setUpWithout(" local"), isScope);
        QVERIFY(!setUpWithout(" open") && session == 0);
        QCOMPARE(line.transcript.first(), host + " close");
        QCOMPARE(line.transcript.filter("session 0 < ").size(), isVideo ? 0 : isScope ? 1 : 2);

        QCOMPARE(setUpWithout(" timeout"), !isVideo);
        const QStringList written = line.transcript.filter(" < ");
        QCOMPARE(written.isEmpty(), isVideo);
        QVERIFY(written.filter(QRegularExpression("ERR|IDN|RST|FREQ:MODE")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
