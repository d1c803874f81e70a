// SPDX-License-Identifier: Apache-2.0
// Would the controller be able to read a configuration file? Asked before anything is laid into it.
#ifndef TOOLKIT_CONTROLLER_CONF_CHECK_H
#define TOOLKIT_CONTROLLER_CONF_CHECK_H

#include <string>

#include "toolkit/controller/provision_plan.h"

// What is wrong with the file, whose place on the controller tells what it is, with what would be accepted;
// empty when it is in order. A
// hardware description has to fit the EEPROMs of the plan where it names them.
std::string ConfProblem(const CONF_FILE_S &stFile, const CONTROLLER_PLAN_S &stPlan);

#endif
