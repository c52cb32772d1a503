#include "instrument/InstrumentIo.h"
#include "benchmarks/CannedVisa.h"
#include "CallRecorder.h"
#include "TestFiles.h"

#include <QtTest>

#include <clocale>
#include <unistd.h>

class InstrumentIoTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr) {
            qWarning("no German locale here: tested with the decimal point only");
        }
    }

    /// Without a VISA library, functions return an error and leave their results as they were.
    void unboundFunctions()
    {
        QString text = "old";
        double number = 7;
        for (const ViStatus status :
             {iaOpenDefaultRM(nullptr), iaStatusDesc(1, 0, &text), iaPrintf(1, "x\n"),
              iaQueryf_s(1, "x\n", &text), iaScanf_s(1, &text), iaScanf_f(1, &number)}) {
            QCOMPARE(status, VI_ERROR_LIBRARY_NFOUND);
        }
        QCOMPARE(text, QString("old"));
        QCOMPARE(number, 7.0);
    }

    void numericReplies_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<double>("number");
        QTest::addColumn<int>("whole");
        QTest::addColumn<QChar>("character"); // whose code the reply is
        constexpr int greatest = std::numeric_limits<int>::max();
        const QChar none(0);
        QTest::newRow("text after the number")
            << QByteArray("  +66.75;1\n") << 66.75 << 66 << QChar('B');
        QTest::newRow("code beyond eight bits") << QByteArray("321") << 321.0 << 321 << QChar('A');
        QTest::newRow("infinity") << QByteArray("inf") << qInf() << 0 << none;
        QTest::newRow("below any int")
            << QByteArray("-1" + QByteArray(20, '0')) << -1e20 << -greatest - 1 << none;
        QTest::newRow("as long as the buffer")
            << QByteArray(100, '1') << 1e100 / 9 << greatest << none;
    }

    /// Numbers by all functions that read them, also where the decimal point is a comma.
    void numericReplies()
    {
        QFETCH(QByteArray, reply);
        const CannedVisa visa([&](auto &) { return reply; });
        double queried = 7;
        double read = 7;
        int whole = 7;
        QString character;
        iaQueryf_f(1, "VAL?\n", &queried);
        iaQueryf_i(1, "VAL?\n", &whole);
        iaPrintf(1, "VAL?\n");
        iaScanf_f(1, &read);
        iaPrintf(1, "VAL?\n");
        iaScanf_s(1, &character);
        QTEST(queried, "number");
        QTEST(read, "number");
        QTEST(whole, "whole");
        QTEST(character.at(0), "character");
    }

    /// A reply that is longer than its buffer is not used.
    void longReply()
    {
        const CannedVisa visa([](auto &) { return QByteArray(20001, '1'); });
        QString text = "old";
        double number = 7;
        int whole = 7;
        QCOMPARE(iaQueryf_s(1, "*IDN?\n", &text), VI_SUCCESS_MAX_CNT);
        QCOMPARE(iaQueryf_f(1, "VAL?\n", &number), VI_SUCCESS_MAX_CNT);
        QCOMPARE(iaQueryf_i(1, "VAL?\n", &whole), VI_SUCCESS_MAX_CNT);
        QCOMPARE(text, QString("old"));
        QCOMPARE(number + whole, 14.0);
    }

    void texts()
    {
        const CannedVisa visa([](auto &) { return "M,\xC3\xB6,1\n"; });
        QString reply;
        QCOMPARE(iaQueryf_s(1, "*IDN?\n", &reply), VI_SUCCESS);
        QCOMPARE(reply, QString::fromUtf8("M,\xC3\xB6,1\n"));
        QCOMPARE(rstrip("abc\ndef\n"), QString("abc\n"));
        QCOMPARE(rstrip("abc"), QString());
    }

    /// The calls that no measurement makes.
    void otherCalls()
    {
        setVisaLibraryPaths({BENCH_LIBRARY});
        QVERIFY(iaVisaDll_Init());
        ViSession manager = 0;
        ViSession session = 0;
        QCOMPARE(iaOpenDefaultRM(&manager), VI_SUCCESS);
        QCOMPARE(iaOpen(manager, "TCPIP::video::INSTR", 0, 0, &session), VI_SUCCESS);
        ViUInt32 timeout = 0;
        QCOMPARE(iaGetAttribute(session, VI_ATTR_TMO_VALUE, &timeout), VI_SUCCESS);
        QCOMPARE(timeout, 2000U);
        QCOMPARE(iaSetBuf(session, VI_READ_BUF, 4096), VI_SUCCESS);
        QCOMPARE(iaPrintf(session, "*IDN?\n"), VI_SUCCESS);
        ViUInt16 statusByte = 0;
        QCOMPARE(iaReadSTB(session, &statusByte), VI_SUCCESS);
        QCOMPARE(statusByte, 16);
        QCOMPARE(iaClear(session), VI_SUCCESS);
        QCOMPARE(iaReadSTB(session, &statusByte), VI_SUCCESS);
        QCOMPARE(statusByte, 0);
        QString text;
        QCOMPARE(iaStatusDesc(session, VI_ERROR_TMO, &text), VI_SUCCESS);
        QCOMPARE(text, QString("The operation timed out."));
        iaClose(manager);
    }

    /// The log has a line for each call, with its content and the name of its status. It is off at
    /// first.
    void exchangeLog()
    {
        static QStringList logged;
        const auto handler = qInstallMessageHandler([](auto, auto &, const QString &text) {
            static const QRegularExpression times("^[-0-9]+T[:.0-9]+ | [.0-9]+ ms$");
            logged << QString(text).remove(times);
        });
        const CannedVisa visa([](const QByteArray &command) {
            return command == "*IDN?\n" ? QByteArray("M,\"\xF6\",1\n")
                                        : QByteArray("#14\0\0\x80?\n", 8);
        });
        CallRecorder recorder;
        recorder.faultOf = [](auto &entry) { // with a status that VISA does not define
            return entry.contains("timeout") ? visaStatus(0xBFFF0123) : VI_SUCCESS;
        };
        QString reply;
        iaPrintf(7, "*RST\n");
        QLoggingCategory::setFilterRules("orvanta.visa.debug=true");
        iaQueryf_s(7, "*IDN?\n", &reply);
        iaQueryf_s(7, "CHAN1:DATA?\n", &reply);
        iaPrintf(7, "#3 parts\n"); // no block
        iaReadToFile(7, "/dev/null", 100, nullptr);
        iaSetAttribute(7, VI_ATTR_TMO_VALUE, 5000);
        QLoggingCategory::setFilterRules({});
        qInstallMessageHandler(handler);
        QCOMPARE(logged, QStringList({
                             "session 7 viWrite \"*IDN?\\n\" VI_SUCCESS",
                             "session 7 viRead \"M,\\\"\\xF6\\\",1\\n\" VI_SUCCESS",
                             "session 7 viWrite \"CHAN1:DATA?\\n\" VI_SUCCESS",
                             "session 7 viRead #14... 8 bytes VI_SUCCESS",
                             "session 7 viWrite \"#3 parts\\n\" VI_SUCCESS",
                             "session 7 viReadToFile 8 bytes to a file VI_SUCCESS",
                             "session 7 viSetAttribute 3fff001a 5000 0xBFFF0123",
                         }));
    }

    void binding_data()
    {
        const QStringList incomplete = {THREE_FUNCTIONS};
        const QString lacks = QString("  %1: lacks viWrite\n").arg(THREE_FUNCTIONS);
        const QString none = "No VISA library could be loaded:\n";
        QTest::addColumn<QStringList>("libraries");
        QTest::addColumn<bool>("isWhole");
        QTest::addColumn<bool>("canOpen"); // viOpen is bound
        QTest::addColumn<QString>("report");
        QTest::newRow("not a regular file") << QStringList{"/dev/null"} << false << false
                                            << none + "  /dev/null: not a regular file\n";
        QTest::newRow("incomplete") << incomplete << false << true << none + lacks;
        QTest::newRow("incomplete, then none") << incomplete + QStringList{"/none"} << false
                                               << false << none + lacks + "  /none: not there\n";
        QTest::newRow("incomplete, then the bench")
            << incomplete + QStringList{BENCH_LIBRARY} << true << true
            << "Passed over:\n" + lacks + "VISA library: " BENCH_LIBRARY "\n";
    }

    /// The functions of an incomplete library are bound up to the first that is missing.
    void binding()
    {
        QFETCH(const QStringList, libraries);
        setVisaLibraryPaths(libraries);
        QTemporaryFile errors;
        QVERIFY(errors.open());
        const int standardError = dup(STDERR_FILENO);
        dup2(errors.handle(), STDERR_FILENO);
        const bool isWhole = iaVisaDll_Init();
        dup2(standardError, STDERR_FILENO);
        close(standardError);
        QTEST(isWhole, "isWhole");
        QTEST(QString(contents(errors.fileName())), "report");
        QTEST(p_viOpen != nullptr, "canOpen");
        QTEST(p_viWrite != nullptr, "isWhole");
        QVERIFY(p_viScanf_s == nullptr);
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
