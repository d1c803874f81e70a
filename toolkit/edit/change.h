// SPDX-License-Identifier: Apache-2.0
// The one way in which a device's bytes are changed: what is to be there is worked out and checked first,
// then the library's own call writes it, and what is there afterwards is compared.
#ifndef TOOLKIT_EDIT_CHANGE_H
#define TOOLKIT_EDIT_CHANGE_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/edit/progress.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

// What one of the places that hold a device's bytes holds now and shall hold.
struct PART_S
{
    std::optional<std::vector<u8>> optBefore; // nothing: there is nothing that can be read
    std::vector<u8> vecAfter;                 // exactly the FRU's size
};

struct CHANGE_S
{
    DEVICE_S stDevice;
    std::optional<PART_S> optEeprom; // nothing: is not touched, or there is none
    std::optional<PART_S> optCache;
    u32 uiWritten =
        0; // bytes that the call writes into the EEPROM from the FRU's start on, where that is known

    // The bytes as they are and will be where the device's image lives.
    const PART_S &Home() const;
};

// The change that the library makes when it writes the record: its image over the beginning of the EEPROM,
// and over zeros in the cache. stFirst is what comes before it: the change of the step before, else
// PlanNothing(); strWhat is what is new in the record ("the new 'Product Serial Number'"). Fails when no
// image can be made or when an image would not decode to the same record again.
CHANGE_S PlanRecord(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                    const CHANGE_S &stFirst);

// The same for an image that goes into the cache alone, whatever the EEPROM holds. bFixedSlots: it is to
// read as the record with preset custom-field counts too.
CHANGE_S PlanCachedRecord(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                          bool bFixedSlots);

// A change of bytes that are no record: the whole FRU at its home, and in the cache where that follows the
// EEPROM.
CHANGE_S PlanBytes(const DEVICE_S &stDevice, const std::vector<u8> &vecAfter, bool bCacheFollows);

// No change: for a call that writes nothing, or that refuses. Fails when the home cannot be read.
CHANGE_S PlanNothing(const DEVICE_S &stDevice);

struct OUTCOME_S
{
    u32 uiStatus;                     // of the library's call
    std::vector<std::string> vecSaid; // failures and warnings that it reported
    std::string strHomeDiffers; // where the home's bytes are not those that were planned; empty: they are
    bool bCacheHolds;           // what was planned for it, if anything was

    std::string Hint() const;  // the first thing that it reported, as DiagnosticHint()
    std::string Cause() const; // the first that is not about how texts are stored
};

// Makes a planned change by fnWrite, which is not interrupted. strDoing is shown while it lasts ("writing
// psu1 (0x03:0)").
OUTCOME_S ApplyChange(const CHANGE_S &stChange, const std::string &strDoing, ProgressView *pstView,
                      const std::function<u32()> &fnWrite);

// The record's image in uiRoom bytes that are zero where it has ended, with its length; nothing when it
// cannot be made.
struct ENCODED_S
{
    std::vector<u8> vecBuffer;
    u32 uiLength;
};
std::optional<ENCODED_S> EncodeRecord(const Record &stRecord, u32 uiRoom);

// Whether an image reads as the record. Every image that is written has passed this.
struct READ_BACK_S
{
    u32 uiStatus;       // of decoding it
    std::string strWhy; // it reads differently; empty: it does not
    bool IsSame() const
    {
        return uiStatus == FRU_OK && strWhy.empty();
    }
};
READ_BACK_S ReadBack(const IMAGE_S &stImage, bool bFixedSlots, const Record &stRecord);

#endif
