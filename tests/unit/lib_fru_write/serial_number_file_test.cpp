// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <cstring>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "label_texts.h"
#include "lib_fru_labels.h"

namespace {

using label::Bytes;
using label::Exactly;
using label::LINES;

const char g_acPrimary[] = "/mnt/sdmmc0p4/board/ProductSerialNumber";
const char g_acCopy[] = "/var/network/ProductSerialNumber";
const char g_acFile[] = "lib_fru_write.c";

void MakeDirectories()
{
    fake::MakeDirectory("/mnt/sdmmc0p4/board");
    fake::MakeDirectory("/var/network");
}

mode_t Mode(const std::string &strPath)
{
    struct stat stStat = {};
    return stat(fake::RealPath(strPath).c_str(), &stStat) == 0 ? stStat.st_mode & 07777U : 0U;
}

std::string WriteFailure(const std::string &strText, int iLength)
{
    return std::string("0/4 lib_fru_write.c: Write PSN[") + strText + "-" + std::to_string(iLength) +
           "] to file[" + g_acPrimary + "] failed! Ret:0x81000001.";
}

std::string CloseFailure(const std::string &strFunction)
{
    return "0/7 lib_fru_write.c: [" + strFunction + "-#L] Close file failed, " + strerror(EIO) + ".";
}

TEST(SerialNumberFile, WritesTheBytesWithoutALineEndAndCopiesThem)
{
    fake::Reset();
    MakeDirectories();
    const auto upText = Exactly("2102310ABCDE");
    EXPECT_EQ(LIB_FRU_WritePSNToFile(upText.get(), 12U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("2102310ABCDE"));
    EXPECT_EQ(fake::ReadFile(g_acCopy), Bytes("2102310ABCDE"));
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls(),
              (LINES{"BMC_CheckDirVaildStatus /mnt/sdmmc0p4/board -> 1",
                     std::string("fopen ") + g_acPrimary + " w+ -> open",
                     std::string("BMC_CopyFileWithAllMode ") + g_acPrimary + " " + g_acCopy + " -> 0"}));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(SerialNumberFile, BytesAreWrittenAsTheyAreNulsIncluded)
{
    fake::Reset();
    MakeDirectories();
    const std::string strZeros(80U, '\0');
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly(strZeros).get(), 80U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes(strZeros));
    EXPECT_EQ(fake::ReadFile(g_acCopy), Bytes(strZeros));
}

TEST(SerialNumberFile, LengthZeroLeavesAnEmptyFile)
{
    fake::Reset();
    MakeDirectories();
    fake::WriteFile(g_acPrimary, Bytes("older and longer"));
    EXPECT_EQ(LIB_FRU_WritePSNToFile("", 0U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes(""));
    EXPECT_EQ(fake::ReadFile(g_acCopy), Bytes(""));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SerialNumberFile, AShorterValueReplacesALongerOneWhole)
{
    fake::Reset();
    MakeDirectories();
    fake::WriteFile(g_acPrimary, Bytes("older and longer"));
    EXPECT_EQ(LIB_FRU_WritePSNToFile("new", 3U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("new"));
}

TEST(SerialNumberFile, MakesAMissingDirectory)
{
    fake::Reset();
    fake::MakeDirectory("/var/network");
    EXPECT_EQ(LIB_FRU_WritePSNToFile("SN", 2U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("SN"));
    EXPECT_EQ(fake::Calls("BMC_Mkdir"), LINES{"BMC_Mkdir /mnt/sdmmc0p4/board -> 0"});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SerialNumberFile, ADirectoryThatCannotBeMadeShowsInTheOpening)
{
    fake::Reset();
    fake::WriteFile("/mnt/sdmmc0p4", Bytes("a file is in the way"));
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly("SN").get(), 2U), 0x81000001U);
    EXPECT_EQ(fake::Calls("BMC_Mkdir"), LINES{"BMC_Mkdir /mnt/sdmmc0p4/board -> 0x81000001"});
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file make error.", WriteFailure("SN", 2)}));
    EXPECT_TRUE(fake::Calls("BMC_CopyFile").empty());
}

TEST(SerialNumberFile, AddsTheOthersReadBitAndNothingElse)
{
    for (const auto &[uiBefore, uiAfter] : {std::pair<mode_t, mode_t>{0640U, 0644U},
                                            {0600U, 0604U},
                                            {0644U, 0644U},
                                            {0606U, 0606U},
                                            {0601U, 0605U},
                                            {0755U, 0755U}}) {
        fake::Reset();
        MakeDirectories();
        fake::WriteFile(g_acPrimary, Bytes("old"));
        ASSERT_EQ(chmod(fake::RealPath(g_acPrimary).c_str(), uiBefore), 0);
        EXPECT_EQ(LIB_FRU_WritePSNToFile("SN", 2U), 0U);
        EXPECT_EQ(Mode(g_acPrimary), uiAfter);
        EXPECT_EQ(fake::Calls("fchmod").size(), uiBefore == uiAfter ? 0U : 1U);
    }
}

TEST(SerialNumberFile, AFileMadeUnderAStrictMaskIsReadableByOthers)
{
    fake::Reset();
    MakeDirectories();
    const mode_t uiOldMask = umask(0077U);
    EXPECT_EQ(LIB_FRU_WritePSNToFile("SN", 2U), 0U);
    (void)umask(uiOldMask);
    EXPECT_EQ(Mode(g_acPrimary), 0604U);
}

TEST(SerialNumberFile, AFailedPermissionChangeDoesNotStopTheWrite)
{
    fake::Reset();
    MakeDirectories();
    fake::WriteFile(g_acPrimary, Bytes("old"));
    ASSERT_EQ(chmod(fake::RealPath(g_acPrimary).c_str(), 0640U), 0);
    fake::Arm({fake::KIND_E::FILE_CALL, 4U, false}); // directory, open, status, permission
    EXPECT_EQ(LIB_FRU_WritePSNToFile("SN", 2U), 0U);
    fake::Disarm();
    EXPECT_EQ(Mode(g_acPrimary), 0640U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("SN"));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SerialNumberFile, AFailedStatusIsToldAndClosesTheFile)
{
    fake::Reset();
    MakeDirectories();
    fake::Arm({fake::KIND_E::FILE_CALL, 3U, false});
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly("SN").get(), 2U), 0x81000001U);
    EXPECT_EQ(fake::Count(fake::KIND_E::FILE_CALL), 4U); // directory, open, status, close
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file stat get fail.", WriteFailure("SN", 2)}));
    EXPECT_TRUE(fake::Calls("BMC_CopyFile").empty());
}

