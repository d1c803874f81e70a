// SPDX-License-Identifier: Apache-2.0
// Where the chip of a described device lies, and how its bytes are reached.
#ifndef TOOLKIT_CONTROLLER_PROVISION_CHIP_H
#define TOOLKIT_CONTROLLER_PROVISION_CHIP_H

#include "toolkit/base/json_node.h"
#include "toolkit/controller/provision_plan.h"

// Reads the members about the EEPROM: eepromType, eepromSize, location. Offset and size are known.
void TakeChip(const JsonNode &stNode, DEVICE_PLAN_S &stDevice);

bool SameChip(const DEVICE_PLAN_S &stLeft, const DEVICE_PLAN_S &stRight);

// Refuses what two devices in one chip may not say of it.
void CheckChip(const JsonNode &stNode, const DEVICE_PLAN_S &stDevice, const DEVICE_PLAN_S &stOther);

#endif
