// SPDX-License-Identifier: Apache-2.0
// Areas part by part: fields, and MultiRecords.
#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/image_parts.h"

namespace {

constexpr u32 DATE_BYTES = 3U;
constexpr size_t LENGTH_MAX = 0xFFU * FRU_AREA_UNIT;
constexpr u8 EMPTY_TEXT = 0xC0U;

struct SHAPE_S
{
    size_t uiPrefix = 2U; // version and length first
    size_t uiNamed = 0;
};

SHAPE_S ShapeOf(Area enArea)
{
    SHAPE_S stShape;
    for (const FIELD_ROW_S &stRow : FindAreaRow(enArea)->vecFields) {
        stShape.uiNamed += stRow.enKind == Kind::Text ? 1U : 0U;
        stShape.uiPrefix += stRow.enKind == Kind::Text ? 0U : stRow.enKind == Kind::MfgDate ? DATE_BYTES : 1U;
    }
    return stShape;
}

[[noreturn]] void FailDamaged(Area enArea, const std::string &strWhy)
{
    Fail(ErrorClass::Damaged, std::string("its ") + AreaName(enArea) + " is damaged: " + strWhy +
                                  "; 'fructl show --lenient' shows what is left of it");
}

} // namespace

INFO_PARTS_S TakeInfoApart(const AREA_PARTS_S &stArea)
{
    const std::vector<u8> &vecBytes = stArea.vecBytes;
    const SHAPE_S stShape = ShapeOf(stArea.enArea);
    if (ByteSum(vecBytes.data(), vecBytes.size()) != 0U) {
        Fail(ErrorClass::Damaged,
             std::string("the checksum of its ") + AreaName(stArea.enArea) +
                 " is wrong; 'fructl repair' mends it, where 'fructl show --lenient' shows "
                 "that its fields are right");
    }
    if (vecBytes.empty() || vecBytes[0] != 1U) {
        FailDamaged(stArea.enArea, "its first byte is not 1");
    }
    const size_t uiChecksum = vecBytes.size() - 1U;
    if (stShape.uiPrefix >= uiChecksum) {
        FailDamaged(stArea.enArea, "it is too short for its fields");
    }
    INFO_PARTS_S stInfo;
    stInfo.uiNamed = stShape.uiNamed;
    stInfo.vecPrefix.assign(vecBytes.begin(),
                            vecBytes.begin() + static_cast<std::ptrdiff_t>(stShape.uiPrefix));
    size_t uiAt = stShape.uiPrefix;
    // The end mark counts only behind the fields that have names.
    while (stInfo.vecFields.size() < stShape.uiNamed ||
           (uiAt < uiChecksum && vecBytes[uiAt] != FRU_FIELD_END)) {
        const size_t uiNext = uiAt < uiChecksum ? uiAt + 1U + (vecBytes[uiAt] & FRU_FIELD_MAX_TEXT) : 0U;
        if (uiNext == 0U || uiNext > vecBytes.size()) {
            FailDamaged(stArea.enArea, "its fields reach beyond its end");
        }
        stInfo.vecFields.emplace_back(vecBytes.begin() + static_cast<std::ptrdiff_t>(uiAt),
                                      vecBytes.begin() + static_cast<std::ptrdiff_t>(uiNext));
        uiAt = uiNext;
    }
    if (uiAt > uiChecksum || vecBytes[uiAt] != FRU_FIELD_END) {
        FailDamaged(stArea.enArea, "no end mark 0xc1 stands behind its fields");
    }
    if (uiAt < uiChecksum) {
        stInfo.vecFill.assign(vecBytes.begin() + static_cast<std::ptrdiff_t>(uiAt) + 1,
                              vecBytes.begin() + static_cast<std::ptrdiff_t>(uiChecksum));
    }
    return stInfo;
}

