// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/layout_json.h"

#include "toolkit/image/fields.h"

Json FindingsJson(const IMAGE_LAYOUT_S &stLayout)
{
    Json stProblems = Json::array();
    Json stWarnings = Json::array();
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        Json &stList = stFinding.bWarning ? stWarnings : stProblems;
        stList.push_back({{"offset", stFinding.uiOffset},
                          {"area", AreaKey(stFinding.enArea)},
                          {"what", stFinding.strWhat}});
    }
    return {{"sound", stLayout.IsSound()}, {"problems", stProblems}, {"warnings", stWarnings}};
}
