// SPDX-License-Identifier: Apache-2.0
// A value of a JSON description with the path that leads to it. Every accessor fails with that path and with
// what would be accepted.
#ifndef TOOLKIT_BASE_JSON_NODE_H
#define TOOLKIT_BASE_JSON_NODE_H

#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "lib_fru_types.h"

// The file's JSON; members that stand twice in one object are refused.
nlohmann::json ParseJsonFile(const std::string &strFile);
// The same for a text in memory; strTitle goes in front of every complaint.
nlohmann::json ParseJsonDocument(const std::string &strText, const std::string &strTitle);

class JsonNode
{
  public:
    // strFile goes in front of every complaint.
    JsonNode(const nlohmann::json &stValue, std::string strFile, std::string strPath)
        : m_stValue(stValue), m_strFile(std::move(strFile)), m_strPath(std::move(strPath))
    {}

    [[noreturn]] void Refuse(const std::string &strWhy, std::vector<std::string> vecAccepted = {}) const;
    // The same for a member of this object.
    [[noreturn]] void RefuseMember(const std::string &strName, const std::string &strWhy,
                                   std::vector<std::string> vecAccepted = {}) const;

    // Refuses anything but an object, and members that are not in the list.
    void RequireObject(const std::vector<const char *> &vecNames) const;
    bool Has(const char *pcName) const;
    const nlohmann::json &Value() const
    {
        return m_stValue;
    }
    JsonNode Member(const char *pcName) const;
    // The elements of a member that is an array.
    std::vector<JsonNode> Elements(const char *pcName) const;
    // A whole number, as a JSON number or as text ("0xa0"). Without a default it has to be there.
    u32 Number(const char *pcName, u32 uiMin, u32 uiMax, std::optional<u32> optDefault = std::nullopt) const;
    std::string Text(const char *pcName, size_t uiMin, size_t uiMax) const;
    bool Flag(const char *pcName, bool bDefault) const;

  private:
    std::string PathOf(const std::string &strName) const;

    const nlohmann::json &m_stValue;
    std::string m_strFile;
    std::string m_strPath;
};

#endif
