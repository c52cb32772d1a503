#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wire {

// Messages of ONC remote procedure calls (RFC 5531) and the records that carry them over TCP.

/// The procedure that a call names.
struct RpcProcedure
{
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t procedure = 0;
};

/// The outcome of a call (RFC 5531, accept_stat). Calls that are denied count as SystemError.
enum class RpcOutcome : std::uint32_t
{
    Success = 0,
    ProgramUnavailable = 1,
    ProgramMismatch = 2,
    ProcedureUnavailable = 3,
    GarbageArguments = 4,
    SystemError = 5,
};

/// A decoded call. Its arguments are bytes of the message.
struct RpcCall
{
    std::uint32_t xid = 0;
    RpcProcedure procedure;
    std::string_view arguments;
};

/// A decoded reply. Its results are bytes of the message.
struct RpcReply
{
    std::uint32_t xid = 0;
    RpcOutcome outcome = RpcOutcome::Success;
    std::string_view results; ///< after a mismatch, the lowest and the highest version
};

/// Encode a call without credentials. asRecord() makes it a record.
std::string encodedCall(std::uint32_t xid, const RpcProcedure &procedure,
                        std::string_view arguments);
/// Encode a reply. asRecord() makes it a record.
std::string encodedReply(std::uint32_t xid, RpcOutcome outcome, std::string_view results = {});

/// Decode a call or a reply. Returns nothing when the message is something else.
std::optional<RpcCall> decodedCall(std::string_view message);
std::optional<RpcReply> decodedReply(std::string_view message);

/// Returns a message as a record of one fragment (RFC 5531, 11).
std::string asRecord(std::string_view message);

/// Assembles a record from its fragments as they arrive.
class RecordReader
{
public:
    enum class State
    {
        Incomplete,
        Complete,
        TooLong, ///< longer than the limit; nothing more can be read
    };
    /// Takes up to `size` bytes that have arrived. Returns how many; less than 1 when there are
    /// none.
    using Source = std::function<std::ptrdiff_t(char *to, std::size_t size)>;

    /// A reader of records of at most `limit` bytes.
    explicit RecordReader(std::size_t limit) : limit(limit) {}

    /// Read until the record is complete or too long, or nothing more has arrived. Memory grows
    /// with the bytes that arrive, not with those that a fragment announces.
    State read(const Source &source);
    /// Returns the record, after read() has completed it, and begins with the next one.
    std::string take();

private:
    std::size_t limit;
    std::string record;
    std::size_t filled = 0;       ///< bytes of the record that have arrived
    std::array<char, 4> header{}; ///< of the fragment
    std::size_t headerFilled = 0; ///< bytes of the header that have arrived
    std::size_t missing = 0;      ///< bytes of the fragment that have not arrived
    bool isLast = false;          ///< the fragment is the record's last
};

} // namespace wire
