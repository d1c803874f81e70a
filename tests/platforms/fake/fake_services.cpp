// SPDX-License-Identifier: Apache-2.0
// Database, EEPROMs, RPC, operation log, INI files, capabilities and the hardware description.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "bmc_capability.h"
#include "bmc_db.h"
#include "bmc_eeprom.h"
#include "bmc_hwdesc.h"
#include "bmc_ini.h"
#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
#include "fake/fake_state.h"

namespace {

constexpr u32 g_uiFailed = 0x81000001U;
int g_iDbHandle;

std::string ChipKey(u8 ucBus, u8 ucAddress)
{
    return "bus" + std::to_string(ucBus) + "/" + std::to_string(ucAddress);
}

struct INI_S
{
    std::map<std::string, std::map<std::string, std::string>> mapSections;
};

} // namespace

struct HW_NAMESPACE
{
    std::vector<HW_FRU_OBJECT_S> vecObjects;
};

namespace fake {

std::map<u32, BYTES> &Db()
{
    return State().mapDb;
}

BYTES &Eeprom(u8 ucBus, u8 ucAddress)
{
    return State().mapEeprom[ChipKey(ucBus, ucAddress)];
}

BYTES &EepromByName(const std::string &strName)
{
    return State().mapEeprom["name/" + strName];
}

void SetEepromResult(u32 uiNth, i32 iResult)
{
    State().mapEepromResult[uiNth] = iResult;
}

const std::vector<RPC_REQUEST_S> &RpcRequests()
{
    return State().vecRpc;
}

void SetRpcAnswer(u32 uiService, u32 uiMethod, u32 uiResult, const std::vector<std::string> &vecTexts)
{
    State().mapRpcAnswer[{uiService, uiMethod}] = {uiResult, vecTexts};
}

void SetHwOemFlag(u32 uiFlag)
{
    State().uiHwOemFlag = uiFlag;
}

std::map<std::string, std::map<std::string, std::map<std::string, std::string>>> &Ini()
{
    return State().mapIni;
}

std::map<std::string, std::string> &Capabilities()
{
    return State().mapCapability;
}

std::optional<std::vector<HW_FRU_OBJECT_S>> &HwObjects()
{
    return State().optHwObjects;
}

} // namespace fake

using fake::Fault;
using fake::HOW_E;
using fake::Journal;
using fake::KIND_E;
using fake::State;

extern "C" {

void *DB_Open(void)
{
    void *pDb = Fault(KIND_E::DB) ? nullptr : &g_iDbHandle;
    Journal(pDb == nullptr ? "DB_Open -> null" : "DB_Open");
    return pDb;
}

u32 DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData)
{
    u32 uiResult = g_uiFailed;
    const auto itRecord = State().mapDb.find(uiKey);
    if (!Fault(KIND_E::DB) && pDb == &g_iDbHandle && itRecord != State().mapDb.end() &&
        itRecord->second.size() == uiLen) {
        std::copy(itRecord->second.begin(), itRecord->second.end(), static_cast<u8 *>(pData));
        uiResult = 0;
    }
    Journal("DB_Get %#x %u -> %#x", uiKey, uiLen, uiResult);
    return uiResult;
}

u32 DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine)
{
    u32 uiResult = g_uiFailed;
    if (!Fault(KIND_E::DB) && pDb == &g_iDbHandle && uiLine != 0U) {
        const u8 *pucData = static_cast<const u8 *>(pData);
        State().mapDb[uiKey].assign(pucData, pucData + uiLen);
        uiResult = 0;
    }
    Journal("DB_Put %#x %u %s -> %#x", uiKey, uiLen, pcFile, uiResult);
    return uiResult;
}

u32 DB_Del(void *pDb, const u32 *puiKey)
{
    u32 uiResult = g_uiFailed;
    if (!Fault(KIND_E::DB) && pDb == &g_iDbHandle && State().mapDb.erase(*puiKey) == 1U) {
        uiResult = 0;
    }
    Journal("DB_Del %#x -> %#x", *puiKey, uiResult);
    return uiResult;
}

