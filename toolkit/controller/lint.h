// SPDX-License-Identifier: Apache-2.0
// What is in order as an image, and still says nothing or something wrong: placeholders, doubles, stray blanks, dates
// that are not told or not yet come.
#ifndef TOOLKIT_CONTROLLER_LINT_H
#define TOOLKIT_CONTROLLER_LINT_H

#include <string>
#include <vector>

#include "toolkit/controller/target.h"
#include "toolkit/image/fields.h"

enum class LintRule
{
    Unreadable,  // nothing can be said of it
    NoSerial,    // no area tells a serial number
    Placeholder, // "To be filled by O.E.M.", "0000000000"
    Double,      // another device has this serial number, MAC address or unique ID
    Blanks,      // around a text, or inside one that has none
    DateUnset,
    DateFuture
};

// The stable word for a rule: "date-unset"; and what it looks for.
const char *LintWord(LintRule enRule);
const char *LintMeaning(LintRule enRule);
const std::vector<LintRule> &LintRules();

struct LINT_FINDING_S
{
    size_t uiTarget; // of those that were given
    LintRule enRule;
    FIELD_ID_S stField;   // Area::Unused: the whole image
    std::string strValue; // raw
    std::string strWhat;
};

struct LINT_S
{
    size_t uiChecked = 0; // a hardware block has no texts, and does not count
    std::vector<LINT_FINDING_S> vecFindings;
};

LINT_S Lint(const std::vector<TARGET_S> &vecTargets);

#endif
