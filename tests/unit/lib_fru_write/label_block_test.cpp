// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "label_world.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/label_block.h"

namespace {

using label::Line;
using label::LINES;
using label::Null;

// A block whose every byte is marked.
FRU_SET_PARA_S Marked()
{
    FRU_SET_PARA_S stBlock;
    (void)memset(&stBlock, 0x5A, sizeof(stBlock));
    return stBlock;
}

FRU_SET_PARA_S Named(const char *pcFRUName, const char *pcLabel, const char *pcValue)
{
    FRU_SET_PARA_S stBlock = Marked();
    (void)strcpy(stBlock.acFRUName, pcFRUName);
    (void)strcpy(stBlock.acLabelName, pcLabel);
    (void)strcpy(stBlock.acLabelValue, pcValue);
    return stBlock;
}

// Whether everything but the operation-log sentence is as before.
void ExpectOnlySentenceChanged(FRU_SET_PARA_S stBefore, const FRU_SET_PARA_S &stAfter)
{
    (void)memcpy(stBefore.acOperateLog, stAfter.acOperateLog, sizeof(stBefore.acOperateLog));
    EXPECT_EQ(memcmp(&stBefore, &stAfter, sizeof(stBefore)), 0);
}

TEST(LabelBlock, ABlocksNameIsLookedUpWithinTheBlock)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Named("", "FRU File ID", "");
    EXPECT_EQ(FRU_LabelIDOfBlock(&stBlock), 15U);
    (void)memset(stBlock.acLabelName, 'n', sizeof(stBlock.acLabelName));
    EXPECT_EQ(FRU_LabelIDOfBlock(&stBlock), 36U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(LabelBlock, TheDevicesNameIsCutToFifteenCharacters)
{
    for (const auto &[strName, strCut] : {std::pair<std::string, std::string>{"Mainboard", "Mainboard"},
                                          {"0123456789ABCDE", "0123456789ABCDE"},
                                          {"0123456789ABCDEF", "0123456789ABCDE"},
                                          {"", ""}}) {
        fake::Reset();
        label::DEVICE_S stDevice;
        stDevice.ucComponentType = 4U;
        stDevice.ucInstance = 2U;
        stDevice.strFRUName = strName;
        label::Provision(stDevice, fake::BYTES(stDevice.usSize));
        FRU_SET_PARA_S stBlock = label::Request(stDevice, "FRU File ID", "value");
        FRU_SET_PARA_S stExpected = stBlock;
        FRU_DEVICE_INFO_S stInfo;
        (void)memset(&stInfo, 0x77, sizeof(stInfo));
        EXPECT_EQ(FRU_FetchBlockDevice(&stBlock, &stInfo), 0U);
        EXPECT_EQ(stInfo.ucFieldFlag, 7U);
        (void)strcpy(stExpected.acFRUName, strCut.c_str());
        stExpected.ucOperateLogType = 12U;
        EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(LabelBlock, AnUnknownDeviceLeavesTheBlockAlone)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Marked();
    stBlock.ucComponentType = 0x1AU;
    stBlock.ucInstance = 12U;
    const FRU_SET_PARA_S stBefore = stBlock;
    FRU_DEVICE_INFO_S stInfo;
    EXPECT_EQ(FRU_FetchBlockDevice(&stBlock, &stInfo), 0x29000004U);
    EXPECT_EQ(memcmp(&stBlock, &stBefore, sizeof(stBlock)), 0);
    EXPECT_EQ(label::LabelMessages(),
              LINES{Line(2U, "ComponentType[0x1a] Instance[12] FRU NAME does not exist!")});
}

TEST(LabelBlock, AResolvedLabelPutsItsIdIntoTheBlock)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Named("board", "Product Asset Tag", "tag");
    FRU_SET_PARA_S stExpected = stBlock;
    EXPECT_EQ(FRU_ResolveBlockLabel(&stBlock), 0U);
    stExpected.uiLabelID = 23U;
    EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(LabelBlock, AnUnknownLabelIsToldWithItsName)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Named("board", "no %s label", "tag");
    const FRU_SET_PARA_S stBefore = stBlock;
    EXPECT_NE(FRU_ResolveBlockLabel(&stBlock), 0U);
    EXPECT_EQ(memcmp(&stBlock, &stBefore, sizeof(stBlock)), 0);
    (void)memset(stBlock.acLabelName, 'n', sizeof(stBlock.acLabelName));
    EXPECT_NE(FRU_ResolveBlockLabel(&stBlock), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(2U, "Find Label ID by name[no %s label] failed!"),
                     Line(2U, "Find Label ID by name[" + std::string(64U, 'n') + "] failed!")}));
}

TEST(OperateLog, SixIsTheSentenceOfSuccess)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Named("Mainboard", "Board Part Number", "0302%d");
    const FRU_SET_PARA_S stBefore = stBlock;
    FRU_AddComOperateLog(6, &stBlock);
    EXPECT_STREQ(stBlock.acOperateLog,
                 "Set Mainboard FRU successfully, Mainboard Board Part Number: 0302%d.");
    ExpectOnlySentenceChanged(stBefore, stBlock);
    FRU_AddHWOperateLog(6, &stBlock);
    EXPECT_STREQ(stBlock.acOperateLog, "Set Mainboard Board Part Number successfully.");
    ExpectOnlySentenceChanged(stBefore, stBlock);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(OperateLog, EveryOtherCodeIsTheSentenceOfFailure)
{
    for (const i32 iResult : {4, 0, -1, 5, 7, 0x7FFFFFFF}) {
        fake::Reset();
        FRU_SET_PARA_S stBlock = Named("Mainboard", "Board Part Number", "0302");
        const FRU_SET_PARA_S stBefore = stBlock;
        FRU_AddComOperateLog(iResult, &stBlock);
        EXPECT_STREQ(stBlock.acOperateLog, "Failed to set Mainboard FRU.");
        stBlock.acOperateLog[0] = '\0';
        FRU_AddHWOperateLog(iResult, &stBlock);
        EXPECT_STREQ(stBlock.acOperateLog, "Failed to set Mainboard FRU.");
        ExpectOnlySentenceChanged(stBefore, stBlock);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(OperateLog, TextsWithoutATerminatorEndWithTheirMember)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Marked(); // 'Z' in every byte
    FRU_AddComOperateLog(6, &stBlock);
    const std::string strName(16U, 'Z');
    EXPECT_EQ(stBlock.acOperateLog, "Set " + strName + " FRU successfully, " + strName + " " +
                                        std::string(64U, 'Z') + ": " + std::string(80U, 'Z') + ".");
    stBlock = Marked();
    FRU_AddHWOperateLog(6, &stBlock);
    EXPECT_EQ(stBlock.acOperateLog, "Set " + strName + " " + std::string(64U, 'Z') + " successfully.");
    stBlock = Marked();
    FRU_AddHWOperateLog(4, &stBlock);
    EXPECT_EQ(stBlock.acOperateLog, "Failed to set " + strName + " FRU.");
}

TEST(OperateLog, ANullBlockIsReported)
{
    fake::Reset();
    FRU_AddComOperateLog(6, nullptr);
    FRU_AddHWOperateLog(4, nullptr);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_AddComOperateLog", "pstFRUSetPara"),
                                       Null("FRU_AddHWOperateLog", "pstFRUSetPara")}));
}

} // namespace
