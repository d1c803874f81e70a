// SPDX-License-Identifier: Apache-2.0
// Fuzzes the three IPMI handlers in any sequence over a device: an accepted write is in EEPROM and cache, a refused one
// nowhere, and a read gives what is there. Input: device size, cache status, then requests.
#include "fuzz.h"

namespace {

constexpr u32 REQUESTS_MAX = 24U;
constexpr size_t RESPONSE_MAX = FRU_READ_RES_HEADER_LEN + FRU_READ_COUNT_MAX;

void Write(fuzz::Input &stInput)
{
    fuzz::BYTES vecReq = stInput.Bytes(FRU_WRITE_REQ_HEADER_LEN);
    vecReq.resize(FRU_WRITE_REQ_HEADER_LEN);
    vecReq[0] &= 1U; // the device, or one that is not there
    const size_t uiOffset = vecReq[1] + vecReq[2] * size_t{256};
    const fuzz::BYTES vecData = stInput.Bytes(stInput.Byte());
    vecReq.insert(vecReq.end(), vecData.begin(), vecData.end());
    fuzz::BYTES vecWanted = memory::Eeprom();
    const fuzz::STATE_S stBefore = fuzz::State();
    u8 aucRes[RESPONSE_MAX] = {0xEE};
    const u32 uiLength =
        LIB_FRU_WriteFRUData(fuzz::Exact(vecReq).get(), static_cast<u32>(vecReq.size()), aucRes);
    const bool bDone = aucRes[0] == FRU_CC_OK;
    fuzz::Require(uiLength == (bDone ? FRU_WRITE_RES_LEN : FRU_ERROR_RES_LEN));
    if (bDone) {
        fuzz::Require(aucRes[1] == vecData.size() && uiOffset + vecData.size() <= vecWanted.size());
        std::copy(vecData.begin(), vecData.end(), vecWanted.begin() + static_cast<long>(uiOffset));
        fuzz::Require(memory::Eeprom() == vecWanted);
    }
    fuzz::CheckDevice(stBefore, bDone);
}

void ReadBytes(fuzz::Input &stInput)
{
    const u8 ucDevice = stInput.Byte() & 1U;
    const u16 usOffset = stInput.Word();
    const u8 ucCount = stInput.Byte();
    const fuzz::BYTES vecReq = {ucDevice, static_cast<u8>(usOffset), static_cast<u8>(usOffset >> 8U),
                                ucCount};
    const std::unique_ptr<u8[]> upRes = fuzz::Exact(fuzz::BYTES(size_t{FRU_READ_RES_HEADER_LEN} + ucCount));
    const u32 uiLength = LIB_FRU_ReadFRUData(fuzz::Exact(vecReq).get(), FRU_READ_REQ_LEN, upRes.get(), 0U);
    if (upRes[0] != FRU_CC_OK) {
        fuzz::Require(uiLength == FRU_ERROR_RES_LEN);
        return;
    }
    const fuzz::BYTES &vecChip = memory::Eeprom();
    fuzz::Require(uiLength == FRU_READ_RES_HEADER_LEN + ucCount && upRes[1] == ucCount &&
                  size_t{usOffset} + ucCount <= vecChip.size());
    fuzz::Require(std::equal(upRes.get() + FRU_READ_RES_HEADER_LEN, upRes.get() + uiLength,
                             vecChip.begin() + usOffset));
}

void AreaInfo(fuzz::Input &stInput)
{
    const u8 ucDevice = stInput.Byte() & 1U;
    u8 aucRes[FRU_AREA_INFO_RES_LEN] = {};
    const u32 uiLength = LIB_FRU_GetFRUAreaInfo(&ucDevice, FRU_AREA_INFO_REQ_LEN, aucRes);
    const size_t uiSize = memory::Eeprom().size();
    fuzz::Require(ucDevice == 0U ? uiLength == FRU_AREA_INFO_RES_LEN && aucRes[0] == FRU_CC_OK &&
                                       size_t{aucRes[1]} + aucRes[2] * 256U == uiSize
                                 : uiLength == FRU_ERROR_RES_LEN && aucRes[0] == FRU_CC_NOT_PRESENT);
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    memory::FormatMessages(true);
    fuzz::Input stInput(pucData, uiSize);
    const size_t uiDevice = 1U + stInput.Word() % 600U;
    fuzz::Provision(fuzz::BYTES(uiDevice, 0x5AU), 0U, 7U, stInput.Byte() & 1U);
    for (u32 i = 0; i < REQUESTS_MAX && stInput.Left() != 0U; i++) {
        const u8 ucRequest = stInput.Byte() % 3U;
        ucRequest == 0U ? Write(stInput) : ucRequest == 1U ? ReadBytes(stInput) : AreaInfo(stInput);
    }
    return 0;
}
