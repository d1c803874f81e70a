// SPDX-License-Identifier: Apache-2.0
// The controller of the fault matrix: a baseboard, a management card and a hardware block, on the fake platform, with
// everything else that the library asks for; and what of it can be told afterwards.
#ifndef TESTS_PROVE_WORLD_H
#define TESTS_PROVE_WORLD_H

#include <map>
#include <string>
#include <vector>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace prove {

using fake::BYTES;

// The devices; their IDs are their places in the table.
constexpr u8 BASEBOARD = 0U; // component type 0, the main FRU
constexpr u8 CARD = 1U;      // component type 0x30
constexpr u8 BLOCK = 2U;     // component type 7, a hardware block of 32 bytes
constexpr u8 BLOCK_TYPE = 7U;
constexpr u16 SDR_RECORD = 0x1200U; // the baseboard's; the others follow

constexpr u32 KEY_INFO = 0x10810000U;
constexpr u32 KEY_SDR = 0x10810100U;
constexpr u32 KEY_IMAGE = 0x10810200U;
constexpr u32 KEY_FLAG = 0x108103FFU;
constexpr u32 KEY_STATUS = 0x10810400U;
constexpr u32 KEY_TABLE = 0x108105FFU;

constexpr const char *OEM_PATH = "/conf/oempack/bmc/CID_OEM.conf";
constexpr const char *STORED_IMAGE = "/opt/fru/board.bin";

const BYTES &BaseboardImage();
const BYTES &CardImage();

// Everything, with trusted caches.
void MakeWorld();
void DistrustCaches();
void PutInfo(const FRU_DEVICE_INFO_S &stInfo);
FRU_DEVICE_INFO_S InfoOf(u8 ucDevice);
BYTES &Chip(u8 ucDevice);
BYTES &Cached(u8 ucDevice);
// The baseboard's header no longer adds up, on the chip and in the cache; its stored image is sound.
void DamageBaseboard();
// The baseboard with its areas but for the MultiRecords.
void DropMultiRecords();

// What calls are given and give back; zeros at first.
struct SCRATCH_S
{
    FRU_DATA_S stData;
    FRU_SET_PARA_S stPara;
    FRU_CLEAR_PARA_S stClear;
    FRU_HW_DATA_S stBlock;
    FRU_CUSTOM_FIELD_S stCustom;
    FRU_DEVICE_INFO_S stInfo;
    FRU_DEVICE_TBL_S stTable;
    FRU_SDR_S stSdr;
    FRU_OEM_CONF_S stConf;
    FRU_READ_REQ_S stRequest;
    FRU_ASSEMBLE_LABEL_S stLabel;
    FRU_FEATURE_UPDATE_S stFeature;
    u8 aucBytes[1024];
    char acText[1024];
    char *pcText;
    u8 *pucText;
    void *pHandle;
    u32 uiNumber;
    i32 iResult;
};
SCRATCH_S &Scratch();

// As text, to be compared.
std::string RecordText(const FRU_DATA_S &stData);
std::string HexText(const void *pBytes, size_t uiSize);

// What stands when a call is over.
struct SNAPSHOT_S
{
    std::map<std::string, BYTES> mapEeprom;
    std::map<u32, BYTES> mapDb;
    std::map<std::string, BYTES> mapFiles;
    std::map<std::string, std::map<std::string, std::map<std::string, std::string>>> mapIni;
    std::vector<std::string> vecNotices; // that arrived
};
SNAPSHOT_S Snapshot();

// PART_E bits in which a state differs from the one that the call leaves without a fault.
u32 Differences(const SNAPSHOT_S &stBefore, const SNAPSHOT_S &stWhole, const SNAPSHOT_S &stNow);

} // namespace prove

#endif
