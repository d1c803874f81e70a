// SPDX-License-Identifier: Apache-2.0
// A command's whole change of a controller, all or nothing: what was there is kept, what shall be there is
// on the disk before the first byte is written, and afterwards EEPROM and cache are compared with it.
#ifndef TOOLKIT_EDIT_TRANSACTION_H
#define TOOLKIT_EDIT_TRANSACTION_H

#include <functional>
#include <vector>

#include "toolkit/controller/journal.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/change.h"

// The serial-number file and its copy, which mirror the main FRU's product serial number.
std::vector<FILE_CHANGE_S> SerialFiles(const Bytes &vecSerialNumber);

// Those files as they have to be after the change: none when it is of another device, or when its image has no
// product serial number.
std::vector<FILE_CHANGE_S> MirrorOf(const CHANGE_S &stChange);

// Within a transaction: makes one step by writing its bytes as they are.
void PutStep(const CHANGE_S &stChange);

// Fails when the disk has no room for what a write may take: log of the database, history, journal. So a full
// disk is told before the first byte is written, not in the middle.
void RequireSpace(const CONTROLLER_S &stController);

// Runs fnWork, which makes the change of one device in these steps, each from what the one before it leaves; no
// fnWork: the bytes are written as they are. When it fails, or EEPROM and cache hold something else afterwards,
// the old bytes are put back, and so are the files that mirror the device; the failure says so. Where even that
// fails, the next command tries again. A chip that cannot be read is not written without fnWork.
void RunTransaction(const RootLock &stLock, const std::vector<CHANGE_S> &vecSteps,
                    std::vector<FILE_CHANGE_S> vecFiles, const std::function<void()> &fnWork);

#endif
