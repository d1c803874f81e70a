// SPDX-License-Identifier: Apache-2.0
// Finishing or undoing what a write has left half done.
#ifndef TOOLKIT_CONTROLLER_MEND_H
#define TOOLKIT_CONTROLLER_MEND_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/journal.h"

enum class Side
{
    Old,
    New
};

// Makes every EEPROM and cached image that the entry names hold its old or its new bytes, and looks whether
// it does. Fails with the first thing that does not; what could be put right is.
void PutSide(const JOURNAL_ENTRY_S &stEntry, Side enSide);

// What a file of the controller holds; nothing when it is not there or cannot be read.
std::optional<Bytes> ReadControllerFile(const std::string &strPath);

// Makes the files that the entry names hold what they held before the write or what it was to leave in them.
// Fails with the first that cannot be written.
void PutFiles(const JOURNAL_ENTRY_S &stEntry, Side enSide);

// Looks only; fails with the first thing that holds other bytes than those of that side.
void RequireSide(const JOURNAL_ENTRY_S &stEntry, Side enSide);

enum class Mended
{
    Finished,
    Undone,
    Stuck // neither could be done: the entry stays
};

struct MENDED_S
{
    Mended enMended;
    std::vector<u8> vecDeviceIDs; // none: nobody knows which
    std::string strLine;          // what was done, or why not and how to go on
};

// Mends every entry, oldest first. The root's lock is held by the caller, so that no entry has a living
// owner. Fails when the journal cannot be read.
std::vector<MENDED_S> MendAll();

#endif
