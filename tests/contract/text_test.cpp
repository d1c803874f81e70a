// SPDX-License-Identifier: Apache-2.0
// Support library: messages, bounded text, checksums, time, OEM flag.
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>

#include "bmc_hwdesc.h"
#include "bmc_support.h"
#include "controller.h"

namespace {

class Text : public controller::ContractTest
{};

TEST_F(Text, MessagesArriveFinishedAndInOrder)
{
    BMC_DiagLogOut(24, 4, BMC_DIAG_WARNING, 12, "lib_fru.c", "Fail to find FRU Device:ID:%#x!", 0x12U);
    BMC_DiagLogOut(24, 0, BMC_DIAG_DEBUG, 13, "lib_fru.c", "%s%%", "100");
    EXPECT_EQ(controller::Messages(), (std::vector<std::string>{"Fail to find FRU Device:ID:0x12!", "100%"}));
}

TEST_F(Text, MessagesMayBeLong)
{
    const std::string strLong(5000, 'x');
    BMC_DiagLogOut(24, 4, BMC_DIAG_WARNING, 12, "lib_fru.c", "<%s>", strLong.c_str());
    EXPECT_EQ(controller::Messages(), std::vector<std::string>{"<" + strLong + ">"});
}

TEST_F(Text, MessagesLeaveErrnoAlone)
{
    errno = ENOSPC;
    BMC_DiagLogOut(24, 4, BMC_DIAG_WARNING, 12, "lib_fru.c", "%s", "text");
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(Text, MessagesOfThreadsDoNotMix)
{
    std::vector<std::thread> vecThreads;
    for (int iThread = 0; iThread < 4; ++iThread) {
        vecThreads.emplace_back([iThread] {
            for (int i = 0; i < 100; ++i) {
                BMC_DiagLogOut(24, 4, BMC_DIAG_WARNING, 12, "lib_fru.c", "%d:%s", iThread,
                               std::string(100, static_cast<char>('a' + iThread)).c_str());
            }
        });
    }
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
    const std::vector<std::string> vecMessages = controller::Messages();
    EXPECT_EQ(vecMessages.size(), 400U);
    for (const std::string &strMessage : vecMessages) {
        EXPECT_EQ(strMessage.substr(2), std::string(100, static_cast<char>('a' + strMessage[0] - '0')));
    }
}

TEST_F(Text, ScnprintfReturnsWhatIsStored)
{
    char acBuf[8];
    (void)memset(acBuf, 'x', sizeof(acBuf));
    EXPECT_EQ(BMC_Scnprintf(acBuf, 6, "%s", "abc"), 3);
    EXPECT_STREQ(acBuf, "abc");
    EXPECT_EQ(BMC_Scnprintf(acBuf, 6, "%s", "abcde"), 5);
    EXPECT_STREQ(acBuf, "abcde");
    EXPECT_EQ(BMC_Scnprintf(acBuf, 6, "%s", "abcdef"), 5);
    EXPECT_STREQ(acBuf, "abcde");
    EXPECT_EQ(acBuf[6], 'x');
    EXPECT_EQ(BMC_Scnprintf(acBuf, 1, "%s", "abc"), 0);
    EXPECT_STREQ(acBuf, "");
    acBuf[0] = 'y';
    EXPECT_EQ(BMC_Scnprintf(acBuf, 0, "%s", "abc"), 0);
    EXPECT_EQ(acBuf[0], 'y');
}

TEST_F(Text, StrlcpyCutsAndReturnsTheSourceLength)
{
    char acBuf[8];
    (void)memset(acBuf, 'x', sizeof(acBuf));
    EXPECT_EQ(BMC_Strlcpy(acBuf, "abc", 4), 3U);
    EXPECT_STREQ(acBuf, "abc");
    EXPECT_EQ(BMC_Strlcpy(acBuf, "abcdefghij", 4), 10U);
    EXPECT_STREQ(acBuf, "abc");
    EXPECT_EQ(acBuf[4], 'x');
    EXPECT_EQ(BMC_Strlcpy(acBuf, "zz", 1), 2U);
    EXPECT_STREQ(acBuf, "");
    acBuf[0] = 'y';
    EXPECT_EQ(BMC_Strlcpy(acBuf, "zz", 0), 2U);
    EXPECT_EQ(acBuf[0], 'y');
    EXPECT_EQ(BMC_Strlcpy(acBuf, nullptr, 4), 0U);
    EXPECT_STREQ(acBuf, "");
}

TEST_F(Text, StrlcatAppendsAtMostTheCount)
{
    char acBuf[8] = "ab";
    (void)memset(acBuf + 3, 'x', 5);
    EXPECT_EQ(BMC_Strlcat(acBuf, "cdef", 2), 4U);
    EXPECT_STREQ(acBuf, "abcd");
    EXPECT_EQ(acBuf[5], 'x');
    EXPECT_EQ(BMC_Strlcat(acBuf, "e", 100), 5U);
    EXPECT_EQ(BMC_Strlcat(acBuf, "f", 0), 5U);
    EXPECT_EQ(BMC_Strlcat(acBuf, nullptr, 9), 5U);
    EXPECT_STREQ(acBuf, "abcde");
    const char acOpen[3] = {'1', '2', '3'}; // not terminated: no more than the count is read
    EXPECT_EQ(BMC_Strlcat(acBuf, acOpen, 2), 7U);
    EXPECT_STREQ(acBuf, "abcde12");
}

TEST_F(Text, ZeroChecksum)
{
    const u8 aucHeader[8] = {1, 0, 1, 5, 0x0D, 0, 0, 0xEC};
    EXPECT_EQ(BMC_CalcZeroCheckSum(aucHeader, 7), 0xECU);
    EXPECT_EQ(BMC_CheckZeroSum(aucHeader, 8), 0U);
    EXPECT_NE(BMC_CheckZeroSum(aucHeader, 7), 0U);
    EXPECT_EQ(BMC_CalcZeroCheckSum(aucHeader, 8), 0U);
    EXPECT_EQ(BMC_CalcZeroCheckSum(nullptr, 0), 0U);
    EXPECT_EQ(BMC_CheckZeroSum(nullptr, 0), 0U);
}

TEST_F(Text, Crc8IsTheSmbusPec)
{
    const u8 aucCheck[9] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(BMC_CalcCRC8CheckSum(aucCheck, 9), 0xF4U); // the polynomial's published check value
    EXPECT_EQ(BMC_CheckCRC8(0xF4, aucCheck, 9), 0U);
    EXPECT_NE(BMC_CheckCRC8(0xF5, aucCheck, 9), 0U);
    EXPECT_EQ(BMC_CalcCRC8CheckSum(nullptr, 0), 0U);
    EXPECT_EQ(BMC_CheckCRC8(0, nullptr, 0), 0U);
}

// The texts in UTC of every moment that 32 bits can tell.
TEST_F(Text, IsoTimeInUtc)
{
    const std::pair<u32, const char *> astWanted[] = {
        {0U, "1970-01-01 00:00:00"},          {820454400U, "1996-01-01 00:00:00"},
        {951827696U, "2000-02-29 12:34:56"},  {820454400U + 16777215U * 60U, "2027-11-24 20:15:00"},
        {2147483647U, "2038-01-19 03:14:07"}, {2147483648U, "2038-01-19 03:14:08"},
        {4294967295U, "2106-02-07 06:28:15"}};
    for (const auto &[uiMoment, pcText] : astWanted) {
        char acOut[32];
        ASSERT_EQ(BMC_TimeStampToIsoTime(uiMoment, 0, acOut), 0U) << uiMoment;
        EXPECT_STREQ(acOut, pcText);
    }
    EXPECT_NE(BMC_TimeStampToIsoTime(0, 0, nullptr), 0U);
}

TEST_F(Text, OemFlagsAreThoseOfTheController)
{
    EXPECT_EQ(BMC_GetOemFlag(), 0U);
    EXPECT_EQ(HW_LIB_GetOemFlag(), 0U);
    controller::SetOemFlag(3);
    EXPECT_EQ(BMC_GetOemFlag(), 3U);
    EXPECT_EQ(HW_LIB_GetOemFlag(), 3U);
    controller::SetOemFlag(1);
    EXPECT_EQ(BMC_GetOemFlag(), 1U);
    EXPECT_EQ(HW_LIB_GetOemFlag(), 1U);
}

} // namespace
