#pragma once

#include <cstddef>
#include <cstdint>

// The VISA types, constants and prototypes that Orvanta uses, declared from VPP-4.3 (the VISA
// library) and VPP-4.3.2 (its binding to C). They are those of 64-bit systems, where all VISA
// functions follow the platform's C calling convention.

using ViChar = char;
using ViByte = unsigned char;
using ViInt32 = std::int32_t;
using ViUInt8 = std::uint8_t;
using ViUInt16 = std::uint16_t;
using ViUInt32 = std::uint32_t;
using ViUInt64 = std::uint64_t;

using ViObject = ViUInt32;    ///< handle of a session, the resource manager or a find list
using ViSession = ViObject;   ///< handle of an open session; 0 is never valid
using ViStatus = ViInt32;     ///< 0: success; negative: error; positive: completion code or warning
using ViAttr = ViUInt32;      ///< attribute identifier
using ViAttrState = ViUInt64; ///< value passed to viSetAttribute, pointer-sized
using ViAccessMode = ViUInt32;
using ViEventType = ViUInt32;
using ViFindList = ViObject; ///< handle of a list of resources found

static_assert(sizeof(ViAttrState) == sizeof(void *), "VISA passes attribute values pointer-sized");

/// The types of the VISA functions, for pointers to them and for a library that exports them.
namespace visa {
using OpenDefaultRM = ViStatus(ViSession *resourceManager);
using Open = ViStatus(ViSession resourceManager, const ViChar *resourceName,
                      ViAccessMode accessMode, ViUInt32 timeoutMs, ViSession *session);
using Close = ViStatus(ViObject object);
using StatusDesc = ViStatus(ViObject object, ViStatus status, ViChar *description);
using SetAttribute = ViStatus(ViObject object, ViAttr attribute, ViAttrState value);
using GetAttribute = ViStatus(ViObject object, ViAttr attribute, void *value);
using Write = ViStatus(ViSession session, const ViByte *buffer, ViUInt32 count,
                       ViUInt32 *returnedCount);
using Read = ViStatus(ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount);
using ReadToFile = ViStatus(ViSession session, const ViChar *fileName, ViUInt32 count,
                            ViUInt32 *returnedCount);
using Clear = ViStatus(ViSession session);
using SetBuf = ViStatus(ViSession session, ViUInt16 mask, ViUInt32 size);
using ReadSTB = ViStatus(ViSession session, ViUInt16 *statusByte);
using GpibControlREN = ViStatus(ViSession session, ViUInt16 mode);
using Printf = ViStatus(ViSession session, const ViChar *writeFormat, ...);
using Scanf = ViStatus(ViSession session, const ViChar *readFormat, ...);
using Queryf = ViStatus(ViSession session, const ViChar *writeFormat, const ViChar *readFormat,
                        ...);

// Called by other clients only.
using FindRsrc = ViStatus(ViSession resourceManager, const ViChar *expression, ViFindList *list,
                          ViUInt32 *count, ViChar *description);
using FindNext = ViStatus(ViFindList list, ViChar *description);
using ParseRsrcEx = ViStatus(ViSession resourceManager, const ViChar *resourceName,
                             ViUInt16 *interfaceType, ViUInt16 *interfaceNumber,
                             ViChar *resourceClass, ViChar *expandedName, ViChar *alias);
using DisableEvent = ViStatus(ViSession session, ViEventType type, ViUInt16 mechanism);
using DiscardEvents = ViStatus(ViSession session, ViEventType type, ViUInt16 mechanism);
using AssertTrigger = ViStatus(ViSession session, ViUInt16 protocol);
using Flush = ViStatus(ViSession session, ViUInt16 mask);
using Lock = ViStatus(ViSession session, ViAccessMode lockType, ViUInt32 timeoutMs,
                      const ViChar *requestedKey, ViChar *accessKey);
using Unlock = ViStatus(ViSession session);
} // namespace visa

/// Returns the status code with the 32-bit pattern that VPP-4.3 lists; errors have the top bit set.
constexpr ViStatus visaStatus(ViUInt32 pattern)
{
    return static_cast<ViStatus>(pattern);
}

// Completion and error codes.
#define VISA_STATUS(name, pattern, text) constexpr ViStatus name = visaStatus(pattern);
#include "visa/StatusCodes.def"
#undef VISA_STATUS

// Attributes with the width that viGetAttribute writes (VPP-4.3, appendix A).
constexpr ViAttr VI_ATTR_RSRC_IMPL_VERSION = 0x3FFF0003; ///< 32 bits: 12 major, 12 minor, 8 patch
constexpr ViAttr VI_ATTR_SEND_END_EN = 0x3FFF0016;       ///< 16 bits
constexpr ViAttr VI_ATTR_TERMCHAR = 0x3FFF0018;          ///< 8 bits
constexpr ViAttr VI_ATTR_TMO_VALUE = 0x3FFF001A;         ///< 32 bits, milliseconds
constexpr ViAttr VI_ATTR_TERMCHAR_EN = 0x3FFF0038;       ///< 16 bits
constexpr ViAttr VI_ATTR_RSRC_SPEC_VERSION = 0x3FFF0170; ///< 32 bits: VISA's own version
constexpr ViAttr VI_ATTR_INTF_TYPE = 0x3FFF0171;         ///< 16 bits
constexpr ViAttr VI_ATTR_INTF_NUM = 0x3FFF0176;          ///< 16 bits
constexpr ViAttr VI_ATTR_RSRC_CLASS = 0xBFFF0001; ///< text of up to 255 bytes, like those below
constexpr ViAttr VI_ATTR_RSRC_NAME = 0xBFFF0002;
constexpr ViAttr VI_ATTR_RSRC_MANF_NAME = 0xBFFF0174;
constexpr ViAttr VI_ATTR_TCPIP_ADDR = 0xBFFF0195; ///< empty where it is not known
constexpr ViAttr VI_ATTR_TCPIP_HOSTNAME = 0xBFFF0196;
constexpr ViAttr VI_ATTR_TCPIP_DEVICE_NAME = 0xBFFF0199;

constexpr ViUInt16 VI_INTF_TCPIP = 6; ///< interface type

/// Size of the buffers for resource strings and attribute texts, in bytes.
constexpr std::size_t VI_FIND_BUFLEN = 256;

constexpr ViAccessMode VI_NO_LOCK = 0;
constexpr ViAccessMode VI_EXCLUSIVE_LOCK = 1;
constexpr ViAccessMode VI_LOAD_CONFIG = 4;

// Time-outs with a special meaning.
constexpr ViUInt32 VI_TMO_IMMEDIATE = 0;
constexpr ViUInt32 VI_TMO_INFINITE = 0xFFFFFFFF;

// viSetBuf, viFlush: the buffers of formatted and of plain I/O.
constexpr ViUInt16 VI_READ_BUF = 1;
constexpr ViUInt16 VI_WRITE_BUF = 2;
constexpr ViUInt16 VI_IO_IN_BUF = 16;
constexpr ViUInt16 VI_IO_OUT_BUF = 32;

/// viGpibControlREN: address the device and send it Go To Local.
constexpr ViUInt16 VI_GPIB_REN_ADDRESS_GTL = 6;
