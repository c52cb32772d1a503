#include "visa/Attributes.h"

#include "visa/ResourceName.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace visa {

namespace {

/// A numeric attribute: its width, its first value and the values that clients may set.
struct Number
{
    ViAttr attribute;
    unsigned width; // bytes
    ViAttrState initial;
    unsigned flags = 0;
    ViAttrState minimum = 0;
    ViAttrState maximum = 0;
};

// Flags of a number.
constexpr unsigned ofManagers = 1; // resource managers have it as well as sessions
constexpr unsigned writable = 2;

constexpr ViAttrState maximum32 = 0xFFFFFFFF;

// The numeric attributes. A setting with a single supported value accepts only that value.
constexpr std::array table{
    Number{VI_ATTR_RSRC_IMPL_VERSION, 4, ORVANTA_VERSION_NUMBER, ofManagers},
    Number{VI_ATTR_RSRC_LOCK_STATE, 4, VI_NO_LOCK, ofManagers},
    Number{VI_ATTR_MAX_QUEUE_LENGTH, 4, 50, ofManagers | writable, 1, maximum32},
    Number{VI_ATTR_USER_DATA_32, 4, 0, ofManagers | writable, 0, maximum32},
    Number{VI_ATTR_USER_DATA, 8, 0, ofManagers | writable, 0, ~ViAttrState{0}},
    Number{VI_ATTR_RSRC_SPEC_VERSION, 4, 0x00300000, ofManagers}, // VISA 3.0
    Number{VI_ATTR_RSRC_MANF_ID, 2, 0x0FFF, ofManagers},
    Number{VI_ATTR_SEND_END_EN, 2, 1, writable, 0, 1},
    Number{VI_ATTR_TERMCHAR, 1, '\n', writable, 0, 0xFF},
    Number{VI_ATTR_TERMCHAR_EN, 2, 0, writable, 0, 1},
    Number{VI_ATTR_TMO_VALUE, 4, 2000, writable, 0, maximum32},
    Number{VI_ATTR_IO_PROT, 2, VI_PROT_NORMAL, writable, VI_PROT_NORMAL, VI_PROT_NORMAL},
    Number{VI_ATTR_DMA_ALLOW_EN, 2, 0, writable, 0, 1},
    Number{VI_ATTR_RD_BUF_OPER_MODE, 2, 3, writable, 3, 3}, // only viFlush flushes it
    Number{VI_ATTR_RD_BUF_SIZE, 4, 0},
    Number{VI_ATTR_WR_BUF_OPER_MODE, 2, 2, writable, 2, 2}, // flushed when full
    Number{VI_ATTR_WR_BUF_SIZE, 4, 0},
    Number{VI_ATTR_SUPPRESS_END_EN, 2, 0, writable, 0, 0},
    Number{VI_ATTR_FILE_APPEND_EN, 2, 0, writable, 0, 1},
    Number{VI_ATTR_TRIG_ID, 2, 0xFFFF, writable, 0xFFFF, 0xFFFF}, // -1: by software
    Number{VI_ATTR_TCPIP_IS_HISLIP, 2, 0},
    Number{VI_ATTR_RM_SESSION, 4, 0},
    Number{VI_ATTR_INTF_TYPE, 2, VI_INTF_TCPIP},
    Number{VI_ATTR_INTF_NUM, 2, 0},
};

const Number &definitionOf(ViAttr attribute)
{
    return *std::find_if(table.begin(), table.end(),
                         [=](const Number &number) { return number.attribute == attribute; });
}

/// Returns the lowest `width` bytes of a value.
ViAttrState lowestBytes(ViAttrState value, unsigned width)
{
    return width == 8 ? value : value & ((ViAttrState{1} << 8 * width) - 1);
}

template <typename Integer>
void store(ViAttrState number, void *target)
{
    const auto value = static_cast<Integer>(number);
    std::memcpy(target, &value, sizeof value);
}

} // namespace

Attributes::Attributes() : texts{{VI_ATTR_RSRC_MANF_NAME, "Varnholt"}}
{
    for (const Number &number : table) {
        if ((number.flags & ofManagers) != 0) {
            numbers[number.attribute] = number.initial;
        }
    }
}

Attributes::Attributes(const ResourceName &name, const std::string &address, ViSession manager)
    : texts{{VI_ATTR_RSRC_MANF_NAME, "Varnholt"},
            {VI_ATTR_RSRC_CLASS, name.resourceClass},
            {VI_ATTR_RSRC_NAME, name.full},
            {VI_ATTR_INTF_INST_NAME, "TCPIP" + std::to_string(name.board)},
            {VI_ATTR_TCPIP_ADDR, address},
            {VI_ATTR_TCPIP_HOSTNAME, name.host},
            {VI_ATTR_TCPIP_DEVICE_NAME, name.device}}
{
    for (const Number &number : table) {
        numbers[number.attribute] = number.initial;
    }
    assign(VI_ATTR_RM_SESSION, manager);
    assign(VI_ATTR_INTF_NUM, name.board);
}

ViStatus Attributes::set(ViAttr attribute, ViAttrState value)
{
    const auto found = numbers.find(attribute);
    if (found == numbers.end()) {
        return texts.count(attribute) != 0 ? VI_ERROR_ATTR_READONLY : VI_ERROR_NSUP_ATTR;
    }
    const Number &number = definitionOf(attribute);
    if ((number.flags & writable) == 0) {
        return VI_ERROR_ATTR_READONLY;
    }
    // Clients that declare the argument with 32 bits leave the other half of its register
    // undefined. VI_ATTR_TRIG_ID is signed: -1 arrives with its sign extended beyond 16 bits.
    const bool isFullWidth = number.width == 8 || attribute == VI_ATTR_TRIG_ID;
    const ViAttrState wanted = lowestBytes(value, isFullWidth ? number.width : 4);
    if (wanted < number.minimum || wanted > number.maximum) {
        return VI_ERROR_NSUP_ATTR_STATE;
    }
    found->second = wanted;
    return VI_SUCCESS;
}

ViStatus Attributes::get(ViAttr attribute, void *value) const
{
    if (const auto text = texts.find(attribute); text != texts.end()) {
        std::memcpy(value, text->second.c_str(), text->second.size() + 1);
        return VI_SUCCESS;
    }
    const auto found = numbers.find(attribute);
    if (found == numbers.end()) {
        return VI_ERROR_NSUP_ATTR;
    }
    switch (definitionOf(attribute).width) {
    case 1:
        store<ViByte>(found->second, value);
        break;
    case 2:
        store<ViUInt16>(found->second, value);
        break;
    case 4:
        store<ViUInt32>(found->second, value);
        break;
    default:
        store<ViAttrState>(found->second, value);
    }
    return VI_SUCCESS;
}

} // namespace visa
