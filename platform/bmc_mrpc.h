/* Platform: RPC service.
 *
 * Calls to the other services of the controller.
 */
#ifndef BMC_MRPC_H
#define BMC_MRPC_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* An answer: uiCount NUL-terminated texts. It belongs to the caller until MRPC_MsgFree(). */
typedef struct
{
    u32 uiCount;
    char **ppcText;
} MRPC_MSG_S;

/*
 * Calls method uiMethod of service uiService with uiReqLen bytes at pReq (null for length 0). uiTimeoutMs 0
 * waits for no answer longer than the transport does. ppstRes may be null; else it is set to the answer, or
 * to null when there is none, also on failure. 0, or the transport's code.
 */
u32 MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
              MRPC_MSG_S **ppstRes);

/* Releases an answer; null is allowed. */
void MRPC_MsgFree(MRPC_MSG_S *pstMsg);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
