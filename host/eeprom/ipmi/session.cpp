// SPDX-License-Identifier: Apache-2.0
#include "eeprom/ipmi/session.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <sys/types.h>
#include <unistd.h>

extern "C" {
#include <OpenIPMI/ipmi_auth.h>
#include <OpenIPMI/ipmi_conn.h>
#include <OpenIPMI/ipmi_err.h>
#include <OpenIPMI/ipmi_lan.h>
#include <OpenIPMI/ipmi_posix.h>
#include <OpenIPMI/ipmi_smi.h>
#include <OpenIPMI/ipmiif.h>
}

namespace ipmi {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How long a goodbye may take before it is left to the controller's own patience.
constexpr milliseconds g_stCloseTime(2000);
// A completion code of that meaning which comes so late is the library's own: nobody has answered.
constexpr milliseconds g_stLateTime(3000);
// So long it is not asked again after it did not answer.
constexpr milliseconds g_stQuietTime(3000);

struct SUITE_S
{
    u32 uiSuite;
    int iAuthentication;
    int iIntegrity;
    int iConfidentiality;
};
// Those of HMAC-SHA1 and HMAC-MD5; without integrity a session is anybody's, so those are not among them.
constexpr SUITE_S g_astSuites[] = {
    {2, IPMI_LANP_AUTHENTICATION_ALGORITHM_RAKP_HMAC_SHA1, IPMI_LANP_INTEGRITY_ALGORITHM_HMAC_SHA1_96,
     IPMI_LANP_CONFIDENTIALITY_ALGORITHM_NONE},
    {3, IPMI_LANP_AUTHENTICATION_ALGORITHM_RAKP_HMAC_SHA1, IPMI_LANP_INTEGRITY_ALGORITHM_HMAC_SHA1_96,
     IPMI_LANP_CONFIDENTIALITY_ALGORITHM_AES_CBC_128},
    {7, IPMI_LANP_AUTHENTICATION_ALGORITHM_RAKP_HMAC_MD5, IPMI_LANP_INTEGRITY_ALGORITHM_HMAC_MD5_128,
     IPMI_LANP_CONFIDENTIALITY_ALGORITHM_NONE},
    {8, IPMI_LANP_AUTHENTICATION_ALGORITHM_RAKP_HMAC_MD5, IPMI_LANP_INTEGRITY_ALGORITHM_HMAC_MD5_128,
     IPMI_LANP_CONFIDENTIALITY_ALGORITHM_AES_CBC_128},
};

const SUITE_S *SuiteOf(u32 uiSuite)
{
    const auto *pstFound = std::find_if(std::begin(g_astSuites), std::end(g_astSuites),
                                        [&](const SUITE_S &stSuite) { return stSuite.uiSuite == uiSuite; });
    return pstFound == std::end(g_astSuites) ? nullptr : pstFound;
}

// What the library would print to standard error; what matters of it comes as an error number too.
void DropLog(os_handler_t * /*pstHandler*/, const char * /*pcFormat*/, enum ipmi_log_type_e /*enType*/,
             va_list /*stArguments*/)
{}

// One for the process. The library keeps what it has in it, so that it is never given back.
os_handler_t *Handler()
{
    static os_handler_t *g_pstHandler = [] {
        os_handler_t *pstHandler = ipmi_posix_setup_os_handler();
        if (pstHandler != nullptr) {
            pstHandler->set_log_handler(pstHandler, DropLog);
            if (ipmi_init(pstHandler) != 0) {
                pstHandler->free_os_handler(pstHandler);
                pstHandler = nullptr;
            }
        }
        return pstHandler;
    }();
    return g_pstHandler;
}

std::string ErrorText(int iError)
{
    char acText[128] = "";
    return ipmi_get_error_string(static_cast<unsigned>(iError), acText, sizeof(acText));
}

} // namespace

// What the library's callbacks write into. It outlives every connection that knows it.
struct Session::STATE_S
{
    ipmi_con_t *pstCon = nullptr;
    pid_t iPid = 0;
    bool bTold = false; // up, or why not
    int iError = 0;
    bool bClosed = false;
    bool bAnswered = false;
    ANSWER_S stAnswer;

