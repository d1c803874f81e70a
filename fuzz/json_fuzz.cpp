// SPDX-License-Identifier: Apache-2.0
// Fuzzes the readers of a record as JSON, of an image as hex and of names with values: what a description is taken for
// is printed as one that gives the same record again. Input: the document; one that begins with a digit is a hex image,
// one that begins with a small letter a name.
#include "fuzz.h"
#include "toolkit/base/error.h"
#include "toolkit/base/name_value.h"
#include "toolkit/image/image_file.h"
#include "toolkit/image/record_json.h"

namespace {

RECORD_VIEW_S Built(const nlohmann::json &stDocument)
{
    Record stRecord;
    BuildRecord(JsonNode(stDocument, "fuzz", ""), stRecord);
    return ViewRecord(*stRecord.Data());
}

void Document(const std::string &strText)
{
    const nlohmann::json stDocument = nlohmann::json::parse(strText, nullptr, false);
    if (stDocument.is_discarded()) {
        return;
    }
    RECORD_VIEW_S stView;
    try {
        stView = Built(stDocument);
    } catch (const Error &) {
        return;
    }
    const nlohmann::json stPrinted = nlohmann::json::parse(RecordJson(stView).dump());
    fuzz::Require(Built(stPrinted) == stView);
}

void Hex(const std::string &strText)
{
    try {
        const std::vector<u8> vecBytes = ParseHexText(strText, "fuzz");
        fuzz::Require(ParseHexText(HexText(vecBytes), "again") == vecBytes);
    } catch (const Error &) {
        return;
    }
}

// "name=value"; names are told apart whole, but for case and what stands between their words.
void NameValues(const std::string &strText)
{
    static const std::vector<SETTABLE_S> TABLE = {{"system-name", "System Name"}, {"serial", "Serial"}};
    try {
        const std::vector<NAME_VALUE_S> vecValues = ParseNameValues({strText}, TABLE);
        fuzz::Require(vecValues.size() == 1U && vecValues[0].uiIndex < TABLE.size());
        std::string strName = strText.substr(0, strText.find('='));
        for (char &cChar : strName) {
            const bool bUpper = cChar >= 'A' && cChar <= 'Z';
            cChar = (cChar == ' ' || cChar == '_') ? '-' : bUpper ? static_cast<char>(cChar + 0x20) : cChar;
        }
        fuzz::Require(strName == TABLE[vecValues[0].uiIndex].pcName);
    } catch (const Error &) {
        return;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    const std::string strText(pucData, pucData + uiSize);
    const bool bHex = !strText.empty() && isxdigit(pucData[0]) != 0;
    const bool bName = !strText.empty() && islower(pucData[0]) != 0;
    bHex ? Hex(strText) : bName ? NameValues(strText) : Document(strText);
    return 0;
}
