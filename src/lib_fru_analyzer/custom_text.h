// SPDX-License-Identifier: Apache-2.0
// Custom fields joined into one text.
#ifndef LIB_FRU_ANALYZER_CUSTOM_TEXT_H
#define LIB_FRU_ANALYZER_CUSTOM_TEXT_H

/*
 * Returns pcJoined (a heap text, or null) with the field and a line feed behind it, in a new heap text; the
 * old one is freed. Null when out of memory, pcJoined freed as well, or when the field is null, pcJoined
 * untouched.
 */
char *FRU_AllocCustomField(const char *pucCustomField, char *pcJoined);

#endif
