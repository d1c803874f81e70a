// SPDX-License-Identifier: Apache-2.0
// What decoding and encoding cost. Decoding stands beside its floor: every image byte summed once, one malloc
// and one free for every buffer that the decoder makes.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench_alloc.h"
#include "bench_image.h"
#include "bmc_support.h"
#include "lib_fru.h"

// The folder of images that real boards hold; empty: only the image of our own.
#ifndef BMCFRU_CORPUS_DIR
#define BMCFRU_CORPUS_DIR ""
#endif

namespace {

using CLOCK = std::chrono::steady_clock;

constexpr u32 g_uiDeviceSize = 2048U;
constexpr int g_iBatch = 256; // calls between two looks at the clock

// An image where a controller finds it: an area may not end with the device's last byte.
constexpr u32 g_uiTail = 8U;

struct CASE_S
{
    std::vector<u8> vecDevice;
    u32 uiImageSize; // what of it is the image
};

bool DecodeOnce(const std::vector<u8> &vecImage)
{
    FRU_DATA_S stFRUData{};
    const u32 uiRet =
        FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()), &stFRUData);
    benchmark::DoNotOptimize(stFRUData);
    FRU_ANALYZER_SafeFree(&stFRUData);
    return uiRet == FRU_OK;
}

void FloorOnce(const CASE_S &stCase, const std::vector<size_t> &vecSizes, std::vector<void *> &vecBuffers)
{
    benchmark::DoNotOptimize(BMC_CalcZeroCheckSum(stCase.vecDevice.data(), stCase.uiImageSize));
    for (size_t i = 0; i < vecSizes.size(); ++i) {
        vecBuffers[i] = malloc(vecSizes[i]);
    }
    benchmark::DoNotOptimize(vecBuffers.data());
    benchmark::ClobberMemory();
    for (void *pBuffer : vecBuffers) {
        free(pBuffer);
    }
}

template <typename CALL> double Seconds(const CALL &fnCall)
{
    const CLOCK::time_point start = CLOCK::now();
    for (int i = 0; i < g_iBatch; ++i) {
        fnCall();
    }
    return std::chrono::duration<double>(CLOCK::now() - start).count() / g_iBatch;
}

// Both take turns, so that whatever else the machine does hits them alike, and the best turn of each counts:
// read the counters; the benchmark's own time is that of two turns.
void DecodeBesideFloor(benchmark::State &state, const CASE_S &stCase)
{
    bool bDecodes = DecodeOnce(stCase.vecDevice);
    bench::RecordSizes(true);
    bDecodes = bDecodes && DecodeOnce(stCase.vecDevice);
    const std::vector<size_t> vecSizes = bench::RecordSizes(false);
    if (!bDecodes) {
        state.SkipWithError("the image does not decode");
    }
    std::vector<void *> vecBuffers(vecSizes.size());
    double fDecode = std::numeric_limits<double>::max();
    double fFloor = fDecode;
    for ([[maybe_unused]] auto _ : state) {
        fDecode = std::min(fDecode, Seconds([&stCase] { (void)DecodeOnce(stCase.vecDevice); }));
        fFloor = std::min(
            fFloor, Seconds([&stCase, &vecSizes, &vecBuffers] { FloorOnce(stCase, vecSizes, vecBuffers); }));
    }
    state.counters["allocations"] = static_cast<double>(vecSizes.size());
    state.counters["decode_ns"] = fDecode * 1e9;
    state.counters["floor_ns"] = fFloor * 1e9;
    state.counters["times_floor"] = fDecode / fFloor;
}

void Register(const std::string &strName, const CASE_S &stCase)
{
    benchmark::RegisterBenchmark(("Decode/" + strName).c_str(), DecodeBesideFloor, stCase);
}

// Our own image, and those of the folder when there is one.
bool RegisterImages()
{
    const bench::IMAGE_S stImage = bench::FullImage();
    Register("all_areas",
             {bench::InEeprom(stImage, g_uiDeviceSize), static_cast<u32>(stImage.vecBytes.size())});
    std::vector<std::filesystem::path> vecPaths;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(BMCFRU_CORPUS_DIR, error)) {
        if (entry.path().extension() == ".bin") {
            vecPaths.push_back(entry.path());
        }
    }
    std::sort(vecPaths.begin(), vecPaths.end());
    for (const std::filesystem::path &path : vecPaths) {
        std::ifstream stream(path, std::ios::binary);
        std::vector<u8> vecImage((std::istreambuf_iterator<char>(stream)), {});
        const u32 uiImageSize = static_cast<u32>(vecImage.size());
        if (!DecodeOnce(vecImage)) {
            vecImage.resize(vecImage.size() + g_uiTail, 0xFFU);
        }
        Register(path.stem().string(), {vecImage, uiImageSize});
    }
    return true;
}

[[maybe_unused]] const bool g_bRegistered = RegisterImages();

void Encode(benchmark::State &state)
{
    const std::vector<u8> vecImage = bench::InEeprom(bench::FullImage(), g_uiDeviceSize);
    FRU_DATA_S stFRUData{};
    if (FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()), &stFRUData) !=
        FRU_OK) {
        state.SkipWithError("the image does not decode");
    }
    std::vector<u8> vecOut(g_uiDeviceSize);
    const uint64_t ulBefore = bench::Allocations();
    for ([[maybe_unused]] auto _ : state) {
        if (FRU_ANALYZER_ConvertToArray(&stFRUData, static_cast<u32>(vecOut.size()), vecOut.data()) < 0) {
            state.SkipWithError("the record does not encode");
        }
        benchmark::DoNotOptimize(vecOut.data());
    }
    state.counters["allocations"] = benchmark::Counter(static_cast<double>(bench::Allocations() - ulBefore),
                                                       benchmark::Counter::kAvgIterations);
    FRU_ANALYZER_SafeFree(&stFRUData);
}
BENCHMARK(Encode);

} // namespace
