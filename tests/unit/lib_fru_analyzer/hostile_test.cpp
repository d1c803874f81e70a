// SPDX-License-Identifier: Apache-2.0
// Damaged, cut and random images: the decoder stays within them, what it gives out is sound, and the release
// leaves nothing behind.
#include <random>

#include "encoder_case.h"

namespace {

using namespace codec;

// A size byte of 0 goes with a null text; else the text ends within its buffer.
void ExpectSound(const u8 *pucText, u8 ucSize)
{
    if (ucSize == 0U) {
        EXPECT_EQ(pucText, nullptr);
    } else {
        ASSERT_NE(pucText, nullptr);
        EXPECT_EQ(pucText[ucSize - 1U], 0U);
    }
}

void ExpectSoundRecord(const FRU_DATA_S &stData)
{
    const FRU_CHASSIS_INFO_S &stChassis = stData.stChassisInfo;
    ExpectSound(stChassis.pucChassisPartNum, stChassis.ucChassisPartNumLen);
    ExpectSound(stChassis.pucChassisSerialNum, stChassis.ucChassisSerialNumLen);
    const FRU_BOARD_INFO_S &stBoard = stData.stBoardInfo;
    ExpectSound(stBoard.pucBoardMfr, stBoard.ucBoardMfrLen);
    ExpectSound(stBoard.pucBoardProductName, stBoard.ucBoardProductNameLen);
    ExpectSound(stBoard.pucBoardSerialNum, stBoard.ucBoardSerialNumLen);
    ExpectSound(stBoard.pucBoardPartNum, stBoard.ucBoardPartNumLen);
    ExpectSound(stBoard.pucFRUFileID, stBoard.ucFRUFileIDLen);
    const FRU_PRODUCT_INFO_S &stProduct = stData.stProductInfo;
    ExpectSound(stProduct.pucMfrName, stProduct.ucMfrNameLen);
    ExpectSound(stProduct.pucProductName, stProduct.ucProductNameLen);
    ExpectSound(stProduct.pucProductPartNum, stProduct.ucProductPartNumLen);
    ExpectSound(stProduct.pucProductVersion, stProduct.ucProductVersionLen);
    ExpectSound(stProduct.pucProductSerialNum, stProduct.ucProductSerialNumLen);
    ExpectSound(stProduct.pucAssetTag, stProduct.ucAssetTagLen);
    ExpectSound(stProduct.pucFRUFileID, stProduct.ucFRUFileIDLen);
}

// Decodes, reads every text, encodes into a buffer of the image's size, releases.
u32 Exercise(const BYTES &vecImage, bool bFixedSlots)
{
    const u32 uiBefore = fake::LiveAllocations();
    FRU_DATA_S stData{};
    if (bFixedSlots) {
        stData.stChassisInfo.ucCustomFieldCount = 5;
        stData.stProductInfo.ucCustomFieldCount = 4;
    }
    const u32 uiRet = Decode(vecImage, &stData);
    EXPECT_TRUE(uiRet == 0U || uiRet == 0x29000001U || uiRet == 0x29000002U || uiRet == 0x29000008U);
    ExpectSoundRecord(stData);
    if (uiRet == 0U) {
        (void)model::Read(&stData);
        const ENCODED_S stEncoded = Encode(&stData, static_cast<u32>(vecImage.size()));
        EXPECT_LE(stEncoded.iRet, static_cast<i32>(vecImage.size()));
    }
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    return uiRet;
}

TEST(Hostile, EveryTruncationEndsInItsAreasResult)
{
    const BYTES vecWhole = image::FullImage(8);
    const size_t uiInternalEnd = 8U + 10U; // version and field; no checksum to keep
    const size_t uiProductEnd = 8U * (vecWhole[4] + vecWhole[8U * vecWhole[4] + 1U]);
    for (size_t uiLength = 0; uiLength <= vecWhole.size(); ++uiLength) {
        SCOPED_TRACE(uiLength);
        fake::Reset();
        const BYTES vecCut(vecWhole.begin(), vecWhole.begin() + static_cast<long>(uiLength));
        const u32 uiRet = Exercise(vecCut, false);
        EXPECT_EQ(uiRet, uiLength == 0U             ? 0x29000008U
                         : uiLength < 8U            ? 0x29000002U
                         : uiLength <= uiProductEnd ? 0x29000001U
                                                    : 0U);
        const LINES vecMessages = fake::Messages();
        if (uiLength >= 8U && uiLength < uiInternalEnd) {
            EXPECT_EQ(vecMessages.back(), Line(2, "Failed to get InternalUseArea!"));
        } else if (uiLength >= 8U && uiLength <= 8U * vecWhole[3]) {
            EXPECT_EQ(vecMessages.back(), Line(2, "Failed to get ChassisInfoArea!"));
        } else if (uiLength >= 8U && uiLength <= 8U * vecWhole[4]) {
            EXPECT_EQ(vecMessages.back(), Line(2, "Failed to get BoardInfoArea!"));
        }
    }
}

TEST(Hostile, EverySingleBitFlip)
{
    const BYTES vecWhole = image::FullImage(4);
    for (size_t i = 0; i < vecWhole.size() * 8U; ++i) {
        SCOPED_TRACE(i);
        fake::Reset();
        BYTES vecImage = vecWhole;
        vecImage[i / 8U] = static_cast<u8>(vecImage[i / 8U] ^ (1U << (i % 8U)));
        (void)Exercise(vecImage, i % 3U == 0U);
    }
}

// Makes header and info-area checksums right again, so that damage gets past them.
void Repair(BYTES &vecImage)
{
    for (const size_t i : {size_t{2}, size_t{3}, size_t{4}}) {
        const size_t uiStart = 8U * vecImage[i];
        if (uiStart == 0U || uiStart + 2U > vecImage.size()) {
            continue;
        }
        const size_t uiEnd = uiStart + 8U * vecImage[uiStart + 1U];
        if (uiEnd > uiStart && uiEnd <= vecImage.size()) {
            BYTES vecArea(vecImage.begin() + static_cast<long>(uiStart),
                          vecImage.begin() + static_cast<long>(uiEnd));
            image::FixCheckSum(vecArea);
            vecImage[uiEnd - 1U] = vecArea.back();
        }
    }
    image::FixHeader(vecImage);
}

TEST(Hostile, DamageBehindRightChecksums)
{
    std::mt19937 generator(77U);
    const BYTES vecWhole = image::FullImage(4);
    u32 uiDecoded = 0;
    for (u32 i = 0; i < 3000U; ++i) {
        SCOPED_TRACE(i);
        fake::Reset();
        BYTES vecImage = vecWhole;
        for (size_t j = 1U + generator() % 3U; j > 0U; --j) {
            vecImage[1U + generator() % (vecImage.size() - 1U)] = static_cast<u8>(generator());
        }
        if (generator() % 4U == 0U) {
            vecImage.resize(8U + generator() % (vecImage.size() - 8U));
        }
        Repair(vecImage);
        uiDecoded += Exercise(vecImage, i % 2U == 0U) == 0U ? 1U : 0U;
    }
    EXPECT_GT(uiDecoded, 300U); // the damage does reach the fields
    EXPECT_LT(uiDecoded, 2700U);
}

TEST(Hostile, RandomImages)
{
    std::mt19937 generator(4711U);
    for (u32 i = 0; i < 3000U; ++i) {
        SCOPED_TRACE(i);
        fake::Reset();
        BYTES vecImage(8U + generator() % 300U);
        for (u8 &ucByte : vecImage) {
            // Mostly bytes that mean something: versions, small lengths, end marks, empty fields.
            static const u8 g_aucUseful[] = {0U, 1U, 2U, 0xC0U, 0xC1U, 0xC2U, 0xC8U, 0x82U, 0x03U, 0x43U};
            ucByte = generator() % 3U == 0U ? static_cast<u8>(generator()) : g_aucUseful[generator() % 10U];
        }
        vecImage[0] = 1U;
        for (size_t j = 1; j < 6U; ++j) {
            vecImage[j] = static_cast<u8>(generator() % 12U);
            if (8U * vecImage[j] < vecImage.size()) {
                vecImage[8U * vecImage[j]] = 1U;
            }
        }
        vecImage[6] = 0U;
        vecImage[0] = 1U;
        Repair(vecImage);
        (void)Exercise(vecImage, i % 2U == 0U);
    }
}

TEST(Hostile, RandomMultiRecords)
{
    std::mt19937 generator(815U);
    for (u32 i = 0; i < 500U; ++i) {
        SCOPED_TRACE(i);
        fake::Reset();
        image::AREAS_S stAreas;
        const size_t uiCount = 1U + generator() % 70U;
        for (size_t j = 0; j < uiCount; ++j) {
            const BYTES vecData(generator() % 20U, static_cast<u8>(generator()));
            image::operator+=(stAreas.vecMultiRecord,
                              image::Record(static_cast<u8>(generator()), vecData, generator() % 40U == 0U));
        }
        BYTES vecImage = image::Image(stAreas, generator() % 8U);
        if (generator() % 2U == 0U) {
            vecImage.resize(8U + generator() % (vecImage.size() - 8U));
        }
        EXPECT_EQ(Exercise(vecImage, false), 0U); // MultiRecords never fail the parse
    }
}

TEST(Hostile, AnyAllocationMayFail)
{
    for (const bool bFixedSlots : {false, true}) {
        const BYTES vecImage = image::FullImage();
        FRU_DATA_S stData;
        u32 uiRet = 0;
        u32 uiAllocations = 0;
        fake::Sweep(
            [&] {
                stData = FRU_DATA_S{};
                stData.stChassisInfo.ucCustomFieldCount = bFixedSlots ? 5 : 0;
                stData.stProductInfo.ucCustomFieldCount = bFixedSlots ? 4 : 0;
            },
            [&] { uiRet = Decode(vecImage, &stData); },
            [&](const fake::FAULT_S *pstFault) {
                // Only the MultiRecords' buffers, the last two, may be missing without failing the parse.
                const bool bParsed = pstFault == nullptr || pstFault->uiNth > uiAllocations - 2U;
                uiAllocations = pstFault == nullptr ? fake::Count(fake::KIND_E::ALLOC) : uiAllocations;
                EXPECT_EQ(uiRet, bParsed ? 0U : 0x29000001U);
                EXPECT_EQ(stData.astMultiRecord[0].pucRecordData != nullptr, pstFault == nullptr);
                ExpectSoundRecord(stData);
                FRU_ANALYZER_SafeFree(&stData);
            });
    }
}

} // namespace
