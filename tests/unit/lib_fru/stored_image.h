// SPDX-License-Identifier: Apache-2.0
// Images and records for the tests of retrieval, recovery and writes.
#ifndef TESTS_UNIT_STORED_IMAGE_H
#define TESTS_UNIT_STORED_IMAGE_H

#include <gtest/gtest.h>

#include "fru_device.h"
#include "lib_fru_codec.h"
#include "support/image_builder.h"

namespace device {

constexpr char g_acStoredPath[] = "/opt/fru/psu.bin";

// A decoded record that releases itself.
class RECORD
{
  public:
    RECORD() : m_stData() {}
    ~RECORD()
    {
        Release();
    }
    RECORD(const RECORD &) = delete;
    RECORD &operator=(const RECORD &) = delete;

    void Release()
    {
        FRU_ANALYZER_SafeFree(&m_stData);
        (void)memset(static_cast<void *>(&m_stData), 0, sizeof(m_stData));
    }
    bool IsEmpty() const
    {
        return Bytes(m_stData) == BYTES(sizeof(m_stData), 0);
    }
    FRU_DATA_S *operator->()
    {
        return &m_stData;
    }
    FRU_DATA_S *Get()
    {
        return &m_stData;
    }

  private:
    FRU_DATA_S m_stData;
};

inline std::string Text(const void *pText)
{
    return pText == nullptr ? "(null)" : static_cast<const char *>(pText);
}

// An image of exactly uiSize bytes with a board area only.
inline BYTES BoardImage(size_t uiSize = 64, const std::string &strName = "NAME")
{
    image::AREAS_S stAreas;
    stAreas.vecBoard = image::BoardArea(25, {1, 2, 3}, image::Texts({"MFR", strName, "SN", "PN", "FILE"}));
    BYTES vecImage = image::Image(stAreas, 0);
    vecImage.resize(uiSize, 0);
    return vecImage;
}

// A header that says nothing, 8 bytes.
inline BYTES BareHeader()
{
    return {1, 0, 0, 0, 0, 0, 0, 0xFF};
}

// What the decoder has to say about the custom fields of an area without any.
inline std::string CountLine(const std::string &strArea, u32 uiCount, u32 uiLeft)
{
    return "0/7 lib_fru_analyzer.c: " + strArea + " CustomField count is " + std::to_string(uiCount) +
           ", length is " + std::to_string(uiLeft) + ".";
}

// An image with two chassis and one product custom fields.
inline BYTES TwoAndOneCustomFields()
{
    image::AREAS_S stAreas;
    stAreas.vecChassis = image::ChassisArea(0x17, image::Texts({"PN", "SN", "C0", "C1"}));
    stAreas.vecProduct = image::ProductArea(25, image::Texts({"M", "N", "P", "V", "S", "A", "F", "P0"}));
    return image::Image(stAreas);
}

inline void SetPath(const std::string &strPath, u16 usSize)
{
    FRU_DEVICE_INFO_S stInfo = Info(usSize);
    (void)memset(stInfo.acImageFilePath, 0, sizeof(stInfo.acImageFilePath));
    (void)memcpy(stInfo.acImageFilePath, strPath.data(), strPath.size());
    PutInfo(stInfo);
}

// The messages without the decoder's.
inline LINES OwnMessages()
{
    LINES vecOwn;
    for (const std::string &strLine : fake::Messages()) {
        if (strLine.find("lib_fru_analyzer.c") == std::string::npos) {
            vecOwn.push_back(strLine);
        }
    }
    return vecOwn;
}

// Sweeps over a read: documented results, and neither device nor cache ever changes.
inline void SweepGet(const std::function<void()> &fnSetup, u32 (*fnGet)(RECORD &),
                     const std::vector<u32> &vecResults)
{
    RECORD stRecord;
    u32 uiRet = 0;
    BYTES vecChip;
    BYTES vecCache;
    fake::Sweep(
        [&] {
            fnSetup();
            vecChip = Chip();
            vecCache = Cached();
        },
        [&] { uiRet = fnGet(stRecord); },
        [&](const fake::FAULT_S *pstFault) {
            if (uiRet == 0U) {
                EXPECT_EQ(Text(stRecord->stBoardInfo.pucBoardSerialNum), "B-SN");
            } else {
                EXPECT_NE(pstFault, nullptr);
                EXPECT_NE(std::find(vecResults.begin(), vecResults.end(), uiRet), vecResults.end());
                EXPECT_FALSE(fake::Messages().empty());
            }
            EXPECT_EQ(Chip(), vecChip);
            EXPECT_EQ(Cached(), vecCache);
            EXPECT_TRUE(fake::Calls("EEPROM write").empty());
            EXPECT_TRUE(fake::Calls("DB_Put").empty());
            stRecord.Release();
        });
}

} // namespace device

#endif
