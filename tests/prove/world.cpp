// SPDX-License-Identifier: Apache-2.0
#include "prove/world.h"

#include <algorithm>
#include <cstring>

#include "fake/fake_state.h"
#include "prove/fault_case.h"
#include "support/image_builder.h"
#include "support/record_builder.h"

namespace prove {
namespace {

constexpr u8 BUS = 3U;
constexpr u8 FIRST_ADDRESS = 0xA0U;
constexpr u16 BASEBOARD_SIZE = 320U;
constexpr u16 CARD_SIZE = 96U;
constexpr u8 OUTSIDE = 0xEEU; // bytes of a chip that are not the FRU's
constexpr size_t OUTSIDE_LEN = 16U;
constexpr const char *SERIAL_FILES[] = {"/mnt/sdmmc0p4/board/ProductSerialNumber",
                                        "/var/network/ProductSerialNumber"};

// Where a device's FRU begins in its EEPROM.
u16 StartOf(u8 ucDevice)
{
    return ucDevice == BLOCK ? 0U : 0x20U;
}

u8 TypeOf(u8 ucDevice)
{
    return ucDevice == BASEBOARD ? u8{FRU_COMPONENT_BASEBOARD}
           : ucDevice == CARD    ? u8{FRU_COMPONENT_BMC_CARD}
                                 : BLOCK_TYPE;
}

std::string ChipKey(u8 ucDevice)
{
    return "bus" + std::to_string(BUS) + "/" + std::to_string(FIRST_ADDRESS + 2U * ucDevice);
}

template <typename RECORD_S> BYTES BytesOf(const RECORD_S &stRecord)
{
    BYTES vecBytes(sizeof(stRecord));
    (void)memcpy(vecBytes.data(), &stRecord, sizeof(stRecord));
    return vecBytes;
}

BYTES HardwareBlock()
{
    FRU_HW_DATA_S stBlock = {};
    (void)memcpy(stBlock.stHwBoardInfo.aucBoardType, "MAIN", sizeof(stBlock.stHwBoardInfo.aucBoardType));
    stBlock.stHwBoardInfo.ucPCBVer = 1U;
    BYTES vecBytes(FRU_HW_DATA_LEN);
    (void)FRU_ANALYZER_ConvertToHwArray(&stBlock, FRU_HW_DATA_LEN, vecBytes.data());
    return vecBytes;
}

void PutDevice(u8 ucDevice, const BYTES &vecImage)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDevice;
    stInfo.usStartOffset = StartOf(ucDevice);
    stInfo.usSize = static_cast<u16>(vecImage.size());
    stInfo.ucEEPROMType = FRU_EEPROM_TYPE_MIN;
    (void)strcpy(stInfo.acFRUName, ucDevice == BASEBOARD ? "Mainboard" : ucDevice == CARD ? "Card" : "Block");
    (void)strcpy(stInfo.acImageFilePath, STORED_IMAGE);
    stInfo.ucBusNumber = BUS;
    stInfo.ucAddress = static_cast<u8>(FIRST_ADDRESS + 2U * ucDevice);
    stInfo.ucFieldFlag = 7U;
    PutInfo(stInfo);
    fake::Db()[KEY_STATUS | ucDevice] = {FRU_CACHE_TRUSTED};
    fake::Db()[KEY_SDR | ucDevice] = BYTES(sizeof(FRU_SDR_S), ucDevice);
    Cached(ucDevice) = vecImage;
    Chip(ucDevice).assign(StartOf(ucDevice) + vecImage.size() + OUTSIDE_LEN, OUTSIDE);
    std::copy(vecImage.begin(), vecImage.end(), Chip(ucDevice).begin() + StartOf(ucDevice));
}

void PutTable()
{
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = 3U;
    for (const u8 ucDevice : {BASEBOARD, CARD, BLOCK}) {
        stTable.astEntry[ucDevice].ucDeviceID = ucDevice;
        stTable.astEntry[ucDevice].ucComponentType = TypeOf(ucDevice);
        stTable.astEntry[ucDevice].usSDRRecordID = static_cast<u16>(SDR_RECORD + ucDevice);
    }
    fake::Db()[KEY_TABLE] = BytesOf(stTable);
}

// The FRU's bytes of an EEPROM, as many as its cached image has; empty: it has no such.
BYTES OnChip(const SNAPSHOT_S &stState, u8 ucDevice, size_t uiSize)
{
    const BYTES &vecChip = stState.mapEeprom.at(ChipKey(ucDevice));
    const auto itFrom = vecChip.begin() + StartOf(ucDevice);
    return StartOf(ucDevice) + uiSize > vecChip.size()
               ? BYTES()
               : BYTES(itFrom, itFrom + static_cast<std::ptrdiff_t>(uiSize));
}

BYTES InCache(const SNAPSHOT_S &stState, u8 ucDevice)
{
    const auto itImage = stState.mapDb.find(KEY_IMAGE | ucDevice);
    return itImage == stState.mapDb.end() ? BYTES() : itImage->second;
}

// Behind the image's last byte that both agree on the cache holds zeros, and the chip what was there before.
bool CacheAgrees(const SNAPSHOT_S &stBefore, const SNAPSHOT_S &stNow, u8 ucDevice)
{
    const BYTES vecCache = InCache(stNow, ucDevice);
    const BYTES vecChip = OnChip(stNow, ucDevice, vecCache.size());
    const BYTES vecWas = OnChip(stBefore, ucDevice, vecCache.size());
    if (vecCache.empty() || vecChip.size() != vecCache.size()) {
        return false;
    }
    if (vecChip == vecWas && vecCache == InCache(stBefore, ucDevice)) {
        return true;
    }
    const auto uiAgreed =
        std::mismatch(vecChip.begin(), vecChip.end(), vecCache.begin()).first - vecChip.begin();
    return std::all_of(vecCache.begin() + uiAgreed, vecCache.end(), [](u8 ucByte) { return ucByte == 0U; }) &&
           std::equal(vecChip.begin() + uiAgreed, vecChip.end(), vecWas.begin() + uiAgreed);
}

bool IsCachedImage(u32 uiKey)
{
    return (uiKey & 0xFFFFFF00U) == KEY_IMAGE;
}

// Whether a FRU's bytes are one image from its header to its last record: encoded again it is the same.
bool IsWholeImage(const BYTES &vecFru)
{
    const u32 uiSize = static_cast<u32>(vecFru.size());
    FRU_DATA_S stData = {};
    BYTES vecAgain(vecFru.size());
    const bool bDecoded = FRU_ANALYZER_InterpretFRUData(vecFru.data(), uiSize, &stData) == FRU_OK;
    const i32 iLength = bDecoded ? FRU_ANALYZER_ConvertToArray(&stData, uiSize, vecAgain.data()) : -1;
    FRU_ANALYZER_SafeFree(&stData);
    return iLength > 0 && std::equal(vecAgain.begin(), vecAgain.begin() + iLength, vecFru.begin());
}

u32 ChipDifference(const SNAPSHOT_S &stBefore, const SNAPSHOT_S &stWhole, const SNAPSHOT_S &stNow,
                   u8 ucDevice)
{
    const std::string strChip = ChipKey(ucDevice);
    const BYTES &vecNow = stNow.mapEeprom.at(strChip);
    if (vecNow == stWhole.mapEeprom.at(strChip)) {
        return 0U;
    }
    if (vecNow == stBefore.mapEeprom.at(strChip)) {
        return PART_CHIP_OLD;
    }
    const size_t uiSize = vecNow.size() - StartOf(ucDevice) - OUTSIDE_LEN;
    const BYTES vecFru = OnChip(stNow, ucDevice, uiSize);
    return ucDevice != BLOCK && IsWholeImage(vecFru) ? PART_CHIP_OTHER : PART_CHIP_MIXED;
}

} // namespace

