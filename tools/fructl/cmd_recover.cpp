// fructl recover: restores a device whose image has a damaged header from its stored image.
#include <sys/stat.h>

#include "bmcfru_host.h"
#include "commands.h"
#include "console.h"
#include "error.h"
#include "json_out.h"
#include "record.h"
#include "text.h"

namespace {

constexpr u8 READ_WITH_RECOVERY = 2U;
constexpr u8 CACHE_NOT_TRUSTED = 1U;

// Sends reads to the EEPROM for as long as it lives: a good cached image would hide a damaged EEPROM.
class CACHE_BYPASS
{
  public:
    explicit CACHE_BYPASS(u8 ucDeviceID) : m_ucDeviceID(ucDeviceID)
    {
        m_bKnown = FRU_DB_GetFRUDataCacheStatus(ucDeviceID, &m_ucStatus) == FRU_OK;
        if (m_bKnown && (m_ucStatus & CACHE_NOT_TRUSTED) == 0U) {
            const u32 uiRet = FRU_DB_PutFRUDataCacheStatus(ucDeviceID, m_ucStatus | CACHE_NOT_TRUSTED);
            if (uiRet != FRU_OK) {
                Fail("the cache status cannot be written: " + StatusText(uiRet));
            }
        }
    }
    ~CACHE_BYPASS()
    {
        if (m_bKnown && (m_ucStatus & CACHE_NOT_TRUSTED) == 0U) {
            // Should this fail, reads keep going to the EEPROM, which is safe.
            (void)FRU_DB_PutFRUDataCacheStatus(m_ucDeviceID, m_ucStatus);
        }
    }
    CACHE_BYPASS(const CACHE_BYPASS &) = delete;
    CACHE_BYPASS &operator=(const CACHE_BYPASS &) = delete;

  private:
    const u8 m_ucDeviceID;
    u8 m_ucStatus = CACHE_NOT_TRUSTED;
    bool m_bKnown;
};

bool HasValidHeader(const std::vector<u8> &vecBytes)
{
    return vecBytes.size() >= FRU_COMMON_HEADER_LEN &&
           FRU_ANALYZER_CheckValidHeader(vecBytes.data()) == FRU_OK;
}

// Why the stored image could not help, in the order in which the recovery meets the reasons.
std::string WhyNot(const DEVICE_S &stDevice, const std::vector<std::string> &vecSaid)
{
    const std::string strPath = stDevice.ImagePath();
    if (strPath.empty()) {
        return "no stored image is named in its record";
    }
    char acPath[4096] = "";
    struct stat stStat = {};
    if (BMCHOST_ResolvePath(strPath.c_str(), sizeof(acPath), acPath) != 0U || stat(acPath, &stStat) != 0) {
        return "its stored image " + EscapeText(strPath) + " is missing (looked for as " + acPath + ")";
    }
    if (stStat.st_size == 0) {
        return "its stored image " + EscapeText(strPath) + " is empty";
    }
    std::string strWhy = "its stored image " + EscapeText(strPath) + " did not help";
    return vecSaid.empty() ? strWhy : strWhy + " (the library says: " + Join(vecSaid, " | ") + ")";
}

void Report(const SESSION_S &stSession, const DEVICE_S &stDevice, const char *pcOutcome,
            const std::string &strText)
{
    if (stSession.bJson) {
        PrintJson({{"device", DeviceJson(stDevice)},
                   {"outcome", pcOutcome},
                   {"storedImage", stDevice.ImagePath()},
                   {"text", strText}});
    } else {
        Print(Paint(COLOUR::Green, stDevice.Title()) + " " + strText + "\n");
    }
}

void RunRecover(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions);
    const ROOT_LOCK stLock(stSession);
    const IMAGE_S stBefore = ReadTarget({stDevice, ""});
    const bool bWasValid = HasValidHeader(stBefore.vecBytes);
    RECORD stRecord;
    u32 uiRet = FRU_OK;
    {
        const CACHE_BYPASS stBypass(stDevice.stEntry.ucDeviceID);
        ClearDiagnostics();
        uiRet = LIB_FRU_GetFRUData(stDevice.stEntry.ucComponentType, stDevice.stEntry.ucInstance,
                                   READ_WITH_RECOVERY, 0U, stRecord.Data());
    }
    const std::vector<std::string> vecSaid = TakeDiagnostics();
    const std::string strStatus = uiRet == FRU_OK ? "" : StatusText(uiRet);
    const std::string strCannot = stDevice.Title() + " could not be restored: ";
    const IMAGE_S stAfter = ReadTarget({stDevice, ""});
    if (bWasValid && uiRet != FRU_OK) {
        const IMAGE_LAYOUT_S stLayout = LayoutOf(stAfter, stDevice.HasFixedSlots());
        const std::string strFirst =
            stLayout.vecFindings.empty() ? strStatus : FindingText(stLayout.vecFindings.front());
        Fail(stDevice.Title() +
             " is damaged but was not restored: the stored image is used only when the common header is "
             "invalid, and this one is valid; " +
             strFirst);
    }
    if (uiRet == FRU_OK && bWasValid) {
        Report(stSession, stDevice, "fine", "was fine; nothing was written");
    } else if (uiRet == FRU_OK) {
        Report(stSession, stDevice, "restored",
               "was damaged and is restored from " + EscapeText(stDevice.ImagePath()));
    } else if (HasValidHeader(stAfter.vecBytes)) {
        Fail(stDevice.Title() + " was restored from " + EscapeText(stDevice.ImagePath()) +
             ", but that image is itself damaged: " + strStatus);
    } else if (stDevice.IsDatabaseOnly()) {
        Fail(strCannot + "it is served from the cache only; " + strStatus);
    } else {
        Fail(strCannot + WhyNot(stDevice, vecSaid) + "; " + strStatus);
    }
}

} // namespace

void AddRecoverCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<TARGET_OPTIONS_S>();
    CLI::App *pstCommand =
        AddCommand(stParent, "recover", "Restore a device with a damaged header from its stored image",
                   "fructl recover baseboard\nfructl recover --id 0 --json");
    AddTargetOptions(pstCommand, *pstOptions, false);
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunRecover(stSession, *pstOptions); };
    });
}
