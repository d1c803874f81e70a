// SPDX-License-Identifier: Apache-2.0
// An image that does not begin with the first byte of what holds it.
#include "commands/commands.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/foreign.h"

std::optional<u32> OFFSET_OPTION_S::Chosen() const
{
    if (strOffset.empty()) {
        return std::nullopt;
    }
    const std::optional<u32> optOffset = ParseNumber(strOffset, 0xFFFFFFU);
    if (!optOffset.has_value()) {
        FailUsage("--offset " + EscapeText(strOffset) + " is not a number of bytes; accepted: decimal or 0x");
    }
    return optOffset;
}

void AddOffsetOption(const Command &stCommand, OFFSET_OPTION_S &stOption)
{
    stCommand
        .AddOption("--offset", stOption.strOffset,
                   "the image begins at this byte; without it at the first, or where one is found in a file")
        .Placeholder("N");
}

LOCATED_S LocateImage(const SESSION_S &stSession, const TARGET_S &stTarget, const IMAGE_S &stWhole,
                      const OFFSET_OPTION_S &stOption)
{
    const std::optional<u32> optOffset = stOption.Chosen();
    if (optOffset.has_value()) {
        return PartFrom(stWhole, *optOffset);
    }
    if (stTarget.optDevice.has_value() || BeginsWithHeader(stWhole.vecBytes, stWhole.uiStored)) {
        return {stWhole, 0U};
    }
    const std::vector<u32> vecFound = FindImages(stWhole.vecBytes, stWhole.uiStored);
    if (vecFound.empty()) {
        return {stWhole, 0U};
    }
    std::vector<std::string> vecMore;
    for (size_t i = 1U; i < vecFound.size(); i++) {
        vecMore.push_back(Format("0x%04x", vecFound[i]));
    }
    stSession.Warn(
        stTarget.Title() +
        Format(": no FRU image begins at byte 0; the one found at byte 0x%04x is taken (--offset chooses)",
               vecFound.front()) +
        (vecMore.empty() ? "" : "; more begin at " + Join(vecMore, ", ")));
    return PartFrom(stWhole, vecFound.front());
}
