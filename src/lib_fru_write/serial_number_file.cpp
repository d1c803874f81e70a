// SPDX-License-Identifier: Apache-2.0
// The product serial number of component type 0, kept in a file of its own with a copy on the network share.
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

#include "common/file_access.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

constexpr char g_acDirectory[] = "/mnt/sdmmc0p4/board";
constexpr char g_acPrimaryFile[] = "/mnt/sdmmc0p4/board/ProductSerialNumber";
constexpr char g_acCopyFile[] = "/var/network/ProductSerialNumber";

constexpr size_t g_uiShownLen = 512U; // characters of a serial number that a message shows at most

// A failing close is told and nothing more: the bytes were handed over before it.
void CloseFile(FILE *pstFile, const char *pcFunction, u32 uiLine)
{
    if (fclose(pstFile) != 0) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_DEBUG, "[%s-%dL] Close file failed, %s.", pcFunction,
                static_cast<int>(uiLine), strerror(errno));
    }
}

u32 FRU_WriteLabelToFile(const char *pcWriteBuf, u32 uiLength)
{
    FILE *pstFile = FRU_OpenFile(g_acPrimaryFile, "w+");
    if (pstFile == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "file make error.");
        return FRU_ERR_FAILED;
    }
    // Unbuffered, so that a full disk shows as a short write and not in the close, whose failure
    // is no failure.
    (void)setvbuf(pstFile, nullptr, _IONBF, 0U);
    struct stat stStat = {};
    // No size or inode number may be too long to be told, on 32 bits either: the file is empty by now.
    static_assert(sizeof(stStat.st_size) == 8U && sizeof(stStat.st_ino) == 8U);
    if (fstat(fileno(pstFile), &stStat) != 0) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "file stat get fail.");
        CloseFile(pstFile, __func__, __LINE__);
        return FRU_ERR_FAILED;
    }
    if ((stStat.st_mode & S_IROTH) == 0U) {
        (void)fchmod(fileno(pstFile), (stStat.st_mode & 07777U) | S_IROTH);
    }
    if (fwrite(pcWriteBuf, 1U, uiLength, pstFile) != uiLength) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "file write fail");
        CloseFile(pstFile, __func__, __LINE__);
        return FRU_ERR_FAILED;
    }
    CloseFile(pstFile, __func__, __LINE__);
    return FRU_OK;
}

} // namespace

u32 LIB_FRU_WritePSNToFile(const char *pcWriteBuf, u32 uiLength)
{
    FRU_REQUIRE(pcWriteBuf, FRU_ERR_NULL_POINTER);
    if (BMC_CheckDirVaildStatus(g_acDirectory) != BMC_DIR_USABLE) {
        // A directory that cannot be made shows in the opening of the file.
        (void)BMC_Mkdir(g_acDirectory);
    }
    const u32 uiResult = FRU_WriteLabelToFile(pcWriteBuf, uiLength);
    if (uiResult != FRU_OK) {
        // The bytes carry no terminator of their own.
        char acShown[g_uiShownLen + 1U] = {};
        const size_t uiShown = uiLength < g_uiShownLen ? uiLength : g_uiShownLen;
        (void)memcpy(acShown, pcWriteBuf, strnlen(pcWriteBuf, uiShown));
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Write PSN[%s-%d] to file[%s] failed! Ret:%#x.", acShown,
                static_cast<i32>(uiLength), g_acPrimaryFile, uiResult);
        return FRU_ERR_FAILED;
    }
    // The copy is best effort: its failure is neither logged nor reported.
    (void)BMC_CopyFileWithAllMode(g_acPrimaryFile, g_acCopyFile);
    return FRU_OK;
}

u32 FRU_UpdateProductSN(const char *pcLabelValue, u32 uiLength)
{
    FRU_REQUIRE(pcLabelValue, FRU_ERR_NULL_POINTER);
    const u32 uiResult = LIB_FRU_WritePSNToFile(pcLabelValue, uiLength);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Write PSN To File failed! Ret:%#x.", uiResult);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

// The size comes before the buffer, unlike in the writer; both orders are public.
u32 LIB_FRU_GetPSNFromFile(u32 uiSize, char *pcPSNName)
{
    FRU_REQUIRE(pcPSNName, FRU_ERR_NULL_POINTER);
    if (!FRU_FileExists(g_acPrimaryFile)) {
        return FRU_ERR_FILE_MISSING;
    }
    FILE *pstFile = FRU_OpenFile(g_acPrimaryFile, "r");
    if (pstFile == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "open %s failed. %s", g_acPrimaryFile, strerror(errno));
        return FRU_ERR_FILE_OPEN;
    }
    errno = 0; // an empty file is no system error
    if (fread(pcPSNName, 1U, uiSize, pstFile) == 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "read %s failed. %s", g_acPrimaryFile, strerror(errno));
        CloseFile(pstFile, __func__, __LINE__);
        return FRU_ERR_FILE_EMPTY;
    }
    CloseFile(pstFile, __func__, __LINE__);
    return FRU_OK;
}
