// SPDX-License-Identifier: Apache-2.0
// RPC: the desk answers for the controller's other services by writing down what it was told.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "bmc_mrpc.h"
#include "support/host.h"
#include "support/json_line.h"

namespace {

struct CALL_S
{
    u32 uiService;
    u32 uiMethod;
    u32 uiReqLen;
    const u8 *pucReq;
    MRPC_MSG_S **ppstRes;
};

// Payload layouts of the receiving services, little-endian.
constexpr u32 g_uiEventLen = 16;
constexpr u32 g_uiDeviceLen = 184;
constexpr u32 g_uiDeviceNameAt = 14;
constexpr u32 g_uiDeviceNameLen = 16;
constexpr u32 g_uiFeatureLen = 1334;

u32 Number(const u8 *pucBytes)
{
    return pucBytes[0] | static_cast<u32>(pucBytes[1]) << 8U | static_cast<u32>(pucBytes[2]) << 16U |
           static_cast<u32>(pucBytes[3]) << 24U;
}

u32 Journal(const CALL_S &stCall, const char *pcEvent, const host::JSON &jsonFields)
{
    host::JSON json = {{"time", host::NowText()},
                       {"service", stCall.uiService},
                       {"method", stCall.uiMethod},
                       {"event", pcEvent}};
    json.update(jsonFields);
    return host::AppendToJournal(BMCHOST_EVENT_JOURNAL, host::ToLine(json));
}

u32 FruEvent(const CALL_S &stCall)
{
    const u32 uiKind = Number(stCall.pucReq);
    const char *pcEvent = uiKind == 3U ? "labelWritten" : uiKind == 4U ? "cleared" : "fruEvent";
    return Journal(stCall, pcEvent,
                   {{"kind", uiKind},
                    {"componentType", stCall.pucReq[4]},
                    {"instance", stCall.pucReq[5]},
                    {"labelId", Number(stCall.pucReq + 8)}});
}

u32 DeviceChanged(const CALL_S &stCall)
{
    const char *pcName = reinterpret_cast<const char *>(stCall.pucReq + g_uiDeviceNameAt);
    return Journal(
        stCall, "deviceChanged",
        {{"deviceId", stCall.pucReq[0]}, {"name", std::string(pcName, strnlen(pcName, g_uiDeviceNameLen))}});
}

void ReleaseMsg(MRPC_MSG_S *pstMsg)
{
    if (pstMsg == nullptr) {
        return;
    }
    for (u32 i = 0; i < pstMsg->uiCount; ++i) {
        free(pstMsg->ppcText[i]);
    }
    free(pstMsg->ppcText);
    free(pstMsg);
}

MRPC_MSG_S *MakeMsg(const std::vector<std::string> &vecTexts)
{
    MRPC_MSG_S *pstMsg = static_cast<MRPC_MSG_S *>(calloc(1, sizeof(MRPC_MSG_S)));
    char **ppcText = static_cast<char **>(calloc(vecTexts.size() + 1U, sizeof(char *)));
    if (pstMsg == nullptr || ppcText == nullptr) {
        free(pstMsg);
        free(ppcText);
        return nullptr;
    }
    pstMsg->ppcText = ppcText;
    for (const std::string &strText : vecTexts) {
        char *pcText = strdup(strText.c_str());
        if (pcText == nullptr) {
            ReleaseMsg(pstMsg);
            return nullptr;
        }
        pstMsg->ppcText[pstMsg->uiCount++] = pcText;
    }
    return pstMsg;
}

u32 FeatureList(const CALL_S &stCall)
{
    const files::PLACE_S stPlace = host::PlaceOf(BMCHOST_FEATURE_LIST);
    const std::string strPath = stPlace.Text();
    std::string strText;
    const int iError = files::ReadAll(stPlace, host::g_uiTextFileMax, &strText);
    if (iError != 0 && iError != ENOENT && iError != ENOTDIR) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: %s", strPath.c_str(), files::Reason(iError).c_str());
        return host::g_uiFailed;
    }
    const host::JSON json = iError == 0 ? host::JSON::parse(strText, nullptr, false) : host::JSON::array();
    std::vector<std::string> vecTexts;
    bool bTexts = json.is_array();
    for (size_t i = 0; bTexts && i < json.size(); ++i) {
        bTexts = json[i].is_string();
        if (bTexts) {
            vecTexts.push_back(json[i].get<std::string>());
        }
    }
    if (!bTexts) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: not an array of texts", strPath.c_str());
        return host::g_uiFailed;
    }
    if (stCall.ppstRes != nullptr) {
        *stCall.ppstRes = MakeMsg(vecTexts);
        return *stCall.ppstRes != nullptr ? 0U : host::g_uiFailed;
    }
    return 0;
}

u32 FeatureUpdate(const CALL_S &stCall)
{
    const files::PLACE_S stPlace = host::WritePlaceOf(BMCHOST_FEATURE_UPDATE);
    const std::string &strBelow = stPlace.strBelow;
    int iError = files::MakeDirectories({stPlace.strBase, strBelow.substr(0U, strBelow.rfind('/'))});
    if (iError == 0) {
        const std::string_view svBlock(reinterpret_cast<const char *>(stCall.pucReq), stCall.uiReqLen);
        iError = files::Replace(stPlace, svBlock);
    }
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: %s", stPlace.Text().c_str(), files::Reason(iError).c_str());
        return host::g_uiFailed;
    }
    return Journal(stCall, "featureUpdate", {{"bytes", stCall.uiReqLen}});
}

u32 OemNotice(const CALL_S &stCall)
{
    return Journal(stCall, "oemNotice", host::JSON::object());
}

// What the desk's services understand, and the length that each request must have.
struct METHOD_S
{
    u32 uiService;
    u32 uiMethod;
    u32 uiReqLen;
    u32 (*pfnServe)(const CALL_S &stCall);
};
constexpr METHOD_S g_astMethods[] = {
    {MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FEATURE_LIST, 0, FeatureList},
    {MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FEATURE_UPDATE, g_uiFeatureLen, FeatureUpdate},
    {MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FRU_WRITTEN, 0, OemNotice},
    {MRPC_SERVICE_FRU_EVENT, MRPC_METHOD_FRU_EVENT, g_uiEventLen, FruEvent},
    {MRPC_SERVICE_FRU_CHANGED, MRPC_METHOD_FRU_CHANGED, g_uiDeviceLen, DeviceChanged},
};

} // namespace

extern "C" {

u32 MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32, MRPC_MSG_S **ppstRes)
{
    if (ppstRes != nullptr) {
        *ppstRes = nullptr;
    }
    return host::Shield(host::g_uiFailed, [&] {
        for (const METHOD_S &stMethod : g_astMethods) {
            if (stMethod.uiService != uiService || stMethod.uiMethod != uiMethod) {
                continue;
            }
            if (stMethod.uiReqLen != uiReqLen || (pReq == nullptr && uiReqLen != 0U)) {
                HOST_LOG(BMC_DIAG_ERROR, "RPC %u/%u: request of %u bytes, %u expected", uiService, uiMethod,
                         pReq == nullptr ? 0U : uiReqLen, stMethod.uiReqLen);
                return host::g_uiFailed;
            }
            return stMethod.pfnServe({uiService, uiMethod, uiReqLen, static_cast<const u8 *>(pReq), ppstRes});
        }
        HOST_LOG(BMC_DIAG_ERROR, "RPC %u/%u: no such service", uiService, uiMethod);
        return host::g_uiFailed;
    });
}

void MRPC_MsgFree(MRPC_MSG_S *pstMsg)
{
    ReleaseMsg(pstMsg);
}

} // extern "C"
