// SPDX-License-Identifier: Apache-2.0
// What a field is for its reader: what tells one device from another, a number, a name.
#ifndef TOOLKIT_IMAGE_ROLE_H
#define TOOLKIT_IMAGE_ROLE_H

#include "toolkit/base/placeholder.h"
#include "toolkit/image/fields.h"

enum class Role
{
    Other,
    Word,    // a maker's or product's name
    Number,  // of a kind or an owner: part number, asset tag
    Identity // of this one device alone: serial numbers, the MAC address
};

// bSlots: custom fields are those that labels name.
Role RoleOf(const FIELD_ID_S &stField, bool bSlots);

constexpr TextKind TextKindOf(Role enRole)
{
    return enRole == Role::Word ? TextKind::Word : TextKind::Number;
}

#endif