    // Until fnDone, or the time is over: false.
    template <typename FN> bool RunUntil(milliseconds stTime, FN fnDone)
    {
        const auto stEnd = Clock::now() + stTime;
        while (!fnDone()) {
            const auto stLeft =
                std::chrono::duration_cast<std::chrono::microseconds>(stEnd - Clock::now()).count();
            if (stLeft <= 0) {
                return false;
            }
            struct timeval stWait = {static_cast<time_t>(stLeft / 1000000),
                                     static_cast<suseconds_t>(stLeft % 1000000)};
            os_handler_t *pstHandler = Handler();
            const int iOp = pstHandler->perform_one_op(pstHandler, &stWait);
            if (iOp != 0 && iOp != EINTR && iOp != ETIMEDOUT) {
                return false;
            }
        }
        return true;
    }

    static void Changed(ipmi_con_t * /*pstCon*/, int iError, unsigned int /*uiPort*/, int iAnyUp,
                        void *pContext)
    {
        auto *pstState = static_cast<STATE_S *>(pContext);
        pstState->bTold = true;
        pstState->iError = iAnyUp != 0 ? 0 : (iError == 0 ? ECONNRESET : iError);
    }

    static void Closed(ipmi_con_t * /*pstCon*/, void *pContext)
    {
        static_cast<STATE_S *>(pContext)->bClosed = true;
    }

    static int Answered(ipmi_con_t *pstCon, ipmi_msgi_t *pstItem)
    {
        auto *pstState = static_cast<STATE_S *>(pstItem->data1);
        // A connection that was given up answers what it still owes without itself.
        if (pstCon != nullptr && pstItem->msg.data_len > 0U) {
            const u8 *pucData = pstItem->msg.data;
            pstState->stAnswer.bCame = true;
            pstState->stAnswer.ucCompletion = pucData[0];
            pstState->stAnswer.vecData.assign(pucData + 1, pucData + pstItem->msg.data_len);
        }
        pstState->bAnswered = true;
        return IPMI_MSG_ITEM_NOT_USED;
    }
};

Session::Session(LOGIN_S stLogin) : m_stLogin(std::move(stLogin)) {}

Session::~Session()
{
    Close();
    std::fill(m_stLogin.strPassword.begin(), m_stLogin.strPassword.end(), '\0');
}

void Session::Close()
{
    if (m_upState == nullptr) {
        return;
    }
    STATE_S *pstState = m_upState.get();
    const bool bOurs = pstState->iPid == getpid();
    if (!bOurs && pstState->pstCon->disable != nullptr) {
        pstState->pstCon->disable(pstState->pstCon); // in a child of fork() it is its parent's: not a word
    }
    const bool bBegun =
        pstState->pstCon->close_connection_done(pstState->pstCon, STATE_S::Closed, pstState) == 0;
    if (bBegun && bOurs && pstState->RunUntil(g_stCloseTime, [&] { return pstState->bClosed; })) {
        m_upState.reset();
        return;
    }
    (void)m_upState.release(); // the library may still write into it
}

