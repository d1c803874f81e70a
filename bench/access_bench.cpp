// What retrieving a 2 KiB device costs, from the cache and from the EEPROM.
#include <benchmark/benchmark.h>

#include "bench_device.h"
#include "bench_platform.h"
#include "lib_fru.h"

namespace {

constexpr u32 g_uiSize = 2048U;

void GetFRUData(benchmark::State &state)
{
    bench::Provision(g_uiSize, static_cast<u8>(state.range(0)));
    const bench::COUNTS_S stBefore = bench::Counts();
    for ([[maybe_unused]] auto _ : state) {
        FRU_DATA_S stFRUData{};
        if (LIB_FRU_GetFRUData(0, 0, 1, 0, &stFRUData) != FRU_OK) {
            state.SkipWithError("the device cannot be read");
        }
        FRU_ANALYZER_SafeFree(&stFRUData);
    }
    const auto fnCounter = [](uint64_t ulNow, uint64_t ulThen) {
        return benchmark::Counter(static_cast<double>(ulNow - ulThen), benchmark::Counter::kAvgIterations);
    };
    const bench::COUNTS_S &stNow = bench::Counts();
    state.counters["allocations"] = fnCounter(stNow.ulAllocations, stBefore.ulAllocations);
    state.counters["db_calls"] = fnCounter(stNow.ulDbCalls, stBefore.ulDbCalls);
    state.counters["eeprom_read_bytes"] = fnCounter(stNow.ulEepromReadBytes, stBefore.ulEepromReadBytes);
}
BENCHMARK(GetFRUData)->ArgName("status")->Arg(0)->Arg(1);

} // namespace
