// SPDX-License-Identifier: Apache-2.0
// fructl test-result: the byte that factory and diagnostic tools read.
#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/device.h"

namespace {

struct FAULT_S
{
    u8 ucResultBit;
    u8 ucStatusBit; // of a device's cache status
    const char *pcKey;
};
constexpr FAULT_S FAULTS[] = {{FRU_TEST_RESULT_FAULT_1, FRU_CACHE_FAULT_1, "bit 5"},
                              {FRU_TEST_RESULT_FAULT_2, FRU_CACHE_FAULT_2, "bit 2"}};

// The devices whose cache status carries the mark; one that cannot be read carries none.
std::vector<std::string> Marked(const SESSION_S &stSession, u8 ucStatusBit)
{
    std::vector<std::string> vecNames;
    for (const DEVICE_S &stDevice : LoadDevices(stSession)) {
        u8 ucStatus = 0;
        if (FRU_DB_GetFRUDataCacheStatus(stDevice.stEntry.ucDeviceID, &ucStatus) == FRU_OK &&
            (ucStatus & ucStatusBit) != 0U) {
            vecNames.push_back(stDevice.Title());
        }
    }
    return vecNames;
}

void RunTestResult(const SESSION_S &stSession)
{
    RequireController(stSession);
    u8 ucResult = 0;
    LIB_FRU_GetTestResult(&ucResult);
    Json stBits = Json::object();
    std::string strText =
        Format("test result 0x%02x%s\n", ucResult, ucResult == 0U ? ", no fault marked" : "");
    for (const FAULT_S &stFault : FAULTS) {
        if ((ucResult & stFault.ucResultBit) != 0U) {
            const std::vector<std::string> vecNames = Marked(stSession, stFault.ucStatusBit);
            stBits[stFault.pcKey] = vecNames;
            strText += std::string("  ") + stFault.pcKey + ": " + Join(vecNames, ", ") + "\n";
        }
    }
    if (stSession.bJson) {
        PrintJson({{"testResult", ucResult}, {"faults", stBits}});
    } else {
        Print(strText);
    }
}

} // namespace

void AddTestResultCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stCommand =
        stParent.Add("test-result", "Show the FRU test-result byte and whose faults it tells of",
                     "fructl test-result\nfructl test-result --json");
    stCommand.Run([&stSession] { RunTestResult(stSession); });
}
