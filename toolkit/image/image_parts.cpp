// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/image_parts.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"

namespace {

constexpr u32 OFFSET_MAX = 0xFFU * FRU_AREA_UNIT;
constexpr u32 CHECKSUM_AT = FRU_COMMON_HEADER_LEN - 1U;

u32 RoundUp(size_t uiBytes)
{
    return static_cast<u32>((uiBytes + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT * FRU_AREA_UNIT);
}

bool IsEmpty(u8 ucByte)
{
    return ucByte == 0U || ucByte == ERASED;
}

// Up to where bytes from uiStart on say something, when nothing tells where they end.
u32 TrimmedEnd(const std::vector<u8> &vecImage, u32 uiStart)
{
    size_t uiEnd = vecImage.size();
    while (uiEnd > uiStart + 1U && IsEmpty(vecImage[uiEnd - 1U])) {
        uiEnd--;
    }
    return std::min(RoundUp(uiEnd), static_cast<u32>(vecImage.size()));
}

u32 EndOfInfo(const std::vector<u8> &vecImage, Area enArea, u32 uiStart)
{
    const u32 uiLength = uiStart + 1U < vecImage.size() ? vecImage[uiStart + 1U] * u32{FRU_AREA_UNIT} : 0U;
    if (uiLength == 0U || uiStart + uiLength > vecImage.size()) {
        Fail(ErrorClass::Damaged,
             Format("the length of its %s is wrong: %u bytes from byte 0x%04x on, in an image of %zu",
                    AreaName(enArea), uiLength, uiStart, vecImage.size()));
    }
    return uiStart + uiLength;
}

u32 EndOfRecords(const std::vector<u8> &vecImage, u32 uiStart, u32 uiNext)
{
    const auto itStart = vecImage.begin() + uiStart;
    const RECORD_PARTS_S stRecords = TakeRecordsApart({itStart, vecImage.begin() + uiNext});
    u32 uiEnd = uiStart;
    for (const RecordBytes &vecRecord : stRecords.vecRecords) {
        uiEnd += static_cast<u32>(vecRecord.size());
    }
    const bool bEnds =
        !stRecords.vecRecords.empty() && (stRecords.vecRecords.back()[1] & FRU_MULTIRECORD_END_OF_LIST) != 0U;
    const bool bRest = std::any_of(vecImage.begin() + uiEnd, vecImage.begin() + uiNext,
                                   [](u8 ucByte) { return !IsEmpty(ucByte); });
    if (bEnds || !bRest) {
        return std::max(uiEnd, uiStart + 1U);
    }
    return uiNext < vecImage.size() ? uiNext : TrimmedEnd(vecImage, uiStart);
}

void RequireHeader(const std::vector<u8> &vecImage)
{
    if (vecImage.size() < FRU_COMMON_HEADER_LEN || vecImage[0] != 1U) {
        Fail(ErrorClass::Damaged, "it holds no FRU image: its first byte is not 1");
    }
    if (ByteSum(vecImage.data(), FRU_COMMON_HEADER_LEN) != 0U) {
        Fail(ErrorClass::Damaged,
             "the checksum of its common header is wrong; 'fructl repair' mends it, where "
             "'fructl show --lenient' shows that its areas are where it says");
    }
}

} // namespace

AREA_PARTS_S *IMAGE_PARTS_S::Find(Area enArea)
{
    const auto itArea = std::find_if(vecAreas.begin(), vecAreas.end(), [enArea](const AREA_PARTS_S &stArea) {
        return stArea.enArea == enArea;
    });
    return itArea == vecAreas.end() ? nullptr : &*itArea;
}

void IMAGE_PARTS_S::Remove(Area enArea)
{
    const auto itArea = std::find_if(vecAreas.begin(), vecAreas.end(), [enArea](const AREA_PARTS_S &stArea) {
        return stArea.enArea == enArea;
    });
    if (itArea->uiStart != 0U) {
        vecRemoved.push_back(*itArea);
    }
    vecAreas.erase(itArea);
}

IMAGE_PARTS_S TakeApart(const std::vector<u8> &vecImage)
{
    RequireHeader(vecImage);
    IMAGE_PARTS_S stParts = {vecImage, {}, {}};
    for (const Area enArea : HeaderAreas()) {
        const u32 uiStart = vecImage[HeaderOffsetByte(enArea)] * u32{FRU_AREA_UNIT};
        if (uiStart >= vecImage.size()) {
            Fail(ErrorClass::Damaged, Format("its %s begins at byte 0x%04x, behind its %zu bytes",
                                             AreaName(enArea), uiStart, vecImage.size()));
        }
        if (uiStart != 0U) {
            stParts.vecAreas.push_back({enArea, uiStart, 0U, {}});
        }
    }
    std::sort(stParts.vecAreas.begin(), stParts.vecAreas.end(),
              [](const AREA_PARTS_S &stLeft, const AREA_PARTS_S &stRight) {
                  return stLeft.uiStart < stRight.uiStart;
              });
    for (size_t i = 0; i < stParts.vecAreas.size(); i++) {
        AREA_PARTS_S &stArea = stParts.vecAreas[i];
        const bool bLast = i + 1U == stParts.vecAreas.size();
        const u32 uiNext = bLast ? static_cast<u32>(vecImage.size()) : stParts.vecAreas[i + 1U].uiStart;
        if (stArea.uiStart == uiNext) {
            Fail(ErrorClass::Damaged,
                 Format("its %s and its %s both begin at byte 0x%04x", AreaName(stArea.enArea),
                        AreaName(stParts.vecAreas[i + 1U].enArea), uiNext));
        }
        stArea.uiEnd =
            stArea.enArea == Area::InternalUse   ? (bLast ? TrimmedEnd(vecImage, stArea.uiStart) : uiNext)
            : stArea.enArea == Area::MultiRecord ? EndOfRecords(vecImage, stArea.uiStart, uiNext)
                                                 : EndOfInfo(vecImage, stArea.enArea, stArea.uiStart);
        if (stArea.uiEnd > uiNext) {
            Fail(ErrorClass::Damaged,
                 Format("its %s, which ends at byte 0x%04x, overlaps its %s, which begins at "
                        "byte 0x%04x",
                        AreaName(stArea.enArea), stArea.uiEnd, AreaName(stParts.vecAreas[i + 1U].enArea),
                        uiNext));
        }
        stArea.vecBytes.assign(vecImage.begin() + stArea.uiStart, vecImage.begin() + stArea.uiEnd);
    }
    return stParts;
}

namespace {

// Lays the parts out: where each area goes, what moves with it, and what was there before.
class Composer
{
  public:
    Composer(const IMAGE_PARTS_S &stParts, const ROOM_S &stRoom) : m_stParts(stParts), m_stRoom(stRoom) {}
    std::vector<u8> Compose();

