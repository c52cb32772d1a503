// The VISA functions of resource managers and find lists, and those of all objects.

#include "visa/Deadline.h"
#include "visa/Guard.h"
#include "visa/ResourceExpression.h"
#include "visa/ResourceName.h"
#include "visa/StatusText.h"
#include "visa/VisaFunctions.h"

#include <algorithm>
#include <cstring>
#include <string_view>

using visa::Attributes;
using visa::guarded;
using visa::handles;
using visa::Object;
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

ViStatus findNames(const char *expression, std::deque<std::string> *names)
{
    const std::string text(expression, strnlen(expression, VI_FIND_BUFLEN));
    if (text.size() == VI_FIND_BUFLEN || !visa::matchesExpression(text, "")) {
        return VI_ERROR_INV_EXPR;
    }
    for (const std::string &name : visa::backend().list()) {
        if (*visa::matchesExpression(text, name)) {
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
    const auto object = std::make_shared<Object>();
    ViStatus status = visa::backend().open(name, deadline, &object->connection);
    if (status != VI_SUCCESS) {
        return status;
    }
    object->kind = Object::Kind::Session;
    object->manager = manager;
    object->attributes = Attributes(name, object->connection->address(), manager);
    if ((accessMode & VI_EXCLUSIVE_LOCK) != 0) {
        status = object->connection->lock(deadline);
        object->locks = 1;
        object->attributes.assign(VI_ATTR_RSRC_LOCK_STATE, VI_EXCLUSIVE_LOCK);
    }
    return status == VI_SUCCESS ? handles().add(object, session) : status;
}

/// Run an operation on the attributes of a session or a resource manager.
template <typename Body>
ViStatus withAttributes(ViObject handle, Body body) noexcept
{
    return guarded([&] {
        const auto object = handles().find(handle);
        if (object == nullptr) {
            return VI_ERROR_INV_OBJECT;
        }
        if (object->kind == Object::Kind::List) {
            return VI_ERROR_NSUP_OPER;
        }
        const std::lock_guard lock(object->mutex);
        return body(object->attributes);
    });
}

} // namespace

ViStatus viOpenDefaultRM(ViSession *resourceManager)
{
    if (resourceManager == nullptr) {
        return VI_ERROR_USER_BUF;
    }
    return guarded([=] { return handles().add(std::make_shared<Object>(), resourceManager); });
}

ViStatus viFindRsrc(ViSession resourceManager, const ViChar *expression, ViFindList *list,
                    ViUInt32 *count, ViChar *description)
{
    return with(resourceManager, Object::Kind::Manager, [=](Object &) {
        if (expression == nullptr) {
            return VI_ERROR_INV_EXPR;
        }
        if (description == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        const auto found = std::make_shared<Object>();
        found->kind = Object::Kind::List;
        found->manager = resourceManager;
        ViStatus status = findNames(expression, &found->names);
        if (status != VI_SUCCESS) {
            return status;
        }
        if (count != nullptr) {
            *count = static_cast<ViUInt32>(found->names.size());
        }
        copyText(description, found->names.front());
        found->names.pop_front();
        return list == nullptr ? VI_SUCCESS : handles().add(found, list);
    });
}

ViStatus viFindNext(ViFindList list, ViChar *description)
{
    return with(list, Object::Kind::List, [=](Object &object) {
        if (description == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        if (object.names.empty()) {
            return VI_ERROR_RSRC_NFOUND;
        }
        copyText(description, object.names.front());
        object.names.pop_front();
        return VI_SUCCESS;
    });
}

ViStatus viParseRsrc(ViSession resourceManager, const ViChar *resourceName, ViUInt16 *interfaceType,
                     ViUInt16 *interfaceNumber)
{
    return viParseRsrcEx(resourceManager, resourceName, interfaceType, interfaceNumber, nullptr,
                         nullptr, nullptr);
}

// Only the name is examined; viOpen finds out whether there is such a device.
ViStatus viParseRsrcEx(ViSession resourceManager, const ViChar *resourceName,
                       ViUInt16 *interfaceType, ViUInt16 *interfaceNumber, ViChar *resourceClass,
                       ViChar *expandedName, ViChar *alias)
{
    return with(resourceManager, Object::Kind::Manager, [=](Object &) {
        if (interfaceType == nullptr || interfaceNumber == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        const auto name = visa::parseResourceName(resourceName == nullptr ? "" : resourceName);
        if (!name) {
            return VI_ERROR_INV_RSRC_NAME;
        }
        *interfaceType = name->interfaceType;
        *interfaceNumber = name->board;
        copyText(resourceClass, name->resourceClass);
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
    const ViStatus status =
        with(resourceManager, Object::Kind::Manager, [](Object &) { return VI_SUCCESS; });
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
        if (name->interfaceType != VI_INTF_TCPIP || name->resourceClass != "INSTR") {
            return VI_ERROR_RSRC_NFOUND;
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

// This library raises no events: they are always disabled, and their queue is empty.
ViStatus viDisableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/)
{
    return withAttributes(session, [](const Attributes &) { return VI_SUCCESS_EVENT_DIS; });
}

ViStatus viDiscardEvents(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/)
{
    return withAttributes(session, [](const Attributes &) { return VI_SUCCESS_QUEUE_EMPTY; });
}
