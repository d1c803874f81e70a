// SPDX-License-Identifier: Apache-2.0
// Heap buffers: the guard against zero sizes, and owners that free by themselves.
#ifndef FRU_COMMON_ALLOC_H
#define FRU_COMMON_ALLOC_H

#include <cstdlib>
#include <memory>

#include "lib_fru_types.h"

// Heap memory: FRU_ALLOC with whatever it holds, for who fills every byte; FRU_ZALLOC and FRU_CALLOC
// zero-filled. A size of 0 is refused and reported: by the first two once to the log (severity 3) and once to
// standard output, by FRU_CALLOC twice to standard output, the first text without a line end.
#define FRU_ALLOC(uiSize) FRU_ALLOC_IN((uiSize), __func__)
#define FRU_ZALLOC(uiSize) FRU_ZALLOC_IN((uiSize), __func__)
#define FRU_CALLOC(uiCount, uiSize) FRU_CALLOC_IN((uiCount), (uiSize), __func__)
// A FRU_ALLOC of uiSize bytes filled with those at pData.
#define FRU_COPY(pData, uiSize) FRU_COPY_IN((pData), (uiSize), __func__)
// The same under the name of the function that callers know.
#define FRU_ALLOC_IN(uiSize, pcFunction) FRU_GuardedAlloc((uiSize), __LINE__, (pcFunction), FRU_DIAG_FILE)
#define FRU_COPY_IN(pData, uiSize, pcFunction)                                                               \
    FRU_GuardedCopy((pData), (uiSize), __LINE__, (pcFunction), FRU_DIAG_FILE)
#define FRU_ZALLOC_IN(uiSize, pcFunction) FRU_GuardedZalloc((uiSize), __LINE__, (pcFunction), FRU_DIAG_FILE)
#define FRU_CALLOC_IN(uiCount, uiSize, pcFunction)                                                           \
    FRU_GuardedCalloc((uiCount), (uiSize), __LINE__, (pcFunction), FRU_DIAG_FILE)

void *FRU_GuardedAlloc(size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile);
void *FRU_GuardedCopy(const void *pData, size_t uiSize, u32 uiLine, const char *pcFunction,
                      const char *pcFile);
void *FRU_GuardedZalloc(size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile);
void *FRU_GuardedCalloc(size_t uiCount, size_t uiSize, u32 uiLine, const char *pcFunction,
                        const char *pcFile);

// Frees and nulls; also for pointer members of packed structures, whose address must not be taken.
#define FRU_FREE(pMember)                                                                                    \
    do {                                                                                                     \
        std::free(pMember);                                                                                  \
        (pMember) = nullptr;                                                                                 \
    } while (0)

struct FRU_FREE_DELETER_S
{
    void operator()(void *pBuffer) const
    {
        std::free(pBuffer);
    }
};

// A heap buffer that lives as long as its scope.
using FRU_BUFFER = std::unique_ptr<u8[], FRU_FREE_DELETER_S>;
using FRU_TEXT = std::unique_ptr<char[], FRU_FREE_DELETER_S>;

#endif
