#include "simulator/Laboratory.h"
#include "simulator/VisaFunctions.h"
#include "TestFiles.h"

#include <QTemporaryFile>
#include <QtTest>

#include <array>
#include <cmath>
#include <future>
#include <map>

using namespace simulator;

namespace {

/// A bench of its own, just switched on.
struct OwnBench
{
    BenchState state;
    Bench bench{state};

    OwnBench() { bench.switchOn(); }

    /// Asks an instrument without VISA.
    QByteArray ask(const char *host, const QByteArray &message) const
    {
        return QByteArray::fromStdString(bench.find(host)->execute(message.toStdString()))
            .trimmed();
    }
};

} // namespace

class SimulatorTest : public QObject
{
    Q_OBJECT

    using Reply = std::pair<QByteArray, ViStatus>;
    const Reply nothing{"", VI_ERROR_TMO};

    ViSession manager = 0;
    ViSession first = 0; // two links to one oscilloscope
    ViSession second = 0;

    static void write(ViSession session, const QByteArray &message)
    {
        const auto size = static_cast<ViUInt32>(message.size());
        ViUInt32 count = 0;
        QCOMPARE(viWrite(session, reinterpret_cast<const ViByte *>(message.data()), size, &count),
                 VI_SUCCESS);
        QCOMPARE(count, size);
    }
    static Reply read(ViSession session, int size)
    {
        QByteArray bytes(size, '?');
        ViUInt32 count = 0;
        const ViStatus status = viRead(session, reinterpret_cast<ViByte *>(bytes.data()),
                                       static_cast<ViUInt32>(size), &count);
        return {bytes.left(static_cast<int>(count)), status};
    }
    static Reply ask(ViSession session, const QByteArray &message, int size = 99999)
    {
        write(session, message);
        return read(session, size);
    }

private slots:
    void init()
    {
        QCOMPARE(viOpenDefaultRM(&manager), VI_SUCCESS);
        for (ViSession *session : {&first, &second}) {
            QCOMPARE(viOpen(manager, "TCPIP::scope::INSTR", VI_NO_LOCK, 0, session), VI_SUCCESS);
        }
        write(first, "*RST;*CLS");
    }

    void cleanup() { QCOMPARE(viClose(manager), VI_SUCCESS); }

    void resourceStrings()
    {
        const std::map<ViStatus, QByteArrayList> texts = {
            {VI_SUCCESS,
             {"TCPIP0::scope::INSTR", "TCPIP::scope-kvx::inst0::INSTR",
              "tcpip7::Spectrum-Analyzer::INST0::instr"}},
            {VI_ERROR_RSRC_NFOUND, {"TCPIP0::printer::INSTR", "TCPIP0::scope::inst1::INSTR"}},
            {VI_ERROR_INV_RSRC_NAME,
             {"", "scope", "TCPIP0::scope", "TCPIP0::::INSTR", "TCPIPx::a::INSTR",
              "GPIB0::7::INSTR", "TCPIP0::a::INSTR ", "TCPIP0::a::b::c::INSTR", "TCPIP0:a:INSTR",
              "TCPIP0::a b::INSTR", "TCPIP0::scope::5025::SOCKET", "TCPIP65536::a::INSTR",
              QByteArray(300, 'a'), "TCPIP::" + QByteArray(235, 'a') + "::INSTR"}}};
        for (const auto &[status, names] : texts) {
            for (const QByteArray &name : names) {
                ViSession session = 4711;
                QVERIFY2(viOpen(manager, name, VI_NO_LOCK, 0, &session) == status, name);
                QCOMPARE(session != 0, status == VI_SUCCESS);
            }
        }
        ViUInt16 type = 0;
        ViUInt16 board = 0;
        std::array<std::array<char, VI_FIND_BUFLEN>, 3> parts{};
        QCOMPARE(viParseRsrcEx(manager, "tcpip7::Printer::instr", &type, &board, parts[0].data(),
                               parts[1].data(), parts[2].data()),
                 VI_SUCCESS);
        QVERIFY(type == VI_INTF_TCPIP && board == 7);
        QCOMPARE(QByteArray(parts[0].data()), QByteArray("INSTR"));
        QCOMPARE(QByteArray(parts[1].data()), QByteArray("TCPIP7::printer::inst0::INSTR"));
        QCOMPARE(viParseRsrc(manager, "printer", &type, &board), VI_ERROR_INV_RSRC_NAME);
    }

