#pragma once

#include "simulator/Attributes.h"
#include "simulator/Bench.h"
#include "simulator/Session.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace simulator {

/// The open resource managers, sessions and find lists by their handles, which are never used
/// twice.
class SessionTable
{
public:
    explicit SessionTable(Bench &bench) : bench_(bench) {}

    ViStatus openManager(ViSession &manager);
    /// VI_SUCCESS when the handle is that of a resource manager.
    [[nodiscard]] ViStatus managerStatus(ViObject object) const;

    /// Opens the instrument that a resource string names for a manager; `session` is 0 on failure.
    ViStatus open(ViSession manager, const char *resourceName, ViAccessMode accessMode,
                  ViSession &session);
    /// Closes a session or a find list, or a resource manager with all that it opened.
    ViStatus close(ViObject object);

    /// Finds the resource strings that an expression matches: VI_ERROR_RSRC_NFOUND for none.
    ViStatus find(const char *expression, std::vector<std::string> &names) const;
    /// Opens a find list, whose names findNext() answers one after the other.
    ViStatus openList(ViSession manager, const std::vector<std::string> &names, ViFindList &list);
    ViStatus findNext(ViFindList list, std::string &name);

    [[nodiscard]] bool isOpen(ViObject object) const;
    /// The session with this handle; otherwise null and `status` says why.
    Session *session(ViSession handle, ViStatus &status);
    /// The attributes of a session or manager; otherwise null and `status` says why.
    Attributes *attributes(ViObject object, ViStatus &status);

private:
    struct FindList
    {
        ViSession manager;
        std::deque<std::string> names;
    };

    ViStatus newHandle(ViSession &handle);

    Bench &bench_;
    std::map<ViSession, Attributes> managers_;
    std::map<ViSession, Session> sessions_;
    std::map<ViFindList, FindList> lists_;
    ViSession lastHandle_ = 0;
};

} // namespace simulator
