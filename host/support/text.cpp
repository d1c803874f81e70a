// Bounded text, checksums, time, OEM flag.
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "support/host.h"

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

namespace host {

std::optional<u32> ToNumber(const char *pcText, u32 uiMax)
{
    const bool bHex = pcText[0] == '0' && (pcText[1] == 'x' || pcText[1] == 'X');
    const char *pcDigits = bHex ? pcText + 2 : pcText;
    const char *pcAllowed = bHex ? "0123456789abcdefABCDEF" : "0123456789";
    if (*pcDigits == '\0' || pcDigits[strspn(pcDigits, pcAllowed)] != '\0') {
        return std::nullopt; // strtoull() alone would take blanks, signs and what follows
    }
    errno = 0;
    const unsigned long long ullValue = strtoull(pcDigits, nullptr, bHex ? 16 : 10);
    return errno == 0 && ullValue <= uiMax ? std::optional<u32>(static_cast<u32>(ullValue)) : std::nullopt;
}

} // namespace host

extern "C" {

i32 BMC_Scnprintf(char *pcBuf, u32 uiSize, const char *pcFormat, ...)
{
    if (pcBuf == nullptr || uiSize == 0U) {
        return 0;
    }
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    const int iWanted = vsnprintf(pcBuf, uiSize, pcFormat, vaArgs);
    va_end(vaArgs);
    if (iWanted < 0) {
        *pcBuf = '\0';
        return 0;
    }
    return static_cast<u32>(iWanted) < uiSize ? iWanted : static_cast<i32>(uiSize - 1U);
}

u32 BMC_Strlcpy(char *pcDest, const char *pcSrc, u32 uiSize)
{
    const size_t uiLength = pcSrc == nullptr ? 0U : strlen(pcSrc);
    if (uiSize != 0U) {
        const size_t uiCopied = uiLength < uiSize ? uiLength : uiSize - 1U;
        if (uiCopied != 0U) {
            (void)memcpy(pcDest, pcSrc, uiCopied);
        }
        pcDest[uiCopied] = '\0';
    }
    return static_cast<u32>(uiLength);
}

u32 BMC_Strlcat(char *pcDest, const char *pcSrc, u32 uiCount)
{
    const size_t uiLength = strlen(pcDest);
    const size_t uiAdded = pcSrc == nullptr ? 0U : strnlen(pcSrc, uiCount);
    if (uiAdded != 0U) {
        (void)memcpy(pcDest + uiLength, pcSrc, uiAdded);
    }
    pcDest[uiLength + uiAdded] = '\0';
    return static_cast<u32>(uiLength + uiAdded);
}

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

u32 BMC_TimeStampToIsoTime(u32 uiTimeStamp, u32 uiArg, char *pcOut)
{
    if (pcOut == nullptr) {
        return host::g_uiFailed;
    }
    const time_t iTime = static_cast<time_t>(uiTimeStamp);
    struct tm stTime = {};
    const struct tm *pstTime = uiArg == 0U ? gmtime_r(&iTime, &stTime) : localtime_r(&iTime, &stTime);
    if (pstTime == nullptr) {
        *pcOut = '\0';
        return host::g_uiFailed;
    }
    return strftime(pcOut, 32U, "%Y-%m-%d %H:%M:%S", pstTime) != 0U ? 0U : host::g_uiFailed;
}

u32 BMC_GetOemFlag(void)
{
    return host::OemFlag();
}

} // extern "C"
