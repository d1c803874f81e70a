// SPDX-License-Identifier: Apache-2.0
// A whole image onto a device: first a plan, which touches nothing, then one transaction.
#ifndef TOOLKIT_EDIT_IMAGE_WRITE_H
#define TOOLKIT_EDIT_IMAGE_WRITE_H

#include <string>
#include <vector>

#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/edit/change.h"
#include "toolkit/image/differences.h"

struct IMAGE_PLAN_S
{
    CHANGE_S stChange;
    VERDICT_S stVerdict; // on the new image
    std::vector<std::string> vecNotes;
    std::vector<DIFFERENCE_S> vecFields; // of an image that cannot be decoded there are none
    std::vector<BYTE_RUN_S> vecBytes;    // in the EEPROM, or in the cache where the device has no other place

    bool IsUnchanged() const; // neither EEPROM nor cache would be written
};

// The image in the FRU's size, what lies behind it erased, into EEPROM and cache. Fails when it is empty or does
// not fit, and when the device cannot be read.
IMAGE_PLAN_S PlanImage(const DEVICE_S &stDevice, const std::vector<u8> &vecImage);

// Writes it, reads it back and records it in the operation log; gives the sentence that stands there. The main
// FRU's serial-number files follow.
std::string WriteImage(const RootLock &stLock, const IMAGE_PLAN_S &stPlan, const std::string &strDoing);

#endif
