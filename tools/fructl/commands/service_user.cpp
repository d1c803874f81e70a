// SPDX-License-Identifier: Apache-2.0
#include "commands/service_user.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bmcfru_host.h"
#include "files/files.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

constexpr u16 FIRST_FREE_PORT = 1024U;
// Who has nothing but this service comes first.
constexpr const char *ACCOUNTS[] = {"fructl", "nobody"};
// What an IPMI write changes: chips, cache, journals, and the locks of all of them.
constexpr const char *WRITTEN[] = {BMCHOST_EEPROM_DIR, "/var/lib/fru", "/var/log", BMCHOST_LOCK_DIR};

bool FindUser(const std::string &strName, SERVICE_USER_S *pstUser)
{
    const struct passwd *pstEntry = getpwnam(strName.c_str());
    if (pstEntry == nullptr) {
        return false;
    }
    pstUser->strName = strName;
    pstUser->stIdentity.uiUser = pstEntry->pw_uid;
    pstUser->stIdentity.uiGroup = pstEntry->pw_gid;
    return true;
}

void FindAccount(SERVICE_USER_S *pstUser)
{
    for (const char *pcAccount : ACCOUNTS) {
        if (FindUser(pcAccount, pstUser) && pstUser->stIdentity.uiUser != 0U) {
            return;
        }
    }
    Fail(ErrorClass::NotFound, std::string("there is no user ") + ACCOUNTS[0] + " and none " + ACCOUNTS[1] +
                                   " to serve root's controller; --run-as names another one");
}

// In a child with his rights: the place in the list of the first path that he cannot read, and why.
struct OBSTACLE_S
{
    size_t uiPath;
    int iError;
};

int Become(const IDENTITY_S &stIdentity)
{
    const bool bDone = setgroups(0, nullptr) == 0 &&
                       setresgid(stIdentity.uiGroup, stIdentity.uiGroup, stIdentity.uiGroup) == 0 &&
                       setresuid(stIdentity.uiUser, stIdentity.uiUser, stIdentity.uiUser) == 0;
    return bDone ? 0 : errno;
}

[[noreturn]] void TellObstacle(int iPipe, const IDENTITY_S &stIdentity,
                               const std::vector<std::string> &vecPaths)
{
    OBSTACLE_S stObstacle = {0U, Become(stIdentity)};
    while (stObstacle.iError == 0 && stObstacle.uiPath < vecPaths.size()) {
        stObstacle.iError = access(vecPaths[stObstacle.uiPath].c_str(), R_OK) == 0 ? 0 : errno;
        stObstacle.uiPath += stObstacle.iError == 0 ? 1U : 0U;
    }
    const bool bTold = stObstacle.iError == 0 || write(iPipe, &stObstacle, sizeof(stObstacle)) > 0;
    _exit(bTold ? 0 : 1);
}

void RequireReach(const SERVICE_USER_S &stUser, const std::vector<std::string> &vecPaths)
{
    std::array<int, 2> aiPipe = {-1, -1};
    if (pipe(aiPipe.data()) != 0) {
        Fail(ClassOfErrno(errno), std::string("cannot make a pipe: ") + strerror(errno));
    }
    const files::Fd stRead(aiPipe[0]);
    files::Fd stWrite(aiPipe[1]);
    const pid_t iPid = fork();
    if (iPid == 0) {
        TellObstacle(stWrite.Get(), stUser.stIdentity, vecPaths);
    }
    stWrite.Reset(-1);
    OBSTACLE_S stObstacle = {};
    const bool bObstacle = read(stRead.Get(), &stObstacle, sizeof(stObstacle)) == sizeof(stObstacle);
    int iStatus = 0;
    if (iPid < 0 || waitpid(iPid, &iStatus, 0) != iPid || iStatus != 0) {
        Fail("cannot find out what user " + stUser.strName + " may read");
    }
    if (bObstacle) {
        Fail(ErrorClass::NotPermitted,
             "user " + stUser.strName + ", who is to serve the controller, cannot read " +
                 EscapeText(vecPaths[stObstacle.uiPath]) + ": " + strerror(stObstacle.iError) +
                 "; --run-as names another user, --root another place");
    }
}

} // namespace

SERVICE_USER_S ServiceUserFor(const std::string &strRoot, u16 usPort, const std::string &strName)
{
    SERVICE_USER_S stUser;
    stUser.stIdentity = {geteuid(), getegid(), geteuid() == 0U, usPort < FIRST_FREE_PORT};
    if (!stUser.stIdentity.bChange) {
        if (!strName.empty()) {
            FailUsage("--run-as " + EscapeText(strName) +
                      " is refused: only root can run it as another user");
        }
        return stUser;
    }
    struct stat stStat = {};
    if (stat(strRoot.c_str(), &stStat) != 0) {
        Fail(ClassOfErrno(errno), "cannot look at " + EscapeText(strRoot) + ": " + strerror(errno));
    }
    if (!strName.empty()) {
        if (!FindUser(strName, &stUser)) {
            FailUsage("--run-as " + EscapeText(strName) + " is refused: there is no such user");
        }
    } else if (stStat.st_uid == 0U) {
        FindAccount(&stUser);
    } else {
        const struct passwd *pstOwner = getpwuid(stStat.st_uid);
        stUser.strName = pstOwner != nullptr ? pstOwner->pw_name : std::to_string(stStat.st_uid);
        stUser.stIdentity.uiUser = stStat.st_uid;
        stUser.stIdentity.uiGroup = stStat.st_gid;
    }
    stUser.bForeign = stStat.st_uid != stUser.stIdentity.uiUser;
    return stUser;
}

void PrepareFor(const SERVICE_USER_S &stUser, const std::string &strRoot,
                const std::vector<std::string> &vecPaths)
{
    const uid_t uiUser = stUser.stIdentity.uiUser;
    if (!stUser.stIdentity.bChange || uiUser == 0U) {
        return;
    }
    if (stUser.bForeign && strRoot == "/") { // its directories are those of this machine
        Fail(ErrorClass::NotPermitted,
             "the root directory / is not given to user " + stUser.strName +
                 "; accepted: --run-as root, or a controller in a directory of its own");
    }
    RequireReach(stUser, {strRoot}); // before anything is changed
    // Where unfinished writes are noted stays root's, who finishes them.
    const int iJournal = files::MakeDirectories({strRoot, BMCHOST_JOURNAL_DIR});
    if (iJournal != 0) {
        Fail(ClassOfErrno(iJournal),
             "cannot make " + EscapeText(strRoot + BMCHOST_JOURNAL_DIR) + ": " + files::Reason(iJournal));
    }
    for (const char *pcDirectory : WRITTEN) {
        const files::PLACE_S stPlace(strRoot, pcDirectory);
        int iError = files::MakeDirectories(stPlace);
        if (iError == 0 && stUser.bForeign) {
            iError = files::HandOver(stPlace, uiUser, stUser.stIdentity.uiGroup);
        }
        if (iError != 0) {
            Fail(ClassOfErrno(iError),
                 "cannot give " + EscapeText(stPlace.Text()) + " to user " + stUser.strName + ": " +
                     (iError == EPERM ? "it belongs neither to him nor to root" : files::Reason(iError)));
        }
    }
    RequireReach(stUser, vecPaths);
}
