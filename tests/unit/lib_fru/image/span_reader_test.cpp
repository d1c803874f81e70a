// SPDX-License-Identifier: Apache-2.0
// The span reader: chunks, the request block that it moves on, and the ends of its buffers.
#include <gtest/gtest.h>

#include <memory>

#include "fru_device.h"
#include "lib_fru_access.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::Null;

struct SPAN_S
{
    u32 uiRet = 0;
    FRU_READ_REQ_S stReq = {};
    BYTES vecBytes; // the whole buffer, 0xA5 where nothing was written
};

// Reads into a buffer of exactly uiTotal bytes.
SPAN_S Span(u16 usOffset, u8 ucFirst, u32 uiTotal)
{
    SPAN_S stSpan;
    stSpan.stReq = {device::g_ucID, usOffset, ucFirst};
    const std::unique_ptr<u8[]> upBuf(new u8[uiTotal]);
    (void)memset(upBuf.get(), 0xA5, uiTotal);
    stSpan.uiRet = LIB_FRU_GetFRUDataFromEEPROM(uiTotal, &stSpan.stReq, sizeof(stSpan.stReq), upBuf.get(), 0);
    stSpan.vecBytes.assign(upBuf.get(), upBuf.get() + uiTotal);
    return stSpan;
}

void Provide(size_t uiSize)
{
    fake::Reset();
    device::Provision(device::Pattern(uiSize));
    device::PutStatus(1); // so that the EEPROM calls show the chunks
}

LINES Chunks(const std::vector<std::pair<u32, u32>> &vecChunks)
{
    LINES vecLines;
    for (const auto &[uiOffset, uiCount] : vecChunks) {
        vecLines.push_back(
            device::Eeprom("read", device::g_usStart + uiOffset, uiCount, static_cast<i32>(uiCount)));
    }
    return vecLines;
}

