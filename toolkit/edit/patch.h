// SPDX-License-Identifier: Apache-2.0
// An image made from the one that a device or a file holds, put in its place: what every command shares that
// changes some of an image's bytes and leaves the others. First a plan, which touches nothing.
#ifndef TOOLKIT_EDIT_PATCH_H
#define TOOLKIT_EDIT_PATCH_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_labels.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/image_write.h"
#include "toolkit/image/differences.h"
#include "toolkit/image/image.h"
#include "toolkit/image/image_parts.h"

struct PATCH_S
{
    TARGET_S stTarget;
    std::vector<u8> vecBefore;
    std::vector<u8> vecAfter;
    std::vector<DIFFERENCE_S> vecFields; // of the walk past damage, encodings included
    std::vector<BYTE_RUN_S> vecBytes;
    std::vector<std::string> vecNotes;
    bool bSound = false;                   // the new image verifies
    std::optional<IMAGE_PLAN_S> optDevice; // of a device, its write

    bool IsUnchanged() const;
};

// The room of a target: a device's, or a file's bytes, or uiFileSize of them where that is more.
ROOM_S RoomOf(const TARGET_S &stTarget, const IMAGE_S &stImage, u32 uiFileSize = 0U);

// An image's bytes to change, without what stands behind a file. One that is blank becomes one without areas, and
// a note says so.
std::vector<u8> BaseOf(const IMAGE_S &stImage, std::vector<std::string> &vecNotes);

// Fails when the new image would verify worse than the old one, unless bAny: a repair may bring more to light.
PATCH_S PlanPatch(const TARGET_S &stTarget, const IMAGE_S &stBefore, const std::vector<u8> &vecAfter,
                  std::vector<std::string> vecNotes, bool bAny = false);

// What the operation log and the listeners of events are told of.
struct OPERATION_S
{
    u32 uiLabelID; // FRU_LABEL_NOT_FOUND: it is about no label
    std::string strName;
    std::string strValue; // Latin-1
};
// A field by its label, where it has one.
OPERATION_S OperationOn(const FIELD_ID_S &stField, const std::string &strName, const std::string &strValue);

struct PATCHED_S
{
    std::vector<std::string> vecSentences; // of the operation log; a file has none
    std::string strAftermath;              // not empty: the bytes are there, but something beside them failed
};

// All of it or nothing, read back. A main FRU's serial-number files follow its serial number.
PATCHED_S WritePatchedDevice(const RootLock &stLock, const PATCH_S &stPatch,
                             const std::vector<OPERATION_S> &vecOperations);

// Into the file itself, or with a path there. Readable hex stays readable hex, but has no comments afterwards:
// such a file is not written over.
void WritePatchedFile(const PATCH_S &stPatch, const std::string &strOutput);

#endif
