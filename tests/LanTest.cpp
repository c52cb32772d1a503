#include "ScriptedHost.h"
#include "ScriptedSteps.h"

#include <QtTest>

using lan::Vxi11Link;
using wire::RpcCall;
using wire::RpcOutcome;
using wire::vxi11::CreateLink;
using wire::vxi11::DeviceClear;
using wire::vxi11::DeviceRead;
using wire::vxi11::DeviceWrite;
using Pieces = std::vector<std::string>;

Q_DECLARE_METATYPE(ScriptedHost::Script)

namespace {

/// A script that sends one answer after the other to the calls of one procedure, the last one ever
/// after, and the usual ones to all others.
template <typename... Answers>
ScriptedHost::Script answers(wire::vxi11::Procedure procedure, Answers... answer)
{
    return [procedure, left = QList<ScriptedHost::Script>{answer...}](const RpcCall &call) mutable {
        const bool isOther = call.procedure.procedure != procedure;
        return isOther ? Pieces() : (left.size() > 1 ? left.takeFirst() : left.first())(call);
    };
}

/// Answers to a read, and to other calls.
ScriptedHost::Script data(const std::string &bytes, std::uint32_t reason, std::uint32_t error = 0)
{
    return [=](const RpcCall &call) { return ScriptedHost::data(call, bytes, reason, error); };
}

ScriptedHost::Script words(std::initializer_list<std::uint32_t> results,
                           RpcOutcome outcome = RpcOutcome::Success)
{
    return [encoded = wire::xdrWords(results), outcome](const RpcCall &call) {
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
        QTest::addColumn<QString>("steps"); // "-" behind one: without time; none: it does not open
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
        row("nothing more for ever", reads(data("1", 0), data("", 0)), "r9-", "TMO 1");
        row("in pieces", reads(data("12", 0), data("", 0), data("3", 1), data("", 4)), "r9",
            "END 123", "12 0 9 t 0 0 0|12 0 7 t 0 0 0|12 0 7 t 0 0 0|12 0 6 t 0 0 0");
        row("before an error", reads(data("12", 0), data("3", 0, 15)), "r9", "TMO 123");
        row("too much at once", reads(data("1", 4)), "r17825792", "END 1", "12 0 16777216 t 0 0 0");

        row("split", usual, "w0123456789", "ok 10",
            "11 0 t 0 0 0123|11 0 t 0 0 4567|11 0 t 0 8 89");
        row("without END", usual, "v01234", "ok 5", "11 0 t 0 0 0123|11 0 t 0 0 4");
        row("taken in part", answers(DeviceWrite, words({0, 1}), usual), "w0123", "ok 4",
            "11 0 t 0 8 0123|11 0 t 0 8 123");
        row("taken too much", answers(DeviceWrite, words({0, 99})), "w01", "ok 2");
        row("not taken", answers(DeviceWrite, words({0, 0})), "w0", "IO 0");

        row("in fragments, byte by byte", reads(pieces([](const RpcCall &call) {
                Pieces bytes;
                for (const char byte : ScriptedHost::data(call, "123", 4).front().substr(4)) {
                    bytes.push_back(wire::xdrWords({1}));
                    bytes.emplace_back(1, byte);
                }
                bytes.push_back(wire::xdrWords({0x80000000}));
                return bytes;
            })),
            "r9", "END 123");
        row("trickles for ever", reads(pieces([](auto &) {
                Pieces bytes = {wire::xdrWords({0x80001000})};
                std::fill_n(std::back_inserter(bytes), 300, "x");
                return bytes;
            })),
            "r9-", "TMO ");
        row("a fragment without room",
            reads(pieces([](auto &) { return Pieces{wire::xdrWords({0xFFFFFFFF})}; })), "r9|r9",
            "IO |CONN_LOST ");
        row("closed meanwhile", reads(pieces([](const RpcCall &call) {
                return Pieces{ScriptedHost::data(call, "1", 4).front(), ""};
            })),
            "r9|r9|t", "END 1|CONN_LOST |CONN_LOST");
        row("no answer at all",
            reads(pieces([](auto &) { return Pieces{wire::asRecord("nonsense")}; }), data("1", 4)),
            "r9|r9", "IO |END 1");
        row("without zeros at the end", reads(pieces([](const RpcCall &call) {
                return ScriptedHost::reply(call, wire::xdrWords({0, 4, 1}) + "1");
            })),
            "r9", "END 1");
        row("more data than there is", reads(words({0, 4, 0xFFFFFFFF, 0})), "r9", "IO ");

        row("remote and local", usual, "g0|g1|g2|g3|g4|g5|g6",
            "NSUP_OPER|NSUP_OPER|NSUP_OPER|ok|NSUP_OPER|ok|ok", "16 0 0 0 t|16 0 0 0 t|17 0 0 0 t");
        row("lock", answers(wire::vxi11::DeviceLock, usual, words({11})), "l|l-|u", "ok|TMO|ok",
            "18 0 1 t|18 0 0 0|19 0");
        row("mute", answers(DeviceClear, mute), "c-|t", "TMO|ok", "15 0 0 0 t|14 0 0 0 t");
        row("errors", answers(DeviceClear, words({4}), words({11}), words({99})), "c|c|c",
            "CONN_LOST|RSRC_LOCKED|IO");
        row("no procedure",
            answers(DeviceClear, words({0}, RpcOutcome::ProcedureUnavailable),
                    words({0}, RpcOutcome::GarbageArguments)),
            "c|c", "NSUP_OPER|IO");

        const auto mapper = [](const ScriptedHost::Script &answer) -> ScriptedHost::Script {
            return [=](const RpcCall &call) {
                return call.procedure.program == wire::portmapperProgram ? answer(call) : Pieces();
            };
        };
        row("no VXI-11", mapper(words({0})), "", "RSRC_NFOUND");
        row("no port", mapper(words({0x10001})), "", "RSRC_NFOUND");
        row("nobody at the port", mapper(words({1})), "", "RSRC_NFOUND");
        row("no portmapper 2", mapper(words({0}, RpcOutcome::ProgramMismatch)), "", "RSRC_NFOUND");
        row("mute portmapper", mapper(mute), "", "TMO");
        row("closes", answers(CreateLink, hangUp), "", "RSRC_NFOUND");
        row("a link without number", answers(CreateLink, words({0})), "", "IO");
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
            const ViStatus opened = open(link, host.port, steps.isEmpty() ? 50 : 5000);
            QCOMPARE(text(opened), steps.isEmpty() ? seen : "ok");
            for (const QString &step : steps.split('|', Qt::SkipEmptyParts)) {
                saw << carryOut(link, QString(step).remove('-'), step.endsWith('-') ? 0 : 5000);
            }
        }
        QCOMPARE(saw.join('|'), steps.isEmpty() ? "" : seen);
        const QString transcript = host.finish().join('|');
        if (!calls.isEmpty()) {
            QCOMPARE(transcript, "10 t 0 0 inst0|" + calls + "|23 0");
        }
        QVERIFY(!steps.isEmpty() || !transcript.contains("|23 ")); // nothing to leave
    }
};

QTEST_GUILESS_MAIN(LanTest)

#include "LanTest.moc"
