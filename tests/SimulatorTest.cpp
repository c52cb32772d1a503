// The simulated bench as its clients see it, through the VISA functions, and its link model.

#include "simulator/Bench.h"
#include "simulator/VisaFunctions.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <cstring>
#include <map>

using namespace simulator;

namespace {

/// A bench of its own, asked through its instruments without VISA.
QString ask(Bench &bench, const char *host, const QByteArray &message)
{
    return QString::fromStdString(bench.find(host)->execute(message.toStdString())).trimmed();
}

std::vector<float> floats(const std::string &block)
{
    const auto digits = static_cast<std::size_t>(block.at(1) - '0');
    const std::size_t size = std::stoul(block.substr(2, digits));
    std::vector<float> values(size / sizeof(float));
    if (block.at(0) != '#' || block.size() != 2 + digits + size + 1 || block.back() != '\n') {
        return {};
    }
    std::memcpy(values.data(), block.data() + 2 + digits, size);
    return values;
}

} // namespace

class SimulatorTest : public QObject
{
    Q_OBJECT

    ViSession manager_ = 0;

    ViSession open(const char *resource)
    {
        ViSession session = 0;
        return viOpen(manager_, resource, VI_NO_LOCK, 1000, &session) == VI_SUCCESS ? session : 0;
    }
    static ViStatus write(ViSession session, const QByteArray &message)
    {
        ViUInt32 count = 0;
        const auto size = static_cast<ViUInt32>(message.size());
        const auto *bytes = reinterpret_cast<const ViByte *>(message.constData());
        const ViStatus status = viWrite(session, bytes, size, &count);
        return status == VI_SUCCESS && count != size ? VI_ERROR_IO : status;
    }
    static QByteArray read(ViSession session, ViUInt32 size, ViStatus &status)
    {
        QByteArray bytes(static_cast<int>(size), '?');
        ViUInt32 count = 0;
        status = viRead(session, reinterpret_cast<ViByte *>(bytes.data()), size, &count);
        return bytes.left(static_cast<int>(count));
    }

private slots:
    void init()
    {
        QCOMPARE(viOpenDefaultRM(&manager_), VI_SUCCESS);
        QCOMPARE(write(open("TCPIP::oscilloscope::INSTR"), "*RST;*CLS"), VI_SUCCESS);
    }
    void cleanup() { QCOMPARE(viClose(manager_), VI_SUCCESS); }

    void resourceStrings()
    {
        const std::map<ViStatus, QByteArrayList> texts = {
            {VI_SUCCESS,
             {"TCPIP0::oscilloscope::INSTR", "TCPIP::oscilloscope-kvx::inst0::INSTR",
              "tcpip7::Spectrum-Analyzer::INST0::instr", "TCPIP0::spectrum-analyzer-qan::INSTR",
              "TCPIP0::spectrum-analyzer-qel::INSTR", "TCPIP0::video-analyzer::INSTR"}},
            {VI_ERROR_RSRC_NFOUND,
             {"TCPIP0::printer::INSTR", "TCPIP0::oscilloscope::inst1::INSTR"}},
            {VI_ERROR_INV_RSRC_NAME,
             {"", "oscilloscope", "TCPIP0::oscilloscope", "TCPIP0::::INSTR", "TCPIPx::a::INSTR",
              "GPIB0::7::INSTR", "TCPIP0::a::INSTR ", "TCPIP0::a::b::c::INSTR", "TCPIP0:a:INSTR",
              "TCPIP0::a b::INSTR", "TCPIP0::oscilloscope::5025::SOCKET", QByteArray(300, 'a')}}};
        for (const auto &[status, names] : texts) {
            for (const QByteArray &name : names) {
                ViSession session = 4711;
                QVERIFY2(viOpen(manager_, name, VI_NO_LOCK, 0, &session) == status, name);
                QCOMPARE(session != 0, status == VI_SUCCESS);
            }
        }
    }

