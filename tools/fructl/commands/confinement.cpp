// SPDX-License-Identifier: Apache-2.0
#include "commands/confinement.h"

#include <cerrno>
#include <csignal>
#include <grp.h>
#include <linux/capability.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "lib_fru_types.h"

namespace {

// The sets of this process hold these capabilities only.
bool SetCapabilities(u32 uiLow)
{
    __user_cap_header_struct stHeader = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct astData[_LINUX_CAPABILITY_U32S_3] = {};
    astData[0] = {uiLow, uiLow, uiLow};
    return syscall(SYS_capset, &stHeader, astData) == 0;
}

// A program that root's child starts gets no capability back.
bool DropBounding(u32 uiKeep)
{
    for (unsigned long uiCapability = 0; uiCapability < 64U; ++uiCapability) {
        const bool bKept = uiCapability < 32U && (uiKeep >> uiCapability & 1U) != 0U;
        if (!bKept && prctl(PR_CAPBSET_DROP, uiCapability, 0, 0, 0) != 0 && errno != EINVAL) {
            return false; // EINVAL: this kernel has no more of them
        }
    }
    return true;
}

bool GiveUpRoot(const IDENTITY_S &stIdentity)
{
    const u32 uiKeep = stIdentity.bLowPort ? 1U << CAP_NET_BIND_SERVICE : 0U;
    if (!DropBounding(uiKeep) || setgroups(0, nullptr) != 0 || prctl(PR_SET_KEEPCAPS, 1, 0, 0, 0) != 0 ||
        setresgid(stIdentity.uiGroup, stIdentity.uiGroup, stIdentity.uiGroup) != 0 ||
        setresuid(stIdentity.uiUser, stIdentity.uiUser, stIdentity.uiUser) != 0 || !SetCapabilities(uiKeep)) {
        return false;
    }
    return uiKeep == 0U || prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, CAP_NET_BIND_SERVICE, 0, 0) == 0;
}

void ResetSignals()
{
    sigset_t stNone;
    sigemptyset(&stNone);
    sigprocmask(SIG_SETMASK, &stNone, nullptr);
    for (const int iSignal : {SIGCHLD, SIGPIPE, SIGINT, SIGTERM, SIGHUP}) {
        (void)signal(iSignal, SIG_DFL);
    }
}

} // namespace

const char *Confine(const IDENTITY_S &stIdentity, pid_t iParent)
{
    ResetSignals();
    // Not stopped by the terminal before its parent has seen the signal.
    (void)setpgid(0, 0);
    const struct rlimit stNoCore = {0, 0}; // it would hold the password
    (void)setrlimit(RLIMIT_CORE, &stNoCore);
    (void)umask(077);
    if (stIdentity.bChange && !GiveUpRoot(stIdentity)) {
        return "cannot give root's privileges away";
    }
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        return "cannot refuse new privileges";
    }
    // After the change of user, which would forget it.
    if (prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || getppid() != iParent) {
        return "the service has ended";
    }
    return nullptr;
}

void CloseFrom(int iFirst)
{
    if (syscall(SYS_close_range, static_cast<unsigned>(iFirst), ~0U, 0U) != 0) {
        for (int iFd = iFirst; iFd < 1024; ++iFd) {
            (void)close(iFd);
        }
    }
}
