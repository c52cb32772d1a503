// The VISA functions of resource managers and find lists, and those of all objects.

#include "visa/Handles.h"
#include "visa/ResourceName.h"
#include "visa/StatusText.h"
#include "visa/VisaFunctions.h"

#include <algorithm>
#include <string_view>

using visa::Attributes;
using visa::FindList;
using visa::guarded;
using visa::handles;
using visa::Manager;
using visa::Object;
using visa::Session;
using visa::with;

namespace {

/// The time-out of viOpen for clients that give none, in milliseconds.
constexpr ViUInt32 usualOpenTimeout = 5000;

/// Copy a text with its zero byte, unless the caller's buffer is null.
void copyText(ViChar *buffer, std::string_view text)
{
    if (buffer != nullptr) {
        *std::copy(text.begin(), text.end(), buffer) = '\0';
    }
}

ViStatus findNames(const std::string &expression, FindList *names)
{
    if (!visa::matchesExpression(expression, "")) {
        return VI_ERROR_INV_EXPR;
    }
    for (const std::string &name : visa::backend().list()) {
        if (*visa::matchesExpression(expression, name)) {
            names->push_back(name);
        }
    }
    return names->empty() ? VI_ERROR_RSRC_NFOUND : VI_SUCCESS;
}

ViStatus openSession(ViSession manager, const visa::ResourceName &name, ViAccessMode accessMode,
                     ViUInt32 timeout, ViSession *session)
{
    const visa::Deadline deadline =
        visa::deadlineAfter(timeout == VI_TMO_IMMEDIATE ? usualOpenTimeout : timeout);
    Session opened;
    ViStatus status = visa::backend().open(name, deadline, &opened.connection);
    if (status != VI_SUCCESS) {
        return status;
    }
    opened.attributes = Attributes(name, opened.connection->address());
    if ((accessMode & VI_EXCLUSIVE_LOCK) != 0) {
        status = opened.connection->lock(deadline);
        opened.locks = 1;
        status = status == VI_ERROR_TMO ? VI_ERROR_RSRC_LOCKED : status; // unlike viLock
    }
    if (status != VI_SUCCESS) {
        return status;
    }
    return handles().add(std::make_shared<Object>(manager, std::move(opened)), session);
}

/// Run an operation on the attributes of a session or a resource manager.
template <typename Body>
ViStatus withAttributes(ViObject handle, Body body) noexcept
{
    const auto run = [=](auto &object) { return body(object.attributes); };
    const ViStatus status = with<Session>(handle, run);
    return status == VI_ERROR_NSUP_OPER ? with<Manager>(handle, run) : status;
}

} // namespace

ViStatus viOpenDefaultRM(ViSession *resourceManager)
{
    if (resourceManager == nullptr) {
        return VI_ERROR_USER_BUF;
    }
    return guarded(
        [=] { return handles().add(std::make_shared<Object>(0, Manager()), resourceManager); });
}

ViStatus viFindRsrc(ViSession resourceManager, const ViChar *expression, ViFindList *list,
                    ViUInt32 *count, ViChar *description)
{
    return with<Manager>(resourceManager, [=](Manager &) {
        if (expression == nullptr) {
            return VI_ERROR_INV_EXPR;
        }
        if (description == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        FindList names;
        const ViStatus status = findNames(expression, &names);
        if (status != VI_SUCCESS) {
            return status;
        }
        if (count != nullptr) {
            *count = static_cast<ViUInt32>(names.size());
        }
        copyText(description, names.front());
        names.pop_front();
        if (list == nullptr) {
            return VI_SUCCESS;
        }
        return handles().add(std::make_shared<Object>(resourceManager, std::move(names)), list);
    });
}

ViStatus viFindNext(ViFindList list, ViChar *description)
{
    return with<FindList>(list, [=](FindList &names) {
        if (description == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        if (names.empty()) {
            return VI_ERROR_RSRC_NFOUND;
        }
        copyText(description, names.front());
        names.pop_front();
        return VI_SUCCESS;
    });
}

// This examines the name only. viOpen finds out whether there is such a device.
ViStatus viParseRsrcEx(ViSession resourceManager, const ViChar *resourceName,
                       ViUInt16 *interfaceType, ViUInt16 *interfaceNumber, ViChar *resourceClass,
                       ViChar *expandedName, ViChar *alias)
{
    return with<Manager>(resourceManager, [=](Manager &) {
        if (interfaceType == nullptr || interfaceNumber == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        const auto name = visa::parseResourceName(resourceName == nullptr ? "" : resourceName);
        if (!name) {
            return VI_ERROR_INV_RSRC_NAME;
        }
        *interfaceType = VI_INTF_TCPIP;
        *interfaceNumber = name->board;
        copyText(resourceClass, "INSTR");
        copyText(expandedName, name->full);
        copyText(alias, "");
        return VI_SUCCESS;
    });
}

// The manager's mutex is not held while the device is opened, so that a device that does not answer
// blocks no other thread.
ViStatus viOpen(ViSession resourceManager, const ViChar *resourceName, ViAccessMode accessMode,
                ViUInt32 timeoutMs, ViSession *session)
{
    if (session == nullptr) {
        return VI_ERROR_USER_BUF;
    }
    *session = 0;
    const ViStatus status = with<Manager>(resourceManager, [](Manager &) { return VI_SUCCESS; });
    if (status != VI_SUCCESS) {
        return status;
    }
    return guarded([=] {
        if ((accessMode & ~(VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG)) != 0) {
            return VI_ERROR_INV_ACC_MODE; // shared locks are not supported
        }
        const auto name = visa::parseResourceName(resourceName == nullptr ? "" : resourceName);
        if (!name) {
            return VI_ERROR_INV_RSRC_NAME;
        }
        return openSession(resourceManager, *name, accessMode, timeoutMs, session);
    });
}

ViStatus viClose(ViObject object)
{
    if (object == 0) {
        return VI_WARN_NULL_OBJECT;
    }
    return guarded([=] { return handles().close(object); });
}

ViStatus viStatusDesc(ViObject object, ViStatus status, ViChar *description)
{
    return guarded([=] {
        if (handles().find(object) == nullptr) {
            return VI_ERROR_INV_OBJECT;
        }
        if (description == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        bool isKnown = false;
        copyText(description, visa::statusText(status, &isKnown));
        return isKnown ? VI_SUCCESS : VI_WARN_UNKNOWN_STATUS;
    });
}

ViStatus viSetAttribute(ViObject object, ViAttr attribute, ViAttrState value)
{
    return withAttributes(object,
                          [=](Attributes &attributes) { return attributes.set(attribute, value); });
}

ViStatus viGetAttribute(ViObject object, ViAttr attribute, void *value)
{
    return withAttributes(object, [=](const Attributes &attributes) {
        if (value == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        return attributes.get(attribute, value);
    });
}

// This library raises no events. They are always disabled, and their queue is empty.
ViStatus viDisableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/)
{
    return with<Session>(session, [](const Session &) { return VI_SUCCESS_EVENT_DIS; });
}

ViStatus viDiscardEvents(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/)
{
    return with<Session>(session, [](const Session &) { return VI_SUCCESS_QUEUE_EMPTY; });
}
