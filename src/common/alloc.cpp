// SPDX-License-Identifier: Apache-2.0
// Serves all modules, so it has no file name of its own.
#define FRU_DIAG_FILE ""

#include "common/alloc.h"

#include <cstdio>
#include <cstring>

#include "common/diag.h"

namespace {

// calloc() by hand: malloc() has memory at hand that calloc() does not look for. The compiler would make a
// calloc() of it if it saw both calls.
[[gnu::noinline]] void *Allocate(size_t uiSize)
{
    return malloc(uiSize);
}

void *AllocateZeroed(size_t uiSize)
{
    void *pBuffer = Allocate(uiSize);
    return pBuffer == nullptr ? nullptr : memset(pBuffer, 0, uiSize);
}

bool IsSizeZero(size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile)
{
    if (uiSize != 0U) {
        return false;
    }
    BMC_DiagLogOut(FRU_DIAG_MODULE, FRU_CAT_GENERAL, BMC_DIAG_SIZE, uiLine, pcFile,
                   "Invalid MALLOC size (size is 0)is detected");
    (void)printf("Invalid MALLOC size (size is 0)is detected in %d %s %s\n", static_cast<int>(uiLine),
                 pcFunction, pcFile);
    return true;
}

} // namespace

void *FRU_GuardedAlloc(size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile)
{
    return IsSizeZero(uiSize, uiLine, pcFunction, pcFile) ? nullptr : malloc(uiSize);
}

void *FRU_GuardedCopy(const void *pData, size_t uiSize, u32 uiLine, const char *pcFunction,
                      const char *pcFile)
{
    void *pBuffer = FRU_GuardedAlloc(uiSize, uiLine, pcFunction, pcFile);
    return pBuffer == nullptr ? nullptr : memcpy(pBuffer, pData, uiSize);
}

void *FRU_GuardedZalloc(size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile)
{
    return IsSizeZero(uiSize, uiLine, pcFunction, pcFile) ? nullptr : AllocateZeroed(uiSize);
}

void *FRU_GuardedCalloc(size_t uiCount, size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile)
{
    if (uiCount == 0U || uiSize == 0U) {
        // Both texts go to standard output, the first as it stands; only its blank before
        // the bracket differs.
        (void)fputs("Invalid CALLOC size (size or nmemb is 0 )is detected", stdout);
        (void)printf("Invalid CALLOC size (size or nmemb is 0)is detected in %d %s %s\n",
                     static_cast<int>(uiLine), pcFunction, pcFile);
        return nullptr;
    }
    return uiSize > SIZE_MAX / uiCount ? nullptr : AllocateZeroed(uiCount * uiSize);
}