TEST(SerialNumberFile, AFailedStatusWithAFailedCloseTellsBoth)
{
    fake::Reset();
    MakeDirectories();
    fake::Arm({fake::KIND_E::FILE_CALL, 3U, true});
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly("SN").get(), 2U), 0x81000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file stat get fail.",
                                       CloseFailure("FRU_WriteLabelToFile"), WriteFailure("SN", 2)}));
}

TEST(SerialNumberFile, AShortWriteIsToldAndClosesTheFile)
{
    for (const auto eHow : {fake::HOW_E::SHORT, fake::HOW_E::FAIL}) {
        fake::Reset();
        MakeDirectories();
        fake::Arm({fake::KIND_E::FILE_CALL, 4U, false, eHow});
        EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly("2102310ABCDE").get(), 12U), 0x81000001U);
        EXPECT_EQ(fake::Count(fake::KIND_E::FILE_CALL), 5U); // directory, open, status, write, close
        fake::Disarm();
        EXPECT_EQ(fake::Messages(),
                  (LINES{"0/4 lib_fru_write.c: file write fail", WriteFailure("2102310ABCDE", 12)}));
        EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes(eHow == fake::HOW_E::SHORT ? "210231" : ""));
        EXPECT_TRUE(fake::Calls("BMC_CopyFile").empty());
        EXPECT_EQ(fake::ReadFile(g_acCopy), std::nullopt);
    }
}

TEST(SerialNumberFile, AShortWriteWithAFailedCloseTellsBoth)
{
    fake::Reset();
    MakeDirectories();
    fake::Arm({fake::KIND_E::FILE_CALL, 4U, true});
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly("SN").get(), 2U), 0x81000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file write fail",
                                       CloseFailure("FRU_WriteLabelToFile"), WriteFailure("SN", 2)}));
}

TEST(SerialNumberFile, AFullDiskIsAShortWriteAndNotAFailedClose)
{
    if (access("/dev/full", W_OK) != 0) {
        GTEST_SKIP() << "no /dev/full here";
    }
    fake::Reset();
    MakeDirectories();
    ASSERT_EQ(symlink("/dev/full", fake::RealPath(g_acPrimary).c_str()), 0);
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly("SN").get(), 2U), 0x81000001U);
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file write fail", WriteFailure("SN", 2)}));
}

