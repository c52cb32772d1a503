#include "simulator/server/CoreChannel.h"

#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <utility>

namespace server {

using namespace wire::vxi11;
using wire::RpcOutcome;
using wire::xdrWords;

namespace {

constexpr std::size_t callLimit = 1 << 20; // bytes
constexpr std::uint32_t receiveSize = 65536;
constexpr int linksPerDevice = 16; // as hardware has them
constexpr int retryInterval = 1;   // ms

/// The results of a procedure that failed, whose other words are there, too (VXI-11 1.0, C.1).
std::string error(Error code, std::uint32_t procedure)
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

bool isOver(Clock::time_point until)
{
    return Clock::now() >= until;
}

/// Whether the call's link has to do without the device, which is locked.
bool isLockedOut(const Device &device, const void *link)
{
    const bool isLocked = device.lockHolder != nullptr && device.lockHolder != link;
    return isLocked || !isOver(device.faults.busyUntil);
}

/// Until when a call waits for another's lock.
Clock::time_point lockTimeOut(const CoreCall &call, const Device &device, Clock::time_point began)
{
    return (call.flags & WaitLock) != 0 ? device.timeOut(began, call.lockTimeout) : began;
}

} // namespace

CoreChannel::CoreChannel(QTcpSocket *socket, Laboratory &laboratory, Device *device)
    : QObject(socket), socket(socket), laboratory(laboratory), ownDevice(device), reader(callLimit)
{
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    retry.setTimerType(Qt::PreciseTimer);
    connect(&retry, &QTimer::timeout, this, &CoreChannel::serve);
    connect(socket, &QTcpSocket::readyRead, this, &CoreChannel::serve);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

CoreChannel::~CoreChannel()
{
    while (!links.empty()) {
        destroyLink(links.begin()->first);
    }
}

void CoreChannel::serve()
{
    for (;;) {
        if (!waiting) {
            const wire::RecordReader::State state = reader.read([this](char *to, std::size_t size) {
                return socket->read(to, static_cast<qint64>(size));
            });
            if (state == wire::RecordReader::State::Incomplete) {
                return;
            }
            if (state == wire::RecordReader::State::TooLong) {
                socket->abort();
                return;
            }
            waiting = reader.take();
            waitingSince = Clock::now();
        }
        const auto call = wire::decodedCall(*waiting);
        if (!call) {
            socket->abort();
            return;
        }
        const auto reply = answer(*call, waitingSince);
        if (!reply) {
            retry.start(retryInterval);
            return;
        }
        retry.stop();
        waiting.reset();
        const std::string record = wire::asRecord(*reply);
        socket->write(record.data(), static_cast<qint64>(record.size()));
        socket->flush();
    }
}

std::optional<std::string> CoreChannel::answer(const wire::RpcCall &call, Clock::time_point began)
{
    const wire::RpcProcedure &what = call.procedure;
    if (what.program != coreProgram) {
        return wire::encodedReply(call.xid, RpcOutcome::ProgramUnavailable);
    }
    if (what.version != coreVersion) {
        return wire::encodedReply(call.xid, RpcOutcome::ProgramMismatch,
                                  xdrWords({coreVersion, coreVersion}));
    }
    if (what.procedure != Null &&
        (what.procedure < CreateLink || what.procedure > DestroyInterruptChannel)) {
        return wire::encodedReply(call.xid, RpcOutcome::ProcedureUnavailable);
    }
    const auto core = decodedCoreCall(call);
    if (!core) {
        return wire::encodedReply(call.xid, RpcOutcome::GarbageArguments);
    }
    const Results answered = results(*core, began);
    return answered ? std::optional(wire::encodedReply(call.xid, RpcOutcome::Success, *answered))
                    : std::nullopt;
}

CoreChannel::Results CoreChannel::results(const CoreCall &call, Clock::time_point began)
{
    switch (call.procedure) {
    case Null:
        return std::string();
    case CreateLink:
        return createLink(call, began);
    case DestroyLink:
        return destroyLink(call.link);
    case DeviceWrite:
    case DeviceRead:
    case DeviceReadStb:
    case DeviceTrigger:
    case DeviceClear:
    case DeviceRemote:
    case DeviceLocal:
    case DeviceLock:
    case DeviceUnlock:
        break;
    default:
        return error(NotSupported, call.procedure);
    }
    const auto found = links.find(call.link);
    if (found == links.end()) {
        return error(InvalidLink, call.procedure);
    }
    Link &link = *found->second;
    if (std::exchange(link.device.faults.connectionLost, false)) {
        socket->abort();
        return std::nullopt;
    }
    if (call.procedure != DeviceUnlock && isLockedOut(link.device, &link)) {
        return isOver(lockTimeOut(call, link.device, began))
                   ? Results(error(LockedByAnother, call.procedure))
                   : std::nullopt;
    }
    return linkResults(call, link, began);
}

CoreChannel::Results CoreChannel::createLink(const CoreCall &call, Clock::time_point began)
{
    const bool isOwn = simulator::upperCase(call.data) == "INST0";
    Device *device = isOwn ? ownDevice : laboratory.find(std::string(call.data));
    if (device == nullptr) {
        return error(NotAccessible, CreateLink);
    }
    if (device->links == linksPerDevice) {
        return error(OutOfResources, CreateLink);
    }
    if (call.lockDevice && isLockedOut(*device, nullptr)) {
        return isOver(lockTimeOut(call, *device, began))
                   ? Results(error(LockedByAnother, CreateLink))
                   : std::nullopt;
    }
    const std::uint32_t id = laboratory.nextLink++;
    links[id] = std::make_unique<Link>(*device);
    ++device->links;
    if (call.lockDevice) {
        device->lockHolder = links[id].get();
    }
    const std::uint32_t abortPort = 0; // nothing here takes long enough to be aborted
    return xdrWords({None, id, abortPort, receiveSize});
}

std::string CoreChannel::destroyLink(std::uint32_t id)
{
    const auto link = links.find(id);
    if (link == links.end()) {
        return error(InvalidLink, DestroyLink);
    }
    Device &device = link->second->device;
    --device.links;
    if (device.lockHolder == link->second.get()) {
        device.lockHolder = nullptr;
    }
    links.erase(link);
    return error(None, DestroyLink);
}

CoreChannel::Results CoreChannel::linkResults(const CoreCall &call, Link &link,
                                              Clock::time_point began)
{
    Device &device = link.device;
    switch (call.procedure) {
    case DeviceWrite:
        device.write(link.client, call.data, (call.flags & End) != 0);
        return xdrWords({None, static_cast<std::uint32_t>(call.data.size())});
    case DeviceRead:
        return read(call, link, device.timeOut(began, call.ioTimeout));
    case DeviceReadStb:
        return xdrWords({None, device.statusByte(link.client)});
    case DeviceTrigger:
        device.trigger(link.client);
        break;
    case DeviceClear:
        device.clear(link.client);
        break;
    case DeviceRemote:
        link.client.setRemote(true);
        break;
    case DeviceLocal:
        link.client.setRemote(false);
        break;
    case DeviceLock:
        device.lockHolder = &link;
        break;
    default: // DeviceUnlock
        if (device.lockHolder != &link) {
            return error(NoLockHeld, DeviceUnlock);
        }
        device.lockHolder = nullptr;
    }
    return error(None, call.procedure);
}

CoreChannel::Results CoreChannel::read(const CoreCall &call, Link &link, Clock::time_point until)
{
    const bool hasAnswer = link.client.hasAnswer();
    if (!link.device.isReady() || !hasAnswer) {
        if (!isOver(until)) {
            return std::nullopt;
        }
        if (!hasAnswer) {
            link.device.read(link.client, call.requestSize, {}); // which is the client's error
        }
        return error(IoTimeout, DeviceRead);
    }
    std::optional<char> termination;
    if ((call.flags & TermCharSet) != 0) {
        termination = static_cast<char>(call.terminator);
    }
    const Device::Part part = link.device.read(link.client, call.requestSize, termination);
    const bool isTerminated =
        termination && !part.bytes.empty() && part.bytes.back() == termination;
    const std::uint32_t reason = (part.isLast ? EndIndicator : 0U) |
                                 (isTerminated ? TermChar : 0U) |
                                 (part.bytes.size() == call.requestSize ? RequestCount : 0U);
    return xdrWords({None, reason}) + wire::xdrOpaque(part.bytes);
}

} // namespace server
