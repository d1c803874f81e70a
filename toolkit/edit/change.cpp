// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/change.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/fields.h"

namespace {

constexpr u32 ROOM_MAX = 0xFFFFU;
constexpr u32 MULTIRECORDS_MAX = 0x7F8U; // the encoder counts no further, and lays out no more

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
                       Format(
                           " would be stored as %zu characters, and a length byte counts only to %u; 'fructl edit' "
                           "leaves it as it is",
                           strText.size(), FRU_FIELD_MAX_TEXT);
            }
        }
    }
    return "the record cannot be encoded" + Cause(TakeDiagnostics());
}

// The image as the library will make it in a buffer of the FRU's size.
ENCODED_S EncodeFor(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord)
{
    const std::string strCannot = stDevice.Title() + ": no image can be made with " + strWhat + ": ";
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (stView.IsMultiRecordAreaDamaged()) {
        Fail(ErrorClass::Damaged,
             strCannot + "its MultiRecords are damaged and could not be kept; 'fructl verify' tells where");
    }
    const u32 uiSize = stDevice.stInfo.usSize;
    ClearDiagnostics();
    const std::optional<ENCODED_S> optEncoded = EncodeRecord(stRecord, uiSize);
    if (!optEncoded.has_value()) {
        const std::string strWhy = WhyNotEncoded(stView);
        const std::optional<ENCODED_S> optWhole = EncodeRecord(stRecord, ROOM_MAX);
        FailRefused(strCannot + (optWhole.has_value() ? Format("it would take %u bytes, and the FRU has %u",
                                                               optWhole->uiLength, uiSize)
                                                      : strWhy));
    }
    return *optEncoded;
}

void RequireReadBack(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                     const IMAGE_S &stImage, bool bFixedSlots)
{
    ClearDiagnostics();
    const READ_BACK_S stBack = ReadBack(stImage, bFixedSlots, stRecord);
    if (stBack.uiStatus != FRU_OK) {
        FailRefused(stDevice.Title() + ": with " + strWhat +
                    " the image would not be readable any more: " + StatusText(stBack.uiStatus) +
                    Cause(TakeDiagnostics()) + "; an area must end before the FRU does");
    }
    if (!stBack.IsSame()) {
        FailRefused(stDevice.Title() + ": with " + strWhat +
                    " the image would read back differently: " + stBack.strWhy);
    }
}

PART_S PartOf(const DEVICE_S &stDevice, Source enSource, const std::vector<u8> &vecAfter)
{
    const std::optional<IMAGE_S> optNow = FindSource(stDevice, enSource);
    return {optNow.has_value() ? std::optional<std::vector<u8>>(optNow->vecBytes) : std::nullopt, vecAfter};
}

std::string WhyDiffers(const DEVICE_S &stDevice, Source enSource, const std::vector<u8> &vecAfter)
{
    try {
        const IMAGE_S stRead = ReadSource(stDevice, enSource);
        for (size_t i = 0; i < vecAfter.size(); i++) {
            if (stRead.vecBytes[i] != vecAfter[i]) {
                return Format(
                    "the %s holds other bytes than were to be written, from byte 0x%04zx on (0x%02x, "
                    "not 0x%02x)",
                    SourceName(enSource), i, stRead.vecBytes[i], vecAfter[i]);
            }
        }
        return "";
    } catch (const Error &stError) {
        return stError.what();
    }
}

} // namespace

const PART_S &CHANGE_S::Home() const
{
    return optEeprom.has_value() ? *optEeprom : *optCache;
}

std::string OUTCOME_S::Hint() const
{
    return vecSaid.empty() ? "" : " (the library says: " + vecSaid.front() + ")";
}

std::string OUTCOME_S::Cause() const
{
    return ::Cause(vecSaid);
}

std::optional<ENCODED_S> EncodeRecord(const Record &stRecord, u32 uiRoom)
{
    std::vector<u8> vecBuffer(uiRoom); // zeroed: the encoder does not write the fill of its areas
    const i32 iLength = FRU_ANALYZER_ConvertToArray(stRecord.Data(), uiRoom, vecBuffer.data());
    if (iLength < 0) {
        return std::nullopt;
    }
    return ENCODED_S{vecBuffer, static_cast<u32>(iLength)};
}