TEST(SerialNumberFile, AFailedCloseIsToldAndStillASuccess)
{
    fake::Reset();
    MakeDirectories();
    fake::Arm({fake::KIND_E::FILE_CALL, 5U, false});
    EXPECT_EQ(LIB_FRU_WritePSNToFile("SN", 2U), 0U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{CloseFailure("FRU_WriteLabelToFile")});
    EXPECT_EQ(fake::ReadFile(g_acCopy), Bytes("SN"));
}

TEST(SerialNumberFile, AFailedCopyIsNeitherToldNorReported)
{
    fake::Reset();
    fake::MakeDirectory("/mnt/sdmmc0p4/board"); // no /var/network
    EXPECT_EQ(LIB_FRU_WritePSNToFile("SN", 2U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("SN"));
    EXPECT_EQ(fake::Calls("BMC_CopyFile").size(), 1U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SerialNumberFile, TheFailureMessageShowsNoMoreThanTheBytesGiven)
{
    for (const size_t uiLength : {size_t{0}, size_t{1}, size_t{80}, size_t{511}, size_t{512}, size_t{513}}) {
        fake::Reset();
        const std::string strText(uiLength, 'S');
        fake::Arm({fake::KIND_E::FILE_CALL, 1U, true});
        EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly(strText).get(), static_cast<u32>(uiLength)), 0x81000001U);
        fake::Disarm();
        EXPECT_EQ(fake::Messages(),
                  (LINES{"0/4 lib_fru_write.c: file make error.",
                         WriteFailure(strText.substr(0, 512), static_cast<int>(uiLength))}));
    }
}

TEST(SerialNumberFile, TheFailureMessageEndsAtANulAndTakesNoFormats)
{
    fake::Reset();
    fake::Arm({fake::KIND_E::FILE_CALL, 1U, true});
    EXPECT_EQ(LIB_FRU_WritePSNToFile(Exactly(std::string("%s%n\0tail", 9)).get(), 9U), 0x81000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file make error.", WriteFailure("%s%n", 9)}));
}

TEST(SerialNumberFile, ANullBufferIsReportedBeforeAnythingIsTouched)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_WritePSNToFile(nullptr, 4U), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{fake::NullMessage(g_acFile, "LIB_FRU_WritePSNToFile", "pcWriteBuf")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(SerialNumberFile, UpdateWritesBothFiles)
{
    fake::Reset();
    MakeDirectories();
    EXPECT_EQ(FRU_UpdateProductSN(Exactly("2102310ABCDE").get(), 12U), 0U);
    EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("2102310ABCDE"));
    EXPECT_EQ(fake::ReadFile(g_acCopy), Bytes("2102310ABCDE"));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SerialNumberFile, UpdateTellsOfAFailedWrite)
{
    fake::Reset();
    fake::Arm({fake::KIND_E::FILE_CALL, 1U, true});
    EXPECT_EQ(FRU_UpdateProductSN(Exactly("SN").get(), 2U), 0x81000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{"0/4 lib_fru_write.c: file make error.", WriteFailure("SN", 2),
                                       "0/4 lib_fru_write.c: Write PSN To File failed! Ret:0x81000001."}));
}

TEST(SerialNumberFile, UpdateReportsANullValueUnderItsOwnName)
{
    fake::Reset();
    EXPECT_EQ(FRU_UpdateProductSN(nullptr, 4U), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{fake::NullMessage(g_acFile, "FRU_UpdateProductSN", "pcLabelValue")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(SerialNumberFile, ReadsTheStoredBytesWithoutATerminator)
{
    fake::Reset();
    fake::WriteFile(g_acPrimary, Bytes("SERIAL"));
    char acText[16];
    (void)memset(acText, 0x55, sizeof(acText));
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(sizeof(acText), acText), 0U);
    EXPECT_EQ(std::string(acText, 7U), "SERIALU");
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls(), (LINES{std::string("access ") + g_acPrimary + " 0 -> 0",
                                    std::string("fopen ") + g_acPrimary + " r -> open"}));
}

TEST(SerialNumberFile, ReadsASerialNumberOfOneCharacter)
{
    fake::Reset();
    fake::WriteFile(g_acPrimary, Bytes("7"));
    char acText[4] = {'a', 'b', 'c', 'd'};
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(sizeof(acText), acText), 0U);
    EXPECT_EQ(std::string(acText, sizeof(acText)), "7bcd");
}

