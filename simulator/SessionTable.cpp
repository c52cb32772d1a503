#include "simulator/SessionTable.h"

#include "simulator/ResourceName.h"

#include <cstring>

namespace simulator {

namespace {

constexpr std::size_t longestResourceName = 255;
constexpr std::size_t largestTable = 1024; // handles open at a time

} // namespace

ViStatus SessionTable::newHandle(ViSession &handle)
{
    if (managers_.size() + sessions_.size() >= largestTable || lastHandle_ + 1 == 0) {
        return VI_ERROR_ALLOC;
    }
    handle = ++lastHandle_;
    return VI_SUCCESS;
}

ViStatus SessionTable::openManager(ViSession &manager)
{
    const ViStatus status = newHandle(manager);
    if (status == VI_SUCCESS) {
        managers_.insert(manager);
    }
    return status;
}

ViStatus SessionTable::open(ViSession manager, const char *resourceName, ViAccessMode accessMode,
                            ViSession &session)
{
    session = 0;
    if (managers_.count(manager) == 0) {
        return sessions_.count(manager) == 0 ? VI_ERROR_INV_OBJECT : VI_ERROR_NSUP_OPER;
    }
    if (accessMode != VI_NO_LOCK && accessMode != VI_LOAD_CONFIG) {
        return VI_ERROR_INV_ACC_MODE; // the bench has no locks
    }
    const std::size_t length = strnlen(resourceName, longestResourceName + 1);
    const auto name = parseResourceName({resourceName, length});
    if (length > longestResourceName || !name) {
        return VI_ERROR_INV_RSRC_NAME;
    }
    Instrument *instrument = name->device == "inst0" ? bench_.find(name->host) : nullptr;
    if (instrument == nullptr) {
        return VI_ERROR_RSRC_NFOUND;
    }
    const ViStatus status = newHandle(session);
    if (status == VI_SUCCESS) {
        sessions_.try_emplace(session, *instrument, manager);
    }
    return status;
}

ViStatus SessionTable::close(ViObject object)
{
    if (sessions_.erase(object) != 0) {
        return VI_SUCCESS;
    }
    if (managers_.erase(object) == 0) {
        return VI_ERROR_INV_OBJECT;
    }
    for (auto session = sessions_.begin(); session != sessions_.end();) {
        session = session->second.manager() == object ? sessions_.erase(session) : ++session;
    }
    return VI_SUCCESS;
}

bool SessionTable::isOpen(ViObject object) const
{
    return managers_.count(object) != 0 || sessions_.count(object) != 0;
}

Session *SessionTable::find(ViSession handle, ViStatus &status)
{
    const auto found = sessions_.find(handle);
    if (found == sessions_.end()) {
        status = managers_.count(handle) != 0 ? VI_ERROR_NSUP_OPER : VI_ERROR_INV_OBJECT;
        return nullptr;
    }
    return &found->second;
}

} // namespace simulator
