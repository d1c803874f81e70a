// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "label_world.h"
#include "lib_fru_labels.h"

namespace {

using label::Bytes;
using label::DEVICE_S;
using label::FIELDS;
using label::IMAGE_S;
using label::LabelMessages;
using label::Line;
using label::LINES;
using label::Null;
using label::Request;

const char g_acPrimary[] = "/mnt/sdmmc0p4/board/ProductSerialNumber";
const char g_acCopy[] = "/var/network/ProductSerialNumber";
const char g_acSuccess[] = "Write Electronic Label successfully!";

// A device that is not the baseboard, so that no files are written.
DEVICE_S Riser()
{
    DEVICE_S stDevice;
    stDevice.ucComponentType = 4U;
    stDevice.ucInstance = 2U;
    stDevice.ucDeviceID = 9U;
    stDevice.strFRUName = "Riser2";
    return stDevice;
}

std::string Announced(const DEVICE_S &stDevice, const std::string &strName, const std::string &strValue,
                      u32 uiID)
{
    char acLine[400];
    (void)snprintf(acLine, sizeof(acLine),
                   "ComponentType[%#x] Instance[%d] LabelName[%s] LabelValue[%s:%d] LabelID[%d].",
                   stDevice.ucComponentType, stDevice.ucInstance, strName.c_str(), strValue.c_str(),
                   static_cast<int>(strValue.size()), static_cast<int>(uiID));
    return Line(6U, acLine);
}

LINES FieldCounts(const LINES &vecMessages, u32 uiChassis, u32 uiBoard, u32 uiProduct)
{
    LINES vecLines;
    for (const std::string &strLine : vecMessages) {
        if (strLine.find("CustomField count is") != std::string::npos) {
            vecLines.push_back(strLine);
        }
    }
    EXPECT_EQ(vecLines.size(), 3U);
    const std::pair<const char *, u32> astAreas[] = {
        {"Chassis", uiChassis}, {"Board", uiBoard}, {"Product", uiProduct}};
    for (size_t i = 0; i < vecLines.size() && i < 3U; ++i) {
        const std::string strHead = std::string("0/7 lib_fru_analyzer.c: ") + astAreas[i].first +
                                    "InfoArea CustomField count is " + std::to_string(astAreas[i].second) +
                                    ",";
        EXPECT_EQ(vecLines[i].substr(0, strHead.size()), strHead);
    }
    return vecLines;
}

// The event of a written label as the listeners get it.
fake::BYTES Event(const DEVICE_S &stDevice, u8 ucLabelID)
{
    return {3, 0, 0, 0, stDevice.ucComponentType, stDevice.ucInstance, 0, 0, ucLabelID, 0, 0, 0, 0, 0, 0, 0};
}

LINES EventCalls()
{
    return fake::Calls("MRPC 630/");
}

void ExpectUntouched(const DEVICE_S &stDevice, const fake::BYTES &vecImage)
{
    EXPECT_EQ(label::OnChip(stDevice), vecImage);
    EXPECT_EQ(label::InCache(stDevice), vecImage);
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
    EXPECT_TRUE(fake::Calls("DB_Put").empty());
    EXPECT_TRUE(fake::Calls("MRPC").empty());
    EXPECT_TRUE(fake::Calls("fopen").empty());
}

struct LABEL_CASE_S
{
    const char *pcName;
    u8 ucLabelID;
    const char *pcValue;
    const char *pcField;  // of the decoded image
    const char *pcStored; // null: as given
};

const LABEL_CASE_S g_astLabels[] = {
    {"Chassis Type", 1, "Blade Enclosure", "chassis.type", nullptr},
    {"Chassis Part Number", 2, "CPN-1", "chassis.part", nullptr},
    {"Chassis Serial Number", 3, "CSN-1", "chassis.serial", nullptr},
    {"Chassis Customer Serial Number", 4, "CCSN-1", "chassis.custom0", nullptr},
    {"Chassis MAC Address", 5, "00a0c9141e3f", "chassis.custom1", "00A0C9141E3F"},
    {"Chassis MAC Address Count", 6, "12", "chassis.custom2", nullptr},
    {"CLEI Code", 7, "NONE", "chassis.custom3", nullptr},
    {"Chassis Location Node ID", 8, "node 7", "chassis.custom4", nullptr},
    {"Language Code", 9, "136", "board.language", nullptr},
    {"Mfg.Date", 10, "1996-01-01 00:01:59", "board.date", "010000"},
    {"Board Manufacturer", 11, "Maker", "board.manufacturer", nullptr},
    {"Board Product Name", 12, "Board", "board.name", nullptr},
    {"Board Serial Number", 13, "BSN-1", "board.serial", nullptr},
    {"Board Part Number", 14, "BPN-1", "board.part", nullptr},
    {"FRU File ID", 15, "file.xml", "board.file", nullptr},
    {"Board Top Serial Number", 16, "", "board.custom0", nullptr},
    {"Product Language Code", 17, "0", "product.language", nullptr},
    {"Product Manufacturer", 18, "Maker", "product.manufacturer", nullptr},
    {"Product Product Name", 19, "Server", "product.name", nullptr},
    {"Product Serial Number", 20, "PSN-1", "product.serial", nullptr},
    {"Product Part Number", 21, "012345678901234567890123456789012345678901234567890123456789 63",
     "product.part", nullptr},
    {"Product Version", 22, "v2", "product.version", nullptr},
    {"Product Asset Tag", 23, "", "product.tag", nullptr},
    {"Product FRU File ID", 24, "product.xml", "product.file", nullptr},
    {"Product Node Type", 25, "type 1", "product.custom0", nullptr},
    {"Product Node PSU", 26, "   ", "product.custom1", nullptr},
    {"Product Node Network", 27, "network", "product.custom2", nullptr},
    {"Product Node Power", 28, "power", "product.custom3", nullptr},
};

TEST(LabelWrite, EveryLabelChangesItsFieldAndNothingElse)
{
    ASSERT_EQ(setenv("TZ", "UTC", 1), 0);
    tzset();
    ASSERT_EQ(std::size(g_astLabels), 28U);
    const DEVICE_S stDevice = Riser();
    for (const LABEL_CASE_S &stCase : g_astLabels) {
        SCOPED_TRACE(stCase.pcName);
        fake::Reset();
        const fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
        label::Provision(stDevice, vecImage);
        const u32 uiLive = fake::LiveAllocations();
        FRU_SET_PARA_S stBlock = Request(stDevice, stCase.pcName, stCase.pcValue);
        FRU_SET_PARA_S stExpected = stBlock;
        EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
        const LINES vecMessages = fake::Messages();
        EXPECT_EQ(fake::LiveAllocations(), uiLive);

        FIELDS mapExpected = label::Decode(vecImage);
        ASSERT_EQ(mapExpected.count(stCase.pcField), 1U);
        const std::string strStored = stCase.pcStored == nullptr ? stCase.pcValue : stCase.pcStored;
        mapExpected[stCase.pcField] = strStored;
        EXPECT_EQ(label::Decode(label::OnChip(stDevice)), mapExpected);
        EXPECT_TRUE(label::CacheMatchesChip(stDevice));

        const std::string strShown = stCase.ucLabelID == 5U ? strStored : stCase.pcValue;
        stExpected.uiLabelID = stCase.ucLabelID;
        stExpected.uiLabelValueLen = static_cast<u32>(strlen(stCase.pcValue));
        (void)strcpy(stExpected.acLabelValue, strShown.c_str());
        (void)strcpy(stExpected.acOperateLog, ("Set Riser2 FRU successfully, Riser2 " +
                                               std::string(stCase.pcName) + ": " + strShown + ".")
                                                  .c_str());
        (void)strcpy(stExpected.acFRUName, "Riser2");
        stExpected.ucOperateLogType = 12U;
        stExpected.ucFieldFlag = 7U;
        EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);

        ASSERT_EQ(EventCalls(), LINES{"MRPC 630/0 len=16 timeout=0 -> 0"});
        EXPECT_EQ(fake::RpcRequests().back().vecRequest, Event(stDevice, stCase.ucLabelID));
        EXPECT_FALSE(fake::RpcRequests().back().bWantsAnswer);
        LINES vecExpected = {Announced(stDevice, stCase.pcName, stCase.pcValue, stCase.ucLabelID)};
        if (stCase.ucLabelID == 10U) {
            vecExpected.push_back(Line(6U, "After Correct, bRetNotFill:0, bRetNotFillExt:0, bRetFill:0, "
                                           "bRetFillExt:1"));
        }
        const LINES vecCounts = FieldCounts(vecMessages, 5U, 2U, 4U);
        vecExpected.insert(vecExpected.end(), vecCounts.begin(), vecCounts.end());
        vecExpected.push_back(Line(6U, g_acSuccess));
        EXPECT_EQ(vecMessages, vecExpected);
        EXPECT_TRUE(fake::Calls("OPERATELOG").empty()); // the caller makes the entry
        EXPECT_TRUE(fake::Calls("fopen").empty());
    }
}

