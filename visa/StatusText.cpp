#include "visa/StatusText.h"

#include <array>
#include <cstdio>
#include <utility>

namespace visa {

namespace {

constexpr std::pair<ViStatus, const char *> texts[] = {
    {VI_SUCCESS, "Success."},
    {VI_SUCCESS_EVENT_DIS, "The event is disabled already."},
    {VI_SUCCESS_QUEUE_EMPTY, "The event queue is empty already."},
    {VI_SUCCESS_TERM_CHAR, "The termination character was read."},
    {VI_SUCCESS_MAX_CNT, "As many bytes were read as were asked for."},
    {VI_SUCCESS_NESTED_EXCLUSIVE, "The session has locked the resource more than once."},
    {VI_WARN_NULL_OBJECT, "There is nothing to close."},
    {VI_WARN_UNKNOWN_STATUS, "This status is not known here."},
    {VI_ERROR_SYSTEM_ERROR, "The operating system refused a service."},
    {VI_ERROR_INV_OBJECT, "No session or manager is open under this handle."},
    {VI_ERROR_RSRC_LOCKED, "Another session has locked the resource."},
    {VI_ERROR_INV_EXPR, "The expression to search for is malformed."},
    {VI_ERROR_RSRC_NFOUND, "No such resource is there."},
    {VI_ERROR_INV_RSRC_NAME, "The resource name is malformed."},
    {VI_ERROR_INV_ACC_MODE, "The access mode is not supported."},
    {VI_ERROR_TMO, "The time-out passed before the operation was done."},
    {VI_ERROR_NSUP_ATTR, "The object does not have this attribute."},
    {VI_ERROR_NSUP_ATTR_STATE, "The attribute cannot take this state."},
    {VI_ERROR_ATTR_READONLY, "The attribute cannot be set."},
    {VI_ERROR_INV_LOCK_TYPE, "The kind of lock is not supported."},
    {VI_ERROR_ALLOC, "Memory or handles ran out."},
    {VI_ERROR_INV_MASK, "The buffer mask is invalid."},
    {VI_ERROR_IO, "The transfer failed."},
    {VI_ERROR_NSUP_OPER, "The object does not support this operation."},
    {VI_ERROR_USER_BUF, "The caller's buffer is not valid."},
    {VI_ERROR_INV_PROT, "The trigger protocol is not supported."},
    {VI_ERROR_INV_MODE, "The mode is invalid."},
    {VI_ERROR_SESN_NLOCKED, "The session has no lock."},
    {VI_ERROR_LIBRARY_NFOUND, "A library is missing."},
    {VI_ERROR_FILE_ACCESS, "The file could not be opened."},
    {VI_ERROR_FILE_IO, "The file could not be read or written."},
    {VI_ERROR_CONN_LOST, "The connection to the device was lost."},
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
