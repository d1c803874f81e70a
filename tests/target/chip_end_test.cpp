// SPDX-License-Identifier: Apache-2.0
// The end of a chip, which the contract's tests lay where they like and a real one has where it is.
#include <algorithm>
#include <utility>

#include "bmc_eeprom.h"
#include "real_chips.h"

namespace {

using controller::BYTES;

constexpr u8 TYPE = 9;
constexpr u8 LOCATION[4] = {1, 0xA0, 0, 0xEE};

class ChipEnd : public controller::ContractTest
{};

i32 Move(u32 uiOffset, BYTES *pvecBytes, u8 ucDirection)
{
    return ReadWriteEEPROM(TYPE, LOCATION, pvecBytes->data(), uiOffset, static_cast<u32>(pvecBytes->size()),
                           ucDirection);
}

TEST_F(ChipEnd, ReadsShortThereAndNothingBeyond)
{
    controller::LayChip(TYPE, LOCATION, BYTES(16, 1));
    real::WriteChip(TYPE, LOCATION, real::CAPACITY - 40U, BYTES(40, 2));
    BYTES vecBytes(100, 0x5A);
    EXPECT_EQ(Move(real::CAPACITY - 40U, &vecBytes, BMC_EEPROM_READ), 40);
    BYTES vecWanted(100, 0x5A);
    std::fill_n(vecWanted.begin(), 40, u8{2});
    EXPECT_EQ(vecBytes, vecWanted);
    for (const u32 uiOffset : {real::CAPACITY, real::CAPACITY + 1U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(Move(uiOffset, &vecBytes, BMC_EEPROM_READ), 0) << uiOffset;
    }
    EXPECT_EQ(vecBytes, vecWanted);
}

TEST_F(ChipEnd, WritesShortThereAndNeverRoundToTheBegin)
{
    controller::LayChip(TYPE, LOCATION, BYTES(64, 1));
    real::WriteChip(TYPE, LOCATION, real::CAPACITY - 64U, BYTES(64, 0xFF));
    BYTES vecBytes(20, 3);
    EXPECT_EQ(Move(real::CAPACITY - 6U, &vecBytes, BMC_EEPROM_WRITE), 6);
    BYTES vecWanted(64, 0xFF);
    std::fill(vecWanted.end() - 6, vecWanted.end(), u8{3});
    EXPECT_EQ(real::ReadChip(TYPE, LOCATION, real::CAPACITY - 64U, 64), vecWanted);
    EXPECT_EQ(Move(real::CAPACITY, &vecBytes, BMC_EEPROM_WRITE), 0);
    EXPECT_EQ(Move(0xFFFFFFF0U, &vecBytes, BMC_EEPROM_WRITE), 0);
    EXPECT_EQ(controller::ChipContent(TYPE, LOCATION), BYTES(64, 1));
}

TEST_F(ChipEnd, APageIsNeverLeftByATransferWhateverItsLength)
{
    BYTES vecWanted(256, 0xFF);
    for (const auto &[uiOffset, uiLength] : {std::pair<u32, u32>{1, 31}, {1, 32}, {17, 100}, {31, 33}}) {
        controller::LayChip(TYPE, LOCATION, BYTES(256, 0xFF));
        BYTES vecBytes(uiLength);
        for (u32 i = 0; i < uiLength; ++i) {
            vecBytes[i] = static_cast<u8>(i + uiOffset);
        }
        EXPECT_EQ(Move(uiOffset, &vecBytes, BMC_EEPROM_WRITE), static_cast<i32>(uiLength));
        vecWanted.assign(256, 0xFF);
        std::copy(vecBytes.begin(), vecBytes.end(), vecWanted.begin() + uiOffset);
        EXPECT_EQ(controller::ChipContent(TYPE, LOCATION), vecWanted) << uiOffset;
    }
}

} // namespace
