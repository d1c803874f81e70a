// SPDX-License-Identifier: Apache-2.0
// Calls of the IPMI FRU command handlers with request and response in buffers of exactly their size.
#ifndef TESTS_UNIT_HANDLER_CALL_H
#define TESTS_UNIT_HANDLER_CALL_H

#include <memory>

#include "fru_device.h"
#include "lib_fru_ipmi.h"

namespace device {

const std::string g_strImageGet = DbGet(g_uiKeyImage | g_ucID, 64);

struct RESPONSE_S
{
    u32 uiLength;
    BYTES vecBytes; // the whole buffer, 0xA5 where nothing was written
};

inline BYTES Response(const BYTES &vecHead, size_t uiSize)
{
    BYTES vecBytes = vecHead;
    vecBytes.resize(uiSize, 0xA5);
    return vecBytes;
}

// Makes a handler's call with request and response in buffers of exactly their size.
template <typename CALL> RESPONSE_S Call(const BYTES &vecReq, size_t uiResSize, CALL fnCall)
{
    const std::unique_ptr<u8[]> upReq(new u8[vecReq.size()]);
    const std::unique_ptr<u8[]> upRes(new u8[uiResSize]);
    std::copy(vecReq.begin(), vecReq.end(), upReq.get());
    (void)memset(upRes.get(), 0xA5, uiResSize);
    const u32 uiLength = fnCall(upReq.get(), static_cast<u32>(vecReq.size()), upRes.get());
    return {uiLength, BYTES(upRes.get(), upRes.get() + uiResSize)};
}

inline RESPONSE_S AreaInfo(u8 ucDeviceID)
{
    return Call({ucDeviceID}, 4U, LIB_FRU_GetFRUAreaInfo);
}

inline void SetInfo(const std::function<void(FRU_DEVICE_INFO_S &)> &fnChange, u16 usSize = 64)
{
    FRU_DEVICE_INFO_S stInfo = Info(usSize);
    fnChange(stInfo);
    PutInfo(stInfo);
}

inline void ProvideImage(size_t uiSize = 64)
{
    fake::Reset();
    Provision(Pattern(uiSize));
}

} // namespace device

#endif
