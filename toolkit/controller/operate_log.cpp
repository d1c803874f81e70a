// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/operate_log.h"

#include <string>

#include "bmc_operatelog.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

void RecordOperation(bool bSuccess, const char *pcSentence, u8 ucSource)
{
    if (OPERATELOG_AddLogComm(FRU_OPERATELOG_MODULE,
                              bSuccess ? OPERATELOG_RESULT_SUCCESS : OPERATELOG_RESULT_FAILURE, pcSentence,
                              0U, 0U, __LINE__, ucSource) != 0U) {
        Fail("the operation log could not be written; what it lacks: " + EscapeText(pcSentence));
    }
}
