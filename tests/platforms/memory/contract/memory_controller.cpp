// SPDX-License-Identifier: Apache-2.0
// The contract tests' controller in memory. It has no files, settings or journals, so most of the contract is not kept
// here, and a test that asks for more fails.
#include "controller.h"
#include "memory/memory_platform.h"

namespace controller {

const u32 g_uiPageSize = 8;

void Start()
{
    memory::Eeprom().clear();
}

void Stop() {}

std::string RealPath(const std::string &strPath)
{
    ADD_FAILURE() << "no files in memory: " << strPath;
    return "/nowhere" + strPath;
}

void SpoilDatabasePlace()
{
    ADD_FAILURE() << "this database cannot be spoilt";
}

void LayChip(u8 /*ucType*/, const void * /*pLocation*/, const BYTES &vecContent)
{
    memory::Eeprom() = vecContent;
}

BYTES ChipContent(u8 /*ucType*/, const void * /*pLocation*/)
{
    return memory::Eeprom();
}

void ProtectChip(u8 /*ucType*/, const void * /*pLocation*/)
{
    ADD_FAILURE() << "this chip cannot be protected";
}

void SetOemFlag(u32 uiFlag)
{
    ADD_FAILURE() << "no settings in memory: OEM flag " << uiFlag;
}

void SetCapability(const std::string &strObject, const std::string &strName, const std::string & /*strText*/)
{
    ADD_FAILURE() << "no settings in memory: " << strObject << ' ' << strName;
}

void SetFeatureList(const std::vector<std::string> &vecTexts)
{
    ADD_FAILURE() << "no settings in memory: " << vecTexts.size() << " features";
}

std::string HwDescription(const std::vector<HW_OBJECT_TEXT_S> & /*vecObjects*/)
{
    ADD_FAILURE() << "no hardware description in memory";
    return "";
}

std::vector<std::string> Messages()
{
    ADD_FAILURE() << "messages are not kept in memory";
    return {};
}

} // namespace controller
