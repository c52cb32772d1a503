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
        QVERIFY(session == 7 && text == "old" && number == 7.0 && whole == 7);
    }

    /// Also in a locale whose decimal point is a comma. The last column is what a character is read
    /// for: the number's low byte.
    void replies()
    {
        if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr) {
            qWarning("no German locale here: tested with the decimal point only");
        }
        const QByteArray ones(100, '1'); // as long as the buffer
        for (const auto &[reply, status, number, whole, code] :
             {std::tuple<QByteArray, ViStatus, double, int, int>{"1.5E+09\n", 0, 1.5e9, 1, 0},
              {"  +66.75;1\n", 0, 66.75, 66, 'B'},
              {"none\n", 0, 0.0, 0, 0},
              {"-1", 0, -1.0, -1, 255},
              {"321", 0, 321.0, 321, 'A'},
              {"1e300", 0, 1e300, 1, 0},
              {"inf", 0, qInf(), 0, 0},
              {"-99999999999999999999\n", 0, -1e20, INT_MIN, 0},
              {ones, 0, ones.toDouble(), INT_MAX, 0},
              {ones + '1', VI_SUCCESS_MAX_CNT, -7.0, -7, 0}}) {
            Line line;
            line.answer = [&reply = reply](auto &, auto &) { return reply; };
            double numberRead = -7;
            int wholeRead = -7;
            QString character;
            QCOMPARE(iaQueryf_f(1, "VAL?\n", &numberRead), status);
            QCOMPARE(iaQueryf_i(1, "VAL?\n", &wholeRead), status);
            QVERIFY2(numberRead == number && wholeRead == whole, reply);
            iaPrintf(1, "VAL?\n");
            QCOMPARE(iaScanf_f(1, &numberRead), status);
            QVERIFY2(numberRead == (status == VI_SUCCESS ? number : ones.toDouble()), reply);
            iaPrintf(1, "VAL?\n");
            iaScanf_s(1, &character);
            QVERIFY2(character == QString(QChar(code)), reply);
        }
        std::setlocale(LC_NUMERIC, "C");
    }

    /// A reply counts only when both halves of the query succeeded without a remark.
    void queries()
    {
        for (const auto &[failing, status] : {std::pair{"", VI_SUCCESS},
                                              {" <", VI_ERROR_IO},
                                              {" <", VI_SUCCESS_MAX_CNT},
                                              {" >", VI_ERROR_TMO},
                                              {" >", VI_SUCCESS_TERM_CHAR}}) {
            Line line;
            line.answer = [](auto &, auto &) { return "M,\xC3\xB6,1\n"; };
            line.fails = [&kind = failing, &fault = status](auto &entry) {
                return entry.contains(kind) ? fault : VI_SUCCESS;
            };
            QString reply = "old";
            QCOMPARE(iaQueryf_s(1, "*IDN?\n", &reply), status);
            QCOMPARE(line.transcript.size(), QString(failing) == " <" ? 1 : 2);
            QCOMPARE(reply, status == VI_SUCCESS ? QString::fromUtf8("M,ö,1\n") : QString("old"));
        }
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
    void binding()
    {
        const auto names =
            QString("OpenDefaultRM StatusDesc Open Write Read Queryf Queryf Queryf Printf "
                    "Scanf ReadToFile Clear Close SetAttribute GetAttribute SetBuf ReadSTB "
                    "GpibControlREN")
                .split(' ');
        const auto bound = [](auto *...functions) {
            return QVector<QFunctionPointer>{reinterpret_cast<QFunctionPointer>(functions)...};
        };
        const QTemporaryDir directory;
        const QString fifo = directory.filePath("fifo"); // which nobody writes to
        QCOMPARE(mkfifo(fifo.toLocal8Bit(), 0600), 0);
        for (const auto &[path, count] : {std::pair{QString(BENCH_LIBRARY).chopped(3), 0},
                                          {THREE_FUNCTIONS, 3},
                                          {BENCH_LIBRARY, names.size()}}) {
            setVisaLibraryPaths({fifo, path});
            QCOMPARE(iaVisaDll_Init(), count == names.size());
            const auto functions =
                bound(p_viOpenDefaultRM, p_viStatusDesc, p_viOpen, p_viWrite, p_viRead,
                      p_viQueryf_s, p_viQueryf_f, p_viQueryf_i, p_viPrintf, p_viScanf_f,
                      p_viReadToFile, p_viClear, p_viClose, p_viSetAttribute, p_viGetAttribute,
                      p_viSetBuf, p_viReadSTB, p_viGpibControlREN);
            for (int i = 0; i < names.size(); ++i) {
                const QByteArray name = "vi" + names[i].toLatin1();
                const QFunctionPointer own = count > 0 ? QLibrary(path).resolve(name) : nullptr;
                QVERIFY2(functions[i] == (i < count ? own : nullptr), name);
            }
        }
        QVERIFY(p_viScanf_s == nullptr);
    }
};

QTEST_GUILESS_MAIN(InstrumentIoTest)
#include "InstrumentIoTest.moc"