TEST(SerialNumberFile, ReadsALongerFileOnlyAsFarAsTheBufferGoes)
{
    fake::Reset();
    fake::WriteFile(g_acPrimary, Bytes("01234567890123456789"));
    const auto upText = Exactly("        ");
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(8U, upText.get()), 0U);
    EXPECT_EQ(std::string(upText.get(), 8U), "01234567");
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(SerialNumberFile, ReadingWithoutAFileIsSilent)
{
    fake::Reset();
    char acText[8] = "before";
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(sizeof(acText), acText), 0x81000017U);
    EXPECT_STREQ(acText, "before");
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_TRUE(fake::Calls("fopen").empty());
}

TEST(SerialNumberFile, ReadingAFileThatDoesNotOpenIsToldWithTheSystemsReason)
{
    fake::Reset();
    fake::WriteFile(g_acPrimary, Bytes("SERIAL"));
    char acText[8] = "before";
    fake::Arm({fake::KIND_E::FILE_CALL, 2U, false});
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(sizeof(acText), acText), 0x81000015U);
    fake::Disarm();
    EXPECT_STREQ(acText, "before");
    EXPECT_EQ(fake::Messages(), LINES{std::string("0/4 lib_fru_write.c: open ") + g_acPrimary + " failed. " +
                                      strerror(EACCES)});
}

TEST(SerialNumberFile, ReadingAnEmptyFileOrIntoNoSpaceReadsNothing)
{
    for (const auto &[strContent, uiSize] : {std::pair<std::string, u32>{"", 8U}, {"SERIAL", 0U}}) {
        fake::Reset();
        fake::WriteFile(g_acPrimary, Bytes(strContent));
        char acText[8] = "before";
        errno = ENOENT; // left behind by something else
        EXPECT_EQ(LIB_FRU_GetPSNFromFile(uiSize, acText), 0x81000024U);
        EXPECT_STREQ(acText, "before");
        EXPECT_EQ(fake::Messages(),
                  LINES{std::string("0/4 lib_fru_write.c: read ") + g_acPrimary + " failed. " + strerror(0)});
    }
}

TEST(SerialNumberFile, AFailedReadIsToldAndClosesTheFile)
{
    fake::Reset();
    fake::WriteFile(g_acPrimary, Bytes("SERIAL"));
    char acText[8] = {};
    fake::Arm({fake::KIND_E::FILE_CALL, 3U, true});
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(sizeof(acText), acText), 0x81000024U);
    EXPECT_EQ(fake::Count(fake::KIND_E::FILE_CALL), 4U); // test, open, read, close
    fake::Disarm();
    EXPECT_EQ(fake::Messages(),
              (LINES{std::string("0/4 lib_fru_write.c: read ") + g_acPrimary + " failed. " + strerror(EIO),
                     CloseFailure("LIB_FRU_GetPSNFromFile")}));
}

TEST(SerialNumberFile, AFailedCloseAfterReadingIsToldAndStillASuccess)
{
    fake::Reset();
    fake::WriteFile(g_acPrimary, Bytes("SERIAL"));
    char acText[8] = {};
    fake::Arm({fake::KIND_E::FILE_CALL, 4U, false});
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(sizeof(acText), acText), 0U);
    fake::Disarm();
    EXPECT_STREQ(acText, "SERIAL");
    EXPECT_EQ(fake::Messages(), LINES{CloseFailure("LIB_FRU_GetPSNFromFile")});
}

TEST(SerialNumberFile, ReadingIntoNoBufferIsReportedBeforeAnythingIsTouched)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_GetPSNFromFile(8U, nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{fake::NullMessage(g_acFile, "LIB_FRU_GetPSNFromFile", "pcPSNName")});
    EXPECT_TRUE(fake::Calls().empty());
}

// Whatever fails: the result says whether the primary file holds the value, and a failure always
// has its word.
TEST(SerialNumberFile, WhateverFailsTheResultTellsWhatTheFileHolds)
{
    u32 uiResult = 0;
    fake::Sweep(
        MakeDirectories, [&] { uiResult = FRU_UpdateProductSN(Exactly("2102310ABCDE").get(), 12U); },
        [&](const fake::FAULT_S *pstFault) {
            if (uiResult == 0U) {
                EXPECT_EQ(fake::ReadFile(g_acPrimary), Bytes("2102310ABCDE"));
                return;
            }
            EXPECT_NE(pstFault, nullptr);
            EXPECT_EQ(uiResult, 0x81000001U);
            EXPECT_FALSE(fake::Messages().empty());
            EXPECT_EQ(fake::ReadFile(g_acCopy), std::nullopt);
        });
}

} // namespace
