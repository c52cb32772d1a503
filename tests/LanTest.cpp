#include "ScriptedHost.h"
#include "ScriptedSteps.h"

#include <QtTest>

using lan::RpcCall;
using lan::RpcOutcome;
using lan::Vxi11Link;
using lan::vxi11::DeviceClear;
using lan::vxi11::DeviceRead;
using lan::vxi11::DeviceWrite;
using Pieces = QList<QByteArray>;

Q_DECLARE_METATYPE(ScriptedHost::Script)

namespace {

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
ScriptedHost::Script data(const QByteArray &bytes, quint32 reason, quint32 error = 0)
{
    return [=](const RpcCall &call) { return ScriptedHost::data(call, bytes, reason, error); };
}

ScriptedHost::Script words(std::initializer_list<quint32> results,
                           RpcOutcome outcome = RpcOutcome::Success)
{
    return [encoded = lan::xdrWords(results), outcome](const RpcCall &call) {
        return ScriptedHost::reply(call, encoded, outcome);
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
        QTest::addColumn<QString>("steps"); //"-" behind one: without time
        QTest::addColumn<QString>("seen");
        QTest::addColumn<QString>("calls");
        const auto row = [](const QByteArray &name, const ScriptedHost::Script &script,
                            const char *steps, const char *seen, const char *calls = "") {
            QTest::newRow(name) << script << QString(steps) << QString(seen) << QString(calls);
        };
        const auto reads = [](auto... answer) { return answers(DeviceRead, answer...); };
        const auto pieces = [](auto script) { return ScriptedHost::Script(script); };

        row("END at the count", reads(data("12345", 5)), "r5", "END 12345", "12 0 5 t 0 0 0");
        row("END outranks", reads(data("1\n", 6)), "n9", "END 1\n", "12 0 9 t 0 128 10");
        row("no eye for it", reads(data("1\n2\n", 4), hangUp), "n9|n9", "CHR 1\n|END 2\n");
        row("not asked for", reads(data("1\n", 2), data("2", 4)), "r9", "END 1\n2");
        row("more than asked for", reads(data("0123456789", 4), hangUp), "r4|r5|r1",
            "CNT 0123|CNT 45678|END 9", "12 0 4 t 0 0 0");
        row("a question drops the rest", reads(data("old", 4), data("new", 4)), "r1|w?|r9",
            "CNT o|ok 1|END new");
        row("no other call does", reads(data("old", 4), hangUp), "r1|t|r9", "CNT o|ok|END ld");
        row("empty, no reason", reads(data("", 0), data("", 0), data("1", 4)), "r9", "END 1",
            "12 0 9 t 0 0 0|12 0 9 t 0 0 0|12 0 9 t 0 0 0");
        row("nothing more for ever", reads(data("1", 0), data("", 0)), "r9-", "TMO 1");
        row("in pieces", reads(data("12", 0), data("3", 1), data("", 4)), "r9", "END 123",
            "12 0 9 t 0 0 0|12 0 7 t 0 0 0|12 0 6 t 0 0 0");
        row("before an error", reads(data("12", 0), data("3", 0, 15)), "r9", "TMO 123");
        row("too much at once", reads(data("1", 4)), "r17825792", "END 1", "12 0 16777216 t 0 0 0");

        row("split", usual, "w0123456789", "ok 10",
            "11 0 t 0 0 0123|11 0 t 0 0 4567|11 0 t 0 8 89");
        row("without END", usual, "v01234", "ok 5", "11 0 t 0 0 0123|11 0 t 0 0 4");
        row("taken in part", answers(DeviceWrite, words({0, 1}), usual), "w0123", "ok 4",
            "11 0 t 0 8 0123|11 0 t 0 8 123");
        row("taken too much", answers(DeviceWrite, words({0, 99})), "w01", "ok 2");
        row("not taken", answers(DeviceWrite, words({0, 0})), "w0", "IO 0");

        row("old answers", reads(pieces([](const RpcCall &call) {
                return mute(call) + ScriptedHost::data(call, "new", 4);
            })),
            "r9", "END new");
        row("too late",
            reads(pieces([](const RpcCall &call) {
                      QThread::msleep(800);
                      return ScriptedHost::data(call, "late", 4);
                  }),
                  data("next", 4)),
            "r9-|r9", "TMO |END next");
        row("in fragments, byte by byte", reads(pieces([](const RpcCall &call) {
                const QByteArray whole = ScriptedHost::data(call, "123", 4).first();
                Pieces bytes;
                for (int i = 4; i < whole.size(); ++i) { // behind its mark
                    const quint32 last = i + 1 == whole.size() ? 0x80000000U : 0U;
                    bytes << lan::xdrWords({last | 1}) << whole.mid(i, 1);
                }
                return bytes;
            })),
            "r9", "END 123");
        row("trickles for ever", reads(pieces([](auto &) {
                Pieces bytes = {lan::xdrWords({0x80001000})};
                std::fill_n(std::back_inserter(bytes), 300, "x");
                return bytes;
            })),
            "r9-", "TMO ");
        row("a fragment without room",
            reads(pieces([](auto &) { return Pieces{lan::xdrWords({0xFFFFFFFF})}; })), "r9|r9",
            "IO |CONN_LOST ");
        row("closed meanwhile", reads(pieces([](const RpcCall &call) {
                return ScriptedHost::data(call, "1", 4) + Pieces{""};
            })),
            "r9|r9", "END 1|CONN_LOST ");
        for (const QByteArray &bytes :
             {QByteArray("nonsense"), lan::xdrWords({0}), lan::xdrWords({1, 2, 3}), QByteArray()}) {
            row("no answer: " + bytes.toHex(),
                reads(pieces([=](auto &) { return Pieces{lan::asRecord(bytes)}; }), data("1", 4)),
                "r9|r9", "IO |END 1");
        }
        row("without zeros at the end", reads(pieces([](const RpcCall &call) {
                return ScriptedHost::reply(call, lan::xdrWords({0, 4, 1}) + "1");
            })),
            "r9", "END 1");
        row("more data than there is", reads(words({0, 4, 0xFFFFFFFF, 0})), "r9", "IO ");

        row("remote and local", usual, "g0|g1|g2|g3|g4|g5|g6",
            "NSUP_OPER|NSUP_OPER|NSUP_OPER|ok|NSUP_OPER|ok|ok", "16 0 0 0 t|16 0 0 0 t|17 0 0 0 t");
        row("lock", answers(lan::vxi11::DeviceLock, usual, words({11})), "l|l-|u", "ok|TMO|ok",
            "18 0 1|18 0 0|19 0");
        row("status byte", answers(lan::vxi11::DeviceReadStb, words({0, 0x50}), words({0})), "s|s",
            "ok80|IO0", "13 0 0 0 t|13 0 0 0 t");
        row("mute", answers(DeviceClear, mute), "c-|t", "TMO|ok", "15 0 0 0 t|14 0 0 0 t");
        for (const auto &[code, status] : {std::pair{1U, "RSRC_NFOUND"},
                                           {4, "CONN_LOST"},
                                           {5, "IO"},
                                           {8, "NSUP_OPER"},
                                           {11, "RSRC_LOCKED"},
                                           {12, "SESN_NLOCKED"},
                                           {17, "IO"},
                                           {21, "RSRC_NFOUND"},
                                           {99, "IO"}}) {
            row("error " + QByteArray::number(code), answers(DeviceClear, words({code})), "c",
                status);
        }
        for (const auto &[outcome, status] :
             {std::pair{RpcOutcome::ProcedureUnavailable, "NSUP_OPER"},
              {RpcOutcome::ProgramMismatch, "NSUP_OPER"},
              {RpcOutcome::GarbageArguments, "IO"}}) {
            row("outcome " + QByteArray::number(quint32(outcome)),
                answers(DeviceClear, words({0}, outcome)), "c", status);
        }
    }
    void traps()
    {
        QFETCH(ScriptedHost::Script, script);
        QFETCH(QString, steps);
        QFETCH(QString, seen);
        QFETCH(QString, calls);
        ScriptedHost host(script, 4);
        QStringList saw;
        {
            Vxi11Link link;
            QCOMPARE(open(link, host.port), VI_SUCCESS);
            for (const QString &step : steps.split('|')) {
                saw << carryOut(link, QString(step).remove('-'), step.endsWith('-') ? 0 : 5000);
            }
        }
        QCOMPARE(saw.join('|'), seen);
        const QString transcript = host.finish().join('|');
        QVERIFY2(transcript.startsWith("10 t 0 0 inst0|"), qPrintable(transcript));
        if (!calls.isEmpty()) {
            QCOMPARE(transcript, "10 t 0 0 inst0|" + calls + "|23 0");
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
        QTest::newRow("no VXI-11") << mapper(words({0})) << "RSRC_NFOUND";
        QTest::newRow("no port") << mapper(words({0x10001})) << "RSRC_NFOUND";
        QTest::newRow("nobody at the port") << mapper(words({1})) << "RSRC_NFOUND";
        QTest::newRow("no portmapper 2")
            << mapper(words({0}, RpcOutcome::ProgramMismatch)) << "RSRC_NFOUND";
        QTest::newRow("mute portmapper") << mapper(mute) << "TMO";
        QTest::newRow("portmapper that closes") << mapper(hangUp) << "RSRC_NFOUND";
        QTest::newRow("mute") << create(mute) << "TMO";
        QTest::newRow("closes") << create(hangUp) << "RSRC_NFOUND";
        QTest::newRow("another program")
            << create(words({0}, RpcOutcome::ProgramUnavailable)) << "RSRC_NFOUND";
        QTest::newRow("too short") << create(words({0})) << "IO";
        QTest::newRow("no device") << create(words({3})) << "RSRC_NFOUND";
        QTest::newRow("no link left") << create(words({9})) << "ALLOC";
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
        QCOMPARE(carryOut(link, "r9", 5000), QString("CONN_LOST "));
        Vxi11Link other;
        QCOMPARE(open(other, host->port), VI_SUCCESS);
        QCOMPARE(carryOut(other, "t", 5000), QString("ok"));
        QCOMPARE(carryOut(link, "t", 5000), QString("CONN_LOST"));
    }

    /// A process that ends without closing anything, and without an application object.
    void processEnd()
    {
        ScriptedHost host(usual);
        const QString port = QString::number(host.port);
        QCOMPARE(QProcess::execute(QCoreApplication::applicationFilePath(), {"--leave", port}), 0);
        QCOMPARE(host.finish(), QStringList({"10 t 0 0 inst0", "14 0 0 0 t", "23 0"}));
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
