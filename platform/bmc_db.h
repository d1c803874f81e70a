/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: key/value database.
 *
 * Exact-length records under 32-bit keys, shared by all processes of the controller. Every call is atomic: a
 * reader sees a record as one put left it, never parts of two, whichever processes write meanwhile. A writer
 * that is killed, at whatever moment, loses its last put at most; the records stay whole and nobody waits for
 * the dead. A put that has returned 0 is seen by every get that begins later, in any process, and is there
 * after a power cut. A put of the bytes that are there already writes nothing, so that callers may put what
 * they have not compared.
 *
 * Every call may be made from any thread and, after fork(), from the child as well, with the handle of
 * its parent; none from a signal handler. Descriptors of the database do not reach executed programs.
 * Readers wait for nobody. A put or a delete may wait for those of other processes, 10 seconds at most,
 * and then fails.
 *
 * A damaged database makes calls fail; it is never a reason to crash, or to answer with another record. What
 * has happened is the platform's to tell, in its diagnostics. A failed call may be tried again at any time.
 * A process that may only read the database gets records; its puts and deletes fail.
 *
 * Results are u32, 0 for success.
 */
#ifndef BMC_DB_H
#define BMC_DB_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Opens the database, creating an empty one if there is none, or returns the handle that this process has
 * open, which is cheap: callers open before every call and never close. Null when it can be neither opened
 * nor created or is damaged; a later call tries anew. The handle is the platform's and opaque.
 */
void *DB_Open(void);

/*
 * Copies the record of exactly uiLen bytes into pData, which is the caller's. Not 0, and pData untouched: no
 * such key, a record of another length, a null pData with uiLen above 0, a handle that is none, or a database
 * that cannot be read.
 */
u32 DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData);

/*
 * Stores uiLen bytes under the key, replacing what was there, whatever its length; the bytes are copied.
 * uiLen 0 stores a record of length 0. Records of 65535 bytes at least can be held. pcFile and uiLine name
 * the caller in messages; pcFile may be null. Not 0, and the record as before: a null pData with uiLen above
 * 0, a handle that is none, or a database that cannot be written, stays busy or is full.
 */
u32 DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine);

/* Deletes the record under *puiKey. Not 0: no such key, a null puiKey, a handle that is none, or a database
 * that cannot be written. */
u32 DB_Del(void *pDb, const u32 *puiKey);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
