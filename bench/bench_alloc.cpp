// Counts what the library allocates (linked with --wrap).
#include <cstddef>

#include "bench_platform.h"

extern "C" {
void *__real_malloc(size_t uiSize);
void *__real_calloc(size_t uiCount, size_t uiSize);
void *__wrap_malloc(size_t uiSize);
void *__wrap_calloc(size_t uiCount, size_t uiSize);
}

void *__wrap_malloc(size_t uiSize)
{
    ++bench::Counts().ulAllocations;
    return __real_malloc(uiSize);
}

void *__wrap_calloc(size_t uiCount, size_t uiSize)
{
    ++bench::Counts().ulAllocations;
    return __real_calloc(uiCount, uiSize);
}
