#include "visa/VisaFunctions.h"

// Other functions of VPP-4.3 for message-based instruments. All return VI_ERROR_NSUP_OPER; clients
// need them in order to link with this library or to load it. They declare no parameters: in the
// platform's C calling convention the caller removes the arguments, whatever they are.

#define UNSUPPORTED(name)                                                                          \
    VISA_EXPORT ViStatus name()                                                                    \
    {                                                                                              \
        return VI_ERROR_NSUP_OPER;                                                                 \
    }

extern "C" {
// Formatted and buffered I/O, then the others; clang-format would join them.
// clang-format off
UNSUPPORTED(viPrintf) UNSUPPORTED(viVPrintf) UNSUPPORTED(viSPrintf) UNSUPPORTED(viVSPrintf)
UNSUPPORTED(viScanf) UNSUPPORTED(viVScanf) UNSUPPORTED(viSScanf) UNSUPPORTED(viVSScanf)
UNSUPPORTED(viQueryf) UNSUPPORTED(viVQueryf) UNSUPPORTED(viBufRead) UNSUPPORTED(viBufWrite)

UNSUPPORTED(viReadAsync) UNSUPPORTED(viWriteAsync) UNSUPPORTED(viTerminate)
UNSUPPORTED(viEnableEvent) UNSUPPORTED(viWaitOnEvent)
UNSUPPORTED(viInstallHandler) UNSUPPORTED(viUninstallHandler)
UNSUPPORTED(viWriteFromFile) UNSUPPORTED(viParseRsrc)
// clang-format on
}
