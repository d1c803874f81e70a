// SPDX-License-Identifier: Apache-2.0
// The images that a device held before each of its last writes.
#ifndef TOOLKIT_CONTROLLER_HISTORY_H
#define TOOLKIT_CONTROLLER_HISTORY_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"

constexpr size_t HISTORY_MAX = 20U; // images kept of a device

struct PAST_IMAGE_S
{
    u32 uiNumber = 0;                         // counts up from 1, of a device
    std::string strTime;                      // UTC, when it was kept
    std::string strCommand;                   // what was about to change it
    std::optional<std::vector<u8>> optEeprom; // the FRU's size; nothing: the device has no EEPROM
    std::optional<std::vector<u8>> optCache;  // nothing: there was none
};

// Oldest first. One that cannot be read is left out and told of to the controller's fnWarn.
std::vector<PAST_IMAGE_S> ReadHistory(const CONTROLLER_S &stController, const DEVICE_S &stDevice);

// Keeps what the device holds now; the oldest goes when there are more than HISTORY_MAX. An image that equals
// the one kept last is not kept again. Fails when it cannot be kept.
void KeepImage(const CONTROLLER_S &stController, const DEVICE_S &stDevice, PAST_IMAGE_S stImage);

// Of a device that is no more.
void ForgetHistory(u8 ucDeviceID);

#endif
