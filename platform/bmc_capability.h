/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: capability store.
 *
 * What this product is and can. May be called from any thread, not from signal handlers. The call waits for
 * nobody and writes nothing; a changed store is seen by the next call.
 */
#ifndef BMC_CAPABILITY_H
#define BMC_CAPABILITY_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Copies the text of a capability, NUL-terminated and cut to uiSize bytes, into pcOut. 0 for success, also
 * when it was cut. Not 0, and pcOut untouched: no such capability, no store, a null argument, or uiSize 0.
 *
 * On the desk the store is conf/capability.ini, "[object]" and "name = text"; case does not count.
 */
u32 CAP_GetCommonCapabilityWithName(const char *pcObject, const char *pcName, u32 uiSize, char *pcOut);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
