// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_write: which texts are dates, numbers, addresses. ASCII alone counts, whatever the
// caller's locale makes of other bytes.
#ifndef LIB_FRU_WRITE_VALUE_FORMS_H
#define LIB_FRU_WRITE_VALUE_FORMS_H

#include "lib_fru_types.h"

// The forms of a date. A text has up to two of them: "2024-10-15" could be either of those without a time.
#define FRU_DATE_BARE 0x01U        // 2024-4-5
#define FRU_DATE_BARE_TIME 0x02U   // 2024-4-5 6:7:8
#define FRU_DATE_FILLED 0x04U      // 2024-04-05
#define FRU_DATE_FILLED_TIME 0x08U // 2024-04-05 06:07:08

// The forms that the whole text has, 0: none. February has 29 days in every year.
u32 FRU_DateForms(const char *pcValue);

// Empty texts are made of anything.
bool FRU_IsDigits(const char *pcValue);
bool FRU_IsPrintable(const char *pcValue);

// Blanks, tabs and line ends of all kinds.
bool FRU_IsSpace(char cChar);

// Exactly twelve hexadecimal digits.
bool FRU_IsMacAddress(const char *pcValue);

void FRU_ToUpper(char *pcValue);

#endif
