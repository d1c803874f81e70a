// SPDX-License-Identifier: Apache-2.0
// Failures that the library swallows and means to. What is not here makes the fault matrix fail.
#include "prove/fault_case.h"

namespace prove {

const char *PartName(u32 uiPart)
{
    switch (uiPart) {
    case PART_CHIP_MIXED:
        return "the EEPROM is neither old nor new";
    case PART_CHIP_OTHER:
        return "the EEPROM holds another whole image";
    case PART_CHIP_OLD:
        return "the EEPROM is not written";
    case PART_CACHE_APART:
        return "cache and EEPROM disagree";
    case PART_RECORD:
        return "another record of the database";
    case PART_FILE:
        return "the serial number's file";
    case PART_INI:
        return "the OEM configuration";
    case PART_NOTICE:
        return "a notice or a log entry";
    default:
        return "what the call gives back";
    }
}

const std::vector<RULE_S> &Rules()
{
    static const std::vector<RULE_S> RULES = {
        // ---- writes of devices and caches
        {"chunk-refused", EEPROM | DB,
         PART_CHIP_MIXED | PART_CHIP_OLD | PART_CHIP_OTHER | PART_CACHE_APART | PART_NOTICE,
         "Fail to write FRU DATA to eeprom: CC:",
         "A write of a whole image stops at the first chunk that the device does not take: the result is 0, the log tells."},
        {"chunk-short", EEPROM, PART_CHIP_MIXED | PART_CHIP_OLD | PART_CHIP_OTHER | PART_CACHE_APART,
         " length is not equal, reqLen:",
         "A chunk is taken for written when the device did not refuse it; that it took fewer bytes stands in the log."},
        {"cache-not-patched", DB | ALLOC, PART_CACHE_APART, "Write FRU data to db failed!",
         "The device has the bytes; that the cached image could not be patched no longer fails the command, the log tells."},
        {"erased-not-cached", DB, PART_CACHE_APART, "Put FRU data buf to db failed!",
         "The device is erased; what follows can no longer fail the clear, the log tells."},
        {"recovered-short", EEPROM, PART_CHIP_MIXED | PART_CACHE_APART, nullptr,
         "A recovery goes by the cached image, which is whole; a device that took fewer bytes of it did not refuse it."},
        // ---- what follows a write
        {"count-written-answered", EEPROM, PART_CHIP_MIXED | PART_CACHE_APART | PART_OUTPUT,
         " length is not equal, reqLen:",
         "The response's second byte is the count that the device took; who asked compares."},
        {"nobody-waits-for-notices", RPC, PART_NOTICE, nullptr,
         "The controller's services are told that a FRU changed; nobody waits for them or looks at their answer."},
        {"log-entry-lost", OPERATELOG | DB, PART_NOTICE, nullptr,
         "An entry that could not be made is lost, not left to the next write."},
        {"sequence-not-closed", DB, PART_RECORD, nullptr,
         "The device has the bytes: an operate flag that cannot be read or put back no longer fails the command."},
        {"sequence-not-opened", DB, PART_RECORD, nullptr,
         "The operate flag is for the log entry alone: the answer does not depend on it."},
        {"serial-number-not-mirrored", FILES, PART_FILE, "Write PSN To File failed!",
         "The device holds the new value already: the mirror's failure is told and does not fail the write."},
        {"serial-number-not-copied", FILES, PART_FILE, nullptr,
         "The copy is best effort: its failure is neither logged nor reported."},
        {"record-not-queued", ALLOC | CLOCK | SEMAPHORE, PART_CHIP_OLD | PART_CHIP_OTHER | PART_NOTICE,
         nullptr,
         "A record that could not be queued is told of in the log; the merge that follows decides the result."},
        {"store-not-destroyed", CLOCK | SEMAPHORE, PART_OUTPUT, "FRU MultiRecord wait to destroy failed!",
         "A store that is not had in time is left as it is, and the log tells."},
        // ---- reads
        {"count-answered", EEPROM, PART_OUTPUT, "Read length is not equal!",
         "The response's second byte is the count that the device gave; who asked compares."},
        {"span-by-asked-counts", EEPROM, PART_OUTPUT, "Read length is not equal!",
         "Chunks are spaced by the counts that were asked for, not by those that came back."},
        {"bytes-counted", EEPROM, PART_OUTPUT, nullptr, "The result is the count of bytes that were read."},
        {"serial-number-in-part", FILES, PART_OUTPUT, nullptr,
         "At most so many bytes are read: a part is an answer, too."},
        {"multirecords-left-out", ALLOC, PART_OUTPUT, "Failed to get MultiRecordArea!",
         "A MultiRecord area that cannot be taken in leaves the record without MultiRecord data, the log tells."},
        {"product-fields-not-joined", ALLOC, PART_OUTPUT, nullptr,
         "Unlike the other two areas' fields, product fields that cannot be joined are no failure."},
        {"undecodable-is-empty", ALLOC, PART_OUTPUT, "Interpret FRU Data failed!",
         "Along the direct path an image that does not decode is a record without texts; the log has the reason."},
        {"no-table-no-devices", DB, PART_OUTPUT, "Get fru device tbl failed!",
         "A controller without a table has 0 FRUs, which is no failure here."},
        {"status-not-known", DB, PART_OUTPUT, nullptr,
         "A status that cannot be read sets no bit, and without a table the byte stays as it is; the log tells."},
        // ---- configuration
        {"oem-defaults", INI, PART_OUTPUT | PART_INI, "Unable to get oem conf file",
         "A file that is missing is no error: defaults stand in."},
        {"oem-names-left-empty", DB | EEPROM | ALLOC, PART_OUTPUT, nullptr,
         "A FRU that cannot be read leaves the names empty; no failure of it is told to the caller."},
        {"oem-given-up", INI | DB | ALLOC, PART_INI, "failed",
         "Without FRU or file the call is given up and the file stays as it is; it has no result, the log tells."},
        {"oem-file-not-written", INI, PART_INI, nullptr,
         "The call has no result: a key that cannot be set and a file that cannot be saved stay as they were."},
        {"oem-key-not-set", INI, PART_OUTPUT, nullptr,
         "The call has no result: a key that cannot be set stays as it was."},
        {"logo-without-its-file", FILES, PART_OUTPUT, nullptr, "Without its file the logo flag is 1."},
        {"default-name", CAPABILITY, PART_OUTPUT, "from cap",
         "Without the capability the default name stands in; it is not kept."},
    };
    return RULES;
}

} // namespace prove
