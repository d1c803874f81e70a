// SPDX-License-Identifier: Apache-2.0
// A controller with FRU devices, for the tests of the label writes: images that the encoder made, and images
// told as one line for each field.
#ifndef TESTS_LABEL_WORLD_H
#define TESTS_LABEL_WORLD_H

#include <map>
#include <string>

#include "fake/fake_platform.h"
#include "lib_fru_types.h"

namespace label {

// One device: where it stands in the table, and what its record says.
struct DEVICE_S
{
    u8 ucComponentType = 0;
    u8 ucInstance = 0;
    u8 ucDeviceID = 0;
    u16 usStartOffset = 0x20;
    u16 usSize = 1024;
    u8 ucFieldFlag = 7;
    u8 ucBus = 3;
    u8 ucAddress = 0xA0;
    std::string strFRUName = "Mainboard";
    std::string strImagePath = "/opt/fru/board1.bin";
};

// Decoded image: "board.manufacturer" -> "Maker" and so on; a presence line for each area, and
// MultiRecords in hexadecimal.
using FIELDS = std::map<std::string, std::string>;

// What goes into an image before it is encoded.
struct IMAGE_S
{
    bool bChassis = true;
    bool bBoard = true;
    bool bProduct = true;
    bool bMultiRecords = true;
    u8 ucChassisFields = 5;
    u8 ucBoardFields = 2;
    u8 ucProductFields = 4;
};

fake::BYTES Encode(const IMAGE_S &stImage, u16 usSize);
FIELDS Decode(const fake::BYTES &vecImage);

// Puts the device into the table, its record and image into the database and the image onto its chip.
void Provision(const DEVICE_S &stDevice, const fake::BYTES &vecImage);

// The FRU image as the chip holds it and as the database holds it.
fake::BYTES OnChip(const DEVICE_S &stDevice);
fake::BYTES InCache(const DEVICE_S &stDevice);
// Whether they agree on the image. The cache holds zeros behind it, the chip what was there before.
bool CacheMatchesChip(const DEVICE_S &stDevice);

// A request block whose outputs are all marked, so that what stays untouched shows.
FRU_SET_PARA_S Request(const DEVICE_S &stDevice, const std::string &strName, const std::string &strValue);

// Messages of this module only.
std::vector<std::string> LabelMessages();

} // namespace label

#endif
