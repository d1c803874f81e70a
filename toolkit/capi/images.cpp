// SPDX-License-Identifier: Apache-2.0
// Images in memory.
#include "bmcfru_tool.h"
#include "toolkit/base/json_node.h"
#include "toolkit/base/text.h"
#include "toolkit/capi/answer.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/encode.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout_json.h"
#include "toolkit/image/lenient_json.h"
#include "toolkit/image/record.h"
#include "toolkit/image/record_json.h"
#include "toolkit/task/shown.h"
#include "toolkit/task/verify.h"

namespace {

constexpr size_t IMAGE_MAX = 1024U * 1024U; // as of a file

const TARGET_S &Target()
{
    static const TARGET_S stTarget = {std::nullopt, "the image"};
    return stTarget;
}

IMAGE_S Image(const void *pImage, size_t uiSize)
{
    if ((pImage == nullptr && uiSize != 0U) || uiSize > IMAGE_MAX) {
        FailUsage(pImage == nullptr
                      ? "there is no image but a null pointer"
                      : Format("%zu bytes are no FRU image; accepted: up to %zu", uiSize, IMAGE_MAX));
    }
    const u8 *pucImage = static_cast<const u8 *>(pImage);
    return FileImage(uiSize == 0U ? std::vector<u8>() : std::vector<u8>(pucImage, pucImage + uiSize));
}

} // namespace

extern "C" {

BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_Decode(const void *pImage, size_t uiSize)
{
    return capi::NewAnswer([&](capi::RESULT_S &stResult) {
        Record stRecord;
        DecodeShown(Target(), Image(pImage, uiSize), stRecord);
        stResult.stDocument = RecordJson(ViewRecord(*stRecord.Data()));
    });
}

BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_Encode(const char *pcRecord, size_t uiImageSize, unsigned uiWrap)
{
    return capi::NewAnswer([&](capi::RESULT_S &stResult) {
        if (pcRecord == nullptr) {
            FailUsage("there is no record but a null pointer");
        }
        constexpr const char *TITLE = "the record";
        const nlohmann::json stParsed = ParseJsonDocument(pcRecord, TITLE);
        Record stRecord;
        BuildRecord(JsonNode(stParsed, TITLE, ""), stRecord, uiWrap != 0U);
        stResult.vecBytes =
            MakeImageFile(stRecord, TITLE, uiImageSize == 0U ? "" : std::to_string(uiImageSize));
        stResult.stDocument["size"] = stResult.vecBytes.size();
    });
}

BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_VerifyImage(const void *pImage, size_t uiSize)
{
    return capi::NewAnswer([&](capi::RESULT_S &stResult) {
        Json stChecks = ChecksJson({CheckImage(Target(), Image(pImage, uiSize))});
        stResult.stDocument = stChecks["images"].front();
        stResult.stDocument.erase("file");
    });
}

BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_DecodeLeniently(const void *pImage, size_t uiSize)
{
    return capi::NewAnswer([&](capi::RESULT_S &stResult) {
        stResult.stDocument = LenientJson(TakeLenient(Target(), Image(pImage, uiSize)), 0U);
    });
}

BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_MapImage(const void *pImage, size_t uiSize)
{
    return capi::NewAnswer([&](capi::RESULT_S &stResult) {
        const IMAGE_S stImage = Image(pImage, uiSize);
        stResult.stDocument = MapJson(stImage, LayoutOf(stImage, false));
    });
}

} // extern "C"
