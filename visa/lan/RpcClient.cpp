#include "visa/lan/RpcClient.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QRandomGenerator>

#include <algorithm>
#include <limits>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace lan {

using wire::RecordReader;
using wire::RpcOutcome;

namespace {

/// More than a device sends in one answer; what it announces beyond is nonsense.
constexpr std::size_t recordLimit = 64 << 20;

int wait(visa::Deadline deadline)
{
    return millisecondsUntil(deadline, std::numeric_limits<int>::max());
}

/// Have the system find out, while nobody calls, that the host is gone: after a minute.
void watch(QTcpSocket &socket)
{
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
#ifdef TCP_KEEPIDLE
    const auto set = [&](int option, int value) {
        ::setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, option, &value,
                     sizeof value);
    };
    set(TCP_KEEPIDLE, 30); // s
    set(TCP_KEEPINTVL, 10);
    set(TCP_KEEPCNT, 3);
#endif
}

} // namespace

int millisecondsUntil(visa::Deadline deadline, int limit)
{
    using std::chrono::milliseconds;
    const visa::Deadline now = std::chrono::steady_clock::now();
    if (deadline <= now) {
        return 0;
    }
    // Of a deadline that never comes not even the distance can be computed safely.
    const bool isNear = deadline < now + milliseconds(limit);
    return isNear ? static_cast<int>(std::chrono::ceil<milliseconds>(deadline - now).count())
                  : limit;
}

RpcClient::RpcClient() : reader(recordLimit), xid(QRandomGenerator::global()->generate())
{
    // Bound to no thread, the socket never listens to an event loop, which would read and close it
    // behind the back of a call in another thread. Nor does anybody listen to it.
    socket.moveToThread(nullptr);
    socket.blockSignals(true);
    socket.setProxy(QNetworkProxy::NoProxy);
}

ViStatus RpcClient::connectTo(const QHostAddress &address, std::uint16_t port,
                              visa::Deadline deadline)
{
    socket.connectToHost(address, port);
    if (!socket.waitForConnected(wait(deadline))) {
        const bool isLate = socket.error() == QAbstractSocket::SocketTimeoutError;
        socket.abort();
        return isLate ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
    }
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    watch(socket);
    return VI_SUCCESS;
}

ViStatus RpcClient::call(const wire::RpcProcedure &procedure, std::string_view arguments,
                         visa::Deadline deadline, std::string_view *results)
{
    ++xid;
    ViStatus status = send(wire::asRecord(wire::encodedCall(xid, procedure, arguments)), deadline);
    while (status == VI_SUCCESS) {
        status = receive(deadline);
        if (status != VI_SUCCESS) {
            break;
        }
        answer = reader.take();
        const std::optional<wire::RpcReply> reply = wire::decodedReply(answer);
        if (!reply) {
            status = VI_ERROR_IO;
        } else if (reply->xid == xid) { // others answer calls that were given up
            *results = reply->results;
            switch (reply->outcome) {
            case RpcOutcome::Success:
                return VI_SUCCESS;
            case RpcOutcome::ProgramUnavailable:
            case RpcOutcome::ProgramMismatch:
            case RpcOutcome::ProcedureUnavailable:
                return VI_ERROR_NSUP_OPER;
            case RpcOutcome::GarbageArguments:
            case RpcOutcome::SystemError:
                return VI_ERROR_IO;
            }
        }
    }
    return status;
}

ViStatus RpcClient::send(const std::string &record, visa::Deadline deadline)
{
    if (socket.state() != QAbstractSocket::ConnectedState) {
        return VI_ERROR_CONN_LOST;
    }
    socket.write(record.data(), static_cast<qint64>(record.size()));
    socket.flush();
    while (socket.bytesToWrite() > 0) {
        const int left = wait(deadline);
        if (left == 0 || !socket.waitForBytesWritten(left)) {
            const ViStatus status = left == 0 ? VI_ERROR_TMO : failure();
            socket.abort(); // half a call cannot be taken back
            return status;
        }
    }
    return VI_SUCCESS;
}

ViStatus RpcClient::receive(visa::Deadline deadline)
{
    for (;;) {
        const RecordReader::State state = reader.read([this](char *to, std::size_t size) {
            return socket.read(to, static_cast<qint64>(size));
        });
        if (state == RecordReader::State::TooLong) {
            socket.abort();
            return VI_ERROR_IO;
        }
        const int left = wait(deadline);
        // Looked at before the record: some hosts send old ones without an end.
        if (left == 0) {
            return VI_ERROR_TMO;
        }
        if (state == RecordReader::State::Complete) {
            return VI_SUCCESS;
        }
        if (!socket.waitForReadyRead(left)) {
            return failure();
        }
    }
}

/// Why waiting failed.
ViStatus RpcClient::failure()
{
    if (socket.error() == QAbstractSocket::SocketTimeoutError) {
        return VI_ERROR_TMO;
    }
    socket.abort();
    return VI_ERROR_CONN_LOST;
}

} // namespace lan
