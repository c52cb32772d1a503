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
    /// Make the attributes of a session.
    Attributes(const ResourceName &name, const std::string &address);

    /// Set an attribute for a client. On failure returns VI_ERROR_NSUP_ATTR,
    /// VI_ERROR_ATTR_READONLY or VI_ERROR_NSUP_ATTR_STATE.
    ViStatus set(ViAttr attribute, ViAttrState value);
    /// Write a number in the attribute's width, or a text with its zero byte. Returns
    /// VI_ERROR_NSUP_ATTR when there is no such attribute.
    ViStatus get(ViAttr attribute, void *value) const;

    /// Returns the value of a numeric attribute that the object has.
    [[nodiscard]] ViUInt32 number(ViAttr attribute) const { return numbers.at(attribute).value; }

private:
    /// A numeric attribute and the range that clients may set. The range is empty when the
    /// attribute is read-only.
    struct Number
    {
        unsigned width = 0; // bytes
        ViUInt32 value = 0;
        ViUInt32 minimum = 1;
        ViUInt32 maximum = 0;
    };

    std::map<ViAttr, Number> numbers;
    std::map<ViAttr, std::string> texts;
};

} // namespace visa
