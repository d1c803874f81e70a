// SPDX-License-Identifier: Apache-2.0
// Electronic labels: the library's catalogue, where each label's field is, and why a name or value is
// refused. Whether it is refused is the library's word alone.
#ifndef TOOLKIT_EDIT_LABELS_H
#define TOOLKIT_EDIT_LABELS_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/record.h"

// What values a label takes.
enum class Accepts
{
    Text,
    CustomText, // not one character: its length byte would be the mark that ends the fields
    MacAddress,
    ChassisType,
    Language,
    Date,
    Hardware // bytes of the hardware block
};
const char *AcceptsText(Accepts enAccepts);

// A label that can be addressed by its name.
struct LABEL_S
{
    u32 uiID;
    std::string strName;
    u32 uiMinLen;
    u32 uiMaxLen;
    bool bNoneAllowed;
    FIELD_ID_S stField; // Area::Unused: not kept in the FRU image
    Accepts enAccepts;
    std::optional<u32> optPsuField; // the power-supply field of the same name, counted from 0

    bool IsStored() const
    {
        return stField.enArea != Area::Unused;
    }
    // Its value is the field's number and not its text.
    bool IsNumber() const
    {
        return enAccepts == Accepts::Language;
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
