// SPDX-License-Identifier: Apache-2.0
// The label write when something fails: what the image, the block and the log are left with.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "label_world.h"
#include "lib_fru_labels.h"
#include "support/mixture.h"

namespace {

using label::DEVICE_S;
using label::FIELDS;
using label::IMAGE_S;
using label::LabelMessages;
using label::Line;
using label::LINES;
using label::Null;
using label::Request;

const char g_acFailed[] = "Failed to set Mainboard FRU.";

IMAGE_S BoardOnly()
{
    IMAGE_S stImage;
    stImage.bChassis = false;
    stImage.bProduct = false;
    stImage.ucBoardFields = 0U;
    return stImage;
}

// Messages of this module without the line that announces the request.
LINES Failures()
{
    LINES vecLines = LabelMessages();
    EXPECT_FALSE(vecLines.empty());
    if (!vecLines.empty()) {
        vecLines.erase(vecLines.begin());
    }
    return vecLines;
}

TEST(LabelWriteFailure, AMissingProductAreaIsWrittenWithTheLabel)
{
    fake::Reset();
    const DEVICE_S stDevice;
    const fake::BYTES vecImage = label::Encode(BoardOnly(), stDevice.usSize);
    label::Provision(stDevice, vecImage);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Product Asset Tag", "tag");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    FIELDS mapExpected = label::Decode(vecImage);
    mapExpected["has.product"] = "yes";
    for (const char *pcText : {"manufacturer", "name", "part", "version", "serial", "file"}) {
        mapExpected[std::string("product.") + pcText] = "";
    }
    mapExpected["product.tag"] = "tag";
    EXPECT_EQ(label::Decode(label::OnChip(stDevice)), mapExpected);
    EXPECT_TRUE(label::CacheMatchesChip(stDevice));
}

TEST(LabelWriteFailure, ALabelOfAnAbsentAreaIsNotWrittenIntoTheImage)
{
    // The record takes the text, the encoder leaves an absent area out: the image stays as it was but for
    // the product area.
    fake::Reset();
    const DEVICE_S stDevice;
    const fake::BYTES vecImage = label::Encode(BoardOnly(), stDevice.usSize);
    label::Provision(stDevice, vecImage);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Chassis Serial Number", "CSN");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    FIELDS mapWritten = label::Decode(label::OnChip(stDevice));
    EXPECT_EQ(mapWritten["has.chassis"], "no");
    EXPECT_EQ(mapWritten["board.serial"], "old board.serial");
}

TEST(LabelWriteFailure, AMissingCustomFieldFailsTheReplacement)
{
    struct CASE_S
    {
        IMAGE_S stImage;
        const char *pcName;
        LINES vecReason;
        const char *pcCode;
    };
    IMAGE_S stTwoFields;
    stTwoFields.ucChassisFields = 1U;
    stTwoFields.ucProductFields = 3U;
    IMAGE_S stNoFields;
    stNoFields.ucChassisFields = 0U;
    for (const CASE_S &stCase : {
             CASE_S{stTwoFields,
                    "Chassis MAC Address",
                    {Line(4U, "Total_Chassis_CustomField count is 0x1\n")},
                    "0x81000001"},
             CASE_S{stTwoFields,
                    "Product Node Power",
                    {Line(4U, "Total_Product_CustomField count is 0x3\n")},
                    "0x81000001"},
             CASE_S{stNoFields,
                    "Chassis MAC Address",
                    {Null("setChassisMACAddress", "pstFRUData->stChassisInfo.ppucCustomFields")},
                    "0x81000002"},
         }) {
        fake::Reset();
        const DEVICE_S stDevice;
        const fake::BYTES vecImage = label::Encode(stCase.stImage, stDevice.usSize);
        label::Provision(stDevice, vecImage);
        const u32 uiLive = fake::LiveAllocations();
        FRU_SET_PARA_S stBlock = Request(stDevice, stCase.pcName, "0123456789AB");
        EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0x29000005U);
        EXPECT_STREQ(stBlock.acOperateLog, g_acFailed);
        LINES vecExpected = stCase.vecReason;
        vecExpected.push_back(Line(2U, std::string("Replace fru label failed! Ret:") + stCase.pcCode + "."));
        vecExpected.push_back(Line(2U, "Replace ElectronicLabel failed! Ret:0x81000001."));
        EXPECT_EQ(Failures(), vecExpected);
        EXPECT_EQ(label::OnChip(stDevice), vecImage);
        EXPECT_EQ(label::InCache(stDevice), vecImage);
        EXPECT_TRUE(fake::Calls("MRPC").empty());
        EXPECT_EQ(fake::LiveAllocations(), uiLive);
    }
}

