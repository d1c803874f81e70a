// SPDX-License-Identifier: Apache-2.0
#include "commands/raw.h"

#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/raw_write.h"
#include "toolkit/image/differences_json.h"
#include "toolkit/image/names.h"

// fructl raw: the IPMI FRU commands, bytes in and bytes out.

namespace {

// The largest response: completion code, count and 255 bytes.
constexpr size_t RESPONSE_MAX = FRU_READ_RES_HEADER_LEN + FRU_READ_COUNT_MAX;

// Data bytes of one write request; the answer tells their number in one byte.
constexpr size_t WRITE_MAX = 255U;

struct RAW_READ_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strOffset = "0";
    std::string strCount = "16";
};

struct RAW_WRITE_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strOffset;
    std::vector<std::string> vecBytes;
    bool bDryRun = false;
};

std::vector<u8> HexOption(const std::string &strText)
{
    std::string strDigits;
    for (const char cChar : strText) {
        strDigits += (cChar == ' ') ? "" : std::string(1U, cChar);
    }
    const bool bHex = strDigits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!bHex || strDigits.empty() || strDigits.size() % 2U != 0U || strDigits.size() / 2U > WRITE_MAX) {
        FailUsage("--bytes " + EscapeText(strText) +
                  Format(" is refused; accepted: 1 to %zu bytes of two hex digits each", WRITE_MAX));
    }
    std::vector<u8> vecBytes;
    for (size_t i = 0; i < strDigits.size(); i += 2U) {
        vecBytes.push_back(static_cast<u8>(std::stoul(strDigits.substr(i, 2U), nullptr, 16)));
    }
    return vecBytes;
}

void RunInfo(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const std::vector<u8> vecRequest = {ResolveDeviceID(stSession, stOptions)};
    std::vector<u8> vecResponse(RESPONSE_MAX);
    // This request opens an update sequence in the database, so it counts as writing.
    const RootLock stLock(stSession);
    vecResponse.resize(
        LIB_FRU_GetFRUAreaInfo(vecRequest.data(), static_cast<u32>(vecRequest.size()), vecResponse.data()));
    ReportExchange(stSession, "Get FRU Inventory Area Info", vecRequest, vecResponse, DiagnosticHint());
}

void RunRead(const SESSION_S &stSession, const RAW_READ_S &stOptions)
{
    const u32 uiOffset = NumberOption("--offset", stOptions.strOffset, 0xFFFFU);
    const u32 uiCount = NumberOption("--count", stOptions.strCount, FRU_READ_COUNT_MAX);
    const std::vector<u8> vecRequest = {ResolveDeviceID(stSession, stOptions.stTarget),
                                        static_cast<u8>(uiOffset), static_cast<u8>(uiOffset >> 8U),
                                        static_cast<u8>(uiCount)};
    std::vector<u8> vecResponse(RESPONSE_MAX);
    vecResponse.resize(
        LIB_FRU_ReadFRUData(vecRequest.data(), static_cast<u8>(vecRequest.size()), vecResponse.data(), 0U));
    ReportExchange(stSession, "Read FRU Data", vecRequest, vecResponse, DiagnosticHint());
}

void RunWrite(const SESSION_S &stSession, const RAW_WRITE_S &stOptions)
{
    const u32 uiOffset = NumberOption("--offset", stOptions.strOffset, 0xFFFFU);
    const std::vector<u8> vecData = HexOption(Join(stOptions.vecBytes, ""));
    std::vector<u8> vecRequest(vecData.size() + FRU_WRITE_REQ_HEADER_LEN);
    vecRequest[0] = ResolveDeviceID(stSession, stOptions.stTarget);
    vecRequest[1] = static_cast<u8>(uiOffset);
    vecRequest[2] = static_cast<u8>(uiOffset >> 8U);
    std::copy(vecData.begin(), vecData.end(), vecRequest.begin() + FRU_WRITE_REQ_HEADER_LEN);
    if (stOptions.bDryRun) {
        const std::vector<BYTE_RUN_S> vecRuns = PlanRaw(stSession, vecRequest);
        if (stSession.bJson) {
            PrintJson({{"command", "Write FRU Data"},
                       {"dryRun", true},
                       {"request", HexBytes(vecRequest)},
                       {"bytes", ByteChangesJson(vecRuns)}});
        } else {
            Print("nothing was written; this would be\n" + ByteChangesText(vecRuns));
        }
        return;
    }
    const RootLock stLock(stSession);
    const RAW_ANSWER_S stAnswer = WriteRaw(stLock, vecRequest);
    ReportExchange(stSession, "Write FRU Data", vecRequest, stAnswer.vecResponse, stAnswer.strHint);
}

