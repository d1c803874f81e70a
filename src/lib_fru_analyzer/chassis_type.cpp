// SPDX-License-Identifier: Apache-2.0
// Chassis type codes and their texts, which are the values of the chassis type label, too.
#include "lib_fru_analyzer/fields.h"

#include <cstring>

namespace {

// One behind the other in the order of their codes: rows of pointers or of 64 bytes would be four times as
// large. The spellings ("LapTop", "SubChassis", "Sealed-case PC") are what callers compare with.
constexpr char g_acDescs[] = "Unspecified\0"
                             "Other\0"
                             "Unknown\0"
                             "Desktop\0"
                             "Low Profile Desktop\0"
                             "Pizza Box\0"
                             "Mini Tower\0"
                             "Tower\0"
                             "Portable\0"
                             "LapTop\0"
                             "Notebook\0"
                             "Hand Held\0"
                             "Docking Station\0"
                             "All in One\0"
                             "Sub Notebook\0"
                             "Space-saving\0"
                             "Lunch Box\0"
                             "Main Server Chassis\0"
                             "Expansion Chassis\0"
                             "SubChassis\0"
                             "Bus Expansion Chassis\0"
                             "Peripheral Chassis\0"
                             "RAID Chassis\0"
                             "Rack Mount Chassis\0"
                             "Sealed-case PC\0"
                             "Multi-system Chassis\0"
                             "CompactPCI\0"
                             "AdvancedTCA\0"
                             "Blade\0"
                             "Blade Enclosure";

struct STARTS_S
{
    u16 ausStart[FRU_CHASSIS_TYPE_COUNT];
    u32 uiTexts;
};

// Where each text begins in g_acDescs.
constexpr STARTS_S FindStarts()
{
    STARTS_S stStarts = {};
    for (u32 i = 0; i < sizeof(g_acDescs); ++i) {
        if (i == 0U || g_acDescs[i - 1U] == '\0') {
            stStarts.ausStart[stStarts.uiTexts++] = static_cast<u16>(i);
        }
    }
    return stStarts;
}

constexpr STARTS_S g_stStarts = FindStarts();
static_assert(g_stStarts.uiTexts == FRU_CHASSIS_TYPE_COUNT);

} // namespace

const char *FRU_FindChassisDesc(u32 uiCode)
{
    return uiCode < FRU_CHASSIS_TYPE_COUNT ? g_acDescs + g_stStarts.ausStart[uiCode] : nullptr;
}

u32 FRU_FindChassisCode(const char *pcDesc)
{
    u32 uiCode = 0;
    while (uiCode < FRU_CHASSIS_TYPE_COUNT && strcmp(g_acDescs + g_stStarts.ausStart[uiCode], pcDesc) != 0) {
        ++uiCode;
    }
    return uiCode;
}
