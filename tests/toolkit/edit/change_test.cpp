// SPDX-License-Identifier: Apache-2.0
// Changing a device: what is refused before it is written, and what is noticed afterwards.
#include "toolkit/edit/change.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

#include "bmc_eeprom.h"
#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"

namespace {

constexpr u16 SIZE = 512U;
constexpr u8 DEVICE_ID = 7U;

// One device, dev (0x20:0), whose EEPROM and cached image are erased.
class Change : public testing::Test
{
  protected:
    void SetUp() override
    {
        char acRoot[] = "/tmp/toolkit-test-XXXXXX";
        ASSERT_NE(mkdtemp(acRoot), nullptr);
        m_strRoot = acRoot;
        ASSERT_EQ(BMCHOST_SetRoot(acRoot), 0U);
        KeepDiagnostics({});
        m_stDevice.stEntry.ucDeviceID = DEVICE_ID;
        m_stDevice.stEntry.ucComponentType = 0x20U;
        m_stDevice.stInfo.ucDeviceID = DEVICE_ID;
        m_stDevice.stInfo.ucEEPROMType = FRU_EEPROM_TYPE_MIN;
        m_stDevice.stInfo.ucBusNumber = 5U;
        m_stDevice.stInfo.ucAddress = 0xA6U;
        m_stDevice.stInfo.usSize = SIZE;
        m_stDevice.bHasInfo = true;
        m_stDevice.strName = "dev";
        ASSERT_EQ(FRU_DB_PutFRUDeviceInfo(DEVICE_ID, &m_stDevice.stInfo), FRU_OK);
        const std::vector<u8> vecErased(SIZE, 0xFFU);
        WriteFileBytes(m_strRoot + "/eeprom/bus5-addr0xa6.bin", vecErased);
        PutCache(vecErased);
    }

    void TearDown() override
    {
        (void)BMCHOST_SetRoot("/nonexistent");
        std::filesystem::remove_all(m_strRoot);
    }

    void PutCache(const std::vector<u8> &vecBytes) const
    {
        ASSERT_EQ(FRU_DB_PutFRUData(DEVICE_ID, SIZE, vecBytes.data()), FRU_OK);
    }

    void PutEeprom(std::vector<u8> vecBytes) const
    {
        ASSERT_EQ(ReadWriteEEPROM(m_stDevice.stInfo.ucEEPROMType, &m_stDevice.stInfo.ucBusNumber,
                                  vecBytes.data(), 0U, SIZE, BMC_EEPROM_WRITE),
                  SIZE);
    }

    // A record with a product area, this one text in it, and custom fields behind.
    static void Fill(Record &stRecord, const std::string &strVersion,
                     const std::vector<std::string> &vecCustom = {})
    {
        const AREA_ROW_S &stArea = *FindAreaRow(Area::Product);
        stRecord.AddArea(stArea);
        for (const FIELD_ROW_S &stRow : stArea.vecFields) {
            if (stRow.enKind == Kind::Text) {
                const std::string strText = stRow.enField == Field::Version ? strVersion : "";
                stRecord.Store(stRow.uiOffset, HeapText(strText, strText.size() + 1U));
            }
        }
        if (vecCustom.empty()) {
            return;
        }
        u8 **ppucFields = static_cast<u8 **>(HeapBuffer(vecCustom.size(), sizeof(u8 *)));
        for (size_t i = 0; i < vecCustom.size(); i++) {
            ppucFields[i] = HeapText(vecCustom[i], vecCustom[i].size() + 1U);
        }
        stRecord.Store(stArea.stCustom.uiOffset, ppucFields);
        *stRecord.At(stArea.stCustom.uiCount) = static_cast<u8>(vecCustom.size());
    }

    CHANGE_S Plan(const Record &stRecord) const
    {
        return PlanRecord(m_stDevice, "the new text", stRecord, PlanNothing(m_stDevice));
    }

    std::string Refusal(const Record &stRecord) const
    {
        try {
            (void)Plan(stRecord);
        } catch (const Error &stError) {
            return stError.what();
        }
        return "";
    }

