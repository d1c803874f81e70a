// SPDX-License-Identifier: Apache-2.0
#include "cut_world.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "bmc_db.h"
#include "bmc_eeprom.h"
#include "bmc_mrpc.h"
#include "bmc_support.h"
#include "common/file_access.h"

namespace {

using cut::HOW_E;
using fake::BYTES;

const char g_acSerial[] = "/mnt/sdmmc0p4/board/ProductSerialNumber";
const char g_acSerialCopy[] = "/var/network/ProductSerialNumber";
constexpr size_t g_uiSharedSize = 1U << 20U;
constexpr size_t g_uiGarbage = 16U;

BYTES g_vecJournal;
u32 g_uiJournalCalls;
u32 g_uiFailingJournalCall;

std::optional<u32> g_optStuck;

// The run that is going on.
cut::POINT_S g_stPoint;
std::vector<std::string> g_vecChanges;
const label::DEVICE_S *g_pstDevice;
u8 *g_pucShared;

// ---- from the process that is cut to the one that looks at it

class Writer
{
  public:
    void Put(const void *pData, size_t uiSize)
    {
        const u32 uiLength = static_cast<u32>(uiSize);
        Raw(&uiLength, sizeof(uiLength));
        Raw(pData, uiSize);
    }
    void Put(const BYTES &vecBytes)
    {
        Put(vecBytes.data(), vecBytes.size());
    }
    void PutNumber(u32 uiNumber)
    {
        Put(&uiNumber, sizeof(uiNumber));
    }

  private:
    void Raw(const void *pData, size_t uiSize)
    {
        if (m_uiAt + uiSize > g_uiSharedSize) {
            _exit(2);
        }
        if (uiSize != 0U) {
            (void)memcpy(g_pucShared + m_uiAt, pData, uiSize);
        }
        m_uiAt += uiSize;
    }
    size_t m_uiAt = 0U;
};

class Reader
{
  public:
    BYTES Get()
    {
        u32 uiLength = 0U;
        (void)memcpy(&uiLength, g_pucShared + m_uiAt, sizeof(uiLength));
        const u8 *pucData = g_pucShared + m_uiAt + sizeof(uiLength);
        m_uiAt += sizeof(uiLength) + uiLength;
        return {pucData, pucData + uiLength};
    }
    u32 GetNumber()
    {
        u32 uiNumber = 0U;
        const BYTES vecBytes = Get();
        (void)memcpy(&uiNumber, vecBytes.data(), sizeof(uiNumber));
        return uiNumber;
    }

  private:
    size_t m_uiAt = 0U;
};

[[noreturn]] void End(bool bCut, u32 uiResult)
{
    Writer writer;
    writer.PutNumber(bCut ? 1U : 0U);
    writer.PutNumber(uiResult);
    writer.PutNumber(static_cast<u32>(g_vecChanges.size()));
    for (const std::string &strChange : g_vecChanges) {
        writer.Put(strChange.data(), strChange.size());
    }
    writer.Put(fake::Eeprom(g_pstDevice->ucBus, g_pstDevice->ucAddress));
    writer.Put(g_vecJournal);
    writer.PutNumber(static_cast<u32>(fake::Db().size()));
    for (const auto &[uiKey, vecRecord] : fake::Db()) {
        writer.PutNumber(uiKey);
        writer.Put(vecRecord);
    }
    _exit(0);
}

cut::RUN_S ReadRun()
{
    cut::RUN_S stRun;
    Reader reader;
    stRun.bCut = reader.GetNumber() != 0U;
    stRun.uiResult = reader.GetNumber();
    for (u32 uiLeft = reader.GetNumber(); uiLeft > 0U; --uiLeft) {
        const BYTES vecText = reader.Get();
        stRun.vecChanges.emplace_back(vecText.begin(), vecText.end());
    }
    stRun.stLeft.vecChip = reader.Get();
    stRun.stLeft.vecJournal = reader.Get();
    for (u32 uiLeft = reader.GetNumber(); uiLeft > 0U; --uiLeft) {
        const u32 uiKey = reader.GetNumber();
        stRun.stLeft.mapDb[uiKey] = reader.Get();
    }
    stRun.stLeft.optSerial = fake::ReadFile(g_acSerial);
    stRun.stLeft.optSerialCopy = fake::ReadFile(g_acSerialCopy);
    return stRun;
}

// ---- the calls that change something

template <typename... ARGS> std::string Text(const char *pcFormat, ARGS... args)
{
    char acText[80];
    (void)snprintf(acText, sizeof(acText), pcFormat, args...);
    return acText;
}

// Notes a change that is about to happen. Ends here where it is to be cut before it, else says how it is to
// be cut.
std::optional<HOW_E> Change(const std::string &strChange)
{
    g_vecChanges.push_back(strChange);
    if (g_vecChanges.size() != g_stPoint.uiNth) {
        return std::nullopt;
    }
    if (g_stPoint.eHow == HOW_E::BEFORE) {
        End(true, 0U);
    }
    return g_stPoint.eHow;
}

u32 StoreJournal(void * /*pContext*/, const u8 *pucEntry, u32 uiLength)
{
    if (++g_uiJournalCalls == g_uiFailingJournalCall) {
        return 1U;
    }
    const bool bHalf = Change("journal store").has_value();
    g_vecJournal.assign(pucEntry, pucEntry + (bHalf ? uiLength / 2U : uiLength));
    if (bHalf) {
        End(true, 0U);
    }
    return 0U;
}

u32 LoadJournal(void * /*pContext*/, u32 uiOffset, u8 *pucOut, u32 uiLength)
{
    if (++g_uiJournalCalls == g_uiFailingJournalCall) {
        return 1U;
    }
    for (u32 i = 0U; i < uiLength; ++i) { // empty storage as flash has it
        pucOut[i] = uiOffset + i < g_vecJournal.size() ? g_vecJournal[uiOffset + i] : 0xFFU;
    }
    return 0U;
}

u32 EraseJournal(void * /*pContext*/)
{
    if (++g_uiJournalCalls == g_uiFailingJournalCall) {
        return 1U;
    }
    (void)Change("journal erase");
    g_vecJournal.clear();
    return 0U;
}

const SAFE_JOURNAL_S g_stJournal = {StoreJournal, LoadJournal, EraseJournal, nullptr};

void PutFile(const char *pcPath, const std::optional<BYTES> &optBytes)
{
    (void)remove(fake::RealPath(pcPath).c_str());
    if (optBytes) {
        fake::WriteFile(pcPath, *optBytes);
    }
}

} // namespace

