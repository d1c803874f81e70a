// SPDX-License-Identifier: Apache-2.0
// Fuzzes label writes: any image, any name, any value. A refused one leaves the device as it was; an accepted one is
// read back. Input: how, label, component type, name or value, value, image.
#include "fuzz.h"
#include "support/record_builder.h"

namespace {

constexpr size_t IMAGE_MIN = 32U;

void Append(model::TEXTS &vecTexts, const std::optional<model::AREA_S> &optArea)
{
    if (optArea) {
        vecTexts.insert(vecTexts.end(), optArea->vecFields.begin(), optArea->vecFields.end());
        vecTexts.insert(vecTexts.end(), optArea->vecCustom.begin(), optArea->vecCustom.end());
    }
}

// Labels that are stored as texts as they are given.
bool IsText(u32 uiLabel)
{
    const bool bOther = uiLabel == FRU_LABEL_CHASSIS_TYPE || uiLabel == FRU_LABEL_BOARD_LANGUAGE ||
                        uiLabel == FRU_LABEL_BOARD_MFG_DATE || uiLabel == FRU_LABEL_PRODUCT_LANGUAGE;
    return uiLabel < FRU_LABEL_HARDWARE && !bOther;
}

// An area that the image does not have gets no label, though the write succeeds; only a product area is made.
bool KeepsText(const FRU_DATA_S &stData, u32 uiLabel, const std::string &strText)
{
    const model::RECORD_S stRecord = model::Read(&stData);
    const std::optional<model::AREA_S> &optArea = uiLabel < FRU_LABEL_BOARD_LANGUAGE ? stRecord.optChassis
                                                  : uiLabel < FRU_LABEL_PRODUCT_LANGUAGE
                                                      ? stRecord.optBoard
                                                      : stRecord.optProduct;
    model::TEXTS vecTexts;
    Append(vecTexts, optArea);
    return (!optArea && uiLabel < FRU_LABEL_PRODUCT_LANGUAGE) ||
           std::find(vecTexts.begin(), vecTexts.end(), strText) != vecTexts.end();
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    memory::FormatMessages(true);
    fuzz::Input stInput(pucData, uiSize);
    const u32 uiHow = stInput.Byte();
    FRU_SET_PARA_S stPara{};
    stPara.ucComponentType = stInput.Byte() & 3U;
    const std::string strName = (uiHow & 1U) != 0U
                                    ? stInput.Text(sizeof(stPara.acLabelName))
                                    : g_astDIAG_FruLabel[stInput.Byte() % FRU_LABEL_ROWS].pcLabelName;
    const std::string strValue = stInput.Text(sizeof(stPara.acLabelValue));
    (void)memcpy(stPara.acLabelName, strName.data(), strName.size());
    (void)memcpy(stPara.acLabelValue, strValue.data(), strValue.size());
    const u8 ucFieldFlag = stInput.Byte();
    fuzz::BYTES vecImage = stInput.Rest();
    vecImage.resize(std::max(vecImage.size(), IMAGE_MIN));
    if ((uiHow & 2U) != 0U) {
        fuzz::Seal(vecImage);
    }
    fuzz::Provision(vecImage, stPara.ucComponentType, ucFieldFlag, (uiHow & 4U) != 0U ? 1U : 0U);
    const fuzz::STATE_S stBefore = fuzz::State();
    const u32 uiRet = LIB_FRU_WriteElectronicLabel(&stPara);
    fuzz::CheckDevice(stBefore, uiRet == FRU_OK);
    if (uiRet != FRU_OK) {
        return 0;
    }
    FRU_DATA_S stData{};
    fuzz::BYTES vecChip = memory::Eeprom();
    vecChip.resize(vecChip.size() + fuzz::TAIL);
    fuzz::Require(FRU_ANALYZER_InterpretFRUData(vecChip.data(), static_cast<u32>(vecChip.size()), &stData) ==
                  FRU_OK);
    // A value of one character may be the end mark where it stands.
    const std::string strStored(stPara.acLabelValue,
                                strnlen(stPara.acLabelValue, sizeof(stPara.acLabelValue)));
    fuzz::Require(!IsText(stPara.uiLabelID) || strStored.size() < 2U ||
                  KeepsText(stData, stPara.uiLabelID, strStored));
    FRU_ANALYZER_SafeFree(&stData);
    return 0;
}
