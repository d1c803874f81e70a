// fructl hw: the 32-byte hardware FRU block of a board.
#include <algorithm>
#include <cstring>

#include "commands.h"
#include "console.h"
#include "error.h"
#include "hw_block.h"
#include "json_out.h"
#include "operate_log.h"
#include "record.h"
#include "text.h"
#include "uninterrupted.h"

namespace {

constexpr const char *HARDWARE_LABEL = "Hardware FRU Label";

struct SET_S
{
    TARGET_OPTIONS_S stTarget;
    std::vector<std::string> vecHex;
    std::string strBoardType;
    std::string strPcb;
    std::string strEeprom;
    std::string strCpld;
    bool bDryRun = false;
};

HW_BLOCK_S ReadDeviceBlock(const DEVICE_S &stDevice)
{
    if (stDevice.stInfo.usSize != FRU_HW_DATA_LEN) {
        Fail(stDevice.Title() + Format(" holds %u bytes; a hardware block has exactly %u",
                                       u32{stDevice.stInfo.usSize}, FRU_HW_DATA_LEN));
    }
    FRU_HW_DATA_S stData = {};
    ClearDiagnostics();
    const u32 uiRet =
        LIB_FRU_GetHWFRUData(0U, stDevice.stEntry.ucComponentType, stDevice.stEntry.ucInstance, &stData);
    if (uiRet != FRU_OK) {
        Fail("the hardware block of " + stDevice.Title() + " cannot be read: " + StatusText(uiRet) +
             DiagnosticHint());
    }
    return MakeHardwareBlock(stData);
}

HW_BLOCK_S ReadBlock(const TARGET_S &stTarget)
{
    if (stTarget.optDevice.has_value()) {
        return ReadDeviceBlock(*stTarget.optDevice);
    }
    const IMAGE_S stImage = ReadImage(stTarget.strFile);
    FRU_HW_DATA_S stData = {};
    const u32 uiRet = FRU_ANALYZER_InterpretALLHwFRUData(stImage.vecBytes.data(),
                                                         static_cast<u32>(stImage.uiStored), &stData);
    if (uiRet != FRU_OK) {
        Fail(EscapeText(stTarget.strFile) +
             Format(" is no hardware block: it has %zu bytes, not %u", stImage.uiStored, FRU_HW_DATA_LEN));
    }
    return MakeHardwareBlock(stData);
}

std::string CrcText(u8 ucStored, u8 ucWanted)
{
    return ucStored == ucWanted ? Format("0x%02x ", ucStored) + Paint(COLOUR::Green, "good")
                                : Format("0x%02x ", ucStored) +
                                      Paint(COLOUR::Red, Format("WRONG, should be 0x%02x", ucWanted));
}

// Four bytes in hex, and as text where they are one.
std::string BoardTypeText(const u8 *pucType)
{
    const std::string strText(reinterpret_cast<const char *>(pucType), 4U);
    const bool bText =
        std::all_of(strText.begin(), strText.end(), [](char cChar) { return cChar >= 0x20 && cChar < 0x7F; });
    return HexBytes(pucType, 4U) + (bText ? "  \"" + strText + "\"" : "");
}

std::string BlockText(const HW_BLOCK_S &stBlock)
{
    const FRU_HW_BOARD_INFO_S &stBoard = stBlock.stData.stHwBoardInfo;
    const FRU_HW_DIAG_INFO_S &stDiag = stBlock.stData.stHwDiagInfo;
    return Paint(COLOUR::Bold, "Board information") + "\n  CRC-8           " +
           CrcText(stBoard.ucBoardCrc8, stBlock.ucBoardCrc8) + "\n  board type      " +
           BoardTypeText(stBoard.aucBoardType) + Format("\n  PCB version     0x%02x", stBoard.ucPCBVer) +
           Format("\n  EEPROM version  0x%02x", stBoard.ucEEPROMVer) +
           Format("\n  CPLD version    0x%02x", stBoard.ucCPLDVer) + "\n  reserved        " +
           HexBytes(stBoard.aucBoardReserved, sizeof(stBoard.aucBoardReserved)) + "\n" +
           Paint(COLOUR::Bold, "Diagnostic information") + "\n  CRC-8           " +
           CrcText(stDiag.ucDiagCrc8, stBlock.ucDiagCrc8) + "\n  reserved        " +
           HexBytes(stDiag.aucDiagReserved, sizeof(stDiag.aucDiagReserved)) +
           Format("\n  OEM flag        0x%02x\n", stDiag.ucOEMFlag);
}

JSON BlockJson(const HW_BLOCK_S &stBlock)
{
    const FRU_HW_BOARD_INFO_S &stBoard = stBlock.stData.stHwBoardInfo;
    const FRU_HW_DIAG_INFO_S &stDiag = stBlock.stData.stHwDiagInfo;
    return {{"board",
             {{"crc8", stBoard.ucBoardCrc8},
              {"crc8Wanted", stBlock.ucBoardCrc8},
              {"crc8Good", stBlock.IsBoardGood()},
              {"boardType", HexBytes(stBoard.aucBoardType, sizeof(stBoard.aucBoardType))},
              {"pcbVersion", stBoard.ucPCBVer},
              {"eepromVersion", stBoard.ucEEPROMVer},
              {"cpldVersion", stBoard.ucCPLDVer},
              {"reserved", HexBytes(stBoard.aucBoardReserved, sizeof(stBoard.aucBoardReserved))}}},
            {"diagnostics",
             {{"crc8", stDiag.ucDiagCrc8},
              {"crc8Wanted", stBlock.ucDiagCrc8},
              {"crc8Good", stBlock.IsDiagGood()},
              {"reserved", HexBytes(stDiag.aucDiagReserved, sizeof(stDiag.aucDiagReserved))},
              {"oemFlag", stDiag.ucOEMFlag}}}};
}

void RunShow(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const TARGET_S stTarget = ResolveTarget(stSession, stOptions);
    const HW_BLOCK_S stBlock = ReadBlock(stTarget);
    if (stSession.bJson) {
        JSON stJson = TargetJson(stTarget);
        stJson.update(BlockJson(stBlock));
        PrintJson(stJson);
    } else {
        Print(Paint(COLOUR::Bold, stTarget.Title()) + ", hardware block\n" + BlockText(stBlock));
    }
    if (!stBlock.IsGood()) {
        Fail("the hardware block of " + stTarget.Title() + " is damaged: a CRC-8 is wrong");
    }
}

// One version byte, or the one that is there when the option was not given.
u8 VersionOption(const char *pcOption, const std::string &strText, u8 ucDefault)
{
    if (strText.empty()) {
        return ucDefault;
    }
    const std::optional<u32> optNumber = ParseNumber(strText, 0xFFU);
    if (!optNumber.has_value()) {
        FailUsage(std::string(pcOption) + " " + EscapeText(strText) +
                  " is refused; accepted: 0 to 255, decimal or 0x");
    }
    return static_cast<u8>(*optNumber);
}

HW_LABEL NewLabel(const SET_S &stOptions, const HW_BLOCK_S &stBlock)
{
    HW_LABEL aucLabel = stBlock.Label();
    const std::string strHex = Join(stOptions.vecHex, " ");
    const bool bOptions = !stOptions.strBoardType.empty() || !stOptions.strPcb.empty() ||
                          !stOptions.strEeprom.empty() || !stOptions.strCpld.empty();
    if (strHex.empty() != bOptions) {
        FailUsage("either --bytes or options for some of them are needed; 'fructl hw set --help' "
                  "tells more");
    }
    if (!bOptions) {
        const std::vector<u8> vecBytes = ParseHexBytes(strHex).value_or(std::vector<u8>());
        if (vecBytes.size() != aucLabel.size()) {
            FailUsage("--bytes " + EscapeText(strHex) +
                      " is refused; accepted: seven bytes of two hex digits each: board type (4), PCB, "
                      "EEPROM and CPLD version");
        }
        std::copy(vecBytes.begin(), vecBytes.end(), aucLabel.begin());
        return aucLabel;
    }
    if (!stOptions.strBoardType.empty()) {
        const std::vector<u8> vecType = ParseHexBytes(stOptions.strBoardType).value_or(std::vector<u8>());
        if (vecType.size() != 4U) {
            FailUsage("--board-type " + EscapeText(stOptions.strBoardType) +
                      " is refused; accepted: four bytes of two hex digits each");
        }
        std::copy(vecType.begin(), vecType.end(), aucLabel.begin());
    }
    aucLabel[4] = VersionOption("--pcb", stOptions.strPcb, aucLabel[4]);
    aucLabel[5] = VersionOption("--eeprom", stOptions.strEeprom, aucLabel[5]);
    aucLabel[6] = VersionOption("--cpld", stOptions.strCpld, aucLabel[6]);
    return aucLabel;
}

// Writes the label; the sentence that the library left for the operation log.
std::string WriteLabel(const DEVICE_S &stDevice, const HW_LABEL &aucLabel)
{
    FRU_SET_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    memcpy(stPara.acLabelName, HARDWARE_LABEL, strlen(HARDWARE_LABEL));
    memcpy(stPara.acLabelValue, aucLabel.data(), aucLabel.size());
    const UNINTERRUPTED stUninterrupted;
    ClearDiagnostics();
    const u32 uiRet = LIB_FRU_WriteHWInfo(&stPara);
    const std::string strHint = DiagnosticHint();
    if (stPara.acOperateLog[0] != '\0') {
        RecordOperation(uiRet == FRU_OK, stPara.acOperateLog, stPara.ucOperateLogType);
    }
    if (uiRet != FRU_OK) {
        Fail("the hardware block of " + stDevice.Title() + " could not be written: " + StatusText(uiRet) +
             strHint);
    }
    return stPara.acOperateLog;
}

void RunSet(const SESSION_S &stSession, const SET_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    std::optional<ROOT_LOCK> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const HW_BLOCK_S stBefore = ReadDeviceBlock(stDevice);
    const HW_LABEL aucLabel = NewLabel(stOptions, stBefore);
    std::string strSentence;
    HW_BLOCK_S stAfter = stBefore;
    if (!stOptions.bDryRun) {
        strSentence = WriteLabel(stDevice, aucLabel);
        stAfter = ReadDeviceBlock(stDevice);
        if (stAfter.Label() != aucLabel || !stAfter.IsGood()) {
            Fail("the library reports success, but the EEPROM of " + stDevice.Title() +
                 " does not hold what was written");
        }
    }
    if (stSession.bJson) {
        JSON stJson = {{"device", DeviceJson(stDevice)},
                       {"dryRun", stOptions.bDryRun},
                       {"before", HexBytes(stBefore.Label().data(), HW_LABEL_LEN)},
                       {"after", HexBytes(aucLabel.data(), HW_LABEL_LEN)},
                       {"operationLog", strSentence}};
        PrintJson(stJson);
        return;
    }
    Print("before  " + HexBytes(stBefore.Label().data(), HW_LABEL_LEN) + "\nafter   " +
          HexBytes(aucLabel.data(), HW_LABEL_LEN) + "   board type, PCB, EEPROM and CPLD version\n");
    if (!stBefore.IsGood()) {
        Print(Paint(COLOUR::Yellow, "note") +
              ": a CRC-8 of the block was wrong; writing computes both anew over what is there\n");
    }
    Print(stOptions.bDryRun ? "nothing was written\n" : Paint(COLOUR::Green, EscapeText(strSentence)) + "\n");
}

void AddSet(CLI::App &stHw, SESSION_S &stSession)
{
    const auto pstSet = std::make_shared<SET_S>();
    CLI::App *pstCommand =
        AddCommand(stHw, "set", "Write board type and versions; both CRC-8 bytes are computed anew",
                   "fructl hw set bmc-card-hw --pcb 3\n"
                   "fructl hw set bmc-card-hw --bytes \"42 4d 43 31 02 01 05\" --dry-run");
    AddTargetOptions(pstCommand, pstSet->stTarget, false);
    pstCommand
        ->add_option("--bytes", pstSet->vecHex,
                     "all seven bytes in hex: board type (4), PCB, EEPROM and CPLD version")
        ->type_name("HEX");
    pstCommand->add_option("--board-type", pstSet->strBoardType, "four bytes in hex")->type_name("HEX");
    pstCommand->add_option("--pcb", pstSet->strPcb, "PCB version, 0 to 255")->type_name("N");
    pstCommand->add_option("--eeprom", pstSet->strEeprom, "EEPROM (block layout) version, 0 to 255")
        ->type_name("N");
    pstCommand->add_option("--cpld", pstSet->strCpld, "CPLD version, 0 to 255")->type_name("N");
    pstCommand->add_flag("-n,--dry-run", pstSet->bDryRun, "say what would be written, write nothing");
    pstCommand->callback(
        [&stSession, pstSet] { stSession.fnRun = [&stSession, pstSet] { RunSet(stSession, *pstSet); }; });
}

} // namespace

void AddHwCommand(CLI::App &stParent, SESSION_S &stSession)
{
    CLI::App *pstHw = AddCommand(stParent, "hw", "The 32-byte hardware block of a board: show and set",
                                 "fructl hw show bmc-card-hw\nfructl hw set bmc-card-hw --cpld 0x12");
    pstHw->require_subcommand(1);
    const auto pstShow = std::make_shared<TARGET_OPTIONS_S>();
    CLI::App *pstCommand =
        AddCommand(*pstHw, "show", "Show the block of a device or a file; exit 1 when a CRC-8 is wrong",
                   "fructl hw show bmc-card-hw\nfructl hw show --id 5 --json\nfructl hw show block.hex");
    AddTargetOptions(pstCommand, *pstShow, true);
    pstCommand->callback(
        [&stSession, pstShow] { stSession.fnRun = [&stSession, pstShow] { RunShow(stSession, *pstShow); }; });
    AddSet(*pstHw, stSession);
}
