// SPDX-License-Identifier: Apache-2.0
// The C interface for images: answers, refusals, null pointers.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "bmcfru_tool.h"

namespace {

// Whatever is answered is freed.
class Answer
{
  public:
    explicit Answer(BMCFRU_TOOL_ANSWER_S *pstAnswer) : m_pstAnswer(pstAnswer) {}
    ~Answer()
    {
        BMCFRU_TOOL_FreeAnswer(m_pstAnswer);
    }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;

    int ExitCode() const
    {
        return BMCFRU_TOOL_ExitCode(m_pstAnswer);
    }
    std::string Json() const
    {
        return BMCFRU_TOOL_Json(m_pstAnswer);
    }
    std::string Messages() const
    {
        return BMCFRU_TOOL_Messages(m_pstAnswer);
    }
    std::string Bytes() const
    {
        size_t uiSize = 0;
        const unsigned char *pucBytes = BMCFRU_TOOL_Bytes(m_pstAnswer, &uiSize);
        return pucBytes == nullptr ? "" : std::string(reinterpret_cast<const char *>(pucBytes), uiSize);
    }

  private:
    BMCFRU_TOOL_ANSWER_S *m_pstAnswer;
};

constexpr const char *RECORD =
    R"({"board":{"mfgDate":"2024-05-17 09:30:00","manufacturer":"Maker","serialNumber":"S1"},)"
    R"("product":{"productName":"Name","customFields":["one","two"]}})";

std::string Image(size_t uiSize = 0)
{
    const Answer stAnswer(BMCFRU_TOOL_Encode(RECORD, uiSize, 0U));
    EXPECT_EQ(stAnswer.ExitCode(), BMCFRU_TOOL_DONE) << stAnswer.Json();
    return stAnswer.Bytes();
}

bool Has(const std::string &strText, const std::string &strPart)
{
    return strText.find(strPart) != std::string::npos;
}

} // namespace

TEST(CapiImages, WhatIsEncodedDecodesTheSame)
{
    const std::string strImage = Image(256U);
    ASSERT_EQ(strImage.size(), 256U);
    const Answer stAnswer(BMCFRU_TOOL_Decode(strImage.data(), strImage.size()));
    EXPECT_EQ(stAnswer.ExitCode(), BMCFRU_TOOL_DONE);
    EXPECT_TRUE(Has(stAnswer.Json(), R"("mfgDate":"2024-05-17 09:30:00")")) << stAnswer.Json();
    EXPECT_TRUE(Has(stAnswer.Json(), R"("customFields":["one","two"])")) << stAnswer.Json();
    EXPECT_EQ(stAnswer.Bytes(), "");
}

TEST(CapiImages, TextsAreTheSameInShort)
{
    const std::string strImage = Image();
    char acTexts[256] = "";
    const unsigned uiSize = static_cast<unsigned>(strImage.size());
    const unsigned uiTexts = BMCFRU_TOOL_DecodeTexts(strImage.data(), uiSize, acTexts, sizeof(acTexts));
    const char acExpected[] = "BP\0English\0000\0002024-05-17 09:30:00\00014924730\0Maker\0\0S1\0\0\0000\0"
                              "English\0000\0\0Name\0\0\0\0\0\0002\0one\0two";
    EXPECT_EQ(std::string(acTexts, uiTexts), std::string(acExpected, sizeof(acExpected)));
    char acSmall[4] = "abc";
    EXPECT_EQ(BMCFRU_TOOL_DecodeTexts(strImage.data(), uiSize, acSmall, sizeof(acSmall)), uiTexts);
    EXPECT_STREQ(acSmall, "abc");
    EXPECT_EQ(BMCFRU_TOOL_DecodeTexts("\1\2\3\4\5\6\7", 8U, acTexts, sizeof(acTexts)), 0U);
    EXPECT_EQ(BMCFRU_TOOL_DecodeTexts(nullptr, 8U, acTexts, sizeof(acTexts)), 0U);
}

