// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/scan.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "files/files.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/record.h"

namespace {

namespace fs = std::filesystem;

// Where images begin on the boards that there are.
constexpr u32 USUAL_OFFSETS[] = {0x0, 0x80, 0x100, 0x200, 0x400, 0x800, 0x1000, 0x2000, 0x4000};
constexpr u32 FIRST_READ = 4096; // an image of usual size; the rest is read when it goes on
constexpr u32 LARGEST = 0x10000; // offsets inside an EEPROM have 16 bits
constexpr u32 WIRE_MAX = 0x7F;   // longer addresses have other names

fs::path SysDirectory()
{
    const char *pcValue = secure_getenv("FRUCTL_SYS"); // as the platform has it
    return pcValue == nullptr || *pcValue == '\0' ? "/sys" : pcValue;
}

std::string FirstLine(const fs::path &pathFile)
{
    std::ifstream stFile(pathFile);
    std::string strLine;
    std::getline(stFile, strLine);
    return strLine;
}

// A chip's bytes from its file, as far as they are asked for.
class ChipFile
{
  public:
    explicit ChipFile(const fs::path &pathFile)
        : m_stFile(open(pathFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)),
          m_iError(m_stFile ? 0 : errno)
    {}
    // Fewer at the end, or where it fails.
    std::vector<u8> Read(u32 uiOffset, u32 uiLength)
    {
        std::vector<u8> vecBytes(uiLength);
        size_t uiDone = 0;
        while (m_iError == 0 && uiDone < uiLength) {
            const ssize_t iRead = pread(m_stFile.Get(), vecBytes.data() + uiDone, uiLength - uiDone,
                                        static_cast<off_t>(uiOffset + uiDone));
            if (iRead < 0 && errno == EINTR) {
                continue;
            }
            m_iError = iRead < 0 ? errno : 0;
            if (iRead <= 0) {
                break;
            }
            uiDone += static_cast<size_t>(iRead);
        }
        vecBytes.resize(uiDone);
        return vecBytes;
    }
    int Error() const
    {
        return m_iError;
    }

  private:
    files::Fd m_stFile;
    int m_iError;
};

// A common header: version 1, a pad of 0, and all bytes sum up to 0.
bool IsHeader(const std::vector<u8> &vecBytes)
{
    u32 uiSum = 0;
    for (u32 i = 0; i < FRU_COMMON_HEADER_LEN && i < vecBytes.size(); i++) {
        uiSum += vecBytes[i];
    }
    return vecBytes.size() >= FRU_COMMON_HEADER_LEN && vecBytes[0] == 1U && vecBytes[6] == 0U &&
           uiSum % 0x100U == 0U;
}

u32 EndOf(const IMAGE_LAYOUT_S &stLayout)
{
    u32 uiEnd = FRU_COMMON_HEADER_LEN;
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        const auto itArea =
            std::find(stLayout.vecAreas.begin(), stLayout.vecAreas.end(), stSpan.stField.enArea);
        uiEnd =
            itArea == stLayout.vecAreas.end() ? uiEnd : std::max(uiEnd, stSpan.uiOffset + stSpan.uiLength);
    }
    return uiEnd;
}

// Of the product area, or where there is none of the board's.
std::string SaysOf(const RECORD_VIEW_S &stView)
{
    std::vector<std::string> vecTexts;
    const AREA_VIEW_S *pstProduct = stView.Find(Area::Product);
    const AREA_VIEW_S *pstArea = pstProduct != nullptr ? pstProduct : stView.Find(Area::Board);
    for (const Field enField : {Field::Manufacturer, Field::ProductName, Field::SerialNumber}) {
        const FIELD_VIEW_S *pstField = pstArea == nullptr ? nullptr : pstArea->Find(enField);
        if (pstField != nullptr && !pstField->strText.empty()) {
            vecTexts.push_back(pstField->strText);
        }
    }
    return Join(vecTexts, ", ");
}

