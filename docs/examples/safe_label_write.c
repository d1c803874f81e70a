/* SPDX-License-Identifier: Apache-2.0 */
#include "safe_label_write.h"

#include <stdlib.h>
#include <string.h>

#include "bmc_eeprom.h"
#include "bmc_mrpc.h"

#define ENTRY_MAGIC 0x31575246U /* neither of the values that empty storage has */
#define CHIP_ADDRESSES 0x10000U

/* A journal entry is this, the old image and the intended one. Only this program reads it. */
typedef struct
{
    u32 uiMagic;
    u32 uiCheckSum; /* CRC-32 of all that follows */
    FRU_DEVICE_INFO_S stInfo;
    u8 ucComponentType;
    u8 ucInstance;
    u8 ucCacheStatus;
    u32 uiLabelID;
    u32 uiImageLen; /* of the intended image; behind it both are what the chip had */
} ENTRY_S;

/* One change: its entry as it is stored, and what the chip holds now. One buffer has all of it. */
typedef struct
{
    const SAFE_JOURNAL_S *pstJournal;
    ENTRY_S *pstEntry;
    u8 *pucOld;
    u8 *pucNew;
    u8 *pucChip;
    u8 *pucScratch; /* room for two images */
    u32 uiEntryLen;
    int iMended; /* this program wrote to the chip */
} CHANGE_S;

static u32 Crc32(const u8 *pucBytes, u32 uiCount)
{
    u32 uiCrc = 0xFFFFFFFFU;
    for (u32 i = 0U; i < uiCount; ++i) {
        uiCrc ^= pucBytes[i];
        for (int iBit = 0; iBit < 8; ++iBit) {
            uiCrc = (uiCrc & 1U) != 0U ? (uiCrc >> 1U) ^ 0xEDB88320U : uiCrc >> 1U;
        }
    }
    return ~uiCrc;
}

static u32 EntryCheckSum(const CHANGE_S *pstChange)
{
    const u32 uiFirst = (u32)offsetof(ENTRY_S, stInfo);
    return Crc32((const u8 *)pstChange->pstEntry + uiFirst, pstChange->uiEntryLen - uiFirst);
}

static int AllocChange(CHANGE_S *pstChange, const SAFE_JOURNAL_S *pstJournal, u16 usSize)
{
    memset(pstChange, 0, sizeof(*pstChange));
    u8 *pucBuffer = calloc(1U, sizeof(ENTRY_S) + 5U * (size_t)usSize);
    if (pucBuffer == NULL) {
        return 0;
    }
    pstChange->pstJournal = pstJournal;
    pstChange->pstEntry = (ENTRY_S *)(void *)pucBuffer;
    pstChange->pucOld = pucBuffer + sizeof(ENTRY_S);
    pstChange->pucNew = pstChange->pucOld + usSize;
    pstChange->pucChip = pstChange->pucNew + usSize;
    pstChange->pucScratch = pstChange->pucChip + usSize;
    pstChange->uiEntryLen = (u32)sizeof(ENTRY_S) + 2U * usSize;
    return 1;
}

/* ---- the chip */

static int ReadChip(const FRU_DEVICE_INFO_S *pstInfo, u8 *pucImage)
{
    return LIB_FRU_ReadFromEEPROM(pstInfo, pstInfo->usStartOffset, pstInfo->usSize, pucImage) ==
           (i32)pstInfo->usSize;
}

static int ChipHolds(const CHANGE_S *pstChange, const u8 *pucImage)
{
    return memcmp(pstChange->pucChip, pucImage, pstChange->pstEntry->stInfo.usSize) == 0;
}

/*
 * What an image says, encoded anew into pucOut: without bytes that mean nothing, such as those that fill up
 * the last area, and without the internal use area, which has no checksum. Its length; 0 when the encoder
 * does not take it, -1 when a checksum or more is wrong. The decoder passes over damaged MultiRecords.
 */
static i32 ReadMeaning(const u8 *pucImage, u32 uiSize, u8 *pucOut)
{
    FRU_DATA_S stData;
    memset(&stData, 0, sizeof(stData));
    i32 iLength = -1;
    if (FRU_ANALYZER_InterpretFRUData(pucImage, uiSize, &stData) == FRU_OK &&
        (stData.stCommonHeader.ucMultiRecordAreaStartOffset == 0U ||
         stData.astMultiRecord[0].pucRecordData != NULL)) {
        stData.stCommonHeader.ucInternalUseAreaStartOffset = 0U;
        memset(pucOut, 0, uiSize);
        iLength = FRU_ANALYZER_ConvertToArray(&stData, uiSize, pucOut);
        iLength = iLength < 0 ? 0 : iLength;
    }
    FRU_ANALYZER_SafeFree(&stData);
    return iLength;
}

