// SPDX-License-Identifier: Apache-2.0
// What the encoder's tests share.
#ifndef TESTS_UNIT_ENCODER_CASE_H
#define TESTS_UNIT_ENCODER_CASE_H

#include "area_case.h"

namespace codec {

struct ENCODED_S
{
    i32 iRet = 0;
    BYTES vecImage; // as far as it was given out
};

// Encodes into a zero-filled buffer of exactly uiLength bytes.
inline ENCODED_S Encode(const FRU_DATA_S *pstFRUData, u32 uiLength)
{
    ENCODED_S stEncoded;
    const std::unique_ptr<u8[]> upBuf = image::Exact(BYTES(uiLength, 0U));
    stEncoded.iRet = FRU_ANALYZER_ConvertToArray(pstFRUData, uiLength, upBuf.get());
    if (stEncoded.iRet > 0) {
        stEncoded.vecImage.assign(upBuf.get(), upBuf.get() + stEncoded.iRet);
    }
    return stEncoded;
}

// The model's area, made with the same fields as AreaOf() if it is not there.
inline model::AREA_S &AreaIn(const AREA_CASE_S &stCase, model::RECORD_S &stModel)
{
    std::optional<model::AREA_S> &optArea = stCase.uiHeaderByte == 2U   ? stModel.optChassis
                                            : stCase.uiHeaderByte == 3U ? stModel.optBoard
                                                                        : stModel.optProduct;
    if (!optArea) {
        optArea.emplace();
        optArea->strChassisType = stCase.uiHeaderByte == 2U ? "Rack Mount Chassis" : "";
        optArea->ucLanguage = stCase.uiHeaderByte == 2U ? 0U : 25U;
        if (stCase.uiHeaderByte == 3U) {
            (void)memcpy(optArea->aucDate, "\1\2\3", 3);
        }
        for (size_t i = 0; i < stCase.vecFields.size(); ++i) {
            optArea->vecFields.push_back("F" + std::to_string(i));
        }
    }
    return *optArea;
}

// An area as long as can be.
inline void Stretch(const AREA_CASE_S &stCase, model::RECORD_S &stModel)
{
    model::AREA_S &stArea = AreaIn(stCase, stModel);
    stArea.vecCustom.assign(31U, std::string(63, 'x'));
    stArea.vecCustom.push_back(std::string(2040U - 3U - UsedBefore(stCase) - 31U * 64U, 'y'));
}

} // namespace codec

#endif
