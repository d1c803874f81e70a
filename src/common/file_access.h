// SPDX-License-Identifier: Apache-2.0
// The two calls with which the library itself touches the file system. A desk build links its own
// version of file_access.cpp, which puts the controller's root directory in front of the path; paths
// here are the controller's.
#ifndef FRU_COMMON_FILE_ACCESS_H
#define FRU_COMMON_FILE_ACCESS_H

#include <cstdio>

// fopen(); null with errno set on failure.
FILE *FRU_OpenFile(const char *pcPath, const char *pcMode);

// Whether the file exists, access(F_OK).
bool FRU_FileExists(const char *pcPath);

#endif
