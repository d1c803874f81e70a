// SPDX-License-Identifier: Apache-2.0
#include <cstring>
#include <memory>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

constexpr const char *g_pcNoAreas =
    "print data!\n\n[======CommonHeader======]\n"
    "ChassisInfoAreaStartOffset:0 BoardInfoAreaStartOffset:0 ProductInfoAreaStartOffset:0";

u8 *Text(const char *pcText)
{
    return const_cast<u8 *>(reinterpret_cast<const u8 *>(pcText));
}

FRU_DATA_S FullRecord()
{
    FRU_DATA_S stData = {};
    stData.stChassisInfo.ucFormatVersion = 1;
    stData.stChassisInfo.ucAreaLength = 255;
    stData.stChassisInfo.pucChassisType = reinterpret_cast<char *>(Text("Rack Mount Chassis"));
    stData.stChassisInfo.pucChassisPartNum = Text("CPN");
    stData.stChassisInfo.pucChassisSerialNum = Text("");
    stData.stChassisInfo.ucCustomFieldCount = 5;
    stData.stBoardInfo.ucFormatVersion = 2;
    stData.stBoardInfo.ucAreaLength = 9;
    stData.stBoardInfo.ucLanguage = 25;
    stData.stBoardInfo.aucMfgDateTime[0] = 0;
    stData.stBoardInfo.aucMfgDateTime[1] = 128;
    stData.stBoardInfo.aucMfgDateTime[2] = 255;
    stData.stBoardInfo.pucBoardMfr = Text("BM");
    stData.stBoardInfo.pucBoardProductName = Text("100%s%n");
    stData.stBoardInfo.pucBoardSerialNum = Text("BSN");
    stData.stBoardInfo.pucBoardPartNum = Text("BPN");
    stData.stBoardInfo.ucCustomFieldCount = 64;
    stData.stProductInfo.ucFormatVersion = 1;
    stData.stProductInfo.ucAreaLength = 7;
    stData.stProductInfo.pucMfrName = Text("PM");
    stData.stProductInfo.pucProductName = Text("PN");
    stData.stProductInfo.pucProductPartNum = Text("PPN");
    stData.stProductInfo.pucProductVersion = Text("V1");
    stData.stProductInfo.pucProductSerialNum = Text("PSN");
    stData.stProductInfo.pucAssetTag = Text("AT");
    return stData;
}

