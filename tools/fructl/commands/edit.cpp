// SPDX-License-Identifier: Apache-2.0
// fructl edit: fields by their names, every other byte as it was.
#include "commands/commands.h"
#include "commands/patch_plan.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/field_edit.h"
#include "toolkit/image/field_code.h"
#include "toolkit/image/image_file.h"

namespace {

struct EDIT_S
{
    TARGET_OPTIONS_S stTarget;
    PATCH_OPTIONS_S stPatch;
    std::vector<std::string> vecWords;
    std::vector<std::string> vecRemove;
    std::vector<std::string> vecAddArea;
    std::string strAs;
    std::string strSize;
    bool bWrap = false;
};

std::vector<FIELD_EDIT_S> ParseEdits(const EDIT_S &stOptions)
{
    std::vector<FIELD_EDIT_S> vecEdits;
    for (const std::string &strName : stOptions.vecAddArea) {
        vecEdits.push_back(ParseNewArea(strName));
    }
    for (const std::string &strName : stOptions.vecRemove) {
        vecEdits.push_back(ParseRemoval(strName));
    }
    for (const std::string &strWord : stOptions.vecWords) {
        vecEdits.push_back(ParseAssignment(strWord));
        vecEdits.back().optAs = EncodingByName(stOptions.strAs);
        vecEdits.back().bWrap = stOptions.bWrap;
    }
    if (vecEdits.empty()) {
        FailUsage(
            "nothing is to be edited; accepted: FIELD=VALUE, --remove FIELD or --add-area AREA, once or several "
            "times");
    }
    RequireDistinct(vecEdits);
    return vecEdits;
}

OPERATION_S OperationOf(const FIELD_EDIT_S &stEdit)
{
    const bool bSet = stEdit.enEdit == Edit::Set || stEdit.enEdit == Edit::Append;
    const std::string strValue = bSet                             ? stEdit.strValue
                                 : stEdit.enEdit == Edit::AddArea ? "(added)"
                                                                  : "(removed)";
    // The label of a list's place is told only of what stands there.
    return stEdit.enEdit == Edit::Set ? OperationOn(stEdit.stField, stEdit.strName, strValue)
                                      : OPERATION_S{FRU_LABEL_NOT_FOUND, stEdit.strName, strValue};
}

PATCH_WORK_S PlanEdits(const TARGET_S &stTarget, const IMAGE_S &stImage,
                       const std::vector<FIELD_EDIT_S> &vecEdits, u32 uiSize)
{
    std::vector<std::string> vecNotes;
    const std::vector<u8> vecBase = BaseOf(stImage, vecNotes);
    std::vector<u8> vecAfter;
    try {
        vecAfter = EditImage(vecBase, RoomOf(stTarget, stImage, uiSize), vecEdits);
    } catch (const Error &stError) {
        const std::string strGrow =
            stTarget.optDevice.has_value() || stError.Class() != ErrorClass::Refused || uiSize != 0U
                ? ""
                : "; --size N lets a file grow";
        throw Error(stError.Class(), stTarget.Title() + ": " + stError.what() + strGrow, stError.Accepted());
    }
    PATCH_WORK_S stWork = {PlanPatch(stTarget, stImage, vecAfter, vecNotes), {}};
    for (const FIELD_EDIT_S &stEdit : vecEdits) {
        stWork.vecOperations.push_back(OperationOf(stEdit));
    }
    return stWork;
}

void RunEdit(const SESSION_S &stSession, EDIT_S stOptions)
{
    if (stOptions.stTarget.strDeviceID.empty() && stOptions.stTarget.strFile.empty()) {
        if (stOptions.vecWords.empty()) {
            FailUsage("no device or file is named; accepted: DEVICE|FILE in front of FIELD=VALUE");
        }
        stOptions.stTarget.strTarget = stOptions.vecWords.front();
        stOptions.vecWords.erase(stOptions.vecWords.begin());
    }
    const std::vector<FIELD_EDIT_S> vecEdits = ParseEdits(stOptions);
    const TARGET_S stTarget = ResolveTarget(stSession, stOptions.stTarget);
    u32 uiSize = 0;
    if (!stOptions.strSize.empty()) {
        const std::optional<u32> optSize = ParseNumber(stOptions.strSize, 0xFFFFU);
        if (!optSize.has_value() || stTarget.optDevice.has_value()) {
            FailUsage("--size " + EscapeText(stOptions.strSize) +
                      " is refused; accepted: up to 65535 bytes, for a file (a device has its own)");
        }
        uiSize = *optSize;
    }
    RunPatch(stSession, stTarget, stOptions.stPatch,
             [&](const IMAGE_S &stImage) { return PlanEdits(stTarget, stImage, vecEdits, uiSize); });
}

} // namespace

void AddEditCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<EDIT_S>();
    const Command stCommand = stParent.Add(
        "edit", "Change fields by their names, and leave every other byte as it was",
        "fructl edit psu1 board.serialNumber=LH0042 --dry-run\n"
        "fructl edit psu1 product.assetTag=RACK7 product.custom[+]=line-3\n"
        "fructl edit baseboard board.mfgDate=\"2024-03-18 09:30:00\" --remove product.custom[0] -n\n"
        "fructl edit psu2 multiRecord[+]=0xc0:5a3100 -n\n"
        "fructl edit examples/riser.hex --add-area chassis chassis.serialNumber=C-7 --size 512 -o -");
    stCommand
        .AddOption(
            "DEVICE|FILE", pstOptions->vecWords,
            "TYPE:INSTANCE, a device's name or an image file's path with a slash, none with --id or --file; "
            "then FIELD=VALUE, once or several times")
        .Required();
    stCommand
        .AddOption("--id", pstOptions->stTarget.strDeviceID,
                   "the device by its FRU device ID instead, 0 to 255")
        .Placeholder("N");
    stCommand.AddOption("--file", pstOptions->stTarget.strFile, "an image file instead, whatever its name")
        .Placeholder("FILE");
    stCommand
        .AddOption(
            "--as", pstOptions->strAs,
            "how new values are stored; without it as the field was, so that nothing else about it changes")
        .OneOf(EncodingNames())
        .Placeholder("text|6bit|bcd|binary");
    stCommand
        .AddOption("--remove", pstOptions->vecRemove,
                   "a custom field, a MultiRecord or a whole area; may be repeated")
        .Repeated()
        .Placeholder("FIELD");
    stCommand
        .AddOption("--add-area", pstOptions->vecAddArea,
                   "internalUse, chassis, board or product, with empty fields; may be repeated")
        .Repeated()
        .Placeholder("AREA");
    stCommand.AddOption("--size", pstOptions->strSize, "let a file grow to so many bytes").Placeholder("N");
    stCommand.AddFlag("--wrap", pstOptions->bWrap,
                      "a manufacturing date beyond 2027-11-24, too: its count starts again at 0");
    AddPatchOptions(stCommand, pstOptions->stPatch);
    stCommand.AddSection(
        "Fields", "Names are those of 'show --json', and lists count from 0 as there:",
        {{"board.serialNumber=LH42", "a field of the chassis, board or product area"},
         {"product.custom[2]=A", "a custom field; product.custom[+]=A adds one behind the last"},
         {"chassis.type=0x17", "a number or a name; board.languageCode=25, board.mfgDate=now as well"},
         {"multiRecord[1]=0a0b", "a record's data; multiRecord[+]=0xc0:0a0b adds one of type 0xc0"},
         {"internalUse=0a0b",
          "all bytes behind the area's first; internalUse.data=TEXT where it holds a text"}});
    stCommand.Run([&stSession, pstOptions] { RunEdit(stSession, *pstOptions); });
}
