#include "instrument/InstrumentIo.h"
#include "Line.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"

#include <QtTest>

#include <functional>

namespace {

/// What the failure of a command means for the rest of its group and of the set-up.
enum Rule
{
    Ignore,   // the next group
    FallBack, // the next command; the first success ends the group
    Stop,     // the end
    Local,    // Go To Local, then the end
};

/// The commands in groups, separated by "|", without ";*OPC?\n".
using Groups = QVector<QPair<QString, Rule>>;

struct Chain
{
    const char *name; ///< the host's first
    Groups groups;
    std::function<ViStatus(ViSession *session, ViSession spectrumAnalyzer)> setUp;

    [[nodiscard]] QString host() const { return QString(name).section(' ', 0, 0); }
};

Groups kvx(bool rfFromOscilloscope)
{
    Groups groups = {{"SYST:ERR?", Ignore},
                     {"ACQ:POIN:AUTO 1|TIM:RANG 1.0|ACQ:POIN 20000|EXP:WAV:RAW ON|CHAN1 ON;STOP|"
                      "SYST:DISP:UPD ON|CHAN1 ON;CHAN1:RANG 0.5|CHAN1:POS -2.0;CHAN1:COUP DC|"
                      "CHAN2 ON;CHAN2:RANG 0.5|CHAN2:POS -2.0;CHAN2:COUP DC",
                      Stop}};
    if (rfFromOscilloscope) {
        groups << QPair<QString, Rule>(
            "CHAN3 ON;CHAN3:RANG 0.5|CHAN3:POS -3.0;CHAN3:COUP DC|CHAN3:TYPE RMS", FallBack);
    }
    return groups << QPair<QString, Rule>("TIM:SCAL 100e-3;TIM:REF 50;TRIG3:OFFS:LIM 0", Ignore)
                  << QPair<QString, Rule>(
                         "CHAN3:SCAL 200e-3|CHAN:DIGF:CUT 100e3|CHAN1:BAND B20|"
                         "TRIG1:LEV1 0.125|TRIG1:MODE NORM|TRIG1:ANED:NREJ ON|"
                         "TRIG1:HOLD:MODE TIME|TRIG1:HOLD:TIME 1.3|TRIG1:OUT:STAT ON|"
                         "FORM ASC|EXP:WAV:INCX OFF|RUN",
                         Local);
}

const Groups lpa4004 = {
    {"SYST:ERR?|*RST", Ignore},
    {"TRIG:B:ENAB OFF|TRIG:A:TYPE EDGE|TRIG:A:SOUR CH1|TRIG:A:ENAB ON|TRIG:A:MODE NORM|"
     "TRIG:A:EDGE:SLOP POS|TRIG:A:EDGE:COUP DC|TRIG:A:EDGE:FILT:LPAS ON|TRIG:A:LEV1 0.125|"
     "ACQ:WRAT MSAM|TIM:SCAL 0.1|TIM:POS 0.0|TIM:REF 50|CHAN2:STAT ON|CHAN2:SCAL 0.05|"
     "CHAN2:POS -3.0|CHAN2:COUP DCL|CHAN2:TYPE SAMP|CHAN2:BAND B20|CHAN1:STAT ON|CHAN1:SCAL 0.05|"
     "CHAN1:POS -3.0|CHAN1:COUP DCL|CHAN1:TYPE SAMP|CHAN1:BAND B20",
     Stop}};

Groups analyzer(const char *identification, const char *sweepTime, const char *ifOutput)
{
    return {{identification, Ignore},
            {"DISP:TRAC:Y:RLEV 0.0|INP1:ATT 0.0|FREQ:CENT 2.437e+09|FREQ:SPAN 0|TRIG1:SOUR EXT",
             Ignore},
            {QString("SWE:TIME ") + sweepTime +
                 "|SWE:POIN 20001|SWE:TYPE SWE;SWE:OPT;BWID:FFT AUTO|BWID 50e6|BWID:VID 20e3",
             Stop},
            {QString("TRIG1:HOLD -0.6|TRIG1:SLOP POS|TRIG1:SLOP POS") + ifOutput, Ignore}};
}

const Groups videoAnalyzer = {
    {"*RST", Ignore},
    {"SYST:DISP:UPD ON|CONF:AVDA:TTV:APL:THR 35.5|CONF:AVDA:TTV:APL:HYST 5|INIT:AVDA", Stop}};

ViSession manager = 0;

QVector<Chain> chains()
{
    const auto osc = [](const char *host, bool reset, OscilloscopeType type,
                        bool rfFromOscilloscope) {
        const QString resource = QString("TCPIP0::%1::INSTR").arg(host);
        return [=](ViSession *session, ViSession) {
            return setUpOscilloscope(manager, {resource, reset, type, 0.125, rfFromOscilloscope},
                                     session);
        };
    };
    const auto sa = [](const char *host, OscilloscopeType type) {
        const QString resource = QString("TCPIP0::%1::INSTR").arg(host);
        return [=](ViSession *session, ViSession) {
            return setUpSpectrumAnalyzer(manager, {resource, 2.437e9, type}, session);
        };
    };
    const auto va = [](ViSession *session, ViSession spectrumAnalyzer) {
        return setUpVideoAnalyzer(manager, {"TCPIP0::video::INSTR", true, 35.5}, spectrumAnalyzer,
                                  session);
    };
    const char *const output = "|OUTP:IF VID|OUTP:IF:IFFR 2.0";
    return {
        {"scope-kvx", kvx(false), osc("scope-kvx", false, OscilloscopeType::Kvx, false)},
        {"scope-kvx with IF", kvx(true), osc("scope-kvx", false, OscilloscopeType::Kvx, true)},
        {"scope", lpa4004, osc("scope", true, OscilloscopeType::Lpa4004, true)},
        {"analyzer", analyzer("*IDN?", "1.2", output), sa("analyzer", OscilloscopeType::Lpa4004)},
        {"analyzer-qan", analyzer("*IDN?|FREQ:MODE SW", "1", output),
         sa("analyzer-qan", OscilloscopeType::Kvx)},
        {"analyzer-qel", analyzer("*IDN?", "1.2", ""),
         sa("analyzer-qel", OscilloscopeType::Lpa4004)},
        {"video", videoAnalyzer, va}};
}

/// The transcript of a set-up whose command number `failing` fails, with those that have to fail
/// before it is sent; and whether the instrument is then ready.
std::pair<QStringList, bool> play(const Chain &chain, int failing, bool atRead, ViStatus fault)
{
    const QString host = chain.host();
    const bool isVideo = host.startsWith("video");
    QStringList transcript = {host + " open",
                              host + (isVideo ? " timeout 10000" : " timeout 5000")};
    int first = 0; // command of the group
    for (const auto &[commands, rule] : chain.groups) {
        const QStringList group = commands.split('|');
        const int last = first + group.size() - 1;
        const int firstFailing = rule == FallBack && failing <= last ? first : failing;
        for (int i = first; i <= last; ++i) {
            const QString &command = group[i - first];
            const bool fails = i >= firstFailing && i <= failing;
            transcript << host + " < " + command + (command.endsWith('?') ? "\\n" : ";*OPC?\\n");
            if (!fails || atRead) {
                transcript << host + " >";
            }
            if (fails) {
                transcript.last() += " -> " + QString::number(static_cast<ViUInt32>(fault), 16);
            }
            if (fails && (rule == Stop || rule == Local || (rule == FallBack && i == last))) {
                return {rule == Local ? transcript << host + " local" : transcript, false};
            }
            if (fails ? rule == Ignore : rule == FallBack) {
                break;
            }
        }
        first = last + 1;
    }
    return {transcript << (isVideo ? "analyzer local" : host + " local"), true};
}

} // namespace

