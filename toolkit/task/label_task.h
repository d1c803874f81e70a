// SPDX-License-Identifier: Apache-2.0
// Labels, as commands and other languages list, read and write them: what was done, and that as data.
#ifndef TOOLKIT_TASK_LABEL_TASK_H
#define TOOLKIT_TASK_LABEL_TASK_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/device.h"
#include "toolkit/edit/label_write.h"
#include "toolkit/edit/labels.h"
#include "toolkit/edit/progress.h"
#include "toolkit/task/shown.h"

// The key of the area that a label's field is in, or "hardware".
const char *AreaOf(const LABEL_S &stLabel);

struct LABEL_LIST_S
{
    std::optional<DEVICE_S> optDevice; // nothing: the whole catalogue
    std::vector<LABEL_S> vecLabels;    // those that the device takes
    std::optional<SHOWN_S> optShown;   // of a device whose image can be decoded
    std::optional<RECORD_VIEW_S> optView;
    std::optional<Error> optWhyNot; // why there are no values, of a device

    Json ToJson() const;
};
LABEL_LIST_S ListLabels();
LABEL_LIST_S ListLabels(const DEVICE_S &stDevice, std::optional<Source> optSource);

struct LABEL_VALUES_S
{
    DEVICE_S stDevice;
    SHOWN_S stShown;
    std::vector<std::pair<LABEL_S, std::string>> vecValues; // raw
    bool bOne;                                              // just one was asked for, by its name

    Json ToJson() const;
};
// Of the labels named, in that order; none: of those that the device takes and its image has. Fails where one
// has no value.
LABEL_VALUES_S GetLabels(const DEVICE_S &stDevice, const std::vector<std::string> &vecNames,
                         std::optional<Source> optSource);

struct LABELS_SET_S
{
    DEVICE_S stDevice;
    LABEL_PLAN_S stPlan;
    bool bDryRun;
    std::vector<std::string> vecSentences; // of the operation log, one for each label
    std::string strAftermath; // not empty: the labels are written, but something beside them failed

    Json ToJson() const;
};
// All or none. Fails for what is not accepted, and unless bForce for placeholders and where something beside
// the labels would be lost.
LABELS_SET_S SetLabels(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                       const std::vector<LABEL_REQUEST_S> &vecRequests, bool bDryRun, bool bForce,
                       ProgressView *pstView);

#endif
