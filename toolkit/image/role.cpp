// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/role.h"

#include "lib_fru.h"

Role RoleOf(const FIELD_ID_S &stField, bool bSlots)
{
    switch (stField.enField) {
    case Field::SerialNumber:
        return Role::Identity;
    case Field::PartNumber:
    case Field::AssetTag:
        return Role::Number;
    case Field::Manufacturer:
    case Field::ProductName:
        return Role::Word;
    case Field::Custom:
        break;
    default:
        return Role::Other;
    }
    const AREA_ROW_S *pstArea = FindAreaRow(stField.enArea);
    if (!bSlots || pstArea == nullptr || stField.uiIndex >= pstArea->stCustom.uiLabels) {
        return Role::Other;
    }
    switch (pstArea->stCustom.uiFirstLabel + stField.uiIndex) {
    case FRU_LABEL_CHASSIS_CUSTOMER_SERIAL_NUMBER:
    case FRU_LABEL_CHASSIS_MAC_ADDRESS:
    case FRU_LABEL_BOARD_TOP_SERIAL_NUMBER:
        return Role::Identity;
    default:
        return Role::Other;
    }
}
