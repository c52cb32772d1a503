#include "simulator/server/CoreChannel.h"

#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <algorithm>
#include <utility>

namespace server {

using namespace wire::vxi11;
using simulator::Device;
using simulator::MessageExchange;
using wire::RpcOutcome;
using wire::xdrWords;
using Answer = CoreChannel::Answer;

namespace {

constexpr std::size_t callLimit = 1 << 20; // bytes
constexpr std::uint32_t receiveSize = 65536;

/// Returns the results of a procedure with an error code, which may be None. All other results are
/// 0 or empty (VXI-11 1.0, C.1).
std::string onlyError(Error code, std::uint32_t procedure)
{
    switch (procedure) {
    case CreateLink:
        return xdrWords({code, 0, 0, 0});
    case DeviceRead:
        return xdrWords({code, 0, 0});
    case DeviceWrite:
    case DeviceReadStb:
    case DeviceDoCmd:
        return xdrWords({code, 0});
    default:
        return xdrWords({code});
    }
}

/// Returns the answer to a call while another client has locked the device; nothing when the device
/// is free.
std::optional<Answer> answerIfLocked(const CoreCall &call, const Device &device,
                                     const MessageExchange *client, Clock::time_point began)
{
    const Clock::time_point now = Clock::now();
    const Clock::time_point freeAt = device.freeAt(client);
    if (now >= freeAt) {
        return std::nullopt;
    }
    const bool waits = (call.flags & WaitLock) != 0;
    const Clock::time_point until = waits ? device.timeOut(began, call.lockTimeout) : began;
    if (now < until) {
        return std::min(freeAt, until);
    }
    return onlyError(LockedByAnother, call.procedure);
}

Answer read(const CoreCall &call, MessageExchange &client, Clock::time_point began)
{
    const Clock::time_point until = client.device.timeOut(began, call.ioTimeout);
    const Clock::time_point retryAt = std::min(client.answerAt(), until);
    if (Clock::now() < retryAt) {
        return retryAt;
    }
    std::optional<char> termination;
    if ((call.flags & TermCharSet) != 0) {
        termination = static_cast<char>(call.terminator);
    }
    const auto part = client.read(call.requestSize, termination);
    if (!part) {
        return onlyError(IoTimeout, DeviceRead);
    }
    const std::uint32_t reason = (part->isLast ? EndIndicator : 0U) |
                                 (part->isTerminated ? TermChar : 0U) |
                                 (part->bytes.size() == call.requestSize ? RequestCount : 0U);
    return xdrWords({None, reason}) + wire::xdrOpaque(part->bytes);
}

/// Answer a call on a link. Except for DeviceUnlock, no other client may have locked the device.
Answer answerOn(MessageExchange &client, const CoreCall &call, Clock::time_point began)
{
    switch (call.procedure) {
    case DeviceWrite:
        client.write(call.data, (call.flags & End) != 0);
        return xdrWords({None, static_cast<std::uint32_t>(call.data.size())});
    case DeviceRead:
        return read(call, client, began);
    case DeviceReadStb:
        return xdrWords({None, client.statusByte()});
    case DeviceTrigger:
        client.trigger();
        break;
    case DeviceClear:
        client.clear();
        break;
    case DeviceLock:
        client.lock();
        break;
    case DeviceUnlock:
        return onlyError(client.unlock() ? None : NoLockHeld, DeviceUnlock);
    default: // DeviceRemote and DeviceLocal, without effect: there is no front panel
        break;
    }
    return onlyError(None, call.procedure);
}

} // namespace

CoreChannel::CoreChannel(QTcpSocket *socket, SharedBench &shared, Devices numbered)
    : RpcConnection(socket, callLimit), shared(shared), numbered(std::move(numbered))
{
    connect(&shared.changed, &QTimer::timeout, this, &CoreChannel::serve);
}

CoreChannel::~CoreChannel()
{
    shared.changed.start(); // its locks are released
}

bool CoreChannel::serveNext()
{
    if (!pending) {
        return takeCall();
    }
    const Answer answered = answer(*pending, pendingSince);
    if (const auto *retryAt = std::get_if<Clock::time_point>(&answered)) {
        serveAt(*retryAt);
        return false;
    }
    pending.reset();
    send(wire::encodedReply(xid, RpcOutcome::Success, std::get<std::string>(answered)));
    shared.changed.start();
    return true;
}

/// Take the next call. If the core channel does not have it, reply with the error. If it is not a
/// call at all, abort the connection. Returns false when there is no call.
bool CoreChannel::takeCall()
{
    std::optional<std::string> next = takeRecord();
    if (!next) {
        return false;
    }
    record = std::move(*next);
    const auto call = wire::decodedCall(record);
    if (!call) {
        socket->abort();
        return false;
    }
    xid = call->xid;
    const auto decoded = decodedCoreCall(*call);
    if (const auto *outcome = std::get_if<RpcOutcome>(&decoded)) {
        const bool isMismatch = *outcome == RpcOutcome::ProgramMismatch;
        send(wire::encodedReply(xid, *outcome,
                                isMismatch ? xdrWords({coreVersion, coreVersion}) : ""));
        return true;
    }
    pending = std::get<CoreCall>(decoded);
    pendingSince = Clock::now();
    return true;
}

Answer CoreChannel::answer(const CoreCall &call, Clock::time_point began)
{
    switch (call.procedure) {
    case Null:
        return std::string();
    case CreateLink:
        return createLink(call, began);
    case DestroyLink:
        return onlyError(links.erase(call.link) == 1 ? None : InvalidLink, DestroyLink);
    default:
        break;
    }
    if (call.procedure > DeviceUnlock) {
        return onlyError(NotSupported, call.procedure);
    }
    const auto found = links.find(call.link);
    if (found == links.end()) {
        return onlyError(InvalidLink, call.procedure);
    }
    MessageExchange &client = *found->second;
    if (std::exchange(client.device.faults.connectionLost, false)) {
        socket->abort();
        return simulator::never;
    }
    const auto locked = answerIfLocked(call, client.device, &client, began);
    return locked && call.procedure != DeviceUnlock ? *locked : answerOn(client, call, began);
}

Device *CoreChannel::find(std::string_view name) const
{
    for (std::size_t i = 0; i < numbered.size(); ++i) {
        if (simulator::upperCase(name) == "INST" + std::to_string(i)) {
            return numbered[i];
        }
    }
    return shared.bench.find(name);
}

Answer CoreChannel::createLink(const CoreCall &call, Clock::time_point began)
{
    Device *device = find(call.data);
    if (device == nullptr) {
        return onlyError(NotAccessible, CreateLink);
    }
    if (device->clients >= Device::clientLimit) {
        return onlyError(OutOfResources, CreateLink);
    }
    const auto locked = answerIfLocked(call, *device, nullptr, began);
    if (locked && call.lockDevice) {
        return *locked;
    }
    const std::uint32_t id = shared.nextLink++;
    links[id] = std::make_unique<MessageExchange>(*device);
    if (call.lockDevice) {
        links[id]->lock();
    }
    const std::uint32_t abortPort = 0; // there is no abort channel
    return xdrWords({None, id, abortPort, receiveSize});
}

} // namespace server
