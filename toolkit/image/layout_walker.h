// SPDX-License-Identifier: Apache-2.0
// The walk behind WalkImage(): frame and areas in layout.cpp, fields in layout_fields.cpp, MultiRecords in
// layout_records.cpp.
#ifndef TOOLKIT_IMAGE_LAYOUT_WALKER_H
#define TOOLKIT_IMAGE_LAYOUT_WALKER_H

#include <string>
#include <vector>

#include "lib_fru.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/layout.h"

class LayoutWalker
{
  public:
    LayoutWalker(const std::vector<u8> &vecImage, size_t uiStored, bool bFixedSlots, Damage enDamage)
        : m_vecImage(vecImage), m_uiLength(static_cast<u32>(vecImage.size())),
          m_uiStored(static_cast<u32>(uiStored)), m_bFixedSlots(bFixedSlots),
          m_bPass(enDamage == Damage::Passed)
    {}
    IMAGE_LAYOUT_S Walk();

  private:
    // Problem texts go to the span that they are about and to the list of findings.
    void Span(u32 uiOffset, u32 uiLength, const FIELD_ID_S &stField, const std::string &strText,
              const std::string &strProblem = "", const NOTE_S &stNote = {});
    void Finding(u32 uiOffset, Area enArea, const std::string &strWhat, bool bWarning = false);
    bool Header();
    bool IsCutAfter(u32 uiStart, Area enArea);
    void InternalUse(u32 uiStart, u32 uiNextArea);
    void Info(const AREA_ROW_S &stArea, u32 uiStart, u32 uiNextArea);
    u32 InfoEnd(const AREA_ROW_S &stArea, u32 uiStart, u32 uiNextArea);
    void TextFields(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiEnd);
    u32 InfoPrefix(const AREA_ROW_S &stArea, u32 uiStart, u32 uiEnd);
    u32 TextField(const FIELD_ID_S &stField, u32 uiOffset, u32 uiEnd, bool *pbGood);
    void CustomFields(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiEnd);
    void Fill(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiChecksum);
    void CheckSlots(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiCount);
    void MultiRecords(u32 uiStart);
    bool MultiRecord(u32 uiOffset, u32 *puiNext);
    bool PassRecord(u32 uiOffset, u32 *puiNext);
    void RecordRemarks(u32 uiOffset);
    void Areas();
    void CheckOverlaps();
    void FillUnused();

    const std::vector<u8> &m_vecImage;
    const u32 m_uiLength; // what the decoder is given: an area must end before it does
    const u32 m_uiStored; // the image's own bytes: nothing of it lies behind them
    const bool m_bFixedSlots;
    const bool m_bPass;  // what no reader takes is told of and passed, not the end of the walk
    u8 m_ucLanguage = 0; // of the area that is walked; English where it has none
    IMAGE_LAYOUT_S m_stLayout;
};

#endif
