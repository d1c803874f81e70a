// SPDX-License-Identifier: Apache-2.0
// A directory in memory that ends with the process.
#ifndef FUZZ_FOLDER_H
#define FUZZ_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <string>

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
        std::error_code stIgnored;
        std::filesystem::remove_all(m_strPath, stIgnored);
    }
    const std::string &Path() const
    {
        return m_strPath;
    }

  private:
    std::string m_strPath;
};

} // namespace fuzz

#endif