    std::string m_strRoot;
    DEVICE_S m_stDevice = {};
};

TEST_F(Change, ARecordsImageGoesOverTheEepromAndOverZerosInTheCache)
{
    Record stRecord;
    Fill(stRecord, "1.0");
    const CHANGE_S stChange = Plan(stRecord);
    ASSERT_TRUE(stChange.optEeprom.has_value() && stChange.optCache.has_value());
    EXPECT_EQ(stChange.optEeprom->optBefore, std::vector<u8>(SIZE, 0xFFU));
    EXPECT_EQ(stChange.uiWritten, 8U + 16U);
    EXPECT_EQ(stChange.optEeprom->vecAfter[stChange.uiWritten], 0xFFU);
    EXPECT_EQ(stChange.optCache->vecAfter[stChange.uiWritten], 0U);
    EXPECT_EQ(stChange.optCache->vecAfter.size(), size_t{SIZE});
    // Nothing is written by planning.
    EXPECT_EQ(ReadSource(m_stDevice, Source::Eeprom).vecBytes, std::vector<u8>(SIZE, 0xFFU));
}

TEST_F(Change, AStepBeginsWhereTheOneBeforeItEnds)
{
    Record stLong;
    Fill(stLong, std::string(40U, 'v'));
    Record stShort;
    Fill(stShort, "v");
    const CHANGE_S stFirst = Plan(stLong);
    const CHANGE_S stSecond = PlanRecord(m_stDevice, "the new text", stShort, stFirst);
    EXPECT_EQ(stSecond.optEeprom->optBefore, stFirst.optEeprom->vecAfter);
    EXPECT_EQ(stSecond.optCache->optBefore, stFirst.optCache->vecAfter);
    EXPECT_LT(stSecond.uiWritten, stFirst.uiWritten);
    // What the longer image left behind the shorter one stays in the EEPROM.
    EXPECT_EQ(stSecond.optEeprom->vecAfter[stFirst.uiWritten - 1U],
              stFirst.optEeprom->vecAfter[stFirst.uiWritten - 1U]);
}

TEST_F(Change, AWriteThatKeepsItsPlanIsGood)
{
    Record stRecord;
    Fill(stRecord, "1.0");
    const CHANGE_S stChange = Plan(stRecord);
    const OUTCOME_S stOutcome = ApplyChange(stChange, "writing", nullptr, [&] {
        PutEeprom(stChange.optEeprom->vecAfter);
        PutCache(stChange.optCache->vecAfter);
        return u32{FRU_OK};
    });
    EXPECT_EQ(stOutcome.uiStatus, FRU_OK);
    EXPECT_EQ(stOutcome.strHomeDiffers, "");
    EXPECT_TRUE(stOutcome.bCacheHolds);
}

TEST_F(Change, OneByteThatWasNotWrittenIsNoticed)
{
    Record stRecord;
    Fill(stRecord, "1.0");
    const CHANGE_S stChange = Plan(stRecord);
    const OUTCOME_S stOutcome = ApplyChange(stChange, "writing", nullptr, [&] {
        std::vector<u8> vecTorn = stChange.optEeprom->vecAfter;
        vecTorn[20] = 0xEEU;
        PutEeprom(vecTorn);
        return u32{FRU_OK};
    });
    EXPECT_NE(stOutcome.strHomeDiffers.find(
                  "the EEPROM holds other bytes than were to be written, from byte 0x0014 on"),
              std::string::npos)
        << stOutcome.strHomeDiffers;
    EXPECT_FALSE(stOutcome.bCacheHolds);
}

TEST_F(Change, ACustomFieldThatReadersTakeForTheEndIsRefused)
{
    Record stRecord;
    Fill(stRecord, "1.0", {"ab", "x", "cd"});
    EXPECT_EQ(Refusal(stRecord),
              "dev (0x20:0): with the new text the image would read back differently: it holds a custom "
              "field of one character, whose length byte is the mark that ends the fields");
}

TEST_F(Change, AnImageThatDoesNotFitIsRefused)
{
    m_stDevice.stInfo.usSize = 16U;
    Record stRecord;
    Fill(stRecord, "1.0");
    EXPECT_EQ(
        Refusal(stRecord),
        "dev (0x20:0): no image can be made with the new text: it would take 24 bytes, and the FRU has 16");
}

TEST_F(Change, BytesThatCannotBeReadBeforehandAreNoObstacle)
{
    std::filesystem::remove_all(m_strRoot + "/eeprom");
    const CHANGE_S stChange = PlanBytes(m_stDevice, std::vector<u8>(SIZE, 0U), true);
    ASSERT_TRUE(stChange.optEeprom.has_value() && stChange.optCache.has_value());
    EXPECT_FALSE(stChange.optEeprom->optBefore.has_value());
    EXPECT_TRUE(stChange.optCache->optBefore.has_value());
    const OUTCOME_S stOutcome = ApplyChange(stChange, "writing", nullptr, [] { return u32{FRU_ERR_FAILED}; });
    EXPECT_EQ(stOutcome.uiStatus, FRU_ERR_FAILED);
    EXPECT_NE(stOutcome.strHomeDiffers.find("does not answer"), std::string::npos)
        << stOutcome.strHomeDiffers;
}

TEST_F(Change, ADeviceWithoutEepromHasItsHomeInTheCache)
{
    m_stDevice.stInfo.ucDatabaseOnly = 1U;
    Record stRecord;
    Fill(stRecord, "1.0");
    const CHANGE_S stChange = PlanRecord(m_stDevice, "the new text", stRecord, PlanNothing(m_stDevice));
    EXPECT_FALSE(stChange.optEeprom.has_value());
    EXPECT_EQ(&stChange.Home(), &*stChange.optCache);
}

} // namespace
