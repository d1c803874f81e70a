// SPDX-License-Identifier: Apache-2.0
// The platform's file calls, below the root.
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "support/host.h"

extern "C" {

i32 BMC_GetFileSize(const char *pcPath)
{
    return host::Shield<i32>(-1, [&] {
        struct stat stStat;
        const bool bFile = files::Status(host::PlaceOf(pcPath), &stStat) == 0 && S_ISREG(stStat.st_mode);
        return bFile && stStat.st_size <= INT32_MAX ? static_cast<i32>(stStat.st_size) : -1;
    });
}

u32 BMC_ReadFile(const char *pcPath, u8 *pucBuf, u32 uiLen)
{
    return host::Shield(host::g_uiFailed, [&] {
        files::Fd stFile;
        const bool bUsable =
            (pucBuf != nullptr || uiLen == 0U) &&
            files::OpenRegular(host::PlaceOf(pcPath), O_RDONLY, files::Links::Ours, &stFile) == 0;
        return bUsable && files::ReadExactly(stFile.Get(), pucBuf, uiLen) == 0 ? 0U : host::g_uiFailed;
    });
}

u32 BMC_Mkdir(const char *pcPath)
{
    return host::Shield(host::g_uiFailed, [&] {
        const files::PLACE_S stPlace = host::WritePlaceOf(pcPath);
        const int iError = files::MakeDirectories(stPlace);
        if (iError != 0) {
            HOST_LOG(BMC_DIAG_ERROR, "making directory %s: %s", stPlace.Text().c_str(),
                     files::Reason(iError).c_str());
        }
        return iError == 0 ? 0U : host::g_uiFailed;
    });
}

u32 BMC_CheckDirVaildStatus(const char *pcPath)
{
    return host::Shield(0U, [&] { return files::IsUsableDirectory(host::PlaceOf(pcPath)) ? 1U : 0U; });
}

u32 BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest)
{
    return host::Shield(host::g_uiFailed, [&] {
        const files::PLACE_S stFrom = host::PlaceOf(pcSrc);
        const files::PLACE_S stTo = host::WritePlaceOf(pcDest);
        const int iError = files::Copy(stFrom, stTo);
        if (iError != 0) {
            HOST_LOG(BMC_DIAG_WARNING, "copying %s to %s: %s", stFrom.Text().c_str(), stTo.Text().c_str(),
                     files::Reason(iError).c_str());
        }
        return iError == 0 ? 0U : host::g_uiFailed;
    });
}

FILE *BMCHOST_OpenFile(const char *pcPath, const char *pcMode)
{
    errno = EACCES; // what remains when the path is refused
    return host::Shield<FILE *>(nullptr, [&]() -> FILE * {
        const std::string strMode = pcMode == nullptr ? "" : pcMode;
        const bool bRead = strMode == "r";
        const int iFlags = bRead             ? O_RDONLY
                           : strMode == "w"  ? O_WRONLY | O_CREAT | O_TRUNC
                           : strMode == "w+" ? O_RDWR | O_CREAT | O_TRUNC
                                             : -1;
        if (iFlags < 0) {
            errno = EINVAL;
            return nullptr;
        }
        files::Fd stFile;
        const int iError = files::OpenRegular(bRead ? host::PlaceOf(pcPath) : host::WritePlaceOf(pcPath),
                                              iFlags, files::Links::Ours, &stFile);
        if (iError != 0) {
            errno = iError;
            return nullptr;
        }
        FILE *pstFile = fdopen(stFile.Get(), pcMode);
        if (pstFile != nullptr) {
            (void)stFile.Release();
        }
        return pstFile;
    });
}

} // extern "C"