extern "C" {
i32 __real_ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength,
                           u8 ucDirection);
u32 __real_DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine);
u32 __real_DB_Del(void *pDb, const u32 *puiKey);
u32 __real_MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
                     MRPC_MSG_S **ppstRes);
u32 __real_BMC_Mkdir(const char *pcPath);
u32 __real_BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest);

i32 __wrap_ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength,
                           u8 ucDirection)
{
    if (ucDirection == BMC_EEPROM_WRITE) {
        const auto optHow = Change(Text("EEPROM %u+%u", uiOffset, uiLength));
        if (optHow) {
            const u32 uiDone = *optHow == HOW_E::FIRST_PAGE ? 0U : uiLength / 2U;
            (void)__real_ReadWriteEEPROM(ucType, pLocation, pucBuf, uiOffset, uiDone, ucDirection);
            if (*optHow != HOW_E::HALF) {
                BYTES vecGarbage(pucBuf + uiDone,
                                 pucBuf + uiDone + std::min<size_t>(g_uiGarbage, uiLength - uiDone));
                for (u8 &ucByte : vecGarbage) {
                    ucByte = static_cast<u8>(~ucByte);
                }
                (void)__real_ReadWriteEEPROM(ucType, pLocation, vecGarbage.data(), uiOffset + uiDone,
                                             static_cast<u32>(vecGarbage.size()), ucDirection);
            }
            End(true, 0U);
        }
    }
    if (!g_optStuck) {
        return __real_ReadWriteEEPROM(ucType, pLocation, pucBuf, uiOffset, uiLength, ucDirection);
    }
    u8 &ucStuck = fake::Eeprom(g_pstDevice->ucBus, g_pstDevice->ucAddress).at(*g_optStuck);
    const u8 ucKept = ucStuck;
    const i32 iResult = __real_ReadWriteEEPROM(ucType, pLocation, pucBuf, uiOffset, uiLength, ucDirection);
    ucStuck = ucKept;
    return iResult;
}

u32 __wrap_DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine)
{
    (void)Change(Text("put %#x", uiKey & ~0xFFU));
    return __real_DB_PutInternal(pDb, uiKey, uiLen, pData, pcFile, uiLine);
}

u32 __wrap_DB_Del(void *pDb, const u32 *puiKey)
{
    (void)Change(Text("delete %#x", *puiKey & ~0xFFU));
    return __real_DB_Del(pDb, puiKey);
}

u32 __wrap_MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
                     MRPC_MSG_S **ppstRes)
{
    (void)Change(Text("tell %u/%u", uiService, uiMethod));
    return __real_MRPC_Call(uiService, uiMethod, uiReqLen, pReq, uiTimeoutMs, ppstRes);
}

u32 __wrap_BMC_Mkdir(const char *pcPath)
{
    (void)Change("make directory");
    return __real_BMC_Mkdir(pcPath);
}

u32 __wrap_BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest)
{
    (void)Change("copy serial number");
    return __real_BMC_CopyFileWithAllMode(pcSrc, pcDest);
}
}

