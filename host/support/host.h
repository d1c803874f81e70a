// What the platform's folders share: messages, the shield at the C boundary, locks, files below the root.
#ifndef BMCHOST_SUPPORT_HOST_H
#define BMCHOST_SUPPORT_HOST_H

#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <sys/stat.h>

#include "bmc_support.h"
#include "bmcfru_host.h"
#include "plain/plain.h"

// A message of the platform itself.
#define HOST_LOG(uiSeverity, ...)                                                                            \
    BMC_DiagLogOut(BMCHOST_DIAG_MODULE, 0U, (uiSeverity), __LINE__, __FILE_NAME__, __VA_ARGS__)

namespace host {

// errno as text, from any thread.
const char *ErrText(int iError);

// No exception leaves a platform call: its callers are C.
template <typename RESULT, typename WORK> RESULT Shield(RESULT result, WORK fnWork) noexcept
{
    try {
        return fnWork();
    } catch (const std::exception &error) {
        HOST_LOG(BMC_DIAG_ERROR, "platform call failed: %s", error.what());
    } catch (...) {
        HOST_LOG(BMC_DIAG_ERROR, "platform call failed");
    }
    return result;
}

// The locks of the library, in the order in which they are taken. fork() takes them all, so that a child
// never inherits one that a thread of its parent holds.
struct LOCKS_S
{
    std::mutex mtxDb;
    std::mutex mtxEeprom;
    std::mutex mtxDiag;
    std::mutex mtxRoot;
};
LOCKS_S &Locks();

// True while this thread is inside the diagnostic sink, and so holds mtxDiag.
bool InDiagSink();

// The root now; grows by one with every BMCHOST_SetRoot().
u32 RootGeneration();

// A controller's path below the root; throws std::system_error when it is refused.
std::string Resolve(const char *pcPath);

// A file descriptor that closes itself.
class FD
{
  public:
    FD() = default;
    explicit FD(int iFd) : m_iFd(iFd) {}
    FD(FD &&other) noexcept : m_iFd(other.Release()) {}
    FD &operator=(FD &&other) noexcept
    {
        Reset(other.Release());
        return *this;
    }
    FD(const FD &) = delete;
    FD &operator=(const FD &) = delete;
    ~FD()
    {
        Reset(-1);
    }

    explicit operator bool() const
    {
        return m_iFd >= 0;
    }
    int Get() const
    {
        return m_iFd;
    }
    int Release()
    {
        const int iFd = m_iFd;
        m_iFd = -1;
        return iFd;
    }
    void Reset(int iFd);

  private:
    int m_iFd = -1;
};

// open(2) with O_CLOEXEC and O_NONBLOCK, so that a pipe laid in the way cannot hold us up.
FD OpenFile(const std::string &strPath, int iFlags, mode_t uiMode = 0644);
// The same, for regular files only; errno is EINVAL for anything else.
FD OpenRegular(const std::string &strPath, int iFlags, struct stat *pstStat);

// Holds flock(2) on a descriptor. It falls when the process dies.
class FILE_LOCK
{
  public:
    FILE_LOCK(int iFd, int iOperation);
    ~FILE_LOCK();
    FILE_LOCK(const FILE_LOCK &) = delete;
    FILE_LOCK &operator=(const FILE_LOCK &) = delete;
    explicit operator bool() const
    {
        return m_bHeld;
    }

  private:
    int m_iFd;
    bool m_bHeld;
};

// These return an errno value, 0 for success; the path is a real one.
int MakeDirs(const std::string &strPath);
int ReadWhole(int iFd, void *pBuf, size_t uiLen);        // EIO when the file is shorter
int WriteWhole(int iFd, const void *pBuf, size_t uiLen); // from the descriptor's position on
// Replaces a file whole or not at all. Its directory must exist. With g_uiKeepMode an existing file keeps its
// permission bits and a new one gets 0644.
constexpr mode_t g_uiKeepMode = ~static_cast<mode_t>(0);
int ReplaceFile(const std::string &strPath, std::string_view svContent, mode_t uiMode);
// Reads a regular file whole, and says what fstat(2) says of it.
int ReadText(const std::string &strPath, std::string *pstrContent, struct stat *pstStat);

std::string DirectoryOf(const std::string &strPath);
// This moment as "2024-05-01T12:34:56.789Z".
std::string NowText();
// Appends one line to a journal below the root, whole or not at all, whatever other processes append.
u32 AppendToJournal(const char *pcJournal, std::string strLine);
// The OEM flag, from the capability file.
u32 OemFlag();
// A capability: 0, or not 0 when there is none.
u32 Capability(const char *pcObject, const char *pcName, std::string *pstrValue);

} // namespace host

#endif
