// SPDX-License-Identifier: Apache-2.0
// The root directory of these tests: a temporary one, under which the write lock lies.
#ifndef TESTS_IPMI_TEST_ROOT_H
#define TESTS_IPMI_TEST_ROOT_H

#include <string>

#include "lib_fru_types.h"

// From now on paths resolve below this directory; empty: no path resolves.
void SetTestRoot(const std::string &strRoot);

// A new empty directory, made the root.
std::string MakeTestRoot();

// A device in the fake platform's database with this image as chip contents and cached image.
void AddDevice(u8 ucDeviceID, const std::string &strName, u16 usSize, u8 ucFirstByte);

// The device table, in this order.
struct TABLE_ROW_S
{
    u8 ucDeviceID;
    u8 ucComponentType;
    u8 ucInstance;
    u16 usRecordID;
};
void PutTable(std::initializer_list<TABLE_ROW_S> lstRows);

#endif
