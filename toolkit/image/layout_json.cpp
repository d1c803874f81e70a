// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/layout_json.h"

#include "toolkit/base/text.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/record_words.h"

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

Json MapJson(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout)
{
    Json stJson = {{"source", SourceName(stImage.enSource)}, {"size", stImage.uiStored}};
    stJson.update(FindingsJson(stLayout));
    stJson["spans"] = Json::array();
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        Json stOut = {{"offset", stSpan.uiOffset},
                      {"length", stSpan.uiLength},
                      {"area", AreaKey(stSpan.stField.enArea)},
                      {"field", FieldName(stSpan.stField)},
                      {"text", Latin1ToUtf8(stSpan.strText)},
                      {"bytes", HexBytes(&stImage.vecBytes[stSpan.uiOffset], stSpan.uiLength)}};
        if (stSpan.stNote.IsTold()) {
            stOut["note"] = NoteText(stSpan.stNote);
        }
        if (!stSpan.strProblem.empty()) {
            stOut["problem"] = stSpan.strProblem;
        }
        for (const RECORD_PART_S &stPart : RecordParts(stSpan, stImage.vecBytes)) {
            stOut["parts"].push_back({{"offset", stPart.uiOffset},
                                      {"length", stPart.uiLength},
                                      {"field", stPart.strName},
                                      {"text", Latin1ToUtf8(stPart.strText)}});
        }
        stJson["spans"].push_back(stOut);
    }
    return stJson;
}
