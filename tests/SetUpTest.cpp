#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "VisaDouble.h"

#include <QtTest>

#include <functional>

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

/// The transcript of a set-up in which some steps fail, and whether the instrument is then ready.
struct Expectation
{
    QStringList transcript;
    bool ready = true;
};

Expectation play(const QString &name, const Steps &steps, const QVector<int> &failing,
                 VisaDouble::At where, ViStatus fault)
{
    const QString mark = " -> " + QString::number(static_cast<ViUInt32>(fault), 16);
    Expectation expected;
    expected.transcript << name + " open"
                        << name + (name == "va" ? " timeout 10000" : " timeout 5000");
    int step = 0;
    while (step >= 0 && step < steps.size()) {
        const auto &[command, onFailure, onSuccess, tolerated] = steps[step];
        const bool fails = failing.contains(step);
        expected.transcript << name + " < " + command +
                                   (command.endsWith('?') ? "\\n" : ";*OPC?\\n");
        if (!fails || where == VisaDouble::At::Read) {
            expected.transcript << name + " >";
        }
        if (fails) {
            expected.transcript.last() += mark;
            expected.ready = expected.ready && tolerated;
        }
        const int next = fails ? onFailure : onSuccess;
        step = next == toNext ? step + 1 : next;
    }
    if (step != toEnd) {
        // The video analyzer's last step goes to the spectrum analyzer.
        expected.transcript << (name == "va" ? "sa local" : name + " local");
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

/// For an identity with QAN, with QEL or with neither.
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

/// A chain as the instrument must see it, and what starts it.
struct Chain
{
    QString name;
    Steps steps;
    std::function<ViStatus(ViSession *session, ViSession spectrumAnalyzer)> setUp;
    QByteArray identity = "1\n";

    [[nodiscard]] QString instrument() const { return name.section(' ', 0, 0); }
};

QVector<Chain> chains()
{
    const auto oscilloscope = [](bool reset, int type, bool ifDemodulation) {
        return [=](ViSession *session, ViSession) {
            return setUpOscilloscope(resourceManager, {"osc", reset, type, 0.25, ifDemodulation},
                                     session);
        };
    };
    const auto spectrumAnalyzer = [](int oscilloscopeType) {
        return [=](ViSession *session, ViSession) {
            return setUpSpectrumAnalyzer(resourceManager, {"sa", 2.437e9, oscilloscopeType},
                                         session);
        };
    };
    const auto videoAnalyzer = [](ViSession *session, ViSession spectrumAnalyzer) {
        return setUpVideoAnalyzer(resourceManager, {"va", true, 35.5}, spectrumAnalyzer, session);
    };
    return {{"osc KVx", kvxSteps(false), oscilloscope(false, 0, false)},
            {"osc KVx IF", kvxSteps(true), oscilloscope(false, 0, true)},
            {"osc LPA4004", lpa4004Steps(), oscilloscope(true, 1, true)},
            {"sa", analyzerSteps("", 1), spectrumAnalyzer(1)},
            {"sa QAN", analyzerSteps("QAN", 0), spectrumAnalyzer(0), "Maker,qanX40,1,2\n"},
            {"sa QEL", analyzerSteps("QEL", 1), spectrumAnalyzer(1), "Maker,Qel3,1,2\n"},
            {"va", videoAnalyzerSteps(), videoAnalyzer}};
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
        QTest::addColumn<bool>("atRead");
        QTest::addColumn<ViStatus>("fault");

        const auto all = chains();
        for (int c = 0; c < all.size(); ++c) {
            const auto &[name, chain, setUp, identity] = all[c];
            QTest::addRow("%s", qPrintable(name)) << c << QVector<int>() << false << VI_SUCCESS;
            for (int step = 0; step < chain.size(); ++step) {
                // A fall-back is only sent after the failures of those before it.
                QVector<int> failing = {step};
                while (failing.first() > 0 && chain[failing.first() - 1].onSuccess != toNext) {
                    failing.prepend(failing.first() - 1);
                }
                for (const auto &[kind, atRead, fault] :
                     {std::tuple{"write error", false, VI_ERROR_IO},
                      {"read error", true, VI_ERROR_TMO},
                      {"completion code", true, VI_SUCCESS_MAX_CNT}}) {
                    QTest::addRow("%s, %d: %s, %s", qPrintable(name), step,
                                  qPrintable(chain[step].command), kind)
                        << c << failing << atRead << fault;
                }
            }
        }
    }

    void everyFault()
    {
        QFETCH(const int, chain);
        QFETCH(const QVector<int>, failing);
        QFETCH(const bool, atRead);
        QFETCH(const ViStatus, fault);
        Chain tested = chains()[chain];
        if (tested.name == "sa QEL" && failing.contains(0)) {
            tested.steps = analyzerSteps("", 1); // nobody knows its family then
        }
        const VisaDouble::At where = atRead ? VisaDouble::At::Read : VisaDouble::At::Write;
        const Expectation expected = play(tested.instrument(), tested.steps, failing, where, fault);

        VisaDouble visa;
        visa.answer = [&](const QString &, const QByteArray &command) {
            return command == "*IDN?\n" ? tested.identity : QByteArray("1\n");
        };
        const QStringList calls = expected.transcript.filter(atRead ? " >" : " <");
        for (int call = 0; call < calls.size(); ++call) {
            visa.failAt(where, call, calls[call].contains(" -> ") ? fault : VI_SUCCESS);
        }
        ViSession session = 0;
        const bool ready = tested.setUp(&session, visa.openQuietly("sa")) == VI_SUCCESS;
        QCOMPARE(visa.takeTranscript(), expected.transcript);
        QCOMPARE(ready, expected.ready);
        QVERIFY(session != 0);
    }

    /// Without a session the first command of each chain is tried and fails; where only the
    /// time-out could not be set, the chains run without what needs an answer. The video analyzer
    /// gets nothing.
    void failedOpening()
    {
        const QMap<QString, QStringList> tried = {
            {"osc KVx", {"ACQ:POIN:AUTO 1"}},
            {"osc KVx IF", {"ACQ:POIN:AUTO 1"}},
            {"osc LPA4004", {"TRIG:B:ENAB OFF"}},
            {"sa", {"DISP:TRAC:Y:RLEV 0.0", "SWE:TIME 1.2"}},
            {"sa QAN", {"DISP:TRAC:Y:RLEV 0.0", "SWE:TIME 1"}},
            {"sa QEL", {"DISP:TRAC:Y:RLEV 0.0", "SWE:TIME 1.2"}}};
        for (const Chain &chain : chains()) {
            VisaDouble visa;
            visa.failAt(VisaDouble::At::Open, 0, VI_ERROR_RSRC_NFOUND);
            visa.failAt(VisaDouble::At::Timeout, 0, VI_ERROR_NSUP_ATTR);
            const ViSession spectrumAnalyzer = visa.openQuietly("sa");
            ViSession session = 0;
            QStringList expected = {chain.instrument() + " open -> bfff0011"};
            for (const QString &command : tried[chain.name]) {
                expected << "session 0 < " + command + ";*OPC?\\n";
            }
            QVERIFY(chain.setUp(&session, spectrumAnalyzer) != VI_SUCCESS);
            QCOMPARE(visa.takeTranscript(), expected);
            QCOMPARE(session, ViSession(0));

            visa.failAt(VisaDouble::At::Open, 0, VI_SUCCESS);
            const bool ready = chain.setUp(&session, spectrumAnalyzer) == VI_SUCCESS;
            const QStringList written = visa.takeTranscript().filter(" < ");
            QCOMPARE(ready, chain.name != "va");
            QCOMPARE(written.isEmpty(), chain.name == "va");
            QVERIFY(written.filter(QRegularExpression("ERR|IDN|RST|FREQ:MODE")).isEmpty());
        }
    }

    /// Go To Local decides the readiness of both analyzers, and never that of the oscilloscope.
    void goToLocalDecides()
    {
        for (const Chain &chain : chains()) {
            VisaDouble visa;
            visa.failAt(VisaDouble::At::Local, 0, VI_ERROR_TMO);
            ViSession session = 0;
            const ViStatus status = chain.setUp(&session, visa.openQuietly("sa"));
            QVERIFY2((status == VI_SUCCESS) == (chain.instrument() == "osc"),
                     qPrintable(chain.name));
        }
        VisaDouble visa;
        ViSession session = 0;
        QVERIFY(chains().last().setUp(&session, 0) != VI_SUCCESS); // no spectrum analyzer is open
        QCOMPARE(visa.takeTranscript().last(), QString("session 0 local"));
    }

    void pressingAgainLeaksNoSession()
    {
        for (const Chain &chain : chains()) {
            VisaDouble visa;
            const QString name = chain.instrument();
            ViSession session = visa.openQuietly(name);
            chain.setUp(&session, visa.openQuietly("sa"));
            QCOMPARE(visa.takeTranscript().mid(0, 2),
                     QStringList({name + " close", name + " open"}));
            visa.failAt(VisaDouble::At::Open, 0, VI_ERROR_RSRC_NFOUND);
            chain.setUp(&session, visa.openQuietly("sa"));
            QCOMPARE(session, ViSession(0));
        }
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
