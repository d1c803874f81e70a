// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/area_texts.h"

#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

constexpr FRU_FIELD_TEXTS_S g_astFruFieldTexts[FRU_FIELD_COUNT] = {
    {"Failed to get chassis type desc in ChassisInfoArea!",
     "Error ChassisType while converting ChassisInfoArea."},
    {"Failed to get ChassisPartNum while in ChassisInfoArea!",
     "Error ChassisPartNum while converting ChassisInfoArea."},
    {"Failed to get ChassisSerialNum while in ChassisInfoArea!",
     "Error ChassisSerialNum while converting ChassisInfoArea."},
    {nullptr, "Error Language while converting BoardInfoArea."},
    {nullptr, "Error MfgDateTime while converting BoardInfoArea."},
    {"Failed to get BoardMfr while in BoardInfoArea!", "Error BoardMfr while converting BoardInfoArea."},
    {"Failed to get BoardProductName while in BoardInfoArea!",
     "Error BoardProductName while converting BoardInfoArea."},
    {"Failed to get BoardSerialNum while in BoardInfoArea!",
     "Error BoardSerialNum while converting BoardInfoArea."},
    {"Failed to get BoardPartNum while in BoardInfoArea!",
     "Error BoardPartNum while converting BoardInfoArea."},
    {"Failed to get FRUFileID while in BoardInfoArea!", "Error FRUFileID while converting BoardInfoArea."},
    {nullptr, "Error Language while converting ProductInfoArea."},
    {"Failed to get MfrName while in ProductInfoArea!", "Error MfrName while converting ProductInfoArea."},
    {"Failed to get ProductName while in ProductInfoArea!",
     "Error ProductName while converting ProductInfoArea."},
    {"Failed to get ProductPartNum while in ProductInfoArea!",
     "Error ProductPartNum while converting ProductInfoArea."},
    {"Failed to get ProductVersion while in ProductInfoArea!",
     "Error ProductVersion while converting ProductInfoArea."},
    {"Failed to get ProductSerialNum while in ProductInfoArea!",
     "Error ProductSerialNum while converting ProductInfoArea."},
    {"Failed to get AssetTag while in ProductInfoArea!", "Error AssetTag while converting ProductInfoArea."},
    {"Failed to get FRUFileID while in ProductInfoArea!",
     "Error FRUFileID while converting ProductInfoArea."},
};

// The uneven wording of the areas ("FRU Size", "Fail to calc", a closing line for some) is kept.
constexpr FRU_DECODE_TEXTS_S g_astFruDecodeTexts[FRU_AREA_COUNT] = {
    {
        "Error ucChassisInfoAreaStartOffset(8*%d) >= FRU_Size(%d)",
        "Error ChassisInfoArea format version: %#x",
        "Error ChassisInfoAreaSize(%#x*8 + %#x*8) >= FRU_Size(%#x)",
        "Failed to check zero sum in ChassisInfoArea!",
        "Addr has exceeded before customer field in ChassisInfoArea!",
        "Failed to calc CustomField count in ChassisInfoArea!",
        "ChassisInfoArea CustomField count is %d, length is %d.",
        "Fail to calloc CustomField memory in ChassisInfoArea!",
        "Fail to get CustomField index[%#x] while in ChassisInfoArea!",
        "Fail to get chassis custom field! Ret:%d.",
        nullptr,
        "Failed to get ChassisInfoArea!",
    },
    {
        "Error ucBoardInfoAreaStartOffset(8*%d) >= FRU_Size(%d)",
        "Error BoardInfoArea format version: %#x",
        "Error BoardInfoAreaSize(%#x*8 + %#x*8) >= FRU_Size(%#x)",
        "Failed to check zero sum in BoardInfoArea!",
        "Addr has exceeded before customer field in BoardInfoArea!",
        "Fail to calc CustomField count in BoardInfoArea!",
        "BoardInfoArea CustomField count is %d, length is %d.",
        "Fail to calloc CustomField memory in BoardInfoArea!",
        "Fail to get CustomField index[%#x] while in BoardInfoArea!",
        nullptr,
        "Fail to get board custom field!",
        "Failed to get BoardInfoArea!",
    },
    {
        "Error ProductInfoAreaStartOffset(8*%d) >= FRU Size(%d)",
        "Error ProductInfoArea format version: %#x",
        "Error ProductInfoAreaSize(%#x*8 + %#x*8) >= FRU_Size(%#x)",
        "Failed to check zero sum in ProductInfoArea!",
        "Addr has exceeded before customer field in ProductInfoArea!",
        "Fail to calc CustomField count in ProductInfoArea!",
        "ProductInfoArea CustomField count is %d, length is %d.",
        "Fail to calloc CustomField memory in ProductInfoArea!",
        "Fail to get CustomField index[%#x] while in ProductInfoArea!",
        nullptr,
        nullptr,
        "Failed to get ProductInfoArea!",
    },
};

