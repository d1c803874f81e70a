// SPDX-License-Identifier: Apache-2.0
// How a change of some of an image's bytes is planned, made and shown, for every command that makes one.
#ifndef FRUCTL_COMMANDS_PATCH_PLAN_H
#define FRUCTL_COMMANDS_PATCH_PLAN_H

#include <functional>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "toolkit/base/json.h"
#include "toolkit/edit/patch.h"

struct PATCH_OPTIONS_S
{
    OUTPUT_OPTION_S stOutput; // of a file: the new image goes here
    bool bDryRun = false;
};
// -o, --force and --dry-run.
void AddPatchOptions(const Command &stCommand, PATCH_OPTIONS_S &stOptions);

// What is planned from the target's image, and what the operation log is told of it.
struct PATCH_WORK_S
{
    PATCH_S stPatch;
    std::vector<OPERATION_S> vecOperations;
    Json stJson = Json::object(); // what the command adds to the plan's
};

// Reads the target, under the root's lock where a device is written, plans, writes and shows it.
void RunPatch(const SESSION_S &stSession, const TARGET_S &stTarget, const PATCH_OPTIONS_S &stOptions,
              const std::function<PATCH_WORK_S(const IMAGE_S &stImage)> &fnPlan);

#endif
