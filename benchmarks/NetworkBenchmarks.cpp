// What a query and a block cost over VXI-11, beside the same bytes through a bare socket and other
// clients; rows of the table of benchmark.sh. It needs port 111 of a network of its own.
// Usage: network-benchmarks LIBORVANTA-VISA

#include "tests/ScriptedHost.h"
#include "visa/VisaTypes.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int rounds = 15;
const QByteArray blockQuery = "DATA?\n";
const QByteArray name(29, 'n');
const QByteArray block(80008, 'b');

/// Microseconds of one of `count` calls, the median of some rounds.
template <typename Call>
double microseconds(int count, Call call)
{
    std::vector<double> each;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < count; ++i) {
            call();
        }
        each.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e3 / count);
    }
    std::nth_element(each.begin(), each.begin() + rounds / 2, each.end());
    return each[rounds / 2];
}

/// A query through a bare socket.
double floorOf(int count, const QByteArray &answer)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *const place = reinterpret_cast<sockaddr *>(&address);
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    const int client = ::socket(AF_INET, SOCK_STREAM, 0);
    if (::bind(listener, place, size) != 0 || ::listen(listener, 1) != 0 ||
        ::getsockname(listener, place, &size) != 0 || ::connect(client, place, size) != 0) {
        return 0.0;
    }
    const std::unique_ptr<QThread> thread(QThread::create([listener, &answer] {
        const int peer = ::accept(listener, nullptr, nullptr);
        std::vector<char> query(100);
        while (::recv(peer, query.data(), query.size(), 0) > 0) {
            ::send(peer, answer.data(), static_cast<std::size_t>(answer.size()), 0);
        }
        ::close(peer);
    }));
    thread->start();
    std::vector<char> buffer(static_cast<std::size_t>(answer.size()));
    const double cost = microseconds(count, [&] {
        ::send(client, blockQuery.data(), static_cast<std::size_t>(blockQuery.size()), 0);
        ::recv(client, buffer.data(), buffer.size(), MSG_WAITALL);
    });
    ::close(client);
    thread->wait();
    ::close(listener);
    return cost;
}

/// The last number that a program prints; 0 when it does not.
double printedBy(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    const QString text = process.readAllStandardOutput();
    static const QRegularExpression number("([0-9]+\\.[0-9]+)[^0-9.]*$");
    return number.match(text).captured(1).toDouble();
}

double pyvisa(const QByteArray &query, int count)
{
    const QString script = "import pyvisa, statistics, timeit\n"
                           "opened = pyvisa.ResourceManager('@py').open_resource("
                           "'TCPIP::127.0.0.1::INSTR', write_termination='\\n')\n"
                           "def query(): opened.write('%1'); opened.read_raw(100000)\n"
                           "times = timeit.repeat(query, number=%2, repeat=%3)\n"
                           "print(1e6 * statistics.median(times) / %2)\n";
    return printedBy("/usr/bin/python3",
                     {"-c", script.arg(QString(query).trimmed()).arg(count).arg(rounds)});
}

void row(const char *what, double cost, double floor)
{
    std::printf("%-44s %12.1f %12.1f %7.2f\n", what, cost, floor, cost / floor);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QByteArray answer;
    const ScriptedHost host(
        [&](const wire::RpcCall &call) -> std::vector<std::string> {
            if (call.procedure.procedure == wire::vxi11::DeviceWrite) {
                answer = call.arguments.find("DATA?") != std::string_view::npos ? block : name;
            }
            return call.procedure.procedure == wire::vxi11::DeviceRead
                       ? ScriptedHost::data(call, answer.toStdString(), wire::vxi11::EndIndicator)
                       : std::vector<std::string>();
        },
        65536, wire::portmapperPort);

    QLibrary library(argc == 2 ? argv[1] : "");
    const auto openManager =
        reinterpret_cast<visa::OpenDefaultRM *>(library.resolve("viOpenDefaultRM"));
    const auto open = reinterpret_cast<visa::Open *>(library.resolve("viOpen"));
    const auto write = reinterpret_cast<visa::Write *>(library.resolve("viWrite"));
    const auto read = reinterpret_cast<visa::Read *>(library.resolve("viRead"));
    const auto close = reinterpret_cast<visa::Close *>(library.resolve("viClose"));
    ViSession manager = 0;
    ViSession session = 0;
    if (openManager == nullptr || openManager(&manager) != VI_SUCCESS ||
        open(manager, "TCPIP::127.0.0.1::INSTR", VI_NO_LOCK, 5000, &session) != VI_SUCCESS) {
        std::fputs("network-benchmarks: no library, or no port 111\n", stderr);
        return 1;
    }
    std::vector<ViByte> buffer(100000);
    bool isWell = true;
    const auto query = [&](const QByteArray &text, const QByteArray &expected) {
        ViUInt32 count = 0;
        write(session, reinterpret_cast<const ViByte *>(text.data()),
              static_cast<ViUInt32>(text.size()), &count);
        const ViStatus status =
            read(session, buffer.data(), static_cast<ViUInt32>(buffer.size()), &count);
        isWell = isWell && status == VI_SUCCESS && count == static_cast<ViUInt32>(expected.size());
    };
    const double queryCost = microseconds(500, [&] { query("*IDN?\n", name); });
    const double blockCost = microseconds(50, [&] { query(blockQuery, block); });
    close(session); // the host serves one client at a time
    const double queryFloor = floorOf(500, name);
    const double blockFloor = floorOf(50, block);
    row("query over VXI-11", queryCost, queryFloor);
    row("query over VXI-11, PyVISA-py", pyvisa("*IDN?", 100), queryFloor);
    const double rate =
        printedBy("lxi", {"benchmark", "--address", "127.0.0.1", "--count", "2000"});
    row("query over VXI-11, lxi", 1e6 / rate, queryFloor);
    row("block of 80 kB over VXI-11", blockCost, blockFloor);
    row("block of 80 kB over VXI-11, PyVISA-py", pyvisa("DATA?", 20), blockFloor);
    return isWell ? 0 : 1;
}
