// SPDX-License-Identifier: Apache-2.0
// The three info areas as cases, so that a rule of all of them is one test.
#ifndef TESTS_UNIT_AREA_CASE_H
#define TESTS_UNIT_AREA_CASE_H

#include "codec_test_helper.h"

namespace codec {

struct AREA_CASE_S
{
    std::string strName;
    u32 uiHeaderByte;
    BYTES image::AREAS_S::*pvecArea;
    BYTES vecFixed; // between length byte and first text
    LINES vecFields;
    std::string strStart;
    std::string strCalc;       // "Fail" or "Failed"
    LINES vecCustomRet;        // after a custom field that failed
    LINES vecCustomClosing;    // after any failure of the custom fields
    std::string strFirstError; // when the image ends behind the version byte
};

inline const std::vector<AREA_CASE_S> &AreaCases()
{
    static const std::vector<AREA_CASE_S> g_vecCases{
        {"ChassisInfoArea",
         2U,
         &image::AREAS_S::vecChassis,
         {0x17U},
         {"ChassisPartNum", "ChassisSerialNum"},
         "Error ucChassisInfoAreaStartOffset(8*{O}) >= FRU_Size({L})",
         "Failed",
         {Line(2, "Fail to get chassis custom field! Ret:-2130706431.")},
         {},
         "Failed to get chassis type desc in ChassisInfoArea!"},
        {"BoardInfoArea",
         3U,
         &image::AREAS_S::vecBoard,
         {25U, 1U, 2U, 3U},
         {"BoardMfr", "BoardProductName", "BoardSerialNum", "BoardPartNum", "FRUFileID"},
         "Error ucBoardInfoAreaStartOffset(8*{O}) >= FRU_Size({L})",
         "Fail",
         {},
         {Line(2, "Fail to get board custom field!")},
         "Failed to get BoardMfr while in BoardInfoArea!"},
        {"ProductInfoArea",
         4U,
         &image::AREAS_S::vecProduct,
         {25U},
         {"MfrName", "ProductName", "ProductPartNum", "ProductVersion", "ProductSerialNum", "AssetTag",
          "FRUFileID"},
         "Error ProductInfoAreaStartOffset(8*{O}) >= FRU Size({L})",
         "Fail",
         {},
         {},
         "Failed to get MfrName while in ProductInfoArea!"},
    };
    return g_vecCases;
}

inline std::string Closing(const AREA_CASE_S &stCase)
{
    return Line(2, "Failed to get " + stCase.strName + "!");
}

inline LINES operator+(LINES vecLeft, const LINES &vecRight)
{
    vecLeft.insert(vecLeft.end(), vecRight.begin(), vecRight.end());
    return vecLeft;
}

// An image with that area alone, at byte 8.
inline BYTES ImageOf(const AREA_CASE_S &stCase, const BYTES &vecArea, size_t uiTail = 8U)
{
    image::AREAS_S stAreas;
    stAreas.*stCase.pvecArea = vecArea;
    return image::Image(stAreas, uiTail);
}

// The area with these custom fields behind fixed fields "F0", "F1", ...
inline BYTES AreaOf(const AREA_CASE_S &stCase, const std::vector<BYTES> &vecCustom, u32 uiUnits = 0U)
{
    std::vector<BYTES> vecFields;
    for (size_t i = 0; i < stCase.vecFields.size(); ++i) {
        vecFields.push_back(image::Text("F" + std::to_string(i)));
    }
    vecFields.insert(vecFields.end(), vecCustom.begin(), vecCustom.end());
    return image::InfoArea(stCase.vecFixed, vecFields, uiUnits);
}

// Bytes of the area before its first custom field in AreaOf().
inline u32 UsedBefore(const AREA_CASE_S &stCase)
{
    return static_cast<u32>(2U + stCase.vecFixed.size() + 3U * stCase.vecFields.size());
}

inline model::AREA_S ReadArea(const AREA_CASE_S &stCase, FRU_DATA_S *pstFRUData)
{
    return stCase.uiHeaderByte == 2U   ? model::ReadChassis(pstFRUData->stChassisInfo)
           : stCase.uiHeaderByte == 3U ? model::ReadBoard(pstFRUData->stBoardInfo)
                                       : model::ReadProduct(pstFRUData->stProductInfo);
}

inline u8 CustomCount(const AREA_CASE_S &stCase, FRU_DATA_S *pstFRUData)
{
    return stCase.uiHeaderByte == 2U   ? pstFRUData->stChassisInfo.ucCustomFieldCount
           : stCase.uiHeaderByte == 3U ? pstFRUData->stBoardInfo.ucCustomFieldCount
                                       : pstFRUData->stProductInfo.ucCustomFieldCount;
}

inline void PresetCount(const AREA_CASE_S &stCase, FRU_DATA_S *pstFRUData, u8 ucCount)
{
    if (stCase.uiHeaderByte == 2U) {
        pstFRUData->stChassisInfo.ucCustomFieldCount = ucCount;
    } else if (stCase.uiHeaderByte == 3U) {
        pstFRUData->stBoardInfo.ucCustomFieldCount = ucCount;
    } else {
        pstFRUData->stProductInfo.ucCustomFieldCount = ucCount;
    }
}

inline bool HasArray(const AREA_CASE_S &stCase, FRU_DATA_S *pstFRUData)
{
    return stCase.uiHeaderByte == 2U   ? pstFRUData->stChassisInfo.ppucCustomFields != nullptr
           : stCase.uiHeaderByte == 3U ? pstFRUData->stBoardInfo.ppucCustomFields != nullptr
                                       : pstFRUData->stProductInfo.ppucCustomFields != nullptr;
}

} // namespace codec

#endif
