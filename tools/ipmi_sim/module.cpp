// SPDX-License-Identifier: Apache-2.0
// The module that OpenIPMI's ipmi_sim loads: carries the simulator's Storage requests to libbmcfru and back.
//
//   loadlib "/usr/lib/bmcfru/libbmcfru_ipmi_sim.so" "root=/var/lib/controller"
//
// The options are "root=DIR", the controller's directory, to the end of the text; ahead of it "verbose "
// lets the library's diagnostics go to standard error, and "foreign-root " lets a directory be written to
// that belongs to another user. The simulator is one thread and calls its modules
// from there only.
#include <cstdio>
#include <cstring>
#include <string>

extern "C" {
#include <OpenIPMI/serv.h>

#include <OpenIPMI/mcserv.h>
}

#include "bmcfru_host.h"
#include "fru_requests.h"
#include "ipmi_codes.h"
#include "printable.h"
#include "sdr_repository.h"

#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr char OPTION_VERBOSE[] = "verbose ";
constexpr char OPTION_FOREIGN_ROOT[] = "foreign-root ";
constexpr char OPTION_ROOT[] = "root=";
constexpr u8 AUTHTYPE_RMCP_PLUS = 6U;
constexpr u8 AUTHTYPE_NONE = 0U;
constexpr u8 NETFN_RESPONSE = 1U;

SDR_REPOSITORY g_stRepository;

void DiagToStderr(const BMCHOST_DIAG_S *pstDiag, void * /*pContext*/)
{
    fprintf(stderr, "[%u] %s:%u: %s\n", pstDiag->uiSeverity, pstDiag->pcFile, pstDiag->uiLine,
            Printable(pstDiag->pcText).c_str());
}

// What the simulator passes in as the response's length is the room that there is for it.
void HandleFru(lmc_data_t * /*pstMc*/, msg_t *pstMsg, unsigned char *pucRes, unsigned int *puiResLen,
               void * /*pContext*/)
{
    *puiResLen = AnswerFruRequest(pstMsg->cmd, pstMsg->data, pstMsg->len, *puiResLen, pucRes);
}

void HandleSdr(lmc_data_t * /*pstMc*/, msg_t *pstMsg, unsigned char *pucRes, unsigned int *puiResLen,
               void * /*pContext*/)
{
    *puiResLen = g_stRepository.Answer(pstMsg->cmd, pstMsg->data, pstMsg->len, *puiResLen, pucRes);
}

// The simulator opens a session with cipher suite 0 or 1 for whoever knows a user's name, and has no setting
// against it. Nothing is done for a message that does not carry the session's signature.
int RefuseUnsigned(channel_t *pstChannel, msg_t *pstMsg)
{
    const bool bSigned = pstMsg->authtype == AUTHTYPE_RMCP_PLUS ? pstMsg->rmcpp.authenticated != 0
                                                                : pstMsg->authtype != AUTHTYPE_NONE;
    const bool bGoodbye = pstMsg->netfn == IPMI_NETFN_APP && pstMsg->cmd == IPMI_CMD_CLOSE_SESSION;
    if (bSigned || bGoodbye) {
        return 0;
    }
    u8 ucCompletionCode = IPMI_CC_PRIVILEGE;
    rsp_msg_t stRes = {};
    stRes.netfn = static_cast<u8>(pstMsg->netfn | NETFN_RESPONSE);
    stRes.cmd = pstMsg->cmd;
    stRes.data = &ucCompletionCode;
    stRes.data_len = 1U;
    pstChannel->return_rsp(pstChannel, pstMsg, &stRes);
    return 1;
}

bool TakeOptions(const char *pcOptions)
{
    std::string strOptions = pcOptions == nullptr ? "" : pcOptions;
    if (strOptions.rfind(OPTION_VERBOSE, 0U) == 0U) {
        BMCHOST_SetDiagSink(DiagToStderr, nullptr);
        strOptions.erase(0U, strlen(OPTION_VERBOSE));
    }
    if (strOptions.rfind(OPTION_FOREIGN_ROOT, 0U) == 0U) {
        BMCHOST_AllowForeignRoot(1U);
        strOptions.erase(0U, strlen(OPTION_FOREIGN_ROOT));
    }
    if (strOptions.rfind(OPTION_ROOT, 0U) != 0U) {
        fprintf(stderr,
                "libbmcfru_ipmi_sim: the options are \"[verbose ][foreign-root ]root=DIR\", not \"%s\"\n",
                strOptions.c_str());
        return false;
    }
    const std::string strRoot = strOptions.substr(strlen(OPTION_ROOT));
    if (BMCHOST_SetRoot(strRoot.c_str()) != 0U) {
        fprintf(stderr, "libbmcfru_ipmi_sim: root \"%s\" is empty or too long\n", strRoot.c_str());
        return false;
    }
    return true;
}

} // namespace

MODULE_EXPORT int ipmi_sim_module_print_version(sys_data_t * /*pstSys*/, const char * /*pcOptions*/)
{
    printf("libbmcfru_ipmi_sim %s\n", BMCFRU_VERSION);
    return 0;
}

MODULE_EXPORT int ipmi_sim_module_init(sys_data_t * /*pstSys*/, const char *pcOptions)
{
    if (!TakeOptions(pcOptions)) {
        return 1;
    }
    int iResult = 0;
    for (u8 ucCommand = IPMI_CMD_GET_FRU_AREA_INFO; ucCommand <= IPMI_CMD_WRITE_FRU_DATA; ++ucCommand) {
        iResult |= ipmi_emu_register_cmd_handler(IPMI_NETFN_STORAGE, ucCommand, HandleFru, nullptr);
    }
    for (u8 ucCommand = IPMI_CMD_GET_SDR_REPOSITORY_INFO; ucCommand <= IPMI_CMD_SET_SDR_REPOSITORY_TIME;
         ++ucCommand) {
        iResult |= ipmi_emu_register_cmd_handler(IPMI_NETFN_STORAGE, ucCommand, HandleSdr, nullptr);
    }
    return iResult;
}

// The controllers and their channels are there only now.
MODULE_EXPORT int ipmi_sim_module_post_init(sys_data_t *pstSys)
{
    for (lmc_data_t *pstMc : pstSys->ipmb_addrs) {
        channel_t **ppstChannels = pstMc == nullptr ? nullptr : pstSys->mc_get_channelset(pstMc);
        for (unsigned int i = 0U; ppstChannels != nullptr && i < IPMI_MAX_CHANNELS; ++i) {
            constexpr u8 MEDIUM_LAN = 4U;
            if (ppstChannels[i] != nullptr && ppstChannels[i]->medium_type == MEDIUM_LAN) {
                ppstChannels[i]->oem.oem_handle_msg = RefuseUnsigned;
            }
        }
    }
    return 0;
}
