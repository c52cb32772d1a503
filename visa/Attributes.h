#pragma once

#include "visa/VisaTypes.h"

#include <map>
#include <string>

namespace visa {

struct ResourceName;

/// The attributes of a resource manager or of a session.
class Attributes
{
public:
    /// Make the attributes of a resource manager.
    Attributes();
    /// Make the attributes of a session that the manager has opened.
    Attributes(const ResourceName &name, const std::string &address, ViSession manager);

    /// Set an attribute for a client. On failure returns VI_ERROR_NSUP_ATTR,
    /// VI_ERROR_ATTR_READONLY or VI_ERROR_NSUP_ATTR_STATE.
    ViStatus set(ViAttr attribute, ViAttrState value);
    /// Write a number in the attribute's width, or a text with its zero byte. Returns
    /// VI_ERROR_NSUP_ATTR when there is no such attribute.
    ViStatus get(ViAttr attribute, void *value) const;

    /// Returns the value of a numeric attribute that the object has.
    [[nodiscard]] ViUInt32 number(ViAttr attribute) const
    {
        return static_cast<ViUInt32>(numbers.at(attribute));
    }
    /// Set a numeric attribute, even if it is read-only for clients.
    void assign(ViAttr attribute, ViUInt32 value) { numbers[attribute] = value; }

private:
    std::map<ViAttr, ViAttrState> numbers;
    std::map<ViAttr, std::string> texts;
};

} // namespace visa
