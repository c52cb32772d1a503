#include "visa/VisaFunctions.h"

// The other functions of VPP-4.3. All return VI_ERROR_NSUP_OPER; clients need them in order to link
// with this library or to load it. They declare no parameters: in the platform's C calling
// convention the caller removes the arguments, whatever they are.

#define UNSUPPORTED(name)                                                                          \
    VISA_EXPORT ViStatus name()                                                                    \
    {                                                                                              \
        return VI_ERROR_NSUP_OPER;                                                                 \
    }
#define UNSUPPORTED_WIDTHS(name, end)                                                              \
    UNSUPPORTED(name##8##end)                                                                      \
    UNSUPPORTED(name##16##end) UNSUPPORTED(name##32##end) UNSUPPORTED(name##64##end)

extern "C" {
// Each paragraph has one family of functions; clang-format would join them.
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
