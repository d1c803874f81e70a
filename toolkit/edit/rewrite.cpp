// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/rewrite.h"

#include <algorithm>
#include <map>

#include "toolkit/base/text.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/layout.h"

namespace {

struct CONTENT_S
{
    std::string strText;
    NOTE_S stNote;
};

// Told by area, and there by name.
struct BY_NAME_S
{
    bool operator()(const FIELD_ID_S &stLeft, const FIELD_ID_S &stRight) const
    {
        return std::make_pair(stLeft.enArea, FieldName(stLeft)) <
               std::make_pair(stRight.enArea, FieldName(stRight));
    }
};
using Contents = std::map<FIELD_ID_S, CONTENT_S, BY_NAME_S>;

// What an image says, field by field, and how it is stored; without what only holds the image together.
Contents ContentsOf(const DEVICE_S &stDevice, const std::vector<u8> &vecBytes)
{
    Contents mapContents;
    const IMAGE_LAYOUT_S stLayout = WalkImage(vecBytes, vecBytes.size(), stDevice.HasFixedSlots());
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        const FIELD_ID_S &stField = stSpan.stField;
        if (stField.enArea == Area::Header || stField.enArea == Area::Unused || IsFrame(stField.enField)) {
            continue;
        }
        // MultiRecords are copied, so their bytes count; so do bytes that are in no field.
        const bool bRaw = stField.enArea == Area::MultiRecord || stField.enField == Field::MoreData;
        const u8 *pucBytes = vecBytes.data() + stSpan.uiOffset;
        mapContents[stField] = {bRaw ? std::string(pucBytes, pucBytes + stSpan.uiLength) : stSpan.strText,
                                stSpan.stNote.enNote == Note::Empty ? NOTE_S() : stSpan.stNote};
    }
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        if (stFinding.enArea == Area::InternalUse) {
            mapContents[{Area::InternalUse, Field::OpaqueData}] = {stFinding.strWhat, {}};
        }
    }
    return mapContents;
}

// The library writes the whole image anew, so other fields may change with it.
void CompareContents(const Contents &mapOld, const Contents &mapNew, const IsMeant &fnMeant,
                     REWRITE_S &stRewrite)
{
    for (const auto &[stField, stOld] : mapOld) {
        if (fnMeant(stField)) {
            continue;
        }
        const std::string strWhat = std::string(AreaName(stField.enArea)) + ", " + FieldName(stField);
        const auto itNew = mapNew.find(stField);
        const bool bKept = itNew != mapNew.end() && itNew->second.strText == stOld.strText;
        if (!bKept || stOld.stNote.enNote == Note::BcdPlus) {
            stRewrite.vecLosses.push_back(strWhat +
                                          (stOld.stNote.IsTold() ? " (" + NoteText(stOld.stNote) + ")" : ""));
        } else if (stOld.stNote != itNew->second.stNote) {
            stRewrite.vecNotes.push_back(strWhat + " is stored as 8-bit text from now on, not as " +
                                         NoteText(stOld.stNote));
        }
    }
    std::map<Area, size_t> mapAdded;
    for (const auto &itNew : mapNew) {
        const FIELD_ID_S &stField = itNew.first;
        if (fnMeant(stField)) {
            continue;
        }
        const bool bArea = std::any_of(mapOld.begin(), mapOld.end(), [&](const auto &itOld) {
            return itOld.first.enArea == stField.enArea;
        });
        if (!bArea) {
            mapAdded[stField.enArea]++;
        } else if (mapOld.count(stField) == 0U) {
            stRewrite.vecNotes.push_back(std::string(AreaName(stField.enArea)) + ": an empty " +
                                         FieldName(stField) + " is added");
        }
    }
    for (const auto &itAdded : mapAdded) {
        stRewrite.vecNotes.push_back(std::string("a ") + AreaName(itAdded.first) + " is added");
    }
}

} // namespace

REWRITE_S CompareImages(const DEVICE_S &stDevice, const IMAGE_S &stOld, const std::vector<u8> &vecNew,
                        const IsMeant &fnMeant)
{
    REWRITE_S stRewrite;
    CompareContents(ContentsOf(stDevice, stOld.vecBytes), ContentsOf(stDevice, vecNew), fnMeant, stRewrite);
    const std::optional<size_t> optAt = CacheDifference(stDevice, stOld);
    if (optAt.has_value()) {
        stRewrite.vecLosses.insert(stRewrite.vecLosses.begin(),
                                   Format("the EEPROM's own image from byte 0x%04zx on, where the cached "
                                          "one, from which the new one is made, differs ('fructl "
                                          "recover' puts both in order)",
                                          *optAt));
    }
    return stRewrite;
}
