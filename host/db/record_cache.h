// SPDX-License-Identifier: Apache-2.0
// Records that were read, for as long as nobody has committed anything.
//
// One read of a FRU image asks for the same few records hundreds of times, and each question costs SQLite three
// system calls. Every commit of any process writes the header of the log's index, which all of them have mapped:
// while it is what it was when a record was read, the record is what it was, and a look at it costs no call.
#ifndef BMCHOST_DB_RECORD_CACHE_H
#define BMCHOST_DB_RECORD_CACHE_H

#include <array>
#include <unordered_map>
#include <vector>

#include <sqlite3.h>

#include "bmc_types.h"

namespace db {

class RecordCache
{
  public:
    // For a connection that has read once and so has mapped its index, if it has one.
    void Attach(sqlite3 *pstDb);
    void Detach();
    void Clear();
    // Drops everything when there was a commit; the moment to which the records found or kept next belong.
    void Refresh();
    const std::vector<u8> *Find(u32 uiKey) const;
    // A record that was read from the database since Refresh(); not kept when there was a commit meanwhile.
    void Keep(u32 uiKey, const void *pData, u32 uiLen);

  private:
    static constexpr size_t WORDS = 12; // of the header, which stands there twice
    using HEADER = std::array<u32, WORDS>;
    // False while somebody writes it, and where there is none.
    bool Read(HEADER *pauHeader) const;

    const u32 *m_puiIndex = nullptr;
    HEADER m_auHeader = {};
    bool m_bKnown = false;
    size_t m_uiBytes = 0;
    std::unordered_map<u32, std::vector<u8>> m_mapRecords;
};

} // namespace db

#endif
