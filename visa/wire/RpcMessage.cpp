#include "visa/wire/RpcMessage.h"

#include "visa/wire/Xdr.h"

#include <algorithm>
#include <utility>

namespace wire {

namespace {

constexpr std::uint32_t rpcVersion = 2;
constexpr std::uint32_t callType = 0;
constexpr std::uint32_t replyType = 1;
constexpr std::uint32_t acceptedStatus = 0;
constexpr std::uint32_t lastFragment = 0x80000000;
constexpr std::size_t pieceSize = 256 << 10; // bytes

} // namespace

std::string encodedCall(std::uint32_t xid, const RpcProcedure &procedure,
                        std::string_view arguments)
{
    return xdrWords({xid, callType, rpcVersion, procedure.program, procedure.version,
                     procedure.procedure, 0, 0, 0, 0})
        .append(arguments);
}

std::string encodedReply(std::uint32_t xid, RpcOutcome outcome, std::string_view results)
{
    return xdrWords({xid, replyType, acceptedStatus, 0, 0, static_cast<std::uint32_t>(outcome)})
        .append(results);
}

std::optional<RpcCall> decodedCall(std::string_view message)
{
    XdrReader from(message);
    RpcCall call;
    std::uint32_t type = 0;
    std::uint32_t version = 0;
    std::uint32_t flavour = 0;
    std::string_view credential;
    std::string_view verifier;
    from >> call.xid >> type >> version >> call.procedure.program >> call.procedure.version >>
        call.procedure.procedure >> flavour >> credential >> flavour >> verifier;
    if (!from.isOk() || type != callType || version != rpcVersion) {
        return std::nullopt;
    }
    call.arguments = from.rest();
    return call;
}

std::optional<RpcReply> decodedReply(std::string_view message)
{
    XdrReader from(message);
    RpcReply reply;
    std::uint32_t type = 0;
    std::uint32_t status = 0;
    from >> reply.xid >> type >> status;
    if (!from.isOk() || type != replyType) {
        return std::nullopt;
    }
    if (status != acceptedStatus) {
        reply.outcome = RpcOutcome::SystemError;
        return reply;
    }
    std::uint32_t flavour = 0;
    std::string_view verifier;
    std::uint32_t outcome = 0;
    from >> flavour >> verifier >> outcome;
    if (!from.isOk()) {
        return std::nullopt;
    }
    reply.outcome = static_cast<RpcOutcome>(
        std::min(outcome, static_cast<std::uint32_t>(RpcOutcome::SystemError)));
    reply.results = from.rest();
    return reply;
}

std::string asRecord(std::string_view message)
{
    return xdrWords({lastFragment | static_cast<std::uint32_t>(message.size())}).append(message);
}

RecordReader::State RecordReader::read(const Source &source)
{
    while (missing > 0 || !isLast) {
        const bool isHeader = missing == 0;
        if (!isHeader) {
            record.resize(std::max(record.size(), filled + std::min(missing, pieceSize)));
        }
        const std::ptrdiff_t got =
            isHeader ? source(header.data() + headerFilled, header.size() - headerFilled)
                     : source(record.data() + filled, std::min(missing, record.size() - filled));
        if (got <= 0) {
            return State::Incomplete;
        }
        if (!isHeader) {
            filled += static_cast<std::size_t>(got);
            missing -= static_cast<std::size_t>(got);
            continue;
        }
        headerFilled = (headerFilled + static_cast<std::size_t>(got)) % header.size();
        if (headerFilled == 0) {
            std::uint32_t word = 0;
            XdrReader({header.data(), header.size()}) >> word;
            isLast = (word & lastFragment) != 0;
            missing = word & ~lastFragment;
        }
        if (missing > limit - filled) {
            return State::TooLong;
        }
    }
    return State::Complete;
}

std::string RecordReader::take()
{
    isLast = false;
    record.resize(std::exchange(filled, 0));
    return std::exchange(record, {});
}

} // namespace wire
