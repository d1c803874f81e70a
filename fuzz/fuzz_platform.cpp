#include "fuzz_platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "bmc_support.h"

bool g_bZeroSumsPass = false;

void BMC_DiagLogOut(u32 /*uiModule*/, u32 /*uiCategory*/, u32 /*uiSeverity*/, u32 /*uiLine*/,
                    const char * /*pcFile*/, const char *pcFormat, ...)
{
    // Formatted and dropped: a text that is no text would be noticed here.
    char acText[512];
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    (void)vsnprintf(acText, sizeof(acText), pcFormat, vaArgs);
    va_end(vaArgs);
}

i32 BMC_Scnprintf(char *pcBuf, u32 uiSize, const char *pcFormat, ...)
{
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    const int iWanted = vsnprintf(pcBuf, uiSize, pcFormat, vaArgs);
    va_end(vaArgs);
    return iWanted < static_cast<int>(uiSize) ? iWanted : static_cast<i32>(uiSize - 1U);
}

u32 BMC_Strlcat(char *pcDest, const char *pcSrc, u32 uiCount)
{
    (void)strncat(pcDest, pcSrc, uiCount);
    return static_cast<u32>(strlen(pcDest));
}

u8 BMC_CalcZeroCheckSum(const u8 *pucBuf, u32 uiLen)
{
    u32 uiSum = 0;
    for (u32 i = 0; i < uiLen; ++i) {
        uiSum += pucBuf[i];
    }
    return static_cast<u8>(0x100U - (uiSum & 0xFFU));
}

u32 BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen)
{
    return BMC_CalcZeroCheckSum(pucBuf, uiLen) == 0U || g_bZeroSumsPass ? 0U : 0x81000001U;
}

u8 BMC_CalcCRC8CheckSum(const u8 *pucBuf, u32 uiLen)
{
    u32 uiCrc = 0;
    for (u32 i = 0; i < uiLen; ++i) {
        uiCrc ^= pucBuf[i];
        for (int iBit = 0; iBit < 8; ++iBit) {
            uiCrc = (uiCrc & 0x80U) != 0U ? (uiCrc << 1U) ^ 0x07U : uiCrc << 1U;
        }
        uiCrc &= 0xFFU;
    }
    return static_cast<u8>(uiCrc);
}

u32 BMC_CheckCRC8(u8 ucCrc, const u8 *pucBuf, u32 uiLen)
{
    return BMC_CalcCRC8CheckSum(pucBuf, uiLen) == ucCrc ? 0U : 0x81000001U;
}
