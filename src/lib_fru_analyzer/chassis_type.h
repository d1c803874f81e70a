// Chassis type codes (SMBIOS, system enclosure types) and their texts. Also used by the label module, whose
// values are the texts.
#ifndef LIB_FRU_ANALYZER_CHASSIS_TYPE_H
#define LIB_FRU_ANALYZER_CHASSIS_TYPE_H

#include "lib_fru_types.h"

#define FRU_CHASSIS_TYPE_COUNT 30U    // codes run from 0 to one less
#define FRU_CHASSIS_TYPE_DESC_LEN 64U // the buffer of a description in a record

// The code's text, null when the code has none.
const char *FRU_FindChassisDesc(u32 uiCode);

// The code of exactly that text (case counts), FRU_CHASSIS_TYPE_COUNT when it has none. pcDesc is not null.
u32 FRU_FindChassisCode(const char *pcDesc);

#endif
