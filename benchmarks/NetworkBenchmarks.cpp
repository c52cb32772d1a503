// What a query and a block cost over VXI-11, beside the same bytes through bare sockets and other
// clients; rows of the table of benchmark.sh. Client and host take turns on one CPU, by taskset.
// It needs port 111 of a network of its own. Usage: network-benchmarks LIBORVANTA-VISA

#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "visa/wire/Portmapper.h"
#include "visa/wire/RpcMessage.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

namespace vxi11 = wire::vxi11;

constexpr int rounds = 25;
constexpr std::uint16_t floorPort = 112;

/// A query, how often it is asked in a round, and what answers it.
struct Query
{
    const char *name;
    std::string command;
    int count;
    std::string answer;
};

const std::vector<Query> queries = {{"query", "*IDN?", 500, std::string(29, 'a')},
                                    {"block of 80 kB", "DATA?", 50, std::string(80008, 'b')}};

std::string readReply(const Query &query)
{
    return wire::asRecord(wire::encodedReply(0, wire::RpcOutcome::Success,
                                             wire::xdrWords({0, vxi11::EndIndicator}) +
                                                 wire::xdrOpaque(query.answer)));
}

/// The records that answer a read. They are made once, as hosts have them ready.
const std::vector<std::string> readReplies = {readReply(queries[0]), readReply(queries[1])};

/// Returns the microseconds of one of `count` calls.
template <typename Call>
double microseconds(int count, Call call)
{
    const auto began = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        call();
    }
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - began;
    return took.count() / count;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
    return values[rounds / 2];
}

/// Bind or connect a socket to a port of this host.
template <typename Call>
int openSocket(Call call, std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return call(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 ? socket
                                                                                           : -1;
}

/// Serve every connection to a port in a thread of its own, until the process ends.
bool listenAt(std::uint16_t port, void (*serve)(int socket))
{
    const int listener = openSocket(::bind, port);
    if (::listen(listener, 5) != 0) {
        return false;
    }
    std::thread([=] {
        for (;;) {
            std::thread(serve, ::accept(listener, nullptr, nullptr)).detach();
        }
    }).detach();
    return true;
}

/// Serve the portmapper and an instrument.
void serveVxi11(int socket)
{
    std::vector<std::string> replies = readReplies;
    std::string *reply = nullptr;
    wire::RecordReader reader(1 << 20);
    const auto source = [=](char *to, std::size_t size) { return ::recv(socket, to, size, 0); };
    while (reader.read(source) == wire::RecordReader::State::Complete) {
        const std::string message = reader.take();
        const wire::RpcCall call = wire::decodedCall(message).value();
        std::string results = wire::xdrWords({0, 0, 0, 1 << 16}); // of create_link
        if (call.procedure.program == wire::portmapperProgram) {
            results = wire::xdrWords({wire::portmapperPort});
        } else if (call.procedure.procedure == vxi11::DeviceWrite) {
            std::string_view written;
            wire::XdrReader(call.arguments.substr(16)) >> written;
            reply = &replies[written.front() == '*' ? 0 : 1];
            results = wire::xdrWords({0, static_cast<std::uint32_t>(written.size())});
        }
        std::string other =
            wire::asRecord(wire::encodedReply(call.xid, wire::RpcOutcome::Success, results));
        const bool isRead = call.procedure.procedure == vxi11::DeviceRead;
        const std::string &record =
            isRead ? reply->replace(4, 4, wire::xdrWords({call.xid})) : other;
        ::send(socket, record.data(), record.size(), 0);
    }
    ::close(socket);
}

// The records of a query: two calls, two answers.
constexpr std::size_t writeCallSize = 72;
constexpr std::size_t writeReplySize = 36;
constexpr std::size_t readCallSize = 68;

/// Serve as many bytes as a query takes. The first byte says which query it is.
void serveBytes(int socket)
{
    std::string bytes(100000, '\0');
    while (::recv(socket, bytes.data(), writeCallSize, MSG_WAITALL) > 0) {
        const std::size_t size = readReplies.at(std::size_t(bytes[0])).size();
        ::send(socket, bytes.data(), writeReplySize, 0);
        ::recv(socket, bytes.data(), readCallSize, MSG_WAITALL);
        ::send(socket, bytes.data(), size, 0);
    }
    ::close(socket);
}

/// Have the bytes of a query served.
void exchangeBytes(int socket, std::size_t index, std::string *bytes)
{
    bytes->front() = static_cast<char>(index);
    ::send(socket, bytes->data(), writeCallSize, 0);
    ::recv(socket, bytes->data(), writeReplySize, MSG_WAITALL);
    ::send(socket, bytes->data(), readCallSize, 0);
    ::recv(socket, bytes->data(), bytes->size(), MSG_WAITALL);
}

/// Returns the last number that a command prints; 0 when it prints none.
double printedBy(const std::string &command)
{
    double number = 0.0;
    std::FILE *const output =
        ::popen((command + " | grep -oE '[0-9]+\\.[0-9]+' | tail -n 1").c_str(), "r");
    if (output != nullptr && std::fscanf(output, "%lf", &number) != 1) {
        number = 0.0;
    }
    return output != nullptr && ::pclose(output) == 0 ? number : 0.0;
}

double pyvisa(const Query &query)
{
    return printedBy("/usr/bin/python3 -c '\n"
                     "import pyvisa, statistics, timeit\n"
                     "opened = pyvisa.ResourceManager(\"@py\").open_resource("
                     "\"TCPIP::127.0.0.1::INSTR\", write_termination=\"\\n\")\n"
                     "def query(): opened.write(\"" +
                     query.command +
                     "\"); opened.read_raw(100000)\n"
                     "print(1e6 * statistics.median(timeit.repeat(query, number=100)) / 100)'");
}

void row(const char *what, const char *client, double cost, double floor)
{
    const std::string name = std::string(what) + " over VXI-11" + client;
    std::printf("%-44s %12.1f %12.1f %7.2f\n", name.c_str(), cost, floor, cost / floor);
}

} // namespace

