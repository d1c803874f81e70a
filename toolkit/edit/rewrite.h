// The library changes a field by writing the whole image anew. What that does to everything else in the image
// is worked out here, before anything is written.
#ifndef TOOLKIT_EDIT_REWRITE_H
#define TOOLKIT_EDIT_REWRITE_H

#include <functional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

struct REWRITE_S
{
    std::vector<std::string> vecNotes;  // what changes beside the fields that are meant, harmless
    std::vector<std::string> vecLosses; // what would be lost beside them
};

// True for a field that is meant to change.
using IsMeant = std::function<bool(const FIELD_ID_S &stField)>;

// The first thing that the library reported and that is not about how texts are stored, as DiagnosticHint().
std::string Cause();

// The image that the library will write for the record. Fails when it cannot be made or does not fit; strWhat
// is what is new in it ("the new 'Product Serial Number'").
std::vector<u8> EncodeAnew(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord);

// The device's bytes with the image written over their beginning.
std::vector<u8> Overlay(std::vector<u8> vecBytes, const std::vector<u8> &vecEncoded);

// What is in the device after the write has to be readable, and to say what the record says; fails otherwise.
void RequireReadable(const DEVICE_S &stDevice, const std::string &strWhat, const Record &stRecord,
                     const std::vector<u8> &vecBytes);

REWRITE_S CompareImages(const DEVICE_S &stDevice, const IMAGE_S &stOld, const std::vector<u8> &vecNew,
                        const IsMeant &fnMeant);

#endif