TEST(CapiImages, ADamagedImageIsToldFromEverySide)
{
    std::string strImage = Image(256U);
    strImage[20] = static_cast<char>(strImage[20] ^ 1);
    const Answer stDecoded(BMCFRU_TOOL_Decode(strImage.data(), strImage.size()));
    EXPECT_EQ(stDecoded.ExitCode(), BMCFRU_TOOL_DAMAGED);
    EXPECT_TRUE(Has(stDecoded.Json(), R"("error":{"code":"damaged","exitCode":6)")) << stDecoded.Json();
    EXPECT_TRUE(Has(stDecoded.Json(), R"("status":)")) << stDecoded.Json();
    EXPECT_TRUE(Has(stDecoded.Messages(), R"("file":"lib_fru_analyzer.c")")) << stDecoded.Messages();
    const Answer stChecked(BMCFRU_TOOL_VerifyImage(strImage.data(), strImage.size()));
    EXPECT_EQ(stChecked.ExitCode(), BMCFRU_TOOL_DONE);
    EXPECT_TRUE(Has(stChecked.Json(), R"("sound":false)")) << stChecked.Json();
    const Answer stLeft(BMCFRU_TOOL_DecodeLeniently(strImage.data(), strImage.size()));
    EXPECT_EQ(stLeft.ExitCode(), BMCFRU_TOOL_DONE);
    EXPECT_TRUE(Has(stLeft.Json(), R"("doubt":)")) << stLeft.Json();
    const Answer stMap(BMCFRU_TOOL_MapImage(strImage.data(), strImage.size()));
    EXPECT_EQ(stMap.ExitCode(), BMCFRU_TOOL_DONE);
    EXPECT_TRUE(Has(stMap.Json(), R"("spans":[{"offset":0)")) << stMap.Json();
}

TEST(CapiImages, NullPointersAndNonsenseAreAnswered)
{
    EXPECT_EQ(Answer(BMCFRU_TOOL_Decode(nullptr, 3U)).ExitCode(), BMCFRU_TOOL_USAGE);
    EXPECT_EQ(Answer(BMCFRU_TOOL_Decode(nullptr, 0U)).ExitCode(), BMCFRU_TOOL_DAMAGED);
    EXPECT_EQ(Answer(BMCFRU_TOOL_Encode(nullptr, 0U, 0U)).ExitCode(), BMCFRU_TOOL_USAGE);
    EXPECT_EQ(Answer(BMCFRU_TOOL_Encode("{", 0U, 0U)).ExitCode(), BMCFRU_TOOL_REFUSED);
    EXPECT_EQ(Answer(BMCFRU_TOOL_Encode(RECORD, 3U, 0U)).ExitCode(), BMCFRU_TOOL_USAGE);
    EXPECT_EQ(BMCFRU_TOOL_ExitCode(nullptr), BMCFRU_TOOL_FAILED);
    EXPECT_STREQ(BMCFRU_TOOL_Json(nullptr), "");
    EXPECT_EQ(BMCFRU_TOOL_Bytes(nullptr, nullptr), nullptr);
    BMCFRU_TOOL_FreeAnswer(nullptr);
    EXPECT_EQ(Answer(BMCFRU_TOOL_Call(nullptr, "list", nullptr, nullptr, 0U)).ExitCode(), BMCFRU_TOOL_USAGE);
    EXPECT_EQ(BMCFRU_TOOL_WorkerPid(nullptr), 0);
    BMCFRU_TOOL_Close(nullptr);
}

TEST(CapiImages, ThreadsDoNotHearEachOther)
{
    const std::string strGood = Image(256U);
    const std::string strBad(64U, '\0');
    std::vector<std::thread> vecThreads;
    for (int i = 0; i < 4; i++) {
        vecThreads.emplace_back([&, i] {
            const std::string &strImage = i % 2 == 0 ? strGood : strBad;
            for (int k = 0; k < 50; k++) {
                const Answer stAnswer(BMCFRU_TOOL_Decode(strImage.data(), strImage.size()));
                EXPECT_EQ(stAnswer.ExitCode(), i % 2 == 0 ? BMCFRU_TOOL_DONE : BMCFRU_TOOL_DAMAGED);
                EXPECT_EQ(Has(stAnswer.Messages(), "invalid"), i % 2 != 0) << stAnswer.Messages();
            }
        });
    }
    for (std::thread &stThread : vecThreads) {
        stThread.join();
    }
}
