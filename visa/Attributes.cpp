#include "visa/Attributes.h"

#include "visa/ResourceName.h"

#include <cstring>

namespace visa {

namespace {

template <typename Integer>
void store(ViUInt32 number, void *target)
{
    const auto value = static_cast<Integer>(number);
    std::memcpy(target, &value, sizeof value);
}

} // namespace

Attributes::Attributes()
    : numbers{{VI_ATTR_RSRC_IMPL_VERSION, {4, ORVANTA_VERSION_NUMBER}},
              {VI_ATTR_RSRC_SPEC_VERSION, {4, 0x00300000}}}, // VISA 3.0
      texts{{VI_ATTR_RSRC_MANF_NAME, "Varnholt"}}
{
}

Attributes::Attributes(const ResourceName &name, const std::string &address) : Attributes()
{
    numbers.insert({{VI_ATTR_SEND_END_EN, {2, 1, 0, 1}},
                    {VI_ATTR_TERMCHAR, {1, '\n', 0, 0xFF}},
                    {VI_ATTR_TERMCHAR_EN, {2, 0, 0, 1}},
                    {VI_ATTR_TMO_VALUE, {4, 2000, 0, VI_TMO_INFINITE}},
                    {VI_ATTR_INTF_TYPE, {2, VI_INTF_TCPIP}},
                    {VI_ATTR_INTF_NUM, {2, name.board}}});
    texts.insert({{VI_ATTR_RSRC_CLASS, "INSTR"},
                  {VI_ATTR_RSRC_NAME, name.full},
                  {VI_ATTR_TCPIP_ADDR, address},
                  {VI_ATTR_TCPIP_HOSTNAME, name.host},
                  {VI_ATTR_TCPIP_DEVICE_NAME, name.device}});
}

ViStatus Attributes::set(ViAttr attribute, ViAttrState value)
{
    const auto found = numbers.find(attribute);
    if (found == numbers.end()) {
        return texts.count(attribute) != 0 ? VI_ERROR_ATTR_READONLY : VI_ERROR_NSUP_ATTR;
    }
    Number &number = found->second;
    if (number.minimum > number.maximum) {
        return VI_ERROR_ATTR_READONLY;
    }
    // Clients that declare the argument with 32 bits leave the rest of its register undefined.
    const auto wanted = static_cast<ViUInt32>(value);
    if (wanted < number.minimum || wanted > number.maximum) {
        return VI_ERROR_NSUP_ATTR_STATE;
    }
    number.value = wanted;
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
    switch (found->second.width) {
    case 1:
        store<ViByte>(found->second.value, value);
        break;
    case 2:
        store<ViUInt16>(found->second.value, value);
        break;
    default:
        store<ViUInt32>(found->second.value, value);
    }
    return VI_SUCCESS;
}

} // namespace visa
