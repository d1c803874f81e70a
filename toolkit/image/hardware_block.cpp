#include "toolkit/image/hardware_block.h"

#include <algorithm>
#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

HardwareLabel HW_BLOCK_S::Label() const
{
    HardwareLabel aucLabel = {};
    static_assert(offsetof(FRU_HW_BOARD_INFO_S, aucBoardReserved) -
                      offsetof(FRU_HW_BOARD_INFO_S, aucBoardType) ==
                  HW_LABEL_LEN);
    memcpy(aucLabel.data(), stData.stHwBoardInfo.aucBoardType, sizeof(stData.stHwBoardInfo.aucBoardType));
    aucLabel[4] = stData.stHwBoardInfo.ucPCBVer;
    aucLabel[5] = stData.stHwBoardInfo.ucEEPROMVer;
    aucLabel[6] = stData.stHwBoardInfo.ucCPLDVer;
    return aucLabel;
}

HW_BLOCK_S MakeHardwareBlock(const FRU_HW_DATA_S &stData)
{
    FRU_HW_DATA_S stCopy = stData; // the encoder sets both CRC-8 bytes of the record that it is given
    u8 aucBytes[FRU_HW_DATA_LEN] = {};
    const u32 uiRet = FRU_ANALYZER_ConvertToHwArray(&stCopy, sizeof(aucBytes), aucBytes);
    if (uiRet != FRU_OK) {
        Fail("the hardware block cannot be encoded: " + StatusText(uiRet));
    }
    return {stData, stCopy.stHwBoardInfo.ucBoardCrc8, stCopy.stHwDiagInfo.ucDiagCrc8};
}

bool IsHardwareBlock(const std::vector<u8> &vecImage, size_t uiStored)
{
    const bool bErased =
        std::all_of(vecImage.begin(), vecImage.end(), [](u8 ucByte) { return ucByte == 0xFFU; });
    return uiStored == FRU_HW_DATA_LEN && !bErased &&
           FRU_ANALYZER_CheckValidHeader(vecImage.data()) != FRU_OK;
}

IMAGE_LAYOUT_S WalkHardwareBlock(const std::vector<u8> &vecImage)
{
    FRU_HW_DATA_S stData = {};
    memcpy(&stData, vecImage.data(), sizeof(stData));
    const HW_BLOCK_S stBlock = MakeHardwareBlock(stData);
    const struct
    {
        u32 uiOffset;
        u32 uiLength;
        const char *pcField;
        u8 ucWanted; // of a CRC-8
    } astFields[] = {
        {0U, 1U, "board CRC-8", stBlock.ucBoardCrc8},
        {1U, 4U, "board type", 0U},
        {5U, 1U, "PCB version", 0U},
        {6U, 1U, "EEPROM version", 0U},
        {7U, 1U, "CPLD version", 0U},
        {8U, 8U, "reserved", 0U},
        {16U, 1U, "diagnostic CRC-8", stBlock.ucDiagCrc8},
        {17U, 14U, "reserved", 0U},
        {31U, 1U, "OEM flag", 0U},
    };
    IMAGE_LAYOUT_S stLayout;
    stLayout.vecAreas = {Area::Hardware};
    for (const auto &stField : astFields) {
        SPAN_S stSpan = {stField.uiOffset, stField.uiLength, Area::Hardware, stField.pcField, "", "", ""};
        stSpan.strText = HexBytes(&vecImage[stField.uiOffset], stField.uiLength);
        const bool bCrc = strstr(stField.pcField, "CRC-8") != nullptr;
        if (bCrc && vecImage[stField.uiOffset] == stField.ucWanted) {
            stSpan.strText = "good";
        } else if (bCrc) {
            stSpan.strText = "";
            stSpan.strProblem = Format("0x%02x is wrong; the bytes behind it want 0x%02x",
                                       vecImage[stField.uiOffset], stField.ucWanted);
            stLayout.vecFindings.push_back({stField.uiOffset, Area::Hardware,
                                            std::string(stField.pcField) + ": " + stSpan.strProblem, false});
        }
        stLayout.vecSpans.push_back(stSpan);
    }
    return stLayout;
}
