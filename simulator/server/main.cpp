#include "simulator/server/Server.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <cmath>

namespace {

/// Returns the options of the command line; nothing when one cannot be used.
std::optional<server::ServerOptions> optionsOf(const QCoreApplication &application)
{
    const server::ServerOptions usual;
    const QCommandLineOption address("address",
                                     "IPv4 address to listen at. On loopback each instrument has "
                                     "an address of its own, from the next one on; elsewhere all "
                                     "share this address, as inst0 to inst5.",
                                     "address", usual.address.toString());
    const QCommandLineOption port(
        "port", "Port of the raw SCPI sockets, at a shared address the first of six.", "port",
        QString::number(usual.scpiPort));
    const QCommandLineOption noPortmapper("no-portmapper",
                                          "Leave port 111 alone, and serve no VXI-11 clients.");
    const QCommandLineOption timeScale(
        "time-scale", "How long a second of the instruments lasts; 0: nothing takes time.",
        "seconds", "1");
    QCommandLineParser parser;
    parser.setApplicationDescription("A bench of simulated instruments on the network.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({address, port, noPortmapper, timeScale});
    parser.process(application);

    server::ServerOptions options;
    constexpr int lastScpiPort = 65530; // five more follow
    bool isScale = false;
    options.address = QHostAddress(parser.value(address));
    const int scpiPort = parser.value(port).toInt(); // 0 when the text is not a number
    options.scpiPort = static_cast<quint16>(scpiPort);
    options.hasVxi11 = !parser.isSet(noPortmapper);
    options.timeScale = parser.value(timeScale).toDouble(&isScale);
    const bool isIPv4 = options.address.protocol() == QAbstractSocket::IPv4Protocol;
    const bool isPort = scpiPort > 0 && scpiPort <= lastScpiPort;
    const bool isValid = isIPv4 && isPort && isScale && std::isfinite(options.timeScale) &&
                         options.timeScale >= 0 && parser.positionalArguments().isEmpty();
    return isValid ? std::optional(options) : std::nullopt;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("OrvantaBench");
    QCoreApplication::setApplicationVersion(ORVANTA_VERSION);
    QTextStream out(stdout);
    QTextStream err(stderr);

    const auto options = optionsOf(application);
    if (!options) {
        err << "Wrong arguments: --address needs an IPv4 address, --port a number from 1 to 65530, "
               "--time-scale a number that is not negative. There are no other arguments. See "
               "--help.\n";
        return 2;
    }
    server::Server server(*options);
    const QString error = server.start();
    if (!error.isEmpty()) {
        err << error << "\n";
        return 1;
    }
    out << server.resources().join("\n") << "\n"
        << "Each answers BENCH:EVENT? with the true delays of the last event.\n";
    if (!options->address.isLoopback()) {
        out << "Anybody who reaches the address can use the bench: VXI-11 has neither passwords "
               "nor encryption.\n";
    }
    out.flush();
    return QCoreApplication::exec();
}
