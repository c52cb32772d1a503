#include "lan/Vxi11Link.h"
#include "ScriptedHost.h"

#include <QtTest>

#include <array>

using lan::RpcCall;
using lan::RpcOutcome;
using lan::Vxi11Link;
using lan::vxi11::DeviceClear;
using lan::vxi11::DeviceRead;
using lan::vxi11::DeviceReadStb;
using lan::vxi11::DeviceWrite;
using Pieces = QList<QByteArray>;
/// What a client does, and what it saw.
using Client = std::function<QStringList(Vxi11Link &link)>;

Q_DECLARE_METATYPE(ScriptedHost::Script)
Q_DECLARE_METATYPE(Client)

namespace {

visa::Deadline in(int milliseconds)
{
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

ViStatus open(Vxi11Link &link, quint16 port, int milliseconds = 5000)
{
    return link.open(QHostAddress(QHostAddress::LocalHost), port, "inst0", in(milliseconds));
}

QString text(ViStatus status)
{
    static const QMap<ViStatus, QString> names = {{VI_SUCCESS, "ok"},
                                                  {VI_ERROR_TMO, "TMO"},
                                                  {VI_ERROR_CONN_LOST, "CONN_LOST"},
                                                  {VI_ERROR_IO, "IO"},
                                                  {VI_ERROR_NSUP_OPER, "NSUP_OPER"},
                                                  {VI_ERROR_RSRC_LOCKED, "RSRC_LOCKED"},
                                                  {VI_ERROR_RSRC_NFOUND, "RSRC_NFOUND"},
                                                  {VI_ERROR_ALLOC, "ALLOC"},
                                                  {VI_ERROR_SESN_NLOCKED, "SESN_NLOCKED"}};
    return names.value(status, QString::number(status));
}

/// "END abc", "CHR abc\n", "CNT abc", "TMO abc".
QString read(Vxi11Link &link, std::size_t count, std::optional<ViByte> termination = {},
             int milliseconds = 5000)
{
    QByteArray bytes(static_cast<int>(count), '\0');
    const visa::ReadOutcome outcome =
        link.read(reinterpret_cast<ViByte *>(bytes.data()), count, termination, in(milliseconds));
    constexpr std::array ends = {"CNT", "CHR", "END"};
    return (outcome.status != 0 ? text(outcome.status)
                                : ends.at(static_cast<std::size_t>(outcome.end))) +
           " " + bytes.left(static_cast<int>(outcome.count));
}

QString write(Vxi11Link &link, const QByteArray &bytes, bool end = true, int milliseconds = 5000)
{
    std::size_t written = 0;
    const ViStatus status =
        link.write(reinterpret_cast<const ViByte *>(bytes.data()),
                   static_cast<std::size_t>(bytes.size()), end, in(milliseconds), &written);
    return QString("%1 %2").arg(text(status)).arg(written);
}

/// A script that sends one answer after the other to the calls of one procedure, the last one ever
/// after, and the usual ones to all others.
template <typename... Answers>
ScriptedHost::Script answers(lan::vxi11::Procedure procedure, Answers... answer)
{
    return [procedure, left = QList<ScriptedHost::Script>{answer...}](const RpcCall &call) mutable {
        const bool isOther = call.procedure.procedure != procedure;
        return isOther ? Pieces() : (left.size() > 1 ? left.takeFirst() : left.first())(call);
    };
}

/// Answers to a read, and to other calls.
ScriptedHost::Script bytes(const QByteArray &bytes, quint32 reason, quint32 error = 0)
{
    return [=](const RpcCall &call) { return ScriptedHost::data(call, bytes, reason, error); };
}

ScriptedHost::Script error(quint32 code, RpcOutcome outcome = RpcOutcome::Success)
{
    return [=](const RpcCall &call) {
        return ScriptedHost::reply(call, lan::xdrWords({code}), outcome);
    };
}

Pieces usual(const RpcCall & /*unused*/)
{
    return {};
}

/// Sends nothing that counts: the answer to another call.
Pieces mute(RpcCall call)
{
    --call.xid;
    return ScriptedHost::data(call, "old", 4);
}

Pieces hangUp(const RpcCall & /*unused*/)
{
    return {""};
}

} // namespace

class LanTest : public QObject
{
    Q_OBJECT

private slots:
    /// What the device does, what the client sees of it and what the device sees.
    void traps_data()
    {
        QTest::addColumn<ScriptedHost::Script>("script");
        QTest::addColumn<Client>("client");
        QTest::addColumn<QString>("seen");
        QTest::addColumn<QString>("transcript");
        const auto row = [](const char *name, const ScriptedHost::Script &script,
                            const Client &client, const char *seen, const char *transcript = "") {
            QTest::newRow(name) << script << client << QString(seen) << QString(transcript);
        };
        const auto reads = [](const QList<int> &counts, std::optional<ViByte> termination = {},
                              int milliseconds = 5000) -> Client {
            return [=](Vxi11Link &link) {
                QStringList seen;
                for (const int count : counts) {
                    seen << read(link, std::size_t(count), termination, milliseconds);
                }
                return seen;
            };
        };

        row("END at the count", answers(DeviceRead, bytes("12345", 5)), reads({5}), "END 12345",
            "read 0 5");
        row("count", answers(DeviceRead, bytes("12345", 1)), reads({5}), "CNT 12345");
        row("END outranks the character", answers(DeviceRead, bytes("1\n", 6)), reads({9}, '\n'),
            "END 1\n", "read 0 9 10");
        row("character", answers(DeviceRead, bytes("1\n", 2)), reads({9}, '\n'), "CHR 1\n");
        row("device without an eye for the character",
            answers(DeviceRead, bytes("1\n2\n", 4), hangUp), reads({9, 9}, '\n'), "CHR 1\n|END 2\n",
            "read 0 9 10");
        row("a character that was not asked for",
            answers(DeviceRead, bytes("1\n", 2), bytes("2", 4)), reads({9}), "END 1\n2");
        row("more than was asked for", answers(DeviceRead, bytes("0123456789", 4), hangUp),
            reads({4, 5, 1}), "CNT 0123|CNT 45678|END 9", "read 0 4");
        row(
            "a question drops what is left of the answer before",
            answers(DeviceRead, bytes("old", 4), bytes("new", 4)),
            [](Vxi11Link &link) {
                return QStringList{read(link, 1), write(link, "?"), read(link, 9)};
            },
            "CNT o|ok 1|END new");
        row(
            "another call leaves it", answers(DeviceRead, bytes("old", 4), hangUp),
            [](Vxi11Link &link) {
                const QString first = read(link, 1);
                link.trigger(in(5000));
                return QStringList{first, read(link, 9)};
            },
            "CNT o|END ld");
        row("empty, without a reason",
            answers(DeviceRead, bytes("", 0), bytes("", 0), bytes("1", 4)), reads({9}), "END 1",
            "read 0 9|read 0 9|read 0 9");
        row("empty for ever", answers(DeviceRead, bytes("", 0)), reads({9}, {}, 50), "TMO ");
        row("a byte at a time, for ever",
            answers(DeviceRead, bytes("", 0), bytes("1", 0), bytes("", 0)), reads({9}, {}, 50),
            "TMO 1");
        row("in pieces", answers(DeviceRead, bytes("12", 0), bytes("3", 1), bytes("", 4)),
            reads({9}), "END 123", "read 0 9|read 0 7|read 0 6");
        row("bytes before an error", answers(DeviceRead, bytes("12", 0), bytes("3", 0, 15)),
            reads({9}), "TMO 123");
        row("more than is asked for at once", answers(DeviceRead, bytes("1", 4)), reads({17 << 20}),
            "END 1", "read 0 16777216");
        row("time-out 0", answers(DeviceRead, bytes("", 0, 15)), reads({9}, {}, 0), "TMO ",
            "read 0 9");

        const auto writes = [](const char *bytes, bool end) -> Client {
            return [=](Vxi11Link &link) { return QStringList{write(link, bytes, end)}; };
        };
        row("split", usual, writes("0123456789", true), "ok 10",
            "write 0 0123|write 0 4567|write 0 END 89");
        row("without END", usual, writes("01234", false), "ok 5", "write 0 0123|write 0 4");
        const auto takes = [](quint32 count) -> ScriptedHost::Script {
            return [=](const RpcCall &call) {
                return ScriptedHost::reply(call, lan::xdrWords({0, count}));
            };
        };
        row("taken in part", answers(DeviceWrite, takes(1), usual), writes("0123", true), "ok 4",
            "write 0 END 0123|write 0 END 123");
        row("taken more than there is", answers(DeviceWrite, takes(99)), writes("01", true),
            "ok 2");
        row("not taken", answers(DeviceWrite, takes(0)), writes("0", true), "IO 0");

        row("old answers",
            answers(DeviceRead,
                    [](const RpcCall &call) {
                        return mute(call) + ScriptedHost::data(call, "new", 4);
                    }),
            reads({9}), "END new");
        row("an answer after its time-out",
            answers(
                DeviceRead,
                [](const RpcCall &call) -> Pieces {
                    QThread::msleep(800);
                    return ScriptedHost::data(call, "late", 4);
                },
                bytes("next", 4)),
            reads({9, 9}, {}, 20), "TMO |END next");
        row("byte by byte, in fragments",
            answers(DeviceRead,
                    [](const RpcCall &call) -> Pieces {
                        const QByteArray whole = ScriptedHost::data(call, "123", 4).first();
                        Pieces pieces;
                        for (int i = 4; i < whole.size(); ++i) { // behind its mark
                            const quint32 last = i + 1 == whole.size() ? 0x80000000U : 0U;
                            pieces << lan::xdrWords({last | 1}) << whole.mid(i, 1);
                        }
                        return pieces;
                    }),
            reads({9}), "END 123");
        row("trickles for ever",
            answers(DeviceRead,
                    [](const RpcCall & /*unused*/) -> Pieces {
                        Pieces pieces = {lan::xdrWords({0x80001000})};
                        for (int i = 0; i < 300; ++i) {
                            pieces << "x";
                        }
                        return pieces;
                    }),
            reads({9}, {}, 20), "TMO ");
        row("a fragment that nobody has room for",
            answers(
                DeviceRead,
                [](const RpcCall & /*unused*/) -> Pieces { return {lan::xdrWords({0xFFFFFFFF})}; }),
            reads({9, 9}), "IO |CONN_LOST ");
        row("closed", answers(DeviceRead, hangUp), reads({9, 9}), "CONN_LOST |CONN_LOST ");
        row("closed between two calls",
            answers(
                DeviceRead,
                [](const RpcCall &call) { return ScriptedHost::data(call, "1", 4) + Pieces{""}; }),
            reads({9, 9}), "END 1|CONN_LOST ");
        for (const QByteArray &nonsense :
             {QByteArray("nonsense"), lan::xdrWords({0}), lan::xdrWords({1, 2, 3}), QByteArray()}) {
            row("no answer " + nonsense.toHex(),
                answers(
                    DeviceRead,
                    [=](const RpcCall & /*unused*/) { return Pieces{lan::asRecord(nonsense)}; },
                    bytes("1", 4)),
                reads({9, 9}), "IO |END 1");
        }
        row("more data than the answer has",
            answers(DeviceRead,
                    [](const RpcCall &call) {
                        return ScriptedHost::reply(call, lan::xdrWords({0, 4, 0xFFFFFFFF, 0}));
                    }),
            reads({9}), "IO ");

        row(
            "remote and local", usual,
            [](Vxi11Link &link) {
                QStringList seen;
                for (ViUInt16 mode = 0; mode <= 6; ++mode) {
                    seen << text(link.controlRemote(mode, in(5000)));
                }
                return seen;
            },
            "NSUP_OPER|NSUP_OPER|NSUP_OPER|ok|NSUP_OPER|ok|ok", "16 0|16 0|17 0");
        row(
            "lock", answers(lan::vxi11::DeviceLock, usual, error(11)),
            [](Vxi11Link &link) {
                return QStringList{text(link.lock(in(5000))), text(link.lock(in(0))),
                                   text(link.unlock(in(5000)))};
            },
            "ok|TMO|ok", "18 0 waits|18 0|19 0");
        row(
            "status byte",
            answers(
                DeviceReadStb,
                [](const RpcCall &call) {
                    return ScriptedHost::reply(call, lan::xdrWords({0, 0x50}));
                },
                error(0)),
            [](Vxi11Link &link) {
                QStringList seen;
                for (int i = 0; i < 2; ++i) {
                    ViUInt8 byte = 0;
                    seen << text(link.readStatusByte(in(5000), &byte)) << QString::number(byte);
                }
                return seen;
            },
            "ok|80|IO|0", "13 0|13 0");
        const Client clear = [](Vxi11Link &link) {
            return QStringList{text(link.clear(in(20))), text(link.trigger(in(5000)))};
        };
        row("mute", answers(DeviceClear, mute), clear, "TMO|ok", "15 0|14 0");
        for (const auto &[code, status] : {std::pair{1, "RSRC_NFOUND"},
                                           {3, "RSRC_NFOUND"},
                                           {4, "CONN_LOST"},
                                           {5, "IO"},
                                           {8, "NSUP_OPER"},
                                           {9, "ALLOC"},
                                           {11, "RSRC_LOCKED"},
                                           {12, "SESN_NLOCKED"},
                                           {15, "TMO"},
                                           {17, "IO"},
                                           {21, "RSRC_NFOUND"},
                                           {99, "IO"}}) {
            row("error " + QByteArray::number(code), answers(DeviceClear, error(quint32(code))),
                clear, QByteArray(status) + "|ok", "15 0|14 0");
        }
        for (const auto &[outcome, status] :
             {std::pair{RpcOutcome::ProcedureUnavailable, "NSUP_OPER"},
              {RpcOutcome::ProgramMismatch, "NSUP_OPER"},
              {RpcOutcome::GarbageArguments, "IO"}}) {
            row("outcome " + QByteArray::number(quint32(outcome)),
                answers(DeviceClear, error(0, outcome)), clear, QByteArray(status) + "|ok");
        }
    }
    void traps()
    {
        QFETCH(ScriptedHost::Script, script);
        QFETCH(Client, client);
        QFETCH(QString, seen);
        QFETCH(QString, transcript);
        ScriptedHost host(script, 4);
        QStringList saw;
        {
            Vxi11Link link;
            QCOMPARE(open(link, host.port), VI_SUCCESS);
            saw = client(link);
        }
        QCOMPARE(saw.join('|'), seen);
        QStringList calls = host.finish();
        QCOMPARE(calls.takeFirst(), QString("create 0 0 inst0"));
        QVERIFY(calls.filter("without time-out").isEmpty());
        if (!transcript.isEmpty()) {
            QCOMPARE(calls.takeLast(), QString("23 0"));
            QCOMPARE(calls.join('|'), transcript);
        }
    }

