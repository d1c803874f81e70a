/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: hardware description.
 *
 * The product's hardware, from XML files. A name space is used by one thread at a time; different ones are
 * independent. Not for signal handlers. The calls wait for nobody and write nothing.
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
    u16 usOffset;  /* where the image begins inside the EEPROM */
    u16 usSize;    /* image bytes */
    u8 ucSelector; /* first argument of ReadWriteEEPROM(); outside 9 to 15, for a name goes with it */
    const char *pcDeviceName; /* its second; never null or empty */
} HW_FRU_OBJECT_S;

/* Objects of one class in the files' order. They belong to the name space and live until it loads another
 * file or is freed. */
typedef struct
{
    u32 uiCount;
    const HW_FRU_OBJECT_S *pstObject;
} HW_OBJECT_LIST_S;

/* A new, empty name space; null: out of memory. It belongs to the caller until HW_FreeNameSpace(). */
HW_NAMESPACE_S *HW_NewNameSpace(void);

/*
 * Loads an XML file into the name space, behind what was loaded before. 0 for success. Not 0, and the name
 * space as it was: a null argument, a file that cannot be read, is not well-formed or is larger than the
 * platform reads (on the desk 1 MiB), or an object with a
 * value that is missing, malformed or out of range.
 *
 * On the desk every child element of the root element is an object, its name the class; a "FRU" element has
 * the attributes componentType (0 to 255), offset and size (0 to 65535), selector (0 to 8, 16 to 255) and
 * deviceName; numbers are decimal, or 0x and hexadecimal. Other elements and attributes are passed over:
 *
 *   <hardware>
 *     <FRU componentType="0" offset="0" size="2048" selector="1" deviceName="baseboard"/>
 *   </hardware>
 */
u32 HW_LoadXml(HW_NAMESPACE_S *pstNameSpace, const char *pcPath);

/* Fills *pstList with the objects of a class; a class without objects gives a count of 0. Not 0, and *pstList
 * untouched: a null argument, or no such class (this system knows "FRU"). */
u32 HW_GetObjectList(HW_NAMESPACE_S *pstNameSpace, const char *pcClass, HW_OBJECT_LIST_S *pstList);

/* Releases the name space and all that belongs to it; null is allowed. */
void HW_FreeNameSpace(HW_NAMESPACE_S *pstNameSpace);

/* The OEM flag of this controller as the hardware library knows it; 3 (BMC_OEM_MODE): OEM mode. 0 when
 * nothing is said. From any thread. On the desk: see BMC_GetOemFlag(). */
u32 HW_LIB_GetOemFlag(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
