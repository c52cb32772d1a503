#pragma once

#include <cstdint>

namespace wire::vxi11 {

// Numbers of the TCP/IP Instrument Protocol (VXI-11 1.0, appendix C) and of its core channel.

constexpr std::uint32_t coreProgram = 0x0607AF;
constexpr std::uint32_t coreVersion = 1;

enum Procedure : std::uint32_t
{
    Null = 0, ///< does nothing; every program has it
    CreateLink = 10,
    DeviceWrite = 11,
    DeviceRead = 12,
    DeviceReadStb = 13,
    DeviceTrigger = 14,
    DeviceClear = 15,
    DeviceRemote = 16,
    DeviceLocal = 17,
    DeviceLock = 18,
    DeviceUnlock = 19,
    DeviceDoCmd = 22,
    DestroyLink = 23,
    DestroyInterruptChannel = 26,
};

/// Flags of a call.
enum Flag : std::uint32_t
{
    WaitLock = 0x01,
    End = 0x08, ///< of a write: the last byte is sent with END
    TermCharSet = 0x80,
};

/// Why a read ended; several may hold. With 0, the device has more to send in the next read.
enum Reason : std::uint32_t
{
    RequestCount = 1,
    TermChar = 2,
    EndIndicator = 4,
};

enum Error : std::uint32_t
{
    None = 0,
    SyntaxError = 1,
    NotAccessible = 3,
    InvalidLink = 4,
    NotSupported = 8,
    OutOfResources = 9,
    LockedByAnother = 11,
    NoLockHeld = 12,
    IoTimeout = 15,
    InvalidAddress = 21,
};

} // namespace wire::vxi11