int main(int argc, char *argv[])
{
    setVisaLibraryPaths({argc == 2 ? argv[1] : ""});
    const bool isListening =
        listenAt(wire::portmapperPort, serveVxi11) && listenAt(floorPort, serveBytes);
    const int bare = openSocket(::connect, floorPort);
    ViSession manager = 0;
    ViSession session = 0;
    if (!isListening || !iaVisaDll_Init() || iaOpenDefaultRM(&manager) != VI_SUCCESS ||
        iaOpen(manager, "TCPIP::127.0.0.1::INSTR", VI_NO_LOCK, 5000, &session) != VI_SUCCESS) {
        std::fputs("network-benchmarks: no library, or no port 111\n", stderr);
        return 1;
    }
    bool isWell = true;
    for (std::size_t i = 0; i < queries.size(); ++i) {
        std::string command = queries[i].command + "\n";
        std::string buffer(100000, '\0');
        std::string bytes(readReplies[i].size(), '\0');
        const auto ask = [&] {
            ViUInt32 count = 0;
            iaWrite(session, reinterpret_cast<unsigned char *>(command.data()),
                    static_cast<ViUInt32>(command.size()), nullptr);
            isWell = iaRead(session, reinterpret_cast<unsigned char *>(buffer.data()),
                            static_cast<ViUInt32>(buffer.size()), &count) == VI_SUCCESS &&
                     count == queries[i].answer.size() && isWell;
        };
        std::vector<double> costs;
        std::vector<double> floors;
        for (int round = 0; round < rounds; ++round) { // in turns: both have the same company
            costs.push_back(microseconds(queries[i].count, ask));
            floors.push_back(
                microseconds(queries[i].count, [&] { exchangeBytes(bare, i, &bytes); }));
        }
        const double floor = median(floors);
        row(queries[i].name, "", median(costs), floor);
        row(queries[i].name, ", PyVISA-py", pyvisa(queries[i]), floor);
        if (i == 0) {
            const double rate = printedBy("lxi benchmark --address 127.0.0.1 --count 2000");
            row(queries[i].name, ", lxi", 1e6 / rate, floor);
        }
    }
    return isWell ? 0 : 1;
}
