/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, events: what the controller is told of its FRUs. */
#ifndef LIB_FRU_EVENTS_H
#define LIB_FRU_EVENTS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Tells the controller that a FRU changed.
 * FRU_ERR_NULL_POINTER, else the RPC service's own result, 0 for success.
 */
u32 FRU_UpdateEventWithStruct(const FRU_EVENT_S *pstUpdateEvent);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
