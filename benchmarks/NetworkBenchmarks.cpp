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

/// A query, how often it is asked in a round, and what a host answers.
struct Query
{
    Query(const char *name, std::string command, int count, std::size_t answerSize)
        : name(name),
          command(std::move(command)),
          count(count),
          answerSize(answerSize),
          readReply(
              wire::asRecord(wire::encodedReply(0, wire::RpcOutcome::Success,
                                                wire::xdrWords({0, vxi11::EndIndicator}) +
                                                    wire::xdrOpaque(std::string(answerSize, 'a')))))
    {
    }

    const char *name;
    std::string command;
    int count;
    std::size_t answerSize;
    std::string readReply; ///< the record that answers a read, made once: hosts have it ready
};

const std::vector<Query> queries = {{"query", "*IDN?\n", 500, 29},
                                    {"block of 80 kB", "DATA?\n", 50, 80008}};

/// Returns the microseconds of one of `count` calls of each kind: medians of rounds that alternate,
/// so that whatever else the machine does weighs on both.
template <typename... Call>
std::vector<double> microseconds(int count, Call... call)
{
    std::vector<std::vector<double>> kinds(sizeof...(call));
    const auto measure = [count](std::vector<double> *each, auto once) {
        const auto began = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i) {
            once();
        }
        const std::chrono::duration<double, std::micro> took =
            std::chrono::steady_clock::now() - began;
        each->push_back(took.count() / count);
    };
    for (int round = 0; round < rounds; ++round) {
        auto kind = kinds.begin();
        (measure(&*kind++, call), ...);
    }
    std::vector<double> medians;
    for (std::vector<double> &each : kinds) {
        std::nth_element(each.begin(), each.begin() + rounds / 2, each.end());
        medians.push_back(each[rounds / 2]);
    }
    return medians;
}

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int openSocket()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return socket;
}

/// Give every connection to a port to `serve`, in a thread of its own until the process ends.
template <typename Serve>
bool listenAt(std::uint16_t port, Serve serve)
{
    const int listener = openSocket();
    const sockaddr_in address = loopback(port);
    if (::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(listener, 5) != 0) {
        return false;
    }
    std::thread([listener, serve] {
        for (;;) {
            std::thread(serve, ::accept(listener, nullptr, nullptr)).detach();
        }
    }).detach();
    return true;
}

/// Serve the portmapper and an instrument.
void serveVxi11(int socket)
{
    wire::RecordReader reader(1 << 20);
    const auto source = [=](char *to, std::size_t size) { return ::recv(socket, to, size, 0); };
    std::string readReply;
    while (reader.read(source) == wire::RecordReader::State::Complete) {
        const std::string message = reader.take();
        const wire::RpcCall call = wire::decodedCall(message).value();
        std::string results = wire::xdrWords({0, 0, 0, 1 << 16}); // of create_link
        if (call.procedure.program == wire::portmapperProgram) {
            results = wire::xdrWords({wire::portmapperPort});
        } else if (call.procedure.procedure == vxi11::DeviceWrite) {
            std::string_view written;
            wire::XdrReader(call.arguments.substr(16)) >> written;
            readReply = queries[written.front() == '*' ? 0 : 1].readReply;
            results = wire::xdrWords({0, static_cast<std::uint32_t>(written.size())});
        }
        std::string record =
            wire::asRecord(wire::encodedReply(call.xid, wire::RpcOutcome::Success, results));
        if (call.procedure.procedure == vxi11::DeviceRead) {
            record = std::move(readReply.replace(4, 4, wire::xdrWords({call.xid})));
        }
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
    std::vector<char> bytes(queries.back().readReply.size());
    while (::recv(socket, bytes.data(), writeCallSize, MSG_WAITALL) > 0) {
        const Query &query = queries.at(static_cast<std::size_t>(bytes[0]));
        ::send(socket, bytes.data(), writeReplySize, 0);
        ::recv(socket, bytes.data(), readCallSize, MSG_WAITALL);
        ::send(socket, bytes.data(), query.readReply.size(), 0);
    }
    ::close(socket);
}

/// Have the bytes of a query served.
void exchangeBytes(int socket, std::size_t index)
{
    static std::vector<char> bytes(queries.back().readReply.size());
    bytes[0] = static_cast<char>(index);
    ::send(socket, bytes.data(), writeCallSize, 0);
    ::recv(socket, bytes.data(), writeReplySize, MSG_WAITALL);
    ::send(socket, bytes.data(), readCallSize, 0);
    ::recv(socket, bytes.data(), queries[index].readReply.size(), MSG_WAITALL);
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
    const std::string command = query.command.substr(0, query.command.size() - 1);
    const std::string count = std::to_string(query.count / 5);
    return printedBy("/usr/bin/python3 -c '\n"
                     "import pyvisa, statistics, timeit\n"
                     "opened = pyvisa.ResourceManager(\"@py\").open_resource("
                     "\"TCPIP::127.0.0.1::INSTR\", write_termination=\"\\n\")\n"
                     "def query(): opened.write(\"" +
                     command +
                     "\"); opened.read_raw(100000)\n"
                     "times = timeit.repeat(query, number=" +
                     count + ", repeat=15)\nprint(1e6 * statistics.median(times) / " + count +
                     ")'");
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
    ViSession manager = 0;
    ViSession session = 0;
    const int bare = openSocket();
    const sockaddr_in address = loopback(floorPort);
    if (!listenAt(wire::portmapperPort, serveVxi11) || !listenAt(floorPort, serveBytes) ||
        ::connect(bare, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        !iaVisaDll_Init() || iaOpenDefaultRM(&manager) != VI_SUCCESS ||
        iaOpen(manager, "TCPIP::127.0.0.1::INSTR", VI_NO_LOCK, 5000, &session) != VI_SUCCESS) {
        std::fputs("network-benchmarks: no library, or no port 111\n", stderr);
        return 1;
    }
    std::vector<ViByte> buffer(100000);
    bool isWell = true;
    for (std::size_t i = 0; i < queries.size(); ++i) {
        std::string command = queries[i].command;
        const auto ask = [&] {
            ViUInt32 count = 0;
            iaWrite(session, reinterpret_cast<unsigned char *>(command.data()),
                    static_cast<ViUInt32>(command.size()), &count);
            isWell = iaRead(session, buffer.data(), static_cast<ViUInt32>(buffer.size()), &count) ==
                         VI_SUCCESS &&
                     count == queries[i].answerSize && isWell;
        };
        const auto exchange = [&] { exchangeBytes(bare, i); };
        const std::vector<double> costs = microseconds(queries[i].count, ask, exchange);
        const double cost = costs[0];
        const double floor = costs[1];
        row(queries[i].name, "", cost, floor);
        row(queries[i].name, ", PyVISA-py", pyvisa(queries[i]), floor);
        if (i == 0) {
            const double rate = printedBy("lxi benchmark --address 127.0.0.1 --count 2000");
            row(queries[i].name, ", lxi", 1e6 / rate, floor);
        }
    }
    return isWell ? 0 : 1;
}
