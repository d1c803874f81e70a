// SPDX-License-Identifier: Apache-2.0
#include "eeprom/gpio.h"

#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <memory>

#include "support/host.h"

namespace host {

namespace {

constexpr const char *g_pcLibrary = "libgpiod.so.2";
constexpr const char *g_pcConsumer = "bmcfru";

// Its calls, as its manual gives them.
struct GPIOD_S
{
    void *(*pfnOpen)(const char *pcChip); // by path, name, label or number
    void *(*pfnLine)(void *pChip, unsigned uiLine);
    int (*pfnOutput)(void *pLine, const char *pcConsumer, int iValue);
    int (*pfnSet)(void *pLine, int iValue);
    void (*pfnRelease)(void *pLine);
    void (*pfnClose)(void *pChip);
    std::string strWhy; // why there are none
};

template <typename FUNCTION>
void Find(void *pLibrary, const char *pcName, FUNCTION *pfnFound, std::string *pstrWhy)
{
    *pfnFound = reinterpret_cast<FUNCTION>(dlsym(pLibrary, pcName));
    if (*pfnFound == nullptr) {
        *pstrWhy = std::string(g_pcLibrary) + " has no " + pcName;
    }
}

GPIOD_S Load()
{
    GPIOD_S stGpiod = {};
    void *pLibrary = dlopen(g_pcLibrary, RTLD_NOW | RTLD_LOCAL);
    if (pLibrary == nullptr) {
        stGpiod.strWhy = std::string(g_pcLibrary) + " cannot be loaded (Debian's package libgpiod2)";
        return stGpiod;
    }
    Find(pLibrary, "gpiod_chip_open_lookup", &stGpiod.pfnOpen, &stGpiod.strWhy);
    Find(pLibrary, "gpiod_chip_get_line", &stGpiod.pfnLine, &stGpiod.strWhy);
    Find(pLibrary, "gpiod_line_request_output", &stGpiod.pfnOutput, &stGpiod.strWhy);
    Find(pLibrary, "gpiod_line_set_value", &stGpiod.pfnSet, &stGpiod.strWhy);
    Find(pLibrary, "gpiod_line_release", &stGpiod.pfnRelease, &stGpiod.strWhy);
    Find(pLibrary, "gpiod_chip_close", &stGpiod.pfnClose, &stGpiod.strWhy);
    return stGpiod; // it stays loaded
}

const GPIOD_S &Gpiod()
{
    static const GPIOD_S stGpiod = Load();
    return stGpiod;
}

struct LINE_S
{
    void *pChip;
    void *pLine;
};

int Request(const char *pcChip, u32 uiLine, int iValue, void **ppLine, std::string *pstrWhy)
{
    const GPIOD_S &stGpiod = Gpiod();
    if (!stGpiod.strWhy.empty()) {
        *pstrWhy = stGpiod.strWhy;
        return ENOENT;
    }
    auto upLine = std::make_unique<LINE_S>();
    upLine->pChip = stGpiod.pfnOpen(pcChip);
    if (upLine->pChip == nullptr) {
        const int iError = errno == 0 ? ENOENT : errno;
        *pstrWhy = files::Reason(iError);
        return iError;
    }
    upLine->pLine = stGpiod.pfnLine(upLine->pChip, uiLine);
    if (upLine->pLine == nullptr || stGpiod.pfnOutput(upLine->pLine, g_pcConsumer, iValue) != 0) {
        const int iError = errno == 0 ? EIO : errno;
        *pstrWhy = files::Reason(iError);
        stGpiod.pfnClose(upLine->pChip);
        return iError;
    }
    *ppLine = upLine.release();
    return 0;
}

int Set(void *pLine, int iValue)
{
    return Gpiod().pfnSet(static_cast<LINE_S *>(pLine)->pLine, iValue) == 0 ? 0 : errno;
}

void Release(void *pLine)
{
    const std::unique_ptr<LINE_S> upLine(static_cast<LINE_S *>(pLine));
    Gpiod().pfnRelease(upLine->pLine);
    Gpiod().pfnClose(upLine->pChip);
}

constexpr GPIO_S g_stMachine = {Request, Set, Release};
std::atomic<const GPIO_S *> g_pstGpio{&g_stMachine};

} // namespace

void SetGpio(const GPIO_S *pstGpio)
{
    g_pstGpio = pstGpio == nullptr ? &g_stMachine : pstGpio;
}

const GPIO_S &Gpio()
{
    return *g_pstGpio;
}

} // namespace host
