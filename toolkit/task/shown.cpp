// SPDX-License-Identifier: Apache-2.0
#include "toolkit/task/shown.h"

#include "toolkit/base/error.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/image/layout_json.h"
#include "toolkit/image/lenient_json.h"
#include "toolkit/image/record_json.h"

SHOWN_S TakeShown(const TARGET_S &stTarget, std::optional<Source> optSource)
{
    SHOWN_S stShown = {stTarget, ReadShown(stTarget, optSource), std::nullopt};
    stShown.optDiffer = WhySourcesDiffer(stTarget);
    return stShown;
}

Json SHOWN_S::SourceJson() const
{
    Json stJson = {{"source", SourceName(stImage.enSource)}};
    if (stTarget.optDevice.has_value()) {
        stJson["sourcesDiffer"] = optDiffer.has_value();
    }
    return stJson;
}

std::string SHOWN_S::HeadingText() const
{
    return stImage.enSource == Source::Cache ? ", cached image" : "";
}

void SHOWN_S::RequireSame() const
{
    if (optDiffer.has_value()) {
        Fail(ErrorClass::Damaged, *optDiffer);
    }
}

namespace {

// What was looked at, and of a device which of its images.
Json HeadJson(const SHOWN_S &stShown)
{
    Json stJson = TargetJson(stShown.stTarget);
    if (stShown.stTarget.optDevice.has_value()) {
        stJson.update(stShown.SourceJson());
    }
    return stJson;
}

} // namespace

Json ShownJson(const SHOWN_S &stShown, u32 uiOffset, const RECORD_VIEW_S &stView)
{
    Json stJson = HeadJson(stShown);
    if (uiOffset != 0U) {
        stJson["offset"] = uiOffset;
    }
    stJson.update(RecordJson(stView));
    return stJson;
}

LENIENT_VIEW_S TakeLenient(const TARGET_S &stTarget, const IMAGE_S &stImage)
{
    const LENIENT_VIEW_S stView = ViewLeniently(stImage, stTarget.HasFixedSlots());
    if (stView.uiGood + stView.uiDoubtful == 0U) {
        Fail(ErrorClass::Damaged, stTarget.Title() + " holds no field that could be shown" +
                                      (stView.vecRemarks.empty() ? "" : ": " + stView.vecRemarks.front()));
    }
    return stView;
}

Json LenientShownJson(const SHOWN_S &stShown, u32 uiOffset, const LENIENT_VIEW_S &stView)
{
    Json stJson = HeadJson(stShown);
    stJson.update(LenientJson(stView, uiOffset));
    return stJson;
}

Json MapShownJson(const TARGET_S &stTarget, const IMAGE_S &stImage)
{
    Json stJson = TargetJson(stTarget);
    stJson.update(MapJson(stImage, LayoutOf(stImage, stTarget.HasFixedSlots())));
    return stJson;
}
