// SPDX-License-Identifier: Apache-2.0
// fructl fields: custom fields as other services get them: some in slots, all of an area as one escaped text.
#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/record.h"

namespace {

// The library's texts, owned.
class CustomFields
{
  public:
    CustomFields() = default;
    ~CustomFields()
    {
        FRU_ANALYZER_FreeCustomField(&m_stFields);
    }
    CustomFields(const CustomFields &) = delete;
    CustomFields &operator=(const CustomFields &) = delete;
    FRU_CUSTOM_FIELD_S *Data()
    {
        return &m_stFields;
    }

  private:
    FRU_CUSTOM_FIELD_S m_stFields = {};
};

struct SLOT_S
{
    const char *pcKey;
    const char *pcName;
    std::string strText;
};

// An area's custom fields in one text: a line each, escaped. Nothing when it has none that is not empty.
struct JOINED_S
{
    const char *pcKey;
    const char *pcName;
    std::optional<std::string> optText;
};

std::optional<std::string> Joined(const char *pcText, u32 uiLength)
{
    return pcText == nullptr ? std::nullopt : std::optional<std::string>(std::string(pcText, uiLength));
}

void PrintFields(const SHOWN_S &stShown, const std::vector<SLOT_S> &vecSlots,
                 const std::vector<JOINED_S> &vecJoined)
{
    std::string strOut =
        Paint(Colour::Bold, stShown.stTarget.Title()) + stShown.HeadingText() + ", custom fields\n";
    for (const SLOT_S &stSlot : vecSlots) {
        strOut += Format("  %-14s ", stSlot.pcName) +
                  (stSlot.strText.empty() ? Paint(Colour::Dim, "-") : ShownText(stSlot.strText)) + "\n";
    }
    for (const JOINED_S &stArea : vecJoined) {
        // The library has escaped quotes, backslashes and line ends already; only other bytes are left.
        std::string strText;
        for (const char cByte : stArea.optText.value_or("")) {
            strText += cByte == '\\' ? "\\" : EscapeText(std::string(1U, cByte));
        }
        strOut +=
            Format("  %-14s ", stArea.pcName) + (strText.empty() ? Paint(Colour::Dim, "-") : strText) + "\n";
    }
    Print(strOut);
}

struct FIELDS_S
{
    TARGET_OPTIONS_S stTarget;
    SOURCE_OPTION_S stSource;
};

void RunFields(const SESSION_S &stSession, const FIELDS_S &stOptions)
{
    const SHOWN_S stShown = ReadShown(ResolveTarget(stSession, stOptions.stTarget), stOptions.stSource);
    const TARGET_S &stTarget = stShown.stTarget;
    Record stRecord;
    DecodeShown(stTarget, stShown.stImage, stRecord);
    CustomFields stFields;
    ClearDiagnostics();
    const u32 uiRet = FRU_ANALYZER_InterpretCustomField(stRecord.Data(), stFields.Data());
    if (uiRet != FRU_OK) {
        Fail("the custom fields of " + stTarget.Title() + " cannot be told: " + StatusText(uiRet) +
             DiagnosticHint());
    }
    const FRU_CUSTOM_FIELD_S &stData = *stFields.Data();
    const std::vector<SLOT_S> vecSlots = {
        {"chassisField2", "chassis 2nd", stData.acChassisCustomField1},
        {"chassisField3", "chassis 3rd", stData.acChassisCustomField2},
        {"boardField1", "board 1st", stData.acBoardCustomField0},
    };
    const std::vector<JOINED_S> vecJoined = {
        {"chassis", "chassis, all", Joined(stData.pcChassisCustomFields, stData.uiChassisCustomFieldsLen)},
        {"board", "board, all", Joined(stData.pcBoardCustomFields, stData.uiBoardCustomFieldsLen)},
        {"product", "product, all", Joined(stData.pcProductCustomFields, stData.uiProductCustomFieldsLen)},
    };
    if (!stSession.bJson) {
        PrintFields(stShown, vecSlots, vecJoined);
        stShown.RequireSame();
        return;
    }
    Json stJson = TargetJson(stTarget);
    if (stTarget.optDevice.has_value()) {
        stJson.update(stShown.SourceJson());
    }
    for (const SLOT_S &stSlot : vecSlots) {
        stJson["slots"][stSlot.pcKey] = Latin1ToUtf8(stSlot.strText);
    }
    for (const JOINED_S &stArea : vecJoined) {
        stJson["joined"][stArea.pcKey] =
            stArea.optText.has_value() ? Json(Latin1ToUtf8(*stArea.optText)) : Json();
    }
    PrintJson(stJson);
    stShown.RequireSame();
}

} // namespace

void AddFieldsCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<FIELDS_S>();
    const Command stCommand = stParent.Add(
        "fields", "Custom fields as exported: the ones with slots, and each area's as one escaped text",
        "fructl fields baseboard\nfructl fields ./dump.bin --json");
    AddTargetOptions(stCommand, pstOptions->stTarget, true);
    AddSourceOption(stCommand, pstOptions->stSource);
    stCommand.Run([&stSession, pstOptions] { RunFields(stSession, *pstOptions); });
}
