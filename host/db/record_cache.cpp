// SPDX-License-Identifier: Apache-2.0
#include "db/record_cache.h"

namespace {

constexpr int g_iRegion = 32768;                // SQLite maps the index in pieces of so many bytes
constexpr size_t g_uiMostBytes = 1024U * 1024U; // a controller's cached images are a few KiB each
constexpr size_t g_uiInitialised = 3;           // the word whose first byte tells that the header is filled

} // namespace

namespace db {

void RecordCache::Attach(sqlite3 *pstDb)
{
    Detach();
    sqlite3_file *pstFile = nullptr;
    void volatile *pIndex = nullptr;
    if (sqlite3_file_control(pstDb, "main", SQLITE_FCNTL_FILE_POINTER, &pstFile) == SQLITE_OK &&
        pstFile != nullptr && pstFile->pMethods != nullptr && pstFile->pMethods->iVersion >= 2 &&
        pstFile->pMethods->xShmMap(pstFile, 0, g_iRegion, 0, &pIndex) == SQLITE_OK) {
        m_puiIndex = static_cast<const u32 *>(const_cast<const void *>(pIndex));
    }
}

void RecordCache::Detach()
{
    m_puiIndex = nullptr;
    Clear();
}

void RecordCache::Clear()
{
    m_bKnown = false;
    m_uiBytes = 0;
    m_mapRecords.clear();
}

// Writers fill the second copy first, then the first one: equal copies are whole.
bool RecordCache::Read(HEADER *pauHeader) const
{
    if (m_puiIndex == nullptr) {
        return false;
    }
    for (size_t i = 0; i < WORDS; ++i) {
        (*pauHeader)[i] = __atomic_load_n(m_puiIndex + i, __ATOMIC_ACQUIRE);
    }
    for (size_t i = 0; i < WORDS; ++i) {
        if ((*pauHeader)[i] != __atomic_load_n(m_puiIndex + WORDS + i, __ATOMIC_ACQUIRE)) {
            return false;
        }
    }
    return (*pauHeader)[g_uiInitialised] != 0U;
}

void RecordCache::Refresh()
{
    HEADER auHeader = {};
    if (!Read(&auHeader)) {
        Clear();
    } else if (!m_bKnown || auHeader != m_auHeader) {
        Clear();
        m_auHeader = auHeader;
        m_bKnown = true;
    }
}

const std::vector<u8> *RecordCache::Find(u32 uiKey) const
{
    const auto itRecord = m_mapRecords.find(uiKey);
    return itRecord == m_mapRecords.end() ? nullptr : &itRecord->second;
}

void RecordCache::Keep(u32 uiKey, const void *pData, u32 uiLen)
{
    HEADER auHeader = {};
    if (!m_bKnown || !Read(&auHeader) || auHeader != m_auHeader || uiLen > g_uiMostBytes / 4U) {
        return;
    }
    if (m_uiBytes + uiLen > g_uiMostBytes) {
        m_mapRecords.clear();
        m_uiBytes = 0;
    }
    const auto *pucData = static_cast<const u8 *>(pData);
    if (m_mapRecords.emplace(uiKey, std::vector<u8>(pucData, pucData + uiLen)).second) {
        m_uiBytes += uiLen;
    }
}

} // namespace db
