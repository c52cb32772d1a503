#include "visa/VisaFunctions.h"

// The rest of VPP-4.3, so that every client links and finds what it looks up. Whatever arguments
// they come with, the platform's C calling convention leaves those to the caller.

#define UNSUPPORTED(name)                                                                          \
    VISA_EXPORT ViStatus name()                                                                    \
    {                                                                                              \
        return VI_ERROR_NSUP_OPER;                                                                 \
    }
#define UNSUPPORTED_WIDTHS(name, end)                                                              \
    UNSUPPORTED(name##8##end)                                                                      \
    UNSUPPORTED(name##16##end) UNSUPPORTED(name##32##end) UNSUPPORTED(name##64##end)

extern "C" {
// A family a paragraph, not as it would be laid out.
// clang-format off
UNSUPPORTED(viPrintf) UNSUPPORTED(viVPrintf) UNSUPPORTED(viSPrintf) UNSUPPORTED(viVSPrintf)
UNSUPPORTED(viScanf) UNSUPPORTED(viVScanf) UNSUPPORTED(viSScanf) UNSUPPORTED(viVSScanf)
UNSUPPORTED(viQueryf) UNSUPPORTED(viVQueryf) UNSUPPORTED(viBufRead) UNSUPPORTED(viBufWrite)

UNSUPPORTED(viReadAsync) UNSUPPORTED(viWriteAsync) UNSUPPORTED(viTerminate)
UNSUPPORTED(viEnableEvent) UNSUPPORTED(viWaitOnEvent)
UNSUPPORTED(viInstallHandler) UNSUPPORTED(viUninstallHandler)

UNSUPPORTED(viGpibCommand) UNSUPPORTED(viGpibControlATN) UNSUPPORTED(viGpibPassControl)
UNSUPPORTED(viGpibSendIFC) UNSUPPORTED(viUsbControlIn) UNSUPPORTED(viUsbControlOut)
UNSUPPORTED(viVxiCommandQuery) UNSUPPORTED(viAssertIntrSignal) UNSUPPORTED(viAssertUtilSignal)
UNSUPPORTED(viMapTrigger) UNSUPPORTED(viUnmapTrigger) UNSUPPORTED(viPxiReserveTriggers)

UNSUPPORTED(viMapAddress) UNSUPPORTED(viMapAddressEx) UNSUPPORTED(viUnmapAddress)
UNSUPPORTED(viMemAlloc) UNSUPPORTED(viMemAllocEx) UNSUPPORTED(viMemFree) UNSUPPORTED(viMemFreeEx)
UNSUPPORTED(viMove) UNSUPPORTED(viMoveEx) UNSUPPORTED(viMoveAsync) UNSUPPORTED(viMoveAsyncEx)
UNSUPPORTED_WIDTHS(viIn,) UNSUPPORTED_WIDTHS(viIn, Ex)
UNSUPPORTED_WIDTHS(viOut,) UNSUPPORTED_WIDTHS(viOut, Ex)
UNSUPPORTED_WIDTHS(viMoveIn,) UNSUPPORTED_WIDTHS(viMoveIn, Ex)
UNSUPPORTED_WIDTHS(viMoveOut,) UNSUPPORTED_WIDTHS(viMoveOut, Ex)
UNSUPPORTED_WIDTHS(viPeek,) UNSUPPORTED_WIDTHS(viPoke,)
// clang-format on
}
