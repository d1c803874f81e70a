// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/foreign.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/fields.h"

namespace {

constexpr size_t SPD_MIN = 128U;
constexpr size_t SPD_TYPE = 2U;
constexpr u8 RECORD_FORMAT = 2U;

struct MEMORY_S
{
    u8 ucType; // third byte of an SPD
    const char *pcName;
};

constexpr MEMORY_S MEMORIES[] = {{0x07U, "DDR"},   {0x08U, "DDR2"},   {0x0BU, "DDR3"},   {0x0CU, "DDR4"},
                                 {0x0EU, "DDR4E"}, {0x0FU, "LPDDR3"}, {0x10U, "LPDDR4"}, {0x11U, "LPDDR4X"},
                                 {0x12U, "DDR5"},  {0x13U, "LPDDR5"}, {0x15U, "LPDDR5X"}};

// The first byte tells bytes used and bytes there are, the second a revision in two digits; the fourth of a
// module's kind is small.
const char *MemoryOf(const std::vector<u8> &vecBytes, size_t uiStored)
{
    if (uiStored < SPD_MIN || vecBytes[0] <= 1U || vecBytes[0] == ERASED) {
        return nullptr;
    }
    // A FRU image of which just the first byte is damaged.
    if (static_cast<u8>(ByteSum(vecBytes.data(), FRU_COMMON_HEADER_LEN) - vecBytes[0] + 1U) == 0U) {
        return nullptr;
    }
    for (const MEMORY_S &stMemory : MEMORIES) {
        if (vecBytes[SPD_TYPE] == stMemory.ucType) {
            const bool bOld = stMemory.ucType < 0x0BU; // 128 bytes used, of 256
            return bOld ? (vecBytes[0] == 0x80U && vecBytes[1] == 8U ? stMemory.pcName : nullptr)
                        : (vecBytes[1] <= 0x2FU && vecBytes[1] != 0U && (vecBytes[3] & 0x0FU) <= 0x0DU
                               ? stMemory.pcName
                               : nullptr);
        }
    }
    return nullptr;
}

bool IsArea(const std::vector<u8> &vecBytes, size_t uiStored, Area enArea, size_t uiStart)
{
    if (uiStart + FRU_AREA_UNIT > uiStored) {
        return false;
    }
    const u8 *pucArea = &vecBytes[uiStart];
    if (enArea == Area::MultiRecord) {
        return ByteSum(pucArea, FRU_MULTIRECORD_HEADER_LEN) == 0U && (pucArea[1] & 0x0FU) == RECORD_FORMAT &&
               pucArea[2] != 0U;
    }
    const size_t uiLength = pucArea[1] * size_t{FRU_AREA_UNIT};
    return enArea != Area::InternalUse && pucArea[0] == 1U && uiLength != 0U &&
           uiStart + uiLength <= uiStored && ByteSum(pucArea, uiLength) == 0U;
}

bool IsHeader(const u8 *pucHeader)
{
    return pucHeader[0] == 1U && ByteSum(pucHeader, FRU_COMMON_HEADER_LEN) == 0U;
}

} // namespace

std::string ForeignName(const std::vector<u8> &vecBytes, size_t uiStored)
{
    const auto fnAll = [&](u8 ucByte) {
        return std::all_of(vecBytes.begin(), vecBytes.begin() + static_cast<std::ptrdiff_t>(uiStored),
                           [ucByte](u8 ucOther) { return ucOther == ucByte; });
    };
    if (uiStored == 0U || BeginsWithHeader(vecBytes, uiStored)) {
        return "";
    }
    if (fnAll(ERASED)) {
        return "erased: every byte is 0xff";
    }
    if (fnAll(0U)) {
        return "blank: every byte is 0x00";
    }
    const char *pcMemory = MemoryOf(vecBytes, uiStored);
    return pcMemory == nullptr
               ? ""
               : Format("no FRU image, but by its first bytes (%02x %02x %02x) the SPD of a %s memory "
                        "module",
                        vecBytes[0], vecBytes[1], vecBytes[2], pcMemory);
}

bool BeginsWithHeader(const std::vector<u8> &vecBytes, size_t uiStored)
{
    return uiStored >= FRU_COMMON_HEADER_LEN && IsHeader(vecBytes.data());
}

std::vector<u32> FindImages(const std::vector<u8> &vecBytes, size_t uiStored)
{
    std::vector<u32> vecFound;
    for (size_t i = 0; i + FRU_COMMON_HEADER_LEN <= uiStored; i++) {
        if (!IsHeader(&vecBytes[i])) {
            continue;
        }
        const bool bArea = std::any_of(HeaderAreas().begin(), HeaderAreas().end(), [&](Area enArea) {
            const size_t uiStart = vecBytes[i + HeaderOffsetByte(enArea)] * size_t{FRU_AREA_UNIT};
            return uiStart != 0U && IsArea(vecBytes, uiStored, enArea, i + uiStart);
        });
        if (bArea) {
            vecFound.push_back(static_cast<u32>(i));
        }
    }
    return vecFound;
}