constexpr FRU_ENCODE_TEXTS_S g_astFruEncodeTexts[FRU_AREA_COUNT] = {
    {
        "Error FormatVersion while converting ChassisInfoArea.",
        "Error Length while converting ChassisInfoArea.",
        "Error CustomFields[index=%#x] while converting ChassisInfoArea.",
        "Error EndChar while converting ChassisInfoArea.",
        "Error relocate address while converting ChassisInfoArea:length=%#x",
        "Error Zero CheckSum while converting ChassisInfoArea.",
        "Failed to createFRUBin of ChassisInfoArea",
    },
    {
        "Error FormatVersion while converting BoardInfoArea.",
        "Error Length while converting BoardInfoArea.",
        "Error CustomFields[index=%#x] while converting BoardInfoArea.",
        "Error EndChar while converting BoardInfoArea.",
        "Error relocate address while converting BoardInfoArea:length=%#x",
        "Error Zero CheckSum while converting BoardInfoArea.",
        "Failed to createFRUBin of BoardInfoArea",
    },
    {
        "Error FormatVersion while converting ProductInfoArea.",
        "Error Length while converting ProductInfoArea.",
        "Error CustomFields[index=%#x] while converting ProductInfoArea.",
        "Error EndChar while converting ProductInfoArea.",
        "Error relocate address while converting ProductInfoArea:length=%#x",
        "Error Zero CheckSum while converting ProductInfoArea.",
        "Failed to createFRUBin of ProductInfoArea",
    },
};

namespace {

constexpr bool TakeTheirArguments()
{
    for (const FRU_FIELD_TEXTS_S &stTexts : g_astFruFieldTexts) {
        if (FRU_CountConversions(stTexts.pcDecode) != 0U || FRU_CountConversions(stTexts.pcEncode) != 0U) {
            return false;
        }
    }
    for (const FRU_DECODE_TEXTS_S &stTexts : g_astFruDecodeTexts) {
        const char *const apcPlain[] = {stTexts.pcZeroSum,       stTexts.pcCustomAddress,
                                        stTexts.pcCustomCount,   stTexts.pcCustomMemory,
                                        stTexts.pcCustomClosing, stTexts.pcClosing};
        for (const char *pcPlain : apcPlain) {
            if (FRU_CountConversions(pcPlain) != 0U) {
                return false;
            }
        }
        if (FRU_CountConversions(stTexts.pcStart) != 2U || FRU_CountConversions(stTexts.pcVersion) != 1U ||
            FRU_CountConversions(stTexts.pcSize) != 3U || FRU_CountConversions(stTexts.pcCustomDebug) != 2U ||
            FRU_CountConversions(stTexts.pcCustomField) != 1U ||
            FRU_CountConversions(stTexts.pcCustomRet) != (stTexts.pcCustomRet == nullptr ? 0U : 1U)) {
            return false;
        }
    }
    for (const FRU_ENCODE_TEXTS_S &stTexts : g_astFruEncodeTexts) {
        const char *const apcPlain[] = {stTexts.pcVersion, stTexts.pcLength, stTexts.pcEndChar,
                                        stTexts.pcCheckSum, stTexts.pcClosing};
        for (const char *pcPlain : apcPlain) {
            if (FRU_CountConversions(pcPlain) != 0U) {
                return false;
            }
        }
        if (FRU_CountConversions(stTexts.pcCustomField) != 1U ||
            FRU_CountConversions(stTexts.pcRelocate) != 1U) {
            return false;
        }
    }
    return true;
}

static_assert(TakeTheirArguments());

} // namespace