namespace {

struct PARAMETERS_S
{
    std::string strPort;
    char *apcHost[1];
    char *apcPort[1];
    std::vector<ipmi_lanp_parm_t> vecParameters;
};

void Fill(const LOGIN_S &stLogin, const SUITE_S &stSuite, PARAMETERS_S *pstParameters)
{
    pstParameters->strPort = std::to_string(stLogin.uiPort);
    pstParameters->apcHost[0] = const_cast<char *>(stLogin.strHost.c_str());
    pstParameters->apcPort[0] = const_cast<char *>(pstParameters->strPort.c_str());
    auto &vecParameters = pstParameters->vecParameters;
    const auto fnNumber = [&](int iWhich, int iValue) {
        vecParameters.push_back({iWhich, iValue, nullptr, 0});
    };
    const auto fnData = [&](int iWhich, const void *pData, size_t uiLength) {
        vecParameters.push_back({iWhich, 0, const_cast<void *>(pData), static_cast<unsigned int>(uiLength)});
    };
    fnNumber(IPMI_LANP_PARMID_AUTHTYPE, IPMI_AUTHTYPE_RMCP_PLUS);
    fnNumber(IPMI_LANP_PARMID_PRIVILEGE, static_cast<int>(stLogin.uiPrivilege));
    fnNumber(IPMI_LANP_AUTHENTICATION_ALGORITHM, stSuite.iAuthentication);
    fnNumber(IPMI_LANP_INTEGRITY_ALGORITHM, stSuite.iIntegrity);
    fnNumber(IPMI_LANP_CONFIDENTIALITY_ALGORITHM, stSuite.iConfidentiality);
    // The user is looked up by name alone, whatever the privilege.
    fnNumber(IPMI_LANP_NAME_LOOKUP_ONLY, 1);
    fnData(IPMI_LANP_PARMID_USERNAME, stLogin.strUser.data(), stLogin.strUser.size());
    fnData(IPMI_LANP_PARMID_PASSWORD, stLogin.strPassword.data(), stLogin.strPassword.size());
    fnData(IPMI_LANP_PARMID_ADDRS, pstParameters->apcHost, 1U);
    fnData(IPMI_LANP_PARMID_PORTS, pstParameters->apcPort, 1U);
}

int Connect(const LOGIN_S &stLogin, ipmi_con_t **ppstCon)
{
    if (stLogin.IsLocal()) {
        return ipmi_smi_setup_con(static_cast<int>(stLogin.uiDevice), Handler(), nullptr, ppstCon);
    }
    const SUITE_S *pstSuite = SuiteOf(stLogin.uiSuite);
    if (pstSuite == nullptr) {
        return EINVAL;
    }
    PARAMETERS_S stParameters;
    Fill(stLogin, *pstSuite, &stParameters);
    return ipmi_lanp_setup_con(stParameters.vecParameters.data(),
                               static_cast<unsigned int>(stParameters.vecParameters.size()), Handler(),
                               nullptr, ppstCon);
}

ANSWER_S NoAnswer(const std::string &strWhy)
{
    ANSWER_S stAnswer;
    stAnswer.strWhy = strWhy;
    return stAnswer;
}

// The library has few numbers for what may be the matter.
ANSWER_S WhyNoSession(const LOGIN_S &stLogin, int iError)
{
    const auto fnDenied = [](const std::string &strWhy) {
        ANSWER_S stAnswer = NoAnswer(strWhy);
        stAnswer.bDenied = true;
        return stAnswer;
    };
    const std::string strWhere =
        stLogin.IsLocal() ? stLogin.strHost : stLogin.strHost + ", port " + std::to_string(stLogin.uiPort);
    const std::string strUser = "'" + stLogin.strUser + "'";
    switch (iError) {
    case EINVAL: // of what the controller signed, because the passwords differ
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_INVALID_INTEGRITY_CHECK_VALUE):
        return fnDenied(strWhere + " does not take the password of user " + strUser);
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_UNAUTHORIZED_NAME):
        return fnDenied(strWhere + " does not know the user " + strUser);
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_UNAUTHORIZED_ROLE_OR_PRIVILEGE):
        return fnDenied(strWhere + " does not give the user " + strUser +
                        " that privilege; a lower one may do");
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_INVALID_AUTHENTICATION_ALGORITHM):
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_INVALID_INTEGRITY_ALGORITHM):
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_INVALID_CONFIDENTIALITY_ALGORITHM):
    case IPMI_RMCPP_ERR_VAL(IPMI_RMCPP_NO_CIPHER_SUITE_MATCHES):
        return NoAnswer(strWhere + " does not offer that cipher suite");
    case ENOENT: // nothing came back at all
    case ETIMEDOUT:
        return NoAnswer(strWhere + " does not answer");
    case IPMI_IPMI_ERR_VAL(IPMI_TIMEOUT_CC):
        return NoAnswer(strWhere + " does not answer the login; another cipher suite may do");
    default:
        return NoAnswer(strWhere + " gives no session: " + ErrorText(iError));
    }
}

} // namespace

