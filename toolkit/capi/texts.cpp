// SPDX-License-Identifier: Apache-2.0
// A record's areas as texts one behind the other: what JSON takes to make and to read is many times what decoding takes.
#include <cstring>

#include "bmcfru_tool.h"
#include "lib_fru_types.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

namespace {

constexpr size_t IMAGE_MAX = 1024U * 1024U; // as of a file

char Letter(Area enArea)
{
    switch (enArea) {
    case Area::InternalUse:
        return 'I';
    case Area::Chassis:
        return 'C';
    case Area::Board:
        return 'B';
    default:
        return 'P';
    }
}

// What one call leaves for the next: memory, for asking for it would be a tenth of the time.
struct ROOM_S
{
    std::vector<u8> vecImage;
    std::string strTexts;
};

// False: the image is not accepted.
bool MakeTexts(const u8 *pucImage, size_t uiSize, ROOM_S &stRoom)
{
    stRoom.vecImage.assign(pucImage, pucImage + uiSize);
    IMAGE_S stImage = FileImage(std::move(stRoom.vecImage));
    Record stRecord;
    const u32 uiRet = DecodeImage(stImage, false, stRecord);
    stRoom.vecImage = std::move(stImage.vecBytes);
    if (uiRet != FRU_OK) {
        return false;
    }
    const FRU_DATA_S &stData = *stRecord.Data();
    std::string &strTexts = stRoom.strTexts;
    strTexts.clear();
    const AREA_ROW_S *apstAreas[4] = {};
    size_t uiAreas = 0;
    for (const AREA_ROW_S &stArea : AreaRows()) {
        if (HasArea(stData, stArea.enArea)) {
            strTexts += Letter(stArea.enArea);
            apstAreas[uiAreas++] = &stArea;
        }
    }
    strTexts += HasArea(stData, Area::MultiRecord) ? "M" : "";
    strTexts += '\0';
    for (size_t i = 0; i < uiAreas; i++) {
        AppendTexts(stData, *apstAreas[i], strTexts);
    }
    return true;
}

} // namespace

extern "C" unsigned BMCFRU_TOOL_DecodeTexts(const void *pImage, unsigned uiSize, char *pcOut, unsigned uiRoom)
{
    if (pImage == nullptr || uiSize == 0U || uiSize > IMAGE_MAX) {
        return 0U;
    }
    try {
        thread_local ROOM_S stRoom;
        if (!MakeTexts(static_cast<const u8 *>(pImage), uiSize, stRoom)) {
            return 0U;
        }
        const size_t uiTexts = stRoom.strTexts.size();
        if (pcOut != nullptr && uiTexts <= uiRoom) {
            memcpy(pcOut, stRoom.strTexts.data(), uiTexts);
        }
        return static_cast<unsigned>(uiTexts);
    } catch (...) {
        return 0U;
    }
}
