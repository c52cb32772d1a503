#pragma once

#include "lan/Portmapper.h"
#include "lan/Vxi11.h"
#include "lan/Xdr.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

/// A host with its portmapper and its instrument at one port, which answers as the test tells it
/// to. It keeps a transcript: "create 0 0 inst0", "write 0 END *IDN?", "read 0 100 10", "15 0";
/// with "without time-out" behind a call whose I/O time-out is 0.
class ScriptedHost
{
public:
    /// The bytes that come instead of the usual answer to a call; pieces go one by one. After a
    /// piece without bytes the connection is closed.
    using Script = std::function<QList<QByteArray>(const lan::RpcCall &call)>;

    explicit ScriptedHost(Script script, quint32 receiveSize = 1024)
        : script(std::move(script)), receiveSize(receiveSize)
    {
        std::mutex starting;
        starting.lock();
        thread.reset(QThread::create([this, &starting] {
            QTcpServer server;
            server.listen(QHostAddress::LocalHost);
            port = server.serverPort();
            starting.unlock();
            while (!isEnding) {
                server.waitForNewConnection(10);
                const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
                if (socket != nullptr) {
                    serve(*socket);
                }
            }
        }));
        thread->start();
        starting.lock();
        starting.unlock();
    }
    ~ScriptedHost() { finish(); }
    ScriptedHost(const ScriptedHost &) = delete;
    ScriptedHost &operator=(const ScriptedHost &) = delete;

    /// Serve the connections to their end, and what came over them.
    QStringList finish()
    {
        isEnding = true;
        thread->wait();
        return transcript;
    }

    static QList<QByteArray> reply(const lan::RpcCall &call, const QByteArray &results,
                                   lan::RpcOutcome outcome = lan::RpcOutcome::Success)
    {
        return {lan::asRecord(lan::encoded(lan::RpcReply{call.xid, outcome, results}))};
    }
    static QList<QByteArray> data(const lan::RpcCall &call, const QByteArray &bytes, quint32 reason,
                                  quint32 error = 0)
    {
        return reply(call, lan::xdrWords({error, reason}) +
                               lan::xdrOpaque(bytes.constData(), bytes.size()));
    }

    quint16 port = 0;

private:
    void serve(QTcpSocket &socket)
    {
        lan::RecordReader reader(1 << 25);
        while (socket.state() == QAbstractSocket::ConnectedState) {
            if (reader.read(socket) != lan::RecordReader::State::Complete) {
                socket.waitForReadyRead(10);
                continue;
            }
            const QByteArray record = reader.take();
            const lan::RpcCall call = lan::decodedCall(record).value();
            note(call);
            QList<QByteArray> pieces = script(call);
            for (const QByteArray &piece : pieces.isEmpty() ? usual(call) : pieces) {
                if (piece.isEmpty()) {
                    return;
                }
                socket.write(piece);
                if (!socket.waitForBytesWritten(1000)) {
                    return;
                }
                QThread::msleep(pieces.size() > 1 ? 5 : 0);
            }
        }
    }

    [[nodiscard]] QList<QByteArray> usual(const lan::RpcCall &call) const
    {
        QDataStream from(call.arguments);
        from.skipRawData(16);
        switch (call.procedure.procedure) {
        case lan::getPortProcedure:
            return reply(call, lan::xdrWords({port}));
        case lan::vxi11::CreateLink:
            return reply(call, lan::xdrWords({0, 0, 0, receiveSize}));
        case lan::vxi11::DeviceWrite:
            return reply(call,
                         lan::xdrWords({0, quint32(lan::readOpaque(from, call.arguments).size())}));
        default:
            return reply(call, lan::xdrWords({0}));
        }
    }

    void note(const lan::RpcCall &call)
    {
        QDataStream from(call.arguments);
        quint32 id = 0;
        std::array<quint32, 5> words{};
        from >> id >> words[0] >> words[1];
        QString entry = QString("%1 %2").arg(call.procedure.procedure).arg(id);
        quint32 timeout = words[1];
        switch (call.procedure.procedure) {
        case lan::getPortProcedure:
            return;
        case lan::vxi11::CreateLink:
            timeout = 1;
            entry = QString("create %1 %2 ").arg(words[0]).arg(words[1]) +
                    lan::readOpaque(from, call.arguments);
            break;
        case lan::vxi11::DeviceWrite:
            timeout = words[0];
            from >> words[2];
            entry = QString("write %1 ").arg(id) + (words[2] == lan::vxi11::End ? "END " : "") +
                    lan::readOpaque(from, call.arguments);
            break;
        case lan::vxi11::DeviceRead:
            from >> words[2] >> words[3] >> words[4];
            entry = QString("read %1 %2").arg(id).arg(words[0]) +
                    (words[3] == lan::vxi11::TermCharSet ? QString(" %1").arg(words[4]) : "");
            break;
        case lan::vxi11::DeviceLock:
            timeout = 1;
            entry += words[0] == lan::vxi11::WaitLock ? " waits" : "";
            break;
        case lan::vxi11::DeviceUnlock:
        case lan::vxi11::DestroyLink:
            timeout = 1;
            break;
        default:
            from >> timeout;
        }
        transcript << entry + (timeout == 0 ? " without time-out" : "");
    }

    Script script;
    quint32 receiveSize;
    QStringList transcript;
    std::atomic<bool> isEnding = false;
    std::unique_ptr<QThread> thread;
};
