#include "instrument/InstrumentIo.h"
#include "Line.h"

#include <QtTest>

#include <clocale>
#include <cstring>
#include <sys/stat.h>

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
        QVERIFY(statusByte == 7 && text == "old" && number == 7.0);
    }

    void replies_data()
    {
        QTest::addColumn<QString>(
            "expected");                 // a number, a whole one; a number, a character's code
        const QByteArray ones(100, '1'); // as long as the buffer
        QTest::newRow("1.5E+09\n") << "1.5e+09 1; 1.5e+09 0";
        QTest::newRow("  +66.75;1\n") << "66.75 66; 66.75 66";
        QTest::newRow("none\n") << "0 0; 0 0";
        QTest::newRow("321") << "321 321; 321 65";
        QTest::newRow("inf") << "inf 0; inf 0";
        QTest::newRow("-99999999999999999999\n") << "-1e+20 -2147483648; -1e+20 0";
        QTest::newRow(ones) << "1.11111e+99 2147483647; 1.11111e+99 0";
        QTest::newRow(ones + '2') << "7 7; 1.11111e+99 0"; // a remark ends a query
    }

    /// Numbers by all functions that read them, also where the decimal point is a comma.
    void replies()
    {
        Line line;
        line.answer = [](auto &) { return QByteArrayList() << QTest::currentDataTag(); };
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
        const int code = character.at(0).unicode();
        QTEST(QString("%1 %2; %3 %4").arg(queried).arg(whole).arg(read).arg(code), "expected");
    }

    /// A reply counts only when both halves of the query succeeded without a remark.
    void queries()
    {
        const auto query = [](const char *failing, ViStatus status) {
            Line line;
            line.answer = [](auto &) { return QByteArrayList() << "M,\xC3\xB6,1\n"; };
            line.fails = [=](auto &entry) { return entry.contains(failing) ? status : VI_SUCCESS; };
            QString reply = "old";
            const bool isReported = iaQueryf_s(1, "*IDN?\n", &reply) == status;
            return isReported ? reply + QString::number(line.transcript.size()) : "other status";
        };
        QCOMPARE(query("", VI_SUCCESS), QString::fromUtf8("M,ö,1\n2"));
        QCOMPARE(query(" <", VI_ERROR_IO), QString("old1"));
        QCOMPARE(query(" <", VI_SUCCESS_MAX_CNT), QString("old1"));
        QCOMPARE(query(" >", VI_ERROR_TMO), QString("old2"));
        QCOMPARE(query(" >", VI_SUCCESS_TERM_CHAR), QString("old2"));
    }

    void texts()
    {
        p_viStatusDesc = [](ViObject, ViStatus, ViChar *text) {
            std::strcpy(text, "Zeitüberschreitung");
            return VI_ERROR_INV_OBJECT;
        };
        QString text;
        QCOMPARE(iaStatusDesc(1, VI_ERROR_TMO, &text), VI_ERROR_INV_OBJECT);
        QCOMPARE(text, QString::fromUtf8("Zeitüberschreitung"));
        p_viStatusDesc = nullptr;

        QCOMPARE(rstrip("abc\ndef\n"), QString("abc\n"));
        QCOMPARE(rstrip("abc"), QString());
    }

    /// The names lead to the functions, in this order as far as there are any.
    void binding_data()
    {
        QTest::addColumn<int>("count"); // of the functions that are there
        QTest::newRow("no such file") << 0;
        QTest::newRow(THREE_FUNCTIONS) << 3;
        QTest::newRow(BENCH_LIBRARY) << 18;
    }

    void binding()
    {
        const QTemporaryDir directory;
        const QString fifo = directory.filePath("fifo"); // which nobody writes to
        QCOMPARE(mkfifo(fifo.toLocal8Bit(), 0600), 0);
        setVisaLibraryPaths({fifo, QTest::currentDataTag()});
        QFETCH(const int, count);
        QCOMPARE(iaVisaDll_Init(), count == 18);
        const auto isBound = [](auto *...functions) {
            return QVector<bool>{functions != nullptr...};
        };
        QCOMPARE(isBound(p_viOpenDefaultRM, p_viStatusDesc, p_viOpen, p_viWrite, p_viRead,
                         p_viQueryf_s, p_viQueryf_f, p_viQueryf_i, p_viPrintf, p_viScanf_f,
                         p_viReadToFile, p_viClear, p_viClose, p_viSetAttribute, p_viGetAttribute,
                         p_viSetBuf, p_viReadSTB, p_viGpibControlREN, p_viScanf_s),
                 QVector<bool>(count, true) + QVector<bool>(19 - count, false));
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
