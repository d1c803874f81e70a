// SPDX-License-Identifier: Apache-2.0
// A file that grows by a line for each thing that is done, and says after a power cut how far that was.
#ifndef TOOLKIT_EDIT_RESULT_FILE_H
#define TOOLKIT_EDIT_RESULT_FILE_H

#include <string>

#include "files/files.h"

class ResultFile
{
  public:
    // Makes it, or takes one that is there. Fails while another command has it, and for what is no plain file.
    explicit ResultFile(const std::string &strPath);

    // The whole lines that were there; a last one that was cut short is taken away.
    const std::string &Lines() const
    {
        return m_strLines;
    }
    // On the disk when this returns.
    void Append(const std::string &strLine);

  private:
    std::string m_strPath;
    files::Fd m_stFile;
    std::string m_strLines;
};

#endif
