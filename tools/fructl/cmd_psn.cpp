// fructl psn: the file that mirrors the product serial number.
#include "bmcfru_host.h"
#include "commands.h"
#include "console.h"
#include "error.h"
#include "image_file.h"
#include "json_out.h"
#include "text.h"

namespace {

constexpr u32 SERIAL_SIZE = 256U;
constexpr const char *PSN_FILE = "/mnt/sdmmc0p4/board/ProductSerialNumber";
constexpr const char *PSN_COPY = "/var/network/ProductSerialNumber";

// A text or why there is none.
struct FILE_S
{
    std::string strText; // raw
    u32 uiStatus;
    std::string strWhy;
};

// The copy is for the network services; the library only writes it, so it is read as they read it.
std::optional<std::string> ReadCopy()
{
    char acPath[8192] = "";
    if (BMCHOST_ResolvePath(PSN_COPY, sizeof(acPath), acPath) != 0U) {
        return std::nullopt;
    }
    try {
        const std::vector<u8> vecBytes = ReadFileBytes(acPath);
        return std::string(vecBytes.begin(), vecBytes.end());
    } catch (const FRUCTL_ERROR &) {
        return std::nullopt; // missing or unreadable: for its readers that is the same
    }
}

// The file's bytes as the library reads them, zero bytes at the end included: a cleared one holds 80 of them.
// It fills a buffer and tells neither how much it read nor where the text ends; two fillings tell.
FILE_S ReadPrimary()
{
    std::string astrText[2];
    FILE_S stAnswer = {"", FRU_OK, ""};
    for (size_t i = 0; i < std::size(astrText); i++) {
        astrText[i].assign(SERIAL_SIZE, static_cast<char>(i));
        ClearDiagnostics();
        stAnswer.uiStatus = LIB_FRU_GetPSNFromFile(SERIAL_SIZE, astrText[i].data());
        if (stAnswer.uiStatus != FRU_OK) {
            stAnswer.strWhy = StatusText(stAnswer.uiStatus) + DiagnosticHint();
            return stAnswer;
        }
    }
    size_t uiLength = SERIAL_SIZE;
    while (uiLength > 0U && astrText[0][uiLength - 1U] != astrText[1][uiLength - 1U]) {
        uiLength--;
    }
    stAnswer.strText = astrText[0].substr(0, uiLength);
    return stAnswer;
}

std::string PsnText(const std::string &strBytes)
{
    if (strBytes.find_first_not_of('\0') == std::string::npos && !strBytes.empty()) {
        return Format("(cleared: %zu zero bytes)", strBytes.size());
    }
    return strBytes.empty() ? "(empty)" : EscapeText(strBytes);
}

FILE_S ReadProductArea()
{
    char acText[SERIAL_SIZE] = "";
    ClearDiagnostics();
    FILE_S stAnswer = {"", LIB_FRU_GetBaseboardProductSN(sizeof(acText), acText), ""};
    stAnswer.strText = acText;
    if (stAnswer.uiStatus != FRU_OK) {
        stAnswer.strWhy = StatusText(stAnswer.uiStatus) + DiagnosticHint();
    }
    return stAnswer;
}

void RunPsn(const SESSION_S &stSession)
{
    RequireController(stSession);
    const FILE_S stPrimary = ReadPrimary();
    const std::optional<std::string> optCopy = ReadCopy();
    const FILE_S stImage = ReadProductArea();
    const bool bFile = stPrimary.uiStatus == FRU_OK;
    const bool bSame = bFile && optCopy.has_value() && *optCopy == stPrimary.strText;
    const bool bImage = bFile && stImage.uiStatus == FRU_OK && stPrimary.strText.c_str() == stImage.strText;
    if (stSession.bJson) {
        PrintJson({{"file", bFile ? JSON(Latin1ToUtf8(stPrimary.strText)) : JSON()},
                   {"copy", optCopy.has_value() ? JSON(Latin1ToUtf8(*optCopy)) : JSON()},
                   {"image", stImage.uiStatus == FRU_OK ? JSON(Latin1ToUtf8(stImage.strText)) : JSON()},
                   {"status", stPrimary.uiStatus},
                   {"copyIsSame", bSame},
                   {"imageIsSame", bImage}});
    } else {
        TABLE stTable({"PRODUCT SERIAL NUMBER IN", "VALUE"});
        stTable.Row({PSN_FILE, bFile ? PsnText(stPrimary.strText) : "(" + stPrimary.strWhy + ")"});
        stTable.Row({PSN_COPY, optCopy.has_value() ? PsnText(*optCopy) : "(missing)"});
        stTable.Row({"product area of 0x00:0",
                     stImage.strWhy.empty() ? PsnText(stImage.strText) : "(" + stImage.strWhy + ")"});
        Print(stTable.Text());
        if (bFile) {
            Print(std::string(bSame ? "file and copy agree" : "file and copy DIFFER") +
                  (bImage ? "; the product area agrees with the file\n"
                          : "; the product area DIFFERS from the file\n"));
        }
    }
    if (!bFile) {
        Fail("there is no serial number in " + std::string(PSN_FILE) + ": " + stPrimary.strWhy +
             "; setting or clearing the product serial number of 0x00:0 writes it");
    }
}

} // namespace

void AddPsnCommand(CLI::App &stParent, SESSION_S &stSession)
{
    CLI::App *pstCommand = AddCommand(
        stParent, "psn", "The product serial number's file, its copy, and whether they agree with the image",
        "fructl psn\nfructl psn --json");
    pstCommand->callback([&stSession] { stSession.fnRun = [&stSession] { RunPsn(stSession); }; });
}