/* Whether the chip holds a whole image that says something else than the old and the intended one. */
static int IsAnotherImage(const CHANGE_S *pstChange)
{
    const u32 uiSize = pstChange->pstEntry->stInfo.usSize;
    u8 *pucFound = pstChange->pucScratch;
    u8 *pucOurs = pstChange->pucScratch + uiSize;
    const i32 iFound = ReadMeaning(pstChange->pucChip, uiSize, pucFound);
    if (iFound < 0) {
        return 0;
    }
    for (int i = 0; i < 2; ++i) {
        const i32 iOurs = ReadMeaning(i == 0 ? pstChange->pucNew : pstChange->pucOld, uiSize, pucOurs);
        if (iOurs > 0 && iOurs == iFound && memcmp(pucFound, pucOurs, (size_t)iOurs) == 0) {
            return 0;
        }
    }
    return 1;
}

/*
 * Whether this change can have left what the chip holds: every byte is the old or the intended one, but for
 * one page that was being programmed. A board that was put in while the power was off is not overwritten: its
 * image says something else, and is whole.
 */
static int IsOfThisChange(const CHANGE_S *pstChange)
{
    const u32 uiSize = pstChange->pstEntry->stInfo.usSize;
    u32 uiFirst = uiSize;
    u32 uiLast = uiSize;
    for (u32 i = 0U; i < uiSize; ++i) {
        const u8 ucByte = pstChange->pucChip[i];
        if (ucByte != pstChange->pucOld[i] && ucByte != pstChange->pucNew[i]) {
            uiFirst = uiFirst == uiSize ? i : uiFirst;
            uiLast = i;
        }
    }
    if (uiLast - uiFirst >= SAFE_PAGE_MAX) {
        return 0;
    }
    return uiFirst >= pstChange->pstEntry->uiImageLen || !IsAnotherImage(pstChange);
}

/* Where the chip differs from an image, at uiAt or behind it; the FRU's size when it does not. */
static u32 NextDifference(const CHANGE_S *pstChange, const u8 *pucImage, u32 uiAt)
{
    while (uiAt < pstChange->pstEntry->stInfo.usSize && pstChange->pucChip[uiAt] == pucImage[uiAt]) {
        ++uiAt;
    }
    return uiAt;
}

/*
 * Writes what differs, upwards and beginning with the first byte that does: a page that a cut left in doubt
 * is written before any other is, so that there is never a second one. Then reads all of it back: what the
 * chip says it took is no proof.
 */
static int ForceChip(CHANGE_S *pstChange, u8 *pucImage)
{
    const FRU_DEVICE_INFO_S *pstInfo = &pstChange->pstEntry->stInfo;
    u32 uiAt = NextDifference(pstChange, pucImage, 0U);
    while (uiAt < pstInfo->usSize) {
        const u32 uiLeft = pstInfo->usSize - uiAt;
        u32 uiPart = uiLeft < SAFE_PAGE_MAX ? uiLeft : SAFE_PAGE_MAX;
        while (pstChange->pucChip[uiAt + uiPart - 1U] == pucImage[uiAt + uiPart - 1U]) {
            --uiPart; /* ends at the first byte at the latest, which differs */
        }
        pstChange->iMended = 1;
        (void)ReadWriteEEPROM(pstInfo->ucEEPROMType, &pstInfo->ucBusNumber, pucImage + uiAt,
                              pstInfo->usStartOffset + uiAt, uiPart, BMC_EEPROM_WRITE);
        uiAt = NextDifference(pstChange, pucImage, uiAt + uiPart);
    }
    return ReadChip(pstInfo, pstChange->pucChip) && ChipHolds(pstChange, pucImage);
}

/* The image that is on the chip afterwards, whole, or null. A torn one is rolled forward if the chip lets us,
 * else back. pucChip holds what was read. */
static u8 *MendChip(CHANGE_S *pstChange)
{
    if (ChipHolds(pstChange, pstChange->pucNew)) {
        return pstChange->pucNew;
    }
    if (ChipHolds(pstChange, pstChange->pucOld)) {
        return pstChange->pucOld; /* no byte was written */
    }
    if (ForceChip(pstChange, pstChange->pucNew)) {
        return pstChange->pucNew;
    }
    return ForceChip(pstChange, pstChange->pucOld) ? pstChange->pucOld : NULL;
}

