// SPDX-License-Identifier: Apache-2.0
// Files: real ones, under a directory of this process's own that stands in for the controller's root. The C
// library's file calls are linked with --wrap; paths outside the controller's own places are left alone.
#include "fake/fake_files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

#include "bmc_support.h"
#include "fake/fake_state.h"

namespace fs = std::filesystem;

extern "C" {
FILE *__real_fopen64(const char *pcPath, const char *pcMode);
size_t __real_fread(void *pData, size_t uiSize, size_t uiCount, FILE *pstFile);
size_t __real_fwrite(const void *pData, size_t uiSize, size_t uiCount, FILE *pstFile);
int __real_fclose(FILE *pstFile);
int __real_fstat64(int iFile, struct stat *pstStat);
int __real_fchmod(int iFile, mode_t uiMode);
int __real_access(const char *pcPath, int iMode);
FILE *__wrap_fopen64(const char *pcPath, const char *pcMode);
size_t __wrap_fread(void *pData, size_t uiSize, size_t uiCount, FILE *pstFile);
size_t __wrap_fwrite(const void *pData, size_t uiSize, size_t uiCount, FILE *pstFile);
int __wrap_fclose(FILE *pstFile);
int __wrap_fstat64(int iFile, struct stat *pstStat);
int __wrap_fchmod(int iFile, mode_t uiMode);
int __wrap_access(const char *pcPath, int iMode);
}

