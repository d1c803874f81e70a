// SPDX-License-Identifier: Apache-2.0
// The change from one controller to another, all of it on the disk before the first of its files is touched: from
// then on it is finished, by the next command if need be.
#ifndef TOOLKIT_CONTROLLER_CHANGEOVER_H
#define TOOLKIT_CONTROLLER_CHANGEOVER_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/journal.h"

// One device's records. Each is written as it is.
struct DEVICE_RECORDS_S
{
    FRU_DEVICE_TBL_ENTRY_S stEntry = {};
    FRU_DEVICE_INFO_S stInfo = {};
    FRU_SDR_S stSdr = {};
    std::optional<Bytes> optCache; // nothing: there is no cached image, and none is trusted
};

struct CHANGEOVER_S
{
    std::string strCommand;
    std::string strTime;                 // UTC
    std::vector<FILE_CHANGE_S> vecFiles; // of the new controller
    std::vector<std::string> vecRemoved; // files of the old one that the new one has not, on the controller
    std::vector<u8> vecForgotten;        // device IDs of the old one
    std::vector<DEVICE_RECORDS_S> vecDevices;
};

// True when one has begun and is not finished. Costs one look into a directory.
bool HasChangeover();

// Begins and finishes one. Fails before anything is changed when a file cannot be written.
void ChangeOver(CHANGEOVER_S &stChangeover);

// Finishes the one that was cut short; gives the line that tells so.
std::string FinishChangeover();

#endif
