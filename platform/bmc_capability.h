/* Platform: capability store.
 *
 * What this product is and can.
 */
#ifndef BMC_CAPABILITY_H
#define BMC_CAPABILITY_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Copies the text of a capability, NUL-terminated and cut to uiSize bytes, into pcOut. Not 0: no such
 * capability. */
u32 CAP_GetCommonCapabilityWithName(const char *pcObject, const char *pcName, u32 uiSize, char *pcOut);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
