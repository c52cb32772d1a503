#pragma once

#include "visa/wire/Portmapper.h"
#include "visa/wire/RpcMessage.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <functional>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

/// Returns the address of a port of this host.
inline sockaddr_in addressAt(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// A host whose portmapper and VXI-11 instrument share a port and answer as a script says. It
/// serves each connection in a thread of its own.
class ScriptedHost
{
public:
    /// Bytes that are sent one piece after the other. The connection is closed at an empty one.
    using Pieces = std::vector<std::string>;
    /// Returns what is sent instead of the usual answer to a call; nothing for the usual one.
    using Script = std::function<Pieces(const wire::RpcCall &call)>;

    /// Listen at a port; at any free one for 0. The instrument takes receiveSize bytes of a write.
    explicit ScriptedHost(const Script &script, std::uint32_t receiveSize, std::uint16_t at = 0)
    {
        sockaddr_in address = addressAt(at);
        socklen_t size = sizeof address;
        auto *const place = reinterpret_cast<sockaddr *>(&address);
        const int on = 1; // also for the sockets that are accepted
        ::setsockopt(listener, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        if (::bind(listener, place, size) != 0 || ::listen(listener, 5) != 0 ||
            ::getsockname(listener, place, &size) != 0) {
            return;
        }
        port = ntohs(address.sin_port);
        accepting = std::thread([=] {
            int socket = -1;
            while ((socket = ::accept(listener, nullptr, nullptr)) >= 0) {
                connections.emplace_back([=] {
                    serve(socket, script, receiveSize);
                    ::close(socket);
                });
            }
        });
    }
    ScriptedHost(const ScriptedHost &) = delete;
    ScriptedHost &operator=(const ScriptedHost &) = delete;
    /// Wait until the clients have closed their connections.
    ~ScriptedHost()
    {
        ::shutdown(listener, SHUT_RDWR);
        if (accepting.joinable()) {
            accepting.join();
        }
        for (std::thread &connection : connections) {
            connection.join();
        }
        ::close(listener);
    }

    std::uint16_t port = 0; ///< 0 when the host could not listen

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

private:
    void serve(int socket, const Script &script, std::uint32_t receiveSize) const
    {
        wire::RecordReader reader(1 << 25);
        const auto source = [=](char *to, std::size_t size) { return ::recv(socket, to, size, 0); };
        while (reader.read(source) == wire::RecordReader::State::Complete) {
            const std::string record = reader.take();
            const wire::RpcCall call = wire::decodedCall(record).value();
            Pieces pieces = script(call);
            if (pieces.empty()) {
                pieces = usual(call, receiveSize);
            }
            for (const std::string &piece : pieces) {
                if (piece.empty()) {
                    return;
                }
                if (&piece != &pieces.front()) { // each arrives on its own
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
                }
                if (::send(socket, piece.data(), piece.size(), MSG_NOSIGNAL) < 0) {
                    return;
                }
            }
        }
    }

    /// Returns the usual answer to a call: a link with number 0, all taken of a write, no error.
    [[nodiscard]] Pieces usual(const wire::RpcCall &call, std::uint32_t receiveSize) const
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

    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    std::thread accepting;
    std::vector<std::thread> connections;
};
