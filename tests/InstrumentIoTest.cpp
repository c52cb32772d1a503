#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "VisaDouble.h"

#include <QtTest>

#include <clocale>
#include <cstring>

namespace {

QVector<const void *> entryPoints()
{
    const auto addresses = [](auto *...functions) {
        return QVector<const void *>{reinterpret_cast<const void *>(functions)...};
    };
    return addresses(p_viOpenDefaultRM, p_viStatusDesc, p_viOpen, p_viWrite, p_viRead, p_viQueryf_s,
                     p_viQueryf_f, p_viQueryf_i, p_viPrintf, p_viScanf_f, p_viReadToFile, p_viClear,
                     p_viClose, p_viSetAttribute, p_viGetAttribute, p_viSetBuf, p_viReadSTB,
                     p_viGpibControlREN);
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

    /// Also in a locale whose decimal point is a comma.
    void numericReplies()
    {
        if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr) {
            qWarning("no German locale here: tested with the decimal point only");
        }
        const QByteArray ones(100, '1'); // as long as the buffer
        for (const auto &[reply, status, number, whole] :
             {std::tuple<QByteArray, ViStatus, double, int>{"1.5E+09\n", VI_SUCCESS, 1.5e9, 1},
              {"  +12.75;1\n", VI_SUCCESS, 12.75, 12},
              {"none\n", VI_SUCCESS, 0.0, 0},
              {ones, VI_SUCCESS, ones.toDouble(), INT_MAX},
              {"-99999999999999999999\n", VI_SUCCESS, -1e20, INT_MIN},
              {ones + '1', VI_SUCCESS_MAX_CNT, -7.0, -7}}) {
            VisaDouble visa;
            visa.answer = [&reply = reply](const QString &, const QByteArray &) { return reply; };
            const ViSession session = visa.openQuietly("va");
            double numberRead = -7;
            int wholeRead = -7;
            QCOMPARE(iaQueryf_f(session, "VAL?\n", &numberRead), status);
            QCOMPARE(iaQueryf_i(session, "VAL?\n", &wholeRead), status);
            QVERIFY2(numberRead == number && wholeRead == whole, reply);
            iaPrintf(session, "VAL?\n");
            QCOMPARE(iaScanf_f(session, &numberRead), status);
            QVERIFY2(numberRead == (status == VI_SUCCESS ? number : ones.toDouble()), reply);
        }
        std::setlocale(LC_NUMERIC, "C");
    }

    /// A reply counts only when both halves of the query succeeded without a remark.
    void queries()
    {
        const QString write = "osc < *IDN?\\n";
        for (const auto &[where, status, transcript] :
             {std::tuple<VisaDouble::At, ViStatus, QStringList>{
                  VisaDouble::At::Read, VI_SUCCESS, {write, "osc >"}},
              {VisaDouble::At::Write, VI_ERROR_IO, {write + " -> bfff003e"}},
              {VisaDouble::At::Write, VI_SUCCESS_MAX_CNT, {write + " -> 3fff0006"}},
              {VisaDouble::At::Read, VI_ERROR_TMO, {write, "osc > -> bfff0015"}},
              {VisaDouble::At::Read, VI_SUCCESS_TERM_CHAR, {write, "osc > -> 3fff0005"}}}) {
            VisaDouble visa;
            visa.answer = [](const QString &, const QByteArray &) { return "M,\xC3\xB6,1\n"; };
            visa.failAt(where, 0, status);
            QString reply = "old";
            QCOMPARE(iaQueryf_s(visa.openQuietly("osc"), "*IDN?\n", &reply), status);
            QCOMPARE(visa.takeTranscript(), transcript);
            QCOMPARE(reply, status == VI_SUCCESS ? QString::fromUtf8("M,ö,1\n") : QString("old"));
        }
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
            QVERIFY2(text == QString(QChar(code)), reply);
        }
        QString text = "old";
        QCOMPARE(iaScanf_s(session, &text), VI_ERROR_TMO);
        QCOMPARE(text, QString(QChar(0)));
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

    void binding()
    {
        const int symbols = entryPoints().size();
        const int readToFile = 10;
        for (const auto &[path, bound] :
             {std::pair(QString(BINDING_LIBRARY_COMPLETE).chopped(3), 0),
              std::pair(QString(BINDING_LIBRARY_INCOMPLETE), readToFile),
              std::pair(QString(BINDING_LIBRARY_COMPLETE), symbols)}) {
            VisaDouble::libraryPath = path;
            QCOMPARE(iaVisaDll_Init(), bound == symbols);
            const auto pointers = entryPoints();
            for (int i = 0; i < symbols; ++i) {
                QCOMPARE(pointers[i] != nullptr, i < bound);
            }
        }
        QVERIFY(p_viQueryf_s == p_viQueryf_f && p_viQueryf_f == p_viQueryf_i);
        QVERIFY(p_viScanf_s == nullptr);
        // Each name leads to its own function: the library's answer with their numbers.
        const QVector<ViStatus> numbers = {iaClose(0),
                                           iaClear(0),
                                           iaSetBuf(0, 0, 0),
                                           iaReadSTB(0, nullptr),
                                           iaGpibControlREN(0, 0),
                                           iaSetAttribute(0, 0, 0),
                                           iaGetAttribute(0, 0, nullptr)};
        QCOMPARE(numbers, QVector<ViStatus>({3, 4, 5, 6, 7, 8, 9}));
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
