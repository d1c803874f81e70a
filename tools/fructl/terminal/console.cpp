// SPDX-License-Identifier: Apache-2.0
#include "terminal/console.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

static ColourMode g_enMode = ColourMode::Auto;
static FILE *g_pstOutput; // null: stdout itself

void SetColourMode(ColourMode enMode)
{
    g_enMode = enMode;
}

std::optional<ColourMode> ParseColourMode(const std::string &strWord)
{
    return strWord == "auto"     ? std::optional<ColourMode>(ColourMode::Auto)
           : strWord == "always" ? std::optional<ColourMode>(ColourMode::Always)
           : strWord == "never"  ? std::optional<ColourMode>(ColourMode::Never)
                                 : std::nullopt;
}

bool WantsColour(int iFd)
{
    if (g_enMode != ColourMode::Auto) {
        return g_enMode == ColourMode::Always;
    }
    // no-color.org: any non-empty value says no.
    const char *pcNoColor = getenv("NO_COLOR");
    return isatty(iFd) == 1 && (pcNoColor == nullptr || pcNoColor[0] == '\0');
}

std::string Paint(Colour enColour, const std::string &strText)
{
    static const char *const apcCodes[] = {"", "1", "2", "31", "32", "33", "34", "35", "36"};
    if (enColour == Colour::None || strText.empty() || !WantsColour(OutputFd())) {
        return strText;
    }
    return std::string("\x1b[") + apcCodes[static_cast<size_t>(enColour)] + "m" + strText + "\x1b[0m";
}

// Where Print() writes: standard output as the user gave it.
static FILE *Output()
{
    return g_pstOutput == nullptr ? stdout : g_pstOutput;
}

int OutputFd()
{
    return fileno(Output());
}

void Print(const std::string &strText)
{
    fwrite(strText.data(), 1U, strText.size(), Output());
}

void SeparateLibraryOutput()
{
    fflush(stdout);
    const int iMemory = memfd_create("library-output", MFD_CLOEXEC);
    const int iOutput = dup(STDOUT_FILENO);
    if (iMemory < 0 || iOutput < 0) {
        return; // mixed output is better than none
    }
    g_pstOutput = fdopen(iOutput, "w");
    if (g_pstOutput != nullptr && dup2(iMemory, STDOUT_FILENO) >= 0) {
        setvbuf(g_pstOutput, nullptr, isatty(iOutput) == 1 ? _IOLBF : _IOFBF, BUFSIZ);
    }
    close(iMemory);
}

std::string TakeLibraryOutput()
{
    fflush(stdout);
    std::string strText;
    if (g_pstOutput == nullptr) {
        return strText;
    }
    char acChunk[512];
    for (ssize_t iRead;
         (iRead = pread(STDOUT_FILENO, acChunk, sizeof(acChunk), static_cast<off_t>(strText.size()))) > 0;) {
        strText.append(acChunk, static_cast<size_t>(iRead));
    }
    if (ftruncate(STDOUT_FILENO, 0) == 0) {
        lseek(STDOUT_FILENO, 0, SEEK_SET);
    }
    return strText;
}

bool IsStandardOutput(const std::string &strPath)
{
    struct stat stPath = {};
    struct stat stOutput = {};
    // The path leads to what stands in for standard output while the library works.
    return strPath == "-" || (stat(strPath.c_str(), &stPath) == 0 && fstat(STDOUT_FILENO, &stOutput) == 0 &&
                              stPath.st_dev == stOutput.st_dev && stPath.st_ino == stOutput.st_ino);
}

int FlushOutput()
{
    static int iError = 0; // stays: what is lost is lost
    if (fflush(Output()) != 0) {
        iError = errno;
    } else if (iError == 0 && ferror(Output()) != 0) {
        iError = EIO; // a write between two flushes failed
    }
    return iError;
}
