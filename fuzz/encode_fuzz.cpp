// SPDX-License-Identifier: Apache-2.0
// Fuzzes the encoder with any record: it changes nothing of it, keeps within its buffer, and what it accepted is
// decoded to the same.
#include "fuzz.h"
#include "support/record_builder.h"

namespace {

constexpr size_t TEXT_MAX = 70U; // a little more than a field can hold
constexpr size_t CUSTOM_MAX = 7U;

model::TEXTS Texts(fuzz::Input &stInput, size_t uiCount)
{
    model::TEXTS vecTexts;
    for (size_t i = 0; i < uiCount; i++) {
        vecTexts.push_back(stInput.Text(TEXT_MAX));
    }
    return vecTexts;
}

model::AREA_S Area(fuzz::Input &stInput, size_t uiFields)
{
    model::AREA_S stArea;
    stArea.strChassisType = (stInput.Byte() & 1U) != 0U ? "Blade" : stInput.Text(TEXT_MAX);
    stArea.ucLanguage = stInput.Byte();
    stArea.aucDate[0] = stInput.Byte();
    stArea.vecFields = Texts(stInput, uiFields);
    stArea.vecCustom = Texts(stInput, stInput.Byte() % CUSTOM_MAX);
    // One character would read as the end mark.
    for (std::string &strText : stArea.vecCustom) {
        strText += strText.size() == 1U ? "+" : "";
    }
    return stArea;
}

model::RECORD_S TakeRecord(fuzz::Input &stInput)
{
    model::RECORD_S stRecord;
    const u32 uiWhich = stInput.Byte();
    if ((uiWhich & 1U) != 0U) {
        stRecord.optInternal = stInput.Text(TEXT_MAX);
    }
    if ((uiWhich & 2U) != 0U) {
        stRecord.optChassis = Area(stInput, 2U);
        stRecord.optChassis->ucLanguage = 0U;
        stRecord.optChassis->aucDate[0] = 0U;
    }
    if ((uiWhich & 4U) != 0U) {
        stRecord.optBoard = Area(stInput, 5U);
        stRecord.optBoard->strChassisType.clear();
    }
    if ((uiWhich & 8U) != 0U) {
        stRecord.optProduct = Area(stInput, 7U);
        stRecord.optProduct->strChassisType.clear();
        stRecord.optProduct->aucDate[0] = 0U;
    }
    for (u32 i = 0; i < (uiWhich >> 4U); i++) {
        const u8 ucType = stInput.Byte();
        fuzz::BYTES vecData = stInput.Bytes(stInput.Byte());
        vecData.resize(std::max<size_t>(vecData.size(), 1U));
        stRecord.vecMultiRecord.push_back({ucType, 2U, vecData});
    }
    if (!stRecord.vecMultiRecord.empty()) {
        stRecord.vecMultiRecord.back().ucFormat |= FRU_MULTIRECORD_END_OF_LIST;
    }
    return stRecord;
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    memory::FormatMessages(true);
    fuzz::Input stInput(pucData, uiSize);
    const u32 uiCapacity = stInput.Word() & 0x0FFFU;
    const model::RECORD_S stRecord = TakeRecord(stInput);
    size_t uiRecords = 0;
    for (const model::MULTIRECORD_S &stOne : stRecord.vecMultiRecord) {
        uiRecords += FRU_MULTIRECORD_HEADER_LEN + stOne.vecData.size();
    }
    FRU_DATA_S stData{};
    model::Fill(&stData, stRecord);
    const std::unique_ptr<u8[]> upBuffer = fuzz::Exact(fuzz::BYTES(uiCapacity));
    const i32 iLength = FRU_ANALYZER_ConvertToArray(&stData, uiCapacity, upBuffer.get());
    fuzz::Require(iLength <= static_cast<i32>(uiCapacity));
    fuzz::Require(model::Read(&stData) == stRecord);
    if (iLength >= 0 && uiRecords <= 0x7F8U) {
        fuzz::BYTES vecImage(upBuffer.get(), upBuffer.get() + iLength);
        vecImage.resize(vecImage.size() + fuzz::TAIL);
        FRU_DATA_S stAgain{};
        fuzz::Require(FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()),
                                                    &stAgain) == FRU_OK);
        fuzz::Require(model::Read(&stAgain) == stRecord);
        FRU_ANALYZER_SafeFree(&stAgain);
    }
    FRU_ANALYZER_SafeFree(&stData);
    return 0;
}
