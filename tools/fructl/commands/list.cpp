// SPDX-License-Identifier: Apache-2.0
// fructl list: the controller's devices and the state of their images.
#include "toolkit/task/list.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/text.h"

namespace {

void RunList(const SESSION_S &stSession)
{
    const std::vector<LISTED_S> vecListed = ListDevices(stSession);
    if (stSession.bJson) {
        PrintJson(ListJson(vecListed));
        return;
    }
    Table stTable({">ID", "NAME", ">TYPE", ">INST", ">BUS", ">ADDR", ">SIZE", "IMAGE", "CACHE"});
    for (const LISTED_S &stListed : vecListed) {
        const DEVICE_S &stDevice = stListed.stDevice;
        const FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
        const STATE_S &stState = stListed.stState;
        stTable.Row({Format("%u", stDevice.stEntry.ucDeviceID), EscapeText(stDevice.strName),
                     Format("0x%02x", stDevice.stEntry.ucComponentType),
                     Format("%u", stDevice.stEntry.ucInstance), Format("%u", stInfo.ucBusNumber),
                     Format("0x%02x", stInfo.ucAddress), Format("%u", stInfo.usSize),
                     ImageStateName(stState.enImage), CacheStateName(stState.enCache)},
                    {Colour::None, Colour::Cyan, Colour::None, Colour::None, Colour::None, Colour::None,
                     Colour::None, stState.enImage == ImageState::Sound ? Colour::Green : Colour::Red,
                     stState.enCache == CacheState::Differs ? Colour::Yellow : Colour::Dim});
    }
    Print(vecListed.empty() ? "the controller in " + EscapeText(stSession.strRoot) + " has no devices\n"
                            : stTable.Text());
}

} // namespace

void AddListCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stCommand = stParent.Add("list", "List the devices and the state of their images",
                                           "fructl list\nfructl --root /tmp/lab list --json");
    stCommand.AddSection(
        "Columns", "",
        {{"ID", "FRU device ID, as --id and IPMI clients take it"},
         {"TYPE, INST", "component type and instance: 0x30:0 names the device, too"},
         {"BUS, ADDR", "where its EEPROM is; the address has 8 bits"},
         {"SIZE", "bytes of its image"},
         {"IMAGE", "in the EEPROM: sound, damaged, erased (every byte 0xff), unreadable (the chip "
                   "does not answer), or no record (the controller does not know where it is)"},
         {"CACHE", "the cached image: same, differs, none, not trusted (its flag is not set), or "
                   "only (the device has no EEPROM)"}});
    stCommand.Run([&stSession] { RunList(stSession); });
}
