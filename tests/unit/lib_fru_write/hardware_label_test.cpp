// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "bmc_support.h"
#include "label_texts.h"
#include "label_world.h"
#include "lib_fru_labels.h"
#include "support/mixture.h"

namespace {

using label::DEVICE_S;
using label::LabelMessages;
using label::Line;
using label::LINES;
using label::Null;
using label::Request;

// A device that holds nothing but the block; a field flag that forbids the label does not matter here.
DEVICE_S Card()
{
    DEVICE_S stDevice;
    stDevice.ucComponentType = 0x30U;
    stDevice.ucInstance = 1U;
    stDevice.ucDeviceID = 12U;
    stDevice.usStartOffset = 0U;
    stDevice.usSize = 32U;
    stDevice.ucFieldFlag = 7U;
    stDevice.strFRUName = "BMC card";
    return stDevice;
}

fake::BYTES Block()
{
    fake::BYTES vecBlock(32U);
    for (u8 i = 0; i < 32U; ++i) {
        vecBlock[i] = static_cast<u8>(0x80U + i);
    }
    vecBlock[0] = BMC_CalcCRC8CheckSum(vecBlock.data() + 1, 15U);
    vecBlock[16] = BMC_CalcCRC8CheckSum(vecBlock.data() + 17, 15U);
    return vecBlock;
}

// The block with the seven value bytes in it and its first CRC made anew.
fake::BYTES Changed(const std::string &strValue)
{
    fake::BYTES vecBlock = Block();
    (void)std::copy_n(strValue.begin(), 7, vecBlock.begin() + 1);
    vecBlock[0] = BMC_CalcCRC8CheckSum(vecBlock.data() + 1, 15U);
    return vecBlock;
}

TEST(HardwareLabel, ReplacesSevenBytesAndKeepsTheOthers)
{
    fake::Reset();
    const DEVICE_S stDevice = Card();
    label::Provision(stDevice, Block());
    FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "ABCDEFG");
    FRU_SET_PARA_S stExpected = stBlock;
    EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0U);
    EXPECT_EQ(label::OnChip(stDevice), Changed("ABCDEFG"));
    stExpected.uiLabelID = 29U; // length and field flag stay as they were
    (void)strcpy(stExpected.acFRUName, "BMC card");
    (void)strcpy(stExpected.acOperateLog, "Set BMC card Hardware FRU Label successfully.");
    stExpected.ucOperateLogType = 12U;
    EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);
    EXPECT_EQ(fake::Messages(), LINES{Line(6U, "ComponentType[0x30] Instance[1].")});
    EXPECT_EQ(fake::Calls("EEPROM"),
              (LINES{"EEPROM read type=9 bus=3 addr=0xa0 switch=0 off=0 len=32 -> 32",
                     "EEPROM write type=9 bus=3 addr=0xa0 switch=0 off=0 len=32 -> 32"}));
    EXPECT_EQ(label::InCache(stDevice), Block()); // the cache is not this call's
    EXPECT_TRUE(fake::Calls("DB_Put").empty());
    EXPECT_TRUE(fake::Calls("MRPC").empty()); // and no event is sent
}

TEST(HardwareLabel, AShortValueTakesWhatFollowsIt)
{
    fake::Reset();
    const DEVICE_S stDevice = Card();
    label::Provision(stDevice, Block());
    FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "AB");
    EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0U);
    EXPECT_EQ(label::OnChip(stDevice), Changed(std::string("AB\0ZZZZ", 7U)));
}

TEST(HardwareLabel, TheValueIsRawBytes)
{
    for (const std::string &strValue : {std::string("\0\x01\x80\xFF\0\n%", 7U), std::string("%s%n%s%n"),
                                        std::string(80U, '\xFF'), std::string("NONE...")}) {
        fake::Reset();
        const DEVICE_S stDevice = Card();
        label::Provision(stDevice, Block());
        FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "");
        (void)memcpy(stBlock.acLabelValue, strValue.data(), strValue.size());
        EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0U);
        EXPECT_EQ(label::OnChip(stDevice), Changed(strValue.substr(0, 7U)));
    }
}

TEST(HardwareLabel, EveryFieldFlagWillDo)
{
    for (const u8 ucFlag : {u8{0}, u8{2}, u8{9}, u8{255}}) {
        fake::Reset();
        DEVICE_S stDevice = Card();
        stDevice.ucFieldFlag = ucFlag;
        label::Provision(stDevice, Block());
        FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "ABCDEFG");
        EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0U);
        EXPECT_EQ(label::OnChip(stDevice), Changed("ABCDEFG"));
    }
}

TEST(HardwareLabel, ANullBlockIsReported)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_WriteHWInfo(nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{Null("LIB_FRU_WriteHWInfo", "pstFRUSetPara")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(HardwareLabel, AnUnknownDeviceLeavesTheBlockUntouched)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Request(Card(), "Hardware FRU Label", "ABCDEFG");
    const FRU_SET_PARA_S stBefore = stBlock;
    EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0x29000004U);
    EXPECT_EQ(memcmp(&stBlock, &stBefore, sizeof(stBlock)), 0);
    EXPECT_EQ(LabelMessages(), LINES{Line(2U, "ComponentType[0x30] Instance[1] FRU NAME does not exist!")});
}

