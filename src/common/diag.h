// SPDX-License-Identifier: Apache-2.0
// Diagnostic messages. Include this through a module's private header, which says under which file
// name it reports.
#ifndef FRU_COMMON_DIAG_H
#define FRU_COMMON_DIAG_H

#include "bmc_support.h"
#include "lib_fru_types.h"

#ifndef FRU_DIAG_FILE
#error "define FRU_DIAG_FILE (the module's name in its messages) before including common/diag.h"
#endif

#define FRU_DIAG_MODULE 24U

// Categories; which message has which is part of the interface.
#define FRU_CAT_GENERAL 0U
#define FRU_CAT_DEVICE 4U
#define FRU_CAT_DATA 5U

// One message: category, severity, then a format (a literal) and its arguments. The second form names the
// module that it is a message of.
#define FRU_LOG(uiCategory, uiSeverity, ...)                                                                 \
    FRU_LOG_AS(FRU_DIAG_MODULE, (uiCategory), (uiSeverity), __VA_ARGS__)
#define FRU_LOG_AS(uiModule, uiCategory, uiSeverity, ...)                                                    \
    BMC_DiagLogOut((uiModule), (uiCategory), (uiSeverity), __LINE__, FRU_DIAG_FILE, __VA_ARGS__)

// Reports a null pointer under the name that callers know; the second form names the function
// that they called.
#define FRU_LOG_NULL(pcName) FRU_LOG_NULL_IN(pcName, __func__)
#define FRU_LOG_NULL_IN(pcName, pcFunction)                                                                  \
    FRU_ReportNull(FRU_NULL_FORMAT(pcName), FRU_DIAG_FILE, (pcFunction), __LINE__)
#define FRU_NULL_FORMAT(pcName) "Pointer " pcName " is Null, File:%s Func:%s Line:%d"

// The frame's first step: a null pointer is reported under its own name and the function returns uiCode, or
// just returns. The second form names the function that callers called.
#define FRU_REQUIRE(pPointer, uiCode) FRU_REQUIRE_IN(pPointer, uiCode, __func__)
#define FRU_REQUIRE_IN(pPointer, uiCode, pcFunction)                                                         \
    do {                                                                                                     \
        if ((pPointer) == nullptr) {                                                                         \
            FRU_LOG_NULL_IN(#pPointer, pcFunction);                                                          \
            return (uiCode);                                                                                 \
        }                                                                                                    \
    } while (0)
#define FRU_REQUIRE_OR_LEAVE(pPointer)                                                                       \
    do {                                                                                                     \
        if ((pPointer) == nullptr) {                                                                         \
            FRU_LOG_NULL(#pPointer);                                                                         \
            return;                                                                                          \
        }                                                                                                    \
    } while (0)

// The report behind FRU_LOG_NULL; out of line, for there are many of them. pcFormat is a FRU_NULL_FORMAT.
void FRU_ReportNull(const char *pcFormat, const char *pcFile, const char *pcFunction, u32 uiLine);

// How many arguments a format takes, all of them numbers; one that asks for anything else, such as a text,
// takes more than anybody has. What tables of texts are checked with where they stand.
constexpr u32 FRU_CountConversions(const char *pcFormat)
{
    constexpr u32 uiTooMany = 0xFFFFU;
    u32 uiCount = 0;
    for (; pcFormat != nullptr && *pcFormat != '\0'; ++pcFormat) {
        if (*pcFormat != '%') {
            continue;
        }
        const bool bNumber = pcFormat[1] == 'd' || (pcFormat[1] == '#' && pcFormat[2] == 'x');
        uiCount += bNumber ? 1U : uiTooMany;
    }
    return uiCount;
}

// A message out of one of the library's own tables of texts, so not a literal where it is logged, and the
// compiler compares no arguments with it: FRU_CountConversions() does, and nothing that is in no table comes
// this way.
#define FRU_LOG_TABLE(uiCategory, uiSeverity, ...)                                                           \
    do {                                                                                                     \
        _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wformat-nonliteral\"")             \
            _Pragma("GCC diagnostic ignored \"-Wformat-security\"")                                          \
                FRU_LOG((uiCategory), (uiSeverity), __VA_ARGS__);                                            \
        _Pragma("GCC diagnostic pop")                                                                        \
    } while (0)

#endif
