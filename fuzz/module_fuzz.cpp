// SPDX-License-Identifier: Apache-2.0
// Fuzzes what the simulator's module puts in front of the handlers: requests of any length for any command, with any room
// for the answer. No answer is longer than its room, and none is empty. Input: device size, then requests.
#include <cstdio>

#include "bmcfru_host.h"
#include "folder.h"
#include "fru_requests.h"
#include "fuzz.h"
#include "ipmi_codes.h"
#include "sdr_repository.h"

namespace {

constexpr u32 REQUESTS_MAX = 16U;
constexpr u8 COMMANDS[] = {IPMI_CMD_GET_FRU_AREA_INFO, IPMI_CMD_READ_FRU_DATA, IPMI_CMD_WRITE_FRU_DATA};
constexpr u8 FIRST_SDR_COMMAND = 0x20U;
constexpr u8 SDR_COMMANDS = 9U;

} // namespace

u32 BMCHOST_ResolvePath(const char *, size_t uiSize, char *pcResolved)
{
    static const fuzz::Folder FOLDER; // of the write lock
    return snprintf(pcResolved, uiSize, "%s", FOLDER.Path().c_str()) > 0 ? 0U : 1U;
}

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    fuzz::Input stInput(pucData, uiSize);
    const size_t uiDevice = 1U + stInput.Word() % 600U;
    fuzz::Provision(fuzz::BYTES(uiDevice, 0x5AU), 0U, 7U, stInput.Byte() & 1U);
    SDR_REPOSITORY stRepository;
    for (u32 i = 0; i < REQUESTS_MAX && stInput.Left() != 0U; i++) {
        const u8 ucCommand = stInput.Byte();
        const u32 uiRoom = stInput.Byte();
        const fuzz::BYTES vecReq = stInput.Bytes(stInput.Byte());
        const fuzz::STATE_S stBefore = fuzz::State();
        const std::unique_ptr<u8[]> upReq = fuzz::Exact(vecReq);
        const std::unique_ptr<u8[]> upRes = fuzz::Exact(fuzz::BYTES(uiRoom));
        const u32 uiLength = static_cast<u32>(vecReq.size());
        const u8 ucFru = COMMANDS[ucCommand % std::size(COMMANDS)];
        const u8 ucSdr = static_cast<u8>(FIRST_SDR_COMMAND + ucCommand % SDR_COMMANDS);
        const u32 uiRes = (ucCommand & 0x80U) != 0U
                              ? stRepository.Answer(ucSdr, upReq.get(), uiLength, uiRoom, upRes.get())
                              : AnswerFruRequest(ucFru, upReq.get(), uiLength, uiRoom, upRes.get());
        fuzz::Require(uiRes <= uiRoom && (uiRes != 0U || uiRoom == 0U));
        fuzz::CheckDevice(stBefore, uiRoom != 0U && upRes[0] == FRU_CC_OK);
    }
    return 0;
}
