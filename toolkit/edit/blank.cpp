// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/blank.h"

#include <algorithm>

#include "toolkit/base/error.h"
#include "toolkit/base/json_node.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/labels.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/names.h"
#include "toolkit/image/record_json.h"

namespace {

bool TakesLabelOf(const DEVICE_S &stDevice, Area enArea)
{
    return std::any_of(Labels().begin(), Labels().end(), [&](const LABEL_S &stLabel) {
        return stLabel.stField.enArea == enArea && IsAccepted(stDevice, stLabel);
    });
}

// A label can only be written to a custom field that is there, so all that have labels are.
Json BlankArea(const AREA_ROW_S &stRow)
{
    Json stArea = Json::object();
    for (const FIELD_ROW_S &stField : stRow.vecFields) {
        if (stField.enKind == Kind::ChassisType) {
            stArea[FieldKey(stField.enField)] = ChassisTypeNames().front();
        }
    }
    if (stRow.stCustom.uiLabels != 0U) {
        stArea[FieldKey(Field::Custom)] = Json(stRow.stCustom.uiLabels, "");
    }
    return stArea;
}

} // namespace

std::optional<CHANGE_S> PlanBlank(const DEVICE_S &stDevice)
{
    Record stNow;
    const TARGET_S stTarget = {stDevice, ""};
    if (DecodeStatus(stTarget, stNow) == FRU_OK ||
        !LayoutOf(ReadTarget(stTarget), stDevice.HasFixedSlots()).bErased) {
        return std::nullopt;
    }
    Json stDocument = Json::object();
    for (const Area enArea : {Area::Chassis, Area::Board, Area::Product}) {
        // The library's label write gives every image a product area.
        if (enArea == Area::Product || TakesLabelOf(stDevice, enArea)) {
            stDocument[AreaKey(enArea)] = BlankArea(*FindAreaRow(enArea));
        }
    }
    Record stBlank;
    const nlohmann::json stPlain = stDocument;
    BuildRecord(JsonNode(stPlain, "an empty image", ""), stBlank);
    return PlanRecord(stDevice, "empty areas", stBlank, PlanNothing(stDevice));
}

std::string BlankNote(const CHANGE_S &stBlank)
{
    const DEVICE_S &stDevice = stBlank.stDevice;
    const std::vector<u8> &vecAfter = stBlank.Home().vecAfter;
    std::vector<std::string> vecAreas;
    for (const Area enArea : WalkImage(vecAfter, vecAfter.size(), stDevice.HasFixedSlots()).vecAreas) {
        vecAreas.emplace_back(AreaName(enArea));
    }
    return stDevice.Title() + " is erased: an empty image with " + Join(vecAreas, ", ") + " comes first";
}
