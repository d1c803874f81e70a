// SPDX-License-Identifier: Apache-2.0
// The platform of the unit tests. It journals every platform call and every diagnostic message, answers from
// what a test puts into it, and makes any call fail on demand.
//
// A test begins with fake::Reset(), puts in what it needs (Db(), Eeprom(), WriteFile(), ...), makes its
// calls, and asserts on results, Messages(), Calls() and TakeStdout().
#ifndef TESTS_FAKE_PLATFORM_H
#define TESTS_FAKE_PLATFORM_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bmc_hwdesc.h"
#include "bmc_types.h"

namespace fake {

using BYTES = std::vector<u8>;

// ---- life of a test ----

// Forgets everything: state, journals, faults, captured output. Also starts capturing standard output.
void Reset();

// ---- diagnostic messages ----

struct MESSAGE_S
{
    u32 uiModule;
    u32 uiCategory;
    u32 uiSeverity;
    u32 uiLine;
    std::string strFile;
    std::string strFormat;
    std::string strText;
};

const std::vector<MESSAGE_S> &RawMessages();

// Every message as "category/severity file: text", in order; a module other than 24 stands in front as
// "[module]". Line numbers inside a text are replaced by #, so null-pointer reports read
// "[0]0/7 lib_fru.c: Pointer pucBuf is Null, File:lib_fru.c Func:LIB_FRU_ReadFRUData Line:#".
std::vector<std::string> Messages();

// Is called with every message's text from now on, on the thread that logs it and after it was noted; may
// block.
void SetLogHook(std::function<void(const std::string &)> fnHook);

// One line of that form for a null-pointer report.
std::string NullMessage(const std::string &strFile, const std::string &strFunction,
                        const std::string &strPointer);

// ---- standard output ----

// What was printed since Reset() or the last call; line numbers of allocation reports replaced by #.
std::string TakeStdout();

// ---- platform calls ----

// Every platform call as one line of text, in order, for example
//   "DB_Open", "DB_Get 0x10810000 184 -> 0", "DB_Put 0x10810200 16 lib_fru_db.c -> 0", "DB_Del 0x10810200 ->
//   0", "EEPROM read type=9 bus=1 addr=0xa0 switch=0 off=0x10 len=8 -> 8", "MRPC 636/0 len=184 timeout=0 ->
//   0", "MRPC_MsgFree", "OPERATELOG 17 99 [Set FRU successfully, Device ID: 1.] 0 0 12 -> 0".
// The parameter keeps those that begin with it.
std::vector<std::string> Calls(const std::string &strPrefix = "");

// ---- faults ----

enum class KIND_E
{
    ALLOC,      // malloc, calloc, realloc
    DB,         // DB_Open (null), DB_Get, DB_PutInternal, DB_Del (0x81000001)
    EEPROM,     // ReadWriteEEPROM (-1, or short)
    FILE_CALL,  // file calls of the platform and of the C library (or short)
    RPC,        // MRPC_Call
    OPERATELOG, // OPERATELOG_AddLogComm
    INI,        // BRIDGE_IniLoadFile, BRIDGE_IniSaveFile, BRIDGE_IniSetStr
    CAPABILITY, // CAP_GetCommonCapabilityWithName
    HWDESC,     // HW_NewNameSpace, HW_LoadXml, HW_GetObjectList
    CLOCK,      // clock_gettime, BMC_TimeStampToIsoTime
    SEMAPHORE,  // sem_init, sem_timedwait (interrupted, or too late)
};
constexpr int g_iKinds = 11;
const char *KindName(KIND_E eKind);

enum class HOW_E
{
    FAIL,
    SHORT, // EEPROM and fread/fwrite: half of the bytes
    TORN,  // EEPROM: half of the bytes are through, and the call fails
    LATE,  // semaphores: not had before the deadline
};
const char *HowName(HOW_E eHow);

struct FAULT_S
{
    KIND_E eKind;
    u32 uiNth; // 1: the first call of that kind after Arm()
    bool bFromThenOn;
    HOW_E eHow = HOW_E::FAIL;
};

void Arm(const FAULT_S &stFault);
void Disarm();

// Calls of a kind since Reset() or Arm().
u32 Count(KIND_E eKind);

// Buffers that malloc and its like gave out and nobody has freed yet.
u32 LiveAllocations();

using COUNTS = std::array<u32, g_iKinds>;

// Every fault that a scenario can meet which made so many calls of each kind: each call of a kind failing, in every way
// that its platform call has, once and from then on.
std::vector<FAULT_S> FaultsOf(const COUNTS &aCounts);

// A scenario: fnSetup runs after Reset(), fnRun is the call under test, fnCheck looks at the outcome (null: no fault).
struct SCENARIO_S
{
    std::function<void()> fnSetup;
    std::function<void()> fnRun;
    std::function<void(const FAULT_S *)> fnCheck;
};

// Plays it once with that fault (null: none). Returns how many buffers were left behind when fnCheck had returned, and
// what fnRun called.
i32 Play(const SCENARIO_S &stScenario, const FAULT_S *pstFault, COUNTS *paCounts = nullptr);

// Plays a scenario without a fault, then with every fault of FaultsOf() but torn transfers. Whatever fails, no buffer may be
// left behind.
void Sweep(const std::function<void()> &fnSetup, const std::function<void()> &fnRun,
           const std::function<void(const FAULT_S *)> &fnCheck);

// ---- clock and semaphores ----

// What the library's clock_gettime says from now on; until then the real time.
void SetTime(int64_t iSeconds, int64_t iNanoseconds);

// How long the library's sem_timedwait really waits for a semaphore that is taken, whatever its deadline
// says; until then as long as the deadline says.
void SetPatience(u32 uiMilliseconds);

// What each sem_timedwait asked for: its deadline less the time that its thread last read from the
// clock, in nanoseconds.
std::vector<int64_t> Waits();

// ---- what the platform holds ----

// Records of the database by key. A get with another length fails with 0x81000001.
std::map<u32, BYTES> &Db();

// The chip at an I2C location; created empty by the first call. Reads and writes past its end are short; a
// chip that no test created answers -1.
BYTES &Eeprom(u8 ucBus, u8 ucAddress);
// A chip behind a device name (EEPROM types other than 9 to 15).
BYTES &EepromByName(const std::string &strName);
// The result of the n-th EEPROM call (1: the first), whatever the chip says; the bytes are transferred
// all the same.
void SetEepromResult(u32 uiNth, i32 iResult);

// Files under a directory of this test's own, named by the controller's absolute path. They are real files.
void WriteFile(const std::string &strPath, const BYTES &vecBytes);
std::optional<BYTES> ReadFile(const std::string &strPath);
std::string RealPath(const std::string &strPath); // for chmod and stat in a test
void MakeDirectory(const std::string &strPath);
// Overrides what BMC_GetFileSize says.
void SetFileSize(const std::string &strPath, i32 iSize);

struct RPC_REQUEST_S
{
    u32 uiService;
    u32 uiMethod;
    u32 uiTimeoutMs;
    bool bWantsAnswer;
    BYTES vecRequest;
};
const std::vector<RPC_REQUEST_S> &RpcRequests();
// Result and texts of every call of a service and method; by default 0 and, when asked for, an
// answer without texts.
void SetRpcAnswer(u32 uiService, u32 uiMethod, u32 uiResult, const std::vector<std::string> &vecTexts = {});

void SetHwOemFlag(u32 uiFlag);  // HW_LIB_GetOemFlag, 0 by default
void SetBmcOemFlag(u32 uiFlag); // BMC_GetOemFlag, 0 by default

// INI files by path and section; a path that is not there cannot be loaded. Numbers are texts.
std::map<std::string, std::map<std::string, std::map<std::string, std::string>>> &Ini();
// Capabilities by "object/name".
std::map<std::string, std::string> &Capabilities();
// Objects of class "FRU" of the hardware description; unset: HW_LoadXml fails.
std::optional<std::vector<HW_FRU_OBJECT_S>> &HwObjects();

} // namespace fake

#endif
