#include "ScriptedHost.h"
#include "simulator/server/CoreCall.h"
#include "visa/lan/HostLookup.h"
#include "visa/lan/Vxi11Link.h"
#include "visa/StatusText.h"

#include <QtTest>

using Script = ScriptedHost::Script;
using Pieces = ScriptedHost::Pieces;
using lan::Vxi11Link;
using wire::RpcCall;
using wire::RpcOutcome;
using wire::xdrWords;
using namespace wire::vxi11;

/// Something that a client does with a link. Returns its outcome.
using Step = std::function<QString(Vxi11Link &link)>;
using Steps = QVector<Step>;

Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(Steps)

namespace {

constexpr ViUInt32 usualTimeout = 5000; // ms
constexpr ViUInt32 shortTimeout = 500;
constexpr ViUInt32 noTime = 0;

/// Returns the name of a status without its prefix, as "SUCCESS" and "TMO".
QString text(ViStatus status)
{
    return QString::fromStdString(visa::statusName(status)).remove(QRegExp("^VI_(ERROR_)?"));
}

/// Read. The outcome is why the read ended, and the bytes.
Step read(int count, std::optional<ViByte> terminator = std::nullopt,
          ViUInt32 timeout = usualTimeout)
{
    return [=](Vxi11Link &link) {
        static const QStringList ends = {"COUNT", "TERMINATOR", "END"};
        QByteArray bytes(count, '\0');
        const visa::ReadOutcome outcome =
            link.read(reinterpret_cast<ViByte *>(bytes.data()), std::size_t(count), terminator,
                      visa::deadlineAfter(timeout));
        const QString why =
            outcome.status != VI_SUCCESS ? text(outcome.status) : ends[int(outcome.end)];
        return why + " " + bytes.left(int(outcome.count));
    };
}

/// Write. The outcome is the status and the number of bytes written.
Step write(const std::string &bytes, bool end = true)
{
    return [=](Vxi11Link &link) {
        std::size_t written = 0;
        const ViStatus status =
            link.write(reinterpret_cast<const ViByte *>(bytes.data()), bytes.size(), end,
                       visa::deadlineAfter(usualTimeout), &written);
        return text(status) + " " + QString::number(written);
    };
}

template <typename Call>
Step step(Call call, ViUInt32 timeout = usualTimeout)
{
    return [=](Vxi11Link &link) { return text((link.*call)(visa::deadlineAfter(timeout))); };
}

/// Answers the calls of one procedure, one after the other. The last answer is repeated.
template <typename... Answers>
Script answers(Procedure procedure, Answers... answer)
{
    return [procedure, left = QList<Script>{answer...}](const RpcCall &call) mutable {
        const bool isOther = call.procedure.procedure != procedure;
        return isOther ? Pieces() : (left.size() > 1 ? left.takeFirst() : left.first())(call);
    };
}

Script data(const std::string &bytes, std::uint32_t reason, std::uint32_t error = None)
{
    return [=](const RpcCall &call) { return ScriptedHost::data(call, bytes, reason, error); };
}

Script words(std::initializer_list<std::uint32_t> results, RpcOutcome outcome = RpcOutcome::Success)
{
    return [encoded = xdrWords(results), outcome](const RpcCall &call) {
        return ScriptedHost::reply(call, encoded, outcome);
    };
}

/// Answers calls to the portmapper only: the instrument has no procedure with that number.
Script mapper(const Script &answer)
{
    return answers(static_cast<Procedure>(wire::getPortProcedure), answer);
}

Script pieces(const Pieces &pieces)
{
    return [=](const RpcCall & /*call*/) { return pieces; };
}

const Script usual = pieces({});
const Script hangUp = pieces({""});

/// Sends the answer to another call only.
Pieces mute(RpcCall call)
{
    --call.xid;
    return ScriptedHost::data(call, "old", EndIndicator);
}

Pieces byteByByte(const RpcCall &call)
{
    Pieces bytes;
    for (const char byte : ScriptedHost::data(call, "123", EndIndicator).front().substr(4)) {
        bytes.push_back(xdrWords({1}));
        bytes.emplace_back(1, byte);
    }
    bytes.push_back(xdrWords({0x80000000}));
    return bytes;
}

/// Announces a record of 4096 bytes, and sends 299 of them, one at a time.
Pieces trickle(const RpcCall & /*call*/)
{
    Pieces bytes(300, "x");
    bytes.front() = xdrWords({0x80001000});
    return bytes;
}

Pieces withoutPadding(const RpcCall &call)
{
    return ScriptedHost::reply(call, xdrWords({None, EndIndicator, 1}) + "1");
}

/// Describe a call to the instrument, as OrvantaBench decodes it, by its parameters that are not 0.
QString described(const RpcCall &call)
{
    const QMap<std::uint32_t, QString> names = {
        {CreateLink, "create"}, {DeviceWrite, "write"},     {DeviceRead, "read"},
        {DeviceClear, "clear"}, {DeviceTrigger, "trigger"}, {DeviceLocal, "local"},
        {DeviceLock, "lock"},   {DeviceUnlock, "unlock"},   {DestroyLink, "destroy"}};
    const auto core = std::get<server::CoreCall>(server::decodedCoreCall(call));
    QStringList text = {names[core.procedure]};
    const auto add = [&text](bool isGiven, const QString &parameter) {
        text += isGiven ? QStringList(parameter) : QStringList();
    };
    add(core.requestSize != 0, "size " + QString::number(core.requestSize));
    add(core.ioTimeout != 0, "timeout");
    add(core.lockTimeout != 0, "lockTimeout");
    add((core.flags & End) != 0, "END");
    add((core.flags & TermCharSet) != 0, "terminator " + QString::number(core.terminator));
    add((core.flags & WaitLock) != 0, "wait");
    add(!core.data.empty(), QString::fromLatin1(core.data.data(), int(core.data.size())));
    return text.join(' ');
}

} // namespace

