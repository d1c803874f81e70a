// SPDX-License-Identifier: Apache-2.0
// Console dumps for engineers. Labels are part of the interface, their misspellings too.
#include <cstdio>

#include "lib_fru/lib_fru_module.h"
#include "lib_fru_diagnostics.h"

namespace {

constexpr u32 g_uiValuesPerLine = 16U;

// An absent text prints as the C library would print a null one.
const char *Printable(const void *pText)
{
    return pText == nullptr ? "(null)" : static_cast<const char *>(pText);
}

void DebugChassis(const FRU_CHASSIS_INFO_S &stChassis)
{
    (void)puts("\n[======Chassis======]");
    // Intended: the letter missing from "Versio".
    (void)printf("ChassisInfoAreaFormatVersio:%d\n", stChassis.ucFormatVersion);
    (void)printf("ChassisInfoAreaLength:%d\n", stChassis.ucAreaLength);
    (void)printf("ChassisType:%s\n", Printable(stChassis.pucChassisType));
    (void)printf("ChassisPartNum:%s\n", Printable(stChassis.pucChassisPartNum));
    (void)printf("ChassisSerialNum:%s\n", Printable(stChassis.pucChassisSerialNum));
    (void)printf("Total_Chassis_CustomField:%d\n", stChassis.ucCustomFieldCount);
}

void DebugBoard(const FRU_BOARD_INFO_S &stBoard)
{
    (void)puts("\n[======Board======]");
    (void)printf("BoardInfoAreaFormatVersion:%d\n", stBoard.ucFormatVersion);
    (void)printf("BoardInfoAreaLength:%d\n", stBoard.ucAreaLength);
    (void)printf("Language:%d\n", stBoard.ucLanguage);
    (void)printf("MfgDateTime0:%d, MfgDateTime1:%d, MfgDateTime2:%d\n", stBoard.aucMfgDateTime[0],
                 stBoard.aucMfgDateTime[1], stBoard.aucMfgDateTime[2]);
    (void)printf("BoardMfr:%s\n", Printable(stBoard.pucBoardMfr));
    (void)printf("BoardProductName:%s\n", Printable(stBoard.pucBoardProductName));
    (void)printf("BoardSerialNum:%s\n", Printable(stBoard.pucBoardSerialNum));
    (void)printf("BoardPartNum:%s\n", Printable(stBoard.pucBoardPartNum));
    (void)printf("Total_Board_CustomField:%d\n", stBoard.ucCustomFieldCount);
}

void DebugProduct(const FRU_PRODUCT_INFO_S &stProduct)
{
    (void)puts("\n[======Product======]");
    (void)printf("ProductInfoAreaFormatVersion:%d\n", stProduct.ucFormatVersion);
    (void)printf("ProductInfoAreaLength:%d\n", stProduct.ucAreaLength);
    (void)printf("Language:%d\n", stProduct.ucLanguage);
    (void)printf("MfrName:%s\n", Printable(stProduct.pucMfrName));
    (void)printf("ProductName:%s\n", Printable(stProduct.pucProductName));
    (void)printf("ProductPartNum:%s\n", Printable(stProduct.pucProductPartNum));
    (void)printf("ProductVersion:%s\n", Printable(stProduct.pucProductVersion));
    (void)printf("ProductSerialNum:%s\n", Printable(stProduct.pucProductSerialNum));
    (void)printf("AssetTag:%s\n", Printable(stProduct.pucAssetTag));
    (void)printf("Total_Product_CustomField:%d\n", stProduct.ucCustomFieldCount);
}

} // namespace

void FRU_DebugBuf(const u8 *pucBuf, u16 usLength)
{
    FRU_REQUIRE_OR_LEAVE(pucBuf);
    for (u32 i = 1U; i <= usLength; ++i) {
        const bool bEndsLine = i % g_uiValuesPerLine == 0U || i == usLength;
        (void)(bEndsLine ? printf("%#x\n", pucBuf[i - 1U]) : printf("%#x ", pucBuf[i - 1U]));
    }
}

void FRU_DebugData(const FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUData);
    const FRU_COMMON_HEADER_S &stHeader = pstFRUData->stCommonHeader;
    (void)puts("print data!");
    (void)puts("\n[======CommonHeader======]");
    // No line end: the next area begins with one, and a record without areas ends here.
    (void)printf("ChassisInfoAreaStartOffset:%d BoardInfoAreaStartOffset:%d ProductInfoAreaStartOffset:%d",
                 stHeader.ucChassisInfoAreaStartOffset, stHeader.ucBoardInfoAreaStartOffset,
                 stHeader.ucProductInfoAreaStartOffset);
    if (stHeader.ucChassisInfoAreaStartOffset != 0U) {
        DebugChassis(pstFRUData->stChassisInfo);
    }
    if (stHeader.ucBoardInfoAreaStartOffset != 0U) {
        DebugBoard(pstFRUData->stBoardInfo);
    }
    if (stHeader.ucProductInfoAreaStartOffset != 0U) {
        DebugProduct(pstFRUData->stProductInfo);
    }
}

void FRU_DebugHWData(const FRU_HW_DATA_S *pstHWData)
{
    FRU_REQUIRE_OR_LEAVE(pstHWData);
    const FRU_HW_BOARD_INFO_S &stBoard = pstHWData->stHwBoardInfo;
    const FRU_HW_DIAG_INFO_S &stDiag = pstHWData->stHwDiagInfo;
    (void)puts("\n[======BOARD INFO======]");
    (void)printf("Crc8:%#x\n", stBoard.ucBoardCrc8);
    (void)printf("BoardType:%#x %#x %#x %#x\n", stBoard.aucBoardType[0], stBoard.aucBoardType[1],
                 stBoard.aucBoardType[2], stBoard.aucBoardType[3]);
    (void)printf("PCBVer:%#x\n", stBoard.ucPCBVer);
    (void)printf("EEPROMVer:%#x\n", stBoard.ucEEPROMVer);
    (void)printf("CPLDVer:%#x\n", stBoard.ucCPLDVer);
    // Intended: "Reveser".
    (void)puts("Reveser:");
    FRU_DebugBuf(stBoard.aucBoardReserved, sizeof(stBoard.aucBoardReserved));
    (void)puts("\n[======DIAG INFO======]");
    (void)printf("Crc8:%#x\n", stDiag.ucDiagCrc8);
    (void)puts("Reveser:");
    FRU_DebugBuf(stDiag.aucDiagReserved, sizeof(stDiag.aucDiagReserved));
    (void)printf("OEMFlag:%#x\n", stDiag.ucOEMFlag);
}
