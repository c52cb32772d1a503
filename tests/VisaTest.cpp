#include "simulator/InProcessBackend.h"
#include "TestFiles.h"
#include "visa/VisaFunctions.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <future>

namespace {

const QByteArray scope = "TCPIP::scope::INSTR";

} // namespace

/// The VISA functions on the bench, in this process.
class VisaTest : public QObject
{
    Q_OBJECT

    using Reply = std::pair<QByteArray, ViStatus>;
    const Reply timedOut{"", VI_ERROR_TMO};

    ViSession manager = 0;
    ViSession first = 0; // two sessions with one oscilloscope
    ViSession second = 0;
    std::array<char, VI_FIND_BUFLEN> text{};

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
    static ViStatus lock(ViSession session, ViUInt32 timeout)
    {
        return viLock(session, VI_EXCLUSIVE_LOCK, timeout, nullptr, nullptr);
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

    void findsInstruments()
    {
        ViFindList list = 0;
        ViUInt32 count = 0;
        QCOMPARE(viFindRsrc(manager, "?*::analyzer?*", &list, &count, text.data()), VI_SUCCESS);
        QCOMPARE(count, 3U);
        QCOMPARE(viFindNext(list, text.data()), VI_SUCCESS);
        QCOMPARE(text.data(), "TCPIP0::analyzer-qan::inst0::INSTR");
        QCOMPARE(viFindNext(list, text.data()), VI_SUCCESS);
        QCOMPARE(viFindNext(list, text.data()), VI_ERROR_RSRC_NFOUND);
        QCOMPARE(viClear(list), VI_ERROR_NSUP_OPER);
        QCOMPARE(viFindRsrc(manager, "?*)", &list, &count, text.data()), VI_ERROR_INV_EXPR);
    }

    void opens()
    {
        ViSession session = 0;
        const auto open = [&](const char *resource) {
            return viOpen(manager, resource, VI_NO_LOCK, 0, &session);
        };
        QCOMPARE(open("tcpip7::Scope::INST0"), VI_SUCCESS);
        QCOMPARE(open("TCPIP0::printer"), VI_ERROR_RSRC_NFOUND);
        QCOMPARE(open("TCPIP0::scope::inst1"), VI_ERROR_RSRC_NFOUND);
        QCOMPARE(open("GPIB0::7::INSTR"), VI_ERROR_INV_RSRC_NAME);
    }

    void closedHandles()
    {
        ViSession closedManager = 0;
        ViSession closed = 0;
        viOpenDefaultRM(&closedManager);
        viOpen(closedManager, scope, VI_NO_LOCK, 0, &closed);
        viClose(closedManager); // closes its session, too
        QCOMPARE(viClose(0), VI_WARN_NULL_OBJECT);
        ViSession session = 0;
        ViByte byte = 'x';
        for (const ViSession handle : {closed, closedManager}) {
            QCOMPARE(viOpen(handle, scope, VI_NO_LOCK, 0, &session), VI_ERROR_INV_OBJECT);
            QCOMPARE(viRead(handle, &byte, 1, nullptr), VI_ERROR_INV_OBJECT);
            ViUInt32 count = 1;
            QCOMPARE(viWrite(handle, &byte, 1, &count), VI_ERROR_INV_OBJECT);
            QCOMPARE(count, 0U);
            QCOMPARE(viClose(handle), VI_ERROR_INV_OBJECT);
            QCOMPARE(viStatusDesc(handle, VI_SUCCESS, text.data()), VI_ERROR_INV_OBJECT);
        }
    }

    void readsInPieces()
    {
        QCOMPARE(read(first, 10), timedOut);
        QCOMPARE(ask(first, "SYST:ERR?").first, QByteArray("-420,\"Query UNTERMINATED\"\n"));
        QCOMPARE(ask(first, "*OPC?;*OPC?\r\n", 2), Reply("1;", VI_SUCCESS_MAX_CNT));
        QCOMPARE(read(first, 0), Reply("", VI_SUCCESS_MAX_CNT));
        QCOMPARE(viRead(first, nullptr, 1, nullptr), VI_ERROR_USER_BUF);
        QCOMPARE(read(first, 2), Reply("1\n", VI_SUCCESS)); // all of the rest
    }

    void readsToAFile()
    {
        const QTemporaryDir folder;
        const QString fileName = folder.filePath("file");
        const QByteArray name = fileName.toLocal8Bit();
        ViUInt32 count = 0;
        QVERIFY(::write(fileName, "from an earlier transfer"));
        write(first, "*OPC?");
        QCOMPARE(viReadToFile(first, "/nonexistent/x", 9, &count), VI_ERROR_FILE_ACCESS);
        QCOMPARE(viReadToFile(first, name, 1, &count), VI_SUCCESS_MAX_CNT);
        QCOMPARE(contents(fileName), QByteArray("1"));
        QCOMPARE(viReadToFile(first, name, 99, &count), VI_SUCCESS);
        QCOMPARE(count, 1U);
    }

    void attributesHaveTheirWidths()
    {
        const auto valueOf = [this](ViAttr attribute) {
            ViUInt64 value = 0xEEEEEEEEEEEEEEEE;
            viGetAttribute(first, attribute, &value);
            return value;
        };
        QCOMPARE(viSetAttribute(first, VI_ATTR_TERMCHAR, ';'), VI_SUCCESS);
        QCOMPARE(valueOf(VI_ATTR_TERMCHAR), ViUInt64{0xEEEEEEEEEEEEEE3B});
        QCOMPARE(viSetAttribute(first, VI_ATTR_TERMCHAR_EN, 2), VI_ERROR_NSUP_ATTR_STATE);
        QCOMPARE(valueOf(VI_ATTR_TERMCHAR_EN), ViUInt64{0xEEEEEEEEEEEE0000});
        // Clients that pass 32 bits leave the other half of the register undefined.
        QCOMPARE(viSetAttribute(first, VI_ATTR_TMO_VALUE, 0xBAD00001388), VI_SUCCESS);
        QCOMPARE(valueOf(VI_ATTR_TMO_VALUE), ViUInt64{0xEEEEEEEE00001388});
        QCOMPARE(viSetAttribute(first, VI_ATTR_INTF_TYPE, 6), VI_ERROR_ATTR_READONLY);
    }

    void checksArguments()
    {
        constexpr ViAttr unknown = 0x3FFF0000;
        QCOMPARE(viSetAttribute(first, unknown, 0), VI_ERROR_NSUP_ATTR);
        QCOMPARE(viGetAttribute(first, unknown, text.data()), VI_ERROR_NSUP_ATTR);
        QCOMPARE(viGetAttribute(first, VI_ATTR_TMO_VALUE, nullptr), VI_ERROR_USER_BUF);
        QCOMPARE(viGetAttribute(first, VI_ATTR_TCPIP_ADDR, text.data()), VI_SUCCESS);
        QCOMPARE(text.data(), "127.0.0.1");
        QCOMPARE(viStatusDesc(first, VI_ERROR_TMO, text.data()), VI_SUCCESS);
        QCOMPARE(viStatusDesc(first, 0x1234, text.data()), VI_WARN_UNKNOWN_STATUS);
        QVERIFY(QByteArray(text.data()).contains("0x00001234"));
        QCOMPARE(viGpibControlREN(first, VI_GPIB_REN_ADDRESS_GTL), VI_SUCCESS);
        QCOMPARE(viGpibControlREN(first, 0), VI_ERROR_NSUP_OPER);
        QCOMPARE(viGpibControlREN(first, VI_GPIB_REN_ADDRESS_GTL + 1), VI_ERROR_INV_MODE);
        QCOMPARE(viSetBuf(first, VI_READ_BUF | VI_IO_OUT_BUF, 100), VI_SUCCESS);
        QCOMPARE(viSetBuf(first, 4, 100), VI_ERROR_INV_MASK);
        QCOMPARE(viFlush(first, 0), VI_ERROR_INV_MASK);
    }

    void endsReads()
    {
        const QByteArray block = "FORM REAL,32;:CHAN1:DATA?";
        const Reply whole = ask(first, block); // a byte 0x0A in it does not end the read
        const int newline = whole.first.indexOf('\n') + 1;
        QCOMPARE(whole.second, VI_SUCCESS);
        QVERIFY(newline < whole.first.size());
        viSetAttribute(first, VI_ATTR_TERMCHAR_EN, 1);
        QCOMPARE(ask(first, block), Reply(whole.first.left(newline), VI_SUCCESS_TERM_CHAR));
        QCOMPARE(read(first, 1), Reply(whole.first.mid(newline, 1), VI_SUCCESS_MAX_CNT));
        viSetAttribute(first, VI_ATTR_TERMCHAR, ';');
        QCOMPARE(ask(first, "*CLS;*OPC?;*OPC?", 2), Reply("1;", VI_SUCCESS_TERM_CHAR));
        QCOMPARE(read(first, 9), Reply("1\n", VI_SUCCESS)); // the end of the answer
    }

    void endsWrites()
    {
        viSetAttribute(first, VI_ATTR_SEND_END_EN, 0);
        QCOMPARE(ask(first, "*OP"), timedOut);
        QCOMPARE(ask(first, "C?\r\nSYST:"), Reply("1\n", VI_SUCCESS));
        viClear(first); // drops "SYST:"
        viSetAttribute(first, VI_ATTR_SEND_END_EN, 1);
        QVERIFY(ask(first, "SYST:ERR?").first.startsWith("-420,")); // nothing to read after "*OP"
    }

    void longestMessage()
    {
        const QByteArray query = "*OPC?";
        const QByteArray blanks(65536 - query.size(), ' ');
        QCOMPARE(ask(first, blanks + query).first, QByteArray("1\n"));
        write(first, blanks + query + ' ');
        QVERIFY(ask(first, "SYST:ERR?").first.startsWith("-363,"));
    }

    void sessionsShareSettingsNotAnswers()
    {
        ViUInt16 statusByte = 0;
        write(first, "CHAN1:SCAL 0.5;SCAL?");
        write(second, "FOO;CHAN1:SCAL?");
        viReadSTB(first, &statusByte);
        QCOMPARE(statusByte, ViUInt16{0x14}); // an error and a message are available
        // The new query interrupts the answer that nobody has read.
        QCOMPARE(ask(first, "SYST:ERR?;:SYST:ERR?\n").first,
                 QByteArray("-113,\"Undefined header\";-410,\"Query INTERRUPTED\"\n"));
        QCOMPARE(read(second, 99).first, QByteArray("0.5\n"));
        const auto events = bench().radioLink().eventCount();
        QCOMPARE(viAssertTrigger(second, 0), VI_SUCCESS);
        QCOMPARE(bench().radioLink().eventCount(), events + 1);
    }

    void locks()
    {
        QCOMPARE(lock(first, 0), VI_SUCCESS);
        QCOMPARE(lock(first, 0), VI_SUCCESS_NESTED_EXCLUSIVE);
        QCOMPARE(lock(second, 1), VI_ERROR_TMO);
        QCOMPARE(viUnlock(first), VI_SUCCESS_NESTED_EXCLUSIVE);
        QCOMPARE(viClear(second), VI_ERROR_RSRC_LOCKED);
        QCOMPARE(viUnlock(first), VI_SUCCESS);
        QCOMPARE(viUnlock(first), VI_ERROR_SESN_NLOCKED);
        QCOMPARE(viOpen(manager, scope, VI_EXCLUSIVE_LOCK, 0, &second), VI_SUCCESS);
        QCOMPARE(viClear(first), VI_ERROR_RSRC_LOCKED);
        QCOMPARE(viOpen(manager, scope, VI_EXCLUSIVE_LOCK, 1, &first), VI_ERROR_RSRC_LOCKED);
    }

    void closesWhileWaitingForALock()
    {
        QCOMPARE(lock(first, 0), VI_SUCCESS);
        auto waiting = std::async(std::launch::async, lock, second, VI_TMO_INFINITE);
        QVERIFY(waiting.wait_for(std::chrono::milliseconds(300)) == std::future_status::timeout);
        QCOMPARE(ask(first, "*OPC?").first, QByteArray("1\n"));
        QCOMPARE(viClose(second), VI_SUCCESS);
        QCOMPARE(viUnlock(first), VI_SUCCESS);
        QCOMPARE(waiting.get(), VI_SUCCESS);
        QCOMPARE(viClear(first), VI_SUCCESS); // closing has released the second lock
    }
};

QTEST_GUILESS_MAIN(VisaTest)
#include "VisaTest.moc"
