#pragma once

#include "simulator/MessageExchange.h"
#include "simulator/server/Connection.h"
#include "simulator/server/CoreCall.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace server {

/// One client's connection to the core channel (VXI-11 1.0, B.6), with its links. It answers one
/// call after the other.
class CoreChannel : public RpcConnection
{
    Q_OBJECT

public:
    using Devices = std::vector<simulator::Device *>;

    /// Serve a socket of a host whose devices are "inst0", "inst1" and so on, in this order.
    CoreChannel(QTcpSocket *socket, SharedBench &shared, Devices numbered);
    ~CoreChannel() override;

    /// The results of a call, or the instant at which to try it again.
    using Answer = std::variant<std::string, Clock::time_point>;
    /// Try to answer a call, which came at the instant `began`.
    Answer answer(const CoreCall &call, Clock::time_point began);

private:
    bool serveNext() override;
    bool takeCall();
    [[nodiscard]] simulator::Device *find(std::string_view name) const;
    Answer createLink(const CoreCall &call, Clock::time_point began);

    SharedBench &shared;
    Devices numbered;
    std::string record; // with the bytes of the pending call
    std::uint32_t xid = 0;
    std::optional<CoreCall> pending; // the call that has no answer yet
    Clock::time_point pendingSince;
    std::map<std::uint32_t, std::unique_ptr<simulator::MessageExchange>> links;
};

} // namespace server
