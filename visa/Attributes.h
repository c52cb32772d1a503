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
    /// Make those of a resource manager.
    Attributes();
    /// Make those of a session with a device, opened by the manager.
    Attributes(const ResourceName &name, const std::string &address, ViSession manager);

    /// Set one, as a client may. Returns VI_ERROR_NSUP_ATTR, VI_ERROR_ATTR_READONLY or
    /// VI_ERROR_NSUP_ATTR_STATE when it cannot be.
    ViStatus set(ViAttr attribute, ViAttrState value);
    /// Write exactly the attribute's width, a text with its zero byte; or VI_ERROR_NSUP_ATTR.
    ViStatus get(ViAttr attribute, void *value) const;

    /// Tell a number that is known to be there.
    [[nodiscard]] ViUInt32 number(ViAttr attribute) const
    {
        return static_cast<ViUInt32>(numbers.at(attribute));
    }
    /// Set a number, whether clients may or not.
    void put(ViAttr attribute, ViUInt32 value) { numbers[attribute] = value; }

private:
    std::map<ViAttr, ViAttrState> numbers;
    std::map<ViAttr, std::string> texts;
};

} // namespace visa
