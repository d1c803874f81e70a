// SPDX-License-Identifier: Apache-2.0
// What a write is about to do, on the disk before it begins. Whoever finds an entry whose writer is gone
// finishes the write, or undoes it: afterwards the image is the new or the old one, whole, in EEPROM and
// cache alike.
#ifndef TOOLKIT_CONTROLLER_JOURNAL_H
#define TOOLKIT_CONTROLLER_JOURNAL_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"

using Bytes = std::vector<u8>;

// What one device holds and is to hold. Nothing in place of bytes: there are none (and are to be none).
struct DEVICE_CHANGE_S
{
    u8 ucDeviceID = 0;
    std::string strTitle;
    u32 uiOffset = 0;              // of the bytes below in the EEPROM
    std::optional<Bytes> optOld;   // in the EEPROM; nothing: it takes no part
    std::optional<Bytes> optNew;   // as many
    std::vector<Bytes> vecBetween; // what a write in several steps leaves after each of them but the last
    bool bCache = false;           // the cached image takes part
    std::optional<Bytes> optOldCache;
    std::optional<Bytes> optNewCache;
};

// A file of the controller that a write renews.
struct FILE_CHANGE_S
{
    std::string strPath; // on the controller
    Bytes vecNew;
    std::optional<Bytes> optOld = {}; // nothing: it is not there; RunTransaction() fills it in
};

// Entries have numbers from 1 on; this one is of a change to another controller.
constexpr u32 CHANGEOVER_NUMBER = 0U;

struct JOURNAL_ENTRY_S
{
    u32 uiNumber = 0;          // of its file; given by WriteJournal()
    std::string strUnreadable; // why it cannot be read; the rest says nothing then
    std::string strCommand;    // who began it
    std::string strTime;       // UTC
    std::vector<DEVICE_CHANGE_S> vecDevices;
    std::vector<FILE_CHANGE_S> vecFiles;
};

// The entries that are there, oldest first, those that cannot be read too: a damaged one is nobody's to guess.
std::vector<JOURNAL_ENTRY_S> ReadJournal();

// True when there is any, or a change to another controller, readable or not. Costs one look into a directory.
bool HasJournal();

// Puts an entry on the disk and numbers it; its time is now. Fails when it cannot: then nothing may be
// written.
void WriteJournal(JOURNAL_ENTRY_S &stEntry);

// The write is finished, undone or given up.
void RemoveJournal(u32 uiNumber);

// Gives up all entries, whatever they say: their controller is no more.
void ForgetJournal();

#endif
