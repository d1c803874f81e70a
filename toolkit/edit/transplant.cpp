// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/transplant.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/multirecord.h"

namespace {

constexpr Area AREAS[] = {Area::Chassis, Area::Product};
constexpr u8 SUBTYPES[] = {FRU_MR_SUBTYPE_SYSTEM_NAME, FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID};
constexpr u8 RECORD_FORMAT_BITS = 0x7FU;

bool IsOf(const RecordBytes &vecRecord, u8 ucSubType)
{
    return vecRecord[0] == FRU_MR_TYPE_MANAGEMENT_ACCESS &&
           vecRecord[FRU_MULTIRECORD_HEADER_LEN] == ucSubType;
}

// Where it stands in the list; behind the last: nowhere.
size_t Find(const std::vector<RecordBytes> &vecRecords, u8 ucSubType)
{
    const auto itRecord =
        std::find_if(vecRecords.begin(), vecRecords.end(),
                     [ucSubType](const RecordBytes &vecRecord) { return IsOf(vecRecord, ucSubType); });
    return static_cast<size_t>(itRecord - vecRecords.begin());
}

RECORD_PARTS_S RecordsOf(IMAGE_PARTS_S &stParts)
{
    const AREA_PARTS_S *pstArea = stParts.Find(Area::MultiRecord);
    return pstArea == nullptr ? RECORD_PARTS_S() : TakeRecordsApart(pstArea->vecBytes);
}

// The record again, in a list of its own.
RecordBytes Copy(const RecordBytes &vecRecord, bool bLast)
{
    const std::vector<u8> vecData(vecRecord.begin() + FRU_MULTIRECORD_HEADER_LEN, vecRecord.end());
    if (ZeroChecksum(vecData.data(), vecData.size()) != vecRecord[3]) {
        Fail(ErrorClass::Damaged, std::string("its MultiRecord '") + ManagementAccessName(vecData[0]) +
                                      "' is damaged: the data's checksum is wrong");
    }
    return MakeRecord(vecRecord[0], static_cast<u8>(vecRecord[1] & RECORD_FORMAT_BITS), vecData, bLast);
}

class Transplanter
{
  public:
    Transplanter(const std::vector<u8> &vecFrom, const std::vector<u8> &vecTo)
        : m_stFrom(TakeApart(vecFrom)), m_stTo(TakeApart(vecTo))
    {}
    TRANSPLANT_S Make(const ROOM_S &stRoom);

  private:
    void MoveArea(Area enArea);
    void MoveRecords();

    IMAGE_PARTS_S m_stFrom;
    IMAGE_PARTS_S m_stTo;
    TRANSPLANT_S m_stMade;
};

void Transplanter::MoveArea(Area enArea)
{
    const AREA_PARTS_S *pstFrom = m_stFrom.Find(enArea);
    AREA_PARTS_S *pstTo = m_stTo.Find(enArea);
    if (pstFrom == nullptr) {
        if (pstTo != nullptr) {
            m_stMade.vecNotes.push_back(std::string("the ") + AreaName(enArea) +
                                        " stays as it is: there is none to take its place");
        }
        return;
    }
    (void)TakeInfoApart(*pstFrom); // fails when it is damaged
    m_stMade.vecMoved.emplace_back(AreaName(enArea));
    if (pstTo == nullptr) {
        m_stTo.vecAreas.push_back({enArea, 0U, 0U, pstFrom->vecBytes});
    } else {
        pstTo->vecBytes = pstFrom->vecBytes;
    }
}

void Transplanter::MoveRecords()
{
    const RECORD_PARTS_S stFrom = RecordsOf(m_stFrom);
    RECORD_PARTS_S stTo = RecordsOf(m_stTo);
    bool bMoved = false;
    for (const u8 ucSubType : SUBTYPES) {
        const size_t uiFrom = Find(stFrom.vecRecords, ucSubType);
        const size_t uiTo = Find(stTo.vecRecords, ucSubType);
        const bool bThere = uiTo < stTo.vecRecords.size();
        const char *pcName = ManagementAccessName(ucSubType);
        if (uiFrom == stFrom.vecRecords.size()) {
            if (bThere) {
                m_stMade.vecNotes.push_back(std::string("the MultiRecord '") + pcName +
                                            "' stays as it is: there is none to take its place");
            }
            continue;
        }
        bMoved = true;
        m_stMade.vecMoved.emplace_back(pcName);
        const RecordBytes &vecFrom = stFrom.vecRecords[uiFrom];
        if (bThere) {
            RecordBytes &vecTo = stTo.vecRecords[uiTo];
            vecTo = Copy(vecFrom, (vecTo[1] & FRU_MULTIRECORD_END_OF_LIST) != 0U);
        } else if (!stTo.bEnds && !stTo.vecRest.empty()) {
            Fail(ErrorClass::Damaged, "its MultiRecords are damaged, so that none can come behind them");
        } else {
            stTo.vecRecords.push_back(Copy(vecFrom, true));
        }
    }
    if (bMoved) {
        if (m_stTo.Find(Area::MultiRecord) == nullptr) {
            m_stTo.vecAreas.push_back({Area::MultiRecord, 0U, 0U, {}});
        }
        m_stTo.Find(Area::MultiRecord)->vecBytes = PutRecordsTogether(stTo);
    }
}

TRANSPLANT_S Transplanter::Make(const ROOM_S &stRoom)
{
    for (const Area enArea : AREAS) {
        MoveArea(enArea);
    }
    MoveRecords();
    if (m_stMade.vecMoved.empty()) {
        FailRefused(
            "it says nothing of its server: it has no chassis and no product area, and no MultiRecord with the "
            "system's name or unique ID");
    }
    m_stMade.vecAfter = PutTogether(m_stTo, stRoom);
    return m_stMade;
}

} // namespace

TRANSPLANT_S Transplant(const std::vector<u8> &vecFrom, const std::vector<u8> &vecTo, const ROOM_S &stRoom)
{
    return Transplanter(vecFrom, vecTo).Make(stRoom);
}
