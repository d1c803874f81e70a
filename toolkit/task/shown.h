// SPDX-License-Identifier: Apache-2.0
// The image of a device or a file that somebody wants to see.
#ifndef TOOLKIT_TASK_SHOWN_H
#define TOOLKIT_TASK_SHOWN_H

#include <optional>
#include <string>

#include "toolkit/base/json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/lenient.h"
#include "toolkit/image/record.h"

// The image that was chosen, and what a command adds to what it shows of it.
struct SHOWN_S
{
    TARGET_S stTarget;
    IMAGE_S stImage;
    std::optional<std::string> optDiffer; // the device's other image is another one

    Json SourceJson() const; // {"source"}, with "sourcesDiffer" where a device has two images
    // ", cached image" where it is no EEPROM's, for headings.
    std::string HeadingText() const;
    // Fails as damage when the two images differ; asked when everything is printed.
    void RequireSame() const;
};
// optSource: of a device; nothing: that of its EEPROM, where it has one.
SHOWN_S TakeShown(const TARGET_S &stTarget, std::optional<Source> optSource);

// What 'show' tells of it, decoded. uiOffset: where in a dump the image begins.
Json ShownJson(const SHOWN_S &stShown, u32 uiOffset, const RECORD_VIEW_S &stView);

// What can be read of an image that may be damaged. Fails when that is nothing.
LENIENT_VIEW_S TakeLenient(const TARGET_S &stTarget, const IMAGE_S &stImage);
Json LenientShownJson(const SHOWN_S &stShown, u32 uiOffset, const LENIENT_VIEW_S &stView);

// Byte for byte.
Json MapShownJson(const TARGET_S &stTarget, const IMAGE_S &stImage);

#endif
