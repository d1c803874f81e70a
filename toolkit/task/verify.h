// SPDX-License-Identifier: Apache-2.0
// Whether every byte of an image is as it should be, and if not, what is wrong where.
#ifndef TOOLKIT_TASK_VERIFY_H
#define TOOLKIT_TASK_VERIFY_H

#include <optional>
#include <string>
#include <vector>

#include "toolkit/base/json.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

// One checked image: a device's EEPROM, a device's cached image or a file.
struct CHECK_S
{
    std::string strTitle;
    Json stJson;
    IMAGE_LAYOUT_S stLayout;
    std::string strFailure; // not empty: there are no bytes to look at, or the library disagrees
    bool bCheckedLibrary;

    bool IsGood() const
    {
        return strFailure.empty() && stLayout.IsSound();
    }
};

// A device's image or a file's.
CHECK_S CheckImage(const TARGET_S &stTarget, const IMAGE_S &stImage);

// The EEPROM's image, and the cached one where it is served to readers and is another.
void CheckTarget(const TARGET_S &stTarget, std::optional<u32> optOffset, std::vector<CHECK_S> &vecChecks);

// Of every device. Fails when there is none.
void CheckDevices(const CONTROLLER_S &stController, std::optional<u32> optOffset,
                  std::vector<CHECK_S> &vecChecks);

// {"images": [...]}
Json ChecksJson(const std::vector<CHECK_S> &vecChecks);

#endif
