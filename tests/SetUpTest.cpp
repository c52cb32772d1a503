#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "VisaDouble.h"

#include <QtTest>

namespace {

// Where a set-up goes after a step, besides the number of another step.
constexpr int toNext = -1;  // the step below
constexpr int toLocal = -2; // Go To Local, then the end
constexpr int toEnd = -3;   // the end, at once

/// What the instrument is sent, and how the set-up goes on.
struct Step
{
    QString command; // without ";*OPC?\n" where it ends so
    int onFailure = toEnd;
    int onSuccess = toNext;
    bool tolerated = false; // a failure leaves the instrument ready
};

using Steps = QVector<Step>;

constexpr ViSession resourceManager = 1;

QString wholeCommand(const QString &command)
{
    return command + (command.endsWith('?') ? "\\n" : ";*OPC?\\n");
}

enum class Fault
{
    Write,
    Read,
    Completion
};

ViStatus statusOf(Fault fault)
{
    return fault == Fault::Write  ? VI_ERROR_IO
           : fault == Fault::Read ? VI_ERROR_TMO
                                  : VI_SUCCESS_MAX_CNT;
}

/// The transcript of a set-up in which some steps fail, and whether the instrument is then ready.
struct Expectation
{
    QStringList transcript;
    bool ready = true;
};

Expectation play(const QString &name, const QString &timeout, const Steps &steps,
                 const QVector<int> &failing, Fault fault)
{
    const QString mark = " -> " + QString::number(static_cast<ViUInt32>(statusOf(fault)), 16);
    Expectation expected;
    expected.transcript << name + " open" << name + " timeout " + timeout;
    int step = 0;
    while (step >= 0 && step < steps.size()) {
        const bool fails = failing.contains(step);
        const QString written = name + " < " + wholeCommand(steps[step].command);
        if (fails && fault == Fault::Write) {
            expected.transcript << written + mark;
        } else {
            expected.transcript << written << (fails ? name + " >" + mark : name + " >");
        }
        expected.ready = expected.ready && (!fails || steps[step].tolerated);
        const int next = fails ? steps[step].onFailure : steps[step].onSuccess;
        step = next == toNext ? step + 1 : next;
    }
    if (step != toEnd) {
        expected.transcript << name + " local";
    }
    return expected;
}

const Step errorQuery{"SYST:ERR?", toNext, toNext, true};
const Step reset{"*RST", toNext, toNext, true};

/// Steps that go on alike, their commands separated by "|".
Steps steps(const char *commands, int onFailure, bool tolerated = false)
{
    Steps list;
    for (const QString &command : QString(commands).split('|')) {
        list << Step{command, onFailure, toNext, tolerated};
    }
    return list;
}

Steps kvxSteps(bool ifDemodulation)
{
    Steps chain = {errorQuery};
    chain << steps("ACQ:POIN:AUTO 1|TIM:RANG 1.0|ACQ:POIN 20000|EXP:WAV:RAW ON|CHAN1 ON;STOP|"
                   "SYST:DISP:UPD ON|CHAN1 ON;CHAN1:RANG 0.5|CHAN1:POS -2.0;CHAN1:COUP DC|"
                   "CHAN2 ON;CHAN2:RANG 0.5|CHAN2:POS -2.0;CHAN2:COUP DC",
                   toEnd);
    if (ifDemodulation) {
        const int timeBase = chain.size() + 3;
        chain << Step{"CHAN3 ON;CHAN3:RANG 0.5", toNext, timeBase, true}
              << Step{"CHAN3:POS -3.0;CHAN3:COUP DC", toNext, timeBase, true}
              << Step{"CHAN3:TYPE RMS", toEnd, timeBase};
    }
    return chain << steps("TIM:SCAL 100e-3;TIM:REF 50;TRIG3:OFFS:LIM 0", toNext, true)
                 << steps("CHAN3:SCAL 200e-3|CHAN:DIGF:CUT 100e3|CHAN1:BAND B20|TRIG1:LEV1 0.25|"
                          "TRIG1:MODE NORM|TRIG1:ANED:NREJ ON|TRIG1:HOLD:MODE TIME|"
                          "TRIG1:HOLD:TIME 1.3|TRIG1:OUT:STAT ON|FORM ASC|EXP:WAV:INCX OFF|RUN",
                          toLocal);
}

Steps lpa4004Steps()
{
    Steps chain = {errorQuery, reset};
    chain[0].onFailure = 2; // no reset of an instrument that did not answer
    return chain << steps("TRIG:B:ENAB OFF|TRIG:A:TYPE EDGE|TRIG:A:SOUR CH1|TRIG:A:ENAB ON|"
                          "TRIG:A:MODE NORM|TRIG:A:EDGE:SLOP POS|TRIG:A:EDGE:COUP DC|"
                          "TRIG:A:EDGE:FILT:LPAS ON|TRIG:A:LEV1 0.25|ACQ:WRAT MSAM|TIM:SCAL 0.1|"
                          "TIM:POS 0.0|TIM:REF 50|CHAN2:STAT ON|CHAN2:SCAL 0.05|CHAN2:POS -3.0|"
                          "CHAN2:COUP DCL|CHAN2:TYPE SAMP|CHAN2:BAND B20|CHAN1:STAT ON|"
                          "CHAN1:SCAL 0.05|CHAN1:POS -3.0|CHAN1:COUP DCL|CHAN1:TYPE SAMP|"
                          "CHAN1:BAND B20",
                          toEnd);
}

/// For identities with QAN, with QEL and with neither.
Steps analyzerSteps(const QString &family, int oscilloscopeType)
{
    Steps chain = steps("*IDN?", toNext, true);
    if (family == "QAN") {
        chain << steps("FREQ:MODE SW", toNext, true);
        chain[0].onFailure = 2;
    }
    const int sweep = chain.size() + 5;
    chain << steps("DISP:TRAC:Y:RLEV 0.0|INP1:ATT 0.0|FREQ:CENT 2.437e+09|FREQ:SPAN 0|"
                   "TRIG1:SOUR EXT",
                   sweep, true)
          << steps(oscilloscopeType == 0 ? "SWE:TIME 1" : "SWE:TIME 1.2", toEnd)
          << steps("SWE:POIN 20001|SWE:TYPE SWE;SWE:OPT;BWID:FFT AUTO|BWID 50e6|BWID:VID 20e3",
                   toEnd)
          << steps("TRIG1:HOLD -0.6|TRIG1:SLOP POS|TRIG1:SLOP POS", toLocal, true);
    return family == "QEL" ? chain : chain << steps("OUTP:IF VID|OUTP:IF:IFFR 2.0", toLocal, true);
}

Steps videoAnalyzerSteps()
{
    Steps chain = {reset};
    return chain << steps("SYST:DISP:UPD ON|CONF:AVDA:TTV:APL:THR 35.5|CONF:AVDA:TTV:APL:HYST 5|"
                          "INIT:AVDA",
                          toEnd);
}

ViStatus setUp(const QString &chain, ViSession *session, ViSession spectrumAnalyzer)
{
    if (chain == "osc KVx" || chain == "osc KVx IF") {
        return setUpOscilloscope(resourceManager, {"osc", false, 0, 0.25, chain.endsWith("IF")},
                                 session);
    }
    if (chain == "osc LPA4004") {
        return setUpOscilloscope(resourceManager, {"osc", true, 1, 0.25, true}, session);
    }
    if (chain == "va") {
        return setUpVideoAnalyzer(resourceManager, {"va", true, 35.5}, spectrumAnalyzer, session);
    }
    return setUpSpectrumAnalyzer(resourceManager, {"sa", 2.437e9, chain == "sa QAN" ? 0 : 1},
                                 session);
}

struct Chain
{
    QString name;
    QString instrument;
    QString timeout;
    Steps steps;
};

QVector<Chain> chains()
{
    return {{"osc KVx", "osc", "5000", kvxSteps(false)},
            {"osc KVx IF", "osc", "5000", kvxSteps(true)},
            {"osc LPA4004", "osc", "5000", lpa4004Steps()},
            {"sa plain", "sa", "5000", analyzerSteps("plain", 1)},
            {"sa QAN", "sa", "5000", analyzerSteps("QAN", 0)},
            {"sa QEL", "sa", "5000", analyzerSteps("QEL", 1)},
            {"va", "va", "10000", videoAnalyzerSteps()}};
}

QByteArray identityOf(const QString &chain)
{
    return chain == "sa QAN"   ? "Maker,qanX40,1,2\n"
           : chain == "sa QEL" ? "Maker,Qel3,1,2\n"
                               : "1\n";
}

} // namespace

