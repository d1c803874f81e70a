/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A controller's IPMI service, cut down to its FRU commands: it takes requests from a transport, sees to it
 * that each is as long as its command, hands it to libbmcfru and carries the response back.
 *
 * The transport here is a terminal: one request a line in hexadecimal, network function, command and data
 * bytes, one response a line, completion code first. Lines that are no request are told so on standard error.
 *
 *     $ echo "0a 10 01" | ipmi_service
 *     00 00 01 00
 *
 * Build: cc -o ipmi_service ipmi_service.c -lbmcfru
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "lib_fru.h"

#define NETFN_STORAGE 0x0AU
#define CMD_GET_FRU_AREA_INFO 0x10U
#define CMD_READ_FRU_DATA 0x11U
#define CMD_WRITE_FRU_DATA 0x12U

#define CC_INVALID_COMMAND 0xC1U
#define CC_REQUEST_LENGTH 0xC7U
#define CC_REQUEST_FIELD_LIMIT 0xC8U
#define CC_CANNOT_RETURN_COUNT 0xCAU

/* What this service's transport can carry back. A LAN or KCS channel has less than the 257 bytes that Read
 * FRU Data can answer; such a request is refused, and the client asks for less. */
#define TRANSPORT_ROOM 64U
/* What a handler may fill: completion code, count, 255 bytes. Never give it a smaller buffer. */
#define HANDLER_ROOM 257U

typedef struct
{
    u8 ucNetFn;
    u8 ucCommand;
    u8 aucData[512];
    u32 uiLength; /* of aucData */
} REQUEST_S;

static u32 Refuse(u8 *pucRes, u8 ucCompletionCode)
{
    pucRes[0] = ucCompletionCode;
    return 1U;
}

/* Returns the length of the response. A service with several threads holds one lock around this call: a write
 * reads, changes and puts back the cached image, and two of them at once would lose one. */
static u32 Serve(const REQUEST_S *pstReq, u8 *pucRes)
{
    if (pstReq->ucNetFn != NETFN_STORAGE) {
        return Refuse(pucRes, CC_INVALID_COMMAND);
    }
    switch (pstReq->ucCommand) {
    case CMD_GET_FRU_AREA_INFO: /* device ID */
        if (pstReq->uiLength < 1U) {
            return Refuse(pucRes, CC_REQUEST_LENGTH);
        }
        return LIB_FRU_GetFRUAreaInfo(pstReq->aucData, pstReq->uiLength, pucRes);

    case CMD_READ_FRU_DATA: /* device ID, offset (2), count */
        if (pstReq->uiLength < 4U) {
            return Refuse(pucRes, CC_REQUEST_LENGTH);
        }
        if (2U + pstReq->aucData[3] > TRANSPORT_ROOM) {
            return Refuse(pucRes, CC_CANNOT_RETURN_COUNT);
        }
        return LIB_FRU_ReadFRUData(pstReq->aucData, 4U, pucRes, 0U);

    case CMD_WRITE_FRU_DATA: /* device ID, offset (2), data */
        if (pstReq->uiLength < 4U) {
            return Refuse(pucRes, CC_REQUEST_LENGTH);
        }
        if (pstReq->uiLength - 3U > 255U) { /* the response counts them in one byte */
            return Refuse(pucRes, CC_REQUEST_FIELD_LIMIT);
        }
        return LIB_FRU_WriteFRUData(pstReq->aucData, pstReq->uiLength, pucRes);

    default:
        return Refuse(pucRes, CC_INVALID_COMMAND);
    }
}

/* 0 for a line that is a request. */
static int ParseRequest(const char *pcLine, REQUEST_S *pstReq)
{
    u8 aucBytes[2U + sizeof(pstReq->aucData)];
    u32 uiCount = 0U;
    memset(pstReq, 0, sizeof(*pstReq));
    while (pcLine[strspn(pcLine, " \t\r\n")] != '\0') {
        char *pcEnd = NULL;
        const unsigned long ulByte = strtoul(pcLine, &pcEnd, 16);
        if (pcEnd == pcLine || strchr(" \t\r\n", *pcEnd) == NULL || ulByte > 0xFFUL ||
            uiCount == sizeof(aucBytes)) {
            return 1;
        }
        aucBytes[uiCount++] = (u8)ulByte;
        pcLine = pcEnd;
    }
    if (uiCount < 2U) {
        return 1;
    }
    pstReq->ucNetFn = aucBytes[0];
    pstReq->ucCommand = aucBytes[1];
    pstReq->uiLength = uiCount - 2U;
    memcpy(pstReq->aucData, aucBytes + 2, pstReq->uiLength);
    return 0;
}

int main(void)
{
    char acLine[4096];
    while (fgets(acLine, (int)sizeof(acLine), stdin) != NULL) {
        REQUEST_S stReq;
        u8 aucRes[HANDLER_ROOM];
        if (ParseRequest(acLine, &stReq) != 0) {
            fprintf(stderr, "ipmi_service: not a request: %s", acLine);
            continue;
        }
        const u32 uiLength = Serve(&stReq, aucRes);
        for (u32 i = 0U; i < uiLength; ++i) {
            printf("%s%02x", i == 0U ? "" : " ", aucRes[i]);
        }
        printf("\n");
        fflush(stdout);
    }
    return 0;
}
