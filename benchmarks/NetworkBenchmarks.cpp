// What a query and a block cost over VXI-11, beside the same bytes through bare sockets and other
// clients; rows of the table of benchmark.sh. Client and host take turns on one CPU, by taskset.
// It needs port 111 of a network of its own. Usage: network-benchmarks LIBORVANTA-VISA

#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "tests/ScriptedHost.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

namespace vxi11 = wire::vxi11;

/// A query, how often it is asked in a round, and what answers it.
struct Query
{
    const char *name;
    std::string command;
    int count;
    std::string answer;
};

const std::vector<Query> queries = {{"query", "*IDN?", 500, std::string(28, 'a')},
                                    {"block of 80 kB", "DATA?", 50, std::string(80008, 'b')}};

/// Answers a read to the query that was written last. The records are made once, as hosts have them
/// ready.
ScriptedHost::Pieces answer(const wire::RpcCall &call)
{
    static const std::vector<std::string> records = {
        ScriptedHost::data(call, queries[0].answer, vxi11::EndIndicator).front(),
        ScriptedHost::data(call, queries[1].answer, vxi11::EndIndicator).front()};
    static std::size_t asked = 0;
    if (call.procedure.procedure == vxi11::DeviceWrite) {
        asked = call.arguments.find(queries[1].command) != std::string_view::npos ? 1 : 0;
    }
    if (call.procedure.procedure != vxi11::DeviceRead) {
        return {};
    }
    ScriptedHost::Pieces pieces(1, records[asked]);
    pieces.front().replace(4, 4, wire::xdrWords({call.xid}));
    return pieces;
}

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
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Send and receive by turns, as a client or as a host, as many bytes as a query does: two calls
/// and two answers, the last of which holds the text.
bool exchangeBytes(int socket, bool isHost, std::size_t textSize)
{
    thread_local std::string bytes(100000, '\0');
    bool isSender = !isHost;
    for (const std::size_t size :
         {std::size_t(72), std::size_t(36), std::size_t(68), 40 + textSize}) {
        const ssize_t moved = isSender ? ::send(socket, bytes.data(), size, 0)
                                       : ::recv(socket, bytes.data(), size, MSG_WAITALL);
        if (moved <= 0) {
            return false;
        }
        isSender = !isSender;
    }
    return true;
}

/// Returns the number that a command prints last; 0 when it prints none.
double printedBy(const std::string &command)
{
    double number = 0.0;
    std::FILE *const output = ::popen((command + " | grep -oE '[0-9]+\\.[0-9]+'").c_str(), "r");
    while (output != nullptr && std::fscanf(output, "%lf", &number) == 1) {
    }
    return output != nullptr && ::pclose(output) == 0 ? number : 0.0;
}

/// A program that prints the microseconds of a query; its argument is the command.
const std::string pyvisa = R"(/usr/bin/python3 -c '
import pyvisa, statistics, sys, timeit
device = pyvisa.ResourceManager("@py").open_resource("TCPIP::127.0.0.1::INSTR")
def query(): device.write(sys.argv[1]); device.read_raw(100000)
print(1e6 * statistics.median(timeit.repeat(query, number=100)) / 100)' )";

void printRow(const std::string &what, double cost, double floor)
{
    std::printf("%-44s %12.1f %12.1f %7.2f\n", what.c_str(), cost, floor, cost / floor);
}

} // namespace

int main(int argc, char *argv[])
{
    setVisaLibraryPaths({argc == 2 ? argv[1] : ""});
    const ScriptedHost host(answer, 1 << 16, wire::portmapperPort);
    ViSession manager = 0;
    ViSession session = 0;
    if (host.port == 0 || !iaVisaDll_Init() || iaOpenDefaultRM(&manager) != VI_SUCCESS ||
        iaOpen(manager, "TCPIP::127.0.0.1::INSTR", VI_NO_LOCK, 5000, &session) != VI_SUCCESS) {
        std::fputs("network-benchmarks: no library, or no port 111\n", stderr);
        std::_Exit(1);
    }
    std::string buffer(100000, '\0');
    for (std::size_t i = 0; i < queries.size(); ++i) {
        const std::size_t textSize = queries[i].answer.size();
        const TcpHost bareHost(0, [=](int socket) {
            while (exchangeBytes(socket, true, textSize)) {
            }
        });
        const int bare = ::socket(AF_INET, SOCK_STREAM, 0);
        const sockaddr_in address = addressAt(bareHost.port);
        if (::connect(bare, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
            return 1;
        }
        std::string command = queries[i].command + "\n";
        const auto ask = [&] {
            ViUInt32 count = 0;
            iaWrite(session, reinterpret_cast<ViByte *>(command.data()),
                    static_cast<ViUInt32>(command.size()), nullptr);
            iaRead(session, reinterpret_cast<ViByte *>(buffer.data()),
                   static_cast<ViUInt32>(buffer.size()), &count);
            if (count != textSize) {
                std::fputs("network-benchmarks: a wrong answer\n", stderr);
                std::_Exit(1);
            }
        };
        std::vector<double> costs;
        std::vector<double> floors;
        for (int round = 0; round < 25; ++round) { // in turns, so that other load hits both alike
            costs.push_back(microseconds(queries[i].count, ask));
            floors.push_back(
                microseconds(queries[i].count, [=] { exchangeBytes(bare, false, textSize); }));
        }
        const std::string name = queries[i].name + std::string(" over VXI-11");
        const double floor = median(floors);
        printRow(name, median(costs), floor);
        printRow(name + ", PyVISA-py", printedBy(pyvisa + queries[i].command), floor);
        if (i == 0) {
            const double rate = printedBy("lxi benchmark --address 127.0.0.1 --count 2000");
            printRow(name + ", lxi", 1e6 / rate, floor);
        }
        ::close(bare); // the host waits for it
    }
    iaClose(manager); // the same
}
