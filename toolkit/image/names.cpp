// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/names.h"

#include <array>
#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/text.h"

std::string ChassisTypeName(u8 ucType)
{
    // The table of names is the library's own: it decodes an image that has nothing but this type.
    std::array<u8, 32> aucImage = {1, 0, 1, 0, 0, 0, 0, 0xFE, 1, 1, ucType, 0xC0, 0xC0, 0xC1, 0, 0};
    aucImage[15] = static_cast<u8>(0U - (1U + 1U + ucType + 0xC0U + 0xC0U + 0xC1U));
    FRU_DATA_S stData = {};
    std::string strName;
    if (FRU_ANALYZER_InterpretFRUData(aucImage.data(), aucImage.size(), &stData) == FRU_OK) {
        const char *pcName = stData.stChassisInfo.pucChassisType;
        strName = (pcName != nullptr) ? pcName : "";
    }
    FRU_ANALYZER_SafeFree(&stData);
    return strName;
}

std::vector<std::string> ChassisTypeNames()
{
    std::vector<std::string> vecNames;
    for (std::string strName = ChassisTypeName(0U); !strName.empty();
         strName = ChassisTypeName(static_cast<u8>(vecNames.size()))) {
        vecNames.push_back(strName);
    }
    return vecNames;
}

std::string LanguageName(u8 ucLanguage)
{
    return (ucLanguage == 0U || ucLanguage == 25U) ? "English" : Format("code %u", ucLanguage);
}

const char *CompletionCodeName(u8 ucCode)
{
    switch (ucCode) {
    case FRU_CC_OK:
        return "success";
    case FRU_CC_ACCESS_FAILED:
        return "the device could not be accessed";
    case FRU_CC_REQUEST_LENGTH:
        return "request length invalid: no data to write";
    case FRU_CC_COUNT_EXCEEDS:
        return "the count reaches beyond the end of the FRU";
    case FRU_CC_NOT_PRESENT:
        return "no such FRU device, or its cached image cannot be read";
    case FRU_CC_OFFSET_EXCEEDS:
        return "the offset lies at or beyond the end of the FRU";
    default:
        return "not a code that these commands give";
    }
}
