// SPDX-License-Identifier: Apache-2.0
// fructl hw: the 32-byte hardware FRU block of a board.
#include <algorithm>
#include <cstring>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/hardware.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/hardware_label.h"
#include "toolkit/image/hardware_block.h"

namespace {

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

std::string CrcText(u8 ucStored, u8 ucWanted)
{
    return ucStored == ucWanted ? Format("0x%02x ", ucStored) + Paint(Colour::Green, "good")
                                : Format("0x%02x ", ucStored) +
                                      Paint(Colour::Red, Format("WRONG, should be 0x%02x", ucWanted));
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
    return Paint(Colour::Bold, "Board information") + "\n  CRC-8           " +
           CrcText(stBoard.ucBoardCrc8, stBlock.ucBoardCrc8) + "\n  board type      " +
           BoardTypeText(stBoard.aucBoardType) + Format("\n  PCB version     0x%02x", stBoard.ucPCBVer) +
           Format("\n  EEPROM version  0x%02x", stBoard.ucEEPROMVer) +
           Format("\n  CPLD version    0x%02x", stBoard.ucCPLDVer) + "\n  reserved        " +
           HexBytes(stBoard.aucBoardReserved, sizeof(stBoard.aucBoardReserved)) + "\n" +
           Paint(Colour::Bold, "Diagnostic information") + "\n  CRC-8           " +
           CrcText(stDiag.ucDiagCrc8, stBlock.ucDiagCrc8) + "\n  reserved        " +
           HexBytes(stDiag.aucDiagReserved, sizeof(stDiag.aucDiagReserved)) +
           Format("\n  OEM flag        0x%02x\n", stDiag.ucOEMFlag);
}

Json BlockJson(const HW_BLOCK_S &stBlock)
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
        Json stJson = TargetJson(stTarget);
        stJson.update(BlockJson(stBlock));
        PrintJson(stJson);
    } else {
        Print(Paint(Colour::Bold, stTarget.Title()) + ", hardware block\n" + BlockText(stBlock));
    }
    if (!stBlock.IsGood()) {
        Fail(ErrorClass::Damaged,
             "the hardware block of " + stTarget.Title() + " is damaged: a CRC-8 is wrong");
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

HardwareLabel NewLabel(const SET_S &stOptions, const HW_BLOCK_S &stBlock)
{
    HardwareLabel aucLabel = stBlock.Label();
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

void RunSet(const SESSION_S &stSession, const SET_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    std::optional<RootLock> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const HW_BLOCK_S stBefore = ReadDeviceBlock(stDevice);
    const HardwareLabel aucLabel = NewLabel(stOptions, stBefore);
    std::string strSentence;
    if (!stOptions.bDryRun) {
        strSentence = WriteHardwareLabel(*optLock, stDevice, aucLabel);
    }
    if (stSession.bJson) {
        Json stJson = {{"device", DeviceJson(stDevice)},
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
        Print(Paint(Colour::Yellow, "note") +
              ": a CRC-8 of the block was wrong; writing computes both anew over what is there\n");
    }
    Print(stOptions.bDryRun ? "nothing was written\n" : Paint(Colour::Green, EscapeText(strSentence)) + "\n");
}

void AddSet(const Command &stHw, SESSION_S &stSession)
{
    const auto pstSet = std::make_shared<SET_S>();
    const Command stCommand =
        stHw.Add("set", "Write board type and versions; both CRC-8 bytes are computed anew",
                 "fructl hw set bmc-card-hw --pcb 3\n"
                 "fructl hw set bmc-card-hw --bytes \"42 4d 43 31 02 01 05\" --dry-run");
    AddTargetOptions(stCommand, pstSet->stTarget, false);
    stCommand
        .AddOption("--bytes", pstSet->vecHex,
                   "all seven bytes in hex: board type (4), PCB, EEPROM and CPLD version")
        .Placeholder("HEX");
    stCommand.AddOption("--board-type", pstSet->strBoardType, "four bytes in hex").Placeholder("HEX");
    stCommand.AddOption("--pcb", pstSet->strPcb, "PCB version, 0 to 255").Placeholder("N");
    stCommand.AddOption("--eeprom", pstSet->strEeprom, "EEPROM (block layout) version, 0 to 255")
        .Placeholder("N");
    stCommand.AddOption("--cpld", pstSet->strCpld, "CPLD version, 0 to 255").Placeholder("N");
    stCommand.AddFlag("-n,--dry-run", pstSet->bDryRun, "say what would be written, write nothing");
    stCommand.Run([&stSession, pstSet] { RunSet(stSession, *pstSet); });
}

} // namespace

void AddHwCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stHw = stParent.Add("hw", "The 32-byte hardware block of a board: show and set",
                                      "fructl hw show bmc-card-hw\nfructl hw set bmc-card-hw --cpld 0x12");
    stHw.RequireCommand();
    const auto pstShow = std::make_shared<TARGET_OPTIONS_S>();
    const Command stCommand =
        stHw.Add("show", "Show the block of a device or a file; exit 1 when a CRC-8 is wrong",
                 "fructl hw show bmc-card-hw\nfructl hw show --id 5 --json\nfructl hw show block.hex");
    AddTargetOptions(stCommand, *pstShow, true);
    stCommand.Run([&stSession, pstShow] { RunShow(stSession, *pstShow); });
    AddSet(stHw, stSession);
}