FILE *FRU_OpenFile(const char *pcPath, const char *pcMode)
{
    const bool bHalf = *pcMode == 'w' && Change("empty serial number").has_value();
    FILE *pstFile = fopen(fake::RealPath(pcPath).c_str(), pcMode);
    if (bHalf) {
        End(true, 0U);
    }
    return pstFile;
}

bool FRU_FileExists(const char *pcPath)
{
    return fake::ReadFile(pcPath).has_value();
}

namespace cut {

const char *HowName(HOW_E eHow)
{
    static const char *const g_apcNames[] = {"before", "half way", "in the first page", "in the next page"};
    return g_apcNames[static_cast<size_t>(eHow)];
}

LASTING_S Provision(const label::DEVICE_S &stDevice, const BYTES &vecImage)
{
    fake::Reset();
    label::Provision(stDevice, vecImage);
    g_vecJournal.clear();
    LASTING_S stLasting = Lasting(stDevice);
    const auto itImage = stLasting.vecChip.begin() + stDevice.usStartOffset;
    auto itEnd = itImage + stDevice.usSize;
    while (itEnd != itImage && itEnd[-1] == 0U) {
        *--itEnd = 0xA5U; // the cache has zeros there
    }
    return stLasting;
}

void Start(const label::DEVICE_S &stDevice, const LASTING_S &stLasting)
{
    fake::Reset();
    fake::Eeprom(stDevice.ucBus, stDevice.ucAddress) = stLasting.vecChip;
    fake::Db() = stLasting.mapDb;
    fake::MakeDirectory("/var/network");
    PutFile(g_acSerial, stLasting.optSerial);
    PutFile(g_acSerialCopy, stLasting.optSerialCopy);
    g_vecJournal = stLasting.vecJournal;
    g_vecChanges.clear();
    g_stPoint = {};
    g_optStuck.reset();
    g_pstDevice = &stDevice;
    FailJournalCall(0U);
}

LASTING_S Lasting(const label::DEVICE_S &stDevice)
{
    return {fake::Eeprom(stDevice.ucBus, stDevice.ucAddress), fake::Db(), g_vecJournal,
            fake::ReadFile(g_acSerial), fake::ReadFile(g_acSerialCopy)};
}

RUN_S Run(const label::DEVICE_S &stDevice, const LASTING_S &stStart, const std::function<u32()> &fnCall,
          const POINT_S &stPoint)
{
    if (g_pucShared == nullptr) {
        void *pShared =
            mmap(nullptr, g_uiSharedSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        EXPECT_NE(pShared, MAP_FAILED);
        g_pucShared = static_cast<u8 *>(pShared);
    }
    Start(stDevice, stStart);
    if (stPoint.uiNth == 0U) { // nothing to be cut: no process is needed
        const u32 uiResult = fnCall();
        return {false, uiResult, g_vecChanges, Lasting(stDevice)};
    }
    g_stPoint = stPoint;
    const pid_t iChild = fork();
    if (iChild == 0) {
        const u32 uiResult = fnCall();
        End(false, uiResult);
    }
    int iStatus = -1;
    EXPECT_EQ(waitpid(iChild, &iStatus, 0), iChild);
    EXPECT_EQ(iStatus, 0);
    g_stPoint = {};
    return ReadRun();
}

std::vector<POINT_S> Points(const std::vector<std::string> &vecChanges)
{
    std::vector<POINT_S> vecPoints;
    for (u32 i = 0U; i < vecChanges.size(); ++i) {
        const std::string &strChange = vecChanges[i];
        vecPoints.push_back({i + 1U, HOW_E::BEFORE});
        const bool bEeprom = strChange.rfind("EEPROM", 0U) == 0U;
        if (bEeprom || strChange == "journal store" || strChange == "empty serial number") {
            vecPoints.push_back({i + 1U, HOW_E::HALF});
        }
        if (bEeprom) {
            vecPoints.push_back({i + 1U, HOW_E::FIRST_PAGE});
            vecPoints.push_back({i + 1U, HOW_E::NEXT_PAGE});
        }
    }
    return vecPoints;
}

const SAFE_JOURNAL_S &Journal()
{
    return g_stJournal;
}

void FailJournalCall(u32 uiNth)
{
    g_uiJournalCalls = 0U;
    g_uiFailingJournalCall = uiNth;
}

void StickByte(u32 uiOffset)
{
    g_optStuck = uiOffset;
}

u32 ImageKey(const label::DEVICE_S &stDevice)
{
    return 0x10810200U | stDevice.ucDeviceID;
}

u32 StatusKey(const label::DEVICE_S &stDevice)
{
    return 0x10810400U | stDevice.ucDeviceID;
}

} // namespace cut
