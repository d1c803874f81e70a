// SPDX-License-Identifier: Apache-2.0
#include "commands/image_plan.h"

#include "terminal/changes.h"
#include "terminal/console.h"

std::string ImagePlanText(const IMAGE_PLAN_S &stPlan)
{
    std::string strOut = FieldChangesText(stPlan.vecFields);
    strOut += strOut.empty() ? "  no field changes\n" : "\n";
    for (const std::string &strNote : stPlan.vecNotes) {
        strOut += "  " + Paint(Colour::Yellow, "note:") + " " + strNote + "\n";
    }
    return strOut;
}
