#pragma once

#include "simulator/server/CoreCall.h"
#include "simulator/server/Laboratory.h"
#include "visa/wire/RpcMessage.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <map>
#include <memory>
#include <optional>

namespace server {

/// One client's connection to the core channel (VXI-11 1.0, B.6), with its links. It answers one
/// call after the other, and deletes itself when the client has gone.
class CoreChannel : public QObject
{
    Q_OBJECT

public:
    /// Serve a connection to the host where this device is "inst0"; null where none is.
    CoreChannel(QTcpSocket *socket, Laboratory &laboratory, Device *device);
    ~CoreChannel() override;

    /// Answer a call, also with an error; nothing while it is to wait. `began` is when it came.
    std::optional<std::string> answer(const wire::RpcCall &call, Clock::time_point began);

private:
    struct Link
    {
        explicit Link(Device &device) : device(device), client(device.instrument) {}
        Device &device;
        simulator::Client client;
    };
    /// What a call answers; nothing while it is to wait.
    using Results = std::optional<std::string>;

    void serve();
    Results results(const CoreCall &call, Clock::time_point began);
    Results createLink(const CoreCall &call, Clock::time_point began);
    std::string destroyLink(std::uint32_t id);
    static Results linkResults(const CoreCall &call, Link &link, Clock::time_point began);
    static Results read(const CoreCall &call, Link &link, Clock::time_point until);

    QTcpSocket *socket;
    Laboratory &laboratory;
    Device *ownDevice;
    wire::RecordReader reader;
    QTimer retry;
    std::optional<std::string> waiting; // a call
    Clock::time_point waitingSince;
    std::map<std::uint32_t, std::unique_ptr<Link>> links;
};

} // namespace server
