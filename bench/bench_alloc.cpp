// SPDX-License-Identifier: Apache-2.0
// Counts what the library allocates (linked with --wrap).
#include "bench_alloc.h"

#include <cstddef>
#include <utility>

extern "C" {
void *__real_malloc(size_t uiSize);
void *__real_calloc(size_t uiCount, size_t uiSize);
void *__wrap_malloc(size_t uiSize);
void *__wrap_calloc(size_t uiCount, size_t uiSize);
}

namespace {

uint64_t g_ulAllocations;
bool g_bRecord;
std::vector<size_t> g_vecSizes;

void Note(size_t uiSize)
{
    ++g_ulAllocations;
    if (g_bRecord) {
        g_vecSizes.push_back(uiSize);
    }
}

} // namespace

uint64_t bench::Allocations()
{
    return g_ulAllocations;
}

std::vector<size_t> bench::RecordSizes(bool bRecord)
{
    g_bRecord = bRecord;
    return std::exchange(g_vecSizes, {});
}

void *__wrap_malloc(size_t uiSize)
{
    Note(uiSize);
    return __real_malloc(uiSize);
}

void *__wrap_calloc(size_t uiCount, size_t uiSize)
{
    Note(uiCount * uiSize);
    return __real_calloc(uiCount, uiSize);
}