const BYTES &BaseboardImage()
{
    static const BYTES IMAGE = [] {
        image::AREAS_S stAreas;
        stAreas.vecChassis = image::ChassisArea(
            0x17U, image::Texts({"CH-PN", "CH-SN", "CH-C0", "AABBCCDDEEFF", "04", "CLEI", "N1"}));
        stAreas.vecBoard = image::BoardArea(
            25U, {0x40U, 0x11U, 0xC8U}, image::Texts({"B-MFR", "B-NAME", "B-SN", "B-PN", "B-FILE", "B-C0"}));
        stAreas.vecProduct =
            image::ProductArea(25U, image::Texts({"P-MFR", "P-NAME", "P-PN", "P-VER", "P-SN", "P-TAG",
                                                  "P-FILE", "TYPE", "PSU", "NET", "PWR"}));
        stAreas.vecMultiRecord =
            image::Record(FRU_MR_TYPE_MANAGEMENT_ACCESS, {2U, 'n', 'a', 'm', 'e'}, false);
        image::operator+=(stAreas.vecMultiRecord, image::Record(0xC0U, {0xAAU, 0xBBU}, true));
        BYTES vecImage = image::Image(stAreas, 0U);
        vecImage.resize(BASEBOARD_SIZE);
        return vecImage;
    }();
    return IMAGE;
}

