#include "lib_fru/device/notices.h"

#include "bmc_mrpc.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_diagnostics.h"

namespace {

constexpr u32 g_uiEventService = 630U;
constexpr u32 g_uiEventMethod = 0U;

} // namespace

void FRU_NotifyDeviceChanged(const FRU_DEVICE_INFO_S *pstFRUInfo)
{
    (void)MRPC_Call(636U, 0U, sizeof(*pstFRUInfo), pstFRUInfo, 0U, nullptr);
}

u32 FRU_UpdateEventWithStruct(const FRU_EVENT_S *pstUpdateEvent)
{
    FRU_REQUIRE(pstUpdateEvent, FRU_ERR_NULL_POINTER);
    // The caller gets the RPC service's own code.
    return MRPC_Call(g_uiEventService, g_uiEventMethod, sizeof(*pstUpdateEvent), pstUpdateEvent, 0U, nullptr);
}
