// SPDX-License-Identifier: Apache-2.0
// What a chip holds before anything is written to it, byte by byte.
#ifndef TOOLKIT_IMAGE_ERASED_H
#define TOOLKIT_IMAGE_ERASED_H

#include "lib_fru_types.h"

constexpr u8 ERASED = 0xFFU;

#endif
