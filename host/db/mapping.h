// SPDX-License-Identifier: Apache-2.0
// What becomes of mapped memory whose file is cut.
//
// SQLite maps one file here, the log's index. A process that touches a page of it behind the end of the file
// gets SIGBUS and dies, and no look at the file beforehand helps when it is cut a moment later. So a call that
// reads goes on with an empty page of its own in that place: SQLite takes it for an index that must be made
// anew, or finds nothing in it. What the call has found counts for nothing then, and the connection is closed.
//
// A call that writes is not helped in this way: taking the log into the file with half an index would lose
// records, while a process that dies of it loses nothing that a call has returned for.
#ifndef BMCHOST_DB_MAPPING_H
#define BMCHOST_DB_MAPPING_H

namespace db {

// While one lives, its thread may lose pages. With mtxDb held; they may be nested.
class MappingGuard
{
  public:
    MappingGuard();
    ~MappingGuard();
    MappingGuard(const MappingGuard &) = delete;
    MappingGuard &operator=(const MappingGuard &) = delete;

    // Whether a page has gone since Begin().
    static bool HasLost();
    static void Begin();

  private:
    bool m_bOutermost;
};

} // namespace db

#endif