class SetUpTest : public QObject
{
    Q_OBJECT

private slots:
    /// Every chain as a whole, and with each of its steps failing in every way.
    void everyFault_data()
    {
        QTest::addColumn<int>("chain");
        QTest::addColumn<QVector<int>>("failing");
        QTest::addColumn<int>("fault");

        const auto all = chains();
        for (int c = 0; c < all.size(); ++c) {
            const Steps &chain = all[c].steps;
            QTest::addRow("%s", qPrintable(all[c].name)) << c << QVector<int>() << 0;
            for (int step = 0; step < chain.size(); ++step) {
                // A fall-back is only sent after the failures of those before it.
                QVector<int> failing = {step};
                while (failing.first() > 0 && chain[failing.first() - 1].onSuccess != toNext) {
                    failing.prepend(failing.first() - 1);
                }
                for (const Fault fault : {Fault::Write, Fault::Read, Fault::Completion}) {
                    QTest::addRow("%s, %d: %s, %x", qPrintable(all[c].name), step,
                                  qPrintable(chain[step].command),
                                  static_cast<ViUInt32>(statusOf(fault)))
                        << c << failing << int(fault);
                }
            }
        }
    }

    void everyFault()
    {
        QFETCH(const int, chain);
        QFETCH(const QVector<int>, failing);
        QFETCH(const int, fault);
        Chain tested = chains()[chain];
        if (tested.name == "sa QEL" && failing.contains(0)) {
            tested.steps = analyzerSteps("plain", 1); // nobody knows its family then
        }
        const Expectation expected =
            play(tested.instrument, tested.timeout, tested.steps, failing, Fault(fault));

        VisaDouble visa;
        visa.answer = [&](const QString &, const QByteArray &command) {
            return command == "*IDN?\n" ? identityOf(tested.name) : QByteArray("1\n");
        };
        for (const VisaDouble::At where : {VisaDouble::At::Write, VisaDouble::At::Read}) {
            const QStringList calls =
                expected.transcript.filter(where == VisaDouble::At::Write ? " <" : " >");
            for (int call = 0; call < calls.size(); ++call) {
                if (calls[call].contains(" -> ")) {
                    visa.failAt(where, call, statusOf(Fault(fault)));
                }
            }
        }
        const ViSession spectrumAnalyzer = visa.openQuietly("sa");
        ViSession session = 0;
        const bool ready = setUp(tested.name, &session, spectrumAnalyzer) == VI_SUCCESS;

        // The video analyzer's last step goes to the spectrum analyzer.
        QStringList transcript = expected.transcript;
        transcript.replaceInStrings("va local", "sa local");
        QCOMPARE(visa.takeTranscript(), transcript);
        QCOMPARE(ready, expected.ready);
        QVERIFY(session != 0);
    }

