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
/// to. It keeps a transcript of the numbers of the procedures and of their parameters, in which "t"
/// is any time-out but 0: "10 t 0 0 inst0" (create_link), "11 0 t 0 8 *IDN?", "12 0 100 t 0 128
/// 10".
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
        std::mutex starting;
        starting.lock();
        thread.reset(QThread::create([this, &starting] {
            QTcpServer server;
            server.listen(QHostAddress::LocalHost, this->port);
            this->port = server.serverPort();
            starting.unlock();
            while (!isEnding) {
                server.waitForNewConnection(1);
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
                if (pieces.size() > 1) {
                    QThread::msleep(5);
                }
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
        struct Form // of the parameters, before text
        {
            int words;
            int timeout; // which word it is
            bool hasText;
        };
        static const QMap<quint32, Form> forms = {
            {lan::vxi11::CreateLink, {3, -1, true}},    {lan::vxi11::DeviceWrite, {4, 1, true}},
            {lan::vxi11::DeviceRead, {6, 2, false}},    {lan::vxi11::DeviceLock, {2, -1, false}},
            {lan::vxi11::DeviceUnlock, {1, -1, false}}, {lan::vxi11::DestroyLink, {1, -1, false}}};
        const quint32 procedure = call.procedure.procedure;
        const Form form = forms.value(procedure, {4, 3, false});
        QDataStream from(call.arguments);
        QStringList entry = {QString::number(procedure)};
        for (int i = 0; i < form.words; ++i) {
            quint32 word = 0;
            from >> word;
            const bool isSomething =
                i == form.timeout || (procedure == lan::vxi11::CreateLink && i == 0);
            entry << (isSomething && word > 0 ? "t" : QString::number(word));
        }
        if (form.hasText) {
            entry << lan::readOpaque(from, call.arguments);
        }
        if (call.procedure.program != lan::portmapperProgram) {
            transcript << entry.join(' ');
        }
    }

    Script script;
    quint32 receiveSize;
    QStringList transcript;
    std::atomic<bool> isEnding = false;
    std::unique_ptr<QThread> thread;
};
