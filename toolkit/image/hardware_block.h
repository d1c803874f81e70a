// SPDX-License-Identifier: Apache-2.0
// The 32-byte hardware block that a board may carry in place of a FRU image.
#ifndef TOOLKIT_IMAGE_HARDWARE_BLOCK_H
#define TOOLKIT_IMAGE_HARDWARE_BLOCK_H

#include <array>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/layout.h"

constexpr size_t HW_LABEL_LEN = 7U; // what can be set: board type (4), PCB, EEPROM and CPLD version
using HardwareLabel = std::array<u8, HW_LABEL_LEN>;

// The block as it is, and the CRC-8 bytes that its other bytes want.
struct HW_BLOCK_S
{
    FRU_HW_DATA_S stData;
    u8 ucBoardCrc8;
    u8 ucDiagCrc8;

    bool IsBoardGood() const
    {
        return ucBoardCrc8 == stData.stHwBoardInfo.ucBoardCrc8;
    }
    bool IsDiagGood() const
    {
        return ucDiagCrc8 == stData.stHwDiagInfo.ucDiagCrc8;
    }
    bool IsGood() const
    {
        return IsBoardGood() && IsDiagGood();
    }
    HardwareLabel Label() const;
};

HW_BLOCK_S MakeHardwareBlock(const FRU_HW_DATA_S &stData);

// The block's bytes with another label, both CRC-8 bytes computed anew.
std::vector<u8> HardwareBlockBytes(const FRU_HW_DATA_S &stData, const HardwareLabel &aucLabel);

// 32 bytes without the header of a FRU image: a device's size is all that tells one from the other.
bool IsHardwareBlock(const std::vector<u8> &vecImage, size_t uiStored);

// As WalkImage(), for a hardware block.
IMAGE_LAYOUT_S WalkHardwareBlock(const std::vector<u8> &vecImage);

#endif
