// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/differences_json.h"

#include "toolkit/base/text.h"

namespace {

Json TextJson(const std::optional<std::string> &optText)
{
    return optText.has_value() ? Json(Latin1ToUtf8(*optText)) : Json(nullptr);
}

} // namespace

Json FieldChangesJson(const std::vector<DIFFERENCE_S> &vecDifferences, const char *pcLeft,
                      const char *pcRight)
{
    Json stList = Json::array();
    for (const DIFFERENCE_S &stDifference : vecDifferences) {
        stList.push_back({{"area", AreaKey(stDifference.stField.enArea)},
                          {"field", FieldName(stDifference.stField)},
                          {pcLeft, TextJson(stDifference.optLeft)},
                          {pcRight, TextJson(stDifference.optRight)}});
    }
    return stList;
}

Json ByteChangesJson(const std::vector<BYTE_RUN_S> &vecRuns)
{
    Json stBytes = Json::array();
    for (const BYTE_RUN_S &stRun : vecRuns) {
        stBytes.push_back(
            {{"offset", stRun.uiOffset}, {"old", HexBytes(stRun.vecOld)}, {"new", HexBytes(stRun.vecNew)}});
    }
    return stBytes;
}
