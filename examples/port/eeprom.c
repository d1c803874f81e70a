/* SPDX-License-Identifier: Apache-2.0 */
/*
 * bmc_eeprom.h: a file for each chip. To fill: the product's bus driver, with its page size, its waiting
 * for the chip's write cycle and a bound on both; the lock stands for the bus, which one transfer has at
 * a time.
 */
#include "bmc_eeprom.h"

#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "port.h"

#define I2C_FIRST 9U
#define I2C_LAST 15U

u32 PORT_ChipPath(u8 ucType, const void *pLocation, char *pcOut, size_t uiSize)
{
    const u8 *pucLocation = pLocation;
    char acPath[NAME_MAX + sizeof(PORT_CHIP_FOLDER)];
    int iLen;
    if (pLocation == NULL) {
        return PORT_FAILED;
    }
    if (ucType >= I2C_FIRST && ucType <= I2C_LAST) {
        iLen = snprintf(acPath, sizeof(acPath), PORT_CHIP_FOLDER "/bus%u-0x%02x-level%u", pucLocation[0],
                        pucLocation[1], pucLocation[2]);
    } else {
        iLen = snprintf(acPath, sizeof(acPath), PORT_CHIP_FOLDER "/%s", (const char *)pLocation);
    }
    return iLen > 0 && (size_t)iLen < sizeof(acPath) ? PORT_Path(acPath, pcOut, uiSize) : PORT_FAILED;
}

/* One transfer for each page, so that a cut leaves whole pages. */
static i32 WritePages(int iFd, const u8 *pucBuf, u32 uiOffset, u32 uiLength)
{
    u32 uiDone = 0;
    while (uiDone < uiLength) {
        const u32 uiAt = uiOffset + uiDone;
        const u32 uiRoom = PORT_PAGE_SIZE - uiAt % PORT_PAGE_SIZE;
        const u32 uiPart = uiLength - uiDone < uiRoom ? uiLength - uiDone : uiRoom;
        if (pwrite(iFd, pucBuf + uiDone, uiPart, (off_t)uiAt) != (ssize_t)uiPart) {
            return -1;
        }
        uiDone += uiPart;
    }
    return (i32)uiLength;
}

static i32 Transfer(int iFd, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    struct stat stStat;
    u32 uiSize;
    if (fstat(iFd, &stStat) != 0 || !S_ISREG(stStat.st_mode) || stStat.st_size > 0x10000) {
        return -1;
    }
    if (ucDirection == BMC_EEPROM_WRITE && (stStat.st_mode & 0222U) == 0U) {
        return -1; /* write-protected, also for the superuser */
    }
    uiSize = (u32)stStat.st_size;
    if (uiOffset >= uiSize || uiLength == 0U) {
        return 0;
    }
    uiLength = uiLength < uiSize - uiOffset ? uiLength : uiSize - uiOffset;
    if (ucDirection == BMC_EEPROM_WRITE) {
        return WritePages(iFd, pucBuf, uiOffset, uiLength);
    }
    return pread(iFd, pucBuf, uiLength, (off_t)uiOffset) == (ssize_t)uiLength ? (i32)uiLength : -1;
}

i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    const int bWrite = ucDirection == BMC_EEPROM_WRITE;
    char acPath[PATH_MAX];
    i32 iCount;
    int iFd;
    if ((!bWrite && ucDirection != BMC_EEPROM_READ) || (pucBuf == NULL && uiLength != 0U) ||
        PORT_ChipPath(ucType, pLocation, acPath, sizeof(acPath)) != 0U) {
        return -1;
    }
    iFd = PORT_OpenLocked(acPath, bWrite ? O_RDWR : O_RDONLY, bWrite ? LOCK_EX : LOCK_SH);
    if (iFd < 0) {
        return -1;
    }
    iCount = Transfer(iFd, pucBuf, uiOffset, uiLength, ucDirection);
    (void)close(iFd);
    return iCount;
}
