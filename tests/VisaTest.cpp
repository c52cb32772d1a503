#include "simulator/server/InProcessBackend.h"
#include "TestFiles.h"
#include "visa/VisaFunctions.h"

#include <QTemporaryFile>
#include <QtTest>

#include <array>
#include <future>

namespace {

const QByteArray scope = "TCPIP::scope::INSTR";

} // namespace

class VisaTest : public QObject
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
            QCOMPARE(viOpen(manager, scope, VI_NO_LOCK, 0, session), VI_SUCCESS);
        }
        write(first, "*RST;*CLS");
    }

    void cleanup() { QCOMPARE(viClose(manager), VI_SUCCESS); }

    void opensWhatItFinds()
    {
        ViFindList list = 0;
        ViUInt32 count = 0;
        std::array<char, VI_FIND_BUFLEN> name{};
        QCOMPARE(viFindRsrc(manager, "?*::analyzer?*", &list, &count, name.data()), VI_SUCCESS);
        QCOMPARE(count, 3U);
        for (const char *next :
             {"TCPIP0::analyzer-qan::inst0::INSTR", "TCPIP0::analyzer-qel::inst0::INSTR"}) {
            QCOMPARE(viFindNext(list, name.data()), VI_SUCCESS);
            QCOMPARE(QByteArray(name.data()), QByteArray(next));
        }
        QCOMPARE(viFindNext(list, name.data()), VI_ERROR_RSRC_NFOUND);
        QCOMPARE(viClear(list), VI_ERROR_NSUP_OPER);
        QCOMPARE(viFindRsrc(manager, "?*)", &list, &count, name.data()), VI_ERROR_INV_EXPR);
        using Row = std::pair<const char *, ViStatus>;
        for (const auto &[resource, status] : {Row{"tcpip7::Scope::INST0", VI_SUCCESS},
                                               {"TCPIP0::printer", VI_ERROR_RSRC_NFOUND},
                                               {"TCPIP0::scope::inst1", VI_ERROR_RSRC_NFOUND},
                                               {"TCPIP::scope::1::SOCKET", VI_ERROR_RSRC_NFOUND},
                                               {"GPIB0::7::INSTR", VI_ERROR_RSRC_NFOUND},
                                               {"scope", VI_ERROR_INV_RSRC_NAME}}) {
            ViSession session = 4711;
            QVERIFY2(viOpen(manager, resource, VI_NO_LOCK, 0, &session) == status, resource);
            QCOMPARE(session != 0, status == VI_SUCCESS);
        }
    }

    void deadHandles()
    {
        ViSession closedManager = 0;
        ViSession closed = 0;
        viOpenDefaultRM(&closedManager);
        viOpen(closedManager, scope, VI_NO_LOCK, 0, &closed);
        viClose(closedManager); // and its session with it
        QCOMPARE(viClose(0), VI_WARN_NULL_OBJECT);
        ViSession session = 0;
        ViByte byte = 'x';
        std::array<char, 256> text{};
        for (const ViSession dead : {closed + 1, closed, closedManager}) {
            QCOMPARE(viFindRsrc(dead, "?*", &session, nullptr, text.data()), VI_ERROR_INV_OBJECT);
            QCOMPARE(viOpen(dead, scope, VI_NO_LOCK, 0, &session), VI_ERROR_INV_OBJECT);
            QCOMPARE(viRead(dead, &byte, 1, nullptr), VI_ERROR_INV_OBJECT);
            QCOMPARE(viClose(dead), VI_ERROR_INV_OBJECT);
            QCOMPARE(viStatusDesc(dead, VI_SUCCESS, text.data()), VI_ERROR_INV_OBJECT);
        }
    }

    void readsInPieces()
    {
        QCOMPARE(read(first, 10), nothing);
        QCOMPARE(ask(first, "SYST:ERR?").first, QByteArray("-420,\"Query UNTERMINATED\"\n"));
        // Six bytes of answer: 1;1;1 and the newline.
        QCOMPARE(ask(first, "*OPC?;*OPC?;*OPC?\r\n", 2), Reply("1;", VI_SUCCESS_MAX_CNT));
        QCOMPARE(read(first, 0), Reply("", VI_SUCCESS_MAX_CNT));
        QCOMPARE(viRead(first, nullptr, 1, nullptr), VI_ERROR_USER_BUF);
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(QByteArray(100, 'z')) == 100 && file.flush());
        const QByteArray name = file.fileName().toLocal8Bit();
        ViUInt32 count = 99;
        QCOMPARE(viReadToFile(first, "/nonexistent/x", 9, &count), VI_ERROR_FILE_ACCESS);
        QCOMPARE(viReadToFile(first, name, 2, &count), VI_SUCCESS_MAX_CNT);
        QCOMPARE(count, 2U);
        QCOMPARE(contents(file.fileName()), QByteArray("1;")); // the file was truncated
        QCOMPARE(read(first, 2), Reply("1\n", VI_SUCCESS));    // the end, exactly at the count

        QVERIFY(file.resize(0) && file.seek(0) && file.write("*OPC?;*IDN?") == 11 && file.flush());
        QCOMPARE(viWriteFromFile(first, name, 5, &count), VI_SUCCESS);
        QCOMPARE(count, 5U);
        QCOMPARE(viSetAttribute(first, VI_ATTR_FILE_APPEND_EN, 1), VI_SUCCESS);
        QCOMPARE(viReadToFile(first, name, 99, &count), VI_SUCCESS);
        QCOMPARE(contents(file.fileName()), QByteArray("*OPC?;*IDN?1\n"));
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
              {VI_ATTR_INTF_TYPE, 16, 6},
              {VI_ATTR_RM_SESSION, 32, manager},
              {VI_ATTR_RSRC_SPEC_VERSION, 32, 0x300000}}) {
            QCOMPARE(get(second, attribute), (untouched >> bits << bits | number));
        }
        QCOMPARE(viSetAttribute(first, VI_ATTR_USER_DATA, untouched - 1), VI_SUCCESS);
        QCOMPARE(get(first, VI_ATTR_USER_DATA), untouched - 1);
        // The upper half is what some clients leave in the register.
        QCOMPARE(viSetAttribute(first, VI_ATTR_TMO_VALUE, 0xBAD00001388), VI_SUCCESS);
        QCOMPARE(static_cast<ViUInt32>(get(first, VI_ATTR_TMO_VALUE)), 5000U);
        QCOMPARE(viSetAttribute(first, VI_ATTR_TERMCHAR_EN, 2), VI_ERROR_NSUP_ATTR_STATE);
        QCOMPARE(viSetAttribute(first, VI_ATTR_RSRC_NAME, 0), VI_ERROR_ATTR_READONLY);
        std::array<char, VI_FIND_BUFLEN> text{};
        QCOMPARE(viGetAttribute(first, VI_ATTR_TCPIP_ADDR, text.data()), VI_SUCCESS);
        QCOMPARE(QByteArray(text.data()), QByteArray("127.0.0.1"));

        QCOMPARE(viGpibControlREN(first, 6), VI_SUCCESS);
        QCOMPARE(viGpibControlREN(first, 7), VI_ERROR_INV_MODE);
        QCOMPARE(viFlush(first, 0), VI_ERROR_INV_MASK);
        QCOMPARE(viSetBuf(first, 4, 100), VI_ERROR_INV_MASK);
        QCOMPARE(viStatusDesc(first, VI_ERROR_TMO, text.data()), VI_SUCCESS);
        QCOMPARE(viStatusDesc(first, 0x1234, text.data()), VI_WARN_UNKNOWN_STATUS);
        QVERIFY(QByteArray(text.data()).contains("0x00001234"));
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
        QVERIFY(ask(first, "SYST:ERR?").first.startsWith("-420,")); // "*OP" was none
    }

    /// As long as messages may be, and longer.
    void inputLimit()
    {
        const QByteArray query = "*OPC?";
        QCOMPARE(ask(first, QByteArray(65536 - query.size(), ' ') + query).first,
                 QByteArray("1\n"));
        write(first, QByteArray(65537 - query.size(), ' ') + query);
        QVERIFY(ask(first, "SYST:ERR?").first.startsWith("-363,"));
    }

    void sessionsShareAnInstrumentNotAnswers()
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
        const auto events = bench().link().eventCount();
        QCOMPARE(viAssertTrigger(second, 0), VI_SUCCESS);
        QCOMPARE(bench().link().eventCount(), events + 1);
    }

    void locks()
    {
        const auto lock = [](ViSession session, ViUInt32 timeout) {
            return viLock(session, VI_EXCLUSIVE_LOCK, timeout, nullptr, nullptr);
        };
        QCOMPARE(lock(first, 0), VI_SUCCESS);
        QCOMPARE(lock(first, 0), VI_SUCCESS_NESTED_EXCLUSIVE);
        QCOMPARE(lock(second, 1), VI_ERROR_TMO);
        QCOMPARE(viClear(second), VI_ERROR_RSRC_LOCKED);
        ViUInt32 state = 0;
        viGetAttribute(first, VI_ATTR_RSRC_LOCK_STATE, &state);
        QCOMPARE(state, VI_EXCLUSIVE_LOCK);

        // One waits and is closed meanwhile; the others go on.
        auto waiting = std::async(std::launch::async, lock, second, VI_TMO_INFINITE);
        QVERIFY(waiting.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout);
        QCOMPARE(ask(first, "*OPC?").first, QByteArray("1\n"));
        QCOMPARE(viClose(second), VI_SUCCESS);
        QCOMPARE(viUnlock(first), VI_SUCCESS_NESTED_EXCLUSIVE);
        QCOMPARE(viUnlock(first), VI_SUCCESS);
        QCOMPARE(waiting.get(), VI_SUCCESS);
        QCOMPARE(viClear(first), VI_SUCCESS); // the closed one's lock is gone

        QCOMPARE(viOpen(manager, scope, VI_EXCLUSIVE_LOCK, 0, &second), VI_SUCCESS);
        QCOMPARE(viClear(first), VI_ERROR_RSRC_LOCKED);
    }
};

QTEST_GUILESS_MAIN(VisaTest)
#include "VisaTest.moc"
