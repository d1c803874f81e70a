// SPDX-License-Identifier: Apache-2.0
// The controller's operation log: the library leaves a sentence for its caller, and fructl is the caller.
#ifndef TOOLKIT_CONTROLLER_OPERATE_LOG_H
#define TOOLKIT_CONTROLLER_OPERATE_LOG_H

#include "lib_fru_types.h"

// Records the sentence. Fails with a line that says it was not recorded; what it tells of has happened
// all the same.
void RecordOperation(bool bSuccess, const char *pcSentence, u8 ucSource);

#endif
