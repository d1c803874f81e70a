// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_write: everything about every label, one row each. The exported table, what the checks
// know beside it, and the setters are made of these rows.
#ifndef LIB_FRU_WRITE_LABEL_ROWS_H
#define LIB_FRU_WRITE_LABEL_ROWS_H

#include "lib_fru_analyzer/fields.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"

// What setting a label changes in the record.
constexpr FRU_TARGET_S FRU_SetsText(FRU_FIELD_ID eField)
{
    return {FRU_SETS_TEXT, eField, 0U};
}

constexpr FRU_TARGET_S FRU_SetsCustom(FRU_AREA_ID eArea, u8 ucSlot)
{
    return {FRU_SETS_CUSTOM, eArea, ucSlot};
}

constexpr FRU_TARGET_S FRU_SetsLanguage(FRU_FIELD_ID eField)
{
    return {FRU_SETS_LANGUAGE, eField, 0U};
}

constexpr FRU_TARGET_S FRU_SetsDate()
{
    return {FRU_SETS_DATE, FRU_FIELD_BOARD_MFG_DATE, 0U};
}

// ID, name, shortest, longest, whether "NONE" is a value; then the rule for other values, what is special,
// and for STORED labels what is set and the setter. OTHER labels are not in the record.
// clang-format off
#define FRU_LABELS(STORED, OTHER)                                                                            \
    STORED(FRU_LABEL_CHASSIS_TYPE, "Chassis Type", 2U, 21U, 0U,                                              \
           FRU_RULE_CHASSIS_TYPE, 0U, FRU_SetsText(FRU_FIELD_CHASSIS_TYPE), setChassisType)                  \
    STORED(FRU_LABEL_CHASSIS_PART_NUMBER, "Chassis Part Number", 2U, FRU_FIELD_MAX_TEXT, 0U,                 \
           FRU_RULE_TEXT, FRU_LONG_PART_NUMBER, FRU_SetsText(FRU_FIELD_CHASSIS_PART), setChassisPartNum)     \
    STORED(FRU_LABEL_CHASSIS_SERIAL_NUMBER, "Chassis Serial Number", 2U, FRU_FIELD_MAX_TEXT, 0U,             \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_CHASSIS_SERIAL), setChassisSerialNum)                   \
    STORED(FRU_LABEL_CHASSIS_CUSTOMER_SERIAL_NUMBER, "Chassis Customer Serial Number", 2U, 20U, 0U,          \
           FRU_RULE_TEXT, 0U, FRU_SetsCustom(FRU_AREA_CHASSIS, 0U), setChassisCustomerSerialNum)             \
    STORED(FRU_LABEL_CHASSIS_MAC_ADDRESS, "Chassis MAC Address", 4U, 12U, 1U,                                \
           FRU_RULE_MAC_ADDRESS, 0U, FRU_SetsCustom(FRU_AREA_CHASSIS, 1U), setChassisMACAddress)             \
    STORED(FRU_LABEL_CHASSIS_MAC_ADDRESS_COUNT, "Chassis MAC Address Count", 2U, 10U, 1U,                    \
           FRU_RULE_TEXT, 0U, FRU_SetsCustom(FRU_AREA_CHASSIS, 2U), setChassisMACAddressCount)               \
    STORED(FRU_LABEL_CHASSIS_CLEI_CODE, "CLEI Code", 2U, FRU_FIELD_MAX_TEXT, 1U,                             \
           FRU_RULE_TEXT, 0U, FRU_SetsCustom(FRU_AREA_CHASSIS, 3U), setChassisClEICode)                      \
    STORED(FRU_LABEL_CHASSIS_LOCATION_NODE_ID, "Chassis Location Node ID", 0U, 20U, 1U,                      \
           FRU_RULE_TEXT, 0U, FRU_SetsCustom(FRU_AREA_CHASSIS, 4U), setChassisLocationNodeID)                \
    STORED(FRU_LABEL_BOARD_LANGUAGE, "Language Code", 1U, 3U, 0U,                                            \
           FRU_RULE_LANGUAGE, 0U, FRU_SetsLanguage(FRU_FIELD_BOARD_LANGUAGE), setBoardLanuageCode)           \
    STORED(FRU_LABEL_BOARD_MFG_DATE, "Mfg.Date", 8U, 19U, 0U,                                                \
           FRU_RULE_DATE, 0U, FRU_SetsDate(), setBoardMfgDate)                                               \
    STORED(FRU_LABEL_BOARD_MANUFACTURER, "Board Manufacturer", 2U, FRU_FIELD_MAX_TEXT, 0U,                   \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_BOARD_MANUFACTURER), setBoardManufacturer)              \
    STORED(FRU_LABEL_BOARD_PRODUCT_NAME, "Board Product Name", 2U, FRU_FIELD_MAX_TEXT, 0U,                   \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_BOARD_NAME), setBoardProductName)                       \
    STORED(FRU_LABEL_BOARD_SERIAL_NUMBER, "Board Serial Number", 2U, FRU_FIELD_MAX_TEXT, 0U,                 \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_BOARD_SERIAL), setBoardSerialNumber)                    \
    STORED(FRU_LABEL_BOARD_PART_NUMBER, "Board Part Number", 2U, 15U, 0U,                                    \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_BOARD_PART), setBoardPartNumber)                        \
    STORED(FRU_LABEL_BOARD_FRU_FILE_ID, "FRU File ID", 2U, FRU_FIELD_MAX_TEXT, 0U,                           \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_BOARD_FILE_ID), setBoardFRUFileID)                      \
    STORED(FRU_LABEL_BOARD_TOP_SERIAL_NUMBER, "Board Top Serial Number", 0U, 20U, 1U,                        \
           FRU_RULE_TEXT, FRU_BLANK_ALLOWED, FRU_SetsCustom(FRU_AREA_BOARD, 0U), setBoardTopSerialNumber)    \
    STORED(FRU_LABEL_PRODUCT_LANGUAGE, "Product Language Code", 1U, 3U, 0U,                                  \
           FRU_RULE_LANGUAGE, 0U, FRU_SetsLanguage(FRU_FIELD_PRODUCT_LANGUAGE), setProductLanguageCode)      \
    STORED(FRU_LABEL_PRODUCT_MANUFACTURER, "Product Manufacturer", 2U, FRU_FIELD_MAX_TEXT, 0U,               \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_PRODUCT_MANUFACTURER), setProductManufacturer)          \
    STORED(FRU_LABEL_PRODUCT_PRODUCT_NAME, "Product Product Name", 2U, FRU_FIELD_MAX_TEXT, 0U,               \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_PRODUCT_NAME), setProductProductName)                   \
    STORED(FRU_LABEL_PRODUCT_SERIAL_NUMBER, "Product Serial Number", 2U, FRU_FIELD_MAX_TEXT, 0U,             \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_PRODUCT_SERIAL), setProductSerialNumber)                \
    STORED(FRU_LABEL_PRODUCT_PART_NUMBER, "Product Part Number", 2U, FRU_FIELD_MAX_TEXT, 0U,                 \
           FRU_RULE_TEXT, FRU_LONG_PART_NUMBER, FRU_SetsText(FRU_FIELD_PRODUCT_PART), setProductPartNumber)  \
    STORED(FRU_LABEL_PRODUCT_VERSION, "Product Version", 2U, FRU_FIELD_MAX_TEXT, 0U,                         \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_PRODUCT_VERSION), setProductVersion)                    \
    STORED(FRU_LABEL_PRODUCT_ASSET_TAG, "Product Asset Tag", 0U, FRU_FIELD_MAX_TEXT, 0U,                     \
           FRU_RULE_TEXT, FRU_BLANK_ALLOWED, FRU_SetsText(FRU_FIELD_PRODUCT_ASSET_TAG), setProductAssetTag)  \
    STORED(FRU_LABEL_PRODUCT_FRU_FILE_ID, "Product FRU File ID", 2U, FRU_FIELD_MAX_TEXT, 0U,                 \
           FRU_RULE_TEXT, 0U, FRU_SetsText(FRU_FIELD_PRODUCT_FILE_ID), setProductFRUFileID)                  \
    STORED(FRU_LABEL_PRODUCT_NODE_TYPE, "Product Node Type", 0U, FRU_FIELD_MAX_TEXT, 1U,                     \
           FRU_RULE_TEXT, FRU_BLANK_ALLOWED, FRU_SetsCustom(FRU_AREA_PRODUCT, 0U), setProductNodeType)       \
    STORED(FRU_LABEL_PRODUCT_NODE_PSU, "Product Node PSU", 0U, FRU_FIELD_MAX_TEXT, 1U,                       \
           FRU_RULE_TEXT, FRU_BLANK_ALLOWED, FRU_SetsCustom(FRU_AREA_PRODUCT, 1U), setProductNodePSU)        \
    STORED(FRU_LABEL_PRODUCT_NODE_NETWORK, "Product Node Network", 0U, FRU_FIELD_MAX_TEXT, 1U,               \
           FRU_RULE_TEXT, FRU_BLANK_ALLOWED, FRU_SetsCustom(FRU_AREA_PRODUCT, 2U), setProductNodeNetwork)    \
    STORED(FRU_LABEL_PRODUCT_NODE_POWER, "Product Node Power", 0U, FRU_FIELD_MAX_TEXT, 1U,                   \
           FRU_RULE_TEXT, FRU_BLANK_ALLOWED, FRU_SetsCustom(FRU_AREA_PRODUCT, 3U), setProductNodePower)      \
    OTHER(FRU_LABEL_HARDWARE, "Hardware FRU Label", 1U, 31U, 0U, FRU_RULE_TEXT, 0U)                          \
    OTHER(FRU_LABEL_PSU_PRODUCT_NAME, "Board Product Name", 1U, 47U, 0U, FRU_RULE_TEXT, 0U)                  \
    OTHER(FRU_LABEL_PSU_SERIAL_NUMBER, "Board Serial Number", 1U, 47U, 0U, FRU_RULE_TEXT, 0U)                \
    OTHER(FRU_LABEL_PSU_MFG_DATE, "Mfg.Date", 1U, 47U, 0U, FRU_RULE_TEXT, 0U)                                \
    OTHER(FRU_LABEL_PSU_MANUFACTURER, "Board Manufacturer", 1U, 47U, 0U, FRU_RULE_TEXT, 0U)                  \
    OTHER(FRU_LABEL_PSU_PART_NUMBER, "Board Part Number", 1U, 21U, 0U, FRU_RULE_TEXT, 0U)
// clang-format on

#endif
