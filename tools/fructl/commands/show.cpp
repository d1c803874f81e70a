// SPDX-License-Identifier: Apache-2.0
// fructl show: a device or an image file, decoded.
#include <map>

#include "commands/commands.h"
#include "commands/record_text.h"
#include "commands/show_lenient.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/record.h"

namespace {

using Notes = std::map<FIELD_ID_S, NOTE_S>;

// How texts are stored, where that is not plain, by field.
Notes StorageNotes(const SHOWN_S &stShown)
{
    Notes mapNotes;
    const IMAGE_LAYOUT_S stLayout = LayoutOf(stShown.stImage, stShown.stTarget.HasFixedSlots());
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        if (stSpan.stNote.IsTold() && stSpan.stNote.enNote != Note::Empty) {
            mapNotes[stSpan.stField] = stSpan.stNote;
        }
    }
    return mapNotes;
}

std::string Heading(Area enArea)
{
    std::string strName = AreaName(enArea);
    strName[0] = static_cast<char>(toupper(strName[0]));
    return Paint(Colour::Bold, strName) + "\n";
}

std::string Row(const FIELD_ID_S &stField, const std::string &strText, const Notes &mapNotes)
{
    const std::string strShown = strText.empty() ? Paint(Colour::Dim, "-") : ShownText(strText);
    const auto itNote = mapNotes.find(stField);
    const std::string strNote =
        itNote == mapNotes.end() ? "" : Paint(Colour::Dim, "  (" + ShownUtf8(NoteText(itNote->second)) + ")");
    return Format("  %-19s ", FieldName(stField).c_str()) + strShown + strNote + "\n";
}

std::string AreaText(const AREA_VIEW_S &stArea, const Notes &mapNotes)
{
    std::string strOut = Heading(stArea.enArea);
    for (const FIELD_VIEW_S &stField : stArea.vecFields) {
        strOut += Row({stArea.enArea, stField.enField}, stField.strText, mapNotes);
    }
    for (u32 i = 0; i < stArea.vecCustomFields.size(); i++) {
        strOut += Row({stArea.enArea, Field::Custom, i}, stArea.vecCustomFields[i], mapNotes);
    }
    return strOut;
}

std::string MultiRecordsText(const RECORD_VIEW_S &stView)
{
    if (!stView.bMultiRecordArea) {
        return "";
    }
    std::string strOut = Heading(Area::MultiRecord);
    if (stView.vecMultiRecords.empty()) {
        return strOut + "  " + Paint(Colour::Red, "damaged: no record can be read") +
               " ('fructl verify' tells why)\n";
    }
    for (const MULTIRECORD_VIEW_S &stRecord : stView.vecMultiRecords) {
        strOut += "  " + stRecord.strName +
                  Paint(Colour::Dim,
                        Format(" (type 0x%02x, %zu bytes)", stRecord.ucType, stRecord.vecData.size())) +
                  "\n";
        strOut += RecordText(stRecord);
    }
    return strOut;
}

std::string TitleText(const SHOWN_S &stShown)
{
    const TARGET_S &stTarget = stShown.stTarget;
    const std::string strTitle = Paint(Colour::Bold, stTarget.Title());
    if (!stTarget.optDevice.has_value()) {
        return strTitle + "\n";
    }
    const FRU_DEVICE_INFO_S &stInfo = stTarget.optDevice->stInfo;
    if (stShown.stImage.enSource == Source::Cache) {
        return strTitle + Format("  FRU device ID %u, cached image of %u bytes\n",
                                 stTarget.optDevice->stEntry.ucDeviceID, stInfo.usSize);
    }
    return strTitle +
           Format("  FRU device ID %u, %u bytes at 0x%04x of the EEPROM on bus %u, address 0x%02x\n",
                  stTarget.optDevice->stEntry.ucDeviceID, stInfo.usSize, stInfo.usStartOffset,
                  stInfo.ucBusNumber, stInfo.ucAddress);
}

struct SHOW_S
{
    TARGET_OPTIONS_S stTarget;
    SOURCE_OPTION_S stSource;
    OFFSET_OPTION_S stOffset;
    bool bLenient = false;
};

void RunShow(const SESSION_S &stSession, const SHOW_S &stOptions)
{
    SHOWN_S stShown = ReadShown(ResolveTarget(stSession, stOptions.stTarget), stOptions.stSource);
    const LOCATED_S stLocated = LocateImage(stSession, stShown.stTarget, stShown.stImage, stOptions.stOffset);
    stShown.stImage = stLocated.stImage;
    if (stOptions.bLenient) {
        ShowLeniently(stSession, stShown, stLocated.uiOffset);
        return;
    }
    Record stRecord;
    DecodeShown(stShown.stTarget, stShown.stImage, stRecord);
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (stSession.bJson) {
        PrintJson(ShownJson(stShown, stLocated.uiOffset, stView));
        stShown.RequireSame();
        return;
    }
    const Notes mapNotes = StorageNotes(stShown);
    std::string strOut = TitleText(stShown);
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        strOut += "\n" + AreaText(stArea, mapNotes);
    }
    Print(strOut + (stView.bMultiRecordArea ? "\n" : "") + MultiRecordsText(stView));
    stShown.RequireSame();
}

} // namespace

void AddShowCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<SHOW_S>();
    const Command stCommand =
        stParent.Add("show", "Show a device or an image file, decoded",
                     "fructl show baseboard\nfructl show 0x30:0\nfructl show --id 1 --json\n"
                     "fructl show psu1 --source cache\nfructl show ./dump.bin\n"
                     "fructl show psu1 --lenient");
    AddTargetOptions(stCommand, pstOptions->stTarget, true);
    AddSourceOption(stCommand, pstOptions->stSource);
    AddOffsetOption(stCommand, pstOptions->stOffset);
    stCommand.AddFlag("--lenient", pstOptions->bLenient,
                      "what a damaged image still says: each field with its doubts");
    stCommand.Run([&stSession, pstOptions] { RunShow(stSession, *pstOptions); });
}
