// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/area_texts.h"

#include "common/text.h"
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

namespace {

// One text behind the other, in the order of the fields.
constexpr char g_acDecode[] = "Failed to get chassis type desc in ChassisInfoArea!\0"
                              "Failed to get ChassisPartNum while in ChassisInfoArea!\0"
                              "Failed to get ChassisSerialNum while in ChassisInfoArea!\0"
                              "\0"
                              "\0"
                              "Failed to get BoardMfr while in BoardInfoArea!\0"
                              "Failed to get BoardProductName while in BoardInfoArea!\0"
                              "Failed to get BoardSerialNum while in BoardInfoArea!\0"
                              "Failed to get BoardPartNum while in BoardInfoArea!\0"
                              "Failed to get FRUFileID while in BoardInfoArea!\0"
                              "\0"
                              "Failed to get MfrName while in ProductInfoArea!\0"
                              "Failed to get ProductName while in ProductInfoArea!\0"
                              "Failed to get ProductPartNum while in ProductInfoArea!\0"
                              "Failed to get ProductVersion while in ProductInfoArea!\0"
                              "Failed to get ProductSerialNum while in ProductInfoArea!\0"
                              "Failed to get AssetTag while in ProductInfoArea!\0"
                              "Failed to get FRUFileID while in ProductInfoArea!\0";

constexpr char g_acEncode[] = "Error ChassisType while converting ChassisInfoArea.\0"
                              "Error ChassisPartNum while converting ChassisInfoArea.\0"
                              "Error ChassisSerialNum while converting ChassisInfoArea.\0"
                              "Error Language while converting BoardInfoArea.\0"
                              "Error MfgDateTime while converting BoardInfoArea.\0"
                              "Error BoardMfr while converting BoardInfoArea.\0"
                              "Error BoardProductName while converting BoardInfoArea.\0"
                              "Error BoardSerialNum while converting BoardInfoArea.\0"
                              "Error BoardPartNum while converting BoardInfoArea.\0"
                              "Error FRUFileID while converting BoardInfoArea.\0"
                              "Error Language while converting ProductInfoArea.\0"
                              "Error MfrName while converting ProductInfoArea.\0"
                              "Error ProductName while converting ProductInfoArea.\0"
                              "Error ProductPartNum while converting ProductInfoArea.\0"
                              "Error ProductVersion while converting ProductInfoArea.\0"
                              "Error ProductSerialNum while converting ProductInfoArea.\0"
                              "Error AssetTag while converting ProductInfoArea.\0"
                              "Error FRUFileID while converting ProductInfoArea.\0";

} // namespace

const char *FRU_DecodeTextOf(u32 uiField)
{
    return FRU_NthText(g_acDecode, uiField);
}

const char *FRU_EncodeTextOf(u32 uiField)
{
    return FRU_NthText(g_acEncode, uiField);
}

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
        "",
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
        "",
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
        "",
        "",
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
    for (u32 i = 0; i < FRU_FIELD_COUNT; ++i) {
        if (FRU_CountConversions(FRU_NthText(g_acDecode, i)) != 0U ||
            FRU_CountConversions(FRU_NthText(g_acEncode, i)) != 0U) {
            return false;
        }
    }
    for (const FRU_DECODE_TEXTS_S &stTexts : g_astFruDecodeTexts) {
        const char *const apcPlain[] = {stTexts.acZeroSum,       stTexts.acCustomAddress,
                                        stTexts.acCustomCount,   stTexts.acCustomMemory,
                                        stTexts.acCustomClosing, stTexts.acClosing};
        for (const char *pcPlain : apcPlain) {
            if (FRU_CountConversions(pcPlain) != 0U) {
                return false;
            }
        }
        if (FRU_CountConversions(stTexts.acStart) != 2U || FRU_CountConversions(stTexts.acVersion) != 1U ||
            FRU_CountConversions(stTexts.acSize) != 3U || FRU_CountConversions(stTexts.acCustomDebug) != 2U ||
            FRU_CountConversions(stTexts.acCustomField) != 1U ||
            FRU_CountConversions(stTexts.acCustomRet) != (stTexts.acCustomRet[0] == '\0' ? 0U : 1U)) {
            return false;
        }
    }
    for (const FRU_ENCODE_TEXTS_S &stTexts : g_astFruEncodeTexts) {
        const char *const apcPlain[] = {stTexts.acVersion, stTexts.acLength, stTexts.acEndChar,
                                        stTexts.acCheckSum, stTexts.acClosing};
        for (const char *pcPlain : apcPlain) {
            if (FRU_CountConversions(pcPlain) != 0U) {
                return false;
            }
        }
        if (FRU_CountConversions(stTexts.acCustomField) != 1U ||
            FRU_CountConversions(stTexts.acRelocate) != 1U) {
            return false;
        }
    }
    return true;
}

static_assert(TakeTheirArguments());
static_assert(FRU_CountTexts(g_acDecode) == FRU_FIELD_COUNT && FRU_CountTexts(g_acEncode) == FRU_FIELD_COUNT);

} // namespace
