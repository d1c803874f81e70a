// SPDX-License-Identifier: Apache-2.0
// What editing one label of a 2 KiB device costs, and what checking a value costs.
#include <cstring>

#include <benchmark/benchmark.h>

#include "bench_alloc.h"
#include "bench_device.h"
#include "lib_fru.h"
#include "memory/memory_platform.h"

namespace {

void WriteLabel(benchmark::State &state)
{
    bench::Provision(2048U, 0);
    const memory::COUNTS_S stBefore = memory::Counts();
    const uint64_t ulAllocations = bench::Allocations();
    u32 uiRound = 0;
    for ([[maybe_unused]] auto _ : state) {
        FRU_SET_PARA_S stPara{};
        (void)strcpy(stPara.acLabelName, "Product Serial Number");
        (void)strcpy(stPara.acLabelValue, (++uiRound & 1U) != 0U ? "PRD-SERIAL-98765" : "PRD-SERIAL-01234");
        if (LIB_FRU_WriteElectronicLabel(&stPara) != FRU_OK) {
            state.SkipWithError("the label cannot be written");
        }
    }
    const auto fnCounter = [](uint64_t ulNow, uint64_t ulThen) {
        return benchmark::Counter(static_cast<double>(ulNow - ulThen), benchmark::Counter::kAvgIterations);
    };
    const memory::COUNTS_S &stNow = memory::Counts();
    state.counters["allocations"] = fnCounter(bench::Allocations(), ulAllocations);
    state.counters["db_calls"] = fnCounter(stNow.ulDbCalls, stBefore.ulDbCalls);
    state.counters["eeprom_read_bytes"] = fnCounter(stNow.ulEepromReadBytes, stBefore.ulEepromReadBytes);
    state.counters["eeprom_written_bytes"] =
        fnCounter(stNow.ulEepromWrittenBytes, stBefore.ulEepromWrittenBytes);
}
BENCHMARK(WriteLabel);

struct VALUE_S
{
    const char *pcName;
    const char *pcValue;
};
constexpr VALUE_S g_astValues[] = {{"Product Serial Number", "PRD-SERIAL-98765"},
                                   {"Chassis MAC Address", "00A0C9141E3F"},
                                   {"Mfg.Date", "2024-05-17 08:30:00"},
                                   {"Chassis Type", "Rack Mount Chassis"}};

void CheckValue(benchmark::State &state)
{
    const VALUE_S &stValue = g_astValues[state.range(0)];
    char acValue[80];
    for ([[maybe_unused]] auto _ : state) {
        (void)strcpy(acValue, stValue.pcValue);
        if (isLabelValueValid(stValue.pcName, acValue, static_cast<i32>(strlen(acValue)), 0) != 1U) {
            state.SkipWithError("the value is refused");
        }
    }
    state.SetLabel(stValue.pcName);
}
BENCHMARK(CheckValue)->ArgName("value")->DenseRange(0, 3);

} // namespace