    void everyFunctionRefusesDeadHandles()
    {
        ViSession otherManager = 0;
        ViSession closed = 0;
        viOpenDefaultRM(&otherManager);
        viOpen(otherManager, "TCPIP::oscilloscope::INSTR", VI_NO_LOCK, 0, &closed);
        viClose(otherManager); // and its session with it
        for (const ViSession handle :
             {ViSession{0}, ~ViSession{0}, closed, otherManager, manager_}) {
            const bool open = handle == manager_;
            const ViStatus status = open ? VI_ERROR_NSUP_OPER : VI_ERROR_INV_OBJECT;
            ViByte byte = 'x';
            ViUInt16 statusByte = 0;
            for (const ViStatus answer :
                 {viWrite(handle, &byte, 1, nullptr), viRead(handle, &byte, 1, nullptr),
                  viReadToFile(handle, "/nonexistent/file", 1, nullptr), viClear(handle),
                  viSetAttribute(handle, VI_ATTR_TMO_VALUE, 1),
                  viGetAttribute(handle, VI_ATTR_TMO_VALUE, nullptr),
                  viSetBuf(handle, VI_READ_BUF, 100), viReadSTB(handle, &statusByte),
                  viGpibControlREN(handle, VI_GPIB_REN_ADDRESS_GTL), viPrintf(handle, "x"),
                  viScanf(handle, "x"), viQueryf(handle, "x", "x")}) {
                QCOMPARE(answer, status);
            }
            ViSession session = 0;
            std::array<char, 256> text{};
            QCOMPARE(viOpen(handle, "TCPIP::oscilloscope::INSTR", VI_NO_LOCK, 0, &session) < 0,
                     !open);
            QCOMPARE(viStatusDesc(handle, VI_SUCCESS, text.data()) < 0, !open);
            QVERIFY(open || viClose(handle) == VI_ERROR_INV_OBJECT);
        }
    }

    void readsInPieces()
    {
        const ViSession session = open("TCPIP::oscilloscope::INSTR");
        ViStatus status = VI_SUCCESS;
        QCOMPARE(read(session, 10, status), QByteArray());
        QCOMPARE(status, VI_ERROR_TMO);
        write(session, "*OPC?;*OPC?;*OPC?\r\n"); // six bytes of answer: 1;1;1 and the newline
        QCOMPARE(read(session, 2, status), QByteArray("1;"));
        QCOMPARE(status, VI_SUCCESS_MAX_CNT);
        QCOMPARE(read(session, 0, status), QByteArray());
        QCOMPARE(status, VI_SUCCESS_MAX_CNT);
        QCOMPARE(read(session, 4, status), QByteArray("1;1\n"));
        QCOMPARE(status, VI_SUCCESS); // the end, exactly at the count
        QCOMPARE(read(session, 1, status), QByteArray());
        QCOMPARE(status, VI_ERROR_TMO);
    }

    void readsToAFileThatItTruncates()
    {
        const QTemporaryDir directory;
        QFile file(directory.filePath("answer"));
        QVERIFY(file.open(QIODevice::ReadWrite) && file.write(QByteArray(100, 'z')) == 100);
        file.flush();
        const QByteArray name = file.fileName().toLocal8Bit();
        const ViSession session = open("TCPIP::oscilloscope::INSTR");
        ViUInt32 count = 99;
        write(session, "*OPC?;*OPC?");
        QCOMPARE(viReadToFile(session, "/nonexistent/x", 9, &count), VI_ERROR_FILE_ACCESS);
        QCOMPARE(viReadToFile(session, "/dev/full", 0, &count), VI_SUCCESS_MAX_CNT);
        QCOMPARE(viReadToFile(session, name, 3, &count), VI_SUCCESS_MAX_CNT);
        QCOMPARE(count, 3U);
        file.seek(0);
        QCOMPARE(file.readAll(), QByteArray("1;1"));
        QCOMPARE(viReadToFile(session, "/dev/full", 9, &count), VI_ERROR_FILE_IO);
        QCOMPARE(viReadToFile(session, name, 9, &count), VI_ERROR_TMO);
        QCOMPARE(count, 0U);
        QCOMPARE(file.size(), 0);
    }