/* ---- the cache */

static int PutCacheStatus(const CHANGE_S *pstChange, int iTrusted)
{
    const u8 ucDeviceID = pstChange->pstEntry->stInfo.ucDeviceID;
    u8 ucStatus = pstChange->pstEntry->ucCacheStatus; /* stays when the record is not there */
    (void)FRU_DB_GetFRUDataCacheStatus(ucDeviceID, &ucStatus);
    ucStatus = (u8)(iTrusted ? ucStatus & ~FRU_CACHE_UNTRUSTED : ucStatus | FRU_CACHE_UNTRUSTED);
    return FRU_DB_PutFRUDataCacheStatus(ucDeviceID, ucStatus) == FRU_OK;
}

/* The image first, then the word that it can be trusted. */
static int TrustCache(const CHANGE_S *pstChange, const u8 *pucImage)
{
    const FRU_DEVICE_INFO_S *pstInfo = &pstChange->pstEntry->stInfo;
    return FRU_DB_PutFRUData(pstInfo->ucDeviceID, pstInfo->usSize, pucImage) == FRU_OK &&
           PutCacheStatus(pstChange, 1);
}

/* ---- what follows the image */

/* What the library does after a label write, once more: the change may have been cut before it, or undone
 * after it. Listeners may hear of one write twice. */
static void Announce(const CHANGE_S *pstChange, const u8 *pucImage)
{
    const ENTRY_S *pstEntry = pstChange->pstEntry;
    if (pstEntry->ucComponentType == FRU_COMPONENT_BASEBOARD) {
        FRU_DATA_S stData;
        memset(&stData, 0, sizeof(stData));
        (void)FRU_ANALYZER_InterpretFRUData(pucImage, pstEntry->stInfo.usSize, &stData);
        const char *pcSerial = (const char *)stData.stProductInfo.pucProductSerialNum;
        pcSerial = pcSerial == NULL ? "" : pcSerial;
        /* Heeds the product serial number only. */
        FRU_UpdateFRUInfo(pstEntry->uiLabelID, pcSerial, (u32)strlen(pcSerial));
        FRU_ANALYZER_SafeFree(&stData);
    }
    (void)MRPC_Call(MRPC_SERVICE_FRU_CHANGED, MRPC_METHOD_FRU_CHANGED, (u32)sizeof(pstEntry->stInfo),
                    &pstEntry->stInfo, 0U, NULL);
    if (pucImage == pstChange->pucNew) {
        FRU_EVENT_S stEvent;
        memset(&stEvent, 0, sizeof(stEvent));
        stEvent.uiKind = FRU_EVENT_KIND_LABEL;
        stEvent.ucComponentType = pstEntry->ucComponentType;
        stEvent.ucInstance = pstEntry->ucInstance;
        stEvent.uiLabelID = pstEntry->uiLabelID;
        (void)FRU_UpdateEventWithStruct(&stEvent);
    }
}

/* The chip holds pucImage, whole. The entry goes last, when nothing is left to do. */
static u32 Settle(const CHANGE_S *pstChange, const u8 *pucImage, int iAnnounce)
{
    if (!TrustCache(pstChange, pucImage)) {
        return SAFE_ERR_PENDING;
    }
    if (iAnnounce) {
        Announce(pstChange, pucImage);
    }
    return pstChange->pstJournal->pfnErase(pstChange->pstJournal->pContext) == 0U ? FRU_OK : SAFE_ERR_PENDING;
}

/* ---- a change, step by step */

/* Who is to be changed, and what is there now. */
static u32 LookAtDevice(CHANGE_S *pstChange, const FRU_SET_PARA_S *pstPara, const FRU_DEVICE_INFO_S *pstInfo)
{
    ENTRY_S *pstEntry = pstChange->pstEntry;
    pstEntry->uiMagic = ENTRY_MAGIC;
    pstEntry->stInfo = *pstInfo;
    pstEntry->ucComponentType = pstPara->ucComponentType;
    pstEntry->ucInstance = pstPara->ucInstance;
    (void)FRU_DB_GetFRUDataCacheStatus(pstInfo->ucDeviceID, &pstEntry->ucCacheStatus);
    /* A device that is read from the cache alone has no chip to compare with, and addresses do not wrap
     * round. */
    if (pstInfo->ucDatabaseOnly != 0U || (u32)pstInfo->usStartOffset + pstInfo->usSize > CHIP_ADDRESSES ||
        !ReadChip(pstInfo, pstChange->pucOld)) {
        return SAFE_ERR_DEVICE;
    }
    return ReadMeaning(pstChange->pucOld, pstInfo->usSize, pstChange->pucScratch) > 0 ? FRU_OK
                                                                                      : SAFE_ERR_DAMAGED;
}

