/* libbmcfruhost: what a program on the desk may say to the platform beyond the platform's own calls. */
#ifndef BMCFRU_HOST_H
#define BMCFRU_HOST_H

#include <stddef.h>

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * The directory that is this process's controller. Without this call it is $FRUCTL_ROOT, else
 * ~/.local/state/fructl. Call it before any other: what is open stays where it was. 0, or not 0 when the path
 * is empty or too long.
 */
u32 BMCHOST_SetRoot(const char *pcRoot);

/* The controller's root directory, without a slash at its end. The text lives until the next
 * BMCHOST_SetRoot(). */
const char *BMCHOST_GetRoot(void);

/*
 * Puts the root in front of a controller's path, into pcOut of uiSize bytes. 0, or not 0 (pcOut then empty)
 * when it does not fit or when ".." components would lead out of the root.
 */
u32 BMCHOST_ResolvePath(const char *pcPath, size_t uiSize, char *pcOut);

/* One diagnostic message, its text finished. The pointers live for the call only. */
typedef struct
{
    u32 uiModule;
    u32 uiCategory;
    u32 uiSeverity;
    u32 uiLine;
    const char *pcFile;
    const char *pcFormat;
    const char *pcText;
} BMCHOST_DIAG_S;

/*
 * Where diagnostic messages go from now on: to pfnSink with pContext, or nowhere when it is null (as at the
 * start). The sink is called on the thread that logs, one message at a time.
 */
void BMCHOST_SetDiagSink(void (*pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext), void *pContext);

/* A sink that writes to syslog, for services. pContext is not used. */
void BMCHOST_DiagToSyslog(const BMCHOST_DIAG_S *pstDiag, void *pContext);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
