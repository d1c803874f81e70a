/* Platform: key/value database.
 *
 * Exact-length records under 32-bit keys, shared by all processes of the controller. A reader sees whole
 * records only; a record is whole after a writer died. Results are u32, 0 for success.
 */
#ifndef BMC_DB_H
#define BMC_DB_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Opens the database, or returns the handle that this process has open; null: it cannot be opened. Never
 * closed. */
void *DB_Open(void);

/* Copies the record of exactly uiLen bytes into pData. No such key, or another length: not 0, pData
 * untouched. */
u32 DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData);

/* Stores uiLen bytes under the key, replacing what was there. pcFile and uiLine name the caller, for its
 * messages. */
u32 DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine);

/* Deletes the record under *puiKey. No such key: not 0. */
u32 DB_Del(void *pDb, const u32 *puiKey);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
