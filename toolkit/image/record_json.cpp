// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/record_json.h"

#include <cstddef>
#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/text.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/names.h"
#include "toolkit/image/record_words.h"

using nlohmann::json;

namespace {

constexpr size_t TEXT_MAX = FRU_FIELD_MAX_TEXT;
constexpr size_t CUSTOM_FIELDS_MAX = 255U;

// A text as the record keeps it. bListed: it stands in a list of fields, which the byte 0xc1 would end.
std::string Latin1Text(const JsonNode &stNode, bool bListed)
{
    const std::string strAccepted =
        Format("accepted: a text of %s%zu Latin-1 characters", bListed ? "0 or 2 to " : "0 to ", TEXT_MAX);
    if (!stNode.Value().is_string()) {
        stNode.Refuse("not a text; " + strAccepted);
    }
    const std::optional<std::string> optText = Utf8ToLatin1(stNode.Value().get_ref<const std::string &>());
    if (!optText.has_value()) {
        stNode.Refuse("holds a character beyond U+00FF, which the format has no byte for; " + strAccepted);
    }
    if (optText->find('\0') != std::string::npos) {
        stNode.Refuse("holds a NUL, where every reader ends the text; " + strAccepted + " without it");
    }
    if (optText->size() > TEXT_MAX) {
        stNode.Refuse(
            Format("has %zu characters, but a length byte counts only to %zu; ", optText->size(), TEXT_MAX) +
            strAccepted);
    }
    if (bListed && optText->size() == 1U) {
        stNode.Refuse(
            "has one character, and its length byte would be 0xc1, the mark that ends the fields; " +
            strAccepted);
    }
    return *optText;
}

void FillCustomFields(const JsonNode &stArea, const AREA_ROW_S &stRow, Record &stRecord)
{
    const char *pcKey = FieldKey(Field::Custom);
    if (!stRow.HasCustomFields() || !stArea.Has(pcKey)) {
        return;
    }
    const std::vector<JsonNode> vecFields = stArea.Elements(pcKey);
    if (vecFields.size() > CUSTOM_FIELDS_MAX) {
        stArea.RefuseMember(pcKey,
                            Format("%zu fields; accepted: 0 to %zu", vecFields.size(), CUSTOM_FIELDS_MAX));
    }
    if (vecFields.empty()) {
        return;
    }
    u8 **ppucFields = static_cast<u8 **>(HeapBuffer(vecFields.size(), sizeof(u8 *)));
    // The record owns the array from here on, also when a field of it is refused.
    stRecord.Store(stRow.stCustom.uiOffset, ppucFields);
    *stRecord.At(stRow.stCustom.uiCount) = static_cast<u8>(vecFields.size());
    for (size_t i = 0; i < vecFields.size(); i++) {
        const std::string strText = Latin1Text(vecFields[i], true);
        ppucFields[i] = HeapText(strText, strText.size() + 1U);
    }
}

// A text that only says what a number beside it says must agree with it, or an edited one would be lost.
void RequireAgreement(const JsonNode &stObject, const char *pcKey, const std::string &strExpected,
                      const char *pcDecisive)
{
    if (stObject.Has(pcKey) && stObject.Member(pcKey).Value() != json(strExpected)) {
        stObject.RefuseMember(pcKey, "contradicts " + std::string(pcDecisive) + ", which says '" +
                                         EscapeText(strExpected) + "'; change both or leave this one out");
    }
}

void FillText(const JsonNode &stArea, const AREA_ROW_S &stRow, const FIELD_ROW_S &stField, Record &stRecord)
{
    const char *pcKey = FieldKey(stField.enField);
    // A single character does no harm where no list of fields follows.
    const std::string strText =
        stArea.Has(pcKey) ? Latin1Text(stArea.Member(pcKey), stRow.HasCustomFields()) : "";
    stRecord.Store(stField.uiOffset, HeapText(strText, strText.size() + 1U));
}

u8 LanguageOf(const JsonNode &stArea, const char *pcKey, const char *pcNumberKey)
{
    if (stArea.Has(pcNumberKey)) {
        const u8 ucCode = static_cast<u8>(stArea.Number(pcNumberKey, 0U, 0xFFU));
        RequireAgreement(stArea, pcKey, LanguageName(ucCode), pcNumberKey);
        return ucCode;
    }
    if (!stArea.Has(pcKey)) {
        return 0U;
    }
    for (u32 uiCode = 0; uiCode <= 0xFFU; uiCode++) {
        if (stArea.Member(pcKey).Value() == json(LanguageName(static_cast<u8>(uiCode)))) {
            return static_cast<u8>(uiCode);
        }
    }
    stArea.RefuseMember(pcKey, "unknown; accepted: \"English\" or \"code N\" with N of 1 to 255, or the "
                               "number as " +
                                   std::string(pcNumberKey));
}

void FillMfgDate(const JsonNode &stArea, const FIELD_ROW_S &stField, bool bWrap, Record &stRecord)
{
    const char *pcKey = FieldKey(stField.enField);
    const char *pcNumberKey = NumberKey(stField.enField);
    const bool bText = stArea.Has(pcKey) && !stArea.Member(pcKey).Value().is_null();
    const std::string strDate = bText ? stArea.Text(pcKey, 1U, TEXT_MAX) : MFG_DATE_UNSPECIFIED;
    const MFG_DATE_S stDate = ParseMfgDate(strDate, bWrap);
    const bool bDate = stDate.strWhyNot.empty() && stDate.bExact;
    u32 uiMinutes = stDate.uiMinutes;
    if (stArea.Has(pcNumberKey)) {
        uiMinutes = stArea.Number(pcNumberKey, 0U, MFG_DATE_MAX);
        if (!bDate || uiMinutes != stDate.uiMinutes) {
            RequireAgreement(stArea, pcKey, MfgDateText(uiMinutes), pcNumberKey);
        }
    } else if (!bDate) {
        stArea.RefuseMember(pcKey, "'" + EscapeText(strDate) + "' is refused: " +
                                       (stDate.strWhyNot.empty() ? "it would not read back as it is written"
                                                                 : stDate.strWhyNot) +
                                       "; accepted: " + MFG_DATES_ACCEPTED +
                                       " (or null), or the minutes since 1996-01-01 as " + pcNumberKey);
    }
    StoreMfgDate(uiMinutes, stRecord.At(stField.uiOffset));
}

void FillChassisType(const JsonNode &stArea, const FIELD_ROW_S &stField, Record &stRecord)
{
    constexpr size_t BUFFER = 64U;
    const char *pcKey = FieldKey(stField.enField);
    const std::vector<std::string> vecNames = ChassisTypeNames();
    const std::string strName = stArea.Text(pcKey, 1U, BUFFER - 1U);
    if (std::find(vecNames.begin(), vecNames.end(), strName) == vecNames.end()) {
        stArea.RefuseMember(pcKey, "'" + EscapeText(strName) +
                                       "' is no chassis type; accepted: " + Join(vecNames, ", "));
    }
    stRecord.Store(stField.uiOffset, HeapText(strName, BUFFER));
}

// What is no text, or one of a list.
void FillCoded(const JsonNode &stArea, const FIELD_ROW_S &stField, bool bWrap, Record &stRecord)
{
    switch (stField.enKind) {
    case Kind::ChassisType:
        FillChassisType(stArea, stField, stRecord);
        break;
    case Kind::Language:
        *stRecord.At(stField.uiOffset) =
            LanguageOf(stArea, FieldKey(stField.enField), NumberKey(stField.enField));
        break;
    case Kind::MfgDate:
        FillMfgDate(stArea, stField, bWrap, stRecord);
        break;
    default:
        break;
    }
}

void FillArea(const JsonNode &stDocument, const AREA_ROW_S &stRow, bool bWrap, Record &stRecord)
{
    const char *pcArea = AreaKey(stRow.enArea);
    if (!stDocument.Has(pcArea)) {
        return;
    }
    const JsonNode stArea = stDocument.Member(pcArea);
    std::vector<const char *> vecNames;
    for (const FIELD_ROW_S &stField : stRow.vecFields) {
        vecNames.push_back(FieldKey(stField.enField));
        if (NumberKey(stField.enField) != nullptr) {
            vecNames.push_back(NumberKey(stField.enField));
        }
    }
    if (stRow.HasCustomFields()) {
        vecNames.push_back(FieldKey(Field::Custom));
    }
    stArea.RequireObject(vecNames);
    stRecord.AddArea(stRow);
    for (const FIELD_ROW_S &stField : stRow.vecFields) {
        if (stField.enKind == Kind::Text) {
            FillText(stArea, stRow, stField, stRecord);
        }
    }
    FillCustomFields(stArea, stRow, stRecord);
    for (const FIELD_ROW_S &stField : stRow.vecFields) {
        FillCoded(stArea, stField, bWrap, stRecord);
    }
}

void FillMultiRecord(const JsonNode &stNode, bool bLast, FRU_MULTIRECORD_S &stRecord)
{
    stNode.RequireObject({"type", "formatVersion", "name", "text", "data", "fields", "notDecoded"});
    stRecord.ucRecordTypeID = static_cast<u8>(stNode.Number("type", 0U, 0xFFU));
    const u32 uiFormat = stNode.Number("formatVersion", 0U, 0x0FU, 2U);
    stRecord.ucRecordFormat = static_cast<u8>(uiFormat | (bLast ? FRU_MULTIRECORD_END_OF_LIST : 0U));
    const JsonNode stData = stNode.Member("data");
    const std::optional<std::vector<u8>> optData =
        stData.Value().is_string() ? ParseHexBytes(stData.Value().get_ref<const std::string &>())
                                   : std::nullopt;
    if (!optData.has_value() || optData->empty() || optData->size() > 0xFFU) {
        stData.Refuse("refused; accepted: 1 to 255 bytes as a text of two hex digits each");
    }
    u8 *pucData = HeapText(std::string(optData->begin(), optData->end()), optData->size());
    stRecord.pucRecordData = pucData;
    stRecord.ucRecordLength = static_cast<u8>(optData->size());
    SealMultiRecord(stRecord);
}

// What only says what type and data say.
void RequireRecordAgreement(const JsonNode &stNode, const MULTIRECORD_VIEW_S &stRecord)
{
    // Documents may name a record by its type alone.
    const bool bByType =
        stNode.Has("name") && stNode.Member("name").Value() == json(MultiRecordTypeName(stRecord.ucType));
    if (!bByType) {
        RequireAgreement(stNode, "name", stRecord.strName, "type and data");
    }
    RequireAgreement(stNode, "text", Latin1ToUtf8(stRecord.strText), "data");
    const RECORD_WORDS_S stWords = ReadRecord(stRecord.ucType, stRecord.vecData);
    if (stNode.Has("fields") && stNode.Member("fields").Value() != json::parse(stWords.stFields.dump())) {
        stNode.RefuseMember("fields", "contradicts data, which is what is encoded; change data and leave "
                                      "this one out");
    }
}

// What its data says, beside the data.
Json MultiRecordJson(const MULTIRECORD_VIEW_S &stRecord)
{
    const RECORD_WORDS_S stWords = ReadRecord(stRecord.ucType, stRecord.vecData);
    Json stJson = {{"type", stRecord.ucType},
                   {"formatVersion", stRecord.ucFormatVersion},
                   {"name", stRecord.strName},
                   {"text", Latin1ToUtf8(stRecord.strText)},
                   {"data", HexBytes(stRecord.vecData)}};
    if (!stWords.stFields.is_null()) {
        stJson["fields"] = stWords.stFields;
    }
    if (!stWords.strWhyNot.empty()) {
        stJson["notDecoded"] = stWords.strWhyNot;
    }
    return stJson;
}

void FillMultiRecords(const JsonNode &stDocument, Record &stRecord)
{
    if (stDocument.Has("multiRecordsDamaged")) {
        stDocument.RefuseMember(
            "multiRecordsDamaged",
            "the document is of an image whose MultiRecords cannot be read; accepted: the "
            "member left out, and the records written down in multiRecords");
    }
    if (!stDocument.Has("multiRecords")) {
        return;
    }
    const std::vector<JsonNode> vecNodes = stDocument.Elements("multiRecords");
    if (vecNodes.size() > FRU_MULTIRECORD_MAX) {
        stDocument.RefuseMember(
            "multiRecords", Format("%zu records; accepted: 0 to %u", vecNodes.size(), FRU_MULTIRECORD_MAX));
    }
    for (size_t i = 0; i < vecNodes.size(); i++) {
        MarkArea(*stRecord.Data(), Area::MultiRecord);
        FillMultiRecord(vecNodes[i], i + 1U == vecNodes.size(), stRecord.Data()->astMultiRecord[i]);
    }
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    for (size_t i = 0; i < vecNodes.size(); i++) {
        RequireRecordAgreement(vecNodes[i], stView.vecMultiRecords[i]);
    }
}

Json AreaJson(const AREA_VIEW_S &stArea)
{
    Json stJson = Json::object();
    for (const FIELD_VIEW_S &stField : stArea.vecFields) {
        const bool bUnspecified = stField.enField == Field::MfgDate && stField.optNumber == 0U;
        stJson[FieldKey(stField.enField)] =
            bUnspecified ? Json(nullptr) : Json(Latin1ToUtf8(stField.strText));
        if (stField.optNumber.has_value()) {
            stJson[NumberKey(stField.enField)] = *stField.optNumber;
        }
    }
    if (FindAreaRow(stArea.enArea)->HasCustomFields()) {
        stJson[FieldKey(Field::Custom)] = Json::array();
    }
    for (const std::string &strField : stArea.vecCustomFields) {
        stJson[FieldKey(Field::Custom)].push_back(Latin1ToUtf8(strField));
    }
    return stJson;
}

} // namespace

Json RecordJson(const RECORD_VIEW_S &stView)
{
    Json stJson = Json::object();
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        stJson[AreaKey(stArea.enArea)] = AreaJson(stArea);
    }
    stJson["multiRecords"] = Json::array();
    for (const MULTIRECORD_VIEW_S &stRecord : stView.vecMultiRecords) {
        stJson["multiRecords"].push_back(MultiRecordJson(stRecord));
    }
    if (stView.IsMultiRecordAreaDamaged()) {
        stJson["multiRecordsDamaged"] = true;
    }
    return stJson;
}

void BuildRecord(const JsonNode &stDocument, Record &stRecord, bool bWrap)
{
    // "device", "file" and the last two tell where a shown record came from and are no part of it.
    stDocument.RequireObject({"device", "file", "internalUse", "chassis", "board", "product", "multiRecords",
                              "multiRecordsDamaged", "source", "sourcesDiffer"});
    for (const AREA_ROW_S &stRow : AreaRows()) {
        FillArea(stDocument, stRow, bWrap, stRecord);
    }
    FillMultiRecords(stDocument, stRecord);
}
