// Type/length-coded fields, decoded as every reader of this system decodes them.
#ifndef TOOLKIT_IMAGE_FIELD_TEXT_H
#define TOOLKIT_IMAGE_FIELD_TEXT_H

#include <string>

#include "lib_fru_types.h"

struct FIELD_TEXT_S
{
    std::string strText; // as every reader decodes it
    std::string strNote; // how it is stored, where that is not plain text
};

// The field whose type/length byte is ucTypeLength and whose uiLength data bytes lie at pucData.
FIELD_TEXT_S FieldText(u8 ucTypeLength, const u8 *pucData, u32 uiLength);

#endif
