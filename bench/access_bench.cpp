// SPDX-License-Identifier: Apache-2.0
// What retrieving a 2 KiB device costs, from the cache and from the EEPROM.
#include <benchmark/benchmark.h>

#include "bench_alloc.h"
#include "bench_device.h"
#include "lib_fru.h"
#include "memory/memory_platform.h"

namespace {

constexpr u32 g_uiSize = 2048U;

void GetFRUData(benchmark::State &state)
{
    bench::Provision(g_uiSize, static_cast<u8>(state.range(0)));
    const memory::COUNTS_S stBefore = memory::Counts();
    const uint64_t ulAllocations = bench::Allocations();
    for ([[maybe_unused]] auto _ : state) {
        FRU_DATA_S stFRUData{};
        if (LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN,
                               FRU_READ_ARG_NONE, &stFRUData) != FRU_OK) {
            state.SkipWithError("the device cannot be read");
        }
        FRU_ANALYZER_SafeFree(&stFRUData);
    }
    const auto fnCounter = [](uint64_t ulNow, uint64_t ulThen) {
        return benchmark::Counter(static_cast<double>(ulNow - ulThen), benchmark::Counter::kAvgIterations);
    };
    const memory::COUNTS_S &stNow = memory::Counts();
    state.counters["allocations"] = fnCounter(bench::Allocations(), ulAllocations);
    state.counters["db_calls"] = fnCounter(stNow.ulDbCalls, stBefore.ulDbCalls);
    state.counters["eeprom_read_bytes"] = fnCounter(stNow.ulEepromReadBytes, stBefore.ulEepromReadBytes);
}
BENCHMARK(GetFRUData)->ArgName("status")->Arg(0)->Arg(1);

} // namespace
