// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/oem_conf.h"

#define OEM_TEXT_ROW(pcKey, Member)                                                                          \
    {                                                                                                        \
        (pcKey), offsetof(FRU_OEM_CONF_S, Member)                                                            \
    }

const std::vector<OEM_TEXT_S> &OemTexts()
{
    static const std::vector<OEM_TEXT_S> vecTexts = {
        OEM_TEXT_ROW("copyright_cn", acCopyrightCn),
        OEM_TEXT_ROW("copyright_en", acCopyrightEn),
        OEM_TEXT_ROW("boardmanufacturer", acBoardManufacturer),
        OEM_TEXT_ROW("productmanufacturer", acProductManufacturer),
        OEM_TEXT_ROW("productname", acProductName),
        OEM_TEXT_ROW("qbx", acQbx),
        OEM_TEXT_ROW("productserialnumber", acProductSerialNumber),
        OEM_TEXT_ROW("productassettag", acProductAssetTag),
        OEM_TEXT_ROW("productextra1", acProductExtra1),
        OEM_TEXT_ROW("productextra2", acProductExtra2),
        OEM_TEXT_ROW("productextra3", acProductExtra3),
        OEM_TEXT_ROW("productextra4", acProductExtra4),
        OEM_TEXT_ROW("productpartnumber", acProductPartNumber),
        OEM_TEXT_ROW("chassispartnumber", acChassisPartNumber),
        OEM_TEXT_ROW("boardproductname", acBoardProductName),
        OEM_TEXT_ROW("productversion", acProductVersion),
    };
    return vecTexts;
}
