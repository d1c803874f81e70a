// Electronic labels: the library's catalogue, where each label's field is, and why a name or value is
// refused. Whether it is refused is the library's word alone.
#ifndef TOOLKIT_EDIT_LABELS_H
#define TOOLKIT_EDIT_LABELS_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/record.h"

constexpr u32 LABEL_HARDWARE = 29U;
constexpr u32 LABEL_PRODUCT_SERIAL_NUMBER = 20U;

// A label that can be addressed by its name.
struct LABEL_S
{
    u32 uiID;
    std::string strName;
    u32 uiMinLen;
    u32 uiMaxLen;
    bool bNoneAllowed;
    Area enArea;                    // AREA::Unused: not kept in the FRU image
    std::string strField;           // the field's name in that area ("serial number", "custom field 2")
    std::optional<u32> optSlot;     // custom field, counted from 0
    bool bNumber;                   // shown as the field's number and not as its text
    const char *pcAccepts;          // what its values are, in short
    std::optional<u32> optPsuField; // the power-supply field of the same name, counted from 0

    bool IsStored() const
    {
        return enArea != Area::Unused;
    }
};

// All of them, in the catalogue's order.
const std::vector<LABEL_S> &Labels();

// Fails with the names that come near.
const LABEL_S &FindLabel(const std::string &strName);

// Whether the device's field flag allows the label.
bool IsAccepted(const DEVICE_S &stDevice, const LABEL_S &stLabel);

// Longest value, on this component type.
u32 MaxLength(const LABEL_S &stLabel, u8 ucComponentType);

// Fails with the rule that the name or the value breaks and what is accepted.
void RequireAcceptedName(const DEVICE_S &stDevice, const LABEL_S &stLabel);
void RequireAcceptedValue(const DEVICE_S &stDevice, const LABEL_S &stLabel, const std::string &strValue);

// The label's value in a record; nothing when the record has no such field.
std::optional<std::string> LabelValue(const RECORD_VIEW_S &stView, const LABEL_S &stLabel);

// Why LabelValue() has nothing.
std::string WhyNoValue(const RECORD_VIEW_S &stView, const LABEL_S &stLabel);

#endif
