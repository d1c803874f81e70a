// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/json_node.h"

#include <algorithm>

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/json.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"

using nlohmann::json;

namespace {

// A value as the complaint shows it: short, and nothing that a terminal would act on.
std::string Shown(const json &stValue)
{
    std::string strText = EscapeText(stValue.dump(-1, ' ', true, json::error_handler_t::replace));
    if (strText.size() > 40U) {
        strText.replace(37U, std::string::npos, "...");
    }
    return strText;
}

} // namespace

json ParseJsonFile(const std::string &strFile)
{
    const std::vector<u8> vecBytes = ReadNamedFile(strFile);
    return ParseJsonDocument({vecBytes.begin(), vecBytes.end()}, NamedFileTitle(strFile));
}

json ParseJsonDocument(const std::string &strText, const std::string &strTitle)
{
    std::vector<std::set<std::string>> vecSeen;
    const auto fnCheck = [&](int iDepth, json::parse_event_t enEvent, json &stValue) {
        if (iDepth > JSON_DEPTH_MAX) {
            FailRefused(
                strTitle +
                Format(": objects and arrays stand in each other more than %d deep; accepted: up to %d",
                       JSON_DEPTH_MAX, JSON_DEPTH_MAX));
        }
        if (enEvent == json::parse_event_t::object_start) {
            vecSeen.emplace_back();
        } else if (enEvent == json::parse_event_t::object_end) {
            vecSeen.pop_back();
        } else if (enEvent == json::parse_event_t::key &&
                   !vecSeen.back().insert(stValue.get<std::string>()).second) {
            FailRefused(strTitle + ": the member " + Shown(stValue) +
                        " stands twice in one object; accepted: each member once");
        }
        return true;
    };
    try {
        return json::parse(strText, fnCheck);
    } catch (const json::exception &stError) { // a number may be too large for any, too
        std::string strWhat = stError.what();
        strWhat.erase(0, std::min(strWhat.size(), strWhat.find("] ") + 2U)); // the library's own numbering
        FailRefused(strTitle + ": not JSON: " + EscapeText(strWhat));
    }
}

std::string JsonNode::PathOf(const std::string &strName) const
{
    return m_strPath.empty() ? strName : m_strPath + "." + strName;
}

void JsonNode::Refuse(const std::string &strWhy, std::vector<std::string> vecAccepted) const
{
    FailRefused(m_strFile + ": " + (m_strPath.empty() ? "" : m_strPath + ": ") + strWhy,
                std::move(vecAccepted));
}

void JsonNode::RefuseMember(const std::string &strName, const std::string &strWhy,
                            std::vector<std::string> vecAccepted) const
{
    FailRefused(m_strFile + ": " + PathOf(strName) + ": " + strWhy, std::move(vecAccepted));
}

void JsonNode::RequireObject(const std::vector<const char *> &vecNames) const
{
    const std::vector<std::string> vecAccepted(vecNames.begin(), vecNames.end());
    const std::string strAccepted = "; accepted: " + Join(vecAccepted, ", ");
    if (!m_stValue.is_object()) {
        Refuse(Shown(m_stValue) + " is not an object" + strAccepted, vecAccepted);
    }
    for (const auto &itMember : m_stValue.items()) {
        if (std::find(vecAccepted.begin(), vecAccepted.end(), itMember.key()) == vecAccepted.end()) {
            RefuseMember(EscapeText(itMember.key()),
                         "unknown member" + DidYouMean(itMember.key(), vecAccepted) + strAccepted,
                         vecAccepted);
        }
    }
}

bool JsonNode::Has(const char *pcName) const
{
    return m_stValue.contains(pcName);
}

JsonNode JsonNode::Member(const char *pcName) const
{
    if (!Has(pcName)) {
        RefuseMember(pcName, "missing");
    }
    return {m_stValue[pcName], m_strFile, PathOf(pcName)};
}

std::vector<JsonNode> JsonNode::Elements(const char *pcName) const
{
    const JsonNode stArray = Member(pcName);
    if (!stArray.m_stValue.is_array()) {
        stArray.Refuse(Shown(stArray.m_stValue) + " is not an array");
    }
    std::vector<JsonNode> vecElements;
    for (size_t i = 0; i < stArray.m_stValue.size(); i++) {
        vecElements.emplace_back(stArray.m_stValue[i], m_strFile, stArray.m_strPath + Format("[%zu]", i));
    }
    return vecElements;
}

u32 JsonNode::Number(const char *pcName, u32 uiMin, u32 uiMax, std::optional<u32> optDefault) const
{
    const std::string strAccepted =
        Format("accepted: %u to %u, as a number or as text such as \"0x%x\"", uiMin, uiMax, uiMax);
    if (!Has(pcName)) {
        if (optDefault.has_value()) {
            return *optDefault;
        }
        RefuseMember(pcName, "missing; " + strAccepted);
    }
    const json &stValue = m_stValue[pcName];
    std::optional<u32> optNumber;
    if (stValue.is_string()) {
        optNumber = ParseNumber(stValue.get<std::string>(), uiMax);
    } else if (stValue.is_number_unsigned() && stValue.get<unsigned long long>() <= uiMax) {
        optNumber = stValue.get<u32>();
    }
    if (!optNumber.has_value() || *optNumber < uiMin) {
        RefuseMember(pcName, Shown(stValue) + " is refused; " + strAccepted);
    }
    return *optNumber;
}

std::string JsonNode::Text(const char *pcName, size_t uiMin, size_t uiMax) const
{
    const std::string strAccepted = Format("accepted: a text of %zu to %zu characters", uiMin, uiMax);
    if (!Has(pcName)) {
        RefuseMember(pcName, "missing; " + strAccepted);
    }
    const json &stValue = m_stValue[pcName];
    if (!stValue.is_string() || stValue.get_ref<const std::string &>().size() < uiMin ||
        stValue.get_ref<const std::string &>().size() > uiMax) {
        RefuseMember(pcName, Shown(stValue) + " is refused; " + strAccepted);
    }
    std::string strText = stValue.get<std::string>();
    if (std::any_of(strText.begin(), strText.end(),
                    [](char cChar) { return static_cast<u8>(cChar) < 0x20U || cChar == 0x7F; })) {
        RefuseMember(pcName, Shown(stValue) + " holds control characters; " + strAccepted + " without them");
    }
    return strText;
}

bool JsonNode::Flag(const char *pcName, bool bDefault) const
{
    if (!Has(pcName)) {
        return bDefault;
    }
    if (!m_stValue[pcName].is_boolean()) {
        RefuseMember(pcName, Shown(m_stValue[pcName]) + " is refused; accepted: true or false");
    }
    return m_stValue[pcName].get<bool>();
}
