#include "instrument/InstrumentIo.h"
#include "benchmarks/CannedVisa.h"
#include "Line.h"
#include "TestFiles.h"

#include <QtTest>

#include <clocale>
#include <cstring>
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

    /// Without VISA every function says so, and touches nothing.
    void unboundFunctions()
    {
        ViUInt16 statusByte = 7;
        QString text = "old";
        double number = 7;
        for (const ViStatus status :
             {iaClear(1), iaReadSTB(1, &statusByte), iaStatusDesc(1, 0, &text), iaPrintf(1, "x\n"),
              iaOpenDefaultRM(nullptr), iaQueryf_s(1, "x\n", &text), iaScanf_s(1, &text),
              iaScanf_f(1, &number)}) {
            QCOMPARE(status, VI_ERROR_LIBRARY_NFOUND);
        }
        QCOMPARE(statusByte, ViUInt16(7));
        QCOMPARE(text, QString("old"));
        QCOMPARE(number, 7.0);
    }

    void numericReplies_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<double>("number");
        QTest::addColumn<int>("whole");
        QTest::addColumn<QChar>("character"); // whose code the reply is
        const auto row = [](const char *name, const QByteArray &reply, double number, int whole,
                            QChar character) {
            QTest::newRow(name) << reply << number << whole << character;
        };
        constexpr int greatest = std::numeric_limits<int>::max();
        row("exponent", "1.5E+09\n", 1.5e9, 1, QChar(0));
        row("more behind the number", "  +66.75;1\n", 66.75, 66, 'B');
        row("code beyond eight bits", "321", 321, 321, 'A');
        row("infinity", "inf", qInf(), 0, QChar(0));
        row("below any int", "-99999999999999999999\n", -1e20, -greatest - 1, QChar(0));
        row("as long as the buffer", QByteArray(100, '1'), 1e100 / 9, greatest, QChar(0));
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

    void queries_data()
    {
        QTest::addColumn<QString>("failing"); // end of the call's entry in the transcript
        QTest::addColumn<ViStatus>("status");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<int>("calls");
        QTest::newRow("success") << "none" << VI_SUCCESS << QString::fromUtf8("M,\xC3\xB6,1\n")
                                 << 2;
        QTest::newRow("write with a remark") << "< *IDN?\\n" << VI_SUCCESS_MAX_CNT << "old" << 1;
        QTest::newRow("read with a remark") << "reads" << VI_SUCCESS_TERM_CHAR << "old" << 2;
    }

    /// A reply counts only when both halves of the query succeeded without a remark.
    void queries()
    {
        QFETCH(const QString, failing);
        QFETCH(const ViStatus, status);
        const CannedVisa visa([](auto &) { return "M,\xC3\xB6,1\n"; });
        Line line;
        line.fails = [=](auto &entry) { return entry.endsWith(failing) ? status : VI_SUCCESS; };
        QString reply = "old";
        QCOMPARE(iaQueryf_s(1, "*IDN?\n", &reply), status);
        QTEST(reply, "reply");
        QTEST(line.transcript.size(), "calls");
    }

    void texts()
    {
        QCOMPARE(rstrip("abc\ndef\n"), QString("abc\n"));
        QCOMPARE(rstrip("abc"), QString());
    }

    /// Arguments and results go through as they are.
    void otherCalls()
    {
        static QVector<ViUInt32> arguments;
        p_viStatusDesc = [](ViObject, ViStatus, ViChar *text) {
            std::strcpy(text, "Zeit\xC3\xBC"
                              "berschreitung");
            return VI_ERROR_INV_OBJECT;
        };
        p_viGetAttribute = [](ViObject object, ViAttr attribute, void *value) {
            arguments = {object, attribute};
            *static_cast<ViUInt32 *>(value) = 5000;
            return VI_ERROR_NSUP_ATTR;
        };
        p_viSetBuf = [](ViSession session, ViUInt16 mask, ViUInt32 size) {
            arguments = {session, mask, size};
            return VI_ERROR_INV_MASK;
        };
        QString text;
        QCOMPARE(iaStatusDesc(1, VI_ERROR_TMO, &text), VI_ERROR_INV_OBJECT);
        QCOMPARE(text, QString::fromUtf8("Zeit\xC3\xBC"
                                         "berschreitung"));
        ViUInt32 value = 0;
        QCOMPARE(iaGetAttribute(7, VI_ATTR_TMO_VALUE, &value), VI_ERROR_NSUP_ATTR);
        QCOMPARE(arguments, QVector<ViUInt32>({7, VI_ATTR_TMO_VALUE}));
        QCOMPARE(value, 5000U);
        QCOMPARE(iaSetBuf(7, VI_READ_BUF, 4096), VI_ERROR_INV_MASK);
        QCOMPARE(arguments, QVector<ViUInt32>({7, VI_READ_BUF, 4096}));
    }

    /// Every call with what it carried and its status by name; nothing unless it is asked for.
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
        Line line;
        line.fails = [](auto &entry) { // with a status of VISA's, and one that it does not have
            return entry.contains("local")     ? VI_ERROR_IO
                   : entry.contains("timeout") ? visaStatus(0xBFFF0123)
                                               : VI_SUCCESS;
        };
        QString reply;
        iaPrintf(7, "*RST\n");
        QLoggingCategory::setFilterRules("orvanta.visa.debug=true");
        iaQueryf_s(7, "*IDN?\n", &reply);
        iaQueryf_s(7, "CHAN1:DATA?\n", &reply);
        iaPrintf(7, "#3 parts\n"); // no block
        iaReadToFile(7, "/dev/null", 100, nullptr);
        iaSetAttribute(7, VI_ATTR_TMO_VALUE, 5000);
        iaGpibControlREN(7, VI_GPIB_REN_ADDRESS_GTL);
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
                             "session 7 viGpibControlREN mode 6 VI_ERROR_IO",
                         }));
    }

    void binding_data()
    {
        const QStringList incomplete = {THREE_FUNCTIONS};
        const QString lacks = QString("  %1: lacks viWrite\n").arg(THREE_FUNCTIONS);
        const QString none = "No VISA library could be loaded:\n";
        QTest::addColumn<QStringList>("libraries");
        QTest::addColumn<int>("bound"); // functions, in the order below
        QTest::addColumn<QString>("report");
        QTest::newRow("no such file") << QStringList{"/none"} << 0 << none + "  /none: not there\n";
        QTest::newRow("no file of a library")
            << QStringList{"/dev/null"} << 0 << none + "  /dev/null: not a regular file\n";
        QTest::newRow("incomplete") << incomplete << 3 << none + lacks;
        QTest::newRow("incomplete, then none")
            << incomplete + QStringList{"/none"} << 0 << none + lacks + "  /none: not there\n";
        QTest::newRow("incomplete, then the bench")
            << incomplete + QStringList{BENCH_LIBRARY} << 18
            << "Passed over:\n" + lacks + "VISA library: " BENCH_LIBRARY "\n";
    }

    /// The names lead to the functions, in this order up to the first that is missing.
    void binding()
    {
        QFETCH(const QStringList, libraries);
        QFETCH(const int, bound);
        setVisaLibraryPaths(libraries);
        QTemporaryFile errors;
        QVERIFY(errors.open());
        const int standardError = dup(STDERR_FILENO);
        dup2(errors.handle(), STDERR_FILENO);
        const bool isWhole = iaVisaDll_Init();
        dup2(standardError, STDERR_FILENO);
        close(standardError);
        QCOMPARE(isWhole, bound == 18);
        QTEST(QString(contents(errors.fileName())), "report");
        const auto isBound = [](auto *...functions) {
            return QVector<bool>{functions != nullptr...};
        };
        QCOMPARE(isBound(p_viOpenDefaultRM, p_viStatusDesc, p_viOpen, p_viWrite, p_viRead,
                         p_viQueryf_s, p_viQueryf_f, p_viQueryf_i, p_viPrintf, p_viScanf_f,
                         p_viReadToFile, p_viClear, p_viClose, p_viSetAttribute, p_viGetAttribute,
                         p_viSetBuf, p_viReadSTB, p_viGpibControlREN, p_viScanf_s),
                 QVector<bool>(bound, true) + QVector<bool>(19 - bound, false));
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
