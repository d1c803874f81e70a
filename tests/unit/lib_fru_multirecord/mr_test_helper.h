// SPDX-License-Identifier: Apache-2.0
// Shared by the tests of the MultiRecord store: a main FRU on the fake platform, records and images.
#ifndef TESTS_UNIT_MR_TEST_HELPER_H
#define TESTS_UNIT_MR_TEST_HELPER_H

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru_codec.h"
#include "lib_fru_multirecord.h"
#include "lib_fru_multirecord/store_state.h"
#include "support/image_builder.h"

namespace mr {

using BYTES = fake::BYTES;
using LINES = std::vector<std::string>;

constexpr u32 g_uiFailed = 0xFFFFFFFFU;
constexpr u32 g_uiFruSize = 1024;
constexpr u8 g_ucBus = 1;
constexpr u8 g_ucAddress = 0xA0;

inline std::string Message(const std::string &strText)
{
    return "0/2 lib_fru_multirecord.c: " + strText;
}

inline LINES MessageLines(const LINES &vecTexts)
{
    LINES vecLines;
    for (const std::string &strText : vecTexts) {
        vecLines.push_back(Message(strText));
    }
    return vecLines;
}

inline std::string Null(const std::string &strFunction, const std::string &strPointer)
{
    return fake::NullMessage("lib_fru_multirecord.c", strFunction, strPointer);
}

template <class CONTAINER> void Append(BYTES &vecBytes, const CONTAINER &more)
{
    for (const auto cByte : more) {
        vecBytes.push_back(static_cast<u8>(cByte));
    }
}

using image::ZeroCheckSum;

// A record as it lies on the device.
inline BYTES Record(u8 ucType, u8 ucFormat, const BYTES &vecData)
{
    return image::Record(ucType, vecData, (ucFormat & 0x80U) != 0U, ucFormat & 0x7FU);
}

inline BYTES DataOf(u8 ucSubType, const std::string &strValue)
{
    BYTES vecData = {ucSubType};
    Append(vecData, strValue);
    return vecData;
}

// The same with another end-of-list bit.
inline BYTES WithEnd(BYTES vecRecord, bool bEnd)
{
    vecRecord[1] = static_cast<u8>((vecRecord[1] & 0x7FU) | (bEnd ? 0x80U : 0U));
    vecRecord[4] = ZeroCheckSum(BYTES(vecRecord.begin(), vecRecord.begin() + 4));
    return vecRecord;
}

// A list's bytes; the last record bears the end-of-list bit.
inline BYTES List(const std::vector<BYTES> &vecRecords)
{
    BYTES vecBytes;
    for (size_t i = 0; i < vecRecords.size(); ++i) {
        Append(vecBytes, WithEnd(vecRecords[i], i + 1U == vecRecords.size()));
    }
    return vecBytes;
}

// An image with a MultiRecord area only, or without any when there are no records.
inline BYTES Image(const std::vector<BYTES> &vecRecords, size_t uiSize = g_uiFruSize)
{
    BYTES vecImage = {1, 0, 0, 0, 0, static_cast<u8>(vecRecords.empty() ? 0 : 1), 0};
    vecImage.push_back(ZeroCheckSum(vecImage));
    Append(vecImage, List(vecRecords));
    vecImage.resize(uiSize);
    return vecImage;
}

// Makes this the main FRU: component type 0, instance 0, device ID 0, read from its chip.
inline void PutMainFru(const BYTES &vecImage)
{
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = 1;
    const auto *pucTable = reinterpret_cast<const u8 *>(&stTable);
    fake::Db()[0x108105FF] = BYTES(pucTable, pucTable + sizeof(stTable));
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.usSize = static_cast<u16>(vecImage.size());
    stInfo.ucEEPROMType = 9;
    stInfo.ucBusNumber = g_ucBus;
    stInfo.ucAddress = g_ucAddress;
    (void)std::strcpy(stInfo.acFRUName, "BMC");
    const auto *pucInfo = reinterpret_cast<const u8 *>(&stInfo);
    fake::Db()[0x10810000] = BYTES(pucInfo, pucInfo + sizeof(stInfo));
    fake::Db()[0x10810200] = vecImage;
    fake::Db()[0x10810400] = BYTES{1};
    fake::Eeprom(g_ucBus, g_ucAddress) = vecImage;
}

inline BYTES Chip()
{
    return fake::Eeprom(g_ucBus, g_ucAddress);
}

inline u32 Update(u8 ucSubType, const BYTES &vecValue, u8 ucType = 3)
{
    // A heap buffer of the exact size, so that a read past it is seen.
    const std::unique_ptr<u8[]> upValue(new u8[vecValue.size()]);
    std::copy(vecValue.begin(), vecValue.end(), upValue.get());
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = ucType;
    stParam.ucSubType = ucSubType;
    stParam.uiLength = static_cast<u32>(vecValue.size());
    stParam.pucBuf = upValue.get();
    return FRU_innerUpdateMultiRecord(&stParam);
}

inline u32 Update(u8 ucSubType, const std::string &strValue)
{
    return Update(ucSubType, BYTES(strValue.begin(), strValue.end()));
}

inline u32 QueuedCount()
{
    return g_stInnerMRStore.ucCount;
}

// A queued record's bytes, as many as its length byte says.
inline BYTES Queued(u32 uiSlot)
{
    const auto *pucRecord = reinterpret_cast<const u8 *>(g_stInnerMRStore.apstRecords[uiSlot]);
    return BYTES(pucRecord, pucRecord + 5U + pucRecord[2]);
}

// Puts a record straight into the store, from a buffer of the size that records have in memory.
inline void PutQueued(const BYTES &vecRecord)
{
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    const size_t uiSize = FRU_roundMultiRecordSize(static_cast<u32>(vecRecord.size()));
    const std::unique_ptr<u8[]> upRecord(new u8[uiSize]());
    std::copy(vecRecord.begin(), vecRecord.end(), upRecord.get());
    ASSERT_EQ(FRU_queryAndUpdateInnerMultiRecord(reinterpret_cast<const FRU_INNER_MR_S *>(upRecord.get())),
              0U);
}

inline int SemValue()
{
    int iValue = -1;
    (void)sem_getvalue(&g_stInnerMRStore.stSem, &iValue);
    return iValue;
}

inline bool IsStoreZero()
{
    const auto *pucStore = reinterpret_cast<const u8 *>(&g_stInnerMRStore);
    return std::all_of(pucStore, pucStore + sizeof(g_stInnerMRStore), [](u8 ucByte) { return ucByte == 0U; });
}

inline void DestroyQuietly()
{
    if (g_stInnerMRStore.ucInited == 1U) {
        while (sem_trywait(&g_stInnerMRStore.stSem) == 0) {
        }
        (void)sem_post(&g_stInnerMRStore.stSem);
        FRU_destroyMultiRecords();
    }
}

// Another thread that holds the store's semaphore until it is told to release it.
class HOLDER
{
  public:
    HOLDER()
        : m_thread([this] {
              (void)sem_wait(&g_stInnerMRStore.stSem);
              m_bHolds = true;
              while (!m_bRelease) {
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
              (void)sem_post(&g_stInnerMRStore.stSem);
          })
    {
        while (!m_bHolds) {
            std::this_thread::yield();
        }
    }
    HOLDER(const HOLDER &) = delete;
    HOLDER &operator=(const HOLDER &) = delete;
    ~HOLDER()
    {
        Release();
        m_thread.join();
    }
    void Release()
    {
        m_bRelease = true;
    }

  private:
    std::atomic<bool> m_bHolds{false};
    std::atomic<bool> m_bRelease{false};
    std::thread m_thread; // last: it uses the others
};

// Starts every test with a fresh platform and store, and sees that nothing is left behind.
class STORE_TEST : public testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        ASSERT_TRUE(IsStoreZero());
        m_uiLive = fake::LiveAllocations();
    }
    void TearDown() override
    {
        fake::Disarm();
        DestroyQuietly();
        EXPECT_TRUE(IsStoreZero());
        EXPECT_EQ(fake::LiveAllocations(), m_uiLive);
    }

  private:
    u32 m_uiLive = 0;
};

} // namespace mr

#endif
