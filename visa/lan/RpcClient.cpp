#include "visa/lan/RpcClient.h"

#include "visa/wire/Portmapper.h"
#include "visa/wire/Xdr.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

namespace lan {

using visa::millisecondsUntil;
using wire::RpcOutcome;

namespace {

/// No device sends a longer answer. A record that announces more is an error.
constexpr std::size_t recordLimit = 64 << 20;

/// A connection is lost when the host owes an acknowledgement and has sent none for so long.
constexpr int lostAfter = 10 * 1000;   // ms
constexpr int lostCheckInterval = 200; // ms

#ifdef __APPLE__
constexpr int sendFlags = 0; // macOS: the socket has an option instead
#else
constexpr int sendFlags = MSG_NOSIGNAL;
#endif

/// Make a socket. It never blocks, child processes do not inherit it, it sends small calls at once,
/// and it probes an idle connection every other second.
int openSocket(int family)
{
    const int socket = ::socket(family, SOCK_STREAM, 0);
    ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    ::fcntl(socket, F_SETFL, O_NONBLOCK);
    const auto set = [=](int level, int option, int value) {
        ::setsockopt(socket, level, option, &value, sizeof value);
    };
    set(IPPROTO_TCP, TCP_NODELAY, 1);
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPINTVL, 2); // s
    set(IPPROTO_TCP, TCP_KEEPCNT, 4);
#ifdef __APPLE__
    set(SOL_SOCKET, SO_NOSIGPIPE, 1);
    set(IPPROTO_TCP, TCP_KEEPALIVE, 2); // s
    set(IPPROTO_TCP, TCP_RXT_CONNDROPTIME, lostAfter / 1000);
#else
    set(IPPROTO_TCP, TCP_KEEPIDLE, 2); // s
#endif
    return socket;
}

/// Returns whether the host owes an acknowledgement and has sent none for too long.
/// TCP_USER_TIMEOUT would not do: it counts from the oldest byte that is not acknowledged. When a
/// cable is out, a program notices one lost instrument after the other, and only then writes to the
/// next one. Each would then take 10 s more.
bool isLost([[maybe_unused]] int socket)
{
#ifdef __linux__
    tcp_info info{};
    socklen_t size = sizeof info;
    return ::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 &&
           info.tcpi_state == TCP_ESTABLISHED && info.tcpi_unacked + info.tcpi_probes > 0 &&
           info.tcpi_last_ack_recv > lostAfter;
#else
    return false;                      // macOS gives up by itself (TCP_RXT_CONNDROPTIME)
#endif
}

ViStatus statusOf(RpcOutcome outcome)
{
    if (outcome == RpcOutcome::Success) {
        return VI_SUCCESS;
    }
    const bool isMissing = outcome <= RpcOutcome::ProcedureUnavailable; // the program or procedure
    return isMissing ? VI_ERROR_NSUP_OPER : VI_ERROR_IO;
}

} // namespace

RpcClient::RpcClient() : reader(recordLimit), xid(std::random_device()()) {}

RpcClient::~RpcClient()
{
    close(VI_SUCCESS);
}

ViStatus RpcClient::connectTo(const std::string &address, std::uint16_t port,
                              visa::Deadline deadline)
{
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *list = nullptr;
    if (::getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) {
        return VI_ERROR_RSRC_NFOUND;
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> place(list, &::freeaddrinfo);
    socket = openSocket(place->ai_family);
    if (!isConnected()) {
        return VI_ERROR_ALLOC;
    }
    int error = ::connect(socket, place->ai_addr, place->ai_addrlen) == 0 ? 0 : errno;
    if (error == EINPROGRESS) {
        if (wait(POLLOUT, deadline) != VI_SUCCESS) {
            return close(VI_ERROR_TMO);
        }
        socklen_t size = sizeof error;
        ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
    }
    return error == 0 ? VI_SUCCESS : close(VI_ERROR_RSRC_NFOUND);
}

ViStatus RpcClient::call(const wire::RpcProcedure &procedure, std::string_view arguments,
                         visa::Deadline deadline, std::string_view *results)
{
    if (!isConnected()) {
        return VI_ERROR_CONN_LOST;
    }
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
            return VI_ERROR_IO;
        }
        if (reply->xid == xid) { // others answer earlier calls, which have timed out
            *results = reply->results;
            return statusOf(reply->outcome);
        }
    }
    return status;
}

