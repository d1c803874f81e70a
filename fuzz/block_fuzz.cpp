// SPDX-License-Identifier: Apache-2.0
// Fuzzes the hardware block and image assembly: a block comes back as it was but for its CRC-8 bytes, which are right; an
// assembled image decodes to the texts that were given, and a refused one leaves the cache alone.
#include "fuzz.h"
#include "support/record_builder.h"

namespace {

constexpr u32 FIRST_SLOT = 3U;
constexpr size_t DIAG_CRC = 16U;

void Hardware(fuzz::Input &stInput)
{
    const fuzz::BYTES vecBlock = stInput.Bytes(FRU_HW_DATA_LEN);
    const u32 uiSize = static_cast<u32>(vecBlock.size());
    FRU_HW_DATA_S stData{};
    const u32 uiRet = FRU_ANALYZER_InterpretALLHwFRUData(fuzz::Exact(vecBlock).get(), uiSize, &stData);
    fuzz::Require((uiRet == FRU_OK) == (uiSize == FRU_HW_DATA_LEN));
    if (uiRet != FRU_OK) {
        return;
    }
    fuzz::Require(memcmp(&stData, vecBlock.data(), uiSize) == 0);
    fuzz::BYTES vecAgain(uiSize);
    fuzz::Require(FRU_ANALYZER_ConvertToHwArray(&stData, uiSize, vecAgain.data()) == FRU_OK);
    fuzz::Require(BMC_CheckCRC8(vecAgain[0], &vecAgain[1], DIAG_CRC - 1U) == 0U &&
                  BMC_CheckCRC8(vecAgain[DIAG_CRC], &vecAgain[DIAG_CRC + 1U], DIAG_CRC - 1U) == 0U);
    for (size_t i = 0; i < uiSize; i++) {
        fuzz::Require(i == 0U || i == DIAG_CRC || vecAgain[i] == vecBlock[i]);
    }
}

std::string Slot(const FRU_ASSEMBLE_LABEL_S &stLabels, u32 uiSlot)
{
    return stLabels.acSlot[uiSlot];
}

void CheckAssembled(const fuzz::BYTES &vecImage, const FRU_ASSEMBLE_LABEL_S &stLabels)
{
    fuzz::BYTES vecLonger = vecImage;
    vecLonger.resize(vecImage.size() + fuzz::TAIL);
    FRU_DATA_S stData{};
    fuzz::Require(FRU_ANALYZER_InterpretFRUData(vecLonger.data(), static_cast<u32>(vecLonger.size()),
                                                &stData) == FRU_OK);
    const model::RECORD_S stRecord = model::Read(&stData);
    FRU_ANALYZER_SafeFree(&stData);
    if (stRecord.optBoard) {
        for (u32 i = 0; i < 4U; i++) {
            fuzz::Require(stRecord.optBoard->vecFields[i] ==
                          Slot(stLabels, FRU_ASSEMBLE_BOARD_MANUFACTURER + i));
        }
    }
    bool bProduct = false;
    for (u32 i = 0; i < 6U; i++) {
        const std::string strText = Slot(stLabels, FRU_ASSEMBLE_PRODUCT_MANUFACTURER + i);
        fuzz::Require(!stRecord.optProduct || stRecord.optProduct->vecFields[i] == strText);
        bProduct = bProduct || !strText.empty();
    }
    fuzz::Require(bProduct == stRecord.optProduct.has_value());
}

void Assembly(fuzz::Input &stInput)
{
    FRU_DEVICE_INFO_S stInfo{};
    stInfo.usSize = stInput.Word() & 0x01FFU;
    FRU_ASSEMBLE_LABEL_S stLabels{};
    for (u32 i = FIRST_SLOT; i < FRU_ASSEMBLE_SLOTS; i++) {
        const std::string strText = stInput.Text(70U);
        (void)memcpy(stLabels.acSlot[i], strText.data(), strText.size());
    }
    const fuzz::BYTES vecBefore(stInfo.usSize, 0xEEU);
    if (stInfo.usSize != 0U) {
        fuzz::Require(FRU_DB_PutFRUData(0U, stInfo.usSize, vecBefore.data()) == FRU_OK);
    }
    if (FRU_AssembleBin(&stInfo, &stLabels) == FRU_OK) {
        CheckAssembled(fuzz::Cached(stInfo.usSize), stLabels);
    } else if (stInfo.usSize != 0U) {
        fuzz::Require(fuzz::Cached(stInfo.usSize) == vecBefore);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    memory::FormatMessages(true);
    fuzz::Input stInput(pucData, uiSize);
    (stInput.Byte() & 1U) != 0U ? Hardware(stInput) : Assembly(stInput);
    return 0;
}
