// SPDX-License-Identifier: Apache-2.0
// Writing labels: first a plan, which touches nothing, then the library's own write of each label with a
// check of what is in the device afterwards.
#ifndef TOOLKIT_EDIT_LABEL_WRITE_H
#define TOOLKIT_EDIT_LABEL_WRITE_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/labels.h"
#include "toolkit/edit/progress.h"
#include "toolkit/image/differences.h"

struct LABEL_REQUEST_S
{
    LABEL_S stLabel;
    std::string strValue;
};

// A request in the library's words: "now" and "unspecified" for dates become such.
LABEL_REQUEST_S MakeRequest(const LABEL_S &stLabel, const std::string &strValue);

// NONE, where that stands for an absent value.
bool IsNone(const LABEL_REQUEST_S &stRequest);

// Fails for a value that only holds a place ("To be filled by O.E.M.", "0000000000"); bForce: takes it.
void RequireNoPlaceholders(const std::vector<LABEL_REQUEST_S> &vecRequests, bool bForce);

// One label's write.
struct LABEL_STEP_S
{
    LABEL_REQUEST_S stRequest;
    std::optional<std::string> optOld; // raw; nothing: the image has no such field yet
    std::string strNew;                // raw, as it will be read
    CHANGE_S stChange;
    bool bUnchanged = false; // the label has the value already: nothing is written
};

struct LABEL_PLAN_S
{
    std::optional<CHANGE_S> optBlank; // the empty image that an erased device is given before the first step
    std::vector<LABEL_STEP_S> vecSteps;
    std::vector<BYTE_RUN_S> vecChanges; // from the device's bytes now to those after the last step
    std::vector<std::string> vecNotes;  // what changes beside the labels, harmless
    std::vector<std::string> vecLosses; // what would be lost beside the labels

    bool IsUnchanged() const; // every label has its value already
};

// Fails when a name or a value is refused, or a label is given twice. Touches nothing.
void CheckRequests(const DEVICE_S &stDevice, const std::vector<LABEL_REQUEST_S> &vecRequests);

// Reads the device and works out every step for checked requests. Fails when a step would.
LABEL_PLAN_S PlanLabels(const DEVICE_S &stDevice, const std::vector<LABEL_REQUEST_S> &vecRequests);

// Writes all labels or none, each by the library's own write, and records them in the operation log; gives
// the sentences that stand there, an empty one for a label that is unchanged. strAftermath is set when the device holds the labels, but something
// beside it failed.
std::vector<std::string> WriteLabels(const RootLock &stLock, const DEVICE_S &stDevice,
                                     const LABEL_PLAN_S &stPlan, std::string &strAftermath,
                                     ProgressView *pstView);

#endif
