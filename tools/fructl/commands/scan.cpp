// SPDX-License-Identifier: Apache-2.0
// fructl scan: the EEPROMs of this machine, and what stands in them.
#include "toolkit/controller/scan.h"
#include "bmcfru_host.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

struct SCAN_S
{
    bool bDescribe = false;
    std::string strProbe;
};

constexpr u32 ADAPTER_MAX = 9999;

std::string StateOf(const FOUND_CHIP_S &stChip)
{
    return !stChip.strProblem.empty() ? "unreadable" : stChip.bErased ? "erased" : "no image";
}

Json ChipJson(const FOUND_CHIP_S &stChip)
{
    Json stImages = Json::array();
    for (const FOUND_IMAGE_S &stImage : stChip.vecImages) {
        stImages.push_back({{"offset", stImage.uiOffset},
                            {"size", stImage.uiEnd},
                            {"says", Latin1ToUtf8(stImage.strSays)},
                            {"sound", stImage.strProblem.empty()},
                            {"problem", stImage.strProblem}});
    }
    return {{"bus", stChip.uiAdapter}, {"address", stChip.uiAddress}, {"busName", stChip.strBus},
            {"kind", stChip.strKind},  {"driver", stChip.strDriver},  {"nvmem", stChip.strNvmem},
            {"size", stChip.uiSize},   {"erased", stChip.bErased},    {"problem", stChip.strProblem},
            {"images", stImages}};
}

std::string OrDash(const std::string &strText)
{
    return strText.empty() ? "-" : EscapeText(strText);
}

void PrintChips(const std::vector<FOUND_CHIP_S> &vecChips)
{
    if (vecChips.empty()) {
        Print(
            "The kernel of this machine knows no EEPROM on an I2C bus (the module at24, or an entry in the device "
            "tree, makes them known)\n");
        return;
    }
    Table stTable({">BUS", "ADDRESS", "KIND", "NVMEM", ">BYTES", ">OFFSET", "IMAGE", "SAYS"});
    for (const FOUND_CHIP_S &stChip : vecChips) {
        const std::vector<std::string> vecChip = {
            Format("%u", stChip.uiAdapter), Format("0x%02x", stChip.uiAddress), OrDash(stChip.strKind),
            OrDash(stChip.strNvmem), Format("%llu", static_cast<unsigned long long>(stChip.uiSize))};
        const auto fnRow = [&](const std::string &strOffset, const std::string &strImage,
                               const std::string &strSays, Colour enColour) {
            std::vector<std::string> vecCells = vecChip;
            vecCells.insert(vecCells.end(), {strOffset, strImage, strSays});
            stTable.Row(vecCells, {Colour::None, Colour::None, Colour::None, Colour::None, Colour::None,
                                   Colour::None, enColour, Colour::None});
        };
        for (const FOUND_IMAGE_S &stImage : stChip.vecImages) {
            const bool bSound = stImage.strProblem.empty();
            fnRow(Format("0x%x", stImage.uiOffset), bSound ? "sound" : "damaged",
                  bSound ? ShownText(stImage.strSays) : EscapeText(stImage.strProblem),
                  bSound ? Colour::Green : Colour::Red);
        }
        if (stChip.vecImages.empty()) {
            fnRow("-", StateOf(stChip), OrDash(stChip.strProblem),
                  stChip.strProblem.empty() ? Colour::Dim : Colour::Red);
        }
    }
    Print(stTable.Text());
}

