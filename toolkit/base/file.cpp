#include "toolkit/base/file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "toolkit/base/error.h"

std::vector<u8> ReadFileBytes(const std::string &strPath)
{
    struct stat stStat = {};
    if (stat(strPath.c_str(), &stStat) != 0) {
        Fail("cannot read " + strPath + ": " + strerror(errno));
    }
    if (!S_ISREG(stStat.st_mode)) {
        Fail("cannot read " + strPath + ": not a regular file");
    }
    if (stStat.st_size > static_cast<off_t>(IMAGE_FILE_MAX)) {
        Fail("cannot read " + strPath + ": larger than 1 MiB, which no FRU image is");
    }
    FILE *pstFile = fopen(strPath.c_str(), "rb");
    if (pstFile == nullptr) {
        Fail("cannot read " + strPath + ": " + strerror(errno));
    }
    std::vector<u8> vecBytes(static_cast<size_t>(stStat.st_size));
    const size_t uiRead = vecBytes.empty() ? 0U : fread(vecBytes.data(), 1U, vecBytes.size(), pstFile);
    fclose(pstFile);
    if (uiRead != vecBytes.size()) {
        Fail("cannot read " + strPath + ": it ended early");
    }
    return vecBytes;
}

void MakeParentDirectory(const std::string &strPath)
{
    std::error_code stError;
    const std::filesystem::path stParent = std::filesystem::path(strPath).parent_path();
    if (!stParent.empty() && !std::filesystem::is_directory(stParent, stError)) {
        std::filesystem::create_directories(stParent, stError);
        if (stError) {
            Fail("cannot create the directory " + stParent.string() + ": " + stError.message());
        }
    }
}

void WriteFileBytes(const std::string &strPath, const std::vector<u8> &vecBytes,
                    const std::function<void(const std::string &strNew)> &fnCheck)
{
    MakeParentDirectory(strPath);
    const std::string strNew = strPath + ".new";
    FILE *pstFile = fopen(strNew.c_str(), "wb");
    if (pstFile == nullptr) {
        Fail("cannot write " + strNew + ": " + strerror(errno));
    }
    const bool bWritten =
        vecBytes.empty() || fwrite(vecBytes.data(), 1U, vecBytes.size(), pstFile) == vecBytes.size();
    const bool bFlushed = fflush(pstFile) == 0 && fsync(fileno(pstFile)) == 0;
    const bool bClosed = fclose(pstFile) == 0;
    try {
        if (!bWritten || !bFlushed || !bClosed) {
            Fail("cannot write " + strPath + ": " + strerror(errno));
        }
        if (fnCheck) {
            fnCheck(strNew);
        }
        if (rename(strNew.c_str(), strPath.c_str()) != 0) {
            Fail("cannot write " + strPath + ": " + strerror(errno));
        }
    } catch (...) {
        unlink(strNew.c_str());
        throw;
    }
}