std::vector<u8> PutInfoTogether(const INFO_PARTS_S &stInfo, Area enArea)
{
    std::vector<u8> vecBytes = stInfo.vecPrefix;
    for (const std::vector<u8> &vecField : stInfo.vecFields) {
        vecBytes.insert(vecBytes.end(), vecField.begin(), vecField.end());
    }
    vecBytes.push_back(FRU_FIELD_END);
    const u8 ucPad = !stInfo.vecFill.empty() && stInfo.vecFill.front() == ERASED ? ERASED : u8{0};
    const auto itLeftover = std::find_if(stInfo.vecFill.begin(), stInfo.vecFill.end(),
                                         [ucPad](u8 ucByte) { return ucByte != ucPad; });
    const std::vector<u8> vecLeftover(itLeftover, stInfo.vecFill.end());
    const size_t uiNeeded = vecBytes.size() + vecLeftover.size() + 1U;
    const size_t uiOld = stInfo.vecPrefix[1] * size_t{FRU_AREA_UNIT};
    const size_t uiLength =
        std::max(uiOld, (uiNeeded + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT * size_t{FRU_AREA_UNIT});
    if (uiLength > LENGTH_MAX) {
        FailRefused(Format("its %s would have %zu bytes, and its length byte counts only to %zu",
                           AreaName(enArea), uiLength, LENGTH_MAX));
    }
    vecBytes.resize(uiLength - vecLeftover.size() - 1U, ucPad);
    vecBytes.insert(vecBytes.end(), vecLeftover.begin(), vecLeftover.end());
    vecBytes[1] = static_cast<u8>(uiLength / FRU_AREA_UNIT);
    vecBytes.push_back(ZeroChecksum(vecBytes.data(), vecBytes.size()));
    return vecBytes;
}

INFO_PARTS_S EmptyInfo(Area enArea)
{
    const SHAPE_S stShape = ShapeOf(enArea);
    INFO_PARTS_S stInfo;
    stInfo.uiNamed = stShape.uiNamed;
    stInfo.vecPrefix.assign(stShape.uiPrefix, 0U);
    stInfo.vecPrefix[0] = 1U;
    if (enArea == Area::Chassis) {
        stInfo.vecPrefix[2] = 2U; // "unknown"; 0 is not to be used
    }
    stInfo.vecFields.assign(stShape.uiNamed, {EMPTY_TEXT});
    return stInfo;
}

RECORD_PARTS_S TakeRecordsApart(const std::vector<u8> &vecBytes)
{
    RECORD_PARTS_S stRecords;
    size_t uiAt = 0;
    bool bEnd = false;
    while (!bEnd && uiAt + FRU_MULTIRECORD_HEADER_LEN <= vecBytes.size()) {
        const u8 *pucRecord = &vecBytes[uiAt];
        const size_t uiSize = FRU_MULTIRECORD_HEADER_LEN + size_t{pucRecord[2]};
        // Zeros would make a header that is right.
        if (ByteSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN) != 0U || pucRecord[2] == 0U ||
            uiAt + uiSize > vecBytes.size()) {
            break;
        }
        stRecords.vecRecords.emplace_back(pucRecord, pucRecord + uiSize);
        bEnd = (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) != 0U;
        uiAt += uiSize;
    }
    stRecords.bEnds = bEnd;
    stRecords.vecRest.assign(vecBytes.begin() + static_cast<std::ptrdiff_t>(uiAt), vecBytes.end());
    return stRecords;
}

std::vector<u8> PutRecordsTogether(RECORD_PARTS_S stRecords)
{
    std::vector<u8> vecBytes;
    for (size_t i = 0; i < stRecords.vecRecords.size(); i++) {
        RecordBytes &vecRecord = stRecords.vecRecords[i];
        const u8 ucEnd = i + 1U == stRecords.vecRecords.size() ? FRU_MULTIRECORD_END_OF_LIST : 0U;
        const u8 ucFlags = static_cast<u8>((vecRecord[1] & ~FRU_MULTIRECORD_END_OF_LIST) | ucEnd);
        if (stRecords.bEnds && ucFlags != vecRecord[1]) {
            vecRecord[4] = static_cast<u8>(vecRecord[4] + vecRecord[1] - ucFlags);
            vecRecord[1] = ucFlags;
        }
        vecBytes.insert(vecBytes.end(), vecRecord.begin(), vecRecord.end());
    }
    vecBytes.insert(vecBytes.end(), stRecords.vecRest.begin(), stRecords.vecRest.end());
    return vecBytes;
}

RecordBytes MakeRecord(u8 ucType, u8 ucFormat, const std::vector<u8> &vecData, bool bLast)
{
    RecordBytes vecRecord = {ucType, static_cast<u8>(ucFormat | (bLast ? FRU_MULTIRECORD_END_OF_LIST : 0U)),
                             static_cast<u8>(vecData.size()), ZeroChecksum(vecData.data(), vecData.size()),
                             0U};
    vecRecord[4] = ZeroChecksum(vecRecord.data(), 4U);
    vecRecord.insert(vecRecord.end(), vecData.begin(), vecData.end());
    return vecRecord;
}
