// SPDX-License-Identifier: Apache-2.0
// The write-protect line: released for a write, asserted again, whatever becomes of the writer.
#include <algorithm>
#include <filesystem>
#include <unistd.h>

#include "bmc_eeprom.h"
#include "bmcfru_host.h"
#include "chip_root.h"
#include "controller.h"
#include "simulated_bus.h"
#include "simulated_lines.h"

namespace {

using controller::BYTES;

constexpr u8 LOCATION[3] = {3, 0xA0, 0};
constexpr u32 LINE = 5;
constexpr const char *NOTE = BMCHOST_WRITE_ENABLED_DIR "/bus3-addr0xa0";

// In the place of the chip's write-protect pin: what the line was at each page that was done.
std::vector<int> g_vecAtPages;
const chips::SIMULATED_LINES_S *g_pstLines;

void NotePage(const BMCHOST_EEPROM_PROGRESS_S *, void *)
{
    g_vecAtPages.push_back(g_pstLines->aiValue[LINE]);
}

void EndHere(const BMCHOST_EEPROM_PROGRESS_S *, void *)
{
    _exit(7); // as a kill: no destructor runs
}

class WriteProtect : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        controller::ContractTest::SetUp();
        m_pstLines = &chips::StartLines();
        g_pstLines = m_pstLines;
        g_vecAtPages.clear();
        chips::LaySimulated(3, 0x50, 2, 32, BYTES(8192, 0xFF));
        Configure({{"chip", "gpiochip0"}, {"line", LINE}});
        BMCHOST_SetEepromProgress(NotePage, nullptr);
    }
    void TearDown() override
    {
        BMCHOST_SetEepromProgress(nullptr, nullptr);
        chips::StopLines();
        controller::ContractTest::TearDown();
    }
    static void Configure(const nlohmann::json &stLine)
    {
        chips::Configure("bus3-addr0xa0", {{"backend", "i2c"},
                                           {"bus", 3},
                                           {"address", 0xA0},
                                           {"size", 8192},
                                           {"pageSize", 32},
                                           {"addressBytes", 2},
                                           {"writeTimeMs", 5},
                                           {"writeProtect", stLine}});
    }
    static i32 Write(u8 ucByte)
    {
        BYTES vecBytes(96, ucByte);
        return ReadWriteEEPROM(9, LOCATION, vecBytes.data(), 0, 96, BMC_EEPROM_WRITE);
    }
    static i32 Read()
    {
        u8 ucByte = 0;
        return ReadWriteEEPROM(9, LOCATION, &ucByte, 0, 1, BMC_EEPROM_READ);
    }
    static bool HasNote()
    {
        return std::filesystem::exists(controller::RealPath(NOTE));
    }
    // A write whose process ends after the first page.
    static void WriteAndDie()
    {
        EXPECT_EQ(controller::Await(controller::Spawn([] {
                      BMCHOST_SetEepromProgress(EndHere, nullptr);
                      return Write(2);
                  })),
                  7);
    }

    chips::SIMULATED_LINES_S *m_pstLines = nullptr;
};

TEST_F(WriteProtect, IsReleasedForAWriteAndAssertedAgain)
{
    EXPECT_EQ(Write(1), 96);
    EXPECT_EQ(g_vecAtPages, std::vector<int>(3, 0));
    EXPECT_EQ(m_pstLines->aiValue[LINE], 1);
    EXPECT_FALSE(m_pstLines->abHeld[LINE]);
    EXPECT_FALSE(HasNote());
}

TEST_F(WriteProtect, IsLeftAloneWhereNothingIsWritten)
{
    EXPECT_EQ(Write(0xFF), 96); // what it holds already
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(m_pstLines->auiSet[LINE], 0U);
}

TEST_F(WriteProtect, ALineMayBeActiveLow)
{
    Configure({{"chip", "gpiochip0"}, {"line", LINE}, {"activeLow", true}});
    m_pstLines->aiValue[LINE] = 0;
    EXPECT_EQ(Write(1), 96);
    EXPECT_EQ(g_vecAtPages, std::vector<int>(3, 1));
    EXPECT_EQ(m_pstLines->aiValue[LINE], 0);
}

TEST_F(WriteProtect, IsAssertedAgainAfterAWriteThatFails)
{
    chips::FindSimulated(3, 0x50)->bProtected = true;
    EXPECT_LT(Write(1), 0);
    EXPECT_EQ(m_pstLines->auiSet[LINE], 1U);
    EXPECT_EQ(m_pstLines->aiValue[LINE], 1);
    EXPECT_FALSE(HasNote());
}

TEST_F(WriteProtect, ALineThatIsNotThereFailsTheWriteAndNothingIsWritten)
{
    Configure({{"chip", "gpiochip9"}, {"line", LINE}});
    EXPECT_LT(Write(1), 0);
    EXPECT_NE(
        chips::LastMessage().find("the write-protect line 5 of gpiochip9 cannot be released: no such line"),
        std::string::npos)
        << chips::LastMessage();
    EXPECT_EQ(chips::FindSimulated(3, 0x50)->uiWrites, 0U);
    EXPECT_FALSE(HasNote());
    EXPECT_EQ(Read(), 1);
}

TEST_F(WriteProtect, AWriterThatIsKilledLeavesANoteByWhichTheNextReadAssertsIt)
{
    WriteAndDie();
    EXPECT_EQ(m_pstLines->aiValue[LINE], 0);
    EXPECT_TRUE(HasNote());
    m_pstLines->abHeld[LINE] = false; // the kernel has taken it from the dead
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(m_pstLines->aiValue[LINE], 1);
    EXPECT_FALSE(m_pstLines->abHeld[LINE]);
    EXPECT_FALSE(HasNote());
    const std::vector<std::string> vecMessages = controller::Messages();
    EXPECT_NE(
        std::find(vecMessages.begin(), vecMessages.end(),
                  "EEPROM bus3-addr0xa0: the write-protect line 5 of gpiochip0 was left released by a writer "
                  "that ended, and is asserted again"),
        vecMessages.end());
}

TEST_F(WriteProtect, AWriterThatIsKilledLeavesANoteByWhichTheNextWriteAssertsIt)
{
    WriteAndDie();
    m_pstLines->abHeld[LINE] = false;
    EXPECT_EQ(Write(3), 96);
    EXPECT_EQ(m_pstLines->aiValue[LINE], 1);
    EXPECT_FALSE(HasNote());
}

TEST_F(WriteProtect, TheNoteNamesTheLineThatWasReleasedThen)
{
    WriteAndDie();
    m_pstLines->abHeld[LINE] = false;
    Configure({{"chip", "gpiochip0"}, {"line", LINE + 1U}});
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(m_pstLines->aiValue[LINE], 1);
    EXPECT_EQ(m_pstLines->auiSet[LINE + 1U], 0U);
}

TEST_F(WriteProtect, ALineThatCannotBeAssertedIsToldAndKeepsItsNote)
{
    WriteAndDie();
    EXPECT_EQ(Read(), 1); // still held: by the dead, as far as this kernel says
    EXPECT_NE(
        chips::LastMessage().find("the write-protect line 5 of gpiochip0, which a writer has left released, "
                                  "cannot be asserted: busy"),
        std::string::npos)
        << chips::LastMessage();
    EXPECT_TRUE(HasNote());
}

} // namespace
