// SPDX-License-Identifier: Apache-2.0
// OEM configuration and software name.
#include <cstring>

#include "bmc_ini.h"
#include "bmc_support.h"
#include "prove/fault_case.h"
#include "prove/world.h"

namespace prove {
namespace {

void OemMode()
{
    fake::SetHwOemFlag(BMC_OEM_MODE);
    fake::SetBmcOemFlag(BMC_OEM_MODE);
}

std::string Conf()
{
    return HexText(&Scratch().stConf, sizeof(Scratch().stConf));
}

std::string Text()
{
    return Scratch().acText;
}

void AddConfCases(CASES &vecCases)
{
    vecCases.push_back({"FRU_GetOEMConfBeforeDeal",
                        "a file",
                        {"oem-defaults"},
                        {},
                        [] {
                            FRU_GetOEMConfBeforeDeal(&Scratch().stConf);
                            return true;
                        },
                        Conf,
                        {}});
    vecCases.push_back({"FRU_GetOEMConf",
                        "names from the FRU",
                        {"oem-defaults", "oem-names-left-empty"},
                        [] {
                            fake::Ini()[OEM_PATH]["oem_configure"] = {{"qbx", "Brand"}};
                        },
                        [] {
                            FRU_GetOEMConf(&Scratch().stConf);
                            return true;
                        },
                        Conf,
                        {}});
    vecCases.push_back({"FRU_SetOEMConf",
                        "six keys that differ",
                        {"oem-given-up", "oem-defaults", "oem-file-not-written"},
                        {},
                        [] {
                            FRU_SetOEMConf();
                            return true;
                        },
                        {},
                        {}});
    vecCases.push_back(
        {"FRU_ReplaceOemConf",
         "another value",
         {"oem-key-not-set"},
         [] { Scratch().pHandle = BRIDGE_IniLoadFile(OEM_PATH); },
         [] {
             FRU_ReplaceOemConf(Scratch().pHandle, "new", "Old", "productname");
             return true;
         },
         [] { return std::string(BRIDGE_IniGetStr(Scratch().pHandle, "oem_configure", "productname", "-")); },
         [] { BRIDGE_IniCloseFile(Scratch().pHandle); }});
}

void AddQueryCases(CASES &vecCases)
{
    vecCases.push_back({"LIB_FRU_GetCopyRight",
                        "English",
                        {"oem-defaults"},
                        {},
                        [] { return LIB_FRU_GetCopyRight(FRU_COPYRIGHT_EN, Scratch().acText) == FRU_OK; },
                        Text,
                        {}});
    vecCases.push_back({"LIB_FRU_CheckOEMFromPackage",
                        "another checkarea",
                        {"oem-defaults"},
                        {},
                        [] { return LIB_FRU_CheckOEMFromPackage(8U, Scratch().acText) == FRU_OK; },
                        Text,
                        {}});
    vecCases.push_back({"FRU_GetProductManufacturer",
                        "in OEM mode",
                        {"oem-defaults"},
                        OemMode,
                        [] { return FRU_GetProductManufacturer(64U, Scratch().acText) == FRU_OK; },
                        Text,
                        {}});
    vecCases.push_back({"FRU_CheckCharaIsLegal",
                        "small letters",
                        {},
                        [] { (void)strcpy(Scratch().acText, "abc1"); },
                        [] { return FRU_CheckCharaIsLegal(Scratch().acText) == FRU_OK; },
                        Text,
                        {}});
    vecCases.push_back({"LIB_FRU_GetBmcLogoFlag",
                        "in OEM mode",
                        {"oem-defaults", "logo-without-its-file"},
                        OemMode,
                        [] {
                            Scratch().uiNumber = LIB_FRU_GetBmcLogoFlag();
                            return true;
                        },
                        [] { return std::to_string(Scratch().uiNumber); },
                        {}});
}

void AddNameCases(CASES &vecCases)
{
    const auto SoftwareName = [] {
        (void)strcpy(Scratch().acText, FRU_GetSoftWareName());
        return true;
    };
    const auto Prefix = [] {
        FRU_GetHostNamePrefix(64U, Scratch().acText);
        return true;
    };
    vecCases.push_back(
        {"FRU_GetSoftWareName", "the capability", {"default-name"}, {}, SoftwareName, Text, {}, true});
    vecCases.push_back(
        {"FRU_GetSoftWareName", "in OEM mode", {"oem-defaults"}, OemMode, SoftwareName, Text, {}, true});
    vecCases.push_back({"FRU_GetHostNamePrefix", "the capability", {"default-name"}, {}, Prefix, Text, {}});
    vecCases.push_back({"FRU_GetHostNamePrefix", "in OEM mode", {"oem-defaults"}, OemMode, Prefix, Text, {}});
}

} // namespace

void AddOemCases(CASES &vecCases)
{
    AddConfCases(vecCases);
    AddQueryCases(vecCases);
    AddNameCases(vecCases);
}

} // namespace prove