/* The library reads from the cache: let that say what the chip says. A put is whole or not at all, and both
 * images are old ones, so this needs no entry. */
static u32 AlignCache(const CHANGE_S *pstChange)
{
    const FRU_DEVICE_INFO_S *pstInfo = &pstChange->pstEntry->stInfo;
    if ((pstChange->pstEntry->ucCacheStatus & FRU_CACHE_UNTRUSTED) == 0U &&
        FRU_DB_GetFRUData(pstInfo->ucDeviceID, pstInfo->usSize, pstChange->pucChip) == FRU_OK &&
        ChipHolds(pstChange, pstChange->pucOld)) {
        return FRU_OK;
    }
    return TrustCache(pstChange, pstChange->pucOld) ? FRU_OK : SAFE_ERR_CACHE;
}

/* The library's own steps up to the encoder say which bytes its write will put onto the chip. Behind them the
 * chip keeps what it has. */
static u32 PlanLabel(CHANGE_S *pstChange, const FRU_SET_PARA_S *pstPara)
{
    const u32 uiSize = pstChange->pstEntry->stInfo.usSize;
    FRU_SET_PARA_S stTrial = *pstPara; /* the check may change it */
    const char *pcEnd = memchr(stTrial.acLabelValue, '\0', sizeof(stTrial.acLabelValue));
    if (pcEnd == NULL || memchr(stTrial.acLabelName, '\0', sizeof(stTrial.acLabelName)) == NULL) {
        return LIB_FRU_ERR_LABEL;
    }
    stTrial.uiLabelValueLen = (u32)(pcEnd - stTrial.acLabelValue);
    stTrial.ucFieldFlag = pstChange->pstEntry->stInfo.ucFieldFlag;
    stTrial.uiLabelID = FindLabelIDByName(stTrial.acLabelName);
    pstChange->pstEntry->uiLabelID = stTrial.uiLabelID;
    FRU_DATA_S stData;
    memset(&stData, 0, sizeof(stData));
    i32 iLength = -1;
    if (FRU_CheckElectronicLabel(&stTrial) == FRU_OK && FRU_GetElectronicLabel(&stTrial, &stData) == FRU_OK &&
        FRU_ReplaceElectronicLabel(&stTrial, &stData) == FRU_OK) {
        iLength = FRU_ANALYZER_ConvertToArray(&stData, uiSize, pstChange->pucNew);
    }
    FRU_ANALYZER_SafeFree(&stData);
    if (iLength < 0) {
        return LIB_FRU_ERR_LABEL;
    }
    pstChange->pstEntry->uiImageLen = (u32)iLength;
    memcpy(pstChange->pucNew + iLength, pstChange->pucOld + iLength, uiSize - (u32)iLength);
    return FRU_OK;
}

static u32 Apply(CHANGE_S *pstChange, FRU_SET_PARA_S *pstPara)
{
    const SAFE_JOURNAL_S *pstJournal = pstChange->pstJournal;
    pstChange->pstEntry->uiCheckSum = EntryCheckSum(pstChange);
    if (pstJournal->pfnStore(pstJournal->pContext, (const u8 *)pstChange->pstEntry, pstChange->uiEntryLen) !=
        0U) {
        (void)pstJournal->pfnErase(pstJournal->pContext);
        return SAFE_ERR_JOURNAL;
    }
    if (!PutCacheStatus(pstChange, 0)) {
        (void)pstJournal->pfnErase(pstJournal->pContext);
        return SAFE_ERR_CACHE;
    }
    const u32 uiWritten = LIB_FRU_WriteElectronicLabel(pstPara);
    /* 0 says nothing about the chip. */
    if (!ReadChip(&pstChange->pstEntry->stInfo, pstChange->pucChip)) {
        return SAFE_ERR_PENDING;
    }
    const u8 *pucImage = MendChip(pstChange);
    if (pucImage == NULL) {
        return SAFE_ERR_PENDING;
    }
    const int iNew = pucImage == pstChange->pucNew;
    const u32 uiSettled = Settle(pstChange, pucImage, !iNew || pstChange->iMended);
    if (uiSettled != FRU_OK || iNew) {
        return uiSettled;
    }
    return uiWritten != FRU_OK ? uiWritten : SAFE_ERR_REFUSED;
}

