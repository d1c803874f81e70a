// SPDX-License-Identifier: Apache-2.0
// Fuzzes the decoder, and whatever takes a decoded record: what it accepted is encoded and decoded again to the same
// texts. The first input byte says how, the rest is the image: bit 0 lets every zero checksum pass, bit 1 asks for
// fixed custom-field slots, bit 2 repairs all checksums, bit 3 has no messages made.
#include "fuzz.h"
#include "support/image_promises.h"

extern "C" {
u32 __real_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);
u32 __wrap_BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);
}

namespace {

// Whether every zero checksum passes, so that the fuzzer gets past them.
bool g_bZeroSumsPass;

void Keep(const char *pcBroken)
{
    fuzz::Require(pcBroken == nullptr);
}

// What this library encodes it must decode, to the same.
void CheckEncoded(const FRU_DATA_S &stData, u32 uiCapacity)
{
    // The encoder keeps the records' checksums, and so a wrong one that was let pass.
    const bool bSumsChecked = !g_bZeroSumsPass;
    const fuzz::BYTES vecImage = promise::Encoded(stData, uiCapacity);
    g_bZeroSumsPass = false;
    Keep(promise::DecodesAgain(vecImage, stData, bSumsChecked));
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
        const bool bPass = g_bZeroSumsPass;
        Keep(promise::HasCustomTexts(stData));
        CheckEncoded(stData, uiLength);
        g_bZeroSumsPass = bPass;
        CheckEncoded(stData, uiLength * promise::TEXTS_GROW_AT_MOST + promise::ROOM_FOR_TEXTS);
    }
    FRU_ANALYZER_SafeFree(&stData);
    Keep(promise::IsReleased(stData));
    return 0;
}
