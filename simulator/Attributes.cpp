#include "simulator/Attributes.h"

#include <cstring>

namespace simulator {

namespace {

template <typename Integer>
void store(ViUInt32 number, void *target)
{
    const auto value = static_cast<Integer>(number);
    std::memcpy(target, &value, sizeof value);
}

} // namespace

Attributes::Attributes()
    : numbers_{{VI_ATTR_RSRC_IMPL_VERSION, {4, ORVANTA_VERSION_NUMBER}},
               {VI_ATTR_RSRC_LOCK_STATE, {4, VI_NO_LOCK}},
               {VI_ATTR_RSRC_SPEC_VERSION, {4, 0x00300000}}}, // VISA 3.0
      texts_{{VI_ATTR_RSRC_MANF_NAME, "Varnholt"}}
{
}

Attributes::Attributes(const ResourceName &name, ViSession manager) : Attributes()
{
    numbers_.insert({{VI_ATTR_SEND_END_EN, {2, 1, true, 0, 1}},
                     {VI_ATTR_TERMCHAR, {1, '\n', true, 0, 0xFF}},
                     {VI_ATTR_TMO_VALUE, {4, 2000, true, 0, 0xFFFFFFFF}},
                     {VI_ATTR_IO_PROT, {2, VI_PROT_NORMAL, true, VI_PROT_NORMAL, VI_PROT_NORMAL}},
                     {VI_ATTR_DMA_ALLOW_EN, {2, 0, true, 0, 1}},
                     {VI_ATTR_TERMCHAR_EN, {2, 0, true, 0, 1}},
                     {VI_ATTR_RM_SESSION, {4, manager}},
                     {VI_ATTR_INTF_TYPE, {2, VI_INTF_TCPIP}},
                     {VI_ATTR_INTF_NUM, {2, name.board}}});
    texts_.insert({{VI_ATTR_RSRC_CLASS, "INSTR"},
                   {VI_ATTR_RSRC_NAME, resourceString(name)},
                   {VI_ATTR_INTF_INST_NAME, "TCPIP" + std::to_string(name.board) + " (simulated)"},
                   {VI_ATTR_TCPIP_HOSTNAME, name.host},
                   {VI_ATTR_TCPIP_DEVICE_NAME, name.device}});
}

ViStatus Attributes::set(ViAttr attribute, ViAttrState value)
{
    const auto found = numbers_.find(attribute);
    if (found == numbers_.end()) {
        return texts_.count(attribute) != 0 ? VI_ERROR_ATTR_READONLY : VI_ERROR_NSUP_ATTR;
    }
    Number &number = found->second;
    if (!number.writable) {
        return VI_ERROR_ATTR_READONLY;
    }
    // Clients that declare the argument with 32 bits leave the rest of its register undefined.
    const auto low = static_cast<ViUInt32>(value);
    if (low < number.least || low > number.greatest) {
        return VI_ERROR_NSUP_ATTR_STATE;
    }
    number.value = low;
    return VI_SUCCESS;
}

ViStatus Attributes::get(ViAttr attribute, void *value) const
{
    if (const auto text = texts_.find(attribute); text != texts_.end()) {
        std::memcpy(value, text->second.c_str(), text->second.size() + 1);
        return VI_SUCCESS;
    }
    const auto found = numbers_.find(attribute);
    if (found == numbers_.end()) {
        return VI_ERROR_NSUP_ATTR;
    }
    switch (const Number &number = found->second; number.width) {
    case 1:
        store<ViByte>(number.value, value);
        break;
    case 2:
        store<ViUInt16>(number.value, value);
        break;
    default:
        store<ViUInt32>(number.value, value);
    }
    return VI_SUCCESS;
}

} // namespace simulator