ANSWER_S Session::Open()
{
    if (Handler() == nullptr) {
        return NoAnswer("OpenIPMI's library does not start");
    }
    ipmi_con_t *pstCon = nullptr;
    int iError = Connect(m_stLogin, &pstCon);
    if (iError != 0) {
        return NoAnswer("no way to " + m_stLogin.strHost + ": " + ErrorText(iError));
    }
    m_upState = std::make_unique<STATE_S>();
    STATE_S *pstState = m_upState.get();
    pstState->pstCon = pstCon;
    pstState->iPid = getpid();
    iError = pstCon->add_con_change_handler(pstCon, STATE_S::Changed, pstState);
    iError = iError == 0 ? pstCon->start_con(pstCon) : iError;
    if (iError != 0) {
        Close();
        return NoAnswer(m_stLogin.strHost + " cannot be asked: " + ErrorText(iError));
    }
    const bool bTold =
        pstState->RunUntil(milliseconds(m_stLogin.uiPatienceMs), [&] { return pstState->bTold; });
    iError = bTold ? pstState->iError : ETIMEDOUT;
    if (iError != 0) {
        Close();
        return WhyNoSession(m_stLogin, iError);
    }
    ANSWER_S stOpen;
    stOpen.bCame = true;
    return stOpen;
}

ANSWER_S Session::BrokenOff(const std::string &strHow)
{
    Close();
    ANSWER_S stAnswer = NoAnswer("the session with " + m_stLogin.strHost + " " + strHow);
    stAnswer.bBrokeOff = true;
    return stAnswer;
}

ANSWER_S Session::Ask(u8 ucNetFn, u8 ucCommand, const std::vector<u8> &vecData)
{
    if (m_upState != nullptr && m_upState->iPid != getpid()) {
        Close();
    }
    if (m_upState == nullptr) {
        const bool bAskedInVain = !m_stOpened.bCame && !m_stOpened.strWhy.empty();
        if (!bAskedInVain || Clock::now() - m_stOpenedAt > g_stQuietTime) {
            m_stOpened = Open();
            m_stOpenedAt = Clock::now();
        }
        if (!m_stOpened.bCame) {
            return m_stOpened;
        }
    }
    return Exchange(ucNetFn, ucCommand, vecData);
}

ANSWER_S Session::Exchange(u8 ucNetFn, u8 ucCommand, const std::vector<u8> &vecData)
{
    STATE_S *pstState = m_upState.get();
    pstState->bAnswered = false;
    pstState->stAnswer = {};
    ipmi_system_interface_addr_t stAddress = {IPMI_SYSTEM_INTERFACE_ADDR_TYPE, IPMI_BMC_CHANNEL, 0};
    std::vector<u8> vecBytes = vecData;
    const ipmi_msg_t stMessage = {ucNetFn, ucCommand, static_cast<unsigned short>(vecBytes.size()),
                                  vecBytes.data()};
    ipmi_msgi_t *pstItem = ipmi_alloc_msg_item();
    if (pstItem == nullptr) {
        return NoAnswer("out of memory");
    }
    pstItem->data1 = pstState;
    const auto stBegin = Clock::now();
    const int iError =
        pstState->pstCon->send_command(pstState->pstCon, reinterpret_cast<ipmi_addr_t *>(&stAddress),
                                       sizeof(stAddress), &stMessage, STATE_S::Answered, pstItem);
    if (iError != 0) {
        ipmi_free_msg_item(pstItem);
        return BrokenOff("is broken: " + ErrorText(iError));
    }
    (void)pstState->RunUntil(milliseconds(m_stLogin.uiPatienceMs),
                             [&] { return pstState->bAnswered || pstState->iError != 0; });
    const bool bLate = Clock::now() - stBegin > g_stLateTime;
    ANSWER_S stAnswer = pstState->stAnswer;
    if (!stAnswer.bCame || pstState->iError != 0 || (stAnswer.ucCompletion == IPMI_TIMEOUT_CC && bLate)) {
        return BrokenOff("broke off: no answer any more");
    }
    return stAnswer;
}

} // namespace ipmi
