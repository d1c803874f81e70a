/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, features: the controller's feature service. */
#ifndef LIB_FRU_FEATURES_H
#define LIB_FRU_FEATURES_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Asks the feature service for its list (waiting at most 2000 ms) and prints one sentence for each item to
 * standard output, without a line end.
 * FRU_OK; FRU_ERR_FAILED: the service did not answer (printed too).
 */
u32 LIB_FRU_GetFeatureInfoList(void);

/*
 * Passes a feature update to the feature service (waiting at most 10000 ms). The 1334 bytes are not looked
 * at. FRU_OK; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_FEATURE: the service refused it or did not answer.
 */
u32 LIB_FRU_UpdateFeatureInfo(const FRU_FEATURE_UPDATE_S *pstUpdateFRUFeatureInfo);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
