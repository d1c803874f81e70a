// SPDX-License-Identifier: Apache-2.0
// Fuzzes the decoder, and whatever takes a decoded record: what it accepted is encoded and decoded again to the same
// texts. The first input byte says how, the rest is the image: bit 0 lets every zero checksum pass, bit 1 asks for
// fixed custom-field slots, bit 2 repairs all checksums, bit 3 has no messages made.
#include "fuzz.h"
#include "support/record_builder.h"

extern "C" {
u32 __real_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);
u32 __wrap_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);
}

namespace {

// Whether every zero checksum passes, so that the fuzzer gets past them.
bool g_bZeroSumsPass;

constexpr u32 AREA_LARGEST = 0x7F8U; // what the MultiRecord area's size is masked with

bool HasOneCharacter(const model::TEXTS &vecCustom)
{
    return std::any_of(vecCustom.begin(), vecCustom.end(),
                       [](const std::string &strText) { return strText.size() == 1U; });
}

// A custom field of one character has the end mark for its length byte and is lost when it is read again, and records
// of more than 2040 bytes keep the low bits of their size: both as described.
bool IsKept(const model::RECORD_S &stRecord)
{
    size_t uiRecords = 0;
    for (const model::MULTIRECORD_S &stOne : stRecord.vecMultiRecord) {
        uiRecords += FRU_MULTIRECORD_HEADER_LEN + stOne.vecData.size();
    }
    return uiRecords <= AREA_LARGEST &&
           !(stRecord.optChassis && HasOneCharacter(stRecord.optChassis->vecCustom)) &&
           !(stRecord.optBoard && HasOneCharacter(stRecord.optBoard->vecCustom)) &&
           !(stRecord.optProduct && HasOneCharacter(stRecord.optProduct->vecCustom));
}

// What this library encodes it must decode, to the same.
void CheckEncoded(const FRU_DATA_S &stData, u32 uiCapacity)
{
    // The encoder keeps the records' checksums, and so a wrong one that was let pass.
    const bool bSumsChecked = !g_bZeroSumsPass;
    fuzz::BYTES vecImage(uiCapacity);
    const i32 iLength = FRU_ANALYZER_ConvertToArray(&stData, uiCapacity, vecImage.data());
    if (iLength < 0) {
        return;
    }
    vecImage.resize(static_cast<size_t>(iLength) + fuzz::TAIL);
    const std::unique_ptr<u8[]> upImage = fuzz::Exact(vecImage);
    g_bZeroSumsPass = false;
    FRU_DATA_S stAgain{};
    fuzz::Require(FRU_ANALYZER_InterpretFRUData(upImage.get(), static_cast<u32>(vecImage.size()), &stAgain) ==
                  FRU_OK);
    const model::RECORD_S stRecord = model::Read(&stData);
    fuzz::Require(!bSumsChecked || !IsKept(stRecord) || model::Read(&stAgain) == stRecord);
    FRU_ANALYZER_SafeFree(&stAgain);
}

void CheckCustomFields(const FRU_DATA_S &stData)
{
    FRU_CUSTOM_FIELD_S stCustom{};
    fuzz::Require(FRU_ANALYZER_InterpretCustomField(&stData, &stCustom) ==
                  FRU_OK); // memory does not run out here
    FRU_ANALYZER_FreeCustomField(&stCustom);
}

} // namespace

u32 __wrap_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen)
{
    return g_bZeroSumsPass ? 0U : __real_BMC_CheckZeroSum(pucBuf, uiLen);
}

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    fuzz::Input stInput(pucData, uiSize);
    const u32 uiHow = stInput.Byte();
    fuzz::BYTES vecImage = stInput.Rest();
    memory::FormatMessages((uiHow & 8U) == 0U); // a text that is no text would be noticed
    if ((uiHow & 4U) != 0U) {
        fuzz::Seal(vecImage);
    }
    const std::unique_ptr<u8[]> upImage = fuzz::Exact(vecImage);
    const u32 uiLength = static_cast<u32>(vecImage.size());
    FRU_DATA_S stData{};
    if ((uiHow & 2U) != 0U) {
        stData.stChassisInfo.ucCustomFieldCount = FRU_CHASSIS_FIXED_SLOTS;
        stData.stProductInfo.ucCustomFieldCount = FRU_PRODUCT_FIXED_SLOTS;
    }
    g_bZeroSumsPass = (uiHow & 1U) != 0U;
    if (FRU_ANALYZER_InterpretFRUData(upImage.get(), uiLength, &stData) == FRU_OK) {
        CheckCustomFields(stData);
        CheckEncoded(stData, uiLength);
        g_bZeroSumsPass = (uiHow & 1U) != 0U;
        CheckEncoded(stData, uiLength * 4U + 256U);
    }
    FRU_ANALYZER_SafeFree(&stData);
    fuzz::Require(model::Read(&stData).vecMultiRecord.empty() &&
                  stData.stBoardInfo.ppucCustomFields == nullptr);
    return 0;
}
