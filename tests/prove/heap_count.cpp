// SPDX-License-Identifier: Apache-2.0
#include "prove/heap_count.h"

#include <cstddef>

extern "C" {
void *__real_malloc(size_t uiSize);
void *__real_calloc(size_t uiCount, size_t uiSize);
void *__real_realloc(void *pOld, size_t uiSize);
void __real_free(void *pBuffer);
void *__wrap_malloc(size_t uiSize);
void *__wrap_calloc(size_t uiCount, size_t uiSize);
void *__wrap_realloc(void *pOld, size_t uiSize);
void __wrap_free(void *pBuffer);
}

namespace {

int64_t g_iLive; // one thread only

void *Counted(void *pBuffer)
{
    g_iLive += pBuffer == nullptr ? 0 : 1;
    return pBuffer;
}

} // namespace

namespace prove {

int64_t LiveBuffers()
{
    return g_iLive;
}

} // namespace prove

void *__wrap_malloc(size_t uiSize)
{
    return Counted(__real_malloc(uiSize));
}

void *__wrap_calloc(size_t uiCount, size_t uiSize)
{
    return Counted(__real_calloc(uiCount, uiSize));
}

void *__wrap_realloc(void *pOld, size_t uiSize)
{
    void *pNew = __real_realloc(pOld, uiSize);
    return pOld == nullptr ? Counted(pNew) : pNew;
}

void __wrap_free(void *pBuffer)
{
    g_iLive -= pBuffer == nullptr ? 0 : 1;
    __real_free(pBuffer);
}
