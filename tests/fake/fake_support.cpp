// Support library: messages, bounded text, checksums, time, OEM flag.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "bmc_support.h"
#include "fake_state.h"

namespace {

std::mutex g_mtxMessages;

} // namespace

namespace fake {

void SetBmcOemFlag(u32 uiFlag)
{
    State().uiBmcOemFlag = uiFlag;
}

} // namespace fake

extern "C" {

void BMC_DiagLogOut(u32 uiModule, u32 uiCategory, u32 uiSeverity, u32 uiLine, const char *pcFile,
                    const char *pcFormat, ...)
{
    char acText[2048];
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    (void)vsnprintf(acText, sizeof(acText), pcFormat, vaArgs);
    va_end(vaArgs);
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    fake::State().vecMessages.push_back({uiModule, uiCategory, uiSeverity, uiLine, pcFile, pcFormat, acText});
}

i32 BMC_Scnprintf(char *pcBuf, u32 uiSize, const char *pcFormat, ...)
{
    if (uiSize == 0U) {
        return 0;
    }
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    const int iWanted = vsnprintf(pcBuf, uiSize, pcFormat, vaArgs);
    va_end(vaArgs);
    return iWanted < static_cast<int>(uiSize) ? iWanted : static_cast<i32>(uiSize - 1U);
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
    return BMC_CalcZeroCheckSum(pucBuf, uiLen) == 0U ? 0U : 0x81000001U;
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

u32 BMC_TimeStampToIsoTime(u32 uiTimeStamp, u32 uiArg, char *pcOut)
{
    const u32 uiResult = fake::Fault(fake::KIND_E::CLOCK) ? 0x81000001U : 0U;
    fake::Journal("BMC_TimeStampToIsoTime %u %u -> %#x", uiTimeStamp, uiArg, uiResult);
    if (uiResult == 0U) {
        (void)snprintf(pcOut, 32, "T%u", uiTimeStamp);
    }
    return uiResult;
}

u32 BMC_GetOemFlag(void)
{
    return fake::State().uiBmcOemFlag;
}

} // extern "C"