void ExpectRefused(const std::string &strName, u32 uiResult, u32 uiLabelID, const LINES &vecMessages)
{
    fake::Reset();
    const DEVICE_S stDevice = Card();
    label::Provision(stDevice, Block());
    FRU_SET_PARA_S stBlock = Request(stDevice, strName, "ABCDEFG");
    FRU_SET_PARA_S stExpected = stBlock;
    EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), uiResult);
    stExpected.uiLabelID = uiLabelID;
    (void)strcpy(stExpected.acFRUName, "BMC card");
    (void)strcpy(stExpected.acOperateLog, "Failed to set BMC card FRU.");
    stExpected.ucOperateLogType = 12U;
    EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);
    EXPECT_EQ(fake::Messages(), vecMessages);
    EXPECT_EQ(label::OnChip(stDevice), Block());
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(HardwareLabel, AnUnknownNameIsRefused)
{
    constexpr u32 uiMarked = 0x5A5A5A5AU;
    ExpectRefused("No Such Label", 0x29000004U, uiMarked,
                  {Line(2U, "Find Label ID by name[No Such Label] failed!")});
    ExpectRefused("Hardware FRU Label 2", 0x29000004U, uiMarked,
                  {Line(2U, "Find Label ID by name[Hardware FRU Label 2] failed!")});
    const std::string strEndless(64U, 'n');
    ExpectRefused(strEndless, 0x29000004U, uiMarked,
                  {Line(2U, "Find Label ID by name[" + strEndless + "] failed!")});
}

TEST(HardwareLabel, EveryOtherLabelIsInvalid)
{
    ExpectRefused("Board Serial Number", 0x81000001U, 13U,
                  {Line(4U, "LabelName[Board Serial Number] invalid!")});
    ExpectRefused("Chassis Type", 0x81000001U, 1U, {Line(4U, "LabelName[Chassis Type] invalid!")});
}

TEST(HardwareLabel, AnUnreadableBlockIsNotWritten)
{
    fake::Reset();
    const DEVICE_S stDevice = Card();
    label::Provision(stDevice, Block());
    FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "ABCDEFG");
    fake::Arm({fake::KIND_E::EEPROM, 1, false});
    EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0x81000001U);
    fake::Disarm();
    EXPECT_STREQ(stBlock.acOperateLog, "Failed to set BMC card FRU.");
    EXPECT_EQ(LabelMessages(), (LINES{Line(6U, "ComponentType[0x30] Instance[1]."),
                                      Line(4U, "Get HW FRU Data failed! Ret:0x29000004.")}));
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
    EXPECT_EQ(label::OnChip(stDevice), Block());
}

TEST(HardwareLabel, AFailedWriteIsToldWithTheWritersCode)
{
    fake::Reset();
    const DEVICE_S stDevice = Card();
    label::Provision(stDevice, Block());
    FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "ABCDEFG");
    fake::Arm({fake::KIND_E::EEPROM, 2, false});
    EXPECT_EQ(LIB_FRU_WriteHWInfo(&stBlock), 0x81000001U);
    fake::Disarm();
    EXPECT_STREQ(stBlock.acOperateLog, "Failed to set BMC card FRU.");
    EXPECT_EQ(LabelMessages(), (LINES{Line(6U, "ComponentType[0x30] Instance[1]."),
                                      Line(4U, "Write HW Info To Device failed! Ret:0x29000008.")}));
}

TEST(HardwareLabel, WhateverFailsTheResultTellsWhetherTheBlockWasWritten)
{
    const DEVICE_S stDevice = Card();
    FRU_SET_PARA_S stBlock;
    u32 uiResult = 0;
    fake::Sweep(
        [&] {
            label::Provision(stDevice, Block());
            stBlock = Request(stDevice, "Hardware FRU Label", "ABCDEFG");
        },
        [&] { uiResult = LIB_FRU_WriteHWInfo(&stBlock); },
        [&](const fake::FAULT_S *pstFault) {
            if (uiResult == 0U) {
                EXPECT_EQ(label::OnChip(stDevice), Changed("ABCDEFG"));
                EXPECT_STREQ(stBlock.acOperateLog, "Set BMC card Hardware FRU Label successfully.");
                return;
            }
            ASSERT_NE(pstFault, nullptr);
            EXPECT_TRUE(uiResult == 0x29000004U || uiResult == 0x81000001U);
            EXPECT_FALSE(LabelMessages().empty());
            if (pstFault->eHow == fake::HOW_E::FAIL) {
                EXPECT_EQ(label::OnChip(stDevice), Block());
            }
            EXPECT_TRUE(image::IsMixtureOf(label::OnChip(stDevice), {Block(), Changed("ABCDEFG")}));
            const size_t uiSentence = strnlen(stBlock.acOperateLog, sizeof(stBlock.acOperateLog));
            EXPECT_EQ(std::string(stBlock.acOperateLog, uiSentence),
                      uiResult == 0x29000004U ? std::string(512U, 'Z') : "Failed to set BMC card FRU.");
        });
}

} // namespace
