// SPDX-License-Identifier: Apache-2.0
// fructl report: the inventory as one page for a browser.
#include <algorithm>

#include "commands/commands.h"
#include "report/page.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/inventory.h"
#include "toolkit/controller/record_file.h"

namespace {

struct REPORT_S
{
    std::vector<std::string> vecTargets;
    std::vector<std::string> vecFiles;
    std::string strDeviceID;
    OUTPUT_OPTION_S stOutput;
};

std::vector<INVENTORY_S> Inventory(const SESSION_S &stSession, const REPORT_S &stOptions)
{
    std::vector<INVENTORY_S> vecInventory;
    for (const std::string &strTarget : stOptions.vecTargets) {
        vecInventory.push_back(TakeInventory(ResolveTarget(stSession, {strTarget, "", ""})));
    }
    for (const std::string &strFile : stOptions.vecFiles) {
        vecInventory.push_back(TakeInventory(ResolveTarget(stSession, {"", "", strFile})));
    }
    if (!stOptions.strDeviceID.empty()) {
        vecInventory.push_back(TakeInventory(ResolveTarget(stSession, {"", stOptions.strDeviceID, ""})));
    }
    return vecInventory.empty() ? TakeInventory(stSession) : vecInventory;
}

void RunReport(const SESSION_S &stSession, const REPORT_S &stOptions)
{
    const bool bOutput = stOptions.stOutput.IsPipe(stSession);
    const std::vector<INVENTORY_S> vecInventory = Inventory(stSession, stOptions);
    if (vecInventory.empty()) {
        Fail(ErrorClass::NotFound, "the controller in " + stSession.strRoot + " has no devices to report");
    }
    const bool bFilesOnly =
        std::none_of(vecInventory.begin(), vecInventory.end(),
                     [](const INVENTORY_S &stOne) { return stOne.stTarget.optDevice.has_value(); });
    const std::string strOf =
        bFilesOnly ? Count(vecInventory.size(), "image file")
                   : Count(vecInventory.size(), "device") + " of the controller in " + stSession.strRoot;
    const std::string strPage =
        PageHtml(vecInventory, strOf, "Made at " + TimeNow() + " by fructl " FRUCTL_VERSION);
    if (bOutput) {
        Print(strPage);
        return;
    }
    WriteFileBytes(stOptions.stOutput.strFile, {strPage.begin(), strPage.end()});
    size_t uiWrong = 0;
    for (const INVENTORY_S &stOne : vecInventory) {
        uiWrong += stOne.IsGood() ? 0U : 1U;
    }
    if (stSession.bJson) {
        PrintJson({{"file", stOptions.stOutput.strFile},
                   {"size", strPage.size()},
                   {"devices", vecInventory.size()},
                   {"notInOrder", uiWrong}});
        return;
    }
    Print(Paint(Colour::Green, EscapeText(stOptions.stOutput.strFile)) + ": " + EscapeText(strOf) + ", " +
          (uiWrong == 0U ? "all in order" : Paint(Colour::Red, Format("%zu not in order", uiWrong))) + "\n");
}

} // namespace

void AddReportCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<REPORT_S>();
    const Command stCommand =
        stParent.Add("report", "Make one HTML page of devices, fields, health and byte maps",
                     "fructl report -o inventory.html\nfructl report baseboard psu1 -o two.html\n"
                     "fructl report examples/psu1.hex -o psu1.html --force");
    stCommand.AddOption("DEVICE|FILE", pstOptions->vecTargets, "devices or image files; none: all devices");
    stCommand.AddOption("--file", pstOptions->vecFiles, "image files, whatever their names")
        .Placeholder("FILE");
    stCommand.AddOption("--id", pstOptions->strDeviceID, "a device by its FRU device ID, 0 to 255")
        .Placeholder("N");
    AddOutputOption(stCommand, pstOptions->stOutput,
                    "the page to make: one file, which needs no other and no network (-: standard output)")
        .Required();
    stCommand.Run([&stSession, pstOptions] { RunReport(stSession, *pstOptions); });
}