i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    const u8 *pucLocation = static_cast<const u8 *>(pLocation);
    const bool bNamed = ucType < 9U || ucType > 15U;
    const std::string strKey = bNamed ? "name/" + std::string(static_cast<const char *>(pLocation))
                                      : ChipKey(pucLocation[0], pucLocation[1]);
    const auto itChip = State().mapEeprom.find(strKey);
    const auto optFault = Fault(KIND_E::EEPROM);
    const u32 uiCall = ++State().uiEepromCalls;
    i32 iResult = -1;
    if (itChip != State().mapEeprom.end() && optFault != HOW_E::FAIL) {
        fake::BYTES &vecChip = itChip->second;
        const size_t uiLeft = uiOffset < vecChip.size() ? vecChip.size() - uiOffset : 0U;
        size_t uiDone = std::min<size_t>(uiLength, uiLeft);
        uiDone = optFault ? uiDone / 2U : uiDone;
        if (ucDirection == BMC_EEPROM_READ) {
            std::copy_n(vecChip.begin() + static_cast<std::ptrdiff_t>(uiLeft == 0U ? 0U : uiOffset), uiDone,
                        pucBuf);
        } else {
            std::copy_n(pucBuf, uiDone,
                        vecChip.begin() + static_cast<std::ptrdiff_t>(uiLeft == 0U ? 0U : uiOffset));
        }
        iResult = optFault == HOW_E::TORN ? -1 : static_cast<i32>(uiDone);
    }
    const auto itForced = State().mapEepromResult.find(uiCall);
    iResult = itForced == State().mapEepromResult.end() ? iResult : itForced->second;
    const char *pcDirection = ucDirection == BMC_EEPROM_READ    ? "read"
                              : ucDirection == BMC_EEPROM_WRITE ? "write"
                                                                : "?";
    if (bNamed) {
        Journal("EEPROM %s type=%u name=%s off=%#x len=%u -> %d", pcDirection, ucType, strKey.c_str() + 5,
                uiOffset, uiLength, iResult);
    } else {
        Journal("EEPROM %s type=%u bus=%u addr=%#x switch=%u off=%#x len=%u -> %d", pcDirection, ucType,
                pucLocation[0], pucLocation[1], pucLocation[2], uiOffset, uiLength, iResult);
    }
    return iResult;
}

u32 MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
              MRPC_MSG_S **ppstRes)
{
    const u8 *pucReq = static_cast<const u8 *>(pReq);
    State().vecRpc.push_back({uiService, uiMethod, uiTimeoutMs, ppstRes != nullptr,
                              pucReq == nullptr ? fake::BYTES() : fake::BYTES(pucReq, pucReq + uiReqLen)});
    const auto stAnswer = State().mapRpcAnswer[{uiService, uiMethod}];
    const u32 uiResult = Fault(KIND_E::RPC) ? g_uiFailed : stAnswer.first;
    if (ppstRes != nullptr) {
        *ppstRes = nullptr;
        if (uiResult == 0U) {
            auto upMsg = std::make_unique<MRPC_MSG_S>();
            upMsg->uiCount = static_cast<u32>(stAnswer.second.size());
            upMsg->ppcText = new char *[stAnswer.second.size() + 1U];
            for (size_t i = 0; i < stAnswer.second.size(); ++i) {
                upMsg->ppcText[i] = new char[stAnswer.second[i].size() + 1U];
                (void)std::strcpy(upMsg->ppcText[i], stAnswer.second[i].c_str());
            }
            *ppstRes = upMsg.release();
        }
    }
    Journal("MRPC %u/%u len=%u timeout=%u -> %#x", uiService, uiMethod, uiReqLen, uiTimeoutMs, uiResult);
    return uiResult;
}

void MRPC_MsgFree(MRPC_MSG_S *pstMsg)
{
    Journal("MRPC_MsgFree%s", pstMsg == nullptr ? " null" : "");
    if (pstMsg != nullptr) {
        for (u32 i = 0; i < pstMsg->uiCount; ++i) {
            delete[] pstMsg->ppcText[i];
        }
        delete[] pstMsg->ppcText;
        delete pstMsg;
    }
}

u32 OPERATELOG_AddLogComm(u32 uiModule, u32 uiResult, const char *pcText, u32 uiArg1, u32 uiArg2, u32 uiLine,
                          u8 ucSource)
{
    const u32 uiReturned = Fault(KIND_E::OPERATELOG) || uiLine == 0U ? g_uiFailed : 0U;
    Journal("OPERATELOG %u %u [%s] %u %u %u -> %#x", uiModule, uiResult, pcText, uiArg1, uiArg2, ucSource,
            uiReturned);
    return uiReturned;
}

void *BRIDGE_IniLoadFile(const char *pcPath)
{
    INI_S *pstIni = nullptr;
    const auto itFile = State().mapIni.find(pcPath);
    if (!Fault(KIND_E::INI) && itFile != State().mapIni.end()) {
        pstIni = new INI_S{itFile->second};
    }
    Journal("IniLoadFile %s -> %s", pcPath, pstIni == nullptr ? "null" : "open");
    return pstIni;
}

