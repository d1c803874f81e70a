/* Platform: operation log.
 *
 * What was done to the controller, for its operators.
 */
#ifndef BMC_OPERATELOG_H
#define BMC_OPERATELOG_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Appends one entry. uiResult: 99 success, 67 failure. ucSource is passed through. 0 for success. */
u32 OPERATELOG_AddLogComm(u32 uiModule, u32 uiResult, const char *pcText, u32 uiArg1, u32 uiArg2, u32 uiLine,
                          u8 ucSource);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