const BYTES &CardImage()
{
    static const BYTES IMAGE = [] {
        image::AREAS_S stAreas;
        stAreas.vecBoard =
            image::BoardArea(25U, {1U, 2U, 3U}, image::Texts({"C-MFR", "C-NAME", "C-SN", "C-PN", "F"}));
        BYTES vecImage = image::Image(stAreas, 0U);
        vecImage.resize(CARD_SIZE);
        return vecImage;
    }();
    return IMAGE;
}

void PutInfo(const FRU_DEVICE_INFO_S &stInfo)
{
    fake::Db()[KEY_INFO | stInfo.ucDeviceID] = BytesOf(stInfo);
}

FRU_DEVICE_INFO_S InfoOf(u8 ucDevice)
{
    FRU_DEVICE_INFO_S stInfo = {};
    (void)memcpy(&stInfo, fake::Db().at(KEY_INFO | ucDevice).data(), sizeof(stInfo));
    return stInfo;
}

BYTES &Chip(u8 ucDevice)
{
    return fake::Eeprom(BUS, static_cast<u8>(FIRST_ADDRESS + 2U * ucDevice));
}

BYTES &Cached(u8 ucDevice)
{
    return fake::Db()[KEY_IMAGE | ucDevice];
}

void DistrustCaches()
{
    for (const u8 ucDevice : {BASEBOARD, CARD, BLOCK}) {
        fake::Db()[KEY_STATUS | ucDevice] = {FRU_CACHE_UNTRUSTED};
    }
}

// The sums of the header and of the area ahead of the MultiRecords, which lies in the half that a short write leaves out.
void DamageBaseboard()
{
    for (const size_t uiByte : {size_t{7}, BaseboardImage()[5] * size_t{FRU_AREA_UNIT} - 1U}) {
        Chip(BASEBOARD)[StartOf(BASEBOARD) + uiByte] ^= 0x01U;
        Cached(BASEBOARD)[uiByte] ^= 0x01U;
    }
}

SCRATCH_S &Scratch()
{
    static SCRATCH_S stScratch;
    return stScratch;
}

std::string HexText(const void *pBytes, size_t uiSize)
{
    const u8 *pucBytes = static_cast<const u8 *>(pBytes);
    std::string strText;
    for (size_t i = 0; i < uiSize; ++i) {
        strText += "0123456789abcdef"[pucBytes[i] >> 4U];
        strText += "0123456789abcdef"[pucBytes[i] & 0x0FU];
    }
    return strText;
}

std::string RecordText(const FRU_DATA_S &stData)
{
    const model::RECORD_S stRecord = model::Read(&stData);
    std::string strText = HexText(&stData.stCommonHeader, sizeof(stData.stCommonHeader)) + "|" +
                          stRecord.optInternal.value_or("-");
    for (const auto *poptArea : {&stRecord.optChassis, &stRecord.optBoard, &stRecord.optProduct}) {
        strText += "\n";
        if (*poptArea) {
            const model::AREA_S &stArea = **poptArea;
            strText += stArea.strChassisType + "|" + std::to_string(stArea.ucLanguage) + "|" +
                       HexText(stArea.aucDate, 3U);
            for (const model::TEXTS *pvecTexts : {&stArea.vecFields, &stArea.vecCustom}) {
                for (const std::string &strField : *pvecTexts) {
                    strText += "|" + strField;
                }
            }
        }
    }
    for (const model::MULTIRECORD_S &stOne : stRecord.vecMultiRecord) {
        strText +=
            "\n" + std::to_string(stOne.ucType) + "|" + HexText(stOne.vecData.data(), stOne.vecData.size());
    }
    return strText;
}

void DropMultiRecords()
{
    BYTES vecImage = BaseboardImage();
    std::fill(vecImage.begin() + vecImage[5] * size_t{FRU_AREA_UNIT}, vecImage.end(), u8{0});
    vecImage[5] = 0U;
    image::FixHeader(vecImage);
    PutDevice(BASEBOARD, vecImage);
}