u32 WriteLabelSafely(const SAFE_JOURNAL_S *pstJournal, FRU_SET_PARA_S *pstPara)
{
    u32 uiResult = RepairAtStart(pstJournal);
    if (uiResult != FRU_OK) {
        return uiResult;
    }
    FRU_DEVICE_INFO_S stInfo;
    uiResult = LIB_FRU_GetFRUDeviceInfo(pstPara->ucComponentType, pstPara->ucInstance, &stInfo);
    if (uiResult != FRU_OK) {
        return uiResult;
    }
    CHANGE_S stChange;
    if (!AllocChange(&stChange, pstJournal, stInfo.usSize)) {
        return FRU_ERR_NO_MEMORY;
    }
    uiResult = LookAtDevice(&stChange, pstPara, &stInfo);
    if (uiResult == FRU_OK) {
        uiResult = AlignCache(&stChange);
    }
    if (uiResult == FRU_OK) {
        uiResult = PlanLabel(&stChange, pstPara);
    }
    if (uiResult == FRU_OK) {
        uiResult = Apply(&stChange, pstPara);
    }
    free(stChange.pstEntry);
    return uiResult;
}

/* ---- at start */

/* The record may have come anew from the FRU service. */
static int IsSameChip(const FRU_DEVICE_INFO_S *pstLeft, const FRU_DEVICE_INFO_S *pstRight)
{
    return pstLeft->ucDeviceID == pstRight->ucDeviceID && pstLeft->usStartOffset == pstRight->usStartOffset &&
           pstLeft->usSize == pstRight->usSize && pstLeft->ucEEPROMType == pstRight->ucEEPROMType &&
           pstLeft->ucBusNumber == pstRight->ucBusNumber && pstLeft->ucAddress == pstRight->ucAddress &&
           pstLeft->ucSwitchLevel == pstRight->ucSwitchLevel;
}

static u32 RepairChange(CHANGE_S *pstChange)
{
    const ENTRY_S *pstEntry = pstChange->pstEntry;
    FRU_DEVICE_INFO_S stInfo;
    if (LIB_FRU_GetFRUDeviceInfo(pstEntry->ucComponentType, pstEntry->ucInstance, &stInfo) != FRU_OK) {
        return SAFE_ERR_PENDING;
    }
    if (!IsSameChip(&stInfo, &pstEntry->stInfo)) {
        return SAFE_ERR_FOREIGN;
    }
    if (!ReadChip(&stInfo, pstChange->pucChip)) {
        return SAFE_ERR_PENDING;
    }
    if (!IsOfThisChange(pstChange)) {
        return SAFE_ERR_FOREIGN;
    }
    const u8 *pucImage = MendChip(pstChange);
    return pucImage == NULL ? SAFE_ERR_PENDING : Settle(pstChange, pucImage, 1);
}

u32 RepairAtStart(const SAFE_JOURNAL_S *pstJournal)
{
    ENTRY_S stHead;
    if (pstJournal->pfnLoad(pstJournal->pContext, 0U, (u8 *)&stHead, (u32)sizeof(stHead)) != 0U) {
        return SAFE_ERR_JOURNAL;
    }
    if (stHead.uiMagic != ENTRY_MAGIC) {
        return FRU_OK;
    }
    CHANGE_S stChange;
    if (!AllocChange(&stChange, pstJournal, stHead.stInfo.usSize)) {
        return FRU_ERR_NO_MEMORY;
    }
    u32 uiResult = SAFE_ERR_JOURNAL;
    if (pstJournal->pfnLoad(pstJournal->pContext, 0U, (u8 *)stChange.pstEntry, stChange.uiEntryLen) == 0U) {
        if (EntryCheckSum(&stChange) == stChange.pstEntry->uiCheckSum) {
            uiResult = RepairChange(&stChange);
        } else if (pstJournal->pfnErase(pstJournal->pContext) == 0U) {
            uiResult = FRU_OK; /* cut while it was stored: the change had not begun */
        }
    }
    free(stChange.pstEntry);
    return uiResult;
}