void AddWrite(const Command &stRaw, SESSION_S &stSession)
{
    const auto pstWrite = std::make_shared<RAW_WRITE_S>();
    const Command stCommand =
        stRaw.Add("write", "Write FRU Data: bytes as they are, nothing is checked or recomputed",
                  "fructl raw write baseboard --offset 0x20 --bytes \"c4 54 45 53 54\"\n"
                  "fructl raw write --id 2 --offset 0 --bytes 01 --dry-run");
    AddTargetOptions(stCommand, pstWrite->stTarget, false);
    stCommand.AddOption("--offset", pstWrite->strOffset, "first byte, 0 to 0xffff")
        .Placeholder("N")
        .Required();
    stCommand.AddOption("--bytes", pstWrite->vecBytes, "up to 255 bytes in hex, blanks between them or not")
        .Placeholder("HEX")
        .Required();
    stCommand.AddFlag("-n,--dry-run", pstWrite->bDryRun,
                      "show the bytes that would change, and write nothing");
    stCommand.Run([&stSession, pstWrite] { RunWrite(stSession, *pstWrite); });
}

} // namespace

u32 NumberOption(const char *pcOption, const std::string &strText, u32 uiMax)
{
    const std::optional<u32> optNumber = ParseNumber(strText, uiMax);
    if (!optNumber.has_value()) {
        FailUsage(Format("%s %s is refused; accepted: 0 to %u, decimal or 0x", pcOption,
                         EscapeText(strText).c_str(), uiMax));
    }
    return *optNumber;
}

void ReportExchange(const SESSION_S &stSession, const char *pcCommand, const std::vector<u8> &vecRequest,
                    const std::vector<u8> &vecResponse, const std::string &strHint)
{
    const u8 ucCode = vecResponse.empty() ? 0xFFU : vecResponse[0];
    const std::string strCode = Format("0x%02x (%s)", ucCode, CompletionCodeName(ucCode));
    if (stSession.bJson) {
        PrintJson({{"command", pcCommand},
                   {"request", HexBytes(vecRequest)},
                   {"response", HexBytes(vecResponse)},
                   {"completionCode", ucCode},
                   {"meaning", CompletionCodeName(ucCode)}});
    } else {
        Print(Paint(Colour::Bold, pcCommand) + "\n  request   " + HexBytes(vecRequest) + "\n  response  " +
              HexBytes(vecResponse) + "\n  code      " +
              Paint(ucCode == 0U ? Colour::Green : Colour::Red, strCode) + "\n");
    }
    if (ucCode != 0U) {
        Fail(std::string(pcCommand) + " ended with completion code " + strCode + strHint);
    }
}

void AddRawCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stRaw =
        stParent.Add("raw", "Send an IPMI FRU command, bytes in and bytes out",
                     "fructl raw info --id 0\nfructl raw read baseboard --offset 0 --count 8");
    stRaw.RequireCommand();
    const auto pstInfo = std::make_shared<TARGET_OPTIONS_S>();
    const Command stInfoCommand = stRaw.Add("info", "Get FRU Inventory Area Info: size and access type",
                                            "fructl raw info baseboard\nfructl raw info --id 1 --json");
    AddTargetOptions(stInfoCommand, *pstInfo, false);
    stInfoCommand.Run([&stSession, pstInfo] { RunInfo(stSession, *pstInfo); });

    const auto pstRead = std::make_shared<RAW_READ_S>();
    const Command stReadCommand =
        stRaw.Add("read", "Read FRU Data",
                  "fructl raw read baseboard --offset 8 --count 32\nfructl raw read --id 0x02");
    AddTargetOptions(stReadCommand, pstRead->stTarget, false);
    stReadCommand.AddOption("--offset", pstRead->strOffset, "first byte, 0 to 0xffff")
        .Placeholder("N")
        .ShowDefault();
    stReadCommand.AddOption("--count", pstRead->strCount, "how many bytes, 0 to 255")
        .Placeholder("N")
        .ShowDefault();
    stReadCommand.Run([&stSession, pstRead] { RunRead(stSession, *pstRead); });
    AddWrite(stRaw, stSession);
}
