// SPDX-License-Identifier: Apache-2.0
#include "label_case.h"

#include <gtest/gtest.h>

#include "lib_fru_labels.h"

using fake::BYTES;
using label::DEVICE_S;

namespace cut {
namespace {

// The product serial number that a chip's image has.
BYTES SerialOn(const DEVICE_S &stDevice, const BYTES &vecChip)
{
    const std::string strSerial = label::Decode(ImageOn(stDevice, vecChip))["product.serial"];
    return {strSerial.begin(), strSerial.end()};
}

} // namespace

const CASE_S g_astCases[4] = {
    {"LongerSerial", true, "Product Serial Number", "a serial number that moves all behind it"},
    {"ShorterName", false, "Board Product Name", "short"},
    {"SameLength", true, "Chassis Part Number", "new chassis.part"},
    {"OwnSerial", false, "Product Serial Number", "PSN-2"},
};
const CASE_S &g_stRiserCase = g_astCases[3];

DEVICE_S DeviceOf(const CASE_S &stCase)
{
    DEVICE_S stDevice;
    stDevice.strImagePath = stCase.bBaseboard ? "/opt/fru/BaseBoard.bin" : "/opt/fru/riser.bin";
    stDevice.ucComponentType = stCase.bBaseboard ? 0U : 4U;
    stDevice.ucDeviceID = stCase.bBaseboard ? 0U : 9U;
    stDevice.strFRUName = stCase.bBaseboard ? "Mainboard" : "Riser2";
    return stDevice;
}

LASTING_S StartOf(const DEVICE_S &stDevice)
{
    LASTING_S stStart = cut::Provision(stDevice, label::Encode({}, stDevice.usSize));
    stStart.mapDb[cut::StatusKey(stDevice)] = {g_ucFaultMarks};
    stStart.optSerial =
        BYTES{'o', 'l', 'd', ' ', 'p', 'r', 'o', 'd', 'u', 'c', 't', '.', 's', 'e', 'r', 'i', 'a', 'l'};
    stStart.optSerialCopy = stStart.optSerial;
    return stStart;
}

u32 WritePlainly(const CASE_S &stCase, const DEVICE_S &stDevice)
{
    FRU_SET_PARA_S stBlock = label::Request(stDevice, stCase.pcLabel, stCase.pcValue);
    return LIB_FRU_WriteElectronicLabel(&stBlock);
}

u32 WriteSafely(const CASE_S &stCase, const DEVICE_S &stDevice)
{
    FRU_SET_PARA_S stBlock = label::Request(stDevice, stCase.pcLabel, stCase.pcValue);
    return WriteLabelSafely(&cut::Journal(), &stBlock);
}

u32 Repair()
{
    return RepairAtStart(&cut::Journal());
}

BYTES ImageOn(const DEVICE_S &stDevice, const BYTES &vecChip)
{
    const auto itImage = vecChip.begin() + stDevice.usStartOffset;
    return {itImage, itImage + stDevice.usSize};
}

EXPECTED_S Expect(const CASE_S &stCase, const LASTING_S &stStart)
{
    const DEVICE_S stDevice = DeviceOf(stCase);
    EXPECTED_S stExpected{stDevice, stStart.vecChip, stStart.mapDb.at(cut::ImageKey(stDevice)), {}};
    const RUN_S stPlain =
        cut::Run(stExpected.stDevice, stStart, [&] { return WritePlainly(stCase, stExpected.stDevice); });
    EXPECT_EQ(stPlain.uiResult, FRU_OK);
    stExpected.vecNewChip = stPlain.stLeft.vecChip;
    EXPECT_NE(stExpected.vecNewChip, stExpected.vecOldChip);
    return stExpected;
}

bool IsInOrder(const EXPECTED_S &stExpected, const LASTING_S &stLeft)
{
    const DEVICE_S &stDevice = stExpected.stDevice;
    const bool bOld = stLeft.vecChip == stExpected.vecOldChip;
    const bool bOldOrNew = bOld || stLeft.vecChip == stExpected.vecNewChip;
    EXPECT_TRUE(bOldOrNew);
    const BYTES &vecCache = stLeft.mapDb.at(cut::ImageKey(stDevice));
    const bool bCache =
        vecCache == ImageOn(stDevice, stLeft.vecChip) || (bOld && vecCache == stExpected.vecOldCache);
    EXPECT_TRUE(bCache);
    const bool bTrusted = (stLeft.mapDb.at(cut::StatusKey(stDevice)).at(0) & 1U) == 0U;
    EXPECT_TRUE(bTrusted);
    EXPECT_TRUE(stLeft.vecJournal.empty());
    bool bSerial = true;
    if (stDevice.ucComponentType == 0U) {
        const BYTES vecSerial = SerialOn(stDevice, stLeft.vecChip);
        bSerial = stLeft.optSerial == vecSerial && stLeft.optSerialCopy == vecSerial;
        EXPECT_TRUE(bSerial);
    }
    return bOldOrNew && bCache && bTrusted && bSerial && stLeft.vecJournal.empty();
}

} // namespace cut
