// SPDX-License-Identifier: Apache-2.0
// Prints the peak of the heap, in bytes, that writing one label on a device of 2 KiB takes.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#include <malloc.h>

#include "bench_device.h"
#include "lib_fru.h"
#include "memory/memory_platform.h"

extern "C" {
void *__real_malloc(size_t uiSize);
void *__real_calloc(size_t uiCount, size_t uiSize);
void __real_free(void *pBuffer);
void *__wrap_malloc(size_t uiSize);
void *__wrap_calloc(size_t uiCount, size_t uiSize);
void __wrap_free(void *pBuffer);
}

namespace {

constexpr u32 g_uiSize = 2048U;
size_t g_uiLive;
size_t g_uiPeak;
u32 g_uiMade;

void *Track(void *pBuffer)
{
    g_uiLive += malloc_usable_size(pBuffer);
    g_uiPeak = g_uiLive > g_uiPeak ? g_uiLive : g_uiPeak;
    ++g_uiMade;
    return pBuffer;
}

} // namespace

void *__wrap_malloc(size_t uiSize)
{
    return Track(__real_malloc(uiSize));
}

void *__wrap_calloc(size_t uiCount, size_t uiSize)
{
    return Track(__real_calloc(uiCount, uiSize));
}

void __wrap_free(void *pBuffer)
{
    g_uiLive -= malloc_usable_size(pBuffer);
    __real_free(pBuffer);
}

int main()
{
    bench::Provision(g_uiSize, 0);
    g_uiLive = 0;
    g_uiPeak = 0;
    g_uiMade = 0;
    FRU_SET_PARA_S stPara{};
    (void)strcpy(stPara.acLabelName, "Product Serial Number");
    (void)strcpy(stPara.acLabelValue, "PRD-SERIAL-98765");
    const u32 uiResult = LIB_FRU_WriteElectronicLabel(&stPara);
    (void)printf("%zu bytes at most in %u buffers, %zu left\n", g_uiPeak, g_uiMade, g_uiLive);
    const std::string strWritten(memory::Eeprom().begin(), memory::Eeprom().end());
    return uiResult == FRU_OK && g_uiLive == 0U && strWritten.find("PRD-SERIAL-98765") != std::string::npos
               ? 0
               : 1;
}