class SetUpTest : public QObject
{
    Q_OBJECT

    /// A session with the spectrum analyzer that the video analyzer's set-up sets free.
    static ViSession openAnalyzer(Line *line)
    {
        ViSession session = 0;
        iaOpen(manager, "TCPIP0::analyzer::INSTR", VI_NO_LOCK, 10000, &session);
        line->takeTranscript();
        return session;
    }

private slots:
    void initTestCase()
    {
        setVisaLibraryPaths({BENCH_LIBRARY});
        QVERIFY(iaVisaDll_Init());
        QCOMPARE(iaOpenDefaultRM(&manager), VI_SUCCESS);
    }

    /// Every chain as a whole, and with each of its commands failing in every way.
    void everyFault()
    {
        for (const Chain &chain : chains()) {
            int commands = 0;
            for (const auto &group : chain.groups) {
                commands += group.first.count('|') + 1;
            }
            for (const auto &[atRead, fault] : {std::pair{false, VI_ERROR_IO},
                                                {true, VI_ERROR_TMO},
                                                {true, VI_SUCCESS_MAX_CNT}}) {
                for (int failing = -1; failing < commands; ++failing) {
                    Chain expected = chain;
                    if (failing == 0 && expected.host().endsWith("qel")) {
                        expected.groups = chains()[3].groups; // nobody knows its family then
                    }
                    const auto [transcript, ready] = play(expected, failing, atRead, fault);
                    Line line;
                    const ViSession analyzer = openAnalyzer(&line);
                    line.fails = [&, &list = transcript, &status = fault](auto &) {
                        return list.value(line.transcript.size()).contains("->") ? status
                                                                                 : VI_SUCCESS;
                    };
                    ViSession session = 0;
                    const ViStatus status = chain.setUp(&session, analyzer);
                    QCOMPARE(line.takeTranscript().join('\n'), transcript.join('\n'));
                    QVERIFY2((status == VI_SUCCESS) == ready && session != 0, chain.name);
                    iaClose(session);
                    iaClose(analyzer);
                }
            }
        }
    }

    /// Pressed again, the old session is closed; where there is no new one, the first command of
    /// each chain is tried and fails, and where its time-out could not be set, the chains run
    /// without what needs an answer. The video analyzer gets nothing. Go To Local decides the
    /// readiness of both analyzers, and never that of the oscilloscope.
    void opening()
    {
        for (const Chain &chain : chains()) {
            Line line;
            const QString host = chain.host();
            const bool isVideo = host.startsWith("video");
            const ViSession analyzer = openAnalyzer(&line);
            ViSession session = 0;
            const auto setUpWithout = [&](const char *what) {
                line.fails = [=](auto &entry) {
                    return entry.contains(what) ? VI_ERROR_NSUP_OPER : VI_SUCCESS;
                };
                line.takeTranscript();
                return chain.setUp(&session, analyzer) == VI_SUCCESS;
            };
            QVERIFY2(setUpWithout(" local") == host.startsWith("scope"), chain.name);
            QVERIFY2(!setUpWithout(" open") && session == 0, chain.name);
            QStringList expected = {host + " close", host + " open -> bfff0067"};
            for (int group = 1; !isVideo && group < (host.startsWith("scope") ? 2 : 3); ++group) {
                expected << "session 0 < " + chain.groups[group].first.section('|', 0, 0) +
                                ";*OPC?\\n";
            }
            QCOMPARE(line.transcript, expected);

            QVERIFY2(setUpWithout(" timeout") != isVideo, chain.name);
            const QStringList written = line.transcript.filter(" < ");
            QCOMPARE(written.isEmpty(), isVideo);
            QVERIFY(written.filter(QRegularExpression("ERR|IDN|RST|FREQ:MODE")).isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