namespace fake {
namespace {

const std::string &Root()
{
    // Never destroyed: the handler below needs it at the very end.
    static const std::string *const g_pstrRoot = [] {
        // In memory where that can be had: sweeps create and remove thousands of files.
        static char g_acInMemory[] = "/dev/shm/bmcfru-fake-XXXXXX";
        static char g_acOnDisk[] = "/tmp/bmcfru-fake-XXXXXX";
        const char *pcMade = mkdtemp(g_acInMemory);
        pcMade = pcMade == nullptr ? mkdtemp(g_acOnDisk) : pcMade;
        (void)std::atexit([] {
            std::error_code ec;
            fs::remove_all(Root(), ec);
        });
        return new std::string(pcMade == nullptr ? "/tmp/bmcfru-fake" : pcMade);
    }();
    return *g_pstrRoot;
}

// Whether a path is one of the controller's, so one that the library or its platform named.
bool IsControllers(const std::string &strPath)
{
    for (const char *pcPlace : {"/mnt/", "/var/network/", "/conf/", "/opt/"}) {
        if (strPath.rfind(pcPlace, 0) == 0) {
            return true;
        }
    }
    return false;
}

constexpr u32 g_uiFailed = 0x81000001U;

} // namespace

void ResetFiles()
{
    std::error_code ec;
    if (fs::is_empty(Root(), ec) && !ec) {
        return; // most tests have no files, and sweeps reset many times
    }
    fs::remove_all(Root(), ec);
    fs::create_directories(Root(), ec);
}

std::string RealPath(const std::string &strPath)
{
    return Root() + strPath;
}

void MakeDirectory(const std::string &strPath)
{
    fs::create_directories(RealPath(strPath));
}

void WriteFile(const std::string &strPath, const BYTES &vecBytes)
{
    fs::create_directories(fs::path(RealPath(strPath)).parent_path());
    std::ofstream(RealPath(strPath), std::ios::binary)
        .write(reinterpret_cast<const char *>(vecBytes.data()),
               static_cast<std::streamsize>(vecBytes.size()));
}

std::optional<BYTES> ReadFile(const std::string &strPath)
{
    std::ifstream stream(RealPath(strPath), std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    return BYTES(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

void SetFileSize(const std::string &strPath, i32 iSize)
{
    State().mapFileSize[strPath] = iSize;
}

} // namespace fake

using fake::Fault;
using fake::HOW_E;
using fake::Journal;
using fake::KIND_E;

FILE *__wrap_fopen64(const char *pcPath, const char *pcMode)
{
    if (!fake::IsControllers(pcPath)) {
        return __real_fopen64(pcPath, pcMode);
    }
    FILE *pstFile = nullptr;
    if (Fault(KIND_E::FILE_CALL)) {
        errno = EACCES;
    } else {
        pstFile = __real_fopen64(fake::RealPath(pcPath).c_str(), pcMode);
    }
    Journal("fopen %s %s -> %s", pcPath, pcMode, pstFile == nullptr ? "null" : "open");
    return pstFile;
}

size_t __wrap_fread(void *pData, size_t uiSize, size_t uiCount, FILE *pstFile)
{
    const auto optFault = Fault(KIND_E::FILE_CALL);
    if (optFault) {
        errno = EIO;
        return *optFault == HOW_E::SHORT ? __real_fread(pData, uiSize, uiCount / 2U, pstFile) : 0U;
    }
    return __real_fread(pData, uiSize, uiCount, pstFile);
}

size_t __wrap_fwrite(const void *pData, size_t uiSize, size_t uiCount, FILE *pstFile)
{
    const auto optFault = Fault(KIND_E::FILE_CALL);
    if (optFault) {
        errno = ENOSPC;
        return *optFault == HOW_E::SHORT ? __real_fwrite(pData, uiSize, uiCount / 2U, pstFile) : 0U;
    }
    return __real_fwrite(pData, uiSize, uiCount, pstFile);
}

int __wrap_fclose(FILE *pstFile)
{
    const auto optFault = Fault(KIND_E::FILE_CALL);
    const int iResult = __real_fclose(pstFile);
    if (optFault) {
        errno = EIO;
        return EOF;
    }
    return iResult;
}

int __wrap_fstat64(int iFile, struct stat *pstStat)
{
    if (Fault(KIND_E::FILE_CALL)) {
        errno = EIO;
        return -1;
    }
    return __real_fstat64(iFile, pstStat);
}

int __wrap_fchmod(int iFile, mode_t uiMode)
{
    if (Fault(KIND_E::FILE_CALL)) {
        errno = EPERM;
        return -1;
    }
    Journal("fchmod 0%o", uiMode & 07777U);
    return __real_fchmod(iFile, uiMode);
}

int __wrap_access(const char *pcPath, int iMode)
{
    if (!fake::IsControllers(pcPath)) {
        return __real_access(pcPath, iMode);
    }
    int iResult = -1;
    if (Fault(KIND_E::FILE_CALL)) {
        errno = ENOENT;
    } else {
        iResult = __real_access(fake::RealPath(pcPath).c_str(), iMode);
    }
    Journal("access %s %d -> %d", pcPath, iMode, iResult);
    return iResult;
}

extern "C" {

i32 BMC_GetFileSize(const char *pcPath)
{
    i32 iSize = -1;
    const auto itSize = fake::State().mapFileSize.find(pcPath);
    if (!Fault(KIND_E::FILE_CALL)) {
        std::error_code ec;
        const auto uiSize = fs::file_size(fake::RealPath(pcPath), ec);
        iSize = ec ? -1 : static_cast<i32>(uiSize);
        iSize = itSize == fake::State().mapFileSize.end() ? iSize : itSize->second;
    }
    Journal("BMC_GetFileSize %s -> %d", pcPath, iSize);
    return iSize;
}

u32 BMC_ReadFile(const char *pcPath, u8 *pucBuf, u32 uiLen)
{
    u32 uiResult = fake::g_uiFailed;
    if (!Fault(KIND_E::FILE_CALL)) {
        const auto optBytes = fake::ReadFile(pcPath);
        if (optBytes && optBytes->size() >= uiLen) {
            std::copy_n(optBytes->begin(), uiLen, pucBuf);
            uiResult = 0;
        }
    }
    Journal("BMC_ReadFile %s %u -> %#x", pcPath, uiLen, uiResult);
    return uiResult;
}

u32 BMC_Mkdir(const char *pcPath)
{
    u32 uiResult = fake::g_uiFailed;
    if (!Fault(KIND_E::FILE_CALL)) {
        std::error_code ec;
        fs::create_directories(fake::RealPath(pcPath), ec);
        uiResult = ec ? fake::g_uiFailed : 0U;
    }
    Journal("BMC_Mkdir %s -> %#x", pcPath, uiResult);
    return uiResult;
}

u32 BMC_CheckDirVaildStatus(const char *pcPath)
{
    u32 uiResult = 0;
    if (!Fault(KIND_E::FILE_CALL)) {
        uiResult = fs::is_directory(fake::RealPath(pcPath)) ? 1U : 0U;
    }
    Journal("BMC_CheckDirVaildStatus %s -> %u", pcPath, uiResult);
    return uiResult;
}

u32 BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest)
{
    u32 uiResult = fake::g_uiFailed;
    if (!Fault(KIND_E::FILE_CALL)) {
        std::error_code ec;
        fs::copy_file(fake::RealPath(pcSrc), fake::RealPath(pcDest), fs::copy_options::overwrite_existing,
                      ec);
        uiResult = ec ? fake::g_uiFailed : 0U;
    }
    Journal("BMC_CopyFileWithAllMode %s %s -> %#x", pcSrc, pcDest, uiResult);
    return uiResult;
}

} // extern "C"
