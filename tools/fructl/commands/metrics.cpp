// SPDX-License-Identifier: Apache-2.0
// fructl metrics: health and identity of all devices, for Prometheus.
#include "toolkit/controller/metrics.h"

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/inventory.h"

namespace {

void RunMetrics(const SESSION_S &stSession, const std::string &strOutput)
{
    const bool bOutput = strOutput.empty() || IsStandardOutput(strOutput);
    if (bOutput && stSession.bJson) {
        FailUsage("metrics are no JSON, and both want standard output; accepted: -o FILE, or without --json");
    }
    const std::vector<INVENTORY_S> vecInventory = TakeInventory(stSession);
    const std::string strText = MetricsText(vecInventory);
    if (bOutput) {
        Print(strText);
        return;
    }
    WriteFileBytes(strOutput, {strText.begin(), strText.end()});
    if (stSession.bJson) {
        PrintJson({{"file", strOutput}, {"size", strText.size()}, {"devices", vecInventory.size()}});
    } else {
        Print(Paint(Colour::Green, EscapeText(strOutput)) + ": " + Count(vecInventory.size(), "device") +
              "\n");
    }
}

} // namespace

void AddMetricsCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOutput = std::make_shared<std::string>();
    const Command stCommand = stParent.Add("metrics", "Health and identity of all devices as Prometheus text",
                                           "fructl metrics\nfructl metrics -o /tmp/fru.prom");
    stCommand
        .AddOption("-o,--output", *pstOutput,
                   "the file to make, replaced whole when it is there: a *.prom in the folder that a node "
                   "exporter's textfile collector reads (none, or -: standard output)")
        .Placeholder("FILE");
    stCommand.Run([&stSession, pstOutput] { RunMetrics(stSession, *pstOutput); });
}