    /// How many an expression finds, -1 where it is none.
    void findsResources()
    {
        const std::map<QByteArray, int> counts = {{"?*", 6},
                                                  {"?*::INSTR", 6},
                                                  {"tcpip?*instr", 6},
                                                  {"?*-[^k]??::?*", 2},
                                                  {"?*-[kq]?[xn]::?*", 2},
                                                  {"?*::(oscillo|spectrum\\-)?*", 5},
                                                  {"?*(-q(an|el)|-kvx)+::?*", 3},
                                                  {"?*[l-n]-kvx::?*|?*video?*", 1},
                                                  {"((((?*)*)+)*)+", 6},
                                                  {"?*[a\\-x", -1},
                                                  {"(?*", -1},
                                                  {"TCPIP0[z-a]::?*", -1},
                                                  {"?*)", -1},
                                                  {"*", -1},
                                                  {"?**", -1},
                                                  {"?*\\", -1},
                                                  {"?*{VI_ATTR_INTF_NUM == 0}", -1},
                                                  {QByteArray(300, '?'), -1},
                                                  {"", 0},
                                                  {"?*::INST", 0},
                                                  {"[^\x01-\xff]?*", 0}};
        for (const auto &[expression, expected] : counts) {
            ViFindList list = 0;
            ViUInt32 count = 0;
            std::array<char, VI_FIND_BUFLEN> name{};
            const ViStatus status = viFindRsrc(manager, expression, &list, &count, name.data());
            QVERIFY2(status == (expected > 0   ? VI_SUCCESS
                                : expected < 0 ? VI_ERROR_INV_EXPR
                                               : VI_ERROR_RSRC_NFOUND),
                     expression);
            QVERIFY2(static_cast<int>(count) == qMax(expected, 0), expression);
            for (int i = 1; i < expected; ++i) {
                const QByteArray before = name.data();
                QCOMPARE(viFindNext(list, name.data()), VI_SUCCESS);
                QVERIFY(before != name.data());
            }
            if (expected > 0) {
                QCOMPARE(viFindNext(list, name.data()), VI_ERROR_RSRC_NFOUND);
                QCOMPARE(viClear(list), VI_ERROR_NSUP_OPER);
                QCOMPARE(viClose(list), VI_SUCCESS);
            }
            QCOMPARE(viFindNext(list, name.data()), VI_ERROR_INV_OBJECT);
        }
    }

    void deadHandles()
    {
        ViSession closedManager = 0;
        ViSession closed = 0;
        viOpenDefaultRM(&closedManager);
        viOpen(closedManager, "TCPIP::scope::INSTR", VI_NO_LOCK, 0, &closed);
        viClose(closedManager); // and its session with it
        QCOMPARE(viClose(0), VI_WARN_NULL_OBJECT);
        for (const ViSession handle : {closed + 1, closed, closedManager}) {
            ViSession session = 0;
            ViByte byte = 'x';
            ViUInt16 number = 0;
            std::array<char, 256> text{};
            for (const ViStatus answer :
                 {viFindRsrc(handle, "?*", &session, nullptr, text.data()),
                  viFindNext(handle, text.data()),
                  viParseRsrc(handle, "", &number, &number),
                  viDisableEvent(handle, 0, 0),
                  viDiscardEvents(handle, 0, 0),
                  viOpen(handle, "TCPIP::scope::INSTR", VI_NO_LOCK, 0, &session),
                  viWrite(handle, &byte, 1, nullptr),
                  viRead(handle, &byte, 1, nullptr),
                  viReadToFile(handle, "/nonexistent/file", 1, nullptr),
                  viClear(handle),
                  viSetAttribute(handle, VI_ATTR_TMO_VALUE, 1),
                  viGetAttribute(handle, VI_ATTR_TMO_VALUE, nullptr),
                  viSetBuf(handle, VI_READ_BUF, 100),
                  viReadSTB(handle, &number),
                  viGpibControlREN(handle, VI_GPIB_REN_ADDRESS_GTL),
                  viPrintf(handle, "x"),
                  viScanf(handle, "x"),
                  viQueryf(handle, "x", "x"),
                  viClose(handle),
                  viStatusDesc(handle, VI_SUCCESS, text.data())}) {
                QCOMPARE(answer, VI_ERROR_INV_OBJECT);
            }
        }
    }