TEST(DebugDump, BufferNullIsReported)
{
    fake::Reset();
    FRU_DebugBuf(nullptr, 0);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", "FRU_DebugBuf", "pucBuf")});
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(DebugDump, BufferOfNoBytesPrintsNothing)
{
    fake::Reset();
    const u8 ucByte = 1;
    FRU_DebugBuf(&ucByte, 0);
    EXPECT_EQ(fake::TakeStdout(), "");
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DebugDump, BufferHasSixteenValuesALine)
{
    const std::string strLine = "0 0x1 0x2 0x3 0x4 0x5 0x6 0x7 0x8 0x9 0xa 0xb 0xc 0xd 0xe 0xf\n";
    const std::string strLine2 =
        "0x10 0x11 0x12 0x13 0x14 0x15 0x16 0x17 0x18 0x19 0x1a 0x1b 0x1c 0x1d 0x1e 0x1f\n";
    const std::pair<u16, std::string> aCases[] = {
        {u16{1}, "0\n"},
        {u16{2}, "0 0x1\n"},
        {u16{16}, strLine},
        {u16{17}, strLine + "0x10\n"},
        {u16{32}, strLine + strLine2},
    };
    for (const auto &[usLength, strExpected] : aCases) {
        fake::Reset();
        const auto upBuf = std::make_unique<u8[]>(usLength);
        for (u32 i = 0; i < usLength; ++i) {
            upBuf[i] = static_cast<u8>(i);
        }
        FRU_DebugBuf(upBuf.get(), usLength);
        EXPECT_EQ(fake::TakeStdout(), strExpected);
    }
}

TEST(DebugDump, LongestBufferIsPrintedWhole)
{
    fake::Reset();
    const auto upBuf = std::make_unique<u8[]>(0xFFFFU);
    FRU_DebugBuf(upBuf.get(), 0xFFFFU);
    // 65535 values, each followed by a blank or a line end.
    EXPECT_EQ(fake::TakeStdout().size(), 2U * 65535U);
}

TEST(DebugDump, RecordNullIsReported)
{
    fake::Reset();
    FRU_DebugData(nullptr);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", "FRU_DebugData", "pstFRUData")});
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(DebugDump, RecordWithoutAreasPrintsTheHeaderOnly)
{
    fake::Reset();
    FRU_DATA_S stData = FullRecord();
    FRU_DebugData(&stData);
    EXPECT_EQ(fake::TakeStdout(), g_pcNoAreas);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DebugDump, RecordWithAllAreas)
{
    fake::Reset();
    FRU_DATA_S stData = FullRecord();
    stData.stCommonHeader.ucChassisInfoAreaStartOffset = 1;
    stData.stCommonHeader.ucBoardInfoAreaStartOffset = 200;
    stData.stCommonHeader.ucProductInfoAreaStartOffset = 255;
    stData.stCommonHeader.ucInternalUseAreaStartOffset = 77;
    stData.stCommonHeader.ucMultiRecordAreaStartOffset = 78;
    FRU_DebugData(&stData);
    EXPECT_EQ(fake::TakeStdout(),
              "print data!\n\n[======CommonHeader======]\n"
              "ChassisInfoAreaStartOffset:1 BoardInfoAreaStartOffset:200 ProductInfoAreaStartOffset:255"
              "\n[======Chassis======]\n"
              "ChassisInfoAreaFormatVersio:1\nChassisInfoAreaLength:255\nChassisType:Rack Mount Chassis\n"
              "ChassisPartNum:CPN\nChassisSerialNum:\nTotal_Chassis_CustomField:5\n"
              "\n[======Board======]\n"
              "BoardInfoAreaFormatVersion:2\nBoardInfoAreaLength:9\nLanguage:25\n"
              "MfgDateTime0:0, MfgDateTime1:128, MfgDateTime2:255\n"
              "BoardMfr:BM\nBoardProductName:100%s%n\nBoardSerialNum:BSN\nBoardPartNum:BPN\n"
              "Total_Board_CustomField:64\n"
              "\n[======Product======]\n"
              "ProductInfoAreaFormatVersion:1\nProductInfoAreaLength:7\nLanguage:0\nMfrName:PM\n"
              "ProductName:PN\nProductPartNum:PPN\nProductVersion:V1\nProductSerialNum:PSN\nAssetTag:AT\n"
              "Total_Product_CustomField:0\n");
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DebugDump, EachAreaIsPrintedByItsOwnOffset)
{
    for (int iArea = 0; iArea < 3; ++iArea) {
        fake::Reset();
        FRU_DATA_S stData = {};
        u8 *pucOffsets = &stData.stCommonHeader.ucChassisInfoAreaStartOffset;
        pucOffsets[iArea] = 3;
        FRU_DebugData(&stData);
        const std::string strText = fake::TakeStdout();
        EXPECT_EQ(strText.find("[======Chassis======]") != std::string::npos, iArea == 0);
        EXPECT_EQ(strText.find("[======Board======]") != std::string::npos, iArea == 1);
        EXPECT_EQ(strText.find("[======Product======]") != std::string::npos, iArea == 2);
    }
}

TEST(DebugDump, AbsentTextsPrintAsNull)
{
    fake::Reset();
    FRU_DATA_S stData = {};
    stData.stCommonHeader.ucChassisInfoAreaStartOffset = 1;
    stData.stCommonHeader.ucBoardInfoAreaStartOffset = 1;
    stData.stCommonHeader.ucProductInfoAreaStartOffset = 1;
    FRU_DebugData(&stData);
    EXPECT_EQ(fake::TakeStdout(),
              "print data!\n\n[======CommonHeader======]\n"
              "ChassisInfoAreaStartOffset:1 BoardInfoAreaStartOffset:1 ProductInfoAreaStartOffset:1"
              "\n[======Chassis======]\n"
              "ChassisInfoAreaFormatVersio:0\nChassisInfoAreaLength:0\nChassisType:(null)\n"
              "ChassisPartNum:(null)\nChassisSerialNum:(null)\nTotal_Chassis_CustomField:0\n"
              "\n[======Board======]\n"
              "BoardInfoAreaFormatVersion:0\nBoardInfoAreaLength:0\nLanguage:0\n"
              "MfgDateTime0:0, MfgDateTime1:0, MfgDateTime2:0\n"
              "BoardMfr:(null)\nBoardProductName:(null)\nBoardSerialNum:(null)\nBoardPartNum:(null)\n"
              "Total_Board_CustomField:0\n"
              "\n[======Product======]\n"
              "ProductInfoAreaFormatVersion:0\nProductInfoAreaLength:0\nLanguage:0\nMfrName:(null)\n"
              "ProductName:(null)\nProductPartNum:(null)\nProductVersion:(null)\nProductSerialNum:(null)\n"
              "AssetTag:(null)\nTotal_Product_CustomField:0\n");
}

TEST(DebugDump, HardwareBlockNullIsReported)
{
    fake::Reset();
    FRU_DebugHWData(nullptr);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", "FRU_DebugHWData", "pstHWData")});
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(DebugDump, HardwareBlockIsPrintedWhole)
{
    fake::Reset();
    FRU_HW_DATA_S stHwData = {};
    u8 aucBytes[32];
    for (u32 i = 0; i < sizeof(aucBytes); ++i) {
        aucBytes[i] = static_cast<u8>(0xE0U + i);
    }
    (void)memcpy(&stHwData, aucBytes, sizeof(stHwData));
    FRU_DebugHWData(&stHwData);
    EXPECT_EQ(fake::TakeStdout(),
              "\n[======BOARD INFO======]\nCrc8:0xe0\nBoardType:0xe1 0xe2 0xe3 0xe4\nPCBVer:0xe5\n"
              "EEPROMVer:0xe6\nCPLDVer:0xe7\nReveser:\n0xe8 0xe9 0xea 0xeb 0xec 0xed 0xee 0xef\n"
              "\n[======DIAG INFO======]\nCrc8:0xf0\nReveser:\n"
              "0xf1 0xf2 0xf3 0xf4 0xf5 0xf6 0xf7 0xf8 0xf9 0xfa 0xfb 0xfc 0xfd 0xfe\nOEMFlag:0xff\n");
    EXPECT_TRUE(fake::Messages().empty());
}

} // namespace
