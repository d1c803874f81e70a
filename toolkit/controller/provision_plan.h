// SPDX-License-Identifier: Apache-2.0
// The description of a controller (controller.json), checked whole before anything is written.
// examples/README.md tells what may stand in it.
#ifndef TOOLKIT_CONTROLLER_PROVISION_PLAN_H
#define TOOLKIT_CONTROLLER_PROVISION_PLAN_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/locator.h"

// Where the hardware description lies on the controller.
constexpr const char *CONF_HARDWARE_FILE = "/conf/hw/ProductPath/Baseboard.xml";

struct DEVICE_PLAN_S
{
    FRU_DEVICE_TBL_ENTRY_S stEntry;
    FRU_DEVICE_INFO_S stInfo;
    bool bHasEeprom;         // a device served from the cache only needs none
    u32 uiEepromSize;        // bytes of the whole chip
    std::string strBackend;  // how its bytes are reached; "file": an image file of the root
    std::string strSettings; // for any other back end: the chip's settings, a JSON object
    bool bCached;
    std::string strImage;        // where the image comes from; empty: erased
    std::vector<u8> vecImage;    // exactly the FRU's size
    std::vector<u8> vecHeld;     // of a real chip: what it holds; empty: it has not been read
    std::vector<u8> vecRecovery; // exactly the FRU's size, or empty: no stored image

    // A chip that is no image file of the root: it is read, and written only where that is asked for.
    bool IsRealChip() const
    {
        return !strSettings.empty();
    }
};

struct CONF_FILE_S
{
    std::string strPath; // on the controller
    std::vector<u8> vecBytes;
};

// Where on the controller such files may lie.
std::vector<const char *> ConfPaths();

struct CONTROLLER_PLAN_S
{
    std::vector<DEVICE_PLAN_S> vecDevices;
    std::vector<CONF_FILE_S> vecConfFiles;
};

// What the platform calls the device's chip: "bus1-addr0xa0"; empty when it has none.
std::string ChipName(const DEVICE_PLAN_S &stDevice);

// Reads and checks the description and every file that it names. Fails with the path of the member at fault
// and what would be accepted.
CONTROLLER_PLAN_S ReadPlan(const std::string &strFile);

// The EEPROM's contents: erased, with the images of all devices that live in the chip of this one.
std::vector<u8> EepromContents(const CONTROLLER_PLAN_S &stPlan, const DEVICE_PLAN_S &stDevice);

// The chips that are no image files, as the platform reads it; nothing when all are.
std::optional<CONF_FILE_S> EepromConf(const CONTROLLER_PLAN_S &stPlan);

// The locator record of a device; stEntities knows the devices before it.
FRU_SDR_S LocatorRecord(const DEVICE_PLAN_S &stDevice, EntityList &stEntities);

#endif
