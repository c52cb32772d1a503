#include "visa/StatusText.h"

#include <array>
#include <cstdio>
#include <utility>

namespace visa {

namespace {

using Text = std::pair<ViStatus, const char *>;

constexpr std::array texts{
    Text{VI_SUCCESS, "Success."},
    Text{VI_SUCCESS_EVENT_DIS, "The event is already disabled."},
    Text{VI_SUCCESS_QUEUE_EMPTY, "The event queue is already empty."},
    Text{VI_SUCCESS_TERM_CHAR, "The termination character was read."},
    Text{VI_SUCCESS_MAX_CNT, "The requested number of bytes was read."},
    Text{VI_SUCCESS_NESTED_EXCLUSIVE, "The session has locked the resource more than once."},
    Text{VI_WARN_NULL_OBJECT, "There is nothing to close."},
    Text{VI_WARN_UNKNOWN_STATUS, "This status is not known."},
    Text{VI_ERROR_SYSTEM_ERROR, "The operating system refused a service."},
    Text{VI_ERROR_INV_OBJECT, "No session, manager or list has this handle."},
    Text{VI_ERROR_RSRC_LOCKED, "Another session has locked the resource."},
    Text{VI_ERROR_INV_EXPR, "The search expression is malformed."},
    Text{VI_ERROR_RSRC_NFOUND, "There is no such resource."},
    Text{VI_ERROR_INV_RSRC_NAME, "The resource name is malformed."},
    Text{VI_ERROR_INV_ACC_MODE, "The access mode is not supported."},
    Text{VI_ERROR_TMO, "The operation timed out."},
    Text{VI_ERROR_NSUP_ATTR, "The object does not have this attribute."},
    Text{VI_ERROR_NSUP_ATTR_STATE, "The attribute cannot have this value."},
    Text{VI_ERROR_ATTR_READONLY, "The attribute is read-only."},
    Text{VI_ERROR_INV_LOCK_TYPE, "This type of lock is not supported."},
    Text{VI_ERROR_ALLOC, "No memory or no handle is left."},
    Text{VI_ERROR_INV_MASK, "The buffer mask is invalid."},
    Text{VI_ERROR_IO, "The transfer failed."},
    Text{VI_ERROR_NSUP_OPER, "The object does not support this operation."},
    Text{VI_ERROR_USER_BUF, "The caller's buffer is invalid."},
    Text{VI_ERROR_INV_PROT, "The trigger protocol is not supported."},
    Text{VI_ERROR_INV_MODE, "The mode is invalid."},
    Text{VI_ERROR_SESN_NLOCKED, "The session has no lock."},
    Text{VI_ERROR_LIBRARY_NFOUND, "A library is missing."},
    Text{VI_ERROR_FILE_ACCESS, "The file could not be opened."},
    Text{VI_ERROR_FILE_IO, "The file could not be read or written."},
    Text{VI_ERROR_CONN_LOST, "The connection to the device was lost."},
};

} // namespace

std::string statusText(ViStatus status, bool *known)
{
    *known = true;
    for (const auto &[code, text] : texts) {
        if (code == status) {
            return text;
        }
    }
    *known = false;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "Unknown status 0x%08X.",
                  static_cast<ViUInt32>(status));
    return text.data();
}

} // namespace visa