void MakeWorld()
{
    (void)memset(static_cast<void *>(&Scratch()), 0, sizeof(SCRATCH_S));
    PutTable();
    PutDevice(BASEBOARD, BaseboardImage());
    PutDevice(CARD, CardImage());
    PutDevice(BLOCK, HardwareBlock());
    fake::Db()[KEY_FLAG] = {FRU_OPERATE_IDLE};
    fake::EepromByName("baseboard") = BaseboardImage();
    fake::EepromByName("card") = CardImage();
    fake::HwObjects() = std::vector<HW_FRU_OBJECT_S>{
        {FRU_COMPONENT_BASEBOARD, 0U, static_cast<u16>(BaseboardImage().size()), 1U, "baseboard"},
        {FRU_COMPONENT_BMC_CARD, 0U, static_cast<u16>(CardImage().size()), 1U, "card"}};
    fake::Ini()[OEM_PATH]["oem_configure"] = {{"qbx", "Brand"},
                                              {"productmanufacturer", "Maker"},
                                              {"productname", "Old"},
                                              {"logocidflag", "n"},
                                              {"copyright_en", "c"},
                                              {"productserialnumber", "Old"},
                                              {"productversion", "1.0"},
                                              {"checkarea", "7"},
                                              {"oemflag", "3"},
                                              {"productextra1", "Old"},
                                              {"boardproductname", "Old"},
                                              {"productassettag", "Old"}};
    fake::Capabilities() = {{"SPECS/SoftwareName", "Software"}, {"HostName/Prefix", "Host"}};
    fake::SetRpcAnswer(29U, 3U, 0U, {"success", "not found"});
    fake::MakeDirectory("/mnt/sdmmc0p4/board");
    fake::MakeDirectory("/var/network");
    fake::WriteFile(STORED_IMAGE, BaseboardImage());
    fake::WriteFile("/mnt/sdmmc0p2/OEMFile", {'1'});
}

SNAPSHOT_S Snapshot()
{
    SNAPSHOT_S stState;
    stState.mapEeprom = fake::State().mapEeprom;
    stState.mapDb = fake::Db();
    stState.mapIni = fake::Ini();
    for (const char *pcFile : SERIAL_FILES) {
        const auto optBytes = fake::ReadFile(pcFile);
        if (optBytes) {
            stState.mapFiles[pcFile] = *optBytes;
        }
    }
    for (const std::string &strCall : fake::Calls()) {
        const bool bTold = strCall.rfind("MRPC ", 0) == 0 || strCall.rfind("OPERATELOG ", 0) == 0;
        if (bTold && strCall.find(" -> 0", strCall.size() - 5U) != std::string::npos) {
            stState.vecNotices.push_back(strCall);
        }
    }
    return stState;
}

u32 Differences(const SNAPSHOT_S &stBefore, const SNAPSHOT_S &stWhole, const SNAPSHOT_S &stNow)
{
    u32 uiParts = 0;
    bool bJudgeCaches = true;
    for (const u8 ucDevice : {BASEBOARD, CARD, BLOCK}) {
        uiParts |= ChipDifference(stBefore, stWhole, stNow, ucDevice);
        // Some calls are about the cache alone.
        const bool bBoth = CacheAgrees(stBefore, stWhole, ucDevice);
        bJudgeCaches = bJudgeCaches && bBoth;
        uiParts |= bBoth && !CacheAgrees(stBefore, stNow, ucDevice) ? u32{PART_CACHE_APART} : 0U;
    }
    const auto Records = [&](const SNAPSHOT_S &stState) {
        std::map<u32, BYTES> mapRecords = stState.mapDb;
        for (auto itRecord = mapRecords.begin(); bJudgeCaches && itRecord != mapRecords.end();) {
            itRecord = IsCachedImage(itRecord->first) ? mapRecords.erase(itRecord) : std::next(itRecord);
        }
        return mapRecords;
    };
    uiParts |= Records(stNow) != Records(stWhole) ? u32{PART_RECORD} : 0U;
    uiParts |= stNow.mapFiles != stWhole.mapFiles ? u32{PART_FILE} : 0U;
    uiParts |= stNow.mapIni != stWhole.mapIni ? u32{PART_INI} : 0U;
    uiParts |= stNow.vecNotices != stWhole.vecNotices ? u32{PART_NOTICE} : 0U;
    return uiParts;
}

} // namespace prove
