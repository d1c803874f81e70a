// SPDX-License-Identifier: Apache-2.0
// Asking a chip that no configuration names yet.
#include <cerrno>

#include "eeprom/registry.h"
#include "support/json_line.h"

namespace host {

namespace {

u32 Ask(const std::string &strSettings, u32 *puiCapacity, std::string *pstrWhy)
{
    *pstrWhy = SettingsProblem(strSettings);
    if (!pstrWhy->empty()) {
        return EINVAL;
    }
    const std::string strBackend = JSON::parse(strSettings).at("backend").get<std::string>();
    const BMCHOST_BACKEND_S *pstBackend = FindBackend(strBackend, pstrWhy);
    if (pstBackend == nullptr) {
        return EINVAL; // an image file has no back end
    }
    const std::string strRoot = PlaceOf("/").strBase;
    const BMCHOST_BACKEND_CHIP_S stChip = {"asked", strSettings.c_str(), strRoot.c_str(), 0U};
    BMCHOST_BACKEND_OPEN_S stOpen = {};
    const int iError = pstBackend->pfnOpen(&stChip, &stOpen);
    if (iError != 0) {
        *pstrWhy = stOpen.acWhy[0] == '\0' ? files::Reason(iError) : stOpen.acWhy;
        return static_cast<u32>(iError);
    }
    *puiCapacity = stOpen.uiCapacity;
    pstBackend->pfnClose(&stOpen);
    return 0U;
}

} // namespace

} // namespace host

extern "C" u32 BMCHOST_AskEeprom(const char *pcSettings, u32 *puiCapacity, size_t uiSize, char *pcWhy)
{
    if (pcSettings == nullptr || puiCapacity == nullptr || pcWhy == nullptr || uiSize == 0U) {
        return EINVAL;
    }
    *pcWhy = '\0';
    return host::Shield(u32{EIO}, [&] {
        std::string strWhy;
        const u32 uiError = host::Ask(pcSettings, puiCapacity, &strWhy);
        (void)BMC_Strlcpy(pcWhy, strWhy.c_str(), static_cast<u32>(std::min<size_t>(uiSize, UINT32_MAX)));
        return uiError;
    });
}