FOUND_IMAGE_S LookAt(ChipFile &stFile, u32 uiOffset, u32 uiSize)
{
    std::vector<u8> vecBytes = stFile.Read(uiOffset, std::min(uiSize - uiOffset, FIRST_READ));
    IMAGE_S stImage = {Source::File, vecBytes, vecBytes.size()};
    VERDICT_S stVerdict = VerdictOn(stImage, false);
    if (!stVerdict.IsGood() && uiSize - uiOffset > FIRST_READ) {
        vecBytes = stFile.Read(uiOffset, uiSize - uiOffset);
        stImage = {Source::File, vecBytes, vecBytes.size()};
        stVerdict = VerdictOn(stImage, false);
    }
    Record stRecord;
    const bool bDecoded = DecodeImage(stImage, false, stRecord) == FRU_OK;
    return {uiOffset, EndOf(stVerdict.stLayout), bDecoded ? SaysOf(ViewRecord(*stRecord.Data())) : "",
            stVerdict.Why(), bDecoded && HasArea(*stRecord.Data(), Area::Chassis)};
}

void LookInto(const fs::path &pathFile, FOUND_CHIP_S &stChip)
{
    ChipFile stFile(pathFile);
    const u32 uiSize = static_cast<u32>(std::min<uint64_t>(stChip.uiSize, LARGEST));
    stChip.bErased = true;
    u32 uiTaken = 0; // up to here an image goes
    for (const u32 uiOffset : USUAL_OFFSETS) {
        if (uiOffset < uiTaken || uiOffset + FRU_COMMON_HEADER_LEN > uiSize) {
            continue;
        }
        const std::vector<u8> vecHeader = stFile.Read(uiOffset, FRU_COMMON_HEADER_LEN);
        stChip.bErased = stChip.bErased && std::all_of(vecHeader.begin(), vecHeader.end(),
                                                       [](u8 ucByte) { return ucByte == ERASED; });
        if (IsHeader(vecHeader)) {
            stChip.vecImages.push_back(LookAt(stFile, uiOffset, uiSize));
            uiTaken = uiOffset + stChip.vecImages.back().uiEnd;
        }
    }
    if (stFile.Error() != 0) {
        stChip.strProblem = files::Reason(stFile.Error());
        stChip.bErased = false;
    }
}

std::string NvmemOf(const fs::path &pathSys, const std::string &strName)
{
    std::error_code stIgnored;
    std::vector<std::string> vecNames;
    for (const auto &stEntry : fs::directory_iterator(pathSys / "bus/nvmem/devices", stIgnored)) {
        const std::string strEntry = stEntry.path().filename().string();
        // The device's name, and the number that the kernel puts behind it.
        if (strEntry.compare(0, strName.size(), strName) == 0) {
            vecNames.push_back(strEntry);
        }
    }
    return vecNames.empty() ? "" : *std::min_element(vecNames.begin(), vecNames.end());
}

// "4-0050"; false: another kind of device.
bool ParseName(const std::string &strName, FOUND_CHIP_S &stChip)
{
    char cMore = '\0';
    return strName.size() >= 6U && strName[strName.size() - 5U] == '-' &&
           sscanf(strName.c_str(), "%u-%4x%c", &stChip.uiAdapter, &stChip.uiAddress, &cMore) == 2 &&
           stChip.uiAddress <= WIRE_MAX;
}

// ---- the description ----

struct PLACE_OF_CHIP_S
{
    u32 uiBus;
    u32 uiSwitchLevel;
};

// The channel of a multiplexer calls itself after the bus that it branches off.
PLACE_OF_CHIP_S PlaceOf(const FOUND_CHIP_S &stChip)
{
    u32 uiParent = 0;
    u32 uiChannel = 0;
    if (sscanf(stChip.strBus.c_str(), "i2c-%u-mux (chan_id %u)", &uiParent, &uiChannel) == 2 &&
        uiParent <= FRU_BUS_NUMBER_MAX && uiChannel < 254U) {
        return {uiParent, uiChannel + 1U};
    }
    // Two such buses cannot come to the same place.
    return stChip.uiAdapter <= FRU_BUS_NUMBER_MAX
               ? PLACE_OF_CHIP_S{stChip.uiAdapter, 0U}
               : PLACE_OF_CHIP_S{FRU_BUS_NUMBER_MAX, std::min(stChip.uiAdapter, 255U)};
}