    /// Without a session the first command of each chain is tried and fails; where only the
    /// time-out could not be set, the chains run without what needs an answer. The video analyzer
    /// gets nothing.
    void failedOpening()
    {
        for (const Chain &tested : chains()) {
            for (const VisaDouble::At where : {VisaDouble::At::Open, VisaDouble::At::Timeout}) {
                VisaDouble visa;
                visa.failAt(where, 0, VI_ERROR_RSRC_NFOUND);
                ViSession session = 0;
                const ViStatus status = setUp(tested.name, &session, visa.openQuietly("sa"));
                const QStringList written = visa.takeTranscript().filter(" < ");

                const QStringList firsts =
                    tested.instrument == "va" ? QStringList()
                    : tested.instrument == "sa"
                        ? QStringList{"DISP:TRAC:Y:RLEV 0.0",
                                      tested.name == "sa QAN" ? "SWE:TIME 1" : "SWE:TIME 1.2"}
                        : QStringList{tested.name == "osc LPA4004" ? "TRIG:B:ENAB OFF"
                                                                   : "ACQ:POIN:AUTO 1"};
                QStringList expected;
                for (const QString &command : firsts) {
                    expected << "session 0 < " + wholeCommand(command);
                }
                if (where == VisaDouble::At::Open) {
                    QCOMPARE(written, expected);
                    QVERIFY(status != VI_SUCCESS && session == 0);
                } else {
                    QCOMPARE(written.isEmpty(), tested.instrument == "va");
                    QVERIFY(written.filter(QRegularExpression("ERR|IDN|RST|FREQ:MODE")).isEmpty());
                    QCOMPARE(status == VI_SUCCESS, tested.instrument != "va");
                }
            }
        }
    }

    /// Go To Local decides the readiness of both analyzers, and never that of the oscilloscope.
    void goToLocalDecides()
    {
        for (const Chain &tested : chains()) {
            VisaDouble visa;
            visa.failAt(VisaDouble::At::Local, 0, VI_ERROR_TMO);
            ViSession session = 0;
            const ViStatus status = setUp(tested.name, &session, visa.openQuietly("sa"));
            QCOMPARE(status == VI_SUCCESS, tested.instrument == "osc");
        }
        VisaDouble visa;
        ViSession session = 0;
        QVERIFY(setUp("va", &session, 0) != VI_SUCCESS); // no spectrum analyzer was opened
        QCOMPARE(visa.takeTranscript().last(), QString("session 0 local"));
    }

    void pressingAgainLeaksNoSession()
    {
        for (const Chain &tested : chains()) {
            VisaDouble visa;
            const ViSession spectrumAnalyzer = visa.openQuietly("sa");
            ViSession session = 0;
            setUp(tested.name, &session, spectrumAnalyzer);
            const ViSession first = session;
            visa.takeTranscript();
            setUp(tested.name, &session, spectrumAnalyzer);
            QCOMPARE(visa.takeTranscript().mid(0, 2),
                     QStringList({tested.instrument + " close", tested.instrument + " open"}));
            QVERIFY(session != first);

            visa.failAt(VisaDouble::At::Open, 0, VI_ERROR_RSRC_NFOUND);
            QVERIFY(setUp(tested.name, &session, spectrumAnalyzer) != VI_SUCCESS);
            QCOMPARE(session, ViSession(0));
        }
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
