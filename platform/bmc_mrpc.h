/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: RPC service.
 *
 * Calls to the other services of the controller. May be made from any thread, not from signal handlers. A
 * call ends after uiTimeoutMs, or after the transport's own bound where that is 0 (on the desk: the time of
 * a file's write, and 5 seconds for one that another process does not let go). What was told is with the
 * service when the call returns 0; whether it outlives a power cut there is the service's (on the desk
 * events are not flushed).
 *
 * What FRU data asks of them:
 *
 *   service/method  request                         meaning                            answer
 *   29/3            none                            list the feature information       texts
 *   29/4            1334 bytes                      update the feature information     none
 *   29/5            none                            FRU data written in OEM mode       none needed
 *   630/0           16 bytes (FRU_EVENT_S)          a FRU event                        none
 *   636/0           184 bytes (FRU_DEVICE_INFO_S)   this device's FRU data changed     none
 *
 * Requests are the structures' bytes as they lie in memory: packed, numbers in the machine's byte order
 * (little-endian on every controller so far; the desk reads them so). lib_fru_types.h declares them. Bytes
 * not named here are passed on as they are and mean nothing to a receiver.
 *
 *   FRU_EVENT_S        bytes 0-3   kind: 3 a label was written, 4 the labels were cleared
 *                      byte 4      component type
 *                      byte 5      instance
 *                      bytes 8-11  label ID; 0 when all were cleared
 *   FRU_DEVICE_INFO_S  byte 0      device ID
 *                      bytes 3-4   where the FRU begins in its EEPROM, 5-6 its size
 *                      bytes 14-29 name, ended by a NUL unless it fills them
 *                      byte 158    bus, 159 address, 160 switch level
 *   29/4               1334 bytes whose layout is the feature service's own
 *
 * The texts of 29/3 are one for each feature: "success" for one in order, anything else tells what is
 * wrong.
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
