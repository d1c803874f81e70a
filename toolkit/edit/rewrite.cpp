#include "toolkit/edit/rewrite.h"

#include <algorithm>
#include <map>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/layout.h"

namespace {

constexpr u32 ROOM_MAX = 0xFFFFU;

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

// A text that the library cannot store again: it writes every text with 8 bits a character, so that binary
// data takes twice its room.
std::string WhyNotEncoded(const RECORD_VIEW_S &stView)
{
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        std::vector<std::pair<FIELD_ID_S, std::string>> vecTexts;
        for (const FIELD_VIEW_S &stField : stArea.vecFields) {
            vecTexts.push_back({{stArea.enArea, stField.enField}, stField.strText});
        }
        for (u32 i = 0; i < stArea.vecCustomFields.size(); i++) {
            vecTexts.push_back({{stArea.enArea, Field::Custom, i}, stArea.vecCustomFields[i]});
        }
        for (const auto &[stField, strText] : vecTexts) {
            if (strText.size() > FRU_FIELD_MAX_TEXT) {
                return "the " + FieldName(stField) + " of its " + AreaName(stArea.enArea) +
                       Format(" would be stored as %zu characters, and a length byte counts only to %u",
                              strText.size(), FRU_FIELD_MAX_TEXT);
            }
        }
    }
    return "the record cannot be encoded" + Cause();
}

} // namespace

std::string Cause()
{
    for (const std::string &strText : TakeDiagnostics()) {
        if (strText.compare(0, 23U, "Not default type format") != 0) {
            return " (the library says: " + strText + ")";
        }
    }
    return "";
}

std::vector<u8> EncodeAnew(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord)
{
    const std::string strCannot = stDevice.Title() + ": no image can be made with " + strWhat + ": ";
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (stView.IsMultiRecordAreaDamaged()) {
        Fail(strCannot + "its MultiRecords are damaged and could not be kept; 'fructl verify' tells where");
    }
    const u16 usSize = stDevice.stInfo.usSize;
    std::vector<u8> vecBytes(ROOM_MAX); // zeroed: the encoder does not write the fill of its areas
    ClearDiagnostics();
    i32 iLength = FRU_ANALYZER_ConvertToArray(stRecord.Data(), usSize, vecBytes.data());
    if (iLength < 0) {
        const std::string strWhy = WhyNotEncoded(stView);
        iLength = FRU_ANALYZER_ConvertToArray(stRecord.Data(), ROOM_MAX, vecBytes.data());
        Fail(strCannot + (iLength < 0
                              ? strWhy
                              : Format("it would take %d bytes, and the FRU has %u", iLength, u32{usSize})));
    }
    vecBytes.resize(static_cast<size_t>(iLength));
    return vecBytes;
}

std::vector<u8> Overlay(std::vector<u8> vecBytes, const std::vector<u8> &vecEncoded)
{
    std::copy(vecEncoded.begin(), vecEncoded.end(), vecBytes.begin());
    return vecBytes;
}

void RequireReadable(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                     const std::vector<u8> &vecBytes)
{
    Record stRead;
    ClearDiagnostics();
    const u32 uiRet =
        DecodeImage({Source::Eeprom, vecBytes, vecBytes.size()}, stDevice.HasFixedSlots(), stRead);
    if (uiRet != FRU_OK) {
        Fail(stDevice.Title() + ": with " + strWhat + " the image would not be readable any more: " +
             StatusText(uiRet) + Cause() + "; an area must end before the FRU does");
    }
    if (ViewRecord(*stRead.Data()) != ViewRecord(*stRecord.Data())) {
        Fail(stDevice.Title() + ": with " + strWhat +
             " the image would read back differently: it holds a custom field of one character, whose length "
             "byte is the mark that ends the fields");
    }
}

REWRITE_S CompareImages(const DEVICE_S &stDevice, const IMAGE_S &stOld, const std::vector<u8> &vecNew,
                        const IsMeant &fnMeant)
{
    REWRITE_S stRewrite;
    CompareContents(ContentsOf(stDevice, stOld.vecBytes), ContentsOf(stDevice, vecNew), fnMeant, stRewrite);
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    if (!stDevice.IsDatabaseOnly() && IsCacheTrusted(stDevice) && optCached.has_value()) {
        const std::optional<size_t> optAt = FirstDifference(stOld, *optCached, stDevice.HasFixedSlots());
        if (optAt.has_value()) {
            stRewrite.vecLosses.insert(stRewrite.vecLosses.begin(),
                                       Format("the EEPROM's own image from byte 0x%04zx on, where the cached "
                                              "one, from which the new one is made, differs",
                                              *optAt));
        }
    }
    return stRewrite;
}