u32 UsualSize(u32 uiEnd, u32 uiRoom)
{
    u32 uiSize = 256U;
    while (uiSize < uiEnd) {
        uiSize *= 2U;
    }
    return std::min({uiSize, uiRoom, 0xFFFFU});
}

Json DescribeOne(const FOUND_CHIP_S &stChip, const FOUND_IMAGE_S &stImage, u32 uiNumber, bool bBaseboard)
{
    const PLACE_OF_CHIP_S stPlace = PlaceOf(stChip);
    Json stLocation = {{"bus", stPlace.uiBus}, {"address", Format("0x%02x", stChip.uiAddress)}};
    if (stPlace.uiSwitchLevel != 0U) {
        stLocation["switchLevel"] = stPlace.uiSwitchLevel;
    }
    stLocation["backend"] = "kernel";
    if (stPlace.uiSwitchLevel != 0U) {
        stLocation["adapter"] = stChip.uiAdapter;
    }
    const u32 uiRoom = static_cast<u32>(stChip.uiSize) - stImage.uiOffset;
    return {{"id", uiNumber},
            {"name", bBaseboard ? "baseboard" : Format("fru%u", uiNumber)},
            {"componentType", bBaseboard ? "0x00" : "0x20"},
            {"instance", bBaseboard ? 0U : uiNumber},
            {"location", stLocation},
            {"eepromSize", stChip.uiSize},
            {"startOffset", stImage.uiOffset},
            {"size", UsualSize(stImage.uiEnd, uiRoom)}};
}

} // namespace

std::string FOUND_CHIP_S::Name() const
{
    return Format("%u-%04x", uiAdapter, uiAddress);
}

std::vector<FOUND_CHIP_S> ScanChips()
{
    const fs::path pathSys = SysDirectory();
    const fs::path pathDevices = pathSys / "bus/i2c/devices";
    std::vector<FOUND_CHIP_S> vecChips;
    std::error_code stIgnored;
    for (const auto &stEntry : fs::directory_iterator(pathDevices, stIgnored)) {
        FOUND_CHIP_S stChip = {};
        const fs::path pathFile = stEntry.path() / "eeprom";
        struct stat stStat = {};
        if (!ParseName(stEntry.path().filename().string(), stChip) || stat(pathFile.c_str(), &stStat) != 0) {
            continue;
        }
        stChip.uiSize = static_cast<uint64_t>(stStat.st_size);
        stChip.strBus = FirstLine(pathDevices / Format("i2c-%u", stChip.uiAdapter) / "name");
        stChip.strKind = FirstLine(stEntry.path() / "name");
        stChip.strDriver = fs::read_symlink(stEntry.path() / "driver", stIgnored).filename().string();
        stChip.strNvmem = NvmemOf(pathSys, stChip.Name());
        LookInto(pathFile, stChip);
        vecChips.push_back(stChip);
    }
    std::sort(vecChips.begin(), vecChips.end(), [](const FOUND_CHIP_S &stLeft, const FOUND_CHIP_S &stRight) {
        return std::make_pair(stLeft.uiAdapter, stLeft.uiAddress) <
               std::make_pair(stRight.uiAdapter, stRight.uiAddress);
    });
    return vecChips;
}

Json DescribeChips(const std::vector<FOUND_CHIP_S> &vecChips)
{
    Json stDevices = Json::array();
    bool bBaseboard = false;
    for (const FOUND_CHIP_S &stChip : vecChips) {
        if (stChip.uiSize > LARGEST) {
            continue;
        }
        std::vector<FOUND_IMAGE_S> vecImages = stChip.vecImages;
        if (vecImages.empty() && stChip.bErased && stChip.uiSize >= FRU_COMMON_HEADER_LEN) {
            vecImages.push_back({0U, 0U, "", "", false});
        }
        for (const FOUND_IMAGE_S &stImage : vecImages) {
            const bool bThis = !bBaseboard && stImage.bChassis; // the one with the chassis' own data
            bBaseboard = bBaseboard || bThis;
            if (stDevices.size() < FRU_DEVICE_TBL_MAX) {
                stDevices.push_back(DescribeOne(stChip, stImage, static_cast<u32>(stDevices.size()), bThis));
            }
        }
    }
    return {{"devices", stDevices}};
}
