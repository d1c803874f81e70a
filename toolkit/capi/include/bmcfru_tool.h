/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfrutool: what the command line does with images and controllers, for other languages. Bytes and texts go in,
 * JSON comes out: the very documents that 'fructl --json' prints (docs/json.md describes every member), made by the
 * same code, with the same guarantees: a write is journalled before its first byte, read back behind its last, kept
 * in the device's history, and finished or undone by the next call when it was cut short.
 *
 * Every call may be made from any thread. Calls of one controller follow one another; calls of several controllers
 * run side by side, each in a process of its own (bmcfru-worker1, beside this library or in the folder bmcfru/ there),
 * which ends with its controller's handle, or with the program. A worker that is killed costs the call that it was
 * at, which answers BMCFRU_TOOL_FAILED: the next call starts another.
 *
 * Texts are UTF-8 and end with a zero byte. A null pointer where none is allowed answers BMCFRU_TOOL_USAGE.
 *
 * The calls for images set the sink of BMCHOST_SetDiagSink() in the calling process, to pass the library's messages on.
 * Link with -lbmcfrutool.
 */
#ifndef BMCFRU_TOOL_H
#define BMCFRU_TOOL_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- answers ---- */

/* How a call ended: the exit codes of fructl, which do not change. */
#define BMCFRU_TOOL_DONE 0
#define BMCFRU_TOOL_FAILED 1        /* none of the others */
#define BMCFRU_TOOL_USAGE 2         /* what was asked for makes no sense */
#define BMCFRU_TOOL_REFUSED 3       /* a value, a name or what an image holds is not accepted */
#define BMCFRU_TOOL_NOT_FOUND 4     /* no such device, controller or file */
#define BMCFRU_TOOL_NO_ANSWER 5     /* a chip does not answer, or does not keep what is written */
#define BMCFRU_TOOL_DAMAGED 6       /* an image, a record or the database */
#define BMCFRU_TOOL_BUSY 7          /* others kept the controller locked all the time that was waited */
#define BMCFRU_TOOL_NOT_PERMITTED 8 /* the user may not do that there */
#define BMCFRU_TOOL_DISK_FULL 9     /* the disk is full */
#define BMCFRU_TOOL_HALF_WRITTEN 10 /* a write was cut short and could be neither finished nor undone */

/* What a call answers. Every call that answers one gives it to the caller, who frees it; null: no memory. */
typedef struct BMCFRU_TOOL_ANSWER_S BMCFRU_TOOL_ANSWER_S;

/* How it ended. BMCFRU_TOOL_FAILED for null. */
int BMCFRU_TOOL_ExitCode(const BMCFRU_TOOL_ANSWER_S *pstAnswer);

/*
 * The JSON document: an object. Of a call that failed its member "error" says why ({"code", "exitCode", "message"},
 * and "device", "accepted" and "status", the library's own status code, where there are such), beside what was found
 * out before. It lives as long as the answer. An empty text for null.
 */
const char *BMCFRU_TOOL_Json(const BMCFRU_TOOL_ANSWER_S *pstAnswer);

/* The bytes of an answer that has some, and how many; they live as long as the answer. Null and 0 for none. */
const unsigned char *BMCFRU_TOOL_Bytes(const BMCFRU_TOOL_ANSWER_S *pstAnswer, size_t *puiSize);

/*
 * What was said meanwhile: {"warnings": [text, ...], "diagnostics": [{"severity", "file", "line", "text"}, ...]}, the
 * diagnostics being the library's own messages, severities as syslog counts them. It lives as long as the answer.
 */
const char *BMCFRU_TOOL_Messages(const BMCFRU_TOOL_ANSWER_S *pstAnswer);

/* Frees an answer, or null. */
void BMCFRU_TOOL_FreeAnswer(BMCFRU_TOOL_ANSWER_S *pstAnswer);

/* ---- images: no controller is needed or touched ---- */

/* The record that an image holds, as 'fructl show FILE --json' without "file". DAMAGED, REFUSED. */
BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_Decode(const void *pImage, size_t uiSize);

