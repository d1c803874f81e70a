// SPDX-License-Identifier: Apache-2.0
#include "eeprom/write_protect.h"

#include <cerrno>

#include "eeprom/gpio.h"
#include "eeprom/settings.h"

namespace host {

namespace {

constexpr const char *g_pcNotes = BMCHOST_WRITE_ENABLED_DIR;
constexpr size_t g_uiNoteMax = 4096;
constexpr u32 g_uiLineMax = 65535;

std::string NotePath(const std::string &strChip)
{
    return std::string(g_pcNotes) + "/" + strChip;
}

int Level(const PROTECT_LINE_S &stLine, bool bProtect)
{
    return bProtect != stLine.bActiveLow ? 1 : 0;
}

PROTECT_LINE_S LineOf(const JSON &json)
{
    if (!json.is_object() || !json.contains("chip") || !json.at("chip").is_string() ||
        json.at("chip").get_ref<const std::string &>().empty()) {
        throw SettingsError(
            "writeProtect: accepted: {\"chip\": \"gpiochip0\", \"line\": 5}, and \"activeLow\": "
            "true where a low line protects");
    }
    for (const auto &itMember : json.items()) {
        if (itMember.key() != "chip" && itMember.key() != "line" && itMember.key() != "activeLow") {
            throw SettingsError("writeProtect." + itMember.key() +
                                ": unknown member; accepted: chip, line, activeLow");
        }
    }
    const Settings stSettings(json.dump(-1, ' ', false, JSON::error_handler_t::replace));
    const bool bActiveLow = json.contains("activeLow") && json.at("activeLow") == true;
    return {json.at("chip").get<std::string>(), stSettings.Number("line", 0U, g_uiLineMax), bActiveLow};
}

std::string LineText(const PROTECT_LINE_S &stLine)
{
    return "the write-protect line " + std::to_string(stLine.uiLine) + " of " + stLine.strGpioChip;
}

// On the disk before the line is released.
int WriteNote(const std::string &strChip, const PROTECT_LINE_S &stLine)
{
    const JSON json = {
        {"chip", stLine.strGpioChip}, {"line", stLine.uiLine}, {"activeLow", stLine.bActiveLow}};
    const files::PLACE_S stPlace = WritePlaceOf(NotePath(strChip).c_str());
    const int iError = files::MakeDirectories({stPlace.strBase, g_pcNotes});
    return iError == 0 ? files::Replace(stPlace, ToLine(json) + "\n") : iError;
}

int DropNote(const std::string &strChip)
{
    const int iError = files::Remove(WritePlaceOf(NotePath(strChip).c_str()));
    return iError == ENOENT ? 0 : iError;
}

} // namespace

std::optional<PROTECT_LINE_S> ReadProtectLine(const std::string &strSettings)
{
    const Settings stSettings(strSettings);
    if (!stSettings.Has("writeProtect")) {
        return std::nullopt;
    }
    return LineOf(stSettings.Value().at("writeProtect"));
}

WriteEnable::~WriteEnable()
{
    std::string strWhy;
    if (End(&strWhy) != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s", m_strChip.c_str(), strWhy.c_str());
    }
}

int WriteEnable::Begin(std::string *pstrWhy)
{
    if (!m_optLine || m_pLine != nullptr) {
        return 0;
    }
    int iError = WriteNote(m_strChip, *m_optLine);
    if (iError != 0) {
        *pstrWhy = "that " + LineText(*m_optLine) + " is released cannot be noted: " + files::Reason(iError);
        return iError;
    }
    iError = Gpio().pfnRequest(m_optLine->strGpioChip.c_str(), m_optLine->uiLine, Level(*m_optLine, false),
                               &m_pLine, pstrWhy);
    if (iError != 0) {
        *pstrWhy = LineText(*m_optLine) + " cannot be released: " + *pstrWhy;
        (void)DropNote(m_strChip); // the line is as it was
    }
    return iError;
}

int WriteEnable::End(std::string *pstrWhy)
{
    if (m_pLine == nullptr) {
        return 0;
    }
    int iError = Gpio().pfnSet(m_pLine, Level(*m_optLine, true));
    Gpio().pfnRelease(m_pLine);
    m_pLine = nullptr;
    iError = iError == 0 ? DropNote(m_strChip) : iError;
    if (iError != 0) {
        *pstrWhy = LineText(*m_optLine) + " is not asserted again: " + files::Reason(iError);
    }
    return iError;
}

bool IsLeftEnabled(const std::string &strChip)
{
    struct stat stStat = {};
    return files::Status(PlaceOf(NotePath(strChip).c_str()), &stStat) == 0;
}

int ProtectAgain(const std::string &strChip, std::string *pstrWhy)
{
    std::string strNote;
    int iError = files::ReadAll(PlaceOf(NotePath(strChip).c_str()), g_uiNoteMax, &strNote);
    if (iError != 0) {
        return iError == ENOENT ? 0 : iError; // another process was faster
    }
    const JSON json = JSON::parse(strNote, nullptr, false);
    const PROTECT_LINE_S stLine = LineOf(json); // as it was released, whatever the settings say now
    void *pLine = nullptr;
    iError =
        Gpio().pfnRequest(stLine.strGpioChip.c_str(), stLine.uiLine, Level(stLine, true), &pLine, pstrWhy);
    if (iError != 0) {
        *pstrWhy = LineText(stLine) + ", which a writer has left released, cannot be asserted: " + *pstrWhy;
        return iError;
    }
    Gpio().pfnRelease(pLine);
    HOST_LOG(BMC_DIAG_WARNING,
             "EEPROM %s: %s was left released by a writer that ended, and is asserted again", strChip.c_str(),
             LineText(stLine).c_str());
    return DropNote(strChip);
}

} // namespace host
