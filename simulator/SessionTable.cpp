#include "simulator/SessionTable.h"

#include "simulator/ResourceExpression.h"
#include "simulator/ResourceName.h"

#include <cstring>
#include <utility>

namespace simulator {

namespace {

constexpr std::size_t largestTable = 1024; // handles open at a time

/// Closes what a manager has opened.
template <typename Objects, typename IsOfManager>
void eraseOf(Objects &objects, IsOfManager isOfManager)
{
    for (auto at = objects.begin(); at != objects.end();) {
        at = isOfManager(at->second) ? objects.erase(at) : std::next(at);
    }
}

} // namespace

ViStatus SessionTable::newHandle(ViSession &handle)
{
    if (managers_.size() + sessions_.size() + lists_.size() >= largestTable ||
        lastHandle_ + 1 == 0) {
        return VI_ERROR_ALLOC;
    }
    handle = ++lastHandle_;
    return VI_SUCCESS;
}

ViStatus SessionTable::openManager(ViSession &manager)
{
    const ViStatus status = newHandle(manager);
    if (status == VI_SUCCESS) {
        managers_.try_emplace(manager);
    }
    return status;
}

ViStatus SessionTable::open(ViSession manager, const char *resourceName, ViAccessMode accessMode,
                            ViSession &session)
{
    session = 0;
    if (accessMode != VI_NO_LOCK && accessMode != VI_LOAD_CONFIG) {
        return VI_ERROR_INV_ACC_MODE; // the bench has no locks
    }
    const auto name = parseResourceName(resourceName);
    if (!name) {
        return VI_ERROR_INV_RSRC_NAME;
    }
    Instrument *instrument = name->device == "inst0" ? bench_.find(name->host) : nullptr;
    if (instrument == nullptr) {
        return VI_ERROR_RSRC_NFOUND;
    }
    const ViStatus status = newHandle(session);
    if (status == VI_SUCCESS) {
        sessions_.try_emplace(session, *instrument, Attributes(*name, manager));
    }
    return status;
}

ViStatus SessionTable::close(ViObject object)
{
    if (sessions_.erase(object) != 0 || lists_.erase(object) != 0) {
        return VI_SUCCESS;
    }
    if (managers_.erase(object) == 0) {
        return VI_ERROR_INV_OBJECT;
    }
    eraseOf(sessions_, [=](const Session &session) {
        return session.attributes().number(VI_ATTR_RM_SESSION) == object;
    });
    eraseOf(lists_, [=](const FindList &list) { return list.manager == object; });
    return VI_SUCCESS;
}

ViStatus SessionTable::find(const char *expression, std::vector<std::string> &names) const
{
    const std::string_view text(expression, strnlen(expression, VI_FIND_BUFLEN));
    if (text.size() == VI_FIND_BUFLEN) {
        return VI_ERROR_INV_EXPR;
    }
    for (const std::string &host : bench_.hosts()) {
        ResourceName name;
        name.host = host;
        const auto matches = matchesExpression(text, resourceString(name));
        if (!matches) {
            return VI_ERROR_INV_EXPR;
        }
        if (*matches) {
            names.push_back(resourceString(name));
        }
    }
    return names.empty() ? VI_ERROR_RSRC_NFOUND : VI_SUCCESS;
}

ViStatus SessionTable::openList(ViSession manager, const std::vector<std::string> &names,
                                ViFindList &list)
{
    const ViStatus status = newHandle(list);
    if (status == VI_SUCCESS) {
        lists_[list] = {manager, {names.begin(), names.end()}};
    }
    return status;
}

ViStatus SessionTable::findNext(ViFindList list, std::string &name)
{
    const auto found = lists_.find(list);
    if (found == lists_.end()) {
        return VI_ERROR_INV_OBJECT;
    }
    std::deque<std::string> &names = found->second.names;
    if (names.empty()) {
        return VI_ERROR_RSRC_NFOUND;
    }
    name = std::move(names.front());
    names.pop_front();
    return VI_SUCCESS;
}

ViStatus SessionTable::managerStatus(ViObject object) const
{
    if (managers_.count(object) != 0) {
        return VI_SUCCESS;
    }
    return isOpen(object) ? VI_ERROR_NSUP_OPER : VI_ERROR_INV_OBJECT;
}

bool SessionTable::isOpen(ViObject object) const
{
    return managers_.count(object) != 0 || sessions_.count(object) != 0 ||
           lists_.count(object) != 0;
}

Session *SessionTable::session(ViSession handle, ViStatus &status)
{
    const auto found = sessions_.find(handle);
    if (found == sessions_.end()) {
        status = isOpen(handle) ? VI_ERROR_NSUP_OPER : VI_ERROR_INV_OBJECT;
        return nullptr;
    }
    return &found->second;
}

Attributes *SessionTable::attributes(ViObject object, ViStatus &status)
{
    if (const auto manager = managers_.find(object); manager != managers_.end()) {
        return &manager->second;
    }
    Session *open = session(object, status);
    return open == nullptr ? nullptr : &open->attributes();
}

} // namespace simulator
