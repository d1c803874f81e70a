// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/hardware.h"

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/image/image.h"

HW_BLOCK_S ReadDeviceBlock(const DEVICE_S &stDevice)
{
    if (stDevice.stInfo.usSize != FRU_HW_DATA_LEN) {
        FailRefused(stDevice.Title() + Format(" holds %u bytes; a hardware block has exactly %u",
                                              u32{stDevice.stInfo.usSize}, FRU_HW_DATA_LEN));
    }
    FRU_HW_DATA_S stData = {};
    ClearDiagnostics();
    const u32 uiRet = LIB_FRU_GetHWFRUData(FRU_HW_ARG_USUAL, stDevice.stEntry.ucComponentType,
                                           stDevice.stEntry.ucInstance, &stData);
    if (uiRet != FRU_OK) {
        FailLibrary(ErrorClass::NoAnswer,
                    "the hardware block of " + stDevice.Title() + " cannot be read: " + StatusText(uiRet),
                    DiagnosticHint());
    }
    return MakeHardwareBlock(stData);
}

HW_BLOCK_S ReadBlock(const TARGET_S &stTarget)
{
    if (stTarget.optDevice.has_value()) {
        return ReadDeviceBlock(*stTarget.optDevice);
    }
    const IMAGE_S stImage = ReadImage(stTarget.strFile);
    FRU_HW_DATA_S stData = {};
    const u32 uiRet = FRU_ANALYZER_InterpretALLHwFRUData(stImage.vecBytes.data(),
                                                         static_cast<u32>(stImage.uiStored), &stData);
    if (uiRet != FRU_OK) {
        FailRefused(EscapeText(stTarget.strFile) + Format(" is no hardware block: it has %zu bytes, not %u",
                                                          stImage.uiStored, FRU_HW_DATA_LEN));
    }
    return MakeHardwareBlock(stData);
}
