#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "VisaDouble.h"

#include <QtTest>

#include <clocale>

namespace {

QVector<const void *> entryPoints()
{
    const auto address = [](auto *function) { return reinterpret_cast<const void *>(function); };
    return {address(p_viOpenDefaultRM), address(p_viStatusDesc),   address(p_viOpen),
            address(p_viWrite),         address(p_viRead),         address(p_viQueryf_s),
            address(p_viQueryf_f),      address(p_viQueryf_i),     address(p_viPrintf),
            address(p_viScanf_f),       address(p_viReadToFile),   address(p_viClear),
            address(p_viClose),         address(p_viSetAttribute), address(p_viGetAttribute),
            address(p_viSetBuf),        address(p_viReadSTB),      address(p_viGpibControlREN)};
}

} // namespace

class InstrumentIoTest : public QObject
{
    Q_OBJECT

private slots:
    /// Every function says so when VISA is missing, and touches nothing.
    void unboundFunctions()
    {
        ViSession session = 7;
        ViUInt16 statusByte = 7;
        unsigned char byte = 7;
        QString text = "old";
        double number = 7;
        int whole = 7;
        for (const ViStatus status :
             {iaOpenDefaultRM(&session), iaOpen(1, "osc", 0, 0, &session), iaClose(1), iaClear(1),
              iaWrite(1, &byte, 1, nullptr), iaRead(1, &byte, 1, nullptr),
              iaReadToFile(1, "x", 1, nullptr), iaSetAttribute(1, 1, 1),
              iaGetAttribute(1, 1, &number), iaSetBuf(1, 1, 1), iaReadSTB(1, &statusByte),
              iaGpibControlREN(1, 6), iaStatusDesc(1, 0, &text), iaPrintf(1, "x\n"),
              iaQueryf_s(1, "x\n", &text), iaQueryf_f(1, "x\n", &number),
              iaQueryf_i(1, "x\n", &whole), iaScanf_s(1, &text), iaScanf_f(1, &number)}) {
            QCOMPARE(status, VI_ERROR_LIBRARY_NFOUND);
        }
        QCOMPARE(session, ViSession(7));
        QCOMPARE(text, QString("old"));
        QCOMPARE(number, 7.0);
        QCOMPARE(whole, 7);
    }

    void numericReplies_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<ViStatus>("status");
        QTest::addColumn<double>("number");
        QTest::addColumn<int>("whole");