TEST(LabelWriteFailure, ABaseboardHasItsFixedSlots)
{
    fake::Reset();
    DEVICE_S stDevice;
    stDevice.strImagePath = "/opt/fru/BaseBoard.bin";
    IMAGE_S stImage;
    stImage.ucChassisFields = 1U;
    stImage.ucProductFields = 1U;
    label::Provision(stDevice, label::Encode(stImage, stDevice.usSize));
    FRU_SET_PARA_S stBlock = Request(stDevice, "Chassis Location Node ID", "node 7");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    FIELDS mapWritten = label::Decode(label::OnChip(stDevice));
    EXPECT_EQ(mapWritten["chassis.custom0"], "chassis.custom0");
    EXPECT_EQ(mapWritten["chassis.custom3"], "");
    EXPECT_EQ(mapWritten["chassis.custom4"], "node 7");
    EXPECT_EQ(mapWritten["product.custom3"], "");
}

TEST(LabelWriteFailure, AnImageWithoutRoomForTheValueStaysAsItIs)
{
    fake::Reset();
    DEVICE_S stDevice;
    const fake::BYTES vecRoomy = label::Encode({}, 1024U);
    // As small as the image's areas allow: the last area must end before the image does.
    size_t uiEnd = vecRoomy.size();
    while (vecRoomy[uiEnd - 1U] == 0U) {
        --uiEnd;
    }
    stDevice.usSize = static_cast<u16>((uiEnd + 15U) / 8U * 8U);
    const fake::BYTES vecImage(vecRoomy.begin(), vecRoomy.begin() + stDevice.usSize);
    label::Provision(stDevice, vecImage);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Product Version", std::string(63U, 'v'));
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0x29000005U);
    EXPECT_STREQ(stBlock.acOperateLog, g_acFailed);
    EXPECT_EQ(Failures(), (LINES{Line(2U, "Write FRU array data failed! Ret:0x29000007."),
                                 Line(2U, "Set ElectronicLabel failed! Ret:0x81000001.")}));
    EXPECT_EQ(label::OnChip(stDevice), vecImage);
    EXPECT_EQ(label::InCache(stDevice), vecImage);
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
    EXPECT_TRUE(fake::Calls("MRPC").empty());
}

TEST(LabelWriteFailure, ADamagedImageIsRestoredBeforeItIsChanged)
{
    fake::Reset();
    const DEVICE_S stDevice;
    const fake::BYTES vecGood = label::Encode({}, stDevice.usSize);
    fake::BYTES vecDamaged = vecGood;
    vecDamaged[0] = 0xFFU;
    label::Provision(stDevice, vecDamaged);
    fake::WriteFile(stDevice.strImagePath, vecGood);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Board Serial Number", "BSN-2");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0U);
    FIELDS mapExpected = label::Decode(vecGood);
    mapExpected["board.serial"] = "BSN-2";
    EXPECT_EQ(label::Decode(label::OnChip(stDevice)), mapExpected);
    EXPECT_TRUE(label::CacheMatchesChip(stDevice));
}

TEST(LabelWriteFailure, ADamagedImageWithoutAStoredOneIsNotWritten)
{
    fake::Reset();
    const DEVICE_S stDevice;
    fake::BYTES vecDamaged = label::Encode({}, stDevice.usSize);
    vecDamaged[0] = 0xFFU;
    label::Provision(stDevice, vecDamaged);
    FRU_SET_PARA_S stBlock = Request(stDevice, "Board Serial Number", "BSN-2");
    EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0x29000005U);
    EXPECT_STREQ(stBlock.acOperateLog, g_acFailed);
    EXPECT_EQ(Failures(), (LINES{Line(2U, "Get FRU data failed! Ret:0x29000001."),
                                 Line(2U, "Get ElectronicLabel failed! Ret:0x81000001.")}));
    EXPECT_EQ(label::OnChip(stDevice), vecDamaged);
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
}

