// SPDX-License-Identifier: Apache-2.0
// Files, for the platform and the tools: how they are opened, read, replaced and locked.
//
// The rules that everything here keeps:
//   - nothing but a regular file is opened, and no pipe or device can hold us up;
//   - a symbolic link is followed only where it is asked for, and then only one that this process's user or
//     root has laid; what somebody else has linked is refused with ELOOP;
//   - a file with a second name (a hard link) whose owner is not its directory's is not written to (EMLINK);
//   - a new file gets the permission bits that are asked for, whatever the umask, and no set-ID bits ever;
//   - a file takes its name when it is whole and on the disk, and then the directory is flushed: after a
//     power cut there is the old file or the new one;
//   - every wait has a bound.
// Results are errno values, 0 for success; Reason() puts them into words.
#ifndef BMCFRU_FILES_H
#define BMCFRU_FILES_H

#include <string>
#include <string_view>

#include <sys/stat.h>

namespace files {

// Where a file lies. The base is a directory that the user named, taken as it is; what lies below it may have
// been laid by others and is walked step by step. Without a base, the directory is the user's word.
struct PLACE_S
{
    std::string strBase;
    std::string strBelow;

    // Not explicit: a plain path is a place.
    PLACE_S(std::string strPath) : strBelow(std::move(strPath)) {}
    PLACE_S(const char *pcPath) : strBelow(pcPath) {}
    PLACE_S(std::string strDirectory, std::string strPath)
        : strBase(std::move(strDirectory)), strBelow(std::move(strPath))
    {}

    std::string Text() const;
};

// What an errno value of this room means.
std::string Reason(int iError);

// A file descriptor that closes itself, and leaves errno as it is.
class Fd
{
  public:
    Fd() = default;
    explicit Fd(int iFd) : m_iFd(iFd) {}
    Fd(Fd &&other) noexcept : m_iFd(other.Release()) {}
    Fd &operator=(Fd &&other) noexcept
    {
        Reset(other.Release());
        return *this;
    }
    Fd(const Fd &) = delete;
    Fd &operator=(const Fd &) = delete;
    ~Fd()
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

enum class Links
{
    Never,
    Ours // those that this process's user or root has laid
};

// ---- reading and writing in place ----

// Opens a regular file with open(2)'s flags (O_CREAT makes it with exactly uiMode) and O_CLOEXEC. pstStat may
// be null.
int OpenRegular(const PLACE_S &stPlace, int iFlags, Links enLinks, Fd *pstFd, struct stat *pstStat = nullptr,
                mode_t uiMode = 0644);

// Exactly uiLength bytes at iOffset; EIO when there are fewer.
int ReadExactly(int iFd, void *pBuffer, size_t uiLength, off_t iOffset = 0);
// Everything, from the descriptor's position on, however short the counts.
int WriteAll(int iFd, std::string_view svBytes);

// A regular file whole; EFBIG when it is larger than uiLimit. pstStat may be null.
int ReadAll(const PLACE_S &stPlace, size_t uiLimit, std::string *pstrContent, struct stat *pstStat = nullptr,
            Links enLinks = Links::Ours);

// fstat(2) of what lies there, through links of ours.
int Status(const PLACE_S &stPlace, struct stat *pstStat);

// A directory that can be read, searched and written to.
bool IsUsableDirectory(const PLACE_S &stPlace);

// ---- making and replacing ----

// Makes the directory and those above it; new ones get exactly uiMode. 0 also when it is there.
int MakeDirectories(const PLACE_S &stPlace, mode_t uiMode = 0755);

// The permission bits of a file that is replaced stay, a new one gets 0644.
constexpr mode_t g_uiKeepMode = ~static_cast<mode_t>(0);

// A file on its way: it has an unpredictable name beside the one that it will take, and vanishes when it is
// not committed.
class NewFile
{
  public:
    NewFile() = default;
    ~NewFile();
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    // enLinks: Ours replaces what a link leads to, Never refuses one. The directory must exist.
    int Open(const PLACE_S &stPlace, mode_t uiMode = g_uiKeepMode, Links enLinks = Links::Ours);
    int Write(std::string_view svBytes);
    // Its name in the directory until it is committed.
    const std::string &TempName() const
    {
        return m_strTemp;
    }
    // Flushes the file, gives it its name, flushes the directory.
    int Commit();

  private:
    Fd m_stDirectory;
    Fd m_stFile;
    std::string m_strName;
    std::string m_strTemp;
    mode_t m_uiMode = 0;
};

// The three steps at once.
int Replace(const PLACE_S &stPlace, std::string_view svContent, mode_t uiMode = g_uiKeepMode,
            Links enLinks = Links::Ours);

// A file with its permission bits, without set-ID bits, through NewFile.
int Copy(const PLACE_S &stFrom, const PLACE_S &stTo);

// Removes a name; what a link leads to stays.
int Remove(const PLACE_S &stPlace);

// Gives a regular file another name in its directory, in the place of a regular file or nothing, and flushes the
// directory.
int Rename(const PLACE_S &stPlace, const std::string &strName);

// Flushes the directory of a file, so that its name is on the disk too.
int FlushDirectoryOf(const PLACE_S &stPlace);

// Removes what killed processes left of their NewFiles in a directory.
void Tidy(const PLACE_S &stDirectory);

// ---- owners ----

// Gives root's directory, and root's regular files in it that have no other name, to a user; nothing is done
// when it is his already. No link is followed on the way, and nothing below it is touched. EPERM when the
// directory is somebody else's. For root, and below a base.
int HandOver(const PLACE_S &stDirectory, uid_t uiUser, gid_t uiGroup);

// ---- locks ----

// A lock file, held until the end of the object or of the process. A child of fork() does not hold it, and
// does not keep it from falling when its parent dies. The file has mode 0600, or 0660 where the base's group
// may write, so that nobody else can hold it.
class LockFile
{
  public:
    LockFile();
    ~LockFile();
    LockFile(const LockFile &) = delete;
    LockFile &operator=(const LockFile &) = delete;

    // Waits at most so long, then ETIMEDOUT; all who wait, sharers too, have it in the order in which they came.
    // The file's directory must exist.
    int Take(const PLACE_S &stPlace, unsigned uiPatienceMs);
    // Together with others that share it. Makes no file: ENOENT, EACCES tell that there is none to wait for.
    int Share(const PLACE_S &stPlace, unsigned uiPatienceMs);
    // Lets others in and takes it anew, without opening the file again; EBADF in a child of fork().
    void Pause();
    int Resume(unsigned uiPatienceMs);
    void Release();
    bool IsHeld() const
    {
        return m_bHeld;
    }

    // One line about the holder, for those who wait; it is gone when the lock is released.
    int SetHolder(const std::string &strHolder);
    // What the holder says of itself, also after Take() has waited in vain.
    std::string Holder() const;

  private:
    friend struct LOCK_LIST_S;
    int Wait(int iOperation, unsigned uiPatienceMs);

    Fd m_stFile;
    bool m_bHeld = false;
    bool m_bNamed = false;
    LockFile *m_pstNext = nullptr;
    LockFile *m_pstPrevious = nullptr;
};

} // namespace files

#endif
