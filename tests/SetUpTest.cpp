#include "instrument/InstrumentIo.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "Transcripts.h"

#include <QtTest>

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
        constexpr OscilloscopeType kvx = OscilloscopeType::Kvx;
        constexpr OscilloscopeType lpa4004 = OscilloscopeType::Lpa4004;
        QTest::newRow("KVx") << "scope-kvx" << kvx << false;
        for (const char *name :
             {"KVx with reset and IF", "KVx that refuses the first command of its IF channel",
              "KVx that refuses all commands of its IF channel"}) {
            QTest::newRow(name) << "scope-kvx" << kvx << true;
        }
        QTest::newRow("LPA4004 with reset") << "scope" << lpa4004 << true;
        QTest::newRow("LPA4004 that is gone") << "scope" << lpa4004 << true;
        QTest::newRow("analyzer") << "analyzer" << lpa4004 << false;
        QTest::newRow("analyzer that is gone") << "analyzer" << lpa4004 << false;
        QTest::newRow("QAN analyzer") << "analyzer-qan" << kvx << false;
        QTest::newRow("QEL analyzer") << "analyzer-qel" << lpa4004 << false;
        QTest::newRow("video analyzer") << "video" << lpa4004 << false;
        QTest::newRow("video analyzer with reset") << "video" << lpa4004 << true;
        QTest::newRow("video analyzer that is gone") << "video" << lpa4004 << false;
    }

    /// What is called when Init is pressed again: when nothing else fails, and when each of the
    /// calls fails in turn.
    void transcripts()
    {
        QFETCH(const QString, host);
        QFETCH(const OscilloscopeType, type);
        QFETCH(const bool, isBoxChecked);
        const Transcript transcript(QTest::currentDataTag());
        for (int call = -1; call < transcript.calls.size(); ++call) {
            const QString consequence = transcript.whenItFails.value(call, "goes on");
            if (consequence.isEmpty() || consequence.startsWith("fails")) {
                continue;
            }
            ViSession session = 0;
            QCOMPARE(setUp(host, type, isBoxChecked, &session), VI_SUCCESS);
            CallRecorder recorder;
            recorder.hosts = {{session, host}, {spectrumAnalyzer, "analyzer"}};
            recorder.faultOf = transcript.fault(call, VI_SUCCESS_TERM_CHAR);
            const ViStatus status = setUp(host, type, isBoxChecked, &session);
            QCOMPARE(recorder.takeCalls(), transcript.callsWhenFails(call));
            QCOMPARE(status == VI_SUCCESS, transcript.isReadyWhenFails(call));
            iaClose(session);
        }
    }
};

QTEST_GUILESS_MAIN(SetUpTest)
#include "SetUpTest.moc"
