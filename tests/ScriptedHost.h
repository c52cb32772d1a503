#pragma once

#include "visa/wire/Portmapper.h"
#include "visa/wire/RpcMessage.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <QMap>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <vector>

/// A host with its portmapper and its instrument at one port, which answers as the test says. It
/// notes the calls to the instrument as text: "write timeout END *IDN?", "read size 100 timeout".
class ScriptedHost
{
public:
    /// Bytes that are sent one piece after the other. The connection is closed at an empty one.
    using Pieces = std::vector<std::string>;
    /// Returns what is sent instead of the usual answer to a call; nothing for the usual one.
    using Script = std::function<Pieces(const wire::RpcCall &call)>;

    explicit ScriptedHost(Script script, std::uint32_t receiveSize = 1024)
        : script(std::move(script)), receiveSize(receiveSize)
    {
        std::promise<void> listening;
        thread = std::thread([this, &listening] {
            QTcpServer server;
            server.listen(QHostAddress::LocalHost);
            port = server.serverPort();
            listening.set_value();
            while (!isEnding) {
                server.waitForNewConnection(1);
                const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
                if (socket != nullptr) {
                    serve(*socket);
                }
            }
        });
        listening.get_future().wait();
    }
    ~ScriptedHost() { finish(); }

    /// Serve the connections to their end. Returns the calls that came.
    QStringList finish()
    {
        isEnding = true;
        if (thread.joinable()) {
            thread.join();
        }
        return received;
    }

    static Pieces reply(const wire::RpcCall &call, std::string_view results,
                        wire::RpcOutcome outcome = wire::RpcOutcome::Success)
    {
        return {wire::asRecord(wire::encodedReply(call.xid, outcome, results))};
    }
    /// Returns the answer to a read.
    static Pieces data(const wire::RpcCall &call, std::string_view bytes, std::uint32_t reason,
                       std::uint32_t error = wire::vxi11::None)
    {
        return reply(call, wire::xdrWords({error, reason}) + wire::xdrOpaque(bytes));
    }

    std::uint16_t port = 0;

private:
    void serve(QTcpSocket &socket)
    {
        wire::RecordReader reader(1 << 25);
        const auto source = [&socket](char *to, std::size_t size) {
            return socket.read(to, static_cast<qint64>(size));
        };
        while (socket.state() == QAbstractSocket::ConnectedState) {
            if (reader.read(source) != wire::RecordReader::State::Complete) {
                socket.waitForReadyRead(1);
                continue;
            }
            const std::string record = reader.take();
            const wire::RpcCall call = wire::decodedCall(record).value();
            if (call.procedure.program != wire::portmapperProgram) {
                received << described(call);
            }
            const Pieces pieces = script(call);
            for (const std::string &piece : pieces.empty() ? usual(call) : pieces) {
                if (piece.empty()) {
                    return;
                }
                socket.write(piece.data(), static_cast<qint64>(piece.size()));
                if (!socket.waitForBytesWritten(1000)) {
                    return;
                }
                if (pieces.size() > 1) {
                    std::this_thread::sleep_for(
                        std::chrono::milliseconds(5)); // each arrives on its own
                }
            }
        }
    }

    /// Returns the usual answer to a call: a link with number 0, all taken of a write, no error.
    Pieces usual(const wire::RpcCall &call) const
    {
        if (call.procedure.program == wire::portmapperProgram) {
            return reply(call, wire::xdrWords({port}));
        }
        std::string_view written;
        if (call.procedure.procedure == wire::vxi11::DeviceWrite) {
            wire::XdrReader(call.arguments.substr(16)) >> written;
        }
        return reply(call, wire::xdrWords({0, std::uint32_t(written.size()), 0, receiveSize}));
    }

    /// Describe a call of the core channel by its parameters that are not 0.
    static QString described(const wire::RpcCall &call)
    {
        namespace vxi11 = wire::vxi11;
        const QString generic = "link flags lockTimeout timeout";
        const QMap<std::uint32_t, QString> layouts = {
            {vxi11::CreateLink, "create: client flags lockTimeout data"},
            {vxi11::DeviceWrite, "write: link timeout lockTimeout flags data"},
            {vxi11::DeviceRead, "read: link size timeout lockTimeout flags terminator"},
            {vxi11::DeviceTrigger, "trigger: " + generic},
            {vxi11::DeviceClear, "clear: " + generic},
            {vxi11::DeviceRemote, "remote: " + generic},
            {vxi11::DeviceLocal, "local: " + generic},
            {vxi11::DeviceLock, "lock: link flags timeout"},
            {vxi11::DeviceUnlock, "unlock: link"},
            {vxi11::DestroyLink, "destroy: link"}};
        const QMap<std::uint32_t, QString> flags = {
            {vxi11::WaitLock, "wait"}, {vxi11::End, "END"}, {vxi11::TermCharSet, "terminated"}};
        wire::XdrReader from(call.arguments);
        QStringList text;
        for (const QString &field : layouts.value(call.procedure.procedure).split(' ')) {
            std::uint32_t word = 0;
            std::string_view bytes;
            if (field.endsWith(':')) {
                text << field.chopped(1);
            } else if (field == "data") {
                from >> bytes;
                text << QString::fromLatin1(bytes.data(), int(bytes.size()));
            } else if ((from >> word).isOk() && word != 0) {
                const bool isAny = field == "client" || field == "timeout";
                const QString value = isAny ? field : field + " " + QString::number(word);
                text << (field == "flags" ? flags.value(word, "?") : value);
            }
        }
        return text.join(' ');
    }

    Script script;
    std::uint32_t receiveSize;
    QStringList received;
    std::atomic<bool> isEnding = false;
    std::thread thread;
};
