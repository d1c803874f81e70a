// SPDX-License-Identifier: Apache-2.0
// Faults on request: what a chip does that is not there, busy, on a hung bus, cut off or protected.
#include <cerrno>
#include <ctime>

#include "eeprom/chip.h"

namespace host {

namespace {

constexpr size_t g_uiFaultTextMax = 64;
constexpr u32 g_uiStuckMs = 100;
constexpr u32 g_uiStuckMsMax = 10000;

struct FAULT_NAME_S
{
    const char *pcName;
    Fault enFault;
    u32 uiDefault;
    u32 uiMax;
};
constexpr FAULT_NAME_S g_astFaults[] = {
    {"absent", Fault::Absent, 0, 0},
    {"busy", Fault::Busy, 1, 1000000},
    {"stuck", Fault::Stuck, g_uiStuckMs, g_uiStuckMsMax},
    {"torn", Fault::Torn, 0, INT32_MAX},
    {"protected", Fault::Protected, 0, 0},
};

std::string FaultPath(const std::string &strChip)
{
    return BMCHOST_EEPROM_DIR "/" + strChip + ".fault";
}

std::string NextWord(std::string *pstrText)
{
    constexpr char acBlank[] = " \t\r\n";
    const size_t uiBegin = std::min(pstrText->find_first_not_of(acBlank), pstrText->size());
    const size_t uiEnd = std::min(pstrText->find_first_of(acBlank, uiBegin), pstrText->size());
    std::string strWord = pstrText->substr(uiBegin, uiEnd - uiBegin);
    pstrText->erase(0U, uiEnd);
    return strWord;
}

} // namespace

void WaitUs(u32 uiMicroseconds)
{
    struct timespec stLeft = {static_cast<time_t>(uiMicroseconds / 1000000U),
                              static_cast<long>(uiMicroseconds % 1000000U) * 1000L};
    while (nanosleep(&stLeft, &stLeft) != 0 && errno == EINTR) {
    }
}

FAULT_S ReadFault(const std::string &strChip)
{
    std::string strText;
    const files::PLACE_S stPlace = PlaceOf(FaultPath(strChip).c_str());
    const int iError = files::ReadAll(stPlace, g_uiFaultTextMax, &strText);
    if (iError == ENOENT || iError == ENOTDIR) {
        return {Fault::None, 0, false};
    }
    std::string strRest = strText;
    const std::string strName = NextWord(&strRest);
    const std::string strValue = NextWord(&strRest);
    for (const FAULT_NAME_S &stName : g_astFaults) {
        const std::optional<u32> optValue =
            strValue.empty() ? stName.uiDefault : ToNumber(strValue.c_str(), stName.uiMax);
        if (iError == 0 && strName == stName.pcName && optValue && NextWord(&strRest).empty()) {
            return {stName.enFault, *optValue, !strValue.empty()};
        }
    }
    HOST_LOG(BMC_DIAG_WARNING, "%s: %s", stPlace.Text().c_str(),
             iError != 0 ? files::Reason(iError).c_str() : "no fault that is known");
    return {Fault::None, 0, false};
}

void EndFault(const std::string &strChip)
{
    const int iError = files::Remove(WritePlaceOf(FaultPath(strChip).c_str()));
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: the fault stays: %s", strChip.c_str(),
                 files::Reason(iError).c_str());
    }
}

bool FailsByFault(const std::string &strChip, const FAULT_S &stFault)
{
    switch (stFault.enFault) {
    case Fault::Absent:
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: nobody answers", strChip.c_str());
        return true;
    case Fault::Busy:
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: busy", strChip.c_str());
        if (stFault.uiValue > 1U) {
            const std::string strLeft = "busy " + std::to_string(stFault.uiValue - 1U) + "\n";
            (void)files::Replace(WritePlaceOf(FaultPath(strChip).c_str()), strLeft);
        } else {
            EndFault(strChip);
        }
        return true;
    case Fault::Stuck:
        WaitUs(stFault.uiValue * 1000U);
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: the bus hangs", strChip.c_str());
        return true;
    default:
        return false;
    }
}

} // namespace host
