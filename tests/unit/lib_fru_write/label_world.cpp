// SPDX-License-Identifier: Apache-2.0
#include "label_world.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "lib_fru_codec.h"
#include "support/image_builder.h"
#include "support/record_builder.h"

namespace label {
namespace {

constexpr u32 g_uiDeviceInfoKey = 0x10810000U;
constexpr u32 g_uiImageKey = 0x10810200U;
constexpr u32 g_uiStatusKey = 0x10810400U;
constexpr u32 g_uiTableKey = 0x108105FFU;

// The texts of the info areas with the names they have in FIELDS.
struct TEXT_S
{
    const char *pcName;
    size_t uiMember;
};
#define FRU_TEXT_ROW(pcName, Member)                                                                         \
    {                                                                                                        \
        pcName, offsetof(FRU_DATA_S, Member)                                                                 \
    }
const TEXT_S g_astTexts[] = {
    FRU_TEXT_ROW("internal", stInternalUseArea.pucData),
    FRU_TEXT_ROW("chassis.type", stChassisInfo.pucChassisType),
    FRU_TEXT_ROW("chassis.part", stChassisInfo.pucChassisPartNum),
    FRU_TEXT_ROW("chassis.serial", stChassisInfo.pucChassisSerialNum),
    FRU_TEXT_ROW("board.manufacturer", stBoardInfo.pucBoardMfr),
    FRU_TEXT_ROW("board.name", stBoardInfo.pucBoardProductName),
    FRU_TEXT_ROW("board.serial", stBoardInfo.pucBoardSerialNum),
    FRU_TEXT_ROW("board.part", stBoardInfo.pucBoardPartNum),
    FRU_TEXT_ROW("board.file", stBoardInfo.pucFRUFileID),
    FRU_TEXT_ROW("product.manufacturer", stProductInfo.pucMfrName),
    FRU_TEXT_ROW("product.name", stProductInfo.pucProductName),
    FRU_TEXT_ROW("product.part", stProductInfo.pucProductPartNum),
    FRU_TEXT_ROW("product.version", stProductInfo.pucProductVersion),
    FRU_TEXT_ROW("product.serial", stProductInfo.pucProductSerialNum),
    FRU_TEXT_ROW("product.tag", stProductInfo.pucAssetTag),
    FRU_TEXT_ROW("product.file", stProductInfo.pucFRUFileID),
};

struct CUSTOM_S
{
    const char *pcName;
    size_t uiFields;
    size_t uiCount;
};
const CUSTOM_S g_astCustoms[] = {
    {"chassis.custom", offsetof(FRU_DATA_S, stChassisInfo.ppucCustomFields),
     offsetof(FRU_DATA_S, stChassisInfo.ucCustomFieldCount)},
    {"board.custom", offsetof(FRU_DATA_S, stBoardInfo.ppucCustomFields),
     offsetof(FRU_DATA_S, stBoardInfo.ucCustomFieldCount)},
    {"product.custom", offsetof(FRU_DATA_S, stProductInfo.ppucCustomFields),
     offsetof(FRU_DATA_S, stProductInfo.ucCustomFieldCount)},
};

u8 *Record(FRU_DATA_S &stData)
{
    return reinterpret_cast<u8 *>(&stData);
}

void AddCustomFields(FRU_DATA_S &stData, const CUSTOM_S &stArea, u8 ucCount)
{
    if (ucCount == 0U) {
        return;
    }
    u8 **ppucFields = static_cast<u8 **>(calloc(ucCount, sizeof(u8 *)));
    for (u8 i = 0; i < ucCount; ++i) {
        ppucFields[i] = model::Heap(stArea.pcName + std::to_string(i));
    }
    (void)memcpy(Record(stData) + stArea.uiFields, &ppucFields, sizeof(ppucFields));
    Record(stData)[stArea.uiCount] = ucCount;
}

void AddMultiRecord(FRU_DATA_S &stData, u32 uiIndex, const fake::BYTES &vecData, bool bLast)
{
    u8 *pucData = static_cast<u8 *>(malloc(vecData.size()));
    (void)memcpy(pucData, vecData.data(), vecData.size());
    FRU_MULTIRECORD_S &stRecord = stData.astMultiRecord[uiIndex];
    (void)memcpy(&stRecord, image::Record(0xC0U, vecData, bLast).data(), FRU_MULTIRECORD_HEADER_LEN);
    stRecord.pucRecordData = pucData;
}

std::string Hex(const u8 *pucBytes, size_t uiCount)
{
    std::string strHex;
    char acByte[3];
    for (size_t i = 0; i < uiCount; ++i) {
        (void)snprintf(acByte, sizeof(acByte), "%02x", pucBytes[i]);
        strHex += acByte;
    }
    return strHex;
}

} // namespace

fake::BYTES Encode(const IMAGE_S &stImage, u16 usSize)
{
    FRU_DATA_S stData = {};
    stData.stCommonHeader = {
        1U, 1U, stImage.bChassis, stImage.bBoard, stImage.bProduct, stImage.bMultiRecords, 0U, 0U};
    stData.stInternalUseArea.ucFormatVersion = 1U;
    stData.stChassisInfo.ucFormatVersion = 1U;
    stData.stBoardInfo.ucFormatVersion = 1U;
    stData.stProductInfo.ucFormatVersion = 1U;
    stData.stBoardInfo.ucLanguage = 25U;
    stData.stProductInfo.ucLanguage = 26U;
    const u8 aucDate[] = {0x11U, 0x22U, 0x33U};
    (void)memcpy(stData.stBoardInfo.aucMfgDateTime, aucDate, sizeof(aucDate));
    for (const TEXT_S &stText : g_astTexts) {
        const std::string strName = stText.pcName;
        u8 *pucText = model::Heap(strName == "chassis.type" ? "Rack Mount Chassis" : "old " + strName);
        (void)memcpy(Record(stData) + stText.uiMember, &pucText, sizeof(pucText));
    }
    AddCustomFields(stData, g_astCustoms[0], stImage.ucChassisFields);
    AddCustomFields(stData, g_astCustoms[1], stImage.ucBoardFields);
    AddCustomFields(stData, g_astCustoms[2], stImage.ucProductFields);
    if (stImage.bMultiRecords) {
        AddMultiRecord(stData, 0U, {1, 2, 3, 4, 5, 6, 7}, false);
        AddMultiRecord(stData, 1U, {0xFF, 0x00, 0x80}, true);
    }
    fake::BYTES vecImage(usSize);
    EXPECT_GT(FRU_ANALYZER_ConvertToArray(&stData, usSize, vecImage.data()), 0);
    FRU_ANALYZER_SafeFree(&stData);
    return vecImage;
}

FIELDS Decode(const fake::BYTES &vecImage)
{
    FIELDS mapFields;
    FRU_DATA_S stData = {};
    if (FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()), &stData) != 0U) {
        FRU_ANALYZER_SafeFree(&stData);
        return {{"image", "damaged"}};
    }
    const u8 *pucHeader = Record(stData);
    for (const char *pcArea : {"internal", "chassis", "board", "product", "multirecord"}) {
        mapFields[std::string("has.") + pcArea] = *++pucHeader == 0U ? "no" : "yes";
    }
    for (const TEXT_S &stText : g_astTexts) {
        const char *pcText = nullptr;
        (void)memcpy(&pcText, Record(stData) + stText.uiMember, sizeof(pcText));
        if (pcText != nullptr) {
            mapFields[stText.pcName] = pcText;
        }
    }
    for (const CUSTOM_S &stArea : g_astCustoms) {
        char **ppcFields = nullptr;
        (void)memcpy(&ppcFields, Record(stData) + stArea.uiFields, sizeof(ppcFields));
        for (u8 i = 0; ppcFields != nullptr && i < Record(stData)[stArea.uiCount]; ++i) {
            mapFields[stArea.pcName + std::to_string(i)] = ppcFields[i];
        }
    }
    mapFields["board.language"] = std::to_string(stData.stBoardInfo.ucLanguage);
    mapFields["board.date"] = Hex(stData.stBoardInfo.aucMfgDateTime, 3U);
    mapFields["product.language"] = std::to_string(stData.stProductInfo.ucLanguage);
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX && stData.astMultiRecord[i].pucRecordData != nullptr; ++i) {
        const FRU_MULTIRECORD_S &stRecord = stData.astMultiRecord[i];
        mapFields["multirecord" + std::to_string(i)] = Hex(reinterpret_cast<const u8 *>(&stRecord), 5U) +
                                                       Hex(stRecord.pucRecordData, stRecord.ucRecordLength);
    }
    FRU_ANALYZER_SafeFree(&stData);
    return mapFields;
}