    void attributesAndModes()
    {
        const ViSession first = open("TCPIP::oscilloscope::INSTR");
        const ViSession second = open("TCPIP::oscilloscope::INSTR");
        std::array<ViUInt32, 2> value{0, 4711};
        QCOMPARE(viSetAttribute(first, VI_ATTR_TMO_VALUE, 5000), VI_SUCCESS);
        QCOMPARE(viGetAttribute(first, VI_ATTR_TMO_VALUE, value.data()), VI_SUCCESS);
        QCOMPARE(value, (std::array<ViUInt32, 2>{5000, 4711})); // 32 bits are written, no more
        QCOMPARE(viGetAttribute(second, VI_ATTR_TMO_VALUE, value.data()), VI_SUCCESS);
        QCOMPARE(value[0], 2000U);
        QCOMPARE(viSetAttribute(first, 1, 1), VI_ERROR_NSUP_ATTR);
        QCOMPARE(viGetAttribute(first, 1, value.data()), VI_ERROR_NSUP_ATTR);
        QCOMPARE(viSetBuf(first, VI_READ_BUF | 64U, 1), VI_ERROR_INV_MASK);

        const Instrument *oscilloscope = bench().find("oscilloscope");
        const std::array<bool, 7> remoteAfter{false, true, false, true, true, true, false};
        for (ViUInt16 mode = 0; mode < 7; ++mode) {
            write(first, "*WAI");
            QVERIFY(oscilloscope->isRemote());
            QCOMPARE(viGpibControlREN(second, mode), VI_SUCCESS);
            QCOMPARE(oscilloscope->isRemote(), remoteAfter.at(mode));
        }
        QCOMPARE(viGpibControlREN(first, 7), VI_ERROR_INV_MODE);
    }

    void answersBelongToTheirSession()
    {
        const ViSession first = open("TCPIP::oscilloscope::INSTR");
        const ViSession second = open("TCPIP::oscilloscope::INSTR");
        ViUInt16 statusByte = 0xffff;
        ViStatus status = VI_SUCCESS;
        write(first, "CHAN1:SCAL 0.5;SCAL?");
        write(second, "FOO;CHAN1:SCAL?");
        viReadSTB(first, &statusByte);
        QCOMPARE(statusByte, ViUInt16{0x14});
        write(first, "SYST:ERR?;:SYST:ERR?\n"); // interrupts the answer that nobody read
        QCOMPARE(read(first, 99, status),
                 QByteArray("-113,\"Undefined header\";-410,\"Query INTERRUPTED\"\n"));
        QCOMPARE(read(second, 99, status), QByteArray("0.5\n"));
        viReadSTB(second, &statusByte);
        QCOMPARE(statusByte, ViUInt16{0});
        write(second, "*OPC?");
        QCOMPARE(viClear(second), VI_SUCCESS);
        QCOMPARE(read(second, 99, status), QByteArray());
        QCOMPARE(status, VI_ERROR_TMO);
    }

    void formattedInputAndOutput()
    {
        const ViSession session = open("TCPIP::oscilloscope::INSTR");
        double scale = 0.0;
        std::array<char, 64> text{};
        std::setlocale(LC_ALL, "de_DE.UTF-8"); // changes nothing where it is not installed
        QCOMPARE(viPrintf(session, "CHAN%hu:SCAL %.*f;POS %s%%\n", 2, 3, 0.25, "-2"), VI_SUCCESS);
        QCOMPARE(viQueryf(session, ":CHAN%d:SCAL?\n", "%lf", 2, &scale), VI_SUCCESS);
        QCOMPARE(scale, 0.25);
        QCOMPARE(viPrintf(session, "%s\n", "*IDN?;*OPC?"), VI_SUCCESS);
        QCOMPARE(viScanf(session, "Varnholt,%7s", text.data()), VI_SUCCESS);
        QCOMPARE(QByteArray(text.data()), QByteArray("LPA4004"));
        QCOMPARE(viScanf(session, "%t", text.data()), VI_SUCCESS);
        QVERIFY(QByteArray(text.data()).endsWith(";1\n"));
        QCOMPARE(viScanf(session, "%t", text.data()), VI_ERROR_TMO);
        QCOMPARE(viPrintf(session, "%n", 1), VI_ERROR_INV_FMT);
        QCOMPARE(viPrintf(session, "%b", 1), VI_ERROR_NSUP_FMT);
    }

