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
    Description{VI_SUCCESS, "Operation completed successfully."},
    Description{VI_SUCCESS_TERM_CHAR, "The termination character was read."},
    Description{VI_SUCCESS_MAX_CNT, "The number of bytes read is equal to the input count."},
    Description{VI_WARN_UNKNOWN_STATUS,
                "The status code passed to the operation could not be interpreted."},
    Description{VI_ERROR_INV_OBJECT, "The given session or object reference is invalid."},
    Description{VI_ERROR_RSRC_NFOUND,
                "Insufficient location information or the resource is not present in the system."},
    Description{VI_ERROR_INV_RSRC_NAME, "The resource name is malformed."},
    Description{VI_ERROR_INV_ACC_MODE, "Invalid access mode."},
    Description{VI_ERROR_TMO, "Timeout expired before operation completed."},
    Description{VI_ERROR_NSUP_ATTR, "The object does not have this attribute."},
    Description{VI_ERROR_NSUP_ATTR_STATE, "The attribute cannot take this state."},
    Description{VI_ERROR_ALLOC,
                "Insufficient system resources to perform the requested operation."},
    Description{VI_ERROR_INV_MASK, "The buffer mask is invalid."},
    Description{VI_ERROR_IO, "Could not perform operation because of I/O error."},
    Description{VI_ERROR_INV_FMT, "A conversion in the format string is invalid."},
    Description{VI_ERROR_NSUP_FMT, "A conversion in the format string is not supported."},
    Description{VI_ERROR_NSUP_OPER, "The given session or object reference does not support this "
                                    "operation."},
    Description{VI_ERROR_USER_BUF, "The caller's buffer is not valid."},
    Description{VI_ERROR_INV_MODE, "The mode is invalid."},
    Description{VI_ERROR_LIBRARY_NFOUND, "A code library required by VISA could not be located or "
                                         "loaded."},
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
