// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/trial_root.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"

TrialRoot::TrialRoot() : m_strRoot(BMCHOST_GetRoot())
{
    const char *pcTemp = getenv("TMPDIR");
    const std::string strWhere = pcTemp == nullptr || *pcTemp == '\0' ? "/tmp" : pcTemp;
    m_strTrial = strWhere + "/fructl-trial-XXXXXX";
    if (mkdtemp(m_strTrial.data()) == nullptr) {
        Fail(ClassOfErrno(errno), "no directory can be made in " + EscapeText(strWhere) +
                                      " to try the controller's files in: " + strerror(errno));
    }
    (void)BMCHOST_SetRoot(m_strTrial.c_str());
}

TrialRoot::~TrialRoot()
{
    (void)BMCHOST_SetRoot(m_strRoot.c_str());
    std::error_code stIgnored;
    std::filesystem::remove_all(m_strTrial, stIgnored);
}

void TrialRoot::Lay(const CONF_FILE_S &stFile) const
{
    WriteFileBytes(m_strTrial + stFile.strPath, stFile.vecBytes);
}

std::string TrialRoot::Hint() const
{
    std::string strHint = DiagnosticHint();
    for (size_t uiAt = 0; (uiAt = strHint.find(m_strTrial)) != std::string::npos;) {
        strHint.erase(uiAt, m_strTrial.size());
    }
    return strHint;
}