void Provision(const DEVICE_S &stDevice, const fake::BYTES &vecImage)
{
    fake::BYTES &vecTable = fake::Db()[g_uiTableKey];
    vecTable.resize(3703U);
    u8 *pucEntry = vecTable.data() + 1U + 37U * vecTable[0]++;
    pucEntry[32] = stDevice.ucDeviceID;
    pucEntry[33] = stDevice.ucComponentType;
    pucEntry[34] = stDevice.ucInstance;

    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = stDevice.ucDeviceID;
    stInfo.usStartOffset = stDevice.usStartOffset;
    stInfo.usSize = stDevice.usSize;
    stInfo.ucEEPROMType = 9U;
    // As the FRU service fills it: a name of 16 characters leaves no room for a terminator.
    (void)memcpy(stInfo.acFRUName, stDevice.strFRUName.data(), stDevice.strFRUName.size());
    (void)strcpy(stInfo.acImageFilePath, stDevice.strImagePath.c_str());
    stInfo.ucBusNumber = stDevice.ucBus;
    stInfo.ucAddress = stDevice.ucAddress;
    stInfo.ucFieldFlag = stDevice.ucFieldFlag;
    const u8 *pucInfo = reinterpret_cast<const u8 *>(&stInfo);
    fake::Db()[g_uiDeviceInfoKey | stDevice.ucDeviceID] = fake::BYTES(pucInfo, pucInfo + sizeof(stInfo));
    fake::Db()[g_uiStatusKey | stDevice.ucDeviceID] = {0U};
    fake::Db()[g_uiImageKey | stDevice.ucDeviceID] = vecImage;

    fake::BYTES &vecChip = fake::Eeprom(stDevice.ucBus, stDevice.ucAddress);
    vecChip.assign(stDevice.usStartOffset + stDevice.usSize + 16U, 0xEEU);
    (void)std::copy(vecImage.begin(), vecImage.end(), vecChip.begin() + stDevice.usStartOffset);
}

