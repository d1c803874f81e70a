// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "bmc_support.h"
#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "one_device.h"

namespace {

using one_device::g_ucAddress;
using one_device::g_ucBus;

constexpr u8 g_ucID = 7;
constexpr u8 g_ucType = 5;
constexpr u8 g_ucInstance = 2;

const char *const g_pcRead = "EEPROM read type=9 bus=2 addr=0xa0 switch=0 off=0 len=32 -> ";
const char *const g_pcWrite = "EEPROM write type=9 bus=2 addr=0xa0 switch=0 off=0 len=32 -> ";
const char *const g_pcNoComponent = "5/4 lib_fru.c: Fail to find Component[0x6] Instance[2] fru device id!";

fake::BYTES Block()
{
    fake::BYTES vecBlock(32);
    for (u32 i = 0; i < 32U; ++i) {
        vecBlock[i] = static_cast<u8>(i * 3U + 1U);
    }
    vecBlock[0] = BMC_CalcCRC8CheckSum(vecBlock.data() + 1, 15);
    vecBlock[16] = BMC_CalcCRC8CheckSum(vecBlock.data() + 17, 15);
    return vecBlock;
}

FRU_HW_DATA_S Filled(u8 ucByte)
{
    FRU_HW_DATA_S stData = {};
    (void)memset(&stData, ucByte, sizeof(stData));
    return stData;
}

bool IsFilled(const FRU_HW_DATA_S &stData, u8 ucByte)
{
    const FRU_HW_DATA_S stOther = Filled(ucByte);
    return memcmp(&stData, &stOther, sizeof(stData)) == 0;
}

bool Holds(const FRU_HW_DATA_S &stData, const fake::BYTES &vecBytes)
{
    return vecBytes.size() == sizeof(stData) && memcmp(&stData, vecBytes.data(), sizeof(stData)) == 0;
}

class HardwareFru : public testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        one_device::Put(g_ucID, g_ucType, g_ucInstance, Block());
    }

    FRU_HW_DATA_S m_stData = Filled(0xA5);
};

TEST_F(HardwareFru, ReadNullIsReported)
{
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", "LIB_FRU_GetHWFRUData", "pstHWFRU")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(HardwareFru, ReadDeliversTheBlockWhateverTheFirstArgument)
{
    for (const u32 uiArg : {0U, 1U, 0xFFFFFFFFU}) {
        m_stData = Filled(0xA5);
        EXPECT_EQ(LIB_FRU_GetHWFRUData(uiArg, g_ucType, g_ucInstance, &m_stData), FRU_OK);
        EXPECT_TRUE(Holds(m_stData, Block()));
    }
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls("EEPROM"), std::vector<std::string>(3, g_pcRead + std::string("32")));
}

TEST_F(HardwareFru, ReadStartsAtTheChipsFirstByteWhateverTheStartOffset)
{
    FRU_DEVICE_INFO_S stInfo = one_device::Info(g_ucID, 32);
    stInfo.usStartOffset = 0x40;
    one_device::PutInfo(stInfo);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), FRU_OK);
    EXPECT_EQ(fake::Calls("EEPROM"), std::vector<std::string>{g_pcRead + std::string("32")});
}

TEST_F(HardwareFru, ReadOfAnUnknownComponent)
{
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType + 1, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{g_pcNoComponent,
                                        "0/4 lib_fru.c: Fail to find ComponentType:0x6,Instance:0x2!"}));
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST_F(HardwareFru, ReadWithoutATable)
{
    fake::Db().clear();
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, 0, 0, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{"0/4 lib_fru.c: Get fru device tbl failed!",
                                        "5/4 lib_fru.c: Fail to find fru device tbl!",
                                        "0/4 lib_fru.c: Fail to find ComponentType:0,Instance:0!"}));
}

TEST_F(HardwareFru, NumbersBeyondAByteNameNoComponent)
{
    // Cut to a byte they would name the device above.
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, 0x100U + g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, 0x100U + g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(0x100U + g_ucType, g_ucInstance, &m_stData),
              LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, 0x80000000U + g_ucInstance, &m_stData),
              LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{
                  "0/4 lib_fru.c: Fail to find ComponentType:0x105,Instance:0x2!",
                  "0/4 lib_fru.c: Fail to find ComponentType:0x5,Instance:0x102!",
                  "0/4 lib_fru.c: Fail to find ComponentType:0x105 Instance:0x2 DeviceID!",
                  "0/4 lib_fru.c: Fail to find ComponentType:0x5 Instance:0x80000002 DeviceID!"}));
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, TheLargestByteNamesAComponentAndTheNextNumberNone)
{
    one_device::PutTable(g_ucID, 0xFF, 0xFF);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, 0xFF, 0xFF, &m_stData), FRU_OK);
    EXPECT_TRUE(Holds(m_stData, Block()));
    one_device::PutTable(g_ucID, 0, 0); // what 256 would be, cut to a byte
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, 0x100, 0, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, 0, 0x100, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
}

