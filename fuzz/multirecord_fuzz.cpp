// SPDX-License-Identifier: Apache-2.0
// Fuzzes MultiRecord updates and merges on any image: an accepted record is read back, a refused one has changed nothing.
// Input: how, image length, image, then updates.
#include "fuzz.h"
#include "support/record_builder.h"

namespace {

constexpr size_t IMAGE_MIN = 16U;
constexpr u32 UPDATES_MAX = 10U;
constexpr u32 VALUE_MAX = 254U; // longer ones are not stored faithfully, as the call says

bool HasRecord(const model::RECORD_S &stRecord, const fuzz::BYTES &vecData)
{
    return std::any_of(stRecord.vecMultiRecord.begin(), stRecord.vecMultiRecord.end(),
                       [&](const model::MULTIRECORD_S &stOne) {
                           return stOne.ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS && stOne.vecData == vecData;
                       });
}

model::RECORD_S OnChip(bool *pbDecoded)
{
    FRU_DATA_S stData{};
    const fuzz::BYTES &vecChip = memory::Eeprom();
    *pbDecoded =
        FRU_ANALYZER_InterpretFRUData(vecChip.data(), static_cast<u32>(vecChip.size()), &stData) == FRU_OK;
    const model::RECORD_S stRecord = *pbDecoded ? model::Read(&stData) : model::RECORD_S{};
    FRU_ANALYZER_SafeFree(&stData);
    return stRecord;
}

void Update(fuzz::Input &stInput)
{
    FRU_MR_PARAM_S stParam{};
    stParam.ucRecordTypeID = FRU_MR_TYPE_MANAGEMENT_ACCESS;
    stParam.ucSubType = stInput.Byte() % 9U;
    fuzz::BYTES vecValue = stInput.Bytes(stInput.Byte() % (VALUE_MAX + 1U));
    const bool bGuid = stParam.ucSubType == FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID;
    vecValue.resize(bGuid ? size_t{FRU_MR_GUID_LEN} : vecValue.size());
    const std::unique_ptr<u8[]> upValue = fuzz::Exact(vecValue);
    stParam.pucBuf = upValue.get();
    stParam.uiLength = static_cast<u32>(vecValue.size());
    const fuzz::STATE_S stBefore = fuzz::State();
    bool bDecoded = false;
    const bool bRoom = OnChip(&bDecoded).vecMultiRecord.size() < FRU_MULTIRECORD_MAX;
    const u32 uiRet = FRU_innerUpdateMultiRecord(&stParam);
    fuzz::CheckDevice(stBefore, uiRet == FRU_OK);
    if (uiRet == FRU_OK && bRoom) {
        fuzz::BYTES vecData(FRU_MR_GUID_LEN);
        if (bGuid) {
            FRU_ConvertGUIDToStandardOrder(vecValue.data(), vecData.data());
            vecValue = vecData;
        }
        vecValue.insert(vecValue.begin(), stParam.ucSubType);
        const model::RECORD_S stRecord = OnChip(&bDecoded);
        fuzz::Require(bDecoded && HasRecord(stRecord, vecValue));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    memory::FormatMessages(true);
    fuzz::Input stInput(pucData, uiSize);
    const u32 uiHow = stInput.Byte();
    fuzz::BYTES vecImage = stInput.Bytes(stInput.Word() & 0x03FFU);
    vecImage.resize(std::max(vecImage.size() + ((uiHow & 8U) != 0U ? 256U : 0U), IMAGE_MIN));
    if ((uiHow & 1U) != 0U) {
        fuzz::Seal(vecImage);
    }
    fuzz::Provision(vecImage, 0U, 7U, (uiHow & 2U) != 0U ? 1U : 0U);
    for (u32 i = 0; i < UPDATES_MAX && stInput.Left() != 0U; i++) {
        Update(stInput);
    }
    const fuzz::STATE_S stBefore = fuzz::State();
    fuzz::CheckDevice(stBefore, FRU_syncAllMultiRecords() == FRU_OK);
    FRU_destroyMultiRecords();
    return 0;
}