    /// What becomes of an attempt to connect.
    void opening_data()
    {
        QTest::addColumn<ScriptedHost::Script>("script");
        QTest::addColumn<QString>("status");
        const auto mapper = [](const ScriptedHost::Script &answer) -> ScriptedHost::Script {
            return [=](const RpcCall &call) {
                return call.procedure.program == lan::portmapperProgram ? answer(call) : Pieces();
            };
        };
        const auto create = [](const ScriptedHost::Script &answer) {
            return answers(lan::vxi11::CreateLink, answer);
        };
        QTest::newRow("no VXI-11") << mapper(error(0)) << "RSRC_NFOUND";
        QTest::newRow("no port") << mapper(error(0x10001)) << "RSRC_NFOUND";
        QTest::newRow("nobody at the port") << mapper(error(1)) << "RSRC_NFOUND";
        QTest::newRow("no portmapper 2")
            << mapper(error(0, RpcOutcome::ProgramMismatch)) << "RSRC_NFOUND";
        QTest::newRow("mute portmapper") << mapper(mute) << "TMO";
        QTest::newRow("portmapper that closes") << mapper(hangUp) << "RSRC_NFOUND";
        QTest::newRow("mute") << create(mute) << "TMO";
        QTest::newRow("closes") << create(hangUp) << "RSRC_NFOUND";
        QTest::newRow("another program")
            << create(error(0, RpcOutcome::ProgramUnavailable)) << "RSRC_NFOUND";
        QTest::newRow("too short") << create(error(0)) << "IO";
        QTest::newRow("no device") << create(error(3)) << "RSRC_NFOUND";
        QTest::newRow("no link left") << create(error(9)) << "ALLOC";
    }
    void opening()
    {
        QFETCH(ScriptedHost::Script, script);
        QFETCH(QString, status);
        ScriptedHost host(script);
        {
            Vxi11Link link;
            QCOMPARE(text(open(link, host.port, status == "TMO" ? 50 : 5000)), status);
        }
        QVERIFY(host.finish().filter("23 ").isEmpty());
        Vxi11Link link;
        QCOMPARE(text(open(link, host.port)), QString("RSRC_NFOUND")); // the host is gone
    }

