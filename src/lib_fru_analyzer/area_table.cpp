#include "lib_fru_analyzer/area_table.h"

namespace {

#define FRU_OFFSET(Member) static_cast<u16>(offsetof(FRU_DATA_S, Member))

// Member names and messages go by the same names in all three areas.
#define FRU_FIELD_ROW(Area, Name)                                                                            \
    {                                                                                                        \
        FRU_OFFSET(st##Area.uc##Name##Len), FRU_OFFSET(st##Area.puc##Name),                                  \
            "Failed to get " #Name " while in " #Area "Area!",                                               \
            "Error " #Name " while converting " #Area "Area."                                                \
    }

#define FRU_DECODE_TEXTS(Area, pcStart, pcCustomCount, pcCustomRet, pcCustomClosing)                         \
    {                                                                                                        \
        pcStart, "Error " #Area "Area format version: %#x",                                                  \
            "Error " #Area "AreaSize(%#x*8 + %#x*8) >= FRU_Size(%#x)",                                       \
            "Failed to check zero sum in " #Area "Area!",                                                    \
            "Addr has exceeded before customer field in " #Area "Area!", pcCustomCount,                      \
            #Area "Area CustomField count is %d, length is %d.",                                             \
            "Fail to calloc CustomField memory in " #Area "Area!",                                           \
            "Fail to get CustomField index[%#x] while in " #Area "Area!", pcCustomRet, pcCustomClosing,      \
            "Failed to get " #Area "Area!"                                                                   \
    }

#define FRU_ENCODE_TEXTS(Area)                                                                               \
    {                                                                                                        \
        "Error FormatVersion while converting " #Area "Area.",                                               \
            "Error Length while converting " #Area "Area.",                                                  \
            "Error CustomFields[index=%#x] while converting " #Area "Area.",                                 \
            "Error EndChar while converting " #Area "Area.",                                                 \
            "Error relocate address while converting " #Area "Area:length=%#x",                              \
            "Error Zero CheckSum while converting " #Area "Area.", "Failed to createFRUBin of " #Area "Area" \
    }

constexpr FRU_FIELD_ROW_S g_astChassisField[] = {
    FRU_FIELD_ROW(ChassisInfo, ChassisPartNum),
    FRU_FIELD_ROW(ChassisInfo, ChassisSerialNum),
};

constexpr FRU_FIELD_ROW_S g_astBoardField[] = {
    FRU_FIELD_ROW(BoardInfo, BoardMfr),       FRU_FIELD_ROW(BoardInfo, BoardProductName),
    FRU_FIELD_ROW(BoardInfo, BoardSerialNum), FRU_FIELD_ROW(BoardInfo, BoardPartNum),
    FRU_FIELD_ROW(BoardInfo, FRUFileID),
};

constexpr FRU_FIELD_ROW_S g_astProductField[] = {
    FRU_FIELD_ROW(ProductInfo, MfrName),          FRU_FIELD_ROW(ProductInfo, ProductName),
    FRU_FIELD_ROW(ProductInfo, ProductPartNum),   FRU_FIELD_ROW(ProductInfo, ProductVersion),
    FRU_FIELD_ROW(ProductInfo, ProductSerialNum), FRU_FIELD_ROW(ProductInfo, AssetTag),
    FRU_FIELD_ROW(ProductInfo, FRUFileID),
};

constexpr FRU_RAW_ROW_S g_astBoardRaw[] = {
    {FRU_OFFSET(stBoardInfo.ucLanguage), 1U, "Error Language while converting BoardInfoArea."},
    {FRU_OFFSET(stBoardInfo.aucMfgDateTime), 3U, "Error MfgDateTime while converting BoardInfoArea."},
};

constexpr FRU_RAW_ROW_S g_astProductRaw[] = {
    {FRU_OFFSET(stProductInfo.ucLanguage), 1U, "Error Language while converting ProductInfoArea."},
};

template <typename ROW, u32 uiCount> constexpr u32 CountOf(const ROW (&/*astRows*/)[uiCount])
{
    return uiCount;
}

} // namespace

// The uneven wording of the areas' messages ("FRU Size", "Fail to calc", a closing line for some) is kept.
const FRU_AREA_S g_astFruArea[FRU_AREA_COUNT] = {
    {
        2U,
        FRU_OFFSET(stChassisInfo.ucFormatVersion),
        FRU_OFFSET(stChassisInfo.ucAreaLength),
        FRU_OFFSET(stChassisInfo.pucChassisType),
        nullptr,
        0U,
        g_astChassisField,
        CountOf(g_astChassisField),
        FRU_OFFSET(stChassisInfo.ppucCustomFields),
        FRU_OFFSET(stChassisInfo.ucCustomFieldCount),
        FRU_CHASSIS_FIXED_SLOTS,
        FRU_DECODE_TEXTS(ChassisInfo, "Error ucChassisInfoAreaStartOffset(8*%d) >= FRU_Size(%d)",
                         "Failed to calc CustomField count in ChassisInfoArea!",
                         "Fail to get chassis custom field! Ret:%d.", nullptr),
        FRU_ENCODE_TEXTS(ChassisInfo),
    },
    {
        3U,
        FRU_OFFSET(stBoardInfo.ucFormatVersion),
        FRU_OFFSET(stBoardInfo.ucAreaLength),
        0U,
        g_astBoardRaw,
        CountOf(g_astBoardRaw),
        g_astBoardField,
        CountOf(g_astBoardField),
        FRU_OFFSET(stBoardInfo.ppucCustomFields),
        FRU_OFFSET(stBoardInfo.ucCustomFieldCount),
        0U,
        FRU_DECODE_TEXTS(BoardInfo, "Error ucBoardInfoAreaStartOffset(8*%d) >= FRU_Size(%d)",
                         "Fail to calc CustomField count in BoardInfoArea!", nullptr,
                         "Fail to get board custom field!"),
        FRU_ENCODE_TEXTS(BoardInfo),
    },
    {
        4U,
        FRU_OFFSET(stProductInfo.ucFormatVersion),
        FRU_OFFSET(stProductInfo.ucAreaLength),
        0U,
        g_astProductRaw,
        CountOf(g_astProductRaw),
        g_astProductField,
        CountOf(g_astProductField),
        FRU_OFFSET(stProductInfo.ppucCustomFields),
        FRU_OFFSET(stProductInfo.ucCustomFieldCount),
        FRU_PRODUCT_FIXED_SLOTS,
        FRU_DECODE_TEXTS(ProductInfo, "Error ProductInfoAreaStartOffset(8*%d) >= FRU Size(%d)",
                         "Fail to calc CustomField count in ProductInfoArea!", nullptr, nullptr),
        FRU_ENCODE_TEXTS(ProductInfo),
    },
};