  private:
    struct PLACE_S
    {
        const AREA_PARTS_S *pstArea;
        u32 uiKept;  // where the bytes that go with it began; its own start: none do
        u32 uiStart; // where it goes
        u32 End() const
        {
            return uiStart + static_cast<u32>(pstArea->vecBytes.size());
        }
        u32 Begin() const
        {
            return uiStart - (pstArea->uiStart - uiKept);
        }
    };

    bool IsFree(u32 uiFirst, u32 uiLast) const;
    void PlaceOld();
    void PlaceNew();
    void RequireRoom() const;

    const IMAGE_PARTS_S &m_stParts;
    const ROOM_S m_stRoom;
    std::vector<u8> m_vecBase; // the image without what was removed
    std::vector<PLACE_S> m_vecPlaces;
};

bool Composer::IsFree(u32 uiFirst, u32 uiLast) const
{
    const size_t uiEnd = std::min(size_t{uiLast}, m_vecBase.size());
    return uiFirst >= uiEnd || std::all_of(m_vecBase.begin() + uiFirst,
                                           m_vecBase.begin() + static_cast<std::ptrdiff_t>(uiEnd), IsEmpty);
}

void Composer::PlaceOld()
{
    u32 uiOldEnd = FRU_COMMON_HEADER_LEN;
    u32 uiEnd = FRU_COMMON_HEADER_LEN;
    for (const AREA_PARTS_S &stArea : m_stParts.vecAreas) {
        if (stArea.uiStart == 0U) {
            continue;
        }
        u32 uiKept = uiOldEnd;
        while (uiKept < stArea.uiStart && IsEmpty(m_vecBase[uiKept])) {
            uiKept++;
        }
        const u32 uiMoved = uiEnd > uiKept ? RoundUp(uiEnd - uiKept) : 0U;
        m_vecPlaces.push_back({&stArea, uiKept, stArea.uiStart + uiMoved});
        uiEnd = m_vecPlaces.back().End();
        uiOldEnd = stArea.uiEnd;
    }
    if (!IsFree(uiOldEnd, uiEnd)) {
        FailRefused(
            Format("it would grow over bytes that belong to no area and are not empty, somewhere from "
                   "byte 0x%04x to 0x%04x",
                   uiOldEnd, uiEnd - 1U));
    }
}

void Composer::PlaceNew()
{
    for (const AREA_PARTS_S &stArea : m_stParts.vecAreas) {
        if (stArea.uiStart != 0U) {
            continue;
        }
        const u32 uiSize = static_cast<u32>(stArea.vecBytes.size());
        u32 uiAt = FRU_COMMON_HEADER_LEN;
        size_t uiBefore = 0; // places in front of it
        for (; uiBefore < m_vecPlaces.size(); uiBefore++) {
            if (RoundUp(uiAt) + uiSize <= m_vecPlaces[uiBefore].Begin() && IsFree(uiAt, uiAt + uiSize)) {
                break;
            }
            uiAt = RoundUp(m_vecPlaces[uiBefore].End());
        }
        // Behind all of them, and behind bytes there that are not empty.
        while (uiBefore == m_vecPlaces.size() && !IsFree(uiAt, uiAt + uiSize)) {
            uiAt += FRU_AREA_UNIT;
        }
        m_vecPlaces.insert(m_vecPlaces.begin() + static_cast<std::ptrdiff_t>(uiBefore), {&stArea, 0U, uiAt});
    }
}

void Composer::RequireRoom() const
{
    for (const PLACE_S &stPlace : m_vecPlaces) {
        const Area enArea = stPlace.pstArea->enArea;
        if (stPlace.uiStart > OFFSET_MAX) {
            FailRefused(Format("its %s would begin at byte %u, and the header counts only to %u",
                               AreaName(enArea), stPlace.uiStart, OFFSET_MAX));
        }
        const bool bSame =
            stPlace.uiStart == stPlace.pstArea->uiStart && stPlace.End() == stPlace.pstArea->uiEnd;
        const bool bBefore = m_stRoom.bChip && FindAreaRow(enArea) != nullptr && enArea != Area::InternalUse;
        const u32 uiNeeded = stPlace.End() + (bBefore && !bSame ? 1U : 0U);
        if (uiNeeded > m_stRoom.uiBytes) {
            FailRefused(Format("it would take %u bytes%s, and there are %u", uiNeeded,
                               bBefore ? " (an area must end before the FRU does)" : "", m_stRoom.uiBytes));
        }
    }
}

std::vector<u8> Composer::Compose()
{
    m_vecBase = m_stParts.vecImage;
    // What is moved or removed leaves what stands at the image's end, when that is empty.
    const u8 ucLeft = !m_vecBase.empty() && IsEmpty(m_vecBase.back()) ? m_vecBase.back() : ERASED;
    const auto fnClear = [&](u32 uiFirst, u32 uiLast) {
        std::fill(m_vecBase.begin() + uiFirst, m_vecBase.begin() + uiLast, ucLeft);
    };
    for (const AREA_PARTS_S &stArea : m_stParts.vecRemoved) {
        fnClear(stArea.uiStart, stArea.uiEnd);
    }
    PlaceOld();
    for (const PLACE_S &stPlace : m_vecPlaces) {
        fnClear(stPlace.pstArea->uiStart, stPlace.pstArea->uiEnd);
        if (stPlace.uiStart != stPlace.pstArea->uiStart) {
            fnClear(stPlace.uiKept, stPlace.pstArea->uiStart);
        }
    }
    PlaceNew();
    RequireRoom();
    std::vector<u8> vecOut = m_vecBase;
    vecOut.resize(std::max(size_t{m_stRoom.uiBytes}, vecOut.size()), ucLeft);
    for (const Area enArea : HeaderAreas()) {
        vecOut[HeaderOffsetByte(enArea)] = 0U;
    }
    for (const PLACE_S &stPlace : m_vecPlaces) {
        const AREA_PARTS_S &stArea = *stPlace.pstArea;
        vecOut[HeaderOffsetByte(stArea.enArea)] = static_cast<u8>(stPlace.uiStart / FRU_AREA_UNIT);
        if (stArea.uiStart != 0U) {
            std::copy(m_stParts.vecImage.begin() + stPlace.uiKept,
                      m_stParts.vecImage.begin() + stArea.uiStart, vecOut.begin() + stPlace.Begin());
        }
        std::copy(stArea.vecBytes.begin(), stArea.vecBytes.end(), vecOut.begin() + stPlace.uiStart);
    }
    vecOut[CHECKSUM_AT] = 0U;
    vecOut[CHECKSUM_AT] = ZeroChecksum(vecOut.data(), FRU_COMMON_HEADER_LEN);
    return vecOut;
}

} // namespace

std::vector<u8> PutTogether(const IMAGE_PARTS_S &stParts, const ROOM_S &stRoom)
{
    return Composer(stParts, stRoom).Compose();
}

std::vector<u8> EmptyImage(size_t uiBytes)
{
    std::vector<u8> vecImage(std::max(uiBytes, size_t{FRU_COMMON_HEADER_LEN}), ERASED);
    std::fill_n(vecImage.begin(), FRU_COMMON_HEADER_LEN, u8{0});
    vecImage[0] = 1U;
    vecImage[CHECKSUM_AT] = ZeroChecksum(vecImage.data(), FRU_COMMON_HEADER_LEN);
    return vecImage;
}
