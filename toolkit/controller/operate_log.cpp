#include "toolkit/controller/operate_log.h"

#include <string>

#include "bmc_operatelog.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

constexpr u32 OPERATE_MODULE = 17U;
constexpr u32 OPERATE_SUCCESS = 99U;
constexpr u32 OPERATE_FAILURE = 67U;

} // namespace

void RecordOperation(bool bSuccess, const char *pcSentence, u8 ucSource)
{
    if (OPERATELOG_AddLogComm(OPERATE_MODULE, bSuccess ? OPERATE_SUCCESS : OPERATE_FAILURE, pcSentence, 0U,
                              0U, __LINE__, ucSource) != 0U) {
        Fail("the operation log could not be written; what it lacks: " + EscapeText(pcSentence));
    }
}