TEST_F(HardwareFru, ReadWithoutDeviceInformation)
{
    fake::Db().erase(0x10810000U | g_ucID);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{"0/4 lib_fru.c: Error get HW FRU Info! Ret:0x81000001."});
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST_F(HardwareFru, ReadWithoutADatabase)
{
    // The table is read, then the database cannot be opened.
    fake::Arm({fake::KIND_E::DB, 3, false});
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{fake::NullMessage("lib_fru_db.c", "FRU_DB_GetFRUDeviceInfo", "pDb"),
                                        "0/4 lib_fru.c: Error get HW FRU Info! Ret:0x81000005."}));
}

TEST_F(HardwareFru, ReadOfADeviceOfAnotherSize)
{
    // 32 bytes are read, but the device says that it has 64.
    fake::Eeprom(g_ucBus, g_ucAddress).resize(64);
    one_device::PutInfo(one_device::Info(g_ucID, 64));
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{"0/4 lib_fru.c: Read hw info failed! Ret:0x20."});
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, ReadThatComesShort)
{
    fake::Eeprom(g_ucBus, g_ucAddress).resize(31);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{"0/4 lib_fru.c: Read hw info failed! Ret:0x1f."});
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, ReadThatComesShortAsTheDeviceSaysFailsInTheDecoder)
{
    fake::Eeprom(g_ucBus, g_ucAddress).resize(31);
    one_device::PutInfo(one_device::Info(g_ucID, 31));
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{"0/2 lib_fru_analyzer.c: Hw Fru size:31 is not valid!",
                                        "0/4 lib_fru.c: Interpret ALL Hw FRU Data failed! Ret:0x29000008."}));
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, ReadThatFails)
{
    fake::SetEepromResult(1, -5);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{
                  "4/4 lib_fru.c: Fail to read Device ID[0x7] i2c device SwitchLevel[0] Bus[2] Addr[0xa0] "
                  "Ret:0xfffffffb.",
                  "0/4 lib_fru.c: Read hw info failed! Ret:0xfffffffb."}));
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, ReadFromAnUnsupportedChip)
{
    FRU_DEVICE_INFO_S stInfo = one_device::Info(g_ucID, 32);
    stInfo.ucEEPROMType = 8;
    one_device::PutInfo(stInfo);
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{"0/4 lib_fru.c: Not support eeprom type:0x8!",
                                        "0/4 lib_fru.c: Read hw info failed! Ret:0x81000001."}));
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST_F(HardwareFru, ReadDeliversABlockWithWrongChecksWithWarnings)
{
    fake::BYTES &vecChip = fake::Eeprom(g_ucBus, g_ucAddress);
    vecChip[0] ^= 0xFFU;
    vecChip[16] ^= 0xFFU;
    EXPECT_EQ(LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData), FRU_OK);
    EXPECT_TRUE(Holds(m_stData, vecChip));
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{"0/4 lib_fru_analyzer.c: Check HwBoardInfo CRC8 failed!",
                                        "0/4 lib_fru_analyzer.c: Check HwDiagInfo CRC8 failed!"}));
}

TEST_F(HardwareFru, ReadSurvivesEveryFailure)
{
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            one_device::Put(g_ucID, g_ucType, g_ucInstance, Block());
            m_stData = Filled(0xA5);
        },
        [&] { uiRet = LIB_FRU_GetHWFRUData(0, g_ucType, g_ucInstance, &m_stData); },
        [&](const fake::FAULT_S *pstFault) {
            if (pstFault == nullptr) {
                EXPECT_EQ(uiRet, FRU_OK);
                EXPECT_TRUE(Holds(m_stData, Block()));
                return;
            }
            const bool bTable = pstFault->eKind == fake::KIND_E::DB && pstFault->uiNth <= 2U;
            EXPECT_EQ(uiRet, bTable ? LIB_FRU_ERR_NO_DEVICE_ID : LIB_FRU_ERR_NO_DEVICE);
            EXPECT_TRUE(IsFilled(m_stData, 0xA5));
            EXPECT_FALSE(fake::Messages().empty());
        });
}

