// SPDX-License-Identifier: Apache-2.0
// The record by which IPMI clients find a FRU device: type FRU Device Locator (IPMI 2.0, section 43.8).
#ifndef TOOLKIT_IMAGE_LOCATOR_H
#define TOOLKIT_IMAGE_LOCATOR_H

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lib_fru_types.h"

constexpr size_t LOCATOR_FIXED_LEN = 16U;
constexpr size_t LOCATOR_NAME_MAX = 16U;

// What a component is, as IPMI counts such things: ID and instance.
struct ENTITY_S
{
    u8 ucID;
    u8 ucInstance;
};

// Gives each device of a controller an entity of its own: the ID of its component type, and the component's
// instance, where that is one that IPMI has and no device before it has taken it, else the next that is free.
class EntityList
{
  public:
    ENTITY_S Take(u8 ucComponentType, u8 ucInstance);
    // One that a record says already.
    void Note(const ENTITY_S &stEntity);

  private:
    std::set<std::pair<u8, u8>> m_setTaken;
};

// Header and body. A name has two letters at least, as IPMI wants it, and none that is no printable ASCII; an
// empty one becomes "FRU" and the device ID.
std::vector<u8> MakeLocator(u16 usRecordID, u8 ucDeviceID, const ENTITY_S &stEntity, std::string strName);

#endif