TEST(LabelWrite, ReadsTheWholeImageBeforeItWritesIt)
{
    fake::Reset();
    const DEVICE_S stDevice = Riser();
    label::Provision(stDevice, label::Encode({}, stDevice.usSize));
    FRU_SET_PARA_S stBlock = Request(stDevice, "Board Serial Number", "BSN-2");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    // From the cache, in 8 bytes of header and chunks of 16; the image of 1024 bytes encodes into fewer.
    const LINES vecWrites = fake::Calls("EEPROM write");
    ASSERT_GE(vecWrites.size(), 2U);
    EXPECT_EQ(vecWrites[0], "EEPROM write type=9 bus=3 addr=0xa0 switch=0 off=0x20 len=127 -> 127");
    EXPECT_EQ(vecWrites[1], "EEPROM write type=9 bus=3 addr=0xa0 switch=0 off=0x9f len=127 -> 127");
    EXPECT_TRUE(fake::Calls("EEPROM read").empty());
    EXPECT_EQ(fake::Calls("DB_Put").size(), vecWrites.size() + 1U);
    EXPECT_EQ(fake::Calls("MRPC 636/0").size(), vecWrites.size());
}

TEST(LabelWrite, AnUntrustedCacheIsNotRead)
{
    fake::Reset();
    const DEVICE_S stDevice = Riser();
    const fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
    label::Provision(stDevice, vecImage);
    fake::Db()[0x10810209U].assign(stDevice.usSize, 0U);
    fake::Db()[0x10810409U] = {1U};
    FRU_SET_PARA_S stBlock = Request(stDevice, "Board Serial Number", "BSN-2");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    FIELDS mapExpected = label::Decode(vecImage);
    mapExpected["board.serial"] = "BSN-2";
    EXPECT_EQ(label::Decode(label::OnChip(stDevice)), mapExpected);
    EXPECT_TRUE(label::CacheMatchesChip(stDevice));
}

