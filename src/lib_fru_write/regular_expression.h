// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_write: texts held against a POSIX extended regular expression. The label checks have
// matchers of their own, which say the same at a thousandth of the cost; this is what they are compared with.
#ifndef LIB_FRU_WRITE_REGULAR_EXPRESSION_H
#define LIB_FRU_WRITE_REGULAR_EXPRESSION_H

#include "lib_fru_types.h"

// 1 when the value matches, by ASCII whatever the caller's locale is; 0 otherwise, for a null value
// (reported), and for a pattern that does not compile.
u32 checkRegularExpressionCorrect(const char *pcValue, const char *pcPattern);

#endif