fake::BYTES OnChip(const DEVICE_S &stDevice)
{
    const fake::BYTES &vecChip = fake::Eeprom(stDevice.ucBus, stDevice.ucAddress);
    const auto itBegin = vecChip.begin() + stDevice.usStartOffset;
    // What lies around the image is nobody's to change.
    EXPECT_EQ(fake::BYTES(vecChip.begin(), itBegin), fake::BYTES(stDevice.usStartOffset, 0xEEU));
    EXPECT_EQ(fake::BYTES(itBegin + stDevice.usSize, vecChip.end()), fake::BYTES(16U, 0xEEU));
    return {itBegin, itBegin + stDevice.usSize};
}

fake::BYTES InCache(const DEVICE_S &stDevice)
{
    return fake::Db()[g_uiImageKey | stDevice.ucDeviceID];
}

bool CacheMatchesChip(const DEVICE_S &stDevice)
{
    fake::BYTES vecCache = InCache(stDevice);
    fake::BYTES vecChip = OnChip(stDevice);
    while (!vecCache.empty() && vecCache.back() == 0U) {
        vecCache.pop_back();
    }
    vecChip.resize(vecCache.size());
    return vecCache == vecChip;
}

FRU_SET_PARA_S Request(const DEVICE_S &stDevice, const std::string &strName, const std::string &strValue)
{
    FRU_SET_PARA_S stBlock;
    (void)memset(&stBlock, 0x5A, sizeof(stBlock));
    stBlock.ucComponentType = stDevice.ucComponentType;
    stBlock.ucInstance = stDevice.ucInstance;
    EXPECT_LE(strName.size(), sizeof(stBlock.acLabelName));
    EXPECT_LE(strValue.size(), sizeof(stBlock.acLabelValue));
    (void)memcpy(stBlock.acLabelName, strName.c_str(),
                 std::min(strName.size() + 1U, sizeof(stBlock.acLabelName)));
    (void)memcpy(stBlock.acLabelValue, strValue.c_str(),
                 std::min(strValue.size() + 1U, sizeof(stBlock.acLabelValue)));
    return stBlock;
}

std::vector<std::string> LabelMessages()
{
    std::vector<std::string> vecOwn;
    for (const std::string &strLine : fake::Messages()) {
        if (strLine.find(" lib_fru_write.c: ") != std::string::npos) {
            vecOwn.push_back(strLine);
        }
    }
    return vecOwn;
}

} // namespace label
