// fructl list: the controller's devices and the state of their images.
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

namespace {

struct STATE_S
{
    const char *pcImage; // "sound", "damaged", "erased", "unreadable", "no record"
    const char *pcCache; // "none", "same", "differs", "not trusted", "only"
};

STATE_S StateOf(const DEVICE_S &stDevice)
{
    if (!stDevice.bHasInfo) {
        return {"no record", "none"};
    }
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    std::optional<IMAGE_S> optImage = optCached;
    const char *pcCache = "only";
    if (!stDevice.IsDatabaseOnly()) {
        optImage = FindSource(stDevice, Source::Eeprom);
        const bool bSame = optImage.has_value() && optCached.has_value() &&
                           !FirstDifference(*optImage, *optCached, stDevice.HasFixedSlots()).has_value();
        pcCache = !optCached.has_value()      ? "none"
                  : !IsCacheTrusted(stDevice) ? "not trusted"
                  : bSame                     ? "same"
                                              : "differs";
    }
    if (!optImage.has_value()) {
        return {"unreadable", pcCache};
    }
    const IMAGE_LAYOUT_S stLayout = LayoutOf(*optImage, stDevice.HasFixedSlots());
    return {stLayout.bErased ? "erased" : stLayout.IsSound() ? "sound" : "damaged", pcCache};
}

void RunList(const SESSION_S &stSession)
{
    const std::vector<DEVICE_S> vecDevices = LoadDevices(stSession);
    Table stTable({">ID", "NAME", ">TYPE", ">INST", ">BUS", ">ADDR", ">SIZE", "IMAGE", "CACHE"});
    Json stList = Json::array();
    for (const DEVICE_S &stDevice : vecDevices) {
        const FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
        const STATE_S stState = StateOf(stDevice);
        const std::string strImage = stState.pcImage;
        const std::string strCache = stState.pcCache;
        Json stJson = DeviceJson(stDevice);
        stJson.update({{"bus", stInfo.ucBusNumber},
                       {"address", stInfo.ucAddress},
                       {"switchLevel", stInfo.ucSwitchLevel},
                       {"startOffset", u16{stInfo.usStartOffset}},
                       {"size", u16{stInfo.usSize}},
                       {"databaseOnly", stDevice.IsDatabaseOnly()},
                       {"image", strImage},
                       {"cache", strCache}});
        stList.push_back(stJson);
        stTable.Row({Format("%u", stDevice.stEntry.ucDeviceID), EscapeText(stDevice.strName),
                     Format("0x%02x", stDevice.stEntry.ucComponentType),
                     Format("%u", stDevice.stEntry.ucInstance), Format("%u", stInfo.ucBusNumber),
                     Format("0x%02x", stInfo.ucAddress), Format("%u", stInfo.usSize), strImage, strCache},
                    {Colour::None, Colour::Cyan, Colour::None, Colour::None, Colour::None, Colour::None,
                     Colour::None, strImage == "sound" ? Colour::Green : Colour::Red,
                     strCache == "differs" ? Colour::Yellow : Colour::Dim});
    }
    if (stSession.bJson) {
        PrintJson({{"devices", stList}});
    } else {
        Print(stTable.Text());
    }
}

} // namespace

void AddListCommand(CLI::App &stParent, SESSION_S &stSession)
{
    CLI::App *pstCommand = AddCommand(stParent, "list", "List the devices and the state of their images",
                                      "fructl list\nfructl --root /tmp/lab list --json");
    pstCommand->callback([&stSession] { stSession.fnRun = [&stSession] { RunList(stSession); }; });
}
