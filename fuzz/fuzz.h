// SPDX-License-Identifier: Apache-2.0
// What the fuzzers share: input taken apart, images of exactly their size, and one device in memory.
#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bmc_support.h"
#include "lib_fru.h"
#include "memory/memory_platform.h"

extern "C" int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize);

namespace fuzz {

using BYTES = std::vector<u8>;

constexpr size_t TAIL = 8U; // an info area must not end with the image's last byte

// Ends the run with the input that broke a promise.
inline void Require(bool bKept)
{
    if (!bKept) {
        __builtin_trap();
    }
}

// Takes the input apart; behind its end it gives zeros and empty texts.
class Input
{
  public:
    Input(const u8 *pucData, size_t uiSize) : m_pucData(pucData), m_uiLeft(uiSize) {}
    size_t Left() const
    {
        return m_uiLeft;
    }
    u8 Byte()
    {
        const u8 *pucByte = Take(1U);
        return pucByte == nullptr ? u8{0} : *pucByte;
    }
    u16 Word()
    {
        const u8 ucLow = Byte();
        return static_cast<u16>(Byte() << 8U | ucLow);
    }
    BYTES Bytes(size_t uiWanted)
    {
        const size_t uiCount = std::min(uiWanted, m_uiLeft);
        const u8 *pucBytes = Take(uiCount);
        return uiCount == 0U ? BYTES() : BYTES(pucBytes, pucBytes + uiCount);
    }
    BYTES Rest()
    {
        return Bytes(m_uiLeft);
    }
    // Its length first; no zero byte within.
    std::string Text(size_t uiMax)
    {
        const BYTES vecBytes = Bytes(Byte() % (uiMax + 1U));
        return std::string(vecBytes.begin(), std::find(vecBytes.begin(), vecBytes.end(), u8{0}));
    }

  private:
    const u8 *Take(size_t uiCount)
    {
        const u8 *pucBytes = m_pucData;
        if (uiCount > m_uiLeft) {
            return nullptr;
        }
        m_pucData += uiCount;
        m_uiLeft -= uiCount;
        return pucBytes;
    }

    const u8 *m_pucData;
    size_t m_uiLeft;
};

// A copy of exactly that size, so that every read past it is seen.
inline std::unique_ptr<u8[]> Exact(const BYTES &vecBytes)
{
    std::unique_ptr<u8[]> upCopy(new u8[vecBytes.size()]);
    if (!vecBytes.empty()) {
        (void)memcpy(upCopy.get(), vecBytes.data(), vecBytes.size());
    }
    return upCopy;
}

// The sums of the header and of what it points to, put right, so that a changed byte gets past them.
inline void SealSums(BYTES &vecImage)
{
    const size_t uiSize = vecImage.size();
    if (uiSize < FRU_COMMON_HEADER_LEN) {
        return;
    }
    vecImage[7] = BMC_CalcZeroCheckSum(vecImage.data(), FRU_COMMON_HEADER_LEN - 1U);
    for (size_t i = 2; i <= 4; i++) {
        const size_t uiStart = vecImage[i] * size_t{FRU_AREA_UNIT};
        const size_t uiArea = uiStart + 1U < uiSize ? vecImage[uiStart + 1U] * size_t{FRU_AREA_UNIT} : 0U;
        if (uiStart != 0U && uiArea != 0U && uiStart + uiArea <= uiSize) {
            vecImage[uiStart + uiArea - 1U] =
                BMC_CalcZeroCheckSum(&vecImage[uiStart], static_cast<u32>(uiArea - 1U));
        }
    }
    size_t uiRecord = vecImage[5] * size_t{FRU_AREA_UNIT};
    while (uiRecord != 0U && uiRecord + FRU_MULTIRECORD_HEADER_LEN <= uiSize) {
        const size_t uiNext = uiRecord + FRU_MULTIRECORD_HEADER_LEN + vecImage[uiRecord + 2U];
        if (uiNext > uiSize) {
            return;
        }
        u8 *pucRecord = &vecImage[uiRecord];
        pucRecord[3] = BMC_CalcZeroCheckSum(pucRecord + FRU_MULTIRECORD_HEADER_LEN, pucRecord[2]);
        pucRecord[4] = BMC_CalcZeroCheckSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN - 1U);
        uiRecord = (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) != 0U ? 0U : uiNext;
    }
}

// The header's version, too.
inline void Seal(BYTES &vecImage)
{
    if (vecImage.size() >= FRU_COMMON_HEADER_LEN) {
        vecImage[0] = 1U;
    }
    SealSums(vecImage);
}

// ---- one device, ID 0, of this component type; its EEPROM and its cached image hold the same ----

inline void Provision(const BYTES &vecImage, u8 ucComponentType, u8 ucFieldFlag, u8 ucCacheStatus)
{
    FRU_DEVICE_TBL_S stTable{};
    stTable.ucCount = 1U;
    stTable.astEntry[0].ucComponentType = ucComponentType;
    FRU_DEVICE_INFO_S stInfo{};
    stInfo.usSize = static_cast<u16>(vecImage.size());
    stInfo.ucEEPROMType = FRU_EEPROM_TYPE_MIN;
    stInfo.ucFieldFlag = ucFieldFlag;
    (void)memcpy(stInfo.acFRUName, "Device", sizeof("Device"));
    memory::Eeprom() = vecImage;
    Require(FRU_DB_PutFRUDeviceTbl(&stTable) == FRU_OK);
    Require(FRU_DB_PutFRUDeviceInfo(0U, &stInfo) == FRU_OK);
    Require(FRU_DB_PutFRUData(0U, stInfo.usSize, vecImage.data()) == FRU_OK);
    Require(FRU_DB_PutFRUDataCacheStatus(0U, ucCacheStatus) == FRU_OK);
}

inline BYTES Cached(size_t uiSize)
{
    BYTES vecImage(uiSize);
    Require(FRU_DB_GetFRUData(0U, static_cast<u16>(uiSize), vecImage.data()) == FRU_OK);
    return vecImage;
}

// What a device and its cache hold.
struct STATE_S
{
    BYTES vecEeprom;
    BYTES vecCached;
};

inline STATE_S State()
{
    return {memory::Eeprom(), Cached(memory::Eeprom().size())};
}

// After whatever was asked: a refusal has changed nothing. What was accepted stands in EEPROM and cache; behind a
// written image the cache has zeros, and the EEPROM what it had.
inline void CheckDevice(const STATE_S &stBefore, bool bAccepted)
{
    const STATE_S stNow = State();
    if (!bAccepted) {
        Require(stNow.vecEeprom == stBefore.vecEeprom && stNow.vecCached == stBefore.vecCached);
        return;
    }
    const bool bCacheKept = stNow.vecCached == stBefore.vecCached;
    const bool bChipKept = stNow.vecEeprom == stBefore.vecEeprom;
    const auto itDiffers =
        std::mismatch(stNow.vecEeprom.begin(), stNow.vecEeprom.end(), stNow.vecCached.begin()).first;
    const auto uiAgreed = itDiffers - stNow.vecEeprom.begin();
    const bool bZeros = std::all_of(stNow.vecCached.begin() + uiAgreed, stNow.vecCached.end(),
                                    [](u8 ucByte) { return ucByte == 0U; });
    const bool bUntouched =
        std::equal(itDiffers, stNow.vecEeprom.end(), stBefore.vecEeprom.begin() + uiAgreed);
    Require((bCacheKept && bChipKept) || (bZeros && bUntouched));
}

} // namespace fuzz

#endif