        constexpr double old = -7;
        QTest::newRow("exponent") << QByteArray("1.5E+09\n") << VI_SUCCESS << 1.5e9 << 1;
        QTest::newRow("blanks, sign") << QByteArray("  +12.75;1\n") << VI_SUCCESS << 12.75 << 12;
        QTest::newRow("no number") << QByteArray("none\n") << VI_SUCCESS << 0.0 << 0;
        QTest::newRow("no terminator")
            << QByteArray(100, '1') << VI_SUCCESS << QByteArray(100, '1').toDouble() << INT_MAX;
        QTest::newRow("beyond int")
            << QByteArray("-99999999999999999999\n") << VI_SUCCESS << -1e20 << INT_MIN;
        QTest::newRow("longer than the buffer")
            << QByteArray(101, '1') << VI_SUCCESS_MAX_CNT << old << int(old);
    }

    /// Also in a locale whose decimal point is a comma.
    void numericReplies()
    {
        QFETCH(const QByteArray, reply);
        QFETCH(const ViStatus, status);
        QFETCH(const double, number);
        QFETCH(const int, whole);

        if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr) {
            qWarning("no German locale here: tested with the decimal point only");
        }
        VisaDouble visa;
        visa.answer = [&](const QString &, const QByteArray &) { return reply; };
        const ViSession session = visa.openQuietly("va");
        double numberRead = -7;
        int wholeRead = -7;
        QCOMPARE(iaQueryf_f(session, "VAL?\n", &numberRead), status);
        QCOMPARE(iaQueryf_i(session, "VAL?\n", &wholeRead), status);
        QCOMPARE(numberRead, number);
        QCOMPARE(wholeRead, whole);
        iaPrintf(session, "VAL?\n");
        QCOMPARE(iaScanf_f(session, &numberRead), status);
        std::setlocale(LC_NUMERIC, "C");
    }

    void queries_data()
    {
        QTest::addColumn<VisaDouble::At>("where");
        QTest::addColumn<ViStatus>("status");
        QTest::addColumn<QStringList>("transcript");

        const QString write = "osc < *IDN?\\n";
        QTest::newRow("success") << VisaDouble::At::Open << VI_SUCCESS
                                 << QStringList{write, "osc >"};
        QTest::newRow("write") << VisaDouble::At::Write << VI_ERROR_IO
                               << QStringList{write + " -> bfff003e"};
        QTest::newRow("write, remark")
            << VisaDouble::At::Write << VI_SUCCESS_MAX_CNT << QStringList{write + " -> 3fff0006"};
        QTest::newRow("read") << VisaDouble::At::Read << VI_ERROR_TMO
                              << QStringList{write, "osc > -> bfff0015"};
        QTest::newRow("read, remark") << VisaDouble::At::Read << VI_SUCCESS_TERM_CHAR
                                      << QStringList{write, "osc > -> 3fff0005"};
    }

    void queries()
    {
        QFETCH(const VisaDouble::At, where);
        QFETCH(const ViStatus, status);
        QFETCH(const QStringList, transcript);

        VisaDouble visa;
        visa.answer = [](const QString &, const QByteArray &) {
            return QByteArray("M,\xC3\xB6,1\n");
        };
        visa.failAt(where, 0, status);
        const ViSession session = visa.openQuietly("osc");
        QString reply = "old";
        QCOMPARE(iaQueryf_s(session, "*IDN?\n", &reply), status);
        QCOMPARE(visa.takeTranscript(), transcript);
        QCOMPARE(reply, status == VI_SUCCESS ? QString::fromUtf8("M,ö,1\n") : QString("old"));
    }

    void characterReplies()
    {
        VisaDouble visa;
        const ViSession session = visa.openQuietly("osc");
        const QVector<QPair<QByteArray, int>> codes = {
            {"65\n", 'A'}, {"66.9", 'B'}, {"321", 'A'},          {"-1", 255},
            {"1e300", 0},  {"inf", 0},    {"-4294967231\n", 'A'}};
        for (const auto &[reply, code] : codes) {
            visa.answer = [&reply = reply](const QString &, const QByteArray &) { return reply; };
            iaPrintf(session, "CODE?\n");
            QString text;
            QCOMPARE(iaScanf_s(session, &text), VI_SUCCESS);
            QCOMPARE(text, QString(QChar(code)));
        }
        QString text = "old";
        QCOMPARE(iaScanf_s(session, &text), VI_ERROR_TMO);
        QCOMPARE(text, QString(QChar(0)));
    }

    void statusText()
    {
        VisaDouble visa;
        for (const ViStatus status : {VI_ERROR_TMO, VI_ERROR_IO}) {
            QString text;
            QCOMPARE(iaStatusDesc(1, status, &text) == VI_SUCCESS, status == VI_ERROR_TMO);
            QCOMPARE(text, QString::fromUtf8("Zeitüberschreitung"));
        }
    }

    void textHelpers()
    {
        QCOMPARE(rstrip("abc\ndef\n"), QString("abc\n"));
        QCOMPARE(rstrip("abc"), QString());
        // Fewer bytes than characters must not make the write run past them.
        const QString wide = QString::fromUtf8("\xF0\x9F\x93\xBA");
        QVERIFY(commandBytes(wide).size() >= wide.size());
    }

    void passThrough()
    {
        VisaDouble visa;
        ViSession session = 0;
        QCOMPARE(iaOpenDefaultRM(&session), VI_SUCCESS);
        QCOMPARE(iaOpen(session, "osc", VI_NO_LOCK, 10000, &session), VI_SUCCESS);
        QCOMPARE(iaSetAttribute(session, VI_ATTR_TMO_VALUE, 5000), VI_SUCCESS);
        QCOMPARE(iaPrintf(session, "RUN\n"), VI_SUCCESS);
        QCOMPARE(iaGpibControlREN(session, VI_GPIB_REN_ADDRESS_GTL), VI_SUCCESS);
        QCOMPARE(iaClose(session), VI_SUCCESS);
        QCOMPARE(visa.takeTranscript(), QStringList({"osc open", "osc timeout 5000", "osc < RUN\\n",
                                                     "osc local", "osc close"}));
    }

    void binding()
    {
        const int symbols = entryPoints().size();
        const int readToFile = 10;
        struct Library
        {
            QString path;
            int bound;
        };
        for (const Library &library : {Library{QString(BINDING_LIBRARY_COMPLETE).chopped(3), 0},
                                       Library{BINDING_LIBRARY_INCOMPLETE, readToFile},
                                       Library{BINDING_LIBRARY_COMPLETE, symbols}}) {
            VisaDouble::libraryPath = library.path;
            QCOMPARE(iaVisaDll_Init(), library.bound == symbols);
            const auto pointers = entryPoints();
            for (int i = 0; i < symbols; ++i) {
                QCOMPARE(pointers[i] != nullptr, i < library.bound);
            }
        }
        QVERIFY(p_viQueryf_s == p_viQueryf_f && p_viQueryf_f == p_viQueryf_i);
        QVERIFY(p_viScanf_s == nullptr);
        // Each name leads to its own function: the library's answer with their numbers.
        QCOMPARE(iaClose(0), ViStatus(3));
        QCOMPARE(iaClear(0), ViStatus(4));
        QCOMPARE(iaSetBuf(0, 0, 0), ViStatus(5));
        QCOMPARE(iaReadSTB(0, nullptr), ViStatus(6));
        QCOMPARE(iaGpibControlREN(0, 0), ViStatus(7));
        QCOMPARE(iaSetAttribute(0, 0, 0), ViStatus(8));
        QCOMPARE(iaGetAttribute(0, 0, nullptr), ViStatus(9));
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
