#pragma once

#include "visa/wire/Portmapper.h"
#include "visa/wire/RpcMessage.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <QMap>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

/// A host with its portmapper and its instrument at one port, which answers as the test tells it
/// to. It keeps a transcript of the numbers of the procedures and of their parameters, in which "t"
/// is any time-out but 0, and the client's own number: "10 t 0 0 inst0" (create_link), "11 0 t 0 8
/// *IDN?", "12 0 100 t 0 128 10".
class ScriptedHost
{
public:
    /// The bytes that come instead of the usual answer to a call; pieces go one by one. After a
    /// piece without bytes the connection is closed.
    using Script = std::function<std::vector<std::string>(const wire::RpcCall &call)>;

    /// At any port, unless one is given.
    explicit ScriptedHost(Script script, std::uint32_t receiveSize = 1024, std::uint16_t port = 0)
        : port(port), script(std::move(script)), receiveSize(receiveSize)
    {
        QSemaphore listening;
        thread.reset(QThread::create([this, &listening] {
            QTcpServer server;
            server.listen(QHostAddress::LocalHost, this->port);
            this->port = server.serverPort();
            listening.release();
            while (!isEnding) {
                server.waitForNewConnection(1);
                const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
                if (socket != nullptr) {
                    serve(*socket);
                }
            }
        }));
        thread->start();
        listening.acquire();
    }
    ~ScriptedHost() { finish(); }

    /// Serve the connections to their end, and what came over them.
    QStringList finish()
    {
        isEnding = true;
        thread->wait();
        return transcript;
    }

    static std::vector<std::string> reply(const wire::RpcCall &call, std::string_view results,
                                          wire::RpcOutcome outcome = wire::RpcOutcome::Success)
    {
        return {wire::asRecord(wire::encodedReply(call.xid, outcome, results))};
    }
    static std::vector<std::string> data(const wire::RpcCall &call, std::string_view bytes,
                                         std::uint32_t reason, std::uint32_t error = 0)
    {
        return reply(call, wire::xdrWords({error, reason}) + wire::xdrOpaque(bytes));
    }

    std::uint16_t port;

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
            note(call);
            std::vector<std::string> pieces = script(call);
            for (const std::string &piece : pieces.empty() ? usual(call) : pieces) {
                if (piece.empty()) {
                    return;
                }
                socket.write(piece.data(), static_cast<qint64>(piece.size()));
                if (!socket.waitForBytesWritten(1000)) {
                    return;
                }
                QThread::msleep(pieces.size() > 1 ? 5 : 0);
            }
        }
    }

    /// To create_link, link 0; to a write, that all was taken. Others look at the first word only.
    [[nodiscard]] std::vector<std::string> usual(const wire::RpcCall &call) const
    {
        if (call.procedure.program == wire::portmapperProgram) {
            return reply(call, wire::xdrWords({port}));
        }
        const bool isWrite = call.procedure.procedure == wire::vxi11::DeviceWrite;
        std::string_view written;
        if (isWrite) {
            wire::XdrReader(call.arguments.substr(16)) >> written;
        }
        return reply(call, wire::xdrWords({0, std::uint32_t(written.size()), 0, receiveSize}));
    }

    void note(const wire::RpcCall &call)
    {
        if (call.procedure.program == wire::portmapperProgram) {
            return;
        }
        const std::uint32_t procedure = call.procedure.procedure;
        static const QMap<std::uint32_t, int> wordsBeforeText = {{wire::vxi11::CreateLink, 3},
                                                                 {wire::vxi11::DeviceWrite, 4}};
        static const QMap<std::uint32_t, int> timeouts = {
            {wire::vxi11::CreateLink, 0}, // the client's id
            {wire::vxi11::DeviceWrite, 1},
            {wire::vxi11::DeviceRead, 2},
            {wire::vxi11::DeviceLock, 2}};
        const int words = wordsBeforeText.value(procedure, int(call.arguments.size() / 4));
        wire::XdrReader from(call.arguments);
        QStringList entry = {QString::number(procedure)};
        for (int i = 0; i < words; ++i) {
            std::uint32_t word = 0;
            from >> word;
            entry << (i == timeouts.value(procedure, 3) && word > 0 ? "t" : QString::number(word));
        }
        if (wordsBeforeText.contains(procedure)) {
            std::string_view bytes;
            from >> bytes;
            entry << QString::fromLatin1(bytes.data(), int(bytes.size()));
        }
        transcript << entry.join(' ');
    }

    Script script;
    std::uint32_t receiveSize;
    QStringList transcript;
    std::atomic<bool> isEnding = false;
    std::unique_ptr<QThread> thread;
};
