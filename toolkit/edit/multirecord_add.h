// SPDX-License-Identifier: Apache-2.0
// Management Access records into the main FRU.
#ifndef TOOLKIT_EDIT_MULTIRECORD_ADD_H
#define TOOLKIT_EDIT_MULTIRECORD_ADD_H

#include <vector>

#include "lib_fru_types.h"
#include "toolkit/base/name_value.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/progress.h"
#include "toolkit/edit/rewrite.h"

// Row i is the sub-record type i + 1.
const std::vector<SETTABLE_S> &AccessRecords();

enum class RecordAction
{
    Add,
    Replace,
    Keep
};

// One record as it is to be.
struct WANTED_RECORD_S
{
    u8 ucSubType;
    std::vector<u8> vecValue; // as the library takes it
    std::vector<u8> vecData;  // as the record stores it: sub-type and value
    RecordAction enAction;
    std::vector<u8> vecOld;            // the data that it replaces
    std::optional<CHANGE_S> optChange; // nothing: it is there already

    const SETTABLE_S &Row() const
    {
        return AccessRecords()[ucSubType - 1U];
    }
};

struct RECORD_PLAN_S
{
    std::vector<WANTED_RECORD_S> vecWanted;
    REWRITE_S stRewrite;
};

// The record for a row and its value. Fails as wrong usage when the value is refused.
WANTED_RECORD_S WantedRecord(const NAME_VALUE_S &stGiven);

// Works out every image that will be written, so that none of several records finds that it does not fit.
RECORD_PLAN_S PlanAccessRecords(const DEVICE_S &stDevice, const std::vector<WANTED_RECORD_S> &vecWanted);

// Fails when the device or its cached image does not hold the records afterwards.
void WriteAccessRecords(const RootLock &stLock, const DEVICE_S &stDevice, const RECORD_PLAN_S &stPlan,
                        ProgressView *pstView);

#endif
