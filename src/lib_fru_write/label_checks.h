// Private to lib_fru_write: the regular-expression test behind the value checks.
#ifndef LIB_FRU_WRITE_LABEL_CHECKS_H
#define LIB_FRU_WRITE_LABEL_CHECKS_H

#include "lib_fru_types.h"

// 1 when the value matches the POSIX extended regular expression; 0 otherwise, for a null value (reported)
// and for a pattern that does not compile.
u32 checkRegularExpressionCorrect(const char *pcValue, const char *pcPattern);

#endif
