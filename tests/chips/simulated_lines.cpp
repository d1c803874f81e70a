// SPDX-License-Identifier: Apache-2.0
#include "simulated_lines.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <sys/mman.h>

#include <gtest/gtest.h>

#include "eeprom/gpio.h"

namespace chips {

namespace {

SIMULATED_LINES_S *g_pstLines;

int Request(const char *pcChip, u32 uiLine, int iValue, void **ppLine, std::string *pstrWhy)
{
    if (strcmp(pcChip, "gpiochip0") != 0 || uiLine >= LINES) {
        *pstrWhy = "no such line";
        return ENOENT;
    }
    if (g_pstLines->abHeld[uiLine]) {
        *pstrWhy = "busy";
        return EBUSY;
    }
    g_pstLines->abHeld[uiLine] = true;
    g_pstLines->aiValue[uiLine] = iValue;
    g_pstLines->auiSet[uiLine]++;
    *ppLine = &g_pstLines->aiValue[uiLine];
    return 0;
}

int Set(void *pLine, int iValue)
{
    *static_cast<int *>(pLine) = iValue;
    return 0;
}

void Release(void *pLine)
{
    g_pstLines->abHeld[static_cast<int *>(pLine) - g_pstLines->aiValue] = false;
}

constexpr host::GPIO_S SIMULATED = {Request, Set, Release};

} // namespace

SIMULATED_LINES_S &StartLines()
{
    void *pShared =
        mmap(nullptr, sizeof(SIMULATED_LINES_S), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    EXPECT_NE(pShared, MAP_FAILED);
    g_pstLines = new (pShared) SIMULATED_LINES_S();
    std::fill(std::begin(g_pstLines->aiValue), std::end(g_pstLines->aiValue), 1);
    host::SetGpio(&SIMULATED);
    return *g_pstLines;
}

void StopLines()
{
    host::SetGpio(nullptr);
    (void)munmap(g_pstLines, sizeof(SIMULATED_LINES_S));
}

} // namespace chips