    void readsInPieces()
    {
        QCOMPARE(read(first, 10), nothing);
        // Six bytes of answer: 1;1;1 and the newline.
        QCOMPARE(ask(first, "*OPC?;*OPC?;*OPC?\r\n", 2), Reply("1;", VI_SUCCESS_MAX_CNT));
        QCOMPARE(read(first, 0), Reply("", VI_SUCCESS_MAX_CNT));
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(QByteArray(100, 'z')) == 100 && file.flush());
        ViUInt32 count = 99;
        QCOMPARE(viReadToFile(first, "/nonexistent/x", 9, &count), VI_ERROR_FILE_ACCESS);
        QCOMPARE(viReadToFile(first, file.fileName().toLocal8Bit(), 2, &count), VI_SUCCESS_MAX_CNT);
        QCOMPARE(count, 2U);
        QCOMPARE(contents(file.fileName()), QByteArray("1;")); // the file was truncated
        QCOMPARE(read(first, 2), Reply("1\n", VI_SUCCESS));    // the end, exactly at the count
        QCOMPARE(read(first, 1), nothing);
    }

    void attributesAndModes()
    {
        constexpr ViUInt64 untouched = 0xEEEEEEEEEEEEEEEE;
        const auto get = [=](ViSession session, ViAttr attribute) {
            ViUInt64 value = untouched;
            return viGetAttribute(session, attribute, &value) == VI_SUCCESS ? value : 0;
        };
        for (const auto &[attribute, bits, number] :
             {std::tuple<ViAttr, unsigned, ViUInt64>{VI_ATTR_TMO_VALUE, 32, 2000},
              {VI_ATTR_TERMCHAR, 8, '\n'},
              {VI_ATTR_TERMCHAR_EN, 16, 0},
              {VI_ATTR_SEND_END_EN, 16, 1},
              {VI_ATTR_INTF_TYPE, 16, 6},
              {VI_ATTR_INTF_NUM, 16, 0},
              {VI_ATTR_IO_PROT, 16, 1},
              {VI_ATTR_RM_SESSION, 32, manager},
              {VI_ATTR_RSRC_SPEC_VERSION, 32, 0x300000}}) {
            QCOMPARE(get(second, attribute), (untouched >> bits << bits | number));
        }
        // The upper half is what some clients leave in the register.
        QCOMPARE(viSetAttribute(first, VI_ATTR_TMO_VALUE, 0xBAD00001388), VI_SUCCESS);
        QCOMPARE(static_cast<ViUInt32>(get(first, VI_ATTR_TMO_VALUE)), 5000U);
        QCOMPARE(static_cast<ViUInt32>(get(second, VI_ATTR_TMO_VALUE)), 2000U);
        QCOMPARE(viSetAttribute(first, VI_ATTR_TERMCHAR_EN, 2), VI_ERROR_NSUP_ATTR_STATE);
        QCOMPARE(viSetAttribute(first, VI_ATTR_TERMCHAR, 256), VI_ERROR_NSUP_ATTR_STATE);
        QCOMPARE(viSetAttribute(first, VI_ATTR_RSRC_NAME, 0), VI_ERROR_ATTR_READONLY);
        QCOMPARE(viSetAttribute(first, 1, 1), VI_ERROR_NSUP_ATTR);
        QCOMPARE(viSetAttribute(manager, VI_ATTR_TMO_VALUE, 1), VI_ERROR_NSUP_ATTR);
        std::array<char, VI_FIND_BUFLEN> text{};
        QCOMPARE(viGetAttribute(first, VI_ATTR_RSRC_NAME, text.data()), VI_SUCCESS);
        QCOMPARE(QByteArray(text.data()), QByteArray("TCPIP0::scope::inst0::INSTR"));

        const Instrument *oscilloscope = bench().find("scope");
        const QVector<bool> remoteAfter = {false, true, false, true, true, true, false};
        for (ViUInt16 mode = 0; mode < 7; ++mode) {
            write(first, "*WAI");
            QVERIFY(oscilloscope->isRemote());
            QCOMPARE(viGpibControlREN(second, mode), VI_SUCCESS);
            QCOMPARE(oscilloscope->isRemote(), remoteAfter[mode]);
        }
        QCOMPARE(viGpibControlREN(first, 7), VI_ERROR_INV_MODE);
    }

    void terminations()
    {
        const QByteArray block = "FORM REAL,32;:CHAN1:DATA?";
        const Reply whole = ask(first, block); // with bytes 0x0A in it, which mean nothing
        const int newline = whole.first.indexOf('\n') + 1;
        QVERIFY(whole.second == VI_SUCCESS && newline < whole.first.size());
        viSetAttribute(first, VI_ATTR_TERMCHAR_EN, 1);
        QCOMPARE(ask(first, block), Reply(whole.first.left(newline), VI_SUCCESS_TERM_CHAR));
        QCOMPARE(read(first, 1), Reply(whole.first.mid(newline, 1), VI_SUCCESS_MAX_CNT));
        viSetAttribute(first, VI_ATTR_TERMCHAR, ';');
        QCOMPARE(ask(first, "*CLS;*OPC?;*OPC?", 2), Reply("1;", VI_SUCCESS_TERM_CHAR));
        QCOMPARE(read(first, 9), Reply("1\n", VI_SUCCESS)); // the message's end

        viSetAttribute(first, VI_ATTR_SEND_END_EN, 0);
        QCOMPARE(ask(first, "*OP"), nothing);
        QCOMPARE(ask(first, "C?\r\nSYST:"), Reply("1\n", VI_SUCCESS));
        viClear(first); // the rest of the message goes
        viSetAttribute(first, VI_ATTR_SEND_END_EN, 1);
        QCOMPARE(ask(first, QByteArray(70000, ' ') + "\nSYST:ERR?").first,
                 QByteArray("0,\"No error\"\n"));
        write(first, QByteArray(70000, 'x'));
        QVERIFY(ask(first, "SYST:ERR?").first.startsWith("-363,"));
    }

    void answersBelongToTheirSession()
    {
        ViUInt16 statusByte = 0;
        write(first, "CHAN1:SCAL 0.5;SCAL?");
        write(second, "FOO;CHAN1:SCAL?");
        viReadSTB(first, &statusByte);
        QCOMPARE(statusByte, ViUInt16{0x14});                // a message, and an error in the queue
        QCOMPARE(ask(first, "SYST:ERR?;:SYST:ERR?\n").first, // interrupts what nobody read
                 QByteArray("-113,\"Undefined header\";-410,\"Query INTERRUPTED\"\n"));
        QCOMPARE(read(second, 99).first, QByteArray("0.5\n"));
        write(second, "*OPC?");
        QCOMPARE(viClear(second), VI_SUCCESS);
        QCOMPARE(read(second, 99), nothing);
    }

    /// Between setting and query of a message nobody else gets a turn.
    void twoThreadsAtOnce()
    {
        const auto work = [this](const QByteArray &offset) {
            bool right = true;
            for (int i = 0; i < 300; ++i) {
                ViSession session = 0;
                viOpen(manager, "TCPIP::scope::INSTR", VI_NO_LOCK, 0, &session);
                viPrintf(session, "CHAN4:OFFS %s;:CHAN1:DATA?;:CHAN4:OFFS?\n", offset.data());
                right = right && read(session, 300000).first.endsWith(';' + offset + '\n') &&
                        viClose(session) == VI_SUCCESS;
            }
            return right;
        };
        auto other = std::async(std::launch::async, work, "0.25");
        QVERIFY(work("0.125"));
        QVERIFY(other.get());
    }

    void formattedInputAndOutput()
    {
        double scale = 0.0;
        std::array<char, 64> text{};
        QCOMPARE(viPrintf(first, "CHAN%hu:SCAL %.*f;POS %s%%\n", 2, 3, 0.25, "-2"), VI_SUCCESS);
        QCOMPARE(viQueryf(first, ":CHAN%d:SCAL?\n", "%lf", 2, &scale), VI_SUCCESS);
        QCOMPARE(scale, 0.25);
        QCOMPARE(viPrintf(first, "%s\n", "*IDN?;*OPC?"), VI_SUCCESS);
        QCOMPARE(viScanf(first, "Varnholt,%7s", text.data()), VI_SUCCESS);
        QCOMPARE(QByteArray(text.data()), QByteArray("LPA4004"));
        QCOMPARE(viScanf(first, "%t", text.data()), VI_SUCCESS);
        QVERIFY(QByteArray(text.data()).endsWith(";1\n"));
        QCOMPARE(viScanf(first, "%t", text.data()), VI_ERROR_TMO);
        QCOMPARE(viPrintf(first, "%n", 1), VI_ERROR_INV_FMT);
    }

    /// What is answered, and the first error that is left.
    void messages()
    {
        const char *const lpa = "scope";
        const char *const kvx = "scope-kvx";
        const char *const spa = "analyzer";
        const char *const qan = "analyzer-qan";
        const char *const qel = "analyzer-qel";
        const char *const video = "video";
        using Exchange = std::tuple<const char *, const char *, const char *>;
        for (const auto &[host, message, expected] : std::initializer_list<Exchange>{
                 {lpa, "chan:scal .05;POSITION -3;:channel1:scale?;pos?", "0.05;-3 / 0"},
                 {lpa, "CHAN4:SCAL 0.5;:CHAN2:SCAL?;:CHAN4:SCAL?", "0.2;0.5 / 0"},
                 {lpa, "CHAN1:RANG 0.5;CHAN1:SCAL?;:TIM:RANG?", "0.05;1.2 / 0"},
                 {lpa, "CHAN2:STAT ON;CHAN3:STAT OFF;*RST;CHAN1:STAT?;:CHAN2:STAT?;:CHAN3:STAT?",
                  "1;0;1 / 0"},
                 {lpa, "FOO;*OPC?", "1 / -113"},
                 {lpa, "CHAN5:SCAL 1", " / -114"},
                 {lpa, "CHAN1:SCAL 99;SCAL?", "0.2 / -222"},
                 {lpa, "CHAN1:SCAL nan;SCAL?", "0.2 / -104"},
                 {lpa, "CHAN1:SCAL", " / -109"},
                 {lpa, "CHAN1:SCAL 1,2", " / -108"},
                 {lpa, "FORM REAL,64;FORM?", "ASC,0 / -224"},
                 {lpa, "FORM REAL,32;FORM?;*RST;FORM?", "REAL,32;ASC,0 / 0"},
                 {lpa, "CHAN2:DATA?;*OPC?", "1 / -221"},
                 {lpa, "*CLS;'a;b';SYST:ERR?;SYST:ERR?",
                  R"(-113,"Undefined header";0,"No error" / 0)"},
                 {lpa, "TRIG1:LEV1 0.1", " / -113"},
                 {kvx, "TRIG:A:LEV1 0.1", " / -113"},
                 {kvx, "TIM:RANG 2;TIM:SCAL?;:ACQ:POIN 1999.6;POIN?", "0.2;2000 / 0"},
                 {kvx, "INIT:CONT?;CONT OFF;CONT?;*TRG;:INIT:CONT?;:RUNC;INIT:CONT?",
                  "1;0;0;1 / 0"},
                 {spa, "FREQ:MODE SW", " / -113"},
                 {spa, "SWE:OPT SPE;OPT;OPT?", "AUTO / 0"},
                 {spa, "BWID 50e6;BWID:RES?;VID?", "50000000;3000000 / 0"},
                 {qan, "FREQ:MODE SW;MODE?;:OUTP:IF VID;:OUTP1:IF:SOUR?", "SW;VID / 0"},
                 {qel, "OUTP:IF VID", " / -113"},
                 {video, "READ:AVDA:TTV:STAT?;VAL?", "0 / -230"},
                 {video, "INIT:AVDA;READ:AVDA:TTV:STAT?;COUN?;*RST;READ:AVDA:TTV:STAT?",
                  "1;0;0 / 0"},
                 {video, "CONF:AVDA:TTV:APL:THR 101", " / -222"}}) {
            const OwnBench own;
            QByteArray outcome = own.ask(host, message) + " / ";
            outcome += own.ask(host, "SYST:ERR?").split(',')[0];
            QVERIFY2(outcome == expected, message + QByteArray(" gave ") + outcome);
        }
    }

    void formatsCarryTheSameRecord()
    {
        const OwnBench own;
        const auto ask = [&](const char *message) { return own.ask("scope-kvx", message); };
        const auto texts = ask("ACQ:POIN 1000;:CHAN1:DATA?").split(',');
        const QByteArray block = ask("FORM REAL,32;:CHAN1:DATA?");
        QVERIFY(block.startsWith("#44000"));
        const auto values = floatsOf(block.mid(6));
        const auto pairs = floatsOf(ask("EXP:WAV:INCX ON;:CHAN1:DATA?").mid(6));
        QVERIFY(texts.size() == 1000 && values.size() == 1000 && pairs.size() == 2000);
        for (int k = 0; k < 1000; ++k) {
            QVERIFY(texts[k].toFloat() == values[k] && pairs[2 * k + 1] == values[k]);
        }
        QVERIFY(pairs[0] == -0.5F && pairs[1998] == 0.5F);
    }

    void nothingTriggersBeyondTheStep()
    {
        for (const char *settings :
             {"TRIG:A:LEV1 0.005", "TRIG:A:LEV1 0.15", "TRIG:A:EDGE:SLOP NEG", "TRIG:A:SOUR EXT"}) {
            OwnBench own;
            own.ask("video", "INIT:AVDA");
            own.ask("scope", QByteArray(settings) + ";*TRG");
            QVERIFY2(std::isnan(own.bench.link().lastEvent().instants().rf), settings);
            QCOMPARE(own.ask("video", "READ:AVDA:TTV:COUN?"), QByteArray("0"));
            own.ask("scope", "*RST;SING;*TRG"); // the sequence waited
            QCOMPARE(own.bench.link().lastEvent().instants().rf,
                     OwnBench().bench.link().lastEvent().instants().rf);
        }
    }

    void theSequenceIsPlausible()
    {
        LinkModel link;
        constexpr int events = 800;
        double rf = 0.0;
        double hdmi = 0.0;
        double sink = 0.0;
        int overloads = 0;
        for (int i = 0; i < events; ++i) {
            link.trigger(powerUpTriggerLevel);
            const Instants &instants = link.lastEvent().instants();
            rf += 1000.0 * (instants.rf - instants.source) / events;
            hdmi += instants.hdmiDelayMs / events;
            sink += 1000.0 * (instants.sink - instants.source) / events;
            overloads += link.lastEvent().isOverloaded() ? 1 : 0;
        }
        QVERIFY(qAbs(rf - 45.0) < 1.0 && qAbs(hdmi - 95.0) < 1.0 && qAbs(sink - 120.0) < 1.0);
        QVERIFY(overloads > events / 25 && overloads < events / 10);
    }
};

QTEST_GUILESS_MAIN(SimulatorTest)
#include "SimulatorTest.moc"
