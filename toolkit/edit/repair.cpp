// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/repair.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image_parts.h"

namespace {

constexpr size_t RECORD_SUM = 3U;
constexpr size_t HEADER_SUM = 4U;

class Repairer
{
  public:
    explicit Repairer(const std::vector<u8> &vecImage) : m_stRepair{vecImage, {}, {}} {}
    REPAIR_S Repair();

  private:
    std::vector<u32> Starts() const;
    u32 StartOf(Area enArea) const
    {
        return m_stRepair.vecAfter[HeaderOffsetByte(enArea)] * u32{FRU_AREA_UNIT};
    }
    // Why the area does not read as it should, apart from its checksum; empty: it does.
    std::string WhyNoArea(Area enArea, u32 uiStart) const;
    void Header();
    void Info(Area enArea, u32 uiStart);
    void Records(u32 uiStart);
    bool Record(u32 uiAt, u32 uiIndex);

    REPAIR_S m_stRepair;
};

std::string Repairer::WhyNoArea(Area enArea, u32 uiStart) const
{
    const std::vector<u8> &vecBytes = m_stRepair.vecAfter;
    if (uiStart + FRU_AREA_UNIT > vecBytes.size()) {
        return "it begins behind the image's end";
    }
    const size_t uiLength = vecBytes[uiStart + 1U] * size_t{FRU_AREA_UNIT};
    if (uiLength == 0U || uiStart + uiLength > vecBytes.size()) {
        return "its length is wrong";
    }
    for (const Area enOther : HeaderAreas()) {
        if (StartOf(enOther) > uiStart && StartOf(enOther) < uiStart + uiLength) {
            return std::string("it reaches into the ") + AreaName(enOther);
        }
    }
    const auto itStart = vecBytes.begin() + uiStart;
    AREA_PARTS_S stArea = {enArea,
                           uiStart,
                           static_cast<u32>(uiStart + uiLength),
                           {itStart, itStart + static_cast<std::ptrdiff_t>(uiLength)}};
    stArea.vecBytes.back() =
        static_cast<u8>(stArea.vecBytes.back() - ByteSum(stArea.vecBytes.data(), stArea.vecBytes.size()));
    try {
        (void)TakeInfoApart(stArea);
        return "";
    } catch (const Error &) {
        return "its fields are damaged";
    }
}

// The offsets can be trusted when one of them leads to an area that reads as one.
void Repairer::Header()
{
    std::vector<u8> &vecBytes = m_stRepair.vecAfter;
    const u8 ucSum = ByteSum(vecBytes.data(), FRU_COMMON_HEADER_LEN);
    if (ucSum == 0U) {
        return;
    }
    bool bAny = false;
    for (const Area enArea : HeaderAreas()) {
        const u32 uiStart = StartOf(enArea);
        const bool bInfo = enArea != Area::InternalUse && enArea != Area::MultiRecord;
        if (uiStart != 0U && (uiStart >= vecBytes.size() || (bInfo && !WhyNoArea(enArea, uiStart).empty()))) {
            m_stRepair.vecLeft.push_back(std::string("common header: it does not lead to the ") +
                                         AreaName(enArea));
            return;
        }
        bAny = bAny || (uiStart != 0U && bInfo);
    }
    if (!bAny) {
        m_stRepair.vecLeft.emplace_back(
            "common header: it leads to no area that could tell that it is right");
        return;
    }
    vecBytes[FRU_COMMON_HEADER_LEN - 1U] = static_cast<u8>(vecBytes[FRU_COMMON_HEADER_LEN - 1U] - ucSum);
    m_stRepair.vecMended.emplace_back(AreaName(Area::Header));
}

void Repairer::Info(Area enArea, u32 uiStart)
{
    const std::string strWhy = WhyNoArea(enArea, uiStart);
    if (!strWhy.empty()) {
        m_stRepair.vecLeft.push_back(std::string(AreaName(enArea)) + ": " + strWhy);
        return;
    }
    std::vector<u8> &vecBytes = m_stRepair.vecAfter;
    const size_t uiLength = vecBytes[uiStart + 1U] * size_t{FRU_AREA_UNIT};
    const u8 ucSum = ByteSum(&vecBytes[uiStart], uiLength);
    if (ucSum != 0U) {
        u8 &ucChecksum = vecBytes[uiStart + uiLength - 1U];
        ucChecksum = static_cast<u8>(ucChecksum - ucSum);
        m_stRepair.vecMended.emplace_back(AreaName(enArea));
    }
}

// Returns whether the next record can be found.
bool Repairer::Record(u32 uiAt, u32 uiIndex)
{
    std::vector<u8> &vecBytes = m_stRepair.vecAfter;
    u8 *pucRecord = &vecBytes[uiAt];
    const u8 ucHeader = ByteSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN);
    const std::string strRecord = Format("MultiRecord %u", uiIndex + 1U);
    const size_t uiEnd = uiAt + FRU_MULTIRECORD_HEADER_LEN + size_t{pucRecord[2]};
    if (pucRecord[2] == 0U) {
        return false; // a record of no data; zeros look like one
    }
    if (uiEnd > vecBytes.size()) {
        m_stRepair.vecLeft.push_back(strRecord + ": it reaches beyond the image's end");
        return false;
    }
    const u8 ucData = ZeroChecksum(pucRecord + FRU_MULTIRECORD_HEADER_LEN, pucRecord[2]);
    if (ucHeader != 0U && ucData != pucRecord[RECORD_SUM]) {
        m_stRepair.vecLeft.push_back(strRecord + ": both its checksums are wrong, so its length may be, too");
        return false;
    }
    if (ucHeader != 0U) {
        pucRecord[HEADER_SUM] = static_cast<u8>(pucRecord[HEADER_SUM] - ucHeader);
        m_stRepair.vecMended.push_back(strRecord + " (header)");
    } else if (ucData != pucRecord[RECORD_SUM]) {
        pucRecord[HEADER_SUM] = static_cast<u8>(pucRecord[HEADER_SUM] + pucRecord[RECORD_SUM] - ucData);
        pucRecord[RECORD_SUM] = ucData;
        m_stRepair.vecMended.push_back(strRecord + " (data)");
    }
    return (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) == 0U;
}

