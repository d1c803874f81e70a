// Chassis type codes (SMBIOS, system enclosure types) and their texts. Also used by the label module, whose
// values are the texts.
#ifndef LIB_FRU_ANALYZER_CHASSIS_TYPE_H
#define LIB_FRU_ANALYZER_CHASSIS_TYPE_H

#include "lib_fru_types.h"

#define FRU_CHASSIS_TYPE_COUNT 30U
#define FRU_CHASSIS_TYPE_DESC_LEN 64U

struct FRU_CHASSIS_TYPE_S
{
    u32 uiCode; // the entry's position
    char acDesc[FRU_CHASSIS_TYPE_DESC_LEN];
};

extern const FRU_CHASSIS_TYPE_S FRU_ChassisTypeTable[FRU_CHASSIS_TYPE_COUNT];

// The first entry of that code, null when there is none.
const FRU_CHASSIS_TYPE_S *FRU_FindChassisTypeByCode(u32 uiCode);

// The first entry of exactly that text (case counts), null when there is none. pcDesc is not null.
const FRU_CHASSIS_TYPE_S *FRU_FindChassisTypeByDesc(const char *pcDesc);

#endif
