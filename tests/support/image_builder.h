// SPDX-License-Identifier: Apache-2.0
// FRU images for tests, put together byte by byte and independently of the library.
#ifndef TESTS_SUPPORT_IMAGE_BUILDER_H
#define TESTS_SUPPORT_IMAGE_BUILDER_H

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bmc_types.h"

namespace image {

using BYTES = std::vector<u8>;

inline BYTES &operator+=(BYTES &vecLeft, const BYTES &vecRight)
{
    // Not insert(): GCC 12 warns of an overrun that is none.
    for (const u8 ucByte : vecRight) {
        vecLeft.push_back(ucByte);
    }
    return vecLeft;
}

inline u8 ZeroCheckSum(const BYTES &vecBytes)
{
    u32 uiSum = 0;
    for (const u8 ucByte : vecBytes) {
        uiSum += ucByte;
    }
    return static_cast<u8>(0x100U - (uiSum & 0xFFU));
}

// ---- type/length fields ----

// Type 0 binary, 1 BCD plus, 2 packed 6-bit ASCII, 3 8-bit ASCII.
inline BYTES Field(u32 uiType, const BYTES &vecData)
{
    BYTES vecField{static_cast<u8>(uiType << 6U | vecData.size())};
    return vecField += vecData;
}

inline BYTES Text(const std::string &strText)
{
    return Field(3U, BYTES(strText.begin(), strText.end()));
}

inline std::vector<BYTES> Texts(const std::vector<std::string> &vecTexts)
{
    std::vector<BYTES> vecFields;
    for (const std::string &strText : vecTexts) {
        vecFields.push_back(Text(strText));
    }
    return vecFields;
}

// ---- areas ----

// Sets the last byte so that all bytes sum to 0.
inline void FixCheckSum(BYTES &vecArea)
{
    vecArea.back() = 0U;
    vecArea.back() = ZeroCheckSum(vecArea);
}

// Version 1, length, the fixed bytes, the fields, 0xC1, zeros, checksum; uiUnits 0: as short as can be.
inline BYTES InfoArea(const BYTES &vecFixed, const std::vector<BYTES> &vecFields, u32 uiUnits = 0U)
{
    BYTES vecArea{1U, 0U};
    vecArea += vecFixed;
    for (const BYTES &vecField : vecFields) {
        vecArea += vecField;
    }
    vecArea.push_back(0xC1U);
    const size_t uiWanted = uiUnits != 0U ? uiUnits * 8U : (vecArea.size() + 1U + 7U) / 8U * 8U;
    vecArea.resize(uiWanted);
    vecArea[1] = static_cast<u8>(uiWanted / 8U);
    FixCheckSum(vecArea);
    return vecArea;
}

// Fields: part number, serial number, then custom fields.
inline BYTES ChassisArea(u8 ucType, const std::vector<BYTES> &vecFields, u32 uiUnits = 0U)
{
    return InfoArea({ucType}, vecFields, uiUnits);
}

// Fields: manufacturer, product name, serial number, part number, FRU file ID, then custom fields.
inline BYTES BoardArea(u8 ucLanguage, const BYTES &vecDate, const std::vector<BYTES> &vecFields,
                       u32 uiUnits = 0U)
{
    BYTES vecFixed{ucLanguage};
    return InfoArea(vecFixed += vecDate, vecFields, uiUnits);
}

// Fields: manufacturer, product name, part number, version, serial number, asset tag, FRU file ID,
// then custom fields.
inline BYTES ProductArea(u8 ucLanguage, const std::vector<BYTES> &vecFields, u32 uiUnits = 0U)
{
    return InfoArea({ucLanguage}, vecFields, uiUnits);
}

// Version 1, one field, 0xC1, zeros up to a multiple of 8.
inline BYTES InternalArea(const BYTES &vecField)
{
    BYTES vecArea{1U};
    vecArea += vecField;
    vecArea.push_back(0xC1U);
    vecArea.resize((vecArea.size() + 7U) / 8U * 8U);
    return vecArea;
}

inline BYTES Record(u8 ucType, const BYTES &vecData, bool bLast, u8 ucVersion = 2U)
{
    BYTES vecRecord{ucType, static_cast<u8>((bLast ? 0x80U : 0U) | ucVersion),
                    static_cast<u8>(vecData.size()), ZeroCheckSum(vecData), 0U};
    vecRecord[4] = ZeroCheckSum(vecRecord);
    return vecRecord += vecData;
}

// ---- images ----

// Empty: the area is absent.
struct AREAS_S
{
    BYTES vecInternal;
    BYTES vecChassis;
    BYTES vecBoard;
    BYTES vecProduct;
    BYTES vecMultiRecord;
};

inline void FixHeader(BYTES &vecImage)
{
    vecImage[7] = 0U;
    vecImage[7] = ZeroCheckSum(BYTES(vecImage.begin(), vecImage.begin() + 8));
}

// Common header and the areas in order, each at the next multiple of 8, then uiTail bytes of ucFill: an info
// area must not end with the image's last byte.
inline BYTES Image(const AREAS_S &stAreas, size_t uiTail = 8U, u8 ucFill = 0xFFU)
{
    BYTES vecImage{1U, 0U, 0U, 0U, 0U, 0U, 0U, 0U};
    const BYTES *apvecAreas[] = {&stAreas.vecInternal, &stAreas.vecChassis, &stAreas.vecBoard,
                                 &stAreas.vecProduct, &stAreas.vecMultiRecord};
    for (size_t i = 0; i < 5U; ++i) {
        if (!apvecAreas[i]->empty()) {
            vecImage[i + 1U] = static_cast<u8>(vecImage.size() / 8U);
            vecImage += *apvecAreas[i];
            vecImage.resize((vecImage.size() + 7U) / 8U * 8U);
        }
    }
    vecImage.resize(vecImage.size() + uiTail, ucFill);
    FixHeader(vecImage);
    return vecImage;
}

// An image with everything: 8-bit texts, an internal-use text, three custom fields an area, two MultiRecords.
inline AREAS_S FullAreas()
{
    AREAS_S stAreas;
    stAreas.vecInternal = InternalArea(Text("internal"));
    stAreas.vecChassis = ChassisArea(0x17U, Texts({"CH-PN", "CH-SN", "CH-C0", "CH-C1", "CH-C2"}));
    stAreas.vecBoard =
        BoardArea(25U, {0x40U, 0x11U, 0xC8U},
                  Texts({"B-MFR", "B-NAME", "B-SN", "B-PN", "B-FILE", "B-C0", "B-C1", "B-C2"}));
    stAreas.vecProduct = ProductArea(
        25U, Texts({"P-MFR", "P-NAME", "P-PN", "P-VER", "P-SN", "P-TAG", "P-FILE", "P-C0", "P-C1", "P-C2"}));
    stAreas.vecMultiRecord = Record(0x03U, {1U, 2U, 3U, 4U, 5U}, false);
    stAreas.vecMultiRecord += Record(0xC0U, {0xAAU, 0xBBU}, true);
    return stAreas;
}

inline BYTES FullImage(size_t uiTail = 8U)
{
    return Image(FullAreas(), uiTail);
}

// A heap buffer of exactly that size, so that a read past the end is seen by the address sanitizer.
inline std::unique_ptr<u8[]> Exact(const BYTES &vecImage)
{
    std::unique_ptr<u8[]> upImage(new u8[vecImage.size()]);
    if (!vecImage.empty()) {
        (void)memcpy(upImage.get(), vecImage.data(), vecImage.size());
    }
    return upImage;
}

} // namespace image

#endif