const char *BRIDGE_IniGetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcDefault)
{
    auto &mapSections = static_cast<INI_S *>(hpd)->mapSections;
    const auto itSection = mapSections.find(pcSection);
    if (itSection == mapSections.end() || itSection->second.count(pcKey) == 0U) {
        return pcDefault;
    }
    return itSection->second[pcKey].c_str();
}

u32 BRIDGE_IniGetUInt(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault)
{
    const char *pcValue = BRIDGE_IniGetStr(hpd, pcSection, pcKey, nullptr);
    return pcValue == nullptr ? uiDefault : static_cast<u32>(strtoul(pcValue, nullptr, 0));
}

u32 BRIDGE_IniGetBool(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault)
{
    const char *pcValue = BRIDGE_IniGetStr(hpd, pcSection, pcKey, "");
    return strchr("yYtT1", *pcValue) != nullptr && *pcValue != '\0'   ? 1U
           : strchr("nNfF0", *pcValue) != nullptr && *pcValue != '\0' ? 0U
                                                                      : uiDefault;
}

u32 BRIDGE_IniSetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcValue)
{
    const u32 uiResult = Fault(KIND_E::INI) ? g_uiFailed : 0U;
    if (uiResult == 0U) {
        static_cast<INI_S *>(hpd)->mapSections[pcSection][pcKey] = pcValue;
    }
    Journal("IniSetStr %s %s [%s] -> %#x", pcSection, pcKey, pcValue, uiResult);
    return uiResult;
}

u32 BRIDGE_IniSaveFile(void *hpd, const char *pcPath)
{
    const u32 uiResult = Fault(KIND_E::INI) ? g_uiFailed : 0U;
    if (uiResult == 0U) {
        State().mapIni[pcPath] = static_cast<INI_S *>(hpd)->mapSections;
    }
    Journal("IniSaveFile %s -> %#x", pcPath, uiResult);
    return uiResult;
}

void BRIDGE_IniCloseFile(void *hpd)
{
    Journal("IniCloseFile");
    delete static_cast<INI_S *>(hpd);
}

u32 CAP_GetCommonCapabilityWithName(const char *pcObject, const char *pcName, u32 uiSize, char *pcOut)
{
    u32 uiResult = g_uiFailed;
    const auto itValue = State().mapCapability.find(std::string(pcObject) + "/" + pcName);
    if (!Fault(KIND_E::CAPABILITY) && itValue != State().mapCapability.end()) {
        (void)snprintf(pcOut, uiSize, "%s", itValue->second.c_str());
        uiResult = 0;
    }
    Journal("CAP %s %s %u -> %#x", pcObject, pcName, uiSize, uiResult);
    return uiResult;
}

HW_NAMESPACE_S *HW_NewNameSpace(void)
{
    HW_NAMESPACE_S *pstNameSpace = Fault(KIND_E::HWDESC) ? nullptr : new HW_NAMESPACE_S;
    Journal("HW_NewNameSpace%s", pstNameSpace == nullptr ? " -> null" : "");
    return pstNameSpace;
}

u32 HW_LoadXml(HW_NAMESPACE_S *pstNameSpace, const char *pcPath)
{
    const u32 uiResult = Fault(KIND_E::HWDESC) || !State().optHwObjects ? g_uiFailed : 0U;
    if (uiResult == 0U) {
        pstNameSpace->vecObjects = *State().optHwObjects;
    }
    Journal("HW_LoadXml %s -> %#x", pcPath, uiResult);
    return uiResult;
}

u32 HW_GetObjectList(HW_NAMESPACE_S *pstNameSpace, const char *pcClass, HW_OBJECT_LIST_S *pstList)
{
    const u32 uiResult = Fault(KIND_E::HWDESC) || std::string(pcClass) != "FRU" ? g_uiFailed : 0U;
    if (uiResult == 0U) {
        *pstList = {static_cast<u32>(pstNameSpace->vecObjects.size()), pstNameSpace->vecObjects.data()};
    }
    Journal("HW_GetObjectList %s -> %#x", pcClass, uiResult);
    return uiResult;
}

void HW_FreeNameSpace(HW_NAMESPACE_S *pstNameSpace)
{
    Journal("HW_FreeNameSpace%s", pstNameSpace == nullptr ? " null" : "");
    delete pstNameSpace;
}

u32 HW_LIB_GetOemFlag(void)
{
    return State().uiHwOemFlag;
}

} // extern "C"
