// Counts what the library allocates (linked with --wrap).
#include "bench_alloc.h"

#include <cstddef>

extern "C" {
void *__real_malloc(size_t uiSize);
void *__real_calloc(size_t uiCount, size_t uiSize);
void *__wrap_malloc(size_t uiSize);
void *__wrap_calloc(size_t uiCount, size_t uiSize);
}

namespace {

uint64_t g_ulAllocations;

} // namespace

uint64_t bench::Allocations()
{
    return g_ulAllocations;
}

void *__wrap_malloc(size_t uiSize)
{
    ++g_ulAllocations;
    return __real_malloc(uiSize);
}

void *__wrap_calloc(size_t uiCount, size_t uiSize)
{
    ++g_ulAllocations;
    return __real_calloc(uiCount, uiSize);
}
