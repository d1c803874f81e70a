// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_write/regular_expression.h"

#include <locale.h>
#include <regex.h>

#include "lib_fru_write/lib_fru_write_module.h"

u32 checkRegularExpressionCorrect(const char *pcValue, const char *pcPattern)
{
    FRU_REQUIRE(pcValue, 0U);
    // For this thread alone, and its own again before returning. The plain locale is never out of memory.
    const locale_t stPlain = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t stCallers = uselocale(stPlain);
    regex_t stRegex;
    u32 uiMatches = 0U;
    if (regcomp(&stRegex, pcPattern, REG_EXTENDED) == 0) {
        regmatch_t stMatch;
        uiMatches = regexec(&stRegex, pcValue, 1U, &stMatch, 0) == 0 ? 1U : 0U;
        regfree(&stRegex);
    }
    (void)uselocale(stCallers);
    freelocale(stPlain);
    return uiMatches;
}