TEST(LabelWriteFailure, AnImageWithADamagedMultiRecordAreaIsNotWritten)
{
    // Such an image decodes without its MultiRecords; writing it back would lose them.
    for (const size_t uiDamaged : {size_t{2}, size_t{6}, size_t{14}}) { // a header, its data, the next header
        fake::Reset();
        const DEVICE_S stDevice;
        fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
        vecImage[vecImage[5] * size_t{8} + uiDamaged] ^= 0x10U;
        label::Provision(stDevice, vecImage);
        FRU_SET_PARA_S stBlock = Request(stDevice, "Board Serial Number", "BSN-2");
        EXPECT_EQ(LIB_FRU_WriteElectronicLabel(&stBlock), 0x29000005U);
        EXPECT_EQ(Failures(), (LINES{Line(2U, "Write FRU array data failed! Ret:0x29000007."),
                                     Line(2U, "Set ElectronicLabel failed! Ret:0x81000001.")}));
        EXPECT_EQ(label::OnChip(stDevice), vecImage);
        EXPECT_EQ(label::InCache(stDevice), vecImage);
    }
}

TEST(LabelWriteFailure, ImagesOfOtherMakersKeepAllTheirFields)
{
    u32 uiWritten = 0;
    std::error_code ec;
    for (const auto &entry : std::filesystem::directory_iterator(BMCFRU_CORPUS_DIR, ec)) {
        if (entry.path().extension() != ".bin" || entry.file_size() > 4096U) {
            continue;
        }
        SCOPED_TRACE(entry.path().filename().string());
        fake::Reset();
        std::ifstream stream(entry.path(), std::ios::binary);
        fake::BYTES vecImage{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        vecImage.resize(vecImage.size() + 512U, 0xFFU); // such images fill a part of their chip
        DEVICE_S stDevice;
        stDevice.usSize = static_cast<u16>(vecImage.size());
        FIELDS mapExpected = label::Decode(vecImage);
        label::Provision(stDevice, vecImage);
        FRU_SET_PARA_S stBlock = Request(stDevice, "Product Asset Tag", "a new tag");
        const u32 uiResult = LIB_FRU_WriteElectronicLabel(&stBlock);
        if (uiResult != 0U) { // not decodable, or not encodable without a loss
            EXPECT_EQ(label::OnChip(stDevice), vecImage);
            EXPECT_EQ(label::InCache(stDevice), vecImage);
            continue;
        }
        ++uiWritten;
        if (mapExpected["has.product"] == "no") {
            mapExpected["has.product"] = "yes";
            for (const char *pcText : {"manufacturer", "name", "part", "version", "serial", "file"}) {
                mapExpected[std::string("product.") + pcText] = "";
            }
        }
        mapExpected["product.tag"] = "a new tag";
        EXPECT_EQ(label::Decode(label::OnChip(stDevice)), mapExpected);
        EXPECT_TRUE(label::CacheMatchesChip(stDevice));
    }
    if (uiWritten == 0U) {
        GTEST_SKIP() << "no images in BMCFRU_CORPUS_DIR, which is '" BMCFRU_CORPUS_DIR "'";
    }
}

// ---- whatever fails

bool AnyProblemTold()
{
    for (const fake::MESSAGE_S &stMessage : fake::RawMessages()) {
        if (stMessage.uiSeverity <= 4U || stMessage.uiModule != 24U) {
            return true;
        }
    }
    return false;
}

// Faults that can stop the writing of an image halfway; after all others it is written whole or not at all.
bool StopsHalfway(const fake::FAULT_S *pstFault)
{
    return pstFault != nullptr &&
           (pstFault->eKind == fake::KIND_E::EEPROM || pstFault->eKind == fake::KIND_E::DB);
}

// One label write under every fault. A refused write leaves device and cache as they were (or as recovery
// restored them); an accepted one leaves the new image in both, or a message that says which of them has it
// not. Never is there a byte that stands in neither the old nor the new image.
void SweepLabelWrite(const DEVICE_S &stDevice, const fake::BYTES &vecOnDevice, const fake::BYTES &vecGood,
                     const std::string &strName, const std::string &strValue, const FIELDS &mapExpected)
{
    FRU_SET_PARA_S stBlock;
    u32 uiResult = 0;
    fake::BYTES vecNewChip; // as the write without a fault, the first of the sweep, leaves them
    fake::BYTES vecNewCache;
    const auto fnSetup = [&] {
        label::Provision(stDevice, vecOnDevice);
        fake::MakeDirectory("/mnt/sdmmc0p4/board");
        fake::MakeDirectory("/var/network");
        fake::WriteFile(stDevice.strImagePath, vecGood);
        stBlock = Request(stDevice, strName, strValue);
    };
    const auto fnCheck = [&](const fake::FAULT_S *pstFault) {
        const fake::BYTES vecChip = label::OnChip(stDevice);
        const fake::BYTES vecCache = label::InCache(stDevice);
        EXPECT_TRUE(uiResult == 0U || uiResult == 0x29000004U || uiResult == 0x29000005U);
        const bool bWritten = label::Decode(vecChip) == mapExpected;
        if (pstFault == nullptr) {
            EXPECT_EQ(uiResult, 0U);
            EXPECT_EQ(AnyProblemTold(), vecOnDevice != vecGood); // that it was damaged
            EXPECT_TRUE(bWritten && label::CacheMatchesChip(stDevice));
            vecNewChip = vecChip;
            vecNewCache = vecCache;
        }
        if (uiResult != 0U) {
            EXPECT_TRUE(AnyProblemTold());
            const bool bRestoring =
                StopsHalfway(pstFault) && image::IsMixtureOf(vecChip, {vecOnDevice, vecGood});
            EXPECT_TRUE(vecChip == vecOnDevice || vecChip == vecGood || bRestoring);
            EXPECT_TRUE(vecCache == vecOnDevice || vecCache == vecGood);
            EXPECT_TRUE(fake::Calls("MRPC 630/").empty());
            EXPECT_EQ(fake::ReadFile("/mnt/sdmmc0p4/board/ProductSerialNumber"), std::nullopt);
            EXPECT_EQ(strncmp(stBlock.acOperateLog, uiResult == 0x29000005U ? g_acFailed : "ZZZZ", 4U), 0);
        } else {
            EXPECT_TRUE(image::IsMixtureOf(vecChip, {vecOnDevice, vecGood, vecNewChip}));
            EXPECT_TRUE(image::IsMixtureOf(vecCache, {vecOnDevice, vecGood, vecNewCache}));
            EXPECT_TRUE(bWritten || StopsHalfway(pstFault));
            EXPECT_TRUE(AnyProblemTold() || (bWritten && label::CacheMatchesChip(stDevice)));
            EXPECT_EQ(strncmp(stBlock.acOperateLog, "Set Mainboard FRU successfully", 30U), 0);
            EXPECT_EQ(fake::Calls("MRPC 630/").size(), 1U);
        }
    };
    fake::Sweep(
        fnSetup, [&] { uiResult = LIB_FRU_WriteElectronicLabel(&stBlock); }, fnCheck);
}

// Small images keep the sweeps short: every chunk is many database calls.
IMAGE_S Small()
{
    IMAGE_S stImage;
    stImage.bChassis = false;
    stImage.ucBoardFields = 1U;
    stImage.ucProductFields = 1U;
    return stImage;
}

DEVICE_S SmallBaseboard()
{
    DEVICE_S stDevice;
    stDevice.usSize = 384U;
    return stDevice;
}

TEST(LabelWriteSweep, ASerialNumberOfTheBaseboard)
{
    const DEVICE_S stDevice = SmallBaseboard();
    const fake::BYTES vecImage = label::Encode(Small(), stDevice.usSize);
    FIELDS mapExpected = label::Decode(vecImage);
    mapExpected["product.serial"] = "2102310ABCDE";
    SweepLabelWrite(stDevice, vecImage, vecImage, "Product Serial Number", "2102310ABCDE", mapExpected);
}

TEST(LabelWriteSweep, ALabelOnAnImageWithoutAProductArea)
{
    const DEVICE_S stDevice = SmallBaseboard();
    const fake::BYTES vecImage = label::Encode(BoardOnly(), stDevice.usSize);
    FIELDS mapExpected = label::Decode(vecImage);
    mapExpected["has.product"] = "yes";
    for (const char *pcText : {"manufacturer", "name", "part", "version", "serial", "file"}) {
        mapExpected[std::string("product.") + pcText] = "";
    }
    mapExpected["product.tag"] = "tag";
    SweepLabelWrite(stDevice, vecImage, vecImage, "Product Asset Tag", "tag", mapExpected);
}

TEST(LabelWriteSweep, ALabelOnADamagedImage)
{
    const DEVICE_S stDevice = SmallBaseboard();
    const fake::BYTES vecGood = label::Encode(Small(), stDevice.usSize);
    fake::BYTES vecDamaged = vecGood;
    vecDamaged[7] ^= 0x01U;
    FIELDS mapExpected = label::Decode(vecGood);
    mapExpected["board.language"] = "9";
    SweepLabelWrite(stDevice, vecDamaged, vecGood, "Language Code", "9", mapExpected);
}

} // namespace
