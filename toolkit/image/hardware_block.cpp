// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/hardware_block.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/fields.h"

namespace {

// The block's bytes; the encoder computes both CRC-8 bytes.
std::vector<u8> Encode(FRU_HW_DATA_S stData)
{
    std::vector<u8> vecBytes(FRU_HW_DATA_LEN);
    const u32 uiRet =
        FRU_ANALYZER_ConvertToHwArray(&stData, static_cast<u32>(vecBytes.size()), vecBytes.data());
    if (uiRet != FRU_OK) {
        Fail("the hardware block cannot be encoded: " + StatusText(uiRet));
    }
    return vecBytes;
}

} // namespace

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
    FRU_HW_DATA_S stGood = {};
    const std::vector<u8> vecBytes = Encode(stData);
    memcpy(&stGood, vecBytes.data(), sizeof(stGood));
    return {stData, stGood.stHwBoardInfo.ucBoardCrc8, stGood.stHwDiagInfo.ucDiagCrc8};
}

std::vector<u8> HardwareBlockBytes(const FRU_HW_DATA_S &stData, const HardwareLabel &aucLabel)
{
    FRU_HW_DATA_S stNew = stData;
    memcpy(stNew.stHwBoardInfo.aucBoardType, aucLabel.data(), sizeof(stNew.stHwBoardInfo.aucBoardType));
    stNew.stHwBoardInfo.ucPCBVer = aucLabel[4];
    stNew.stHwBoardInfo.ucEEPROMVer = aucLabel[5];
    stNew.stHwBoardInfo.ucCPLDVer = aucLabel[6];
    return Encode(stNew);
}

bool IsHardwareBlock(const std::vector<u8> &vecImage, size_t uiStored)
{
    const bool bErased =
        std::all_of(vecImage.begin(), vecImage.end(), [](u8 ucByte) { return ucByte == ERASED; });
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
        Field enField;
        std::optional<u8> optWanted; // of a CRC-8
    } astFields[] = {
        {0U, 1U, Field::BoardCrc8, stBlock.ucBoardCrc8}, {1U, 4U, Field::BoardType, std::nullopt},
        {5U, 1U, Field::PcbVersion, std::nullopt},       {6U, 1U, Field::EepromVersion, std::nullopt},
        {7U, 1U, Field::CpldVersion, std::nullopt},      {8U, 8U, Field::Reserved, std::nullopt},
        {16U, 1U, Field::DiagCrc8, stBlock.ucDiagCrc8},  {17U, 14U, Field::Reserved, std::nullopt},
        {31U, 1U, Field::OemFlag, std::nullopt},
    };
    IMAGE_LAYOUT_S stLayout;
    stLayout.vecAreas = {Area::Hardware};
    for (const auto &stField : astFields) {
        SPAN_S stSpan = {stField.uiOffset, stField.uiLength, {Area::Hardware, stField.enField}, "", {}, ""};
        stSpan.strText = HexBytes(&vecImage[stField.uiOffset], stField.uiLength);
        if (stField.optWanted == vecImage[stField.uiOffset]) {
            stSpan.strText = "good";
        } else if (stField.optWanted.has_value()) {
            stSpan.strText = "";
            stSpan.strProblem = Format("0x%02x is wrong; the bytes behind it want 0x%02x",
                                       vecImage[stField.uiOffset], *stField.optWanted);
            stLayout.vecFindings.push_back({stField.uiOffset, Area::Hardware,
                                            FieldName(stSpan.stField) + ": " + stSpan.strProblem, false});
        }
        stLayout.vecSpans.push_back(stSpan);
    }
    return stLayout;
}
