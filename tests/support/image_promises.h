// SPDX-License-Identifier: Apache-2.0
// What holds for any image, whatever its bytes: fuzzers and sweeps over images ask for the same. Each answers null, or the
// promise that was broken.
#ifndef TESTS_SUPPORT_IMAGE_PROMISES_H
#define TESTS_SUPPORT_IMAGE_PROMISES_H

#include <algorithm>
#include <memory>
#include <vector>

#include "lib_fru.h"
#include "support/record_builder.h"

namespace promise {

using BYTES = std::vector<u8>;

constexpr size_t TAIL = 8U;          // an info area must not end with the image's last byte
constexpr u32 AREA_LARGEST = 0x7F8U; // what the MultiRecord area's size is masked with
constexpr u32 ROOM_FOR_TEXTS = 256U; // binary and packed fields grow when they become texts
constexpr u32 TEXTS_GROW_AT_MOST = 4U;

inline bool HasOneCharacter(const std::optional<model::AREA_S> &optArea)
{
    return optArea && std::any_of(optArea->vecCustom.begin(), optArea->vecCustom.end(),
                                  [](const std::string &strText) { return strText.size() == 1U; });
}

// A custom field of one character has the end mark for its length byte and is lost when it is read again, and records
// of more than 2040 bytes keep the low bits of their size: the encoder is meant so.
inline bool IsKept(const model::RECORD_S &stRecord)
{
    size_t uiRecords = 0;
    for (const model::MULTIRECORD_S &stOne : stRecord.vecMultiRecord) {
        uiRecords += FRU_MULTIRECORD_HEADER_LEN + stOne.vecData.size();
    }
    return uiRecords <= AREA_LARGEST && !HasOneCharacter(stRecord.optChassis) &&
           !HasOneCharacter(stRecord.optBoard) && !HasOneCharacter(stRecord.optProduct);
}

// The record as an image with bytes behind it; empty: the encoder refuses it.
inline BYTES Encoded(const FRU_DATA_S &stData, u32 uiCapacity)
{
    BYTES vecImage(uiCapacity);
    const i32 iLength = FRU_ANALYZER_ConvertToArray(&stData, uiCapacity, vecImage.data());
    vecImage.resize(iLength < 0 ? 0U : static_cast<size_t>(iLength) + TAIL);
    return vecImage;
}

// What this library encodes it must decode; bSame: to the same record.
inline const char *DecodesAgain(const BYTES &vecEncoded, const FRU_DATA_S &stData, bool bSame)
{
    if (vecEncoded.empty()) {
        return nullptr;
    }
    const std::unique_ptr<u8[]> upImage(
        new u8[vecEncoded.size()]); // exactly as large: reads past it are seen
    std::copy(vecEncoded.begin(), vecEncoded.end(), upImage.get());
    FRU_DATA_S stAgain{};
    const u32 uiRet =
        FRU_ANALYZER_InterpretFRUData(upImage.get(), static_cast<u32>(vecEncoded.size()), &stAgain);
    const model::RECORD_S stRecord = model::Read(&stData);
    const bool bKept = !bSame || !IsKept(stRecord) || model::Read(&stAgain) == stRecord;
    FRU_ANALYZER_SafeFree(&stAgain);
    return uiRet != FRU_OK ? "an encoded record decodes again"
           : bKept         ? nullptr
                           : "an encoded record decodes to the same";
}

inline const char *HasCustomTexts(const FRU_DATA_S &stData)
{
    FRU_CUSTOM_FIELD_S stCustom{};
    const u32 uiRet = FRU_ANALYZER_InterpretCustomField(&stData, &stCustom); // memory does not run out here
    FRU_ANALYZER_FreeCustomField(&stCustom);
    return uiRet == FRU_OK ? nullptr : "the custom fields of a decoded record become texts";
}

// After SafeFree().
inline const char *IsReleased(const FRU_DATA_S &stData)
{
    return model::Read(&stData).vecMultiRecord.empty() && stData.stBoardInfo.ppucCustomFields == nullptr
               ? nullptr
               : "a released record owns nothing";
}

} // namespace promise

#endif
