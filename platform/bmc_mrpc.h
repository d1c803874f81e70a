/*
 * Platform: RPC service.
 *
 * Calls to the other services of the controller. May be made from any thread.
 *
 * What FRU data asks of them:
 *
 *   service/method  request                         meaning                            answer
 *   29/3            none                            list the feature information       texts
 *   29/4            1334 bytes                      update the feature information     none
 *   29/5            none                            FRU data written in OEM mode       none needed
 *   630/0           16 bytes (FRU_EVENT_S)          a FRU event                        none
 *   636/0           184 bytes (FRU_DEVICE_INFO_S)   this device's FRU data changed     none
 */
#ifndef BMC_MRPC_H
#define BMC_MRPC_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

#define MRPC_SERVICE_FRU_FEATURE 29U
#define MRPC_METHOD_FEATURE_LIST 3U
#define MRPC_METHOD_FEATURE_UPDATE 4U
#define MRPC_METHOD_FRU_WRITTEN 5U
#define MRPC_SERVICE_FRU_EVENT 630U
#define MRPC_METHOD_FRU_EVENT 0U
#define MRPC_SERVICE_FRU_CHANGED 636U
#define MRPC_METHOD_FRU_CHANGED 0U

/* An answer: uiCount NUL-terminated texts. It belongs to the caller until MRPC_MsgFree(). */
typedef struct
{
    u32 uiCount;
    char **ppcText;
} MRPC_MSG_S;

/*
 * Calls method uiMethod of service uiService with uiReqLen bytes at pReq (null for length 0), which are
 * copied. uiTimeoutMs 0 waits for no answer longer than the transport does. ppstRes may be null; else it is
 * set to the answer, or to null when there is none, also on failure; an answer without texts has a count of
 * 0. 0, or the transport's code: a service or method that is unknown, a request whose length is not that
 * service's, no answer in time.
 */
u32 MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
              MRPC_MSG_S **ppstRes);

/* Releases an answer and its texts; null is allowed. */
void MRPC_MsgFree(MRPC_MSG_S *pstMsg);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
