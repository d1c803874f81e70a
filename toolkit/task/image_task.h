// SPDX-License-Identifier: Apache-2.0
// Whole images, as commands and other languages read, write and mend them: what was done, and that as data.
#ifndef TOOLKIT_TASK_IMAGE_TASK_H
#define TOOLKIT_TASK_IMAGE_TASK_H

#include <optional>
#include <string>
#include <vector>

#include "toolkit/base/json.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/history.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/edit/image_write.h"
#include "toolkit/edit/recover.h"

// {"unchanged", "sound", "fields": [...], "bytes": [...], "notes": [...]}
Json ImagePlanJson(const IMAGE_PLAN_S &stPlan);

struct IMAGE_READ_S
{
    DEVICE_S stDevice;
    IMAGE_S stImage;
    VERDICT_S stVerdict;

    // strFile: where its bytes went; empty: into no file.
    Json ToJson(const std::string &strFile) const;
    // Where the image is not in order.
    void WarnOfDamage(const CONTROLLER_S &stController) const;
};
IMAGE_READ_S ReadDevice(const DEVICE_S &stDevice, std::optional<Source> optSource);

struct IMAGE_WRITTEN_S
{
    IMAGE_PLAN_S stPlan;
    bool bDryRun;
    std::string strSentence; // of the operation log; empty: nothing was written

    Json ToJson() const;
};
// Fails for an image that is not in order, unless bForce.
IMAGE_WRITTEN_S WriteDevice(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                            const std::vector<u8> &vecImage, bool bDryRun, bool bForce);

struct RECOVERED_S
{
    DEVICE_S stDevice;
    RECOVERY_S stRecovery;
    bool bDryRun;

    // The one line, behind the device's title.
    std::string Line() const;
    Json ToJson() const;
};
RECOVERED_S RecoverDevice(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                          const std::string &strFrom, bool bDryRun);

// In short what a past image is: "good", "damaged", "erased" or "none".
std::string PastImageName(const DEVICE_S &stDevice, const PAST_IMAGE_S &stPast);
Json HistoryJson(const DEVICE_S &stDevice, const std::vector<PAST_IMAGE_S> &vecPast);

struct UNDONE_S
{
    DEVICE_S stDevice;
    PAST_IMAGE_S stPast;
    IMAGE_PLAN_S stPlan;
    bool bDryRun;

    Json ToJson() const;
};
// Without a number, the newest that differs from what the device holds.
UNDONE_S UndoDevice(const CONTROLLER_S &stController, const DEVICE_S &stDevice, std::optional<u32> optNumber,
                    bool bDryRun);

#endif
