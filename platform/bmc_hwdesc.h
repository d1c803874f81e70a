/* Platform: hardware description.
 *
 * The product's hardware, from an XML file.
 */
#ifndef BMC_HWDESC_H
#define BMC_HWDESC_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

typedef struct HW_NAMESPACE HW_NAMESPACE_S;

/* An object of class "FRU": a FRU image in an EEPROM. */
typedef struct
{
    u8 ucComponentType;
    u16 usOffset;             /* where the image begins inside the EEPROM */
    u16 usSize;               /* image bytes */
    u8 ucSelector;            /* first argument of ReadWriteEEPROM() */
    const char *pcDeviceName; /* its second */
} HW_FRU_OBJECT_S;

/* Objects of one class in the file's order; they belong to the name space. */
typedef struct
{
    u32 uiCount;
    const HW_FRU_OBJECT_S *pstObject;
} HW_OBJECT_LIST_S;

/* A new, empty name space; null: out of memory. It belongs to the caller until HW_FreeNameSpace(). */
HW_NAMESPACE_S *HW_NewNameSpace(void);

/* Loads an XML file into the name space. 0 for success. */
u32 HW_LoadXml(HW_NAMESPACE_S *pstNameSpace, const char *pcPath);

/* Fills *pstList with the objects of a class; a class without objects gives a count of 0. Not 0: no such
 * class. */
u32 HW_GetObjectList(HW_NAMESPACE_S *pstNameSpace, const char *pcClass, HW_OBJECT_LIST_S *pstList);

/* Releases the name space and all that belongs to it; null is allowed. */
void HW_FreeNameSpace(HW_NAMESPACE_S *pstNameSpace);

/* The OEM flag of this controller as the hardware library knows it; 3: OEM mode. */
u32 HW_LIB_GetOemFlag(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