// ---- refusals before anything is read

TEST(LabelWrite, ANullBlockIsReported)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(nullptr), 0x29002408U);
    EXPECT_EQ(fake::Messages(), LINES{Null("LIB_FRU_WriteElectronicLabel", "pstFRUSetPara")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(LabelWrite, AnUnknownDeviceLeavesTheOutputsUntouched)
{
    fake::Reset();
    label::Provision(Riser(), fake::BYTES(1024U));
    FRU_SET_PARA_S stBlock = Request({}, "Board Serial Number", "SN-1");
    stBlock.ucComponentType = 0x30U;
    stBlock.ucInstance = 10U;
    FRU_SET_PARA_S stExpected = stBlock;
    stExpected.uiLabelValueLen = 4U; // counted before the device is looked for
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0x29000004U);
    EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);
    EXPECT_EQ(fake::Messages(),
              (LINES{"5/4 lib_fru.c: Fail to find Component[0x30] Instance[10] fru device id!",
                     "0/4 lib_fru.c: Fail to find ComponentType:0x30 Instance:0xa Device ID!",
                     Line(2U, "ComponentType[0x30] Instance[10] FRU NAME does not exist!")}));
    EXPECT_TRUE(EventCalls().empty());
}

// What a refused write leaves: the failure sentence, the device's facts, and an untouched device.
void ExpectRefused(const DEVICE_S &stDevice, FRU_SET_PARA_S stBlock, const LINES &vecMessages, u32 uiLabelID)
{
    fake::Reset();
    const fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
    label::Provision(stDevice, vecImage);
    FRU_SET_PARA_S stExpected = stBlock;
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0x29000005U);
    stExpected.uiLabelID = uiLabelID;
    stExpected.uiLabelValueLen =
        static_cast<u32>(strnlen(stExpected.acLabelValue, sizeof(stExpected.acLabelValue)));
    (void)strcpy(stExpected.acOperateLog, ("Failed to set " + stDevice.strFRUName + " FRU.").c_str());
    (void)strcpy(stExpected.acFRUName, stDevice.strFRUName.c_str());
    stExpected.ucOperateLogType = 12U;
    stExpected.ucFieldFlag = stDevice.ucFieldFlag;
    EXPECT_EQ(memcmp(&stBlock, &stExpected, sizeof(stBlock)), 0);
    EXPECT_EQ(fake::Messages(), vecMessages);
    ExpectUntouched(stDevice, vecImage);
}