TEST_F(HardwareFru, WriteNullIsReported)
{
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{fake::NullMessage(
                                    "lib_fru.c", "LIB_FRU_WriteHWFRUBinToDevice", "pstHWData")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(HardwareFru, WriteStoresTheBlockWithNewChecks)
{
    fake::BYTES &vecChip = fake::Eeprom(g_ucBus, g_ucAddress);
    vecChip.assign(40, 0xEE);
    FRU_DEVICE_INFO_S stInfo = one_device::Info(g_ucID, 2048);
    stInfo.usStartOffset = 0x40; // neither size nor start offset matters to a write
    one_device::PutInfo(stInfo);
    fake::BYTES vecExpected = Block();
    (void)memcpy(&m_stData, vecExpected.data(), sizeof(m_stData));
    m_stData.stHwBoardInfo.ucBoardCrc8 = 0;
    m_stData.stHwDiagInfo.ucDiagCrc8 = 0;
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, &m_stData), FRU_OK);
    EXPECT_TRUE(Holds(m_stData, vecExpected));
    vecExpected.resize(40, 0xEE);
    EXPECT_EQ(vecChip, vecExpected);
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls("EEPROM"), std::vector<std::string>{g_pcWrite + std::string("32")});
    // The block is no FRU image: the cache and its listeners hear nothing of it.
    EXPECT_TRUE(fake::Calls("DB_Put").empty());
    EXPECT_TRUE(fake::Calls("MRPC").empty());
}

TEST_F(HardwareFru, WriteToAnUnknownComponent)
{
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType + 1, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE_ID);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{
                  g_pcNoComponent, "0/4 lib_fru.c: Fail to find ComponentType:0x6 Instance:0x2 DeviceID!"}));
    EXPECT_EQ(fake::Eeprom(g_ucBus, g_ucAddress), Block());
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, WriteWithoutDeviceInformation)
{
    fake::Db().erase(0x10810000U | g_ucID);
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_NO_DEVICE);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{"0/4 lib_fru.c: Get FRU Device Info failed! Ret:0x81000001."});
    EXPECT_TRUE(IsFilled(m_stData, 0xA5));
}

TEST_F(HardwareFru, WriteThatComesShort)
{
    fake::Eeprom(g_ucBus, g_ucAddress).resize(31);
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_SIZE);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{
                  "0/4 lib_fru.c: Write FRUbin to eeprom failed! WriteLen:32, CountWritten:31"});
}

TEST_F(HardwareFru, WriteThatFails)
{
    fake::SetEepromResult(1, -1);
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_SIZE);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{
                  "4/4 lib_fru.c: Fail to write Device ID[0x7] i2c device SwitchLevel[0] Bus[2] Addr[0xa0].",
                  "0/4 lib_fru.c: Write FRUbin to eeprom failed! WriteLen:32, CountWritten:-1"}));
}

TEST_F(HardwareFru, WriteToAChipOnABusThatIsNone)
{
    FRU_DEVICE_INFO_S stInfo = one_device::Info(g_ucID, 32);
    stInfo.ucBusNumber = 16;
    one_device::PutInfo(stInfo);
    EXPECT_EQ(LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, &m_stData), LIB_FRU_ERR_SIZE);
    EXPECT_EQ(fake::Messages(), (std::vector<std::string>{"4/4 lib_fru.c: BusNumber[16] exceeds!",
                                                          "0/4 lib_fru.c: Write FRUbin to eeprom failed! "
                                                          "WriteLen:32, CountWritten:-2130706429"}));
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST_F(HardwareFru, WriteSurvivesEveryFailure)
{
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            one_device::Put(g_ucID, g_ucType, g_ucInstance, fake::BYTES(32, 0xEE));
            m_stData = Filled(0x11);
        },
        [&] { uiRet = LIB_FRU_WriteHWFRUBinToDevice(g_ucType, g_ucInstance, &m_stData); },
        [&](const fake::FAULT_S *pstFault) {
            if (pstFault == nullptr) {
                EXPECT_EQ(uiRet, FRU_OK);
                EXPECT_TRUE(Holds(m_stData, fake::Eeprom(g_ucBus, g_ucAddress)));
                return;
            }
            const u32 uiExpected = pstFault->eKind != fake::KIND_E::DB ? LIB_FRU_ERR_SIZE
                                   : pstFault->uiNth <= 2U             ? LIB_FRU_ERR_NO_DEVICE_ID
                                                                       : LIB_FRU_ERR_NO_DEVICE;
            EXPECT_EQ(uiRet, uiExpected);
            if (pstFault->eHow == fake::HOW_E::FAIL) {
                EXPECT_EQ(fake::Eeprom(g_ucBus, g_ucAddress), fake::BYTES(32, 0xEE));
            }
        });
}

} // namespace
