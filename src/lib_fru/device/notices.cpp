// SPDX-License-Identifier: Apache-2.0
#include "lib_fru/device/notices.h"

#include "bmc_mrpc.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_events.h"

void FRU_NotifyDeviceChanged(const FRU_DEVICE_INFO_S *pstFRUInfo)
{
    (void)MRPC_Call(MRPC_SERVICE_FRU_CHANGED, MRPC_METHOD_FRU_CHANGED, sizeof(*pstFRUInfo), pstFRUInfo, 0U,
                    nullptr);
}

u32 FRU_UpdateEventWithStruct(const FRU_EVENT_S *pstUpdateEvent)
{
    FRU_REQUIRE(pstUpdateEvent, FRU_ERR_NULL_POINTER);
    // The caller gets the RPC service's own code.
    return MRPC_Call(MRPC_SERVICE_FRU_EVENT, MRPC_METHOD_FRU_EVENT, sizeof(*pstUpdateEvent), pstUpdateEvent,
                     0U, nullptr);
}