class LanTest : public QObject
{
    Q_OBJECT

private slots:
    void links_data()
    {
        QTest::addColumn<Script>("instrument");
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<QStringList>("outcomes");
        QTest::addColumn<QStringList>("received"); // empty: not looked at
        const auto row = [](const char *name, const Script &instrument, const Steps &steps,
                            const QStringList &outcomes, const QStringList &received = {}) {
            QTest::newRow(name) << instrument << steps << outcomes << received;
        };
        const auto reads = [](auto... answer) { return answers(DeviceRead, answer...); };
        const Step trigger = step(&Vxi11Link::trigger);
        const Step clear = step(&Vxi11Link::clear);

        row("END with the terminator", reads(data("1\n", EndIndicator | TermChar)), {read(9, '\n')},
            {"END 1\n"}, {"read size 9 timeout terminator 10"});
        row("a device that ignores the terminator", reads(data("1\n2\n", EndIndicator), hangUp),
            {read(9, '\n'), read(9, '\n')}, {"TERMINATOR 1\n", "END 2\n"});
        row("more than asked for", reads(data("0123456789", EndIndicator), hangUp),
            {read(4), read(5), read(1)}, {"COUNT 0123", "COUNT 45678", "END 9"},
            {"read size 4 timeout"});
        row("a question drops what is left",
            reads(data("old", EndIndicator), data("new", EndIndicator)),
            {read(1), write("?"), read(9)}, {"COUNT o", "SUCCESS 1", "END new"});
        row("nothing more for ever", reads(data("1", 0), data("", 0)),
            {read(9, std::nullopt, noTime)}, {"TMO 1"});
        row("an answer in parts",
            reads(data("12", 0), data("", 0), data("3", RequestCount), data("", EndIndicator)),
            {read(9)}, {"END 123"},
            {"read size 9 timeout", "read size 7 timeout", "read size 7 timeout",
             "read size 6 timeout"});
        row("bytes before an error", reads(data("12", 0), data("3", 0, IoTimeout)), {read(9)},
            {"TMO 123"});

        row("a write without END", usual, {write("01234", false)}, {"SUCCESS 5"},
            {"write timeout 0123", "write timeout 4"});
        row("a write taken in part", answers(DeviceWrite, words({None, 1}), usual), {write("0123")},
            {"SUCCESS 4"}, {"write timeout END 0123", "write timeout END 123"});
        row("a write not taken", answers(DeviceWrite, words({None, 0})), {write("0")}, {"IO 0"});

        row("a fragment for each byte", reads(byteByByte), {read(9)}, {"END 123"});
        row("a record without an end", reads(trickle), {read(9, std::nullopt, noTime)}, {"TMO "});
        row("a fragment too long", reads(pieces({xdrWords({0xFFFFFFFF})})), {read(9), read(9)},
            {"IO ", "CONN_LOST "});
        row("a record that is no reply",
            reads(pieces({wire::asRecord("nonsense")}), data("1", EndIndicator)),
            {read(9), read(9)}, {"IO ", "END 1"});
        row("an answer without padding", reads(withoutPadding), {read(9)}, {"END 1"});

        row("to local", usual, {step(&Vxi11Link::goToLocal)}, {"SUCCESS"}, {"local timeout"});
        row("locks", answers(DeviceLock, usual, words({LockedByAnother})),
            {step(&Vxi11Link::lock), step(&Vxi11Link::lock, noTime), step(&Vxi11Link::unlock)},
            {"SUCCESS", "TMO", "SUCCESS"}, {"lock lockTimeout wait", "lock", "unlock"});
        row("a call that is not answered", answers(DeviceClear, mute),
            {step(&Vxi11Link::clear, noTime), trigger}, {"TMO", "SUCCESS"},
            {"clear timeout", "trigger timeout"});
        row("errors",
            answers(DeviceClear, words({InvalidLink}), words({LockedByAnother}), words({99})),
            {clear, clear, clear}, {"CONN_LOST", "RSRC_LOCKED", "IO"});
        row("calls refused",
            answers(DeviceClear, words({}, RpcOutcome::ProcedureUnavailable),
                    words({}, RpcOutcome::GarbageArguments)),
            {clear, clear}, {"NSUP_OPER", "IO"});

        // Clients that get no link.
        row("no VXI-11", mapper(words({0})), {}, {"RSRC_NFOUND"});
        row("nobody at the port", mapper(words({1})), {}, {"RSRC_NFOUND"});
        row("a mute portmapper", mapper(mute), {}, {"TMO"});
        row("hangs up", answers(CreateLink, hangUp), {}, {"RSRC_NFOUND"});
        row("a link without number", answers(CreateLink, words({None})), {}, {"IO"});
    }
    void links()
    {
        QFETCH(Script, instrument);
        QFETCH(Steps, steps);
        QFETCH(QStringList, outcomes);
        QFETCH(QStringList, received);
        QStringList seen;
        QStringList calls;
        const auto script = [&](const RpcCall &call) {
            if (call.procedure.program == coreProgram) {
                calls << described(call);
            }
            return instrument(call);
        };
        {
            const ScriptedHost host(script, 4); // outlives its client
            Vxi11Link link;
            const ViUInt32 timeout = steps.isEmpty() ? shortTimeout : usualTimeout;
            const ViStatus status =
                link.open("127.0.0.1", host.port, "inst0", visa::deadlineAfter(timeout));
            if (status != VI_SUCCESS) {
                seen << text(status);
            }
            for (const Step &carryOut : steps) {
                seen << carryOut(link);
            }
        }
        QCOMPARE(seen, outcomes);
        if (!received.isEmpty()) {
            QCOMPARE(calls, QStringList("create wait inst0") + received + QStringList("destroy"));
        }
    }

    void looksUpNames()
    {
        const auto found = lan::addressesOf("localhost", visa::deadlineAfter(usualTimeout));
        QVERIFY(found);
        QVERIFY(std::count(found->begin(), found->end(), "127.0.0.1") > 0);
    }
};

QTEST_GUILESS_MAIN(LanTest)

#include "LanTest.moc"
