// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/controller.h"

#include <climits>

#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/changeover.h"
#include "toolkit/controller/root_lock.h"

void OpenController(CONTROLLER_S &stController)
{
    if (!stController.strRoot.empty() && BMCHOST_SetRoot(stController.strRoot.c_str()) != 0U) {
        FailUsage("--root " + EscapeText(stController.strRoot) + " is refused: the path is too long");
    }
    stController.strRoot = BMCHOST_GetRoot();
    BMCHOST_AllowForeignRoot(stController.bForeignRoot ? 1U : 0U);
}

void RequireOwnRoot(const CONTROLLER_S &stController)
{
    if (!stController.bForeignRoot && BMCHOST_IsForeignRoot() != 0U) {
        Fail(ErrorClass::NotPermitted,
             EscapeText(stController.strRoot) +
                 " belongs to another user, so nothing is written there; --foreign-root writes all the same");
    }
}

void CONTROLLER_S::Warn(const std::string &strLine) const
{
    if (fnWarn) {
        fnWarn(strLine);
    }
}

void CONTROLLER_S::GoOnForLong() const
{
    bGoesOnForLong = true;
    pstReadLock.reset();
}

bool HasController(const CONTROLLER_S &stController)
{
    (void)stController;
    const char *pcText = "";
    const BMCHOST_DB_REASON_E enReason = BMCHOST_CheckDb(&pcText);
    if (enReason != BMCHOST_DB_NO_FAULT && enReason != BMCHOST_DB_ABSENT) {
        FailDatabase(enReason, EscapeText(pcText)); // there is one, and nobody may write over it
    }
    return enReason == BMCHOST_DB_NO_FAULT;
}

void RequireController(const CONTROLLER_S &stController)
{
    if (!stController.bWriting && HasChangeover()) {
        const ReadLock stFinished(stController); // before that there may be none
    }
    if (!HasController(stController)) {
        Fail(ErrorClass::NotFound,
             "there is no controller in " + stController.strRoot +
                 "; 'fructl provision FILE' makes one, --root or $FRUCTL_ROOT names another");
    }
    if (stController.pstReadLock == nullptr && !stController.bWriting && !stController.bGoesOnForLong) {
        stController.pstReadLock = std::make_shared<ReadLock>(stController);
    }
}

std::optional<std::string> RealPath(const std::string &strControllerPath)
{
    char acPath[2U * PATH_MAX] = "";
    if (BMCHOST_ResolvePath(strControllerPath.c_str(), sizeof(acPath), acPath) != 0U) {
        return std::nullopt;
    }
    return acPath;
}
