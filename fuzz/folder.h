// SPDX-License-Identifier: Apache-2.0
// A directory in memory that ends with the process.
#ifndef FUZZ_FOLDER_H
#define FUZZ_FOLDER_H

#include <cstdio>
#include <cstdlib>
#include <string>

#include <ftw.h>

namespace fuzz {

class Folder
{
  public:
    Folder()
    {
        char acName[] = "/dev/shm/bmcfru_fuzz_XXXXXX";
        m_strPath = mkdtemp(acName);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;
    ~Folder()
    {
        // Not the C++ runtime's way, whose writes the memory sanitizer does not see.
        (void)nftw(m_strPath.c_str(), Remove, DESCRIPTORS, FTW_DEPTH | FTW_PHYS);
    }
    const std::string &Path() const
    {
        return m_strPath;
    }

  private:
    static constexpr int DESCRIPTORS = 8;

    static int Remove(const char *pcPath, const struct stat *, int, struct FTW *)
    {
        return remove(pcPath);
    }

    std::string m_strPath;
};

} // namespace fuzz

#endif
