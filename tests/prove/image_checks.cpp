// SPDX-License-Identifier: Apache-2.0
#include "prove/image_checks.h"

#include "fuzz/fuzz.h"
#include "support/image_promises.h"
#include "support/layout_promises.h"

namespace prove {
namespace {

using BYTES = std::vector<u8>;

constexpr u8 SPAN_FIRST =
    128U; // what a span is read by; 203 bytes at once would be taken for an absent device

u32 Decode(const BYTES &vecImage, bool bFixedSlots, FRU_DATA_S *pstData)
{
    const std::unique_ptr<u8[]> upImage = fuzz::Exact(vecImage);
    if (bFixedSlots) {
        pstData->stChassisInfo.ucCustomFieldCount = FRU_CHASSIS_FIXED_SLOTS;
        pstData->stProductInfo.ucCustomFieldCount = FRU_PRODUCT_FIXED_SLOTS;
    }
    return FRU_ANALYZER_InterpretFRUData(upImage.get(), static_cast<u32>(vecImage.size()), pstData);
}

const char *CheckEncoder(const FRU_DATA_S &stData, u32 uiLength)
{
    if (const char *pcBroken = promise::HasCustomTexts(stData)) {
        return pcBroken;
    }
    for (const u32 uiCapacity :
         {uiLength, uiLength * promise::TEXTS_GROW_AT_MOST + promise::ROOM_FOR_TEXTS}) {
        if (const char *pcBroken =
                promise::DecodesAgain(promise::Encoded(stData, uiCapacity), stData, true)) {
            return pcBroken;
        }
    }
    return nullptr;
}

// The bytes alone: what is taken without anything behind them is taken with it.
const char *CheckAlone(const BYTES &vecImage, bool bFixedSlots, bool bAccepted)
{
    FRU_DATA_S stAlone{};
    const u32 uiRet = Decode(vecImage, bFixedSlots, &stAlone);
    FRU_ANALYZER_SafeFree(&stAlone);
    return uiRet == FRU_OK && !bAccepted ? "what is decoded alone is decoded on a device" : nullptr;
}

const char *CheckWalks(const BYTES &vecImage, bool bFixedSlots, bool bAccepted)
{
    const IMAGE_S stImage = FileImage(vecImage);
    const IMAGE_LAYOUT_S stPassed =
        WalkImage(stImage.vecBytes, stImage.uiStored, bFixedSlots, Damage::Passed);
    const IMAGE_LAYOUT_S stLayout = LayoutOf(stImage, bFixedSlots);
    for (const IMAGE_LAYOUT_S *pstLayout : {&stLayout, &stPassed}) {
        for (const char *pcBroken : {promise::TellsOfEveryByte(*pstLayout, stImage.uiStored),
                                     promise::FindsInside(*pstLayout, stImage.uiStored)}) {
            if (pcBroken != nullptr) {
                return pcBroken;
            }
        }
    }
    if (stLayout.IsSound() != stPassed.IsSound()) {
        return "who passes damage sees it, too";
    }
    if (stLayout.IsSound() && !bAccepted && !IsHardwareBlock(stImage.vecBytes, stImage.uiStored)) {
        return "a sound image is decoded";
    }
    return promise::ReadsLeniently(stImage, stLayout, bFixedSlots);
}

// A read of a device that is not a baseboard's gives what the decoder gives, or says that it could not.
const char *CheckRetrieval(const BYTES &vecOnDevice)
{
    FRU_DATA_S stDirect{};
    FRU_DATA_S stRead{};
    FRU_DATA_S stCached{};
    const u32 uiDirect = Decode(vecOnDevice, false, &stDirect);
    const u32 uiRead = LIB_FRU_GetFRUData(0U, 0U, FRU_READ_MODE_PLAIN, FRU_READ_ARG_USUAL, &stRead);
    const u32 uiCached = LIB_FRU_GetFRUDataFromDB(0U, 0U, &stCached);
    const bool bVerdicts =
        (uiRead == FRU_OK) == (uiDirect == FRU_OK) && (uiCached == FRU_OK) == (uiDirect == FRU_OK);
    const bool bSame = uiDirect != FRU_OK || (model::Read(&stRead) == model::Read(&stDirect) &&
                                              model::Read(&stCached) == model::Read(&stDirect));
    FRU_ANALYZER_SafeFree(&stDirect);
    FRU_ANALYZER_SafeFree(&stRead);
    FRU_ANALYZER_SafeFree(&stCached);
    return !bVerdicts ? "a device's image is judged as its bytes are"
           : bSame    ? nullptr
                      : "a device's image is read as its bytes are";
}

const char *CheckSpan(const BYTES &vecOnDevice)
{
    FRU_READ_REQ_S stRequest = {0U, 0U, static_cast<u8>(std::min(vecOnDevice.size(), size_t{SPAN_FIRST}))};
    BYTES vecSpan(vecOnDevice.size());
    const u32 uiRet = LIB_FRU_GetFRUDataFromEEPROM(static_cast<u32>(vecSpan.size()), &stRequest,
                                                   sizeof(stRequest), vecSpan.data(), 0U);
    return uiRet == FRU_OK && vecSpan == vecOnDevice ? nullptr : "a span is a device's bytes";
}

const char *CheckDevice(const BYTES &vecOnDevice)
{
    fuzz::Provision(vecOnDevice, 0U, 7U, FRU_CACHE_UNTRUSTED);
    const fuzz::STATE_S stBefore = fuzz::State();
    if (const char *pcBroken = CheckRetrieval(vecOnDevice)) {
        return pcBroken;
    }
    if (const char *pcBroken = CheckSpan(vecOnDevice)) {
        return pcBroken;
    }
    const fuzz::STATE_S stNow = fuzz::State();
    return stNow.vecEeprom == stBefore.vecEeprom && stNow.vecCached == stBefore.vecCached
               ? nullptr
               : "a read changes nothing";
}

} // namespace

VERDICT_S CheckImage(const BYTES &vecImage, bool bFixedSlots)
{
    BYTES vecOnDevice = vecImage;
    vecOnDevice.resize(vecImage.size() + promise::TAIL, 0xFFU);
    FRU_DATA_S stData{};
    VERDICT_S stVerdict;
    stVerdict.bAccepted = Decode(vecOnDevice, bFixedSlots, &stData) == FRU_OK;
    if (stVerdict.bAccepted) {
        stVerdict.pcBroken = CheckEncoder(stData, static_cast<u32>(vecOnDevice.size()));
    }
    FRU_ANALYZER_SafeFree(&stData);
    const auto Ask = [&](const char *pcBroken) {
        stVerdict.pcBroken = stVerdict.pcBroken != nullptr ? stVerdict.pcBroken : pcBroken;
    };
    Ask(promise::IsReleased(stData));
    Ask(CheckAlone(vecImage, bFixedSlots, stVerdict.bAccepted));
    Ask(vecImage.empty() ? nullptr : CheckWalks(vecImage, bFixedSlots, stVerdict.bAccepted));
    Ask(CheckDevice(vecOnDevice));
    return stVerdict;
}

} // namespace prove