/*
 * The same in short, for who decodes many: the texts of the areas one behind the other in Latin-1, each with a zero
 * byte behind it, into pcOut of uiRoom bytes. The first text is a letter for each area that there is: I (internal
 * use), C (chassis), B (board), P (product), M (MultiRecords, of which nothing more is told). Then in that order the
 * members of each area as Decode names them, the number of custom fields where such an area may have some, and those.
 * A manufacturing date that is not specified is an empty text. How many bytes that is; 0: the image is not accepted,
 * and Decode tells why; more than uiRoom: nothing was stored.
 */
unsigned BMCFRU_TOOL_DecodeTexts(const void *pImage, unsigned uiSize, char *pcOut, unsigned uiRoom);

/*
 * The image of such a record, as bytes, filled up with 0xff to uiImageSize bytes where that is not 0; the document is
 * {"size"}. uiWrap not 0: manufacturing dates beyond the end of their count, too. REFUSED with the path of the member
 * that is not accepted, USAGE for a size that is none.
 */
BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_Encode(const char *pcRecord, size_t uiImageSize, unsigned uiWrap);

/* What is wrong with an image, as a member of "images" of 'fructl verify --json': DONE, whatever it is like. */
BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_VerifyImage(const void *pImage, size_t uiSize);

/* What a damaged image still says, as 'fructl show --lenient --json'. DAMAGED when that is nothing. */
BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_DecodeLeniently(const void *pImage, size_t uiSize);

/* Which byte belongs to which field, as 'fructl map --json'. */
BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_MapImage(const void *pImage, size_t uiSize);

/* ---- controllers ---- */

typedef struct BMCFRU_TOOL_CONTROLLER_S BMCFRU_TOOL_CONTROLLER_S;

#define BMCFRU_TOOL_FOREIGN_ROOT 1U /* for Open: write also to a directory of another user */

/*
 * A handle of the controller in the directory pcRoot; null or empty: $FRUCTL_ROOT, else ~/.local/state/fructl. pcWho
 * stands in its history, its operation log and its lock as the one who works there; null: "libbmcfrutool". A call
 * waits for other programs uiWaitMs milliseconds. Nothing is read: that there is such a controller the calls find out.
 * Null: no memory, or no worker could be started; where ppstWhy is not null it receives an answer that tells.
 *
 * In a child process after fork() a handle has a worker of its own.
 */
BMCFRU_TOOL_CONTROLLER_S *BMCFRU_TOOL_Open(const char *pcRoot, const char *pcWho, unsigned uiWaitMs,
                                           unsigned uiFlags, BMCFRU_TOOL_ANSWER_S **ppstWhy);

/* Ends the worker and frees the handle, or null. No call of it may be under way. */
void BMCFRU_TOOL_Close(BMCFRU_TOOL_CONTROLLER_S *pstController);

/* The process that works for this handle; 0: none at this moment. */
int BMCFRU_TOOL_WorkerPid(BMCFRU_TOOL_CONTROLLER_S *pstController);

/*
 * Makes one call: pcCall is its name, pcArguments a JSON object (null: empty), pBytes what it takes beside (null and 0
 * for none). What comes back is what the command of that name prints with --json; the arguments stand behind it, those
 * in brackets may be missing:
 *
 *   list
 *   show          device [source]        a record
 *   lenient       device [source]        what a damaged image still says
 *   map           device [source]        byte for byte
 *   labelList     [device] [source]      the labels that a device takes and their values; without one, the catalogue
 *   labelGet      device [names] [source]      names: a list; without one every label that has a value
 *   labelSet      device labels [dryRun] [force]      labels: a list of [name, value]
 *   read          device [source]        bytes: the whole image
 *   write         device [dryRun] [force]      takes bytes: the new image
 *   recover       device [from] [dryRun] from: "stored", "history", "cache" or a file's absolute path
 *   history       device
 *   undo          device [to] [dryRun]   to: a number of the history
 *   verify        [device]               DONE, whatever is found: "sound" tells
 *
 * device is a name or "TYPE:INSTANCE" as a text, or a FRU device ID as a number; source is "eeprom" or "cache". A dry
 * run reads, tells what would change and writes nothing. USAGE for a call or an argument that there is not; else as
 * the commands end.
 */
BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_Call(BMCFRU_TOOL_CONTROLLER_S *pstController, const char *pcCall,
                                       const char *pcArguments, const void *pBytes, size_t uiSize);

/* What the worker is: answers calls on a socket until that ends. For bmcfru-worker1 alone. Its exit code. */
int BMCFRU_TOOL_Work(int iSocket);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
