#include "visa/VisaFunctions.h"

// The rest of VPP-4.3, so that every client links and finds what it looks up. Whatever arguments
// they come with, the platform's C calling convention leaves those to the caller.

#define UNSUPPORTED(name)                                                                          \
    VISA_EXPORT ViStatus name()                                                                    \
    {                                                                                              \
        return VI_ERROR_NSUP_OPER;                                                                 \
    }

extern "C" {
// clang-format off: a family a line
// Formatted and buffered
UNSUPPORTED(viPrintf)
UNSUPPORTED(viVPrintf) UNSUPPORTED(viSPrintf) UNSUPPORTED(viVSPrintf) UNSUPPORTED(viScanf)
    UNSUPPORTED(viVScanf) UNSUPPORTED(viSScanf) UNSUPPORTED(viVSScanf) UNSUPPORTED(viQueryf)
        UNSUPPORTED(viVQueryf) UNSUPPORTED(viBufRead) UNSUPPORTED(viBufWrite)
    // Asynchronous and events
    UNSUPPORTED(viReadAsync) UNSUPPORTED(viWriteAsync) UNSUPPORTED(viTerminate)
        UNSUPPORTED(viEnableEvent) UNSUPPORTED(viWaitOnEvent) UNSUPPORTED(viInstallHandler)
            UNSUPPORTED(viUninstallHandler)
    // Of other interfaces
    UNSUPPORTED(viGpibCommand) UNSUPPORTED(viGpibControlATN) UNSUPPORTED(viGpibPassControl)
        UNSUPPORTED(viGpibSendIFC) UNSUPPORTED(viUsbControlIn) UNSUPPORTED(viUsbControlOut)
            UNSUPPORTED(viVxiCommandQuery) UNSUPPORTED(viAssertIntrSignal)
                UNSUPPORTED(viAssertUtilSignal) UNSUPPORTED(viMapTrigger)
                    UNSUPPORTED(viUnmapTrigger) UNSUPPORTED(viPxiReserveTriggers)
    // Of memory
    UNSUPPORTED(viMapAddress) UNSUPPORTED(viMapAddressEx) UNSUPPORTED(viUnmapAddress) UNSUPPORTED(
        viMemAlloc) UNSUPPORTED(viMemAllocEx) UNSUPPORTED(viMemFree) UNSUPPORTED(viMemFreeEx)
        UNSUPPORTED(viMove) UNSUPPORTED(viMoveEx) UNSUPPORTED(viMoveAsync) UNSUPPORTED(
            viMoveAsyncEx) UNSUPPORTED(viIn8) UNSUPPORTED(viIn16) UNSUPPORTED(viIn32)
            UNSUPPORTED(viIn64) UNSUPPORTED(viIn8Ex) UNSUPPORTED(viIn16Ex) UNSUPPORTED(viIn32Ex)
                UNSUPPORTED(viIn64Ex) UNSUPPORTED(viOut8) UNSUPPORTED(viOut16) UNSUPPORTED(viOut32)
                    UNSUPPORTED(viOut64) UNSUPPORTED(viOut8Ex) UNSUPPORTED(viOut16Ex)
                        UNSUPPORTED(viOut32Ex) UNSUPPORTED(viOut64Ex) UNSUPPORTED(viMoveIn8)
                            UNSUPPORTED(viMoveIn16) UNSUPPORTED(viMoveIn32) UNSUPPORTED(viMoveIn64)
                                UNSUPPORTED(viMoveIn8Ex) UNSUPPORTED(viMoveIn16Ex) UNSUPPORTED(
                                    viMoveIn32Ex) UNSUPPORTED(viMoveIn64Ex) UNSUPPORTED(viMoveOut8)
                                    UNSUPPORTED(viMoveOut16) UNSUPPORTED(viMoveOut32)
                                        UNSUPPORTED(viMoveOut64) UNSUPPORTED(viMoveOut8Ex)
                                            UNSUPPORTED(viMoveOut16Ex) UNSUPPORTED(viMoveOut32Ex)
                                                UNSUPPORTED(viMoveOut64Ex) UNSUPPORTED(viPeek8)
                                                    UNSUPPORTED(viPeek16) UNSUPPORTED(viPeek32)
                                                        UNSUPPORTED(viPeek64) UNSUPPORTED(viPoke8)
                                                            UNSUPPORTED(viPoke16)
                                                                UNSUPPORTED(viPoke32)
                                                                    UNSUPPORTED(viPoke64)
// clang-format on
}
