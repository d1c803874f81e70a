// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/raw_write.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/transaction.h"

namespace {

// The device that the request names; nothing when the controller has none of that ID, or no devices at all.
std::optional<DEVICE_S> FindDevice(const CONTROLLER_S &stController, u8 ucDeviceID)
{
    try {
        for (const DEVICE_S &stDevice : LoadDevices(stController)) {
            if (stDevice.stEntry.ucDeviceID == ucDeviceID && stDevice.bHasInfo) {
                return stDevice;
            }
        }
    } catch (const Error &) {
        // The command has an answer for that too.
    }
    return std::nullopt;
}

// Each place with the request's bytes in it.
void Patch(std::optional<PART_S> &optPart, const std::vector<u8> &vecRequest)
{
    if (!optPart.has_value() || !optPart->optBefore.has_value()) {
        return;
    }
    optPart->vecAfter = *optPart->optBefore;
    const size_t uiOffset = vecRequest[1] | static_cast<size_t>(vecRequest[2]) << 8U;
    if (uiOffset + vecRequest.size() - FRU_WRITE_REQ_HEADER_LEN <= optPart->vecAfter.size()) {
        std::copy(vecRequest.begin() + FRU_WRITE_REQ_HEADER_LEN, vecRequest.end(),
                  optPart->vecAfter.begin() + static_cast<std::ptrdiff_t>(uiOffset));
    }
}

} // namespace

std::vector<BYTE_RUN_S> PlanRaw(const CONTROLLER_S &stController, const std::vector<u8> &vecRequest)
{
    const std::optional<DEVICE_S> optDevice = FindDevice(stController, vecRequest[0]);
    if (!optDevice.has_value()) {
        Fail(ErrorClass::NotFound,
             Format("there is no FRU device ID %u, and nothing would be written", vecRequest[0]));
    }
    const std::vector<u8> vecBefore = ReadTarget({*optDevice, ""}).vecBytes;
    const size_t uiOffset = vecRequest[1] | static_cast<size_t>(vecRequest[2]) << 8U;
    const size_t uiEnd = uiOffset + vecRequest.size() - FRU_WRITE_REQ_HEADER_LEN;
    if (uiEnd > vecBefore.size()) {
        FailRefused(
            Format("the bytes would end at 0x%04zx, and the FRU has %zu bytes; nothing would be written",
                   uiEnd, vecBefore.size()));
    }
    std::vector<u8> vecAfter = vecBefore;
    std::copy(vecRequest.begin() + FRU_WRITE_REQ_HEADER_LEN, vecRequest.end(),
              vecAfter.begin() + static_cast<std::ptrdiff_t>(uiOffset));
    return CompareBytes(vecBefore, vecAfter);
}

RAW_ANSWER_S WriteRaw(const RootLock &stLock, const std::vector<u8> &vecRequest)
{
    const CONTROLLER_S &stController = stLock.Controller();
    RAW_ANSWER_S stAnswer = {std::vector<u8>(FRU_WRITE_RES_LEN), ""};
    const auto fnWrite = [&] {
        stAnswer.vecResponse.resize(LIB_FRU_WriteFRUData(
            vecRequest.data(), static_cast<u32>(vecRequest.size()), stAnswer.vecResponse.data()));
        return u32{FRU_OK};
    };
    const std::optional<DEVICE_S> optDevice = FindDevice(stController, vecRequest[0]);
    if (!optDevice.has_value()) {
        ClearDiagnostics();
        (void)fnWrite();
        stAnswer.strHint = DiagnosticHint();
        return stAnswer;
    }
    CHANGE_S stChange = PlanBytes(*optDevice, {}, true);
    Patch(stChange.optEeprom, vecRequest);
    Patch(stChange.optCache, vecRequest);
    // The completion code is all that the command tells; who sends it wants the bytes as they are.
    RunTransaction(stLock, {stChange}, {}, [&] {
        stAnswer.strHint = ApplyChange(stChange, "writing " + optDevice->Title(), nullptr, fnWrite).Hint();
    });
    return stAnswer;
}
