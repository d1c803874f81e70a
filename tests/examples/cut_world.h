// SPDX-License-Identifier: Apache-2.0
// A controller that can be cut short before, or in the middle of, every call that changes something lasting,
// and started again from what was left: chip, database, journal and serial-number files.
#ifndef TESTS_CUT_WORLD_H
#define TESTS_CUT_WORLD_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "safe_label_write.h"
#include "unit/lib_fru_write/label_world.h"

namespace cut {

// All that outlives a cut.
struct LASTING_S
{
    fake::BYTES vecChip;
    std::map<u32, fake::BYTES> mapDb;
    fake::BYTES vecJournal;
    std::optional<fake::BYTES> optSerial;
    std::optional<fake::BYTES> optSerialCopy;
};

// Where a call that changes something is cut.
enum class HOW_E
{
    BEFORE,     // nothing of it is done
    HALF,       // half of an EEPROM write or of a journal entry; a file that is opened for writing is empty
    FIRST_PAGE, // the first page of an EEPROM write was being programmed, and holds what nobody wrote
    NEXT_PAGE,  // as HALF, and the page behind that half holds what nobody wrote
};
const char *HowName(HOW_E eHow);

struct POINT_S
{
    u32 uiNth = 0U; // 1: the first change; 0: no cut
    HOW_E eHow = HOW_E::BEFORE;
};

// What a run did, and what it left.
struct RUN_S
{
    bool bCut = false;
    u32 uiResult = 0U; // where it was not cut
    std::vector<std::string> vecChanges;
    LASTING_S stLeft;
};

// The device under test, its image on the chip behind remnants of a longer one, as label writes leave them.
LASTING_S Provision(const label::DEVICE_S &stDevice, const fake::BYTES &vecImage);

// Puts the controller into that state, as after a start: nothing else is remembered.
void Start(const label::DEVICE_S &stDevice, const LASTING_S &stLasting);
LASTING_S Lasting(const label::DEVICE_S &stDevice);

// Starts the controller and makes the call; where it is to be cut, in a process of its own, which ends at the
// point.
RUN_S Run(const label::DEVICE_S &stDevice, const LASTING_S &stStart, const std::function<u32()> &fnCall,
          const POINT_S &stPoint = {});

// Every point at which a run with these changes can be cut.
std::vector<POINT_S> Points(const std::vector<std::string> &vecChanges);

// The journal of the controller under test. Its n-th call (1: the first) fails; 0: none.
const SAFE_JOURNAL_S &Journal();
void FailJournalCall(u32 uiNth);

// From now on, until the next start, this byte of the chip keeps its value.
void StickByte(u32 uiOffset);

u32 ImageKey(const label::DEVICE_S &stDevice);
u32 StatusKey(const label::DEVICE_S &stDevice);

} // namespace cut

#endif
