#include "common/alloc.h"

#include <cstdio>
#include <cstdlib>

#include "bmc_support.h"

namespace {

constexpr u32 g_uiModule = 24U;

} // namespace

void *FRU_GuardedMalloc(size_t uiSize, u32 uiLine, const char *pcFunction, const char *pcFile)
{
    if (uiSize == 0U) {
        BMC_DiagLogOut(g_uiModule, 0U, BMC_DIAG_SIZE, uiLine, pcFile,
                       "Invalid MALLOC size (size is 0)is detected");
        (void)printf("Invalid MALLOC size (size is 0)is detected in %d %s %s\n", static_cast<int>(uiLine),
                     pcFunction, pcFile);
        return nullptr;
    }
    return calloc(1U, uiSize);
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
    return calloc(uiCount, uiSize);
}
