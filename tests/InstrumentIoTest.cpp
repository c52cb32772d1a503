#include "instrument/InstrumentIo.h"
#include "instrument/ExchangeLog.h"
#include "Line.h"

#include <QtTest>

#include <clocale>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// While it lives, standard error goes into a file.
class CapturedErrors
{
public:
    CapturedErrors()
    {
        file.open();
        dup2(file.handle(), STDERR_FILENO);
    }
    ~CapturedErrors()
    {
        dup2(terminal, STDERR_FILENO);
        close(terminal);
    }
    CapturedErrors(const CapturedErrors &) = delete;
    CapturedErrors &operator=(const CapturedErrors &) = delete;

    [[nodiscard]] QString text() const { return contents(file.fileName()); }

private:
    QTemporaryFile file;
    int terminal = dup(STDERR_FILENO);
};

} // namespace

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
              iaQueryf_s(1, "x\n", &text), iaScanf_s(1, &text), iaScanf_f(1, &number)}) {
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
        row("no number", "none\n", 0, 0, QChar(0));
        row("code beyond eight bits", "321", 321, 321, 'A');
        row("infinity", "inf", qInf(), 0, QChar(0));
        row("below any int", "-99999999999999999999\n", -1e20, -greatest - 1, QChar(0));
        row("as long as the buffer", QByteArray(100, '1'), 1e100 / 9, greatest, QChar(0));
    }

    /// Numbers by all functions that read them, also where the decimal point is a comma.
    void numericReplies()
    {
        QFETCH(const QByteArray, reply);
        Line line;
        line.answer = [&](auto &) { return QByteArrayList{reply}; };
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
        QTest::addColumn<QString>("failing"); // part of the call's entry in the transcript
        QTest::addColumn<ViStatus>("status");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<int>("calls");
        const auto row = [](const char *name, const char *failing, ViStatus status,
                            const char *reply, int calls) {
            QTest::newRow(name) << failing << status << QString::fromUtf8(reply) << calls;
        };
        row("success", "none", VI_SUCCESS, "M,ö,1\n", 2);
        row("write fails", " <", VI_ERROR_IO, "old", 1);
        row("write with a remark", " <", VI_SUCCESS_MAX_CNT, "old", 1);
        row("read fails", " >", VI_ERROR_TMO, "old", 2);
        row("read with a remark", " >", VI_SUCCESS_TERM_CHAR, "old", 2);
    }

    /// A reply counts only when both halves of the query succeeded without a remark.
    void queries()
    {
        QFETCH(const QString, failing);
        QFETCH(const ViStatus, status);
        Line line;
        line.answer = [](auto &) { return QByteArrayList() << "M,\xC3\xB6,1\n"; };
        line.fails = [=](auto &entry) { return entry.contains(failing) ? status : VI_SUCCESS; };
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
        p_viStatusDesc = [](ViObject, ViStatus, ViChar *text) {
            std::strcpy(text, "Zeitüberschreitung");
            return VI_ERROR_INV_OBJECT;
        };
        p_viGetAttribute = [](ViObject object, ViAttr attribute, void *value) {
            *static_cast<ViUInt32 *>(value) = object + attribute;
            return VI_ERROR_NSUP_ATTR;
        };
        p_viSetBuf = [](ViSession session, ViUInt16 mask, ViUInt32 size) {
            return ViStatus(100 * session + 10 * mask + size);
        };
        QString text;
        QCOMPARE(iaStatusDesc(1, VI_ERROR_TMO, &text), VI_ERROR_INV_OBJECT);
        QCOMPARE(text, QString::fromUtf8("Zeitüberschreitung"));
        ViUInt32 value = 0;
        QCOMPARE(iaGetAttribute(5, 100, &value), VI_ERROR_NSUP_ATTR);
        QCOMPARE(value, 105U);
        QCOMPARE(iaSetBuf(3, 2, 1), 321);
    }

    /// Every call with what it carried and its status by name; nothing unless it is asked for.
    void exchangeLog()
    {
        static QStringList logged;
        const auto handler = qInstallMessageHandler([](auto, auto &, const QString &text) {
            static const QRegularExpression times("^[-0-9]+T[:.0-9]+ | [.0-9]+ ms$");
            logged << QString(text).remove(times);
        });
        {
            Line line;
            line.answer = [](const QByteArray &command) {
                return QByteArrayList() << (command == "*IDN?\n" ? QByteArray("M,\"\xF6\",1\n")
                                                                 : QByteArray("#14\0\0\x80?\n", 8));
            };
            line.fails = [](auto &entry) {
                return entry.contains("local")     ? ViStatus(0xBFFF003E)
                       : entry.contains("timeout") ? ViStatus(0xBFFF0123)
                                                   : VI_SUCCESS;
            };
            QString reply;
            iaPrintf(7, "*RST\n");
            QLoggingCategory::setFilterRules("orvanta.visa.debug=true");
            iaQueryf_s(7, "*IDN?\n", &reply);
            iaQueryf_s(7, "CHAN1:DATA?\n", &reply);
            iaPrintf(7, "CHAN1:DATA?\n");
            iaReadToFile(7, "/dev/null", 100, nullptr);
            iaSetAttribute(7, VI_ATTR_TMO_VALUE, 5000);
            iaGpibControlREN(7, 6);
            QLoggingCategory::setFilterRules({});
        }
        qInstallMessageHandler(handler);
        QCOMPARE(logged, QStringList({
                             "session 7 viWrite \"*IDN?\\n\" VI_SUCCESS",
                             "session 7 viRead \"M,\\\"\\xF6\\\",1\\n\" VI_SUCCESS",
                             "session 7 viWrite \"CHAN1:DATA?\\n\" VI_SUCCESS",
                             "session 7 viRead #14... 8 bytes VI_SUCCESS",
                             "session 7 viWrite \"CHAN1:DATA?\\n\" VI_SUCCESS",
                             "session 7 viReadToFile 8 bytes to a file VI_SUCCESS",
                             "session 7 viSetAttribute VI_ATTR_TMO_VALUE 5000 0xBFFF0123",
                             "session 7 viGpibControlREN Go To Local VI_ERROR_IO",
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
        {
            const CapturedErrors errors;
            QCOMPARE(iaVisaDll_Init(), bound == 18);
            QTEST(errors.text(), "report");
        }
        const auto isBound = [](auto *...functions) {
            return QVector<bool>{functions != nullptr...};
        };
        QCOMPARE(isBound(p_viOpenDefaultRM, p_viStatusDesc, p_viOpen, p_viWrite, p_viRead,
                         p_viQueryf_s, p_viQueryf_f, p_viQueryf_i, p_viPrintf, p_viScanf_f,
                         p_viReadToFile, p_viClear, p_viClose, p_viSetAttribute, p_viGetAttribute,
                         p_viSetBuf, p_viReadSTB, p_viGpibControlREN, p_viScanf_s),
                 QVector<bool>(bound, true) + QVector<bool>(19 - bound, false));
    }

    /// A program would wait at a FIFO that nobody writes to.
    void fifo()
    {
        const QTemporaryDir directory;
        const QString fifo = directory.filePath("fifo");
        QCOMPARE(mkfifo(fifo.toLocal8Bit(), 0600), 0);
        setVisaLibraryPaths({fifo});
        QVERIFY(!iaVisaDll_Init());
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