READ_BACK_S ReadBack(const IMAGE_S &stImage, bool bFixedSlots, const Record &stRecord)
{
    Record stRead;
    const u32 uiStatus = DecodeImage(stImage, bFixedSlots, stRead);
    if (uiStatus != FRU_OK) {
        return {uiStatus, ""};
    }
    const RECORD_VIEW_S stWanted = ViewRecord(*stRecord.Data());
    if (ViewRecord(*stRead.Data()) == stWanted) {
        return {uiStatus, ""};
    }
    size_t uiMultiRecords = 0;
    for (const MULTIRECORD_VIEW_S &stMultiRecord : stWanted.vecMultiRecords) {
        uiMultiRecords += FRU_MULTIRECORD_HEADER_LEN + stMultiRecord.vecData.size();
    }
    if (uiMultiRecords > MULTIRECORDS_MAX) {
        return {uiStatus, Format("its MultiRecords take %zu bytes, and an image is made with at most %u",
                                 uiMultiRecords, MULTIRECORDS_MAX)};
    }
    return {uiStatus, "it holds a custom field of one character, whose length byte is the mark that ends the "
                      "fields"};
}

CHANGE_S PlanRecord(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                    const CHANGE_S &stFirst)
{
    if (stDevice.IsDatabaseOnly()) {
        return PlanCachedRecord(stDevice, strWhat, stRecord, stDevice.HasFixedSlots());
    }
    const ENCODED_S stEncoded = EncodeFor(stDevice, strWhat, stRecord);
    const std::vector<u8> &vecBytes = stFirst.Home().vecAfter;
    std::vector<u8> vecAfter = vecBytes;
    std::copy_n(stEncoded.vecBuffer.begin(), stEncoded.uiLength, vecAfter.begin());
    const bool bFixedSlots = stDevice.HasFixedSlots();
    const std::vector<u8> &vecCached = stEncoded.vecBuffer;
    RequireReadBack(stDevice, strWhat, stRecord, {Source::Eeprom, vecAfter, vecAfter.size()}, bFixedSlots);
    RequireReadBack(stDevice, strWhat, stRecord, {Source::Cache, vecCached, vecCached.size()}, bFixedSlots);
    CHANGE_S stChange = {stDevice, PART_S{vecBytes, vecAfter}, PartOf(stDevice, Source::Cache, vecCached),
                         stEncoded.uiLength};
    if (stFirst.optCache.has_value()) {
        stChange.optCache->optBefore = stFirst.optCache->vecAfter;
    }
    return stChange;
}

CHANGE_S PlanCachedRecord(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                          bool bFixedSlots)
{
    const ENCODED_S stEncoded = EncodeFor(stDevice, strWhat, stRecord);
    const std::vector<u8> &vecCached = stEncoded.vecBuffer;
    RequireReadBack(stDevice, strWhat, stRecord, {Source::Cache, vecCached, vecCached.size()}, bFixedSlots);
    return {stDevice, std::nullopt, PartOf(stDevice, Source::Cache, stEncoded.vecBuffer), stEncoded.uiLength};
}

CHANGE_S PlanBytes(const DEVICE_S &stDevice, const std::vector<u8> &vecAfter, bool bCacheFollows)
{
    CHANGE_S stChange = {stDevice, std::nullopt, std::nullopt, 0U};
    if (!stDevice.IsDatabaseOnly()) {
        stChange.optEeprom = PartOf(stDevice, Source::Eeprom, vecAfter);
    }
    if (bCacheFollows || stDevice.IsDatabaseOnly()) {
        stChange.optCache = PartOf(stDevice, Source::Cache, vecAfter);
    }
    return stChange;
}

CHANGE_S PlanNothing(const DEVICE_S &stDevice)
{
    const std::vector<u8> vecBytes = ReadSource(stDevice, HomeOf(stDevice)).vecBytes;
    CHANGE_S stChange = {stDevice, std::nullopt, std::nullopt, 0U};
    (stDevice.IsDatabaseOnly() ? stChange.optCache : stChange.optEeprom) = PART_S{vecBytes, vecBytes};
    return stChange;
}

OUTCOME_S ApplyChange(const CHANGE_S &stChange, const std::string &strDoing, ProgressView *pstView,
                      const std::function<u32()> &fnWrite)
{
    const DEVICE_S &stDevice = stChange.stDevice;
    const Uninterrupted stUninterrupted;
    OUTCOME_S stOutcome = {FRU_OK, {}, "", true};
    ClearDiagnostics();
    {
        const WriteProgress stProgress(pstView, strDoing, stDevice.stInfo.usStartOffset, stChange.uiWritten);
        stOutcome.uiStatus = fnWrite();
    }
    stOutcome.vecSaid = TakeDiagnostics();
    // The library reports success also when a part of the write failed: only what is read back counts.
    if (stChange.optCache.has_value()) {
        stOutcome.bCacheHolds = WhyDiffers(stDevice, Source::Cache, stChange.optCache->vecAfter).empty();
    }
    const Source enHome = stChange.optEeprom.has_value() ? Source::Eeprom : Source::Cache;
    stOutcome.strHomeDiffers = WhyDiffers(stDevice, enHome, stChange.Home().vecAfter);
    return stOutcome;
}
