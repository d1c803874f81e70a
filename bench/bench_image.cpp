// SPDX-License-Identifier: Apache-2.0
#include "bench_image.h"

#include <algorithm>
#include <string>

namespace {

u8 ZeroSum(const std::vector<u8> &vecBytes, size_t uiFrom, size_t uiCount)
{
    u32 uiSum = 0;
    for (size_t i = 0; i < uiCount; ++i) {
        uiSum += vecBytes[uiFrom + i];
    }
    return static_cast<u8>(0U - uiSum);
}

void AddText(bench::IMAGE_S &stImage, const std::string &strText)
{
    stImage.vecBytes.push_back(static_cast<u8>(0xC0U | strText.size()));
    stImage.vecBytes.insert(stImage.vecBytes.end(), strText.begin(), strText.end());
    stImage.vecTexts.push_back(static_cast<u32>(strText.size() + 1U));
}

// Adds an info area: its fixed bytes after version and length, then its texts. Returns its offset
// in 8-byte units.
u8 AddArea(bench::IMAGE_S &stImage, const std::vector<u8> &vecFixed, const std::vector<std::string> &vecTexts)
{
    std::vector<u8> &vecBytes = stImage.vecBytes;
    const size_t uiStart = vecBytes.size();
    vecBytes.insert(vecBytes.end(), {1U, 0U});
    vecBytes.insert(vecBytes.end(), vecFixed.begin(), vecFixed.end());
    for (const std::string &strText : vecTexts) {
        AddText(stImage, strText);
    }
    vecBytes.push_back(0xC1U);
    while ((vecBytes.size() - uiStart) % 8U != 7U) {
        vecBytes.push_back(0U);
    }
    const size_t uiLength = vecBytes.size() + 1U - uiStart;
    vecBytes[uiStart + 1U] = static_cast<u8>(uiLength / 8U);
    vecBytes.push_back(ZeroSum(vecBytes, uiStart, uiLength - 1U));
    return static_cast<u8>(uiStart / 8U);
}

u8 AddRecords(bench::IMAGE_S &stImage, u32 uiCount)
{
    std::vector<u8> &vecBytes = stImage.vecBytes;
    const size_t uiStart = vecBytes.size();
    for (u32 i = 1; i <= uiCount; ++i) {
        std::vector<u8> vecData{static_cast<u8>(i)};
        vecData.resize(17U, static_cast<u8>('a' + i));
        const u8 ucFormat = i == uiCount ? 0x82U : 0x02U;
        std::vector<u8> vecHeader{3U, ucFormat, static_cast<u8>(vecData.size()),
                                  ZeroSum(vecData, 0, vecData.size())};
        vecHeader.push_back(ZeroSum(vecHeader, 0, vecHeader.size()));
        vecBytes.insert(vecBytes.end(), vecHeader.begin(), vecHeader.end());
        vecBytes.insert(vecBytes.end(), vecData.begin(), vecData.end());
        stImage.vecTexts.push_back(static_cast<u32>(vecData.size()));
    }
    vecBytes.resize((vecBytes.size() + 7U) / 8U * 8U, 0U);
    return static_cast<u8>(uiStart / 8U);
}

} // namespace

namespace bench {

IMAGE_S FullImage()
{
    IMAGE_S stImage{std::vector<u8>(8U, 0U), {}};
    std::vector<u8> &vecBytes = stImage.vecBytes;
    vecBytes[1] = static_cast<u8>(vecBytes.size() / 8U);
    vecBytes.push_back(1U);
    AddText(stImage, "internal-use!");
    vecBytes.push_back(0xC1U);
    vecBytes.resize((vecBytes.size() + 7U) / 8U * 8U, 0U);
    vecBytes[2] = AddArea(
        stImage, {0x17U},
        {"CHS-PART-0123456", "CHS-SERIAL-01234", "CUSTOMER-0001", "00A0C9141E3F", "16", "CLEI-01", "NODE-7"});
    stImage.vecTexts.push_back(64U); // the chassis type's description
    vecBytes[3] = AddArea(
        stImage, {0U, 0x12U, 0x34U, 0xAAU},
        {"Board Maker Inc.", "Mainboard X200", "BRD-SERIAL-01234", "BRD-PART-0123", "board.fru", "TOP-01"});
    vecBytes[4] = AddArea(stImage, {0U},
                          {"Product Maker", "Server 2000", "PRD-PART-0123", "V1.0", "PRD-SERIAL-01234",
                           "ASSET-42", "product.fru", "Compute", "PSU-A", "NET-1", "PWR-2"});
    vecBytes[5] = AddRecords(stImage, 7U);
    vecBytes[0] = 1U;
    vecBytes[7] = ZeroSum(vecBytes, 0, 7U);
    return stImage;
}

std::vector<u8> InEeprom(const IMAGE_S &stImage, u32 uiSize)
{
    std::vector<u8> vecEeprom(uiSize, 0xFFU);
    std::copy(stImage.vecBytes.begin(), stImage.vecBytes.end(), vecEeprom.begin());
    return vecEeprom;
}

} // namespace bench
