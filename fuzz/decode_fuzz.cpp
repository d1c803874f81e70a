// SPDX-License-Identifier: Apache-2.0
// Fuzzes the decoder, and whatever takes a decoded record. The first input byte says how, the rest is
// the image: bit 0 lets every zero checksum pass, bit 1 asks for fixed custom-field slots, bit 2 repairs
// the common header.
#include <cstring>
#include <memory>
#include <vector>

#include "bmc_support.h"
#include "lib_fru_codec.h"
#include "memory/memory_platform.h"

extern "C" {
u32 __real_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);
u32 __wrap_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);
int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize);
}

namespace {

// Whether every zero checksum passes, so that the fuzzer gets past them.
bool g_bZeroSumsPass;

constexpr size_t g_uiTail = 8U; // an info area must not end with the image's last byte

// A copy of exactly that size, so that every read past it is seen.
std::unique_ptr<u8[]> Exact(const u8 *pucData, size_t uiSize)
{
    std::unique_ptr<u8[]> upCopy(new u8[uiSize]);
    if (uiSize != 0U) {
        (void)memcpy(upCopy.get(), pucData, uiSize);
    }
    return upCopy;
}

// What this library encodes it must decode.
void CheckEncoded(const FRU_DATA_S &stData, u32 uiCapacity)
{
    std::vector<u8> vecImage(uiCapacity, u8{0});
    const i32 iLength = FRU_ANALYZER_ConvertToArray(&stData, uiCapacity, vecImage.data());
    if (iLength < 0) {
        return;
    }
    vecImage.resize(static_cast<size_t>(iLength) + g_uiTail);
    const std::unique_ptr<u8[]> upImage = Exact(vecImage.data(), vecImage.size());
    g_bZeroSumsPass = false;
    FRU_DATA_S stAgain{};
    if (FRU_ANALYZER_InterpretFRUData(upImage.get(), static_cast<u32>(vecImage.size()), &stAgain) != 0U) {
        __builtin_trap();
    }
    FRU_ANALYZER_SafeFree(&stAgain);
}

void CheckCustomFields(const FRU_DATA_S &stData)
{
    FRU_CUSTOM_FIELD_S stCustom{};
    if (FRU_ANALYZER_InterpretCustomField(&stData, &stCustom) != 0U) {
        __builtin_trap(); // memory does not run out here
    }
    FRU_ANALYZER_FreeCustomField(&stCustom);
}

} // namespace

u32 __wrap_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen)
{
    return g_bZeroSumsPass ? 0U : __real_BMC_CheckZeroSum(pucBuf, uiLen);
}

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    if (uiSize == 0U) {
        return 0;
    }
    memory::FormatMessages(true); // a text that is no text would be noticed
    const u32 uiHow = pucData[0];
    const size_t uiLength = uiSize - 1U;
    const std::unique_ptr<u8[]> upImage = Exact(pucData + 1, uiLength);
    if ((uiHow & 4U) != 0U && uiLength >= FRU_COMMON_HEADER_LEN) {
        upImage[0] = 1U;
        upImage[7] = BMC_CalcZeroCheckSum(upImage.get(), FRU_COMMON_HEADER_LEN - 1U);
    }
    FRU_DATA_S stData{};
    if ((uiHow & 2U) != 0U) {
        stData.stChassisInfo.ucCustomFieldCount = FRU_CHASSIS_FIXED_SLOTS;
        stData.stProductInfo.ucCustomFieldCount = FRU_PRODUCT_FIXED_SLOTS;
    }
    g_bZeroSumsPass = (uiHow & 1U) != 0U;
    if (FRU_ANALYZER_InterpretFRUData(upImage.get(), static_cast<u32>(uiLength), &stData) == 0U) {
        CheckCustomFields(stData);
        CheckEncoded(stData, static_cast<u32>(uiLength));
        CheckEncoded(stData, 0x10000U);
    }
    FRU_ANALYZER_SafeFree(&stData);
    FRU_HW_DATA_S stHwData{};
    (void)FRU_ANALYZER_InterpretALLHwFRUData(upImage.get(), static_cast<u32>(uiLength), &stHwData);
    return 0;
}
