// What decoding costs, beside the floor: every image byte summed once, one zeroed buffer for
// every decoded text.
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench_alloc.h"
#include "bench_image.h"
#include "bmc_support.h"
#include "lib_fru.h"

namespace {

void ReportAllocations(benchmark::State &state, uint64_t ulBefore)
{
    state.counters["allocations"] = benchmark::Counter(static_cast<double>(bench::Allocations() - ulBefore),
                                                       benchmark::Counter::kAvgIterations);
}

void Decode(benchmark::State &state)
{
    const std::vector<u8> vecImage = bench::InEeprom(bench::FullImage(), 2048U);
    const uint64_t ulBefore = bench::Allocations();
    for ([[maybe_unused]] auto _ : state) {
        FRU_DATA_S stFRUData{};
        if (FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()), &stFRUData) !=
                FRU_OK ||
            stFRUData.astMultiRecord[6].pucRecordData == nullptr) {
            state.SkipWithError("the image does not decode");
        }
        benchmark::DoNotOptimize(stFRUData);
        FRU_ANALYZER_SafeFree(&stFRUData);
    }
    ReportAllocations(state, ulBefore);
}
BENCHMARK(Decode);

void DecodeFloor(benchmark::State &state)
{
    const bench::IMAGE_S stImage = bench::FullImage();
    std::vector<void *> vecBuffers(stImage.vecTexts.size());
    const uint64_t ulBefore = bench::Allocations();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(
            BMC_CalcZeroCheckSum(stImage.vecBytes.data(), static_cast<u32>(stImage.vecBytes.size())));
        for (size_t i = 0; i < vecBuffers.size(); ++i) {
            vecBuffers[i] = calloc(1U, stImage.vecTexts[i]);
        }
        benchmark::DoNotOptimize(vecBuffers.data());
        for (void *pBuffer : vecBuffers) {
            free(pBuffer);
        }
    }
    ReportAllocations(state, ulBefore);
}
BENCHMARK(DecodeFloor);

void Encode(benchmark::State &state)
{
    const std::vector<u8> vecImage = bench::InEeprom(bench::FullImage(), 2048U);
    FRU_DATA_S stFRUData{};
    if (FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()), &stFRUData) !=
        FRU_OK) {
        state.SkipWithError("the image does not decode");
    }
    std::vector<u8> vecOut(2048U);
    const uint64_t ulBefore = bench::Allocations();
    for ([[maybe_unused]] auto _ : state) {
        if (FRU_ANALYZER_ConvertToArray(&stFRUData, static_cast<u32>(vecOut.size()), vecOut.data()) < 0) {
            state.SkipWithError("the record does not encode");
        }
        benchmark::DoNotOptimize(vecOut.data());
    }
    ReportAllocations(state, ulBefore);
    FRU_ANALYZER_SafeFree(&stFRUData);
}
BENCHMARK(Encode);

} // namespace