    /// A device that has been started anew is lost to the link, and found by another.
    void restart()
    {
        auto host = std::make_unique<ScriptedHost>(answers(DeviceRead, hangUp));
        Vxi11Link link;
        QCOMPARE(open(link, host->port), VI_SUCCESS);
        QCOMPARE(read(link, 9), QString("CONN_LOST "));
        Vxi11Link other;
        QCOMPARE(open(other, host->port), VI_SUCCESS);
        QCOMPARE(text(other.trigger(in(5000))), QString("ok"));
        QCOMPARE(text(link.trigger(in(5000))), QString("CONN_LOST"));
    }

    /// A process that ends without closing anything, and without an application object.
    void processEnd()
    {
        ScriptedHost host(usual);
        const QString port = QString::number(host.port);
        QCOMPARE(QProcess::execute(QCoreApplication::applicationFilePath(), {"--leave", port}), 0);
        QCOMPARE(host.finish(), QStringList({"create 0 0 inst0", "14 0", "23 0"}));
    }
};

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "--leave") == 0) {
        static auto *const link = new Vxi11Link;
        const ViStatus status = open(*link, QByteArray(argv[2]).toUShort());
        return status == VI_SUCCESS && link->trigger(in(5000)) == VI_SUCCESS ? 0 : 1;
    }
    const QCoreApplication application(argc, argv);
    LanTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LanTest.moc"