void RunProbe(const SESSION_S &stSession, const std::string &strBus)
{
    const std::optional<u32> optBus = ParseNumber(strBus, ADAPTER_MAX);
    if (!optBus.has_value()) {
        FailUsage("--probe " + EscapeText(strBus) + " is no bus; accepted: the N of /dev/i2c-N, 0 to 9999");
    }
    stSession.Warn(
        Format("bus %u is asked at the addresses 0x50 to 0x57, by reading a byte; there are chips that "
               "take even that amiss",
               *optBus));
    u8 aucFound[BMCHOST_I2C_PROBED] = {};
    char acWhy[512] = "";
    if (BMCHOST_ProbeI2c(*optBus, aucFound, sizeof(acWhy), acWhy) != 0U) {
        Fail(ErrorClass::NoAnswer, Format("bus %u cannot be asked: ", *optBus) + EscapeText(acWhy));
    }
    Json stFound = Json::array();
    Table stTable({"ADDRESS", "FOUND"});
    for (u32 i = 0; i < BMCHOST_I2C_PROBED; i++) {
        const bool bDriver = aucFound[i] == BMCHOST_I2C_DRIVER;
        if (aucFound[i] != BMCHOST_I2C_SILENT) {
            const u32 uiAddress = BMCHOST_I2C_FIRST + i;
            stTable.Row({Format("0x%02x", uiAddress), bDriver
                                                          ? "a driver of the kernel has it; it was not asked"
                                                          : "answers; what it is nobody knows"});
            stFound.push_back({{"address", uiAddress}, {"found", bDriver ? "driver" : "answers"}});
        }
    }
    if (stSession.bJson) {
        PrintJson({{"bus", *optBus}, {"found", stFound}});
        return;
    }
    Print(stFound.empty()
              ? "Nobody answers\n"
              : stTable.Text() + "\nA chip is described by its data sheet, not by trying: bytes of "
                                 "address, page size, write time (examples/README.md)\n");
}

void RunScan(const SESSION_S &stSession, const SCAN_S &stOptions)
{
    if (!stOptions.strProbe.empty()) {
        if (stOptions.bDescribe) {
            FailUsage("--describe and --probe exclude each other; accepted: one of them");
        }
        RunProbe(stSession, stOptions.strProbe);
        return;
    }
    const std::vector<FOUND_CHIP_S> vecChips = ScanChips();
    if (stOptions.bDescribe) {
        const Json stDescription = DescribeChips(vecChips);
        if (stDescription.at("devices").empty()) {
            Fail(ErrorClass::NotFound,
                 "there is nothing to describe: no EEPROM that the kernel knows holds an image or is "
                 "erased ('fructl scan' tells of each)");
        }
        if (stSession.bJson) {
            PrintJson(stDescription);
        } else {
            Print(stDescription.dump(2) + "\n");
        }
        return;
    }
    if (stSession.bJson) {
        Json stChips = Json::array();
        for (const FOUND_CHIP_S &stChip : vecChips) {
            stChips.push_back(ChipJson(stChip));
        }
        PrintJson({{"chips", stChips}});
        return;
    }
    PrintChips(vecChips);
}

} // namespace

void AddScanCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<SCAN_S>();
    const Command stCommand = stParent.Add(
        "scan", "The EEPROMs that this machine's kernel knows, and the images in them; reads only",
        "fructl scan\nfructl scan --describe > /tmp/board.json\nfructl --json scan");
    stCommand.AddFlag(
        "--describe", pstOptions->bDescribe,
        "print a description of those that hold an image or are erased, which 'fructl provision' takes; "
        "names and component types are yours to change");
    stCommand
        .AddOption(
            "--probe", pstOptions->strProbe,
            "ask which addresses of EEPROMs answer on a raw bus (/dev/i2c-BUS) instead; addresses that a driver "
            "has are skipped. Never on a bus whose chips you do not know")
        .Placeholder("BUS");
    stCommand.AddSection(
        "Columns", "",
        {{"BUS, ADDRESS", "Linux's number of the bus, and the seven bits of the wire"},
         {"KIND", "the chip as the device tree or new_device names it"},
         {"NVMEM", "the kernel's other name for its contents, in /sys/bus/nvmem/devices"},
         {"OFFSET", "where the image begins in the chip"},
         {"IMAGE", "sound, damaged, or of a chip without one: erased (0xff where images usually begin), no "
                   "image, unreadable"},
         {"SAYS", "manufacturer, product and serial number, or what is wrong"}});
    stCommand.AddSection(
        "Another tree than /sys",
        "$FRUCTL_SYS names the directory that is looked through in the place of /sys, and $FRUCTL_DEV "
        "that in the place of /dev: for tests, and for containers that have them elsewhere.");
    stCommand.Run([&stSession, pstOptions] { RunScan(stSession, *pstOptions); });
}