constexpr u32 g_uiMarkedID = 0x5A5A5A5AU; // what Request() leaves in the ID

TEST(LabelWrite, AnUnknownLabelIsRefused)
{
    const DEVICE_S stDevice = Riser();
    ExpectRefused(stDevice, Request(stDevice, "No Such Label", "value"),
                  {Line(2U, "Find Label ID by name[No Such Label] failed!")}, g_uiMarkedID);
    ExpectRefused(stDevice, Request(stDevice, "", "value"), {Line(2U, "Find Label ID by name[] failed!")},
                  g_uiMarkedID);
}

TEST(LabelWrite, ANameWithoutATerminatorIsAnUnknownLabel)
{
    const DEVICE_S stDevice = Riser();
    const std::string strName(64U, 'n');
    ExpectRefused(stDevice, Request(stDevice, strName, std::string(80U, 'v')),
                  {Line(2U, "Find Label ID by name[" + strName + "] failed!")}, g_uiMarkedID);
}

TEST(LabelWrite, ALabelThatTheDeviceDoesNotAllowIsRefused)
{
    DEVICE_S stDevice = Riser();
    stDevice.ucFieldFlag = 2U;
    ExpectRefused(stDevice, Request(stDevice, "Product Version", "v2"),
                  {Announced(stDevice, "Product Version", "v2", 22U),
                   Line(2U, "Label name[Product Version] is invalid!"),
                   Line(2U, "Check ElectronicLabel failed! Ret:0x81000001.")},
                  22U);
    stDevice.ucFieldFlag = 0U;
    ExpectRefused(stDevice, Request(stDevice, "Product Version", "v2"),
                  {Announced(stDevice, "Product Version", "v2", 22U),
                   Line(2U, "FieldFlag 0 is not available!\n"),
                   Line(4U, "Confirm Electronic label Field failed!"),
                   Line(2U, "Label name[Product Version] is invalid!"),
                   Line(2U, "Check ElectronicLabel failed! Ret:0x81000001.")},
                  22U);
}

TEST(LabelWrite, AnInvalidValueIsRefused)
{
    const DEVICE_S stDevice = Riser();
    const std::string strFullBlock(79U, 'v');
    for (const std::string &strValue : {std::string("x"), strFullBlock, std::string(80U, 'v')}) {
        const std::string strLength = std::to_string(strValue.size());
        ExpectRefused(stDevice, Request(stDevice, "Product Version", strValue),
                      {Announced(stDevice, "Product Version", strValue, 22U),
                       Line(2U, "Label Value Size:" + strLength + " invalid!"),
                       Line(2U, "Label value[" + strValue + "] length[" + strLength + "] is invalid!"),
                       Line(2U, "Check ElectronicLabel failed! Ret:0x81000001.")},
                      22U);
    }
}

TEST(LabelWrite, TextsAreNeverTakenForFormats)
{
    const DEVICE_S stDevice = Riser();
    ExpectRefused(stDevice, Request(stDevice, "Product Version", "%s%n\x01"),
                  {Announced(stDevice, "Product Version", "%s%n\x01", 22U), Line(2U, "pcValue is not Norm."),
                   Line(2U, "Label value[%s%n\x01] length[5] is invalid!"),
                   Line(2U, "Check ElectronicLabel failed! Ret:0x81000001.")},
                  22U);
}

// ---- the hardware label in this flow

