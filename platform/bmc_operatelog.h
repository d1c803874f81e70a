/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: operation log.
 *
 * What was done to the controller, for its operators. May be called from any thread; processes that log at
 * the same time do not disturb each other's entries. Not for signal handlers. A call waits for another
 * entry at most for a bounded time (on the desk 5 seconds). An entry outlives its process at once; whether
 * it outlives a power cut is the log's own business, and nobody may rely on it (on the desk it is not
 * flushed). The log may drop its oldest entries when it is full, never the one that is being added.
 */
#ifndef BMC_OPERATELOG_H
#define BMC_OPERATELOG_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

#define OPERATELOG_RESULT_SUCCESS 99U
#define OPERATELOG_RESULT_FAILURE 67U

/*
 * Appends one entry: the text with the moment and the other arguments. uiResult is one of the two above.
 * uiLine is the caller's source line. ucSource is passed through. pcText is copied; a null one reads as an
 * empty text. 0 for success; not 0: the entry could not be written, and then nothing of it was.
 */
u32 OPERATELOG_AddLogComm(u32 uiModule, u32 uiResult, const char *pcText, u32 uiArg1, u32 uiArg2, u32 uiLine,
                          u8 ucSource);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
