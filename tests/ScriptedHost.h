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

/// A host with its portmapper and its instrument at one port, which answers as the test tells it
/// to. It keeps a transcript of the numbers of the procedures and of their parameters, in which "t"
/// is any time-out but 0, and the client's own number: "10 t 0 0 inst0" (create_link), "11 0 t 0 8
/// *IDN?", "12 0 100 t 0 128 10".
class ScriptedHost
{
public:
    /// The bytes that come instead of the usual answer to a call; pieces go one by one. After a
    /// piece without bytes the connection is closed.
    using Script = std::function<QList<QByteArray>(const lan::RpcCall &call)>;

    /// At any port, unless one is given.
    explicit ScriptedHost(Script script, quint32 receiveSize = 1024, quint16 port = 0)
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

    quint16 port;

private:
    void serve(QTcpSocket &socket)
    {
        lan::RecordReader reader(1 << 25);
        while (socket.state() == QAbstractSocket::ConnectedState) {
            if (reader.read(socket) != lan::RecordReader::State::Complete) {
                socket.waitForReadyRead(1);
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

    /// To create_link, link 0; to a write, that all was taken. Others look at the first word only.
    [[nodiscard]] QList<QByteArray> usual(const lan::RpcCall &call) const
    {
        if (call.procedure.program == lan::portmapperProgram) {
            return reply(call, lan::xdrWords({port}));
        }
        const bool isWrite = call.procedure.procedure == lan::vxi11::DeviceWrite;
        QDataStream from(call.arguments);
        from.skipRawData(16);
        const int taken = isWrite ? lan::readOpaque(from, call.arguments).size() : 0;
        return reply(call, lan::xdrWords({0, quint32(taken), 0, receiveSize}));
    }

    void note(const lan::RpcCall &call)
    {
        if (call.procedure.program == lan::portmapperProgram) {
            return;
        }
        const quint32 procedure = call.procedure.procedure;
        static const QMap<quint32, int> wordsBeforeText = {{lan::vxi11::CreateLink, 3},
                                                           {lan::vxi11::DeviceWrite, 4}};
        static const QMap<quint32, int> timeouts = {{lan::vxi11::CreateLink, 0}, // the client's id
                                                    {lan::vxi11::DeviceWrite, 1},
                                                    {lan::vxi11::DeviceRead, 2},
                                                    {lan::vxi11::DeviceLock, 2}};
        const int words = wordsBeforeText.value(procedure, call.arguments.size() / 4);
        QDataStream from(call.arguments);
        QStringList entry = {QString::number(procedure)};
        for (int i = 0; i < words; ++i) {
            quint32 word = 0;
            from >> word;
            entry << (i == timeouts.value(procedure, 3) && word > 0 ? "t" : QString::number(word));
        }
        if (wordsBeforeText.contains(procedure)) {
            entry << lan::readOpaque(from, call.arguments);
        }
        transcript << entry.join(' ');
    }

    Script script;
    quint32 receiveSize;
    QStringList transcript;
    std::atomic<bool> isEnding = false;
    std::unique_ptr<QThread> thread;
};
