#include "visa/lan/Vxi11Link.h"

#include "visa/wire/Xdr.h"

#include <algorithm>
#include <cstring>
#include <thread>

namespace lan {

using visa::Deadline;
using visa::millisecondsUntil;
using wire::xdrOpaque;
using wire::XdrReader;
using wire::xdrWords;
namespace vxi11 = wire::vxi11;

namespace {

using std::chrono::milliseconds;

/// The time for an answer to arrive once the device's own time-out has elapsed.
constexpr milliseconds answerMargin(500);
constexpr milliseconds closingTime(1000);
/// The longest time-out that is sent. Devices may take larger numbers for negative ones. So a call
/// without a deadline times out after an hour.
constexpr int longestTimeout = 3600 * 1000; // ms
/// The most bytes that are asked for or sent in one call.
constexpr std::size_t largestTransfer = 16 << 20;
/// What every device must take in one call (VXI-11, B.6.3). Some say 0 instead of their size.
constexpr std::uint32_t leastReceiveSize = 1024;

// After each refused call (connection lost or device locked), the link pauses for one step longer
// than after the one before, up to mostPauseSteps. Otherwise a program that repeats such a call
// without end, and keeps something each time, would keep the processor busy and fill its memory. A
// few hundred refused calls still take only seconds.
constexpr std::chrono::microseconds pauseStep(100);
constexpr int mostPauseSteps = 1000;

Deadline answerBy(Deadline deadline)
{
    return deadline > Deadline::max() - answerMargin ? deadline : deadline + answerMargin;
}

/// Returns the time-out for a device in ms. It is at least 1: with 0 some devices wait for ever.
std::uint32_t ioTimeout(Deadline deadline)
{
    return static_cast<std::uint32_t>(std::max(1, millisecondsUntil(deadline, longestTimeout)));
}

/// Returns VISA's status for a device's error code.
ViStatus statusOf(std::uint32_t error)
{
    switch (error) {
    case vxi11::None:
        return VI_SUCCESS;
    case vxi11::SyntaxError:
    case vxi11::NotAccessible:
    case vxi11::InvalidAddress:
        return VI_ERROR_RSRC_NFOUND;
    case vxi11::InvalidLink: // the device has been restarted
        return VI_ERROR_CONN_LOST;
    case vxi11::NotSupported:
        return VI_ERROR_NSUP_OPER;
    case vxi11::OutOfResources:
        return VI_ERROR_ALLOC;
    case vxi11::LockedByAnother:
        return VI_ERROR_RSRC_LOCKED;
    case vxi11::NoLockHeld:
        return VI_ERROR_SESN_NLOCKED;
    case vxi11::IoTimeout:
        return VI_ERROR_TMO;
    default:
        return VI_ERROR_IO;
    }
}

} // namespace

Vxi11Link::~Vxi11Link()
{
    close(std::chrono::steady_clock::now() + closingTime);
}

ViStatus Vxi11Link::open(const std::string &address, std::uint16_t mapperPort,
                         const std::string &device, Deadline deadline)
{
    host = address;
    std::uint16_t port = 0;
    ViStatus status =
        findPort(address, mapperPort, {vxi11::coreProgram, vxi11::coreVersion, 0}, deadline, &port);
    if (status == VI_SUCCESS) {
        status = rpc.connectTo(address, port, deadline);
    }
    std::string_view results;
    if (status == VI_SUCCESS) {
        // The link is created without a lock, and the time-out for one is 0.
        status = call(vxi11::CreateLink,
                      xdrWords({static_cast<std::uint32_t>(process), 0, 0}) + xdrOpaque(device),
                      deadline, &results);
    }
    if (status != VI_SUCCESS) {
        const bool isInstrument = status != VI_ERROR_CONN_LOST && status != VI_ERROR_NSUP_OPER;
        return isInstrument ? status : VI_ERROR_RSRC_NFOUND;
    }
    std::uint32_t abortPort = 0;
    XdrReader from(results);
    from >> id >> abortPort >> receiveSize;
    isOpen = from.isOk();
    receiveSize = receiveSize != 0 ? receiveSize : leastReceiveSize;
    return isOpen ? VI_SUCCESS : VI_ERROR_IO;
}

void Vxi11Link::close(Deadline deadline)
{
    if (isOpen && process == getpid() && rpc.isConnected()) {
        call(vxi11::DestroyLink, xdrWords({id}), deadline);
    }
    isOpen = false;
}

/// Call a procedure. The results are what follows the error code, also after an error. They are
/// valid until the next call.
ViStatus Vxi11Link::call(vxi11::Procedure procedure, std::string_view arguments,
                         Deadline answerDeadline, std::string_view *results)
{
    std::string_view received;
    ViStatus status = rpc.call({vxi11::coreProgram, vxi11::coreVersion, procedure}, arguments,
                               answerDeadline, &received);
    if (status == VI_SUCCESS) {
        std::uint32_t error = 0;
        XdrReader from(received);
        from >> error;
        if (results != nullptr) {
            *results = from.rest();
        }
        status = from.isOk() ? statusOf(error) : VI_ERROR_IO;
    }
    const bool isRefused = status == VI_ERROR_CONN_LOST || status == VI_ERROR_RSRC_LOCKED;
    refusals = isRefused ? std::min(refusals + 1, mostPauseSteps) : 0;
    std::this_thread::sleep_for(pauseStep * refusals);
    return status;
}

ViStatus Vxi11Link::callGeneric(vxi11::Procedure procedure, Deadline deadline,
                                std::string_view *results)
{
    // Without flags, and without time to wait for another's lock.
    return call(procedure, xdrWords({id, 0, 0, ioTimeout(deadline)}), answerBy(deadline), results);
}

ViStatus Vxi11Link::write(const ViByte *bytes, std::size_t count, bool end, Deadline deadline,
                          std::size_t *written)
{
    forget(); // the rest of an answer belongs to an earlier message
    *written = 0;
    while (*written < count) {
        const std::size_t size =
            std::min({count - *written, std::size_t(receiveSize), largestTransfer});
        const bool isLast = *written + size == count;
        std::string_view results;
        const ViStatus status =
            call(vxi11::DeviceWrite,
                 xdrWords({id, ioTimeout(deadline), 0, isLast && end ? vxi11::End : 0U}) +
                     xdrOpaque({reinterpret_cast<const char *>(bytes) + *written, size}),
                 answerBy(deadline), &results);
        std::uint32_t taken = 0;
        XdrReader(results) >> taken;
        *written += std::min<std::size_t>(taken, size);
        if (status != VI_SUCCESS || taken == 0) {
            return status != VI_SUCCESS ? status : VI_ERROR_IO;
        }
    }
    return VI_SUCCESS;
}

visa::ReadOutcome Vxi11Link::read(ViByte *buffer, std::size_t count,
                                  std::optional<ViByte> termination, Deadline deadline)
{
    visa::ReadOutcome outcome;
    bool isDone = handOut(buffer, count, termination, &outcome); // what an earlier read left
    while (!isDone && outcome.status == VI_SUCCESS) {
        const std::size_t before = outcome.count;
        outcome.status = fetch(count - before, termination, deadline);
        isDone = handOut(buffer, count, termination, &outcome);
        const bool goesOn = !isDone && outcome.status == VI_SUCCESS;
        if (goesOn && millisecondsUntil(deadline, 1) == 0) {
            outcome.status = VI_ERROR_TMO;
        } else if (goesOn && outcome.count == before) {
            // Some devices answer at once that they have nothing.
            std::this_thread::sleep_for(milliseconds(1));
        }
    }
    keepRest();
    return outcome;
}

/// Ask the device for bytes. To be called only when all earlier bytes have been handed out.
ViStatus Vxi11Link::fetch(std::size_t count, std::optional<ViByte> termination, Deadline deadline)
{
    forget();
    std::string_view results;
    const ViStatus status =
        call(vxi11::DeviceRead,
             xdrWords({id, static_cast<std::uint32_t>(std::min(count, largestTransfer)),
                       ioTimeout(deadline), 0, termination ? vxi11::TermCharSet : 0U,
                       termination.value_or(0)}),
             answerBy(deadline), &results);
    std::uint32_t reason = 0;
    XdrReader from(results);
    from >> reason >> fetched;
    if (!from.isOk()) {
        return status != VI_SUCCESS ? status : VI_ERROR_IO;
    }
    fetchedEnd = (reason & vxi11::EndIndicator) != 0;
    return status;
}

/// Hand out what was fetched. Returns whether that ends the read. Of the device's reasons only END
/// counts: some devices send more than was asked for, and some ignore the termination character.
bool Vxi11Link::handOut(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                        visa::ReadOutcome *outcome)
{
    std::string_view part = fetched.substr(0, count - outcome->count);
    const std::size_t terminator =
        termination ? part.find(static_cast<char>(*termination)) : std::string_view::npos;
    const bool isTerminated = terminator != std::string_view::npos;
    if (isTerminated) {
        part = part.substr(0, terminator + 1);
    }
    std::copy(part.begin(), part.end(), buffer + outcome->count);
    outcome->count += part.size();
    fetched.remove_prefix(part.size());
    if (fetchedEnd && fetched.empty()) {
        forget();
        outcome->end = visa::ReadEnd::End;
        return true;
    }
    if (isTerminated) {
        outcome->end = visa::ReadEnd::TerminationCharacter;
        return true;
    }
    return outcome->count == count;
}

/// Copy what was fetched and not handed out, since the next call overwrites it.
void Vxi11Link::keepRest()
{
    kept = std::string(fetched);
    fetched = kept;
}

void Vxi11Link::forget()
{
    fetched = {};
    fetchedEnd = false;
}

ViStatus Vxi11Link::clear(Deadline deadline)
{
    forget();
    return callGeneric(vxi11::DeviceClear, deadline);
}

ViStatus Vxi11Link::trigger(Deadline deadline)
{
    return callGeneric(vxi11::DeviceTrigger, deadline);
}

ViStatus Vxi11Link::readStatusByte(Deadline deadline, ViUInt8 *statusByte)
{
    std::string_view results;
    const ViStatus status = callGeneric(vxi11::DeviceReadStb, deadline, &results);
    std::uint32_t byte = 0;
    XdrReader from(results);
    from >> byte;
    *statusByte = static_cast<ViUInt8>(byte);
    return status != VI_SUCCESS || from.isOk() ? status : VI_ERROR_IO;
}

ViStatus Vxi11Link::goToLocal(Deadline deadline)
{
    return callGeneric(vxi11::DeviceLocal, deadline);
}

ViStatus Vxi11Link::lock(Deadline deadline)
{
    const auto timeout = static_cast<std::uint32_t>(millisecondsUntil(deadline, longestTimeout));
    const std::uint32_t flags = timeout > 0 ? vxi11::WaitLock : 0U;
    const ViStatus status =
        call(vxi11::DeviceLock, xdrWords({id, flags, timeout}), answerBy(deadline));
    return status == VI_ERROR_RSRC_LOCKED ? VI_ERROR_TMO : status; // viLock's status
}

ViStatus Vxi11Link::unlock(Deadline deadline)
{
    return call(vxi11::DeviceUnlock, xdrWords({id}), answerBy(deadline));
}

} // namespace lan