TEST(SpanReader, ChunksAfterTheFirstHave128Bytes)
{
    Provide(512);
    const SPAN_S stSpan = Span(10, 8, 8 + 128 + 128 + 5);
    EXPECT_EQ(stSpan.uiRet, 0U);
    EXPECT_EQ(stSpan.vecBytes, device::Part(device::Pattern(512), 10, 269));
    EXPECT_EQ(fake::Calls("EEPROM"), Chunks({{10, 8}, {18, 128}, {146, 128}, {274, 5}}));
    EXPECT_EQ(stSpan.stReq.ucDeviceID, device::g_ucID);
    EXPECT_EQ(u32{stSpan.stReq.usOffset}, 279U);
    EXPECT_EQ(stSpan.stReq.ucCount, 0U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SpanReader, AFirstChunkOfTheWholeTotalIsTheOnlyOne)
{
    Provide(64);
    const SPAN_S stSpan = Span(0, 64, 64);
    EXPECT_EQ(stSpan.uiRet, 0U);
    EXPECT_EQ(stSpan.vecBytes, device::Pattern(64));
    EXPECT_EQ(fake::Calls("EEPROM"), Chunks({{0, 64}}));
    EXPECT_EQ(u32{stSpan.stReq.usOffset}, 64U);
    EXPECT_EQ(stSpan.stReq.ucCount, 0U);
}

TEST(SpanReader, AFirstChunkBeyondTheTotalIsReadWholeAndCopiedInPart)
{
    Provide(300);
    const SPAN_S stSpan = Span(4, 255, 10);
    EXPECT_EQ(stSpan.uiRet, 0U);
    EXPECT_EQ(stSpan.vecBytes, device::Part(device::Pattern(300), 4, 10));
    EXPECT_EQ(fake::Calls("EEPROM"), Chunks({{4, 255}}));
    EXPECT_EQ(u32{stSpan.stReq.usOffset}, 259U);
    EXPECT_EQ(stSpan.stReq.ucCount, 0U);
}

TEST(SpanReader, AFirstChunkAbove128IsAllowed)
{
    Provide(600);
    const SPAN_S stSpan = Span(0, 255, 400);
    EXPECT_EQ(stSpan.uiRet, 0U);
    EXPECT_EQ(stSpan.vecBytes, device::Part(device::Pattern(600), 0, 400));
    EXPECT_EQ(fake::Calls("EEPROM"), Chunks({{0, 255}, {255, 128}, {383, 17}}));
}

TEST(SpanReader, AFirstChunkOfNothingStillGetsThere)
{
    Provide(64);
    const SPAN_S stSpan = Span(0, 0, 20);
    EXPECT_EQ(stSpan.uiRet, 0U);
    EXPECT_EQ(stSpan.vecBytes, device::Part(device::Pattern(64), 0, 20));
    EXPECT_EQ(fake::Calls("EEPROM"), Chunks({{0, 0}, {0, 20}}));
}

TEST(SpanReader, ATotalOfNothingFailsAfterTheAllocation)
{
    Provide(64);
    fake::Arm({fake::KIND_E::ALLOC, 0, false});
    FRU_READ_REQ_S stReq = {device::g_ucID, 1, 2};
    u8 ucByte = 0xA5;
    EXPECT_EQ(LIB_FRU_GetFRUDataFromEEPROM(0, &stReq, 4, &ucByte, 0), 0x81000001U);
    EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 1U);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(LIB_FRU_GetFRUDataFromEEPROM(0, &stReq, 4, &ucByte, 0), 0x81000004U);
    fake::Disarm();
    EXPECT_EQ(ucByte, 0xA5);
    EXPECT_EQ(u32{stReq.usOffset}, 1U);
    EXPECT_EQ(stReq.ucCount, 2U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Fail allocating memory!")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(SpanReader, OutOfMemory)
{
    Provide(64);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    FRU_READ_REQ_S stReq = {device::g_ucID, 0, 8};
    u8 aucBuf[8] = {};
    EXPECT_EQ(LIB_FRU_GetFRUDataFromEEPROM(8, &stReq, 4, aucBuf, 0), 0x81000004U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Fail allocating memory!")});
}

TEST(SpanReader, NullPointers)
{
    fake::Reset();
    FRU_READ_REQ_S stReq = {};
    u8 ucByte = 0;
    EXPECT_EQ(LIB_FRU_GetFRUDataFromEEPROM(1, nullptr, 4, nullptr, 0), 0x81000002U);
    EXPECT_EQ(LIB_FRU_GetFRUDataFromEEPROM(1, &stReq, 4, nullptr, 0), 0x81000002U);
    EXPECT_EQ(LIB_FRU_GetFRUDataFromEEPROM(1, nullptr, 4, &ucByte, 0), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("LIB_FRU_GetFRUDataFromEEPROM", "pucFRUBuf"),
                                       Null("LIB_FRU_GetFRUDataFromEEPROM", "pucFRUBuf"),
                                       Null("LIB_FRU_GetFRUDataFromEEPROM", "pstFRUReadReq")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(SpanReader, AFailingChunkLeavesTheRequestAtIt)
{
    Provide(200);
    const SPAN_S stSpan = Span(0, 100, 201); // the last chunk would cross the end
    EXPECT_EQ(stSpan.uiRet, 0x81000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(4, 4, "Invalid read counts[0x65], exceeds[0x64]!"),
                                       Line(5, 4, "Read fru[0x21] data failed!")}));
    EXPECT_EQ(u32{stSpan.stReq.usOffset}, 100U);
    EXPECT_EQ(stSpan.stReq.ucCount, 101U);
    EXPECT_EQ(device::Part(stSpan.vecBytes, 0, 100), device::Part(device::Pattern(200), 0, 100));
    EXPECT_EQ(device::Part(stSpan.vecBytes, 100, 101), BYTES(101, 0xA5));
}

TEST(SpanReader, AnUnknownDeviceFails)
{
    fake::Reset();
    const SPAN_S stSpan = Span(0, 8, 8);
    EXPECT_EQ(stSpan.uiRet, 0x81000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(4, 4, "Fail to find FRU Device ID[0x21]!"),
                                       Line(5, 4, "Read fru[0x21] data failed!")}));
}

TEST(SpanReader, ShortAnswersAreSpacedByWhatWasAskedFor)
{
    Provide(64);
    fake::SetEepromResult(1, 5);
    const SPAN_S stSpan = Span(0, 16, 32);
    EXPECT_EQ(stSpan.uiRet, 0U);
    // The chunk takes its 16 bytes of the span all the same; the second one begins where it should.
    EXPECT_EQ(device::Part(stSpan.vecBytes, 16, 16), device::Part(device::Pattern(64), 16, 16));
    EXPECT_EQ(fake::Calls("EEPROM").size(), 2U);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "Read length is not equal! ReqLen[0x10] RetLen[0x5] ID[0x21].")});
}

TEST(SpanReader, BytesThatNobodyReturnedAreNotFromElsewhere)
{
    Provide(64);
    device::Chip().resize(device::g_usStart + 4U);
    const SPAN_S stSpan = Span(0, 16, 16);
    EXPECT_EQ(stSpan.uiRet, 0U);
    EXPECT_EQ(device::Part(stSpan.vecBytes, 0, 4), device::Pattern(4));
    EXPECT_EQ(device::Part(stSpan.vecBytes, 4, 12), BYTES(12, 0));
}

TEST(SpanReader, Sweep)
{
    SPAN_S stSpan;
    fake::Sweep([&] { device::Provision(device::Pattern(300)); }, [&] { stSpan = Span(0, 40, 300); },
                [&](const fake::FAULT_S *pstFault) {
                    EXPECT_TRUE(stSpan.uiRet == 0U || stSpan.uiRet == 0x81000001U ||
                                stSpan.uiRet == 0x81000004U);
                    if (stSpan.uiRet == 0U) {
                        EXPECT_EQ(stSpan.vecBytes, device::Pattern(300));
                        EXPECT_EQ(u32{stSpan.stReq.usOffset}, 300U);
                    } else {
                        EXPECT_NE(pstFault, nullptr);
                    }
                    EXPECT_EQ(device::Chip(), device::ChipWith(device::Pattern(300)));
                    stSpan = SPAN_S();
                });
}

} // namespace
