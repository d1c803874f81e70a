// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/layout_walker.h"

#include <algorithm>

#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/multirecord.h"

bool LayoutWalker::MultiRecord(u32 uiOffset, u32 *puiNext)
{
    const FIELD_ID_S stHeader = {Area::MultiRecord, Field::RecordHeader, m_stLayout.uiMultiRecords};
    const FIELD_ID_S stBody = {Area::MultiRecord, Field::RecordData, m_stLayout.uiMultiRecords};
    if (uiOffset + FRU_MULTIRECORD_HEADER_LEN > m_uiStored) {
        Span(uiOffset, m_uiStored - uiOffset, stHeader, "",
             "the image ends inside it (no record before it says that it is the last)");
        return false;
    }
    const u8 *pucRecord = &m_vecImage[uiOffset];
    const u8 ucSum = ByteSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN);
    Span(uiOffset, FRU_MULTIRECORD_HEADER_LEN, stHeader,
         Format("type 0x%02x %s, %u bytes%s", pucRecord[0], MultiRecordTypeName(pucRecord[0]), pucRecord[2],
                (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) != 0U ? ", last record" : ""),
         ucSum == 0U ? ""
                     : Format("header checksum 0x%02x is wrong; the bytes want 0x%02x", pucRecord[4],
                              static_cast<u8>(pucRecord[4] - ucSum)));
    if (ucSum != 0U) {
        return m_bPass && PassRecord(uiOffset, puiNext);
    }
    const u32 uiData = uiOffset + FRU_MULTIRECORD_HEADER_LEN;
    const u8 ucLength = pucRecord[2];
    *puiNext = uiData + ucLength;
    if (*puiNext > m_uiStored) {
        Span(uiData, m_uiStored - uiData, stBody, "",
             Format("%u bytes long, but the image ends at 0x%04x", ucLength, m_uiStored));
        return false;
    }
    if (ucLength == 0U) {
        Finding(uiOffset + 2U, Area::MultiRecord,
                FieldName({Area::MultiRecord, Field::OneRecord, stBody.uiIndex}) +
                    " has no data; readers refuse such a record");
        return false;
    }
    const u8 ucWanted = ZeroChecksum(pucRecord + FRU_MULTIRECORD_HEADER_LEN, ucLength);
    const u8 *pucData = pucRecord + FRU_MULTIRECORD_HEADER_LEN;
    const char *pcSubType =
        pucRecord[0] == FRU_MR_TYPE_MANAGEMENT_ACCESS ? ManagementAccessName(pucData[0]) : nullptr;
    const std::string strText = MultiRecordText(pucRecord[0], pucData, ucLength);
    Span(uiData, ucLength, stBody, pcSubType != nullptr ? std::string(pcSubType) + ": " + strText : "",
         ucWanted == pucRecord[3]
             ? ""
             : Format("the data's checksum is 0x%02x, but the header says 0x%02x", ucWanted, pucRecord[3]));
    RecordRemarks(uiOffset);
    m_stLayout.uiMultiRecords++;
    return (m_bPass || ucWanted == pucRecord[3]) && (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) == 0U;
}

// Behind a record whose header is damaged: where the next one begins, if there is one. Its length may be the
// damage, so a header and data with good checksums are looked for from there, else byte by byte.
bool LayoutWalker::PassRecord(u32 uiOffset, u32 *puiNext)
{
    const auto fnIsRecord = [&](u32 uiStart) {
        const u32 uiData = uiStart + FRU_MULTIRECORD_HEADER_LEN;
        if (uiData > m_uiStored || ByteSum(&m_vecImage[uiStart], FRU_MULTIRECORD_HEADER_LEN) != 0U) {
            return false;
        }
        const u8 *pucRecord = &m_vecImage[uiStart];
        const u8 ucLength = pucRecord[2];
        return ucLength != 0U && uiData + ucLength <= m_uiStored &&
               ZeroChecksum(pucRecord + FRU_MULTIRECORD_HEADER_LEN, ucLength) == pucRecord[3];
    };
    m_stLayout.uiMultiRecords++;
    const u32 uiTold = uiOffset + FRU_MULTIRECORD_HEADER_LEN + m_vecImage[uiOffset + 2U];
    u32 uiNext = uiTold;
    for (u32 i = uiOffset + 1U; !fnIsRecord(uiNext); i++) {
        if (i + FRU_MULTIRECORD_HEADER_LEN > m_uiStored) {
            return false;
        }
        uiNext = i;
    }
    const u32 uiData = uiOffset + FRU_MULTIRECORD_HEADER_LEN;
    if (uiNext > uiData) {
        Span(uiData, uiNext - uiData, {Area::MultiRecord, Field::RecordData, m_stLayout.uiMultiRecords - 1U},
             "");
    }
    *puiNext = uiNext;
    return true;
}

// What no reader refuses, and still is not as the record's own type has it.
void LayoutWalker::RecordRemarks(u32 uiOffset)
{
    constexpr u8 FORMAT = 2U;
    constexpr u8 FORMAT_BITS = 0x0FU;
    const u8 *pucRecord = &m_vecImage[uiOffset];
    const std::string strRecord =
        FieldName({Area::MultiRecord, Field::OneRecord, m_stLayout.uiMultiRecords}) + ": ";
    if (IsReservedMultiRecord(pucRecord[0])) {
        Finding(uiOffset, Area::MultiRecord, strRecord + Format("type 0x%02x is reserved", pucRecord[0]),
                true);
    }
    if ((pucRecord[1] & FORMAT_BITS) != FORMAT) {
        Finding(uiOffset + 1U, Area::MultiRecord,
                strRecord + Format("format version %u, should be 2", pucRecord[1] & FORMAT_BITS), true);
    }
    const u32 uiWanted = MultiRecordLength(pucRecord[0], pucRecord[FRU_MULTIRECORD_HEADER_LEN]);
    if (uiWanted != 0U && uiWanted != pucRecord[2]) {
        Finding(uiOffset + 2U, Area::MultiRecord,
                strRecord + Format("%u bytes long, but its type has %u", pucRecord[2], uiWanted), true);
    }
}

void LayoutWalker::MultiRecords(u32 uiStart)
{
    u32 uiOffset = uiStart;
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; i++) {
        u32 uiNext = uiOffset;
        if (!MultiRecord(uiOffset, &uiNext)) {
            return;
        }
        uiOffset = uiNext;
    }
    Finding(uiOffset, Area::MultiRecord,
            Format("%u records and none says that it is the last; no more are read", FRU_MULTIRECORD_MAX));
}