void Repairer::Records(u32 uiStart)
{
    const std::vector<u8> &vecBytes = m_stRepair.vecAfter;
    u32 uiAt = uiStart;
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX && uiAt + FRU_MULTIRECORD_HEADER_LEN <= vecBytes.size(); i++) {
        const u32 uiNext = uiAt + FRU_MULTIRECORD_HEADER_LEN + vecBytes[uiAt + 2U];
        if (!Record(uiAt, i)) {
            return;
        }
        uiAt = uiNext;
    }
}

REPAIR_S Repairer::Repair()
{
    std::vector<u8> &vecBytes = m_stRepair.vecAfter;
    if (vecBytes.size() < FRU_COMMON_HEADER_LEN || vecBytes[0] != 1U) {
        Fail(ErrorClass::Damaged,
             "it does not begin as a FRU image does, so no checksum of it can be mended");
    }
    Header();
    if (ByteSum(vecBytes.data(), FRU_COMMON_HEADER_LEN) != 0U) {
        return m_stRepair; // nothing tells where the areas are
    }
    for (const Area enArea : HeaderAreas()) {
        const u32 uiStart = StartOf(enArea);
        if (uiStart == 0U || enArea == Area::InternalUse) {
            continue; // that has no checksum
        }
        if (enArea == Area::MultiRecord) {
            Records(uiStart);
        } else {
            Info(enArea, uiStart);
        }
    }
    return m_stRepair;
}

} // namespace

REPAIR_S RepairChecksums(const std::vector<u8> &vecImage)
{
    return Repairer(vecImage).Repair();
}
