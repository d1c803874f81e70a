// SPDX-License-Identifier: Apache-2.0
// What is to be said of a device or a file as a whole: its image, what it says, and its health.
#ifndef TOOLKIT_CONTROLLER_INVENTORY_H
#define TOOLKIT_CONTROLLER_INVENTORY_H

#include <optional>
#include <string>
#include <vector>

#include "toolkit/controller/state.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/record.h"

struct INVENTORY_S
{
    TARGET_S stTarget;
    STATE_S stState;                        // of a file: its image's, and no cache
    std::optional<IMAGE_S> optImage;        // nothing: it cannot be read
    IMAGE_LAYOUT_S stLayout;                // of that image
    IMAGE_LAYOUT_S stSeen;                  // the same past damage: all that still can be read of it
    std::optional<RECORD_VIEW_S> optRecord; // nothing: it is refused, or a hardware block
    std::string strFailure; // why there is no image, the library refuses it, or the cached one is another

    bool IsGood() const
    {
        return strFailure.empty() && stLayout.IsSound();
    }
    size_t Problems() const; // findings that are no warnings
    std::string Name() const;
};

// Never fails for what one of them is like: that is what it tells.
INVENTORY_S TakeInventory(const TARGET_S &stTarget);

// Of all devices, in the order of the table.
std::vector<INVENTORY_S> TakeInventory(const CONTROLLER_S &stController);

#endif
