// SPDX-License-Identifier: Apache-2.0
#include "chips.h"
#include "fake/fake_platform.h"

namespace chips {

void Start()
{
    fake::Reset();
    fake::SetPatience(30000); // a slow machine is no time-out
}

void Stop()
{
    fake::Reset();
}

void Put(const FRU_DEVICE_INFO_S &stInfo, const std::vector<u8> &vecImage)
{
    fake::Eeprom(stInfo.ucBusNumber, stInfo.ucAddress) = vecImage;
}

} // namespace chips
