// SPDX-License-Identifier: Apache-2.0
// An image's bytes as a page shows them: each in one piece, MultiRecords value by value.
#ifndef FRUCTL_REPORT_PIECES_H
#define FRUCTL_REPORT_PIECES_H

#include <string>
#include <utility>
#include <vector>

#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

struct PIECE_S
{
    u32 uiOffset;
    u32 uiLength;
    Area enArea;
    std::string strName;
    std::string strText; // raw
    std::string strNote;
    std::string strProblem;
    std::string strRecord;                                      // of a MultiRecord's data: which record it is
    std::vector<std::pair<std::string, std::string>> vecValues; // where several share the bytes; raw
    bool bField;                                                // says something of the device
    bool bRun;                                                  // one value over and over, in no area

    // "board info area: manufacturer: Acme", and where.
    std::string Meaning() const; // raw
};

// In the order of the bytes.
std::vector<PIECE_S> PiecesOf(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout);

#endif
