// SPDX-License-Identifier: Apache-2.0
// Hardware description: XML files with one element for each object, named after its class, below
// the root element.
//
//   <hardware>
//     <FRU componentType="0" offset="0" size="2048" selector="1" deviceName="baseboard"/>
//   </hardware>
#include <cstring>
#include <deque>
#include <memory>
#include <pugixml.hpp>
#include <vector>

#include "bmc_hwdesc.h"
#include "support/host.h"

struct HW_NAMESPACE
{
    std::vector<HW_FRU_OBJECT_S> vecObjects;
    std::deque<std::string> deqNames; // what vecObjects points to; a deque's elements stay where they are
};

namespace {

constexpr char g_acFruClass[] = "FRU";

// False, with a message, when an object cannot be used.
bool AddObject(const pugi::xml_node &node, const char *pcPath, HW_NAMESPACE *pstLoaded)
{
    struct
    {
        const char *pcName;
        u32 uiMax;
        u32 uiValue;
    } astNumbers[] = {{"componentType", UINT8_MAX, 0},
                      {"offset", UINT16_MAX, 0},
                      {"size", UINT16_MAX, 0},
                      {"selector", UINT8_MAX, 0}};
    for (auto &stNumber : astNumbers) {
        const char *pcText = node.attribute(stNumber.pcName).value(); // "" when it is missing
        const std::optional<u32> optValue = host::ToNumber(pcText, stNumber.uiMax);
        if (!optValue) {
            HOST_LOG(BMC_DIAG_ERROR, "%s: FRU at byte %ld: %s=\"%s\" is no number from 0 to %u", pcPath,
                     static_cast<long>(node.offset_debug()), stNumber.pcName, pcText, stNumber.uiMax);
            return false;
        }
        stNumber.uiValue = *optValue;
    }
    const char *pcDevice = node.attribute("deviceName").value();
    const u32 uiSelector = astNumbers[3].uiValue;
    // Under these selectors the EEPROM access would read the name's characters as bus and address.
    if (*pcDevice == '\0' || (uiSelector >= 9U && uiSelector <= 15U)) {
        HOST_LOG(BMC_DIAG_ERROR,
                 "%s: FRU at byte %ld: a device name and a selector outside 9 to 15 are needed", pcPath,
                 static_cast<long>(node.offset_debug()));
        return false;
    }
    pstLoaded->deqNames.emplace_back(pcDevice);
    pstLoaded->vecObjects.push_back({static_cast<u8>(astNumbers[0].uiValue),
                                     static_cast<u16>(astNumbers[1].uiValue),
                                     static_cast<u16>(astNumbers[2].uiValue), static_cast<u8>(uiSelector),
                                     pstLoaded->deqNames.back().c_str()});
    return true;
}

u32 LoadXml(HW_NAMESPACE *pstNameSpace, const char *pcPath)
{
    const files::PLACE_S stPlace = host::PlaceOf(pcPath);
    const std::string strPath = stPlace.Text();
    std::string strText;
    const int iError = files::ReadAll(stPlace, host::g_uiTextFileMax, &strText);
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: %s", strPath.c_str(), files::Reason(iError).c_str());
        return host::g_uiFailed;
    }
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(strText.data(), strText.size());
    if (!result) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: byte %ld: %s", strPath.c_str(), static_cast<long>(result.offset),
                 result.description());
        return host::g_uiFailed;
    }
    HW_NAMESPACE stLoaded; // joins the name space when all of the file is good
    for (const pugi::xml_node &node : document.document_element().children(g_acFruClass)) {
        if (!AddObject(node, strPath.c_str(), &stLoaded)) {
            return host::g_uiFailed;
        }
    }
    for (HW_FRU_OBJECT_S stObject : stLoaded.vecObjects) {
        pstNameSpace->deqNames.emplace_back(stObject.pcDeviceName);
        stObject.pcDeviceName = pstNameSpace->deqNames.back().c_str();
        pstNameSpace->vecObjects.push_back(stObject);
    }
    return 0;
}

} // namespace

extern "C" {

HW_NAMESPACE_S *HW_NewNameSpace(void)
{
    return host::Shield<HW_NAMESPACE_S *>(nullptr, [] { return std::make_unique<HW_NAMESPACE>().release(); });
}

u32 HW_LoadXml(HW_NAMESPACE_S *pstNameSpace, const char *pcPath)
{
    return pstNameSpace == nullptr
               ? host::g_uiFailed
               : host::Shield(host::g_uiFailed, [&] { return LoadXml(pstNameSpace, pcPath); });
}

u32 HW_GetObjectList(HW_NAMESPACE_S *pstNameSpace, const char *pcClass, HW_OBJECT_LIST_S *pstList)
{
    if (pstNameSpace == nullptr || pcClass == nullptr || pstList == nullptr ||
        strcmp(pcClass, g_acFruClass) != 0) {
        return host::g_uiFailed;
    }
    *pstList = {static_cast<u32>(pstNameSpace->vecObjects.size()), pstNameSpace->vecObjects.data()};
    return 0;
}

void HW_FreeNameSpace(HW_NAMESPACE_S *pstNameSpace)
{
    delete pstNameSpace;
}

} // extern "C"
