// SPDX-License-Identifier: Apache-2.0
// An empty controller elsewhere for as long as it lives: the platform itself tries there what the real one is to get.
#ifndef TOOLKIT_CONTROLLER_TRIAL_ROOT_H
#define TOOLKIT_CONTROLLER_TRIAL_ROOT_H

#include <string>

#include "toolkit/controller/provision_plan.h"

class TrialRoot
{
  public:
    // Fails when no directory can be made.
    TrialRoot();
    ~TrialRoot();
    TrialRoot(const TrialRoot &) = delete;
    TrialRoot &operator=(const TrialRoot &) = delete;

    void Lay(const CONF_FILE_S &stFile) const;
    // A diagnostic without the trial's own path in it.
    std::string Hint() const;

  private:
    std::string m_strRoot;
    std::string m_strTrial;
};

#endif