    // Exchanges on the LPA4004 unless the row names another host; the errors come last.
    void messages_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("error");
        const auto add = [](const char *host, const char *message, const char *answer, int error) {
            QTest::addRow("%s: %s", host, message) << QByteArray(host) << QByteArray(message)
                                                   << QString(answer) << QString::number(error);
        };
        const char *const lpa = "oscilloscope";
        const char *const kvx = "oscilloscope-kvx";
        const char *const spa = "spectrum-analyzer";
        const char *const qan = "spectrum-analyzer-qan";
        const char *const qel = "spectrum-analyzer-qel";
        const char *const video = "video-analyzer";
        add(lpa, "chan:scal .05;POSITION -3;:channel1:scale?;pos?", "0.05;-3", 0);
        add(lpa, "CHAN4:SCAL 0.5;:CHAN2:SCAL?;:CHAN4:SCAL?", "0.2;0.5", 0);
        add(lpa, "CHAN1:RANG 0.5;CHAN1:SCAL?", "0.05", 0);
        add(lpa, "CHAN:COUP DC;COUP?;:TRIG:A:MODE normal;MODE?", "DC;NORM", 0);
        add(lpa, "CHAN2:STAT 2;STAT?;STAT OFF;STAT?", "1;0", 0);
        add(lpa, "CHAN2:STAT ON;CHAN3:STAT OFF;*RST;CHAN1:STAT?;:CHAN2:STAT?;:CHAN3:STAT?", "1;0;1",
            0);
        add(lpa, "FOO;*OPC?", "1", -113);
        add(lpa, "CHAN1:SCA 1", "", -113);
        add(lpa, "CHAN1:SCALE:", "", -113);
        add(lpa, ":SCAL?;:CHAN1;CHAN1:", "", -113);
        add(lpa, "STOP?", "", -113);
        add(lpa, "CHAN5:SCAL 1", "", -114);
        add(lpa, "CHAN0:DATA?", "", -114);
        add(lpa, "CHAN1:SCAL 99;SCAL?", "0.2", -222);
        add(lpa, "CHAN1:SCAL 1e999", "", -222);
        add(lpa, "CHAN1:SCAL nan;SCAL?", "0.2", -104);
        add(lpa, "CHAN1:SCAL +-1", "", -104);
        add(lpa, "CHAN1:SCAL", "", -109);
        add(lpa, "CHAN1:SCAL 1,2", "", -108);
        add(lpa, "CHAN1:TYPE FAST", "", -224);
        add(lpa, "FORM REAL,64;FORM?", "ASC,0", -224);
        add(lpa, "FORM REAL,32;FORM?;*RST;FORM?", "REAL,32;ASC,0", 0);
        add(lpa, "FORM REAL,32;FORM ASC;FORM?", "ASC,0", 0);
        add(lpa, "CHAN2:DATA?;*OPC?", "1", -221);
        add(lpa, "*TRG?", "", -113);
        add(lpa, "*CLS;'a;b';SYST:ERR?;SYST:ERR?", R"(-113,"Undefined header";0,"No error")", 0);
        for (const char *message : {"TRIG1:LEV1 0.1", "EXP:WAV:RAW ON", "CHAN1 ON", "RUNC",
                                    "INIT:CONT OFF", "ACQ:POIN:AUTO 1"}) {
            add(lpa, message, "", -113);
        }
        for (const char *message : {"TRIG:A:LEV1 0.1", "TRIG:B:ENAB OFF", "TIM:POS 0",
                                    "ACQ:WRAT MSAM", "SWE:POIN 1000"}) {
            add(kvx, message, "", -113);
        }
        add(kvx, "TIM:RANG 2;TIM:SCAL?;:ACQ:POIN 1999.6;POIN?", "0.2;2000", 0);
        add(kvx, "INIT:CONT?;CONT OFF;CONT?;*TRG;:INIT:CONT?;:RUNC;INIT:CONT?", "1;0;0;1", 0);
        add(spa, "FREQ:MODE SW", "", -113);
        add(qan, "FREQ:MODE SW;MODE?", "SW", 0);
        add(qel, "OUTP:IF VID", "", -113);
        add(qan, "OUTP:IF VID;:OUTP1:IF:SOUR?", "VID", 0);
        add(spa, "SWE:OPT SPE;OPT;OPT?", "AUTO", 0);
        add(spa, "BWID 50e6;BWID:RES?;VID?", "5e+07;3e+06", 0);
        add(spa, "FREQ:CENT 5.18E+9;CENT?;SPAN 1", "5.18e+09", -222);
        add(spa, "TRAC?", "", -109);
        add(spa, "TRAC? TRACE2", "", -224);
        add(spa, "TRAC? TRACE1,0", "", -222);
        add(video, "READ:AVDA:TTV:STAT?;VAL?", "0", -230);
        add(video, "INIT:AVDA;READ:AVDA:TTV:STAT?;COUN?;*RST;READ:AVDA:TTV:STAT?", "1;0;0", 0);
        add(video, "CONF:AVDA:TTV:APL:THR 101", "", -222);
    }
    void messages()
    {
        QFETCH(QByteArray, host);
        QFETCH(QByteArray, message);
        QFETCH(QString, answer);
        QFETCH(QString, error);
        Bench bench;
        QCOMPARE(ask(bench, host, message), answer);
        QCOMPARE(ask(bench, host, "SYST:ERR?").section(',', 0, 0), error);
    }

    void formatsCarryTheSameRecord()
    {
        Bench bench;
        Instrument &kvx = *bench.find("oscilloscope-kvx");
        const auto texts = ask(bench, "oscilloscope-kvx", "ACQ:POIN 1000;:CHAN1:DATA?").split(',');
        const auto values = floats(kvx.execute("FORM REAL,32;:CHAN1:DATA?"));
        const auto pairs = floats(kvx.execute("EXP:WAV:INCX ON;:CHAN1:DATA?"));
        QCOMPARE(texts.size(), 1000);
        QCOMPARE(values.size(), std::size_t{1000});
        QCOMPARE(pairs.size(), std::size_t{2000});
        for (std::size_t k = 0; k < 1000; ++k) {
            QCOMPARE(texts.at(static_cast<int>(k)).toFloat(), values[k]);
            QCOMPARE(pairs[2 * k + 1], values[k]);
        }
        QCOMPARE(pairs[0], -0.5F);
        QCOMPARE(pairs[1998], 0.5F);
    }

    void theTimeBasePlacesTheStep()
    {
        struct Case
        {
            const char *host;
            const char *settings;
            float level;
            double fraction; // of the record before the trigger
        };
        for (const Case &c :
             {Case{"oscilloscope", "*WAI", 0.027F, 0.5},
              Case{"oscilloscope-kvx", "TIM:REF 25", 0.027F, 0.25},
              Case{"oscilloscope", "TIM:POS 0.3", 0.027F, 0.25},
              Case{"oscilloscope", "TIM:RANG 0.6;REF 10", 0.027F, 0.1},
              Case{"oscilloscope", "TIM:SCAL 1e-3;:TRIG:A:LEV1 0.0775;*TRG", 0.0775F, 0.5}}) {
            Bench bench;
            const auto trace = floats(bench.find(c.host)->execute(std::string("FORM REAL,32;") +
                                                                  c.settings + ";:CHAN1:DATA?"));
            const auto edge = std::find_if(trace.begin(), trace.end(),
                                           [&](float volts) { return volts > c.level; });
            const double fraction = double(edge - trace.begin()) / double(trace.size());
            QVERIFY2(std::abs(fraction - c.fraction) < 0.004, c.settings);
        }
    }

    void tracesEndAtTheScreen()
    {
        Bench bench;
        Instrument &scope = *bench.find("oscilloscope");
        const auto range = [&](const char *settings) {
            const auto trace = floats(scope.execute(std::string("FORM REAL,32;:") + settings));
            const auto [low, high] = std::minmax_element(trace.begin(), trace.end());
            return std::pair(*low, *high);
        };
        QCOMPARE(range("CHAN1:SCAL 0.01;POS 0;DATA?").second, 0.05F);
        QCOMPARE(range("CHAN1:SCAL 0.01;POS -3;DATA?").second, 0.08F);
        QCOMPARE(range("CHAN1:SCAL 0.01;POS 0;OFFS 0.1;DATA?").first, 0.05F);
        const auto envelope = range("CHAN3:DATA?"); // whole at power-up
        QVERIFY(envelope.first > 0.2F && envelope.first < 0.3F);
        QVERIFY(envelope.second > 0.75F && envelope.second < 0.9F);
    }

    void nothingTriggersBeyondTheStep()
    {
        for (const char *settings : {"TRIG:A:LEV1 0.005", "TRIG:A:LEV1 0.15", "TRIG:A:LEV1 -1",
                                     "TRIG:A:EDGE:SLOP NEG", "TRIG:A:SOUR EXT"}) {
            Bench bench;
            ask(bench, "video-analyzer", "INIT:AVDA");
            const auto trace = floats(
                bench.find("oscilloscope")
                    ->execute(std::string("FORM REAL,32;") + settings + ";*TRG;:CHAN1:DATA?"));
            QVERIFY2(*std::max_element(trace.begin(), trace.end()) < 0.01F, settings);
            QVERIFY(std::isnan(bench.link().lastEvent().instants().rf));
            QCOMPARE(ask(bench, "video-analyzer", "READ:AVDA:TTV:COUN?;VAL?"), QString("0"));
            ask(bench, "oscilloscope", "*RST;SING;*TRG"); // the sequence waited
            QCOMPARE(bench.link().lastEvent().instants().rf,
                     Bench().link().lastEvent().instants().rf);
            QVERIFY(ask(bench, "video-analyzer", "READ:AVDA:TTV:COUN?;VAL?").startsWith("1;9"));
        }
    }

    void theSequenceIsTheSameAndPlausible()
    {
        LinkModel link;
        LinkModel again;
        constexpr int events = 800;
        Instants sum{0.0, 0.0, 0.0, 0.0};
        int overloads = 0;
        std::vector<float> former;
        for (int i = 0; i < events; ++i) {
            link.trigger(powerUpTriggerLevel);
            again.trigger(powerUpTriggerLevel);
            const Instants &instants = link.lastEvent().instants();
            const TimeGrid start{-0.5, 0.001, 10};
            const auto trace = link.lastEvent().trace(Signal::Source, start);
            QVERIFY(trace == again.lastEvent().trace(Signal::Source, start));
            QVERIFY(trace != former);
            former = trace;
            QCOMPARE(trace[0] >= 0.3F, link.lastEvent().isOverloaded());
            QVERIFY(instants.source > 0.0 && instants.source < 0.001);
            QVERIFY(instants.rf - instants.source < instants.hdmiDelayMs / 1000.0);
            QVERIFY(instants.hdmiDelayMs / 1000.0 < instants.sink - instants.source);
            sum.rf += 1000.0 * (instants.rf - instants.source);
            sum.hdmiDelayMs += instants.hdmiDelayMs;
            sum.sink += 1000.0 * (instants.sink - instants.source);
            overloads += link.lastEvent().isOverloaded() ? 1 : 0;
        }
        QCOMPARE(link.lastEvent().instants().sink, again.lastEvent().instants().sink);
        QVERIFY(std::abs(sum.rf / events - 45.0) < 1.0);
        QVERIFY(std::abs(sum.hdmiDelayMs / events - 95.0) < 1.0);
        QVERIFY(std::abs(sum.sink / events - 120.0) < 1.0);
        QVERIFY(overloads > events / 25 && overloads < events / 10);
    }
};

QTEST_GUILESS_MAIN(SimulatorTest)
#include "SimulatorTest.moc"
