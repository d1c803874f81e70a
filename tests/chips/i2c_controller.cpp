// SPDX-License-Identifier: Apache-2.0
// The contract tests' chips on a raw bus.
#include "chip_root.h"
#include "controller.h"
#include "simulated_bus.h"

namespace {

constexpr u32 ADDRESS = 0x50;
constexpr u32 NAMED_ADAPTER = 20; // chips with a name lie here
constexpr u32 SWITCH_ADAPTER = 100;
constexpr u32 ONE_BYTE_SIZE = 2048;

u32 AdapterOf(u8 ucType, const void *pLocation)
{
    if (ucType < 9U || ucType > 15U) {
        return NAMED_ADAPTER + static_cast<u32>(static_cast<const char *>(pLocation)[0]);
    }
    const u8 *pucLocation = static_cast<const u8 *>(pLocation);
    return pucLocation[0] + pucLocation[2] * SWITCH_ADAPTER;
}

chips::SIMULATED_CHIP_S &ChipAt(u8 ucType, const void *pLocation)
{
    chips::SIMULATED_CHIP_S *pstChip = chips::FindSimulated(AdapterOf(ucType, pLocation), ADDRESS);
    EXPECT_NE(pstChip, nullptr);
    return *pstChip;
}

} // namespace

namespace chips {

void StartChips()
{
    StartBus();
}

void StopChips()
{
    StopBus();
}

} // namespace chips

namespace controller {

const u32 g_uiPageSize = 16;

void LayChip(u8 ucType, const void *pLocation, const BYTES &vecContent)
{
    const u32 uiBytes = vecContent.size() > ONE_BYTE_SIZE ? 2U : 1U;
    chips::LaySimulated(AdapterOf(ucType, pLocation), ADDRESS, uiBytes, g_uiPageSize, vecContent);
    chips::Configure(chips::NameOf(ucType, pLocation), {{"backend", "i2c"},
                                                        {"adapter", AdapterOf(ucType, pLocation)},
                                                        {"address", "0xa0"},
                                                        {"size", vecContent.size()},
                                                        {"addressBytes", uiBytes},
                                                        {"pageSize", g_uiPageSize},
                                                        {"writeTimeMs", 5}});
}

BYTES ChipContent(u8 ucType, const void *pLocation)
{
    return chips::ContentOf(ChipAt(ucType, pLocation));
}

void ProtectChip(u8 ucType, const void *pLocation)
{
    ChipAt(ucType, pLocation).bProtected = true;
}

} // namespace controller
