// SPDX-License-Identifier: Apache-2.0
// Checksums.
#include <array>

#include "plain/plain.h"

namespace {

constexpr std::array<u8, 256> MakeCrcTable()
{
    std::array<u8, 256> aucTable{};
    for (u32 i = 0; i < aucTable.size(); ++i) {
        u32 uiCrc = i;
        for (int iBit = 0; iBit < 8; ++iBit) {
            uiCrc = (uiCrc & 0x80U) != 0U ? (uiCrc << 1U) ^ 0x07U : uiCrc << 1U;
        }
        aucTable[i] = static_cast<u8>(uiCrc);
    }
    return aucTable;
}

constexpr std::array<u8, 256> g_aucCrcTable = MakeCrcTable();

u8 SumOf(const u8 *pucBuf, u32 uiLen)
{
    u32 uiSum = 0;
    for (u32 i = 0; i < uiLen; ++i) {
        uiSum += pucBuf[i];
    }
    return static_cast<u8>(uiSum);
}

} // namespace

extern "C" {

u8 BMC_CalcZeroCheckSum(const u8 *pucBuf, u32 uiLen)
{
    return static_cast<u8>(0x100U - SumOf(pucBuf, uiLen));
}

u32 BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen)
{
    return SumOf(pucBuf, uiLen) == 0U ? 0U : host::g_uiFailed;
}

u8 BMC_CalcCRC8CheckSum(const u8 *pucBuf, u32 uiLen)
{
    u8 ucCrc = 0;
    for (u32 i = 0; i < uiLen; ++i) {
        ucCrc = g_aucCrcTable[static_cast<u8>(ucCrc ^ pucBuf[i])];
    }
    return ucCrc;
}

u32 BMC_CheckCRC8(u8 ucCrc, const u8 *pucBuf, u32 uiLen)
{
    return BMC_CalcCRC8CheckSum(pucBuf, uiLen) == ucCrc ? 0U : host::g_uiFailed;
}

} // extern "C"
