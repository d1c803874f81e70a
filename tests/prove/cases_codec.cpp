// SPDX-License-Identifier: Apache-2.0
// Codec and assembly: images and records.
#include <cstdlib>
#include <cstring>

#include "prove/fault_case.h"
#include "prove/world.h"

namespace prove {
namespace {

void DecodeBaseboard()
{
    (void)FRU_ANALYZER_InterpretFRUData(BaseboardImage().data(), static_cast<u32>(BaseboardImage().size()),
                                        &Scratch().stData);
}

void ReleaseRecord()
{
    FRU_ANALYZER_SafeFree(&Scratch().stData);
}

std::string Record()
{
    return RecordText(Scratch().stData);
}

std::string Bytes()
{
    return HexText(Scratch().aucBytes, sizeof(Scratch().aucBytes));
}

std::string Block()
{
    return HexText(&Scratch().stBlock, sizeof(Scratch().stBlock));
}

std::string CustomTexts()
{
    const FRU_CUSTOM_FIELD_S &stCustom = Scratch().stCustom;
    std::string strText = std::string(stCustom.acChassisCustomField1) + "|" + stCustom.acChassisCustomField2 +
                          "|" + stCustom.acBoardCustomField0;
    const char *const apcTexts[] = {stCustom.pcChassisCustomFields, stCustom.pcBoardCustomFields,
                                    stCustom.pcProductCustomFields};
    for (const char *pcText : apcTexts) {
        strText += "|" + std::string(pcText == nullptr ? "(null)" : pcText);
    }
    return strText;
}

void AddRecordCases(CASES &vecCases)
{
    vecCases.push_back({"FRU_ANALYZER_CheckValidHeader",
                        "a sound header",
                        {},
                        {},
                        [] { return FRU_ANALYZER_CheckValidHeader(BaseboardImage().data()) == FRU_OK; },
                        {},
                        {}});
    vecCases.push_back({"FRU_ANALYZER_InterpretFRUData",
                        "all areas, two MultiRecords",
                        {"multirecords-left-out"},
                        {},
                        [] {
                            return FRU_ANALYZER_InterpretFRUData(BaseboardImage().data(),
                                                                 static_cast<u32>(BaseboardImage().size()),
                                                                 &Scratch().stData) == FRU_OK;
                        },
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"FRU_ANALYZER_InterpretFRUData",
                        "fixed custom-field slots",
                        {"multirecords-left-out"},
                        [] {
                            Scratch().stData.stChassisInfo.ucCustomFieldCount = FRU_CHASSIS_FIXED_SLOTS;
                            Scratch().stData.stProductInfo.ucCustomFieldCount = FRU_PRODUCT_FIXED_SLOTS;
                        },
                        [] {
                            return FRU_ANALYZER_InterpretFRUData(BaseboardImage().data(),
                                                                 static_cast<u32>(BaseboardImage().size()),
                                                                 &Scratch().stData) == FRU_OK;
                        },
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"FRU_ANALYZER_ConvertToArray",
                        "all areas",
                        {},
                        DecodeBaseboard,
                        [] {
                            return FRU_ANALYZER_ConvertToArray(&Scratch().stData, sizeof(Scratch().aucBytes),
                                                               Scratch().aucBytes) > 0;
                        },
                        Bytes,
                        ReleaseRecord});
    vecCases.push_back({"FRU_ANALYZER_SafeFree",
                        "all areas",
                        {},
                        DecodeBaseboard,
                        [] {
                            ReleaseRecord();
                            return true;
                        },
                        Record,
                        {}});
}

void AddTextCases(CASES &vecCases)
{
    vecCases.push_back(
        {"FRU_ANALYZER_InterpretCustomField",
         "three areas of fields",
         {"product-fields-not-joined"},
         DecodeBaseboard,
         [] { return FRU_ANALYZER_InterpretCustomField(&Scratch().stData, &Scratch().stCustom) == FRU_OK; },
         CustomTexts,
         [] {
             FRU_ANALYZER_FreeCustomField(&Scratch().stCustom);
             ReleaseRecord();
         }});
    vecCases.push_back({"FRU_ANALYZER_FreeCustomField",
                        "three areas of fields",
                        {},
                        [] {
                            DecodeBaseboard();
                            (void)FRU_ANALYZER_InterpretCustomField(&Scratch().stData, &Scratch().stCustom);
                        },
                        [] {
                            FRU_ANALYZER_FreeCustomField(&Scratch().stCustom);
                            return true;
                        },
                        CustomTexts,
                        ReleaseRecord});
    vecCases.push_back({"FRU_ANALYZER_Escape",
                        "all that is escaped",
                        {},
                        {},
                        [] {
                            Scratch().pcText = FRU_ANALYZER_Escape("a'b\\c\nd\re");
                            return Scratch().pcText != nullptr;
                        },
                        [] { return std::string(Scratch().pcText); },
                        [] { free(Scratch().pcText); }});
}

void AddBlockCases(CASES &vecCases)
{
    vecCases.push_back({"FRU_ANALYZER_InterpretALLHwFRUData",
                        "a sound block",
                        {},
                        {},
                        [] {
                            return FRU_ANALYZER_InterpretALLHwFRUData(Cached(BLOCK).data(), FRU_HW_DATA_LEN,
                                                                      &Scratch().stBlock) == FRU_OK;
                        },
                        Block,
                        {}});
    vecCases.push_back({"FRU_ANALYZER_ConvertToHwArray",
                        "a block",
                        {},
                        {},
                        [] {
                            return FRU_ANALYZER_ConvertToHwArray(&Scratch().stBlock, FRU_HW_DATA_LEN,
                                                                 Scratch().aucBytes) == FRU_OK;
                        },
                        Bytes,
                        {}});
}

void AddAssemblyCases(CASES &vecCases)
{
    const auto Prepare = [] {
        Scratch().stInfo = InfoOf(CARD);
        Scratch().stInfo.usSize = 256U;
        for (u32 i = FRU_ASSEMBLE_BOARD_MANUFACTURER; i < FRU_ASSEMBLE_SLOTS; ++i) {
            (void)strcpy(Scratch().stLabel.acSlot[i], "assembled");
        }
        (void)strcpy(Scratch().stLabel.acSlot[FRU_ASSEMBLE_BOARD_MFG_DATE], "2024-04-05 06:07:08");
    };
    vecCases.push_back({"FRU_AssembleBin",
                        "board and product",
                        {},
                        Prepare,
                        [] { return FRU_AssembleBin(&Scratch().stInfo, &Scratch().stLabel) == FRU_OK; },
                        {},
                        {}});
}

} // namespace

void AddCodecCases(CASES &vecCases)
{
    AddRecordCases(vecCases);
    AddTextCases(vecCases);
    AddBlockCases(vecCases);
    AddAssemblyCases(vecCases);
}

} // namespace prove
