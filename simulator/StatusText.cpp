#include "simulator/StatusText.h"

#include <array>
#include <cstdio>

namespace simulator {

namespace {

struct Description
{
    ViStatus status;
    const char *text;
};

constexpr std::array descriptions{
    Description{VI_SUCCESS, "Success."},
    Description{VI_SUCCESS_EVENT_DIS, "The event is disabled already."},
    Description{VI_SUCCESS_QUEUE_EMPTY, "The event queue is empty already."},
    Description{VI_SUCCESS_TERM_CHAR, "The termination character was read."},
    Description{VI_SUCCESS_MAX_CNT, "As many bytes were read as were asked for."},
    Description{VI_WARN_NULL_OBJECT, "There is nothing to close."},
    Description{VI_WARN_UNKNOWN_STATUS, "This status is not known here."},
    Description{VI_ERROR_SYSTEM_ERROR, "The operating system refused a service."},
    Description{VI_ERROR_INV_OBJECT, "No session or manager is open under this handle."},
    Description{VI_ERROR_INV_EXPR, "The expression to search for is malformed."},
    Description{VI_ERROR_RSRC_NFOUND, "No such resource is there."},
    Description{VI_ERROR_INV_RSRC_NAME, "The resource name is malformed."},
    Description{VI_ERROR_INV_ACC_MODE, "The access mode is not supported."},
    Description{VI_ERROR_TMO, "The time-out passed before the operation was done."},
    Description{VI_ERROR_NSUP_ATTR, "The object does not have this attribute."},
    Description{VI_ERROR_NSUP_ATTR_STATE, "The attribute cannot take this state."},
    Description{VI_ERROR_ATTR_READONLY, "The attribute cannot be set."},
    Description{VI_ERROR_ALLOC, "Memory or handles ran out."},
    Description{VI_ERROR_INV_MASK, "The buffer mask is invalid."},
    Description{VI_ERROR_IO, "The transfer failed."},
    Description{VI_ERROR_INV_FMT, "A conversion in the format string is invalid."},
    Description{VI_ERROR_NSUP_FMT, "A conversion in the format string is not supported."},
    Description{VI_ERROR_NSUP_OPER, "The object does not support this operation."},
    Description{VI_ERROR_USER_BUF, "The caller's buffer is not valid."},
    Description{VI_ERROR_INV_MODE, "The mode is invalid."},
    Description{VI_ERROR_LIBRARY_NFOUND, "A library is missing."},
    Description{VI_ERROR_FILE_ACCESS, "The file could not be opened."},
    Description{VI_ERROR_FILE_IO, "The file could not be read or written."},
};

} // namespace

std::string statusText(ViStatus status, bool &known)
{
    for (const Description &description : descriptions) {
        if (description.status == status) {
            known = true;
            return description.text;
        }
    }
    known = false;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "Unknown status code 0x%08X.",
                  static_cast<unsigned>(status));
    return text.data();
}

} // namespace simulator