ViStatus RpcClient::send(std::string_view record, visa::Deadline deadline)
{
    while (!record.empty()) {
        const ssize_t sent = ::send(socket, record.data(), record.size(), sendFlags);
        if (sent >= 0) {
            record.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (errno != EAGAIN && errno != EINTR) {
            return close(VI_ERROR_CONN_LOST);
        }
        const ViStatus status = wait(POLLOUT, deadline);
        if (status != VI_SUCCESS) {
            return close(status); // the host may have received half a call
        }
    }
    return VI_SUCCESS;
}

ViStatus RpcClient::receive(visa::Deadline deadline)
{
    for (;;) {
        // Some hosts never stop sending. So the deadline holds for all records and all their bytes.
        const ViStatus status = wait(POLLIN, deadline);
        if (status != VI_SUCCESS) {
            return status == VI_ERROR_TMO ? status : close(status);
        }
        bool hasEnded = false;
        const auto source = [&](char *to, std::size_t size) -> std::ptrdiff_t {
            if (millisecondsUntil(deadline, 1) == 0) {
                return 0;
            }
            const ssize_t got = ::recv(socket, to, size, 0);
            hasEnded = got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR);
            return got;
        };
        switch (reader.read(source)) {
        case wire::RecordReader::State::Complete:
            return VI_SUCCESS;
        case wire::RecordReader::State::TooLong:
            return close(VI_ERROR_IO);
        case wire::RecordReader::State::Incomplete:
            break;
        }
        if (hasEnded) {
            return close(VI_ERROR_CONN_LOST);
        }
    }
}

/// Wait until bytes can be received or sent. Returns 0, VI_ERROR_TMO or VI_ERROR_CONN_LOST.
ViStatus RpcClient::wait(short events, visa::Deadline deadline) const
{
    pollfd waited{socket, events, 0};
    for (;;) {
        const int left = millisecondsUntil(deadline, lostCheckInterval);
        if (left == 0) {
            return VI_ERROR_TMO;
        }
        if (::poll(&waited, 1, left) > 0) {
            return VI_SUCCESS;
        }
        if (isLost(socket)) {
            return VI_ERROR_CONN_LOST;
        }
    }
}

/// Close the connection for the reason that is returned.
ViStatus RpcClient::close(ViStatus status)
{
    if (socket >= 0) {
        ::close(socket);
        socket = -1;
    }
    return status;
}

ViStatus findPort(const std::string &address, std::uint16_t mapperPort,
                  const wire::RpcProcedure &program, visa::Deadline deadline, std::uint16_t *port)
{
    RpcClient mapper;
    ViStatus status = mapper.connectTo(address, mapperPort, deadline);
    if (status != VI_SUCCESS) {
        return status;
    }
    std::string_view results;
    status = mapper.call({wire::portmapperProgram, wire::portmapperVersion, wire::getPortProcedure},
                         wire::xdrWords({program.program, program.version, wire::tcpProtocol, 0}),
                         deadline, &results);
    if (status != VI_SUCCESS) {
        return status == VI_ERROR_TMO ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
    }
    std::uint32_t found = 0; // also the portmapper's answer when there is no such program
    wire::XdrReader(results) >> found;
    *port = static_cast<std::uint16_t>(found);
    return found > 0 && found <= std::numeric_limits<std::uint16_t>::max() ? VI_SUCCESS
                                                                           : VI_ERROR_RSRC_NFOUND;
}

} // namespace lan
