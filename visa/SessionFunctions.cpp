// The VISA functions of sessions: input and output, triggers and locks.

#include "visa/Handles.h"
#include "visa/VisaFunctions.h"

#include <algorithm>
#include <cstdio>

using visa::Session;
using visa::with;

namespace {

constexpr std::size_t pieceSize = 65536; // bytes that are read into a file at a time

visa::Deadline deadlineOf(const Session &session)
{
    return visa::deadlineAfter(session.attributes.number(VI_ATTR_TMO_VALUE));
}

void report(ViUInt32 *returnedCount, std::size_t count)
{
    if (returnedCount != nullptr) {
        *returnedCount = static_cast<ViUInt32>(count);
    }
}

visa::ReadOutcome read(Session &session, ViByte *buffer, std::size_t count, visa::Deadline deadline)
{
    if (count == 0) {
        return {};
    }
    std::optional<ViByte> termination;
    if (session.attributes.number(VI_ATTR_TERMCHAR_EN) != 0) {
        termination = static_cast<ViByte>(session.attributes.number(VI_ATTR_TERMCHAR));
    }
    return session.connection->read(buffer, count, termination, deadline);
}

ViStatus statusOf(const visa::ReadOutcome &outcome)
{
    if (outcome.status != VI_SUCCESS) {
        return outcome.status;
    }
    switch (outcome.end) {
    case visa::ReadEnd::Count:
        return VI_SUCCESS_MAX_CNT;
    case visa::ReadEnd::TerminationCharacter:
        return VI_SUCCESS_TERM_CHAR;
    case visa::ReadEnd::End:
        break;
    }
    return VI_SUCCESS;
}

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Read into a file, piece by piece. The time-out is that of the whole transfer.
ViStatus readToFile(Session &session, std::FILE *file, std::size_t count, ViUInt32 *returnedCount)
{
    const visa::Deadline deadline = deadlineOf(session);
    std::vector<ViByte> piece(std::min(count, pieceSize));
    std::size_t total = 0;
    visa::ReadOutcome outcome;
    do {
        outcome = read(session, piece.data(), std::min(count - total, piece.size()), deadline);
        if (std::fwrite(piece.data(), 1, outcome.count, file) != outcome.count) {
            return VI_ERROR_FILE_IO;
        }
        total += outcome.count;
        report(returnedCount, total);
    } while (statusOf(outcome) == VI_SUCCESS_MAX_CNT && total < count);
    return std::fflush(file) == 0 ? statusOf(outcome) : VI_ERROR_FILE_IO;
}

/// Returns whether a mask of viFlush (VPP-4.3, table 6.2.4) names buffers.
bool isBufferMask(unsigned mask)
{
    return mask != 0 && mask <= 0xFF;
}

} // namespace

ViStatus viWrite(ViSession session, const ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    report(returnedCount, 0);
    return with<Session>(session, [=](Session &open) {
        if (count == 0) {
            return VI_SUCCESS;
        }
        if (buffer == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        const bool end = open.attributes.number(VI_ATTR_SEND_END_EN) != 0;
        std::size_t written = 0;
        const ViStatus status =
            open.connection->write(buffer, count, end, deadlineOf(open), &written);
        report(returnedCount, written);
        return status;
    });
}

ViStatus viRead(ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    report(returnedCount, 0);
    return with<Session>(session, [=](Session &open) {
        if (buffer == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        const visa::ReadOutcome outcome = read(open, buffer, count, deadlineOf(open));
        report(returnedCount, outcome.count);
        return statusOf(outcome);
    });
}

ViStatus viReadToFile(ViSession session, const ViChar *fileName, ViUInt32 count,
                      ViUInt32 *returnedCount)
{
    report(returnedCount, 0);
    return with<Session>(session, [=](Session &open) {
        const File file(fileName == nullptr ? nullptr : std::fopen(fileName, "wb"));
        if (!file) {
            return VI_ERROR_FILE_ACCESS;
        }
        return readToFile(open, file.get(), count, returnedCount);
    });
}

ViStatus viClear(ViSession session)
{
    return with<Session>(session,
                         [](Session &open) { return open.connection->clear(deadlineOf(open)); });
}

// Nothing is buffered between a client and its device. So any size is accepted, and viFlush has
// nothing to write or discard.
ViStatus viSetBuf(ViSession session, ViUInt16 mask, ViUInt32 /*size*/)
{
    constexpr unsigned buffers = VI_READ_BUF | VI_WRITE_BUF | VI_IO_IN_BUF | VI_IO_OUT_BUF;
    return with<Session>(session, [=](Session &) {
        return isBufferMask(mask) && (mask & ~buffers) == 0 ? VI_SUCCESS : VI_ERROR_INV_MASK;
    });
}

ViStatus viFlush(ViSession session, ViUInt16 mask)
{
    return with<Session>(
        session, [=](Session &) { return isBufferMask(mask) ? VI_SUCCESS : VI_ERROR_INV_MASK; });
}

ViStatus viReadSTB(ViSession session, ViUInt16 *statusByte)
{
    return with<Session>(session, [=](Session &open) {
        if (statusByte == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        ViUInt8 byte = 0;
        const ViStatus status = open.connection->readStatusByte(deadlineOf(open), &byte);
        *statusByte = byte;
        return status;
    });
}

ViStatus viAssertTrigger(ViSession session, ViUInt16 protocol)
{
    return with<Session>(session, [=](Session &open) {
        if (protocol != 0) {
            return VI_ERROR_INV_PROT;
        }
        return open.connection->trigger(deadlineOf(open));
    });
}

ViStatus viGpibControlREN(ViSession session, ViUInt16 mode)
{
    return with<Session>(session, [=](Session &open) {
        if (mode > VI_GPIB_REN_ADDRESS_GTL) {
            return VI_ERROR_INV_MODE;
        }
        if (mode != VI_GPIB_REN_ADDRESS_GTL) {
            return VI_ERROR_NSUP_OPER; // the other modes control the lines of a GPIB bus
        }
        return open.connection->goToLocal(deadlineOf(open));
    });
}

// All locks are exclusive. A session may lock its device again; each lock needs an unlock.
ViStatus viLock(ViSession session, ViAccessMode lockType, ViUInt32 timeoutMs,
                const ViChar * /*requestedKey*/, ViChar * /*accessKey*/)
{
    return with<Session>(session, [=](Session &open) {
        if (lockType != VI_EXCLUSIVE_LOCK) {
            return VI_ERROR_INV_LOCK_TYPE;
        }
        if (open.locks != 0) {
            ++open.locks;
            return VI_SUCCESS_NESTED_EXCLUSIVE;
        }
        const ViStatus status = open.connection->lock(visa::deadlineAfter(timeoutMs));
        if (status == VI_SUCCESS) {
            open.locks = 1;
        }
        return status;
    });
}

ViStatus viUnlock(ViSession session)
{
    return with<Session>(session, [](Session &open) {
        if (open.locks == 0) {
            return VI_ERROR_SESN_NLOCKED;
        }
        if (--open.locks != 0) {
            return VI_SUCCESS_NESTED_EXCLUSIVE;
        }
        return open.connection->unlock(deadlineOf(open));
    });
}
