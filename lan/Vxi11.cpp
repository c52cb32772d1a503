#include "lan/Vxi11.h"

namespace lan::vxi11 {

ViStatus statusOf(quint32 error)
{
    switch (error) {
    case None:
        return VI_SUCCESS;
    case SyntaxError:
    case NotAccessible:
    case InvalidAddress:
        return VI_ERROR_RSRC_NFOUND;
    case InvalidLink: // the device has started anew
        return VI_ERROR_CONN_LOST;
    case NotSupported:
        return VI_ERROR_NSUP_OPER;
    case OutOfResources:
        return VI_ERROR_ALLOC;
    case LockedByAnother:
        return VI_ERROR_RSRC_LOCKED;
    case NoLockHeld:
        return VI_ERROR_SESN_NLOCKED;
    case IoTimeout:
        return VI_ERROR_TMO;
    default:
        return VI_ERROR_IO;
    }
}

} // namespace lan::vxi11
