// SPDX-License-Identifier: Apache-2.0
// Manufacturing dates: three bytes, the least significant first, that count the minutes since 1996-01-01 00:00
// UTC. 0 stands for a date that is not told. The count ends on 2027-11-24 at 20:15 and starts again at 0, so a
// small count has two readings.
#ifndef TOOLKIT_IMAGE_MFG_DATE_H
#define TOOLKIT_IMAGE_MFG_DATE_H

#include <cstdint>
#include <string>

#include "lib_fru_types.h"

constexpr u32 MFG_DATE_BYTES = 3U;
constexpr u32 MFG_DATE_MAX = 0xFFFFFFU;
constexpr const char *MFG_DATE_UNSPECIFIED = "unspecified";
constexpr const char *MFG_DATE_NOW = "now";
// What a date may be written as, behind "accepted: ".
constexpr const char *MFG_DATES_ACCEPTED =
    "YYYY-MM-DD or YYYY-MM-DD HH:MM:00, 1996-01-01 to 2027-11-24 20:15:00 (UTC), now, or unspecified";

u32 MfgDateMinutes(const u8 *pucMfgDate);
void StoreMfgDate(u32 uiMinutes, u8 *pucMfgDate);

// "2024-03-18 09:30:00", or "unspecified".
std::string MfgDateText(u32 uiMinutes);
std::string MfgDateText(const u8 *pucMfgDate);

// Of a count that may have gone round (dates before 2006): "or 2031-03-24 if the counter has gone round"; else
// empty.
std::string OtherMfgDateText(u32 uiMinutes);

// Minutes since 1996 until now, however many.
uint64_t MfgDateClock();

struct MFG_DATE_S
{
    u32 uiMinutes = 0;
    bool bExact = false;        // it reads back as it was given: zeros in front, no seconds
    std::string strWhyNot = {}; // not empty: it is no date that the bytes can say
};

// A date as text: with zeros in front or wholly without, with or without a time; "now"; "unspecified". bWrap:
// dates beyond the end of the count are taken, as the small counts that are told with both readings.
MFG_DATE_S ParseMfgDate(const std::string &strDate, bool bWrap);

// Why a label, or a text that is assembled, does not take the date: by the library's rule, which ends with the
// year 2025, and because of what the bytes cannot say. Empty when it does.
std::string WhyNoLabelDate(const std::string &strDate);
// "now" and "unspecified" in the words that the library takes; anything else as it is.
std::string LabelDate(const std::string &strDate);

#endif
