// SPDX-License-Identifier: Apache-2.0
// The EEPROMs of the machine that this runs on, as its kernel knows them, and what stands in them.
#ifndef TOOLKIT_CONTROLLER_SCAN_H
#define TOOLKIT_CONTROLLER_SCAN_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/base/json.h"

struct FOUND_IMAGE_S
{
    u32 uiOffset;           // in the chip
    u32 uiEnd;              // of its areas, from there
    std::string strSays;    // raw: manufacturer, product, serial number
    std::string strProblem; // what is wrong; empty: it is in order
    bool bChassis;          // it has a chassis area
};

struct FOUND_CHIP_S
{
    u32 uiAdapter;          // Linux's number of the bus
    u32 uiAddress;          // of the wire
    std::string strBus;     // what the bus calls itself
    std::string strKind;    // "24c64", as the kernel was told
    std::string strDriver;  // "at24"
    std::string strNvmem;   // the kernel's name for its contents; empty: none
    uint64_t uiSize;        // as the driver says
    std::string strProblem; // why it cannot be read; empty: it can
    bool bErased;           // where images usually begin every byte is 0xff
    std::vector<FOUND_IMAGE_S> vecImages;

    std::string Name() const; // "4-0050", as the kernel has it
};

// By bus and address. Reads only. An empty list where the machine has no I2C, or nothing on it.
std::vector<FOUND_CHIP_S> ScanChips();

// A description of the chips that hold an image or are erased, for 'provision'. Component types are a beginning: they
// are the product's to choose.
Json DescribeChips(const std::vector<FOUND_CHIP_S> &vecChips);

#endif
