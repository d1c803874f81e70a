#include "lib_fru_analyzer/chassis_type.h"

#include <cstring>

// The spellings ("LapTop", "SubChassis", "Sealed-case PC") are what callers compare with.
const FRU_CHASSIS_TYPE_S FRU_ChassisTypeTable[FRU_CHASSIS_TYPE_COUNT] = {
    {0x00U, "Unspecified"},
    {0x01U, "Other"},
    {0x02U, "Unknown"},
    {0x03U, "Desktop"},
    {0x04U, "Low Profile Desktop"},
    {0x05U, "Pizza Box"},
    {0x06U, "Mini Tower"},
    {0x07U, "Tower"},
    {0x08U, "Portable"},
    {0x09U, "LapTop"},
    {0x0AU, "Notebook"},
    {0x0BU, "Hand Held"},
    {0x0CU, "Docking Station"},
    {0x0DU, "All in One"},
    {0x0EU, "Sub Notebook"},
    {0x0FU, "Space-saving"},
    {0x10U, "Lunch Box"},
    {0x11U, "Main Server Chassis"},
    {0x12U, "Expansion Chassis"},
    {0x13U, "SubChassis"},
    {0x14U, "Bus Expansion Chassis"},
    {0x15U, "Peripheral Chassis"},
    {0x16U, "RAID Chassis"},
    {0x17U, "Rack Mount Chassis"},
    {0x18U, "Sealed-case PC"},
    {0x19U, "Multi-system Chassis"},
    {0x1AU, "CompactPCI"},
    {0x1BU, "AdvancedTCA"},
    {0x1CU, "Blade"},
    {0x1DU, "Blade Enclosure"},
};

const FRU_CHASSIS_TYPE_S *FRU_FindChassisTypeByCode(u32 uiCode)
{
    for (const FRU_CHASSIS_TYPE_S &stType : FRU_ChassisTypeTable) {
        if (stType.uiCode == uiCode) {
            return &stType;
        }
    }
    return nullptr;
}

const FRU_CHASSIS_TYPE_S *FRU_FindChassisTypeByDesc(const char *pcDesc)
{
    for (const FRU_CHASSIS_TYPE_S &stType : FRU_ChassisTypeTable) {
        if (strcmp(stType.acDesc, pcDesc) == 0) {
            return &stType;
        }
    }
    return nullptr;
}
