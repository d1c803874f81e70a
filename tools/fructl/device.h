// FRU devices of the controller and image files: finding them and reading their bytes.
#ifndef FRUCTL_DEVICE_H
#define FRUCTL_DEVICE_H

#include <optional>
#include <string>
#include <vector>

#include "image_layout.h"
#include "lib_fru.h"
#include "session.h"

// A device of the device table, with what the controller knows of it.
struct DEVICE_S
{
    FRU_DEVICE_TBL_ENTRY_S stEntry;
    FRU_DEVICE_INFO_S stInfo;
    bool bHasInfo; // false: the table names it, but there is no record for its ID
    std::string strName;

    std::string Component() const; // "0x03:0"
    std::string Title() const;     // "psu1 (0x03:0)"
    std::string ImagePath() const; // of the stored image that restores it
    bool HasFixedSlots() const;    // a baseboard, read with preset custom-field counts
    bool IsDatabaseOnly() const;
};

// The bytes of one image.
struct IMAGE_S
{
    std::string strSource; // "EEPROM", "cache" or "file"
    std::vector<u8> vecBytes;
    size_t uiStored; // bytes that are really there; after them a file has 8 bytes of 0xFF, as a larger EEPROM
                     // would
};

// What the user named: a device of the controller or an image file.
struct TARGET_S
{
    std::optional<DEVICE_S> optDevice;
    std::string strFile;

    std::string Title() const;
    bool HasFixedSlots() const;
};

// How the user names it.
struct TARGET_OPTIONS_S
{
    std::string strTarget;   // TYPE:INSTANCE, a name, or a file
    std::string strDeviceID; // --id
};

// All devices in table order. Fails when there is no device table.
std::vector<DEVICE_S> LoadDevices(const SESSION_S &stSession);

TARGET_S ResolveTarget(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions);
DEVICE_S ResolveDevice(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions);

// A FRU device ID, whether the table names it or not (IPMI requests may).
u8 ResolveDeviceID(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions);

// The whole image as it is in the EEPROM. Fails when the device does not answer.
IMAGE_S ReadChip(const DEVICE_S &stDevice);

// The cached image, trusted or not; nothing when there is none.
std::optional<IMAGE_S> ReadCache(const DEVICE_S &stDevice);

// The first byte in which two images of one FRU differ. Bytes behind the last area of sound images do not
// count: there the library fills the cached image with zeros, and leaves the EEPROM as it was.
std::optional<size_t> FirstDifference(const IMAGE_S &stLeft, const IMAGE_S &stRight, bool bFixedSlots);

// True when reads may be served from the cache.
bool IsCacheTrusted(const DEVICE_S &stDevice);

IMAGE_LAYOUT_S LayoutOf(const IMAGE_S &stImage, bool bFixedSlots);

IMAGE_S ReadImage(const std::string &strFile);

// What belongs to the target first of all: a file's image, the EEPROM's, or the cache's when the device
// has no other.
IMAGE_S ReadTarget(const TARGET_S &stTarget);

#endif
