// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/fields.h"

#include <cstdlib>

namespace {

#define FRU_OFFSET(Member) static_cast<u16>(offsetof(FRU_DATA_S, Member))

constexpr FRU_FIELD_S TextRow(u16 usSize, u16 usMember)
{
    return {FRU_KIND_TEXT, 0U, usMember, usSize};
}

constexpr FRU_FIELD_S BytesRow(u8 ucBytes, u16 usMember)
{
    return {FRU_KIND_BYTES, ucBytes, usMember, 0U};
}

#define FRU_TEXT_ROW(Size, Member) TextRow(FRU_OFFSET(Size), FRU_OFFSET(Member))

} // namespace

const FRU_FIELD_S g_astFruField[FRU_FIELD_COUNT] = {
    {FRU_KIND_CHASSIS_TYPE, 0U, FRU_OFFSET(stChassisInfo.pucChassisType), 0U},
    FRU_TEXT_ROW(stChassisInfo.ucChassisPartNumLen, stChassisInfo.pucChassisPartNum),
    FRU_TEXT_ROW(stChassisInfo.ucChassisSerialNumLen, stChassisInfo.pucChassisSerialNum),

    BytesRow(sizeof(FRU_BOARD_INFO_S::ucLanguage), FRU_OFFSET(stBoardInfo.ucLanguage)),
    BytesRow(sizeof(FRU_BOARD_INFO_S::aucMfgDateTime), FRU_OFFSET(stBoardInfo.aucMfgDateTime)),
    FRU_TEXT_ROW(stBoardInfo.ucBoardMfrLen, stBoardInfo.pucBoardMfr),
    FRU_TEXT_ROW(stBoardInfo.ucBoardProductNameLen, stBoardInfo.pucBoardProductName),
    FRU_TEXT_ROW(stBoardInfo.ucBoardSerialNumLen, stBoardInfo.pucBoardSerialNum),
    FRU_TEXT_ROW(stBoardInfo.ucBoardPartNumLen, stBoardInfo.pucBoardPartNum),
    FRU_TEXT_ROW(stBoardInfo.ucFRUFileIDLen, stBoardInfo.pucFRUFileID),

    BytesRow(sizeof(FRU_PRODUCT_INFO_S::ucLanguage), FRU_OFFSET(stProductInfo.ucLanguage)),
    FRU_TEXT_ROW(stProductInfo.ucMfrNameLen, stProductInfo.pucMfrName),
    FRU_TEXT_ROW(stProductInfo.ucProductNameLen, stProductInfo.pucProductName),
    FRU_TEXT_ROW(stProductInfo.ucProductPartNumLen, stProductInfo.pucProductPartNum),
    FRU_TEXT_ROW(stProductInfo.ucProductVersionLen, stProductInfo.pucProductVersion),
    FRU_TEXT_ROW(stProductInfo.ucProductSerialNumLen, stProductInfo.pucProductSerialNum),
    FRU_TEXT_ROW(stProductInfo.ucAssetTagLen, stProductInfo.pucAssetTag),
    FRU_TEXT_ROW(stProductInfo.ucFRUFileIDLen, stProductInfo.pucFRUFileID),
};

const FRU_AREA_S g_astFruArea[FRU_AREA_COUNT] = {
    {
        FRU_FIELD_CHASSIS_TYPE,
        FRU_FIELD_BOARD_LANGUAGE,
        offsetof(FRU_COMMON_HEADER_S, ucChassisInfoAreaStartOffset),
        FRU_OFFSET(stChassisInfo.ucFormatVersion),
        FRU_OFFSET(stChassisInfo.ucAreaLength),
        {FRU_OFFSET(stChassisInfo.ppucCustomFields), FRU_OFFSET(stChassisInfo.ucCustomFieldCount),
         FRU_CHASSIS_FIXED_SLOTS},
    },
    {
        FRU_FIELD_BOARD_LANGUAGE,
        FRU_FIELD_PRODUCT_LANGUAGE,
        offsetof(FRU_COMMON_HEADER_S, ucBoardInfoAreaStartOffset),
        FRU_OFFSET(stBoardInfo.ucFormatVersion),
        FRU_OFFSET(stBoardInfo.ucAreaLength),
        {FRU_OFFSET(stBoardInfo.ppucCustomFields), FRU_OFFSET(stBoardInfo.ucCustomFieldCount), 0U},
    },
    {
        FRU_FIELD_PRODUCT_LANGUAGE,
        FRU_FIELD_COUNT,
        offsetof(FRU_COMMON_HEADER_S, ucProductInfoAreaStartOffset),
        FRU_OFFSET(stProductInfo.ucFormatVersion),
        FRU_OFFSET(stProductInfo.ucAreaLength),
        {FRU_OFFSET(stProductInfo.ppucCustomFields), FRU_OFFSET(stProductInfo.ucCustomFieldCount),
         FRU_PRODUCT_FIXED_SLOTS},
    },
};

void FRU_ReplaceFieldText(FRU_DATA_S *pstFRUData, u32 uiField, u8 *pucText)
{
    u8 *pucOld = FRU_FieldText(pstFRUData, uiField);
    if (pucOld != pucText) {
        std::free(pucOld);
    }
    FRU_StoreFieldText(pstFRUData, uiField, pucText);
}
