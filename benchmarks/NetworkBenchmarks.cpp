// What a query and a block cost over VXI-11, beside the same bytes through a bare socket. Run it in
// a network of its own, since it listens at port 111. Usage: network-benchmarks LIBRARY

#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "tests/ScriptedHost.h"

#include <benchmark/benchmark.h>

namespace {

namespace vxi11 = wire::vxi11;

const std::string idnAnswer(28, 'a');
const std::string dataAnswer(80008, 'b');

/// Answers a read to the query that was written last. The answers are encoded once, so that the
/// benchmark does not measure that.
ScriptedHost::Pieces answer(const wire::RpcCall &call)
{
    static const std::string idn = ScriptedHost::data(call, idnAnswer, vxi11::EndIndicator).front();
    static const std::string data =
        ScriptedHost::data(call, dataAnswer, vxi11::EndIndicator).front();
    static bool isIdn = false;
    if (call.procedure.procedure == vxi11::DeviceWrite) {
        isIdn = call.arguments.find("*IDN?") != std::string_view::npos;
    }
    if (call.procedure.procedure != vxi11::DeviceRead) {
        return {};
    }
    ScriptedHost::Pieces pieces(1, isIdn ? idn : data);
    pieces.front().replace(4, 4, wire::xdrWords({call.xid}));
    return pieces;
}

void overVxi11(benchmark::State &state, const char *command, const std::string &expected)
{
    ViSession manager = 0;
    ViSession session = 0;
    iaOpenDefaultRM(&manager);
    iaOpen(manager, "TCPIP::127.0.0.1::INSTR", VI_NO_LOCK, 5000, &session);
    std::string buffer(100000, '\0');
    ViUInt32 count = 0;
    for (auto _ : state) {
        iaPrintf(session, command);
        iaRead(session, reinterpret_cast<ViByte *>(buffer.data()),
               static_cast<ViUInt32>(buffer.size()), &count);
    }
    iaClose(manager);
    if (count != expected.size()) {
        state.SkipWithError("a wrong answer");
    }
}

/// The floor: the same two calls and answers through a bare socket.
void overVxi11Floor(benchmark::State &state, const std::string &command,
                    const std::string &expected)
{
    const auto callOf = [](vxi11::Procedure procedure, const std::string &arguments) {
        return wire::asRecord(
            wire::encodedCall(1, {vxi11::coreProgram, vxi11::coreVersion, procedure}, arguments));
    };
    const std::string write =
        callOf(vxi11::DeviceWrite, wire::xdrWords({0, 0, 0, 0}) + wire::xdrOpaque(command));
    const std::string read = callOf(vxi11::DeviceRead, wire::xdrWords({0, 0, 0, 0, 0, 0}));
    const sockaddr_in address = addressAt(wire::portmapperPort);
    const int client = ::socket(AF_INET, SOCK_STREAM, 0);
    if (::connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        state.SkipWithError("no connection");
    }
    std::string buffer(100000, '\0');
    for (auto _ : state) {
        ::send(client, write.data(), write.size(), MSG_NOSIGNAL);
        ::recv(client, buffer.data(), 44, MSG_WAITALL); // 11 words
        ::send(client, read.data(), read.size(), MSG_NOSIGNAL);
        ::recv(client, buffer.data(), 40 + expected.size(), MSG_WAITALL);
    }
    ::close(client);
}

BENCHMARK_CAPTURE(overVxi11, query, "*IDN?\n", idnAnswer)->UseRealTime();
BENCHMARK_CAPTURE(overVxi11Floor, query, "*IDN?\n", idnAnswer)->UseRealTime();
BENCHMARK_CAPTURE(overVxi11, block of 80 kB, "DATA?\n", dataAnswer)->UseRealTime();
BENCHMARK_CAPTURE(overVxi11Floor, block of 80 kB, "DATA?\n", dataAnswer)->UseRealTime();

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    setVisaLibraryPaths({argc == 2 ? argv[1] : ""});
    const ScriptedHost host(answer, 1 << 16, wire::portmapperPort);
    if (host.port == 0 || !iaVisaDll_Init()) {
        return 1; // port 111 is taken or needs a privilege, or there is no library
    }
    benchmark::RunSpecifiedBenchmarks();
}