TEST(LabelWrite, TheHardwareLabelWritesTheRecordBackUnchanged)
{
    fake::Reset();
    DEVICE_S stDevice = Riser();
    stDevice.ucFieldFlag = 2U;
    const fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
    label::Provision(stDevice, vecImage);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Hardware FRU Label", "ABCDEFG");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    EXPECT_EQ(label::OnChip(stDevice), vecImage);
    EXPECT_EQ(label::InCache(stDevice), vecImage);
    EXPECT_FALSE(fake::Calls("EEPROM write").empty());
    EXPECT_EQ(fake::RpcRequests().back().vecRequest, Event(stDevice, 29U));
    EXPECT_STREQ(stBlock.acOperateLog, "Set Riser2 FRU successfully, Riser2 Hardware FRU Label: ABCDEFG.");
}

// ---- serial-number files and the event

TEST(LabelWrite, TheBaseboardsSerialNumberIsMirrored)
{
    fake::Reset();
    const DEVICE_S stDevice;
    label::Provision(stDevice, label::Encode({}, stDevice.usSize));
    fake::MakeDirectory("/var/network");
    FRU_SET_PARA_S stBlock = Request(stDevice, "Product Serial Number", "2102310ABCDE");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    EXPECT_EQ(label::Decode(label::OnChip(stDevice))["product.serial"], "2102310ABCDE");
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("2102310ABCDE"));
    EXPECT_EQ(fake::ReadFile(g_acCopy), Bytes("2102310ABCDE"));
    // The device comes first, the event last.
    const LINES vecCalls = fake::Calls();
    EXPECT_EQ(vecCalls.back(), "MRPC 630/0 len=16 timeout=0 -> 0");
    EXPECT_EQ(vecCalls[vecCalls.size() - 2U].rfind("BMC_CopyFileWithAllMode", 0), 0U);
}

TEST(LabelWrite, OtherLabelsAndOtherDevicesHaveNoFile)
{
    for (const bool bBaseboard : {false, true}) {
        fake::Reset();
        const DEVICE_S stDevice = bBaseboard ? DEVICE_S() : Riser();
        label::Provision(stDevice, label::Encode({}, stDevice.usSize));
        FRU_SET_PARA_S stBlock =
            Request(stDevice, bBaseboard ? "Board Serial Number" : "Product Serial Number", "2102310ABCDE");
        EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
        EXPECT_EQ(fake::ReadFile(g_acPrimary), std::nullopt);
        EXPECT_TRUE(fake::Calls("BMC_CheckDirVaildStatus").empty());
    }
}

TEST(LabelWrite, AFailedMirrorDoesNotFailTheWrite)
{
    fake::Reset();
    const DEVICE_S stDevice;
    label::Provision(stDevice, label::Encode({}, stDevice.usSize));
    FRU_SET_PARA_S stBlock = Request(stDevice, "Product Serial Number", "SERIAL");
    fake::Arm({fake::KIND_E::FILE_CALL, 1, true});
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    fake::Disarm();
    EXPECT_EQ(
        LabelMessages(),
        (LINES{
            Announced(stDevice, "Product Serial Number", "SERIAL", 20U), Line(4U, "file make error."),
            Line(4U, std::string("Write PSN[SERIAL-6] to file[") + g_acPrimary + "] failed! Ret:0x81000001."),
            Line(4U, "Write PSN To File failed! Ret:0x81000001."),
            Line(4U, "Update Product SN failed! Ret:0x81000001."), Line(6U, g_acSuccess)}));
    EXPECT_EQ(EventCalls().size(), 1U);
    EXPECT_EQ(label::Decode(label::OnChip(stDevice))["product.serial"], "SERIAL");
}

TEST(LabelWrite, AFailedEventDoesNotFailTheWrite)
{
    fake::Reset();
    const DEVICE_S stDevice = Riser();
    label::Provision(stDevice, label::Encode({}, stDevice.usSize));
    fake::SetRpcAnswer(630U, 0U, 0x81000001U);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Product Version", "v2");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    EXPECT_EQ(EventCalls(), LINES{"MRPC 630/0 len=16 timeout=0 -> 0x81000001"});
    EXPECT_EQ(LabelMessages().back(), Line(6U, g_acSuccess));
}

} // namespace
