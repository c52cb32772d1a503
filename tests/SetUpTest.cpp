#include "instrument/InstrumentIo.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "Transcripts.h"

#include <QtTest>

namespace {

constexpr OscilloscopeType kvx = OscilloscopeType::Kvx;
constexpr OscilloscopeType lpa4004 = OscilloscopeType::Lpa4004;

} // namespace

Q_DECLARE_METATYPE(OscilloscopeType)

class SetUpTest : public QObject
{
    Q_OBJECT

    ViSession manager = 0;
    ViSession spectrumAnalyzer = 0; // the one that the video analyzer sends to local

    /// Set the instrument of a host up. The boxes are Reset and IF/video.
    ViStatus setUp(const QString &host, OscilloscopeType type, bool isBoxChecked,
                   ViSession *session) const
    {
        const QString resource = "TCPIP0::" + host + "::INSTR";
        if (host == "video") {
            return setUpVideoAnalyzer(manager, {resource, isBoxChecked, 35.5}, spectrumAnalyzer,
                                      session);
        }
        if (host.startsWith("scope")) {
            return setUpOscilloscope(manager, {resource, isBoxChecked, type, 0.125, isBoxChecked},
                                     session);
        }
        return setUpSpectrumAnalyzer(manager, {resource, 2.437e9, type}, session);
    }

private slots:
    void initTestCase()
    {
        setVisaLibraryPaths({BENCH_LIBRARY});
        QVERIFY(iaVisaDll_Init());
        QCOMPARE(iaOpenDefaultRM(&manager), VI_SUCCESS);
        iaOpen(manager, "TCPIP0::analyzer::INSTR", VI_NO_LOCK, 10000, &spectrumAnalyzer);
    }

    void transcripts_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<OscilloscopeType>("type");
        QTest::addColumn<bool>("isBoxChecked");
        QTest::newRow("KVx") << "scope-kvx" << kvx << false;
        QTest::newRow("KVx with reset and IF") << "scope-kvx" << kvx << true;
        QTest::newRow("LPA4004 with reset") << "scope" << lpa4004 << true;
        QTest::newRow("analyzer") << "analyzer" << lpa4004 << false;
        QTest::newRow("QAN analyzer") << "analyzer-qan" << kvx << false;
        QTest::newRow("QEL analyzer") << "analyzer-qel" << lpa4004 << false;
        QTest::newRow("video analyzer") << "video" << lpa4004 << false;
        QTest::newRow("video analyzer with reset") << "video" << lpa4004 << true;
    }

    /// What is called when nothing fails, and when each of the calls fails in turn.
    void transcripts()
    {
        QFETCH(const QString, host);
        QFETCH(const OscilloscopeType, type);
        QFETCH(const bool, isBoxChecked);
        const Transcript transcript(QTest::currentDataTag());
        for (int call = -1; call < transcript.calls.size(); ++call) {
            const QString consequence = transcript.whenItFails.value(call, "goes on");
            if (consequence.isEmpty()) {
                continue; // has a test of its own
            }
            Line line;
            line.open[spectrumAnalyzer] = "analyzer";
            line.fails = failing(call, VI_SUCCESS_TERM_CHAR);
            ViSession session = 0;
            const bool isReady = setUp(host, type, isBoxChecked, &session) == VI_SUCCESS;
            QCOMPARE(line.takeCalls(), transcript.without(call));
            QCOMPARE(isReady, !consequence.endsWith("not ready"));
            iaClose(session);
        }
    }

    void ifChannel_data()
    {
        QTest::addColumn<int>("failures");
        QTest::addColumn<QString>("lastSent");
        QTest::addColumn<bool>("isReady");
        QTest::newRow("first command fails")
            << 1 << "scope-kvx < CHAN3:POS -3.0;CHAN3:COUP DC;*OPC?\\n"
            << true;
        QTest::newRow("all commands fail") << 3 << "scope-kvx < CHAN3:TYPE RMS;*OPC?\\n" << false;
    }

    /// The IF channel's commands are sent until one succeeds.
    void ifChannel()
    {
        QFETCH(const int, failures);
        Line line;
        line.fails = [left = failures](const QString &entry) mutable {
            return entry.contains("< CHAN3") && left-- > 0 ? VI_ERROR_IO : VI_SUCCESS;
        };
        ViSession session = 0;
        QTEST(setUp("scope-kvx", kvx, true, &session) == VI_SUCCESS, "isReady");
        QTEST(line.takeCalls().filter(QRegularExpression("CHAN3( ON|:POS|:TYPE)")).last(),
              "lastSent");
        iaClose(session);
    }

    void again_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QStringList>("sent");
        const QString command = "session 0 < %1;*OPC?\\n";
        QTest::newRow("oscilloscope") << "scope" << QStringList{command.arg("TRIG:B:ENAB OFF")};
        QTest::newRow("analyzer") << "analyzer"
                                  << QStringList{command.arg("DISP:TRAC:Y:RLEV 0.0"),
                                                 command.arg("SWE:TIME 1.2")};
        QTest::newRow("video analyzer") << "video" << QStringList();
    }

    /// Init is pressed again, and the instrument is no longer there.
    void again()
    {
        QFETCH(const QString, host);
        QFETCH(const QStringList, sent);
        Line line;
        ViSession session = 0;
        QCOMPARE(setUp(host, lpa4004, true, &session), VI_SUCCESS);
        line.takeCalls();
        line.fails = [](auto &entry) {
            return entry.contains(" open") ? VI_ERROR_RSRC_NFOUND : VI_SUCCESS;
        };
        QVERIFY(setUp(host, lpa4004, true, &session) != VI_SUCCESS);
        QCOMPARE(session, 0U);
        QCOMPARE(line.takeCalls(),
                 QStringList({host + " close", host + " open, lock 0, 10000 ms"}) + sent);
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
