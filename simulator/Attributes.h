#pragma once

#include "instrument/VisaTypes.h"
#include "simulator/ResourceName.h"

#include <map>
#include <string>

namespace simulator {

/// The attributes of a resource manager or of a session.
class Attributes
{
public:
    /// Those of a resource manager.
    Attributes();
    /// Those of a session with the instrument of this name, opened by `manager`.
    Attributes(const ResourceName &name, ViSession manager);

    /// VI_ERROR_NSUP_ATTR, VI_ERROR_ATTR_READONLY or VI_ERROR_NSUP_ATTR_STATE when it cannot be.
    ViStatus set(ViAttr attribute, ViAttrState value);
    /// Writes exactly the attribute's width, a text with its zero byte; or VI_ERROR_NSUP_ATTR.
    ViStatus get(ViAttr attribute, void *value) const;

    /// An attribute that is known to be there.
    [[nodiscard]] ViUInt32 number(ViAttr attribute) const { return numbers_.at(attribute).value; }

private:
    struct Number
    {
        std::size_t width; // bytes
        ViUInt32 value;
        bool writable = false;
        ViUInt32 least = 0; // of the values that can be written
        ViUInt32 greatest = 0;
    };

    std::map<ViAttr, Number> numbers_;
    std::map<ViAttr, std::string> texts_;
};

} // namespace simulator
