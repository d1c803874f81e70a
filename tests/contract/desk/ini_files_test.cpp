// SPDX-License-Identifier: Apache-2.0
// The desk's own: INI and XML files that are read whole.
#include <unistd.h>

#include "bmc_hwdesc.h"
#include "bmc_ini.h"
#include "controller.h"

namespace {

class IniFiles : public controller::ContractTest
{
  protected:
    // Written, and left alone for so long that another change would show.
    static void WriteSettled(const std::string &strContent)
    {
        controller::WriteFile("/conf/x.ini", strContent);
        controller::Pause(150000);
    }
};

TEST_F(IniFiles, AreParsedOnceForEachChange)
{
    WriteSettled("[s]\nk = one\n");
    void *hpdFirst = BRIDGE_IniLoadFile("/conf/x.ini");
    void *hpdSecond = BRIDGE_IniLoadFile("/conf/x.ini");
    // Two handles with one text: nothing was parsed for the second.
    EXPECT_EQ(BRIDGE_IniGetStr(hpdFirst, "s", "k", nullptr), BRIDGE_IniGetStr(hpdSecond, "s", "k", nullptr));
    WriteSettled("[s]\nk = two\n");
    void *hpdThird = BRIDGE_IniLoadFile("/conf/x.ini");
    EXPECT_STREQ(BRIDGE_IniGetStr(hpdFirst, "s", "k", nullptr), "one");
    EXPECT_STREQ(BRIDGE_IniGetStr(hpdThird, "s", "k", nullptr), "two");
    for (void *hpd : {hpdFirst, hpdSecond, hpdThird}) {
        BRIDGE_IniCloseFile(hpd);
    }
}

TEST_F(IniFiles, ChangesInQuickSuccessionAreAllSeen)
{
    for (int i = 100; i < 300; ++i) {
        controller::WriteFile("/conf/x.ini", "[s]\nk = " + std::to_string(i) + "\n");
        void *hpd = BRIDGE_IniLoadFile("/conf/x.ini");
        EXPECT_EQ(BRIDGE_IniGetUInt(hpd, "s", "k", 0), static_cast<u32>(i));
        BRIDGE_IniCloseFile(hpd);
    }
}

TEST_F(IniFiles, WhatOneHandleSetsNoOtherSees)
{
    WriteSettled("top = t\n[s]\nk = one\nother = o\n");
    void *hpdFirst = BRIDGE_IniLoadFile("/conf/x.ini");
    void *hpdSecond = BRIDGE_IniLoadFile("/conf/x.ini");
    const char *pcBefore = BRIDGE_IniGetStr(hpdFirst, "s", "other", nullptr);
    ASSERT_EQ(BRIDGE_IniSetStr(hpdFirst, "s", "k", "two"), 0U);
    EXPECT_STREQ(BRIDGE_IniGetStr(hpdFirst, "s", "k", nullptr), "two");
    EXPECT_STREQ(BRIDGE_IniGetStr(hpdFirst, "", "top", nullptr), "t");
    EXPECT_STREQ(BRIDGE_IniGetStr(hpdSecond, "s", "k", nullptr), "one");
    BRIDGE_IniCloseFile(hpdSecond);
    EXPECT_STREQ(pcBefore, "o"); // a text of another key lives on
    ASSERT_EQ(BRIDGE_IniSaveFile(hpdFirst, "/conf/x.ini"), 0U);
    BRIDGE_IniCloseFile(hpdFirst);
    EXPECT_EQ(controller::ReadFile("/conf/x.ini"), "top = t\n\n[s]\nk = two\nother = o\n");
}

TEST_F(IniFiles, TheirMessagesNameThem)
{
    controller::WriteFile("/conf/x.ini", "[s]\nno key at all\n");
    EXPECT_EQ(BRIDGE_IniLoadFile("/conf/x.ini"), nullptr);
    EXPECT_NE(controller::Messages().front().find(controller::RealPath("/conf/x.ini")), std::string::npos)
        << controller::Messages().front();
}

TEST_F(IniFiles, BeyondTheirLimitAreRefused)
{
    controller::WriteFile("/conf/x.ini", "[s]\nk = one\n; " + std::string(size_t{1} << 20U, 'x'));
    EXPECT_EQ(BRIDGE_IniLoadFile("/conf/x.ini"), nullptr);
    EXPECT_NE(controller::Messages().back().find("larger than is accepted"), std::string::npos);
    controller::WriteFile("/conf/x.xml", "<hardware>" + std::string(size_t{1} << 20U, ' ') + "</hardware>");
    HW_NAMESPACE_S *pstNameSpace = HW_NewNameSpace();
    EXPECT_NE(HW_LoadXml(pstNameSpace, "/conf/x.xml"), 0U);
    HW_FreeNameSpace(pstNameSpace);
    EXPECT_NE(controller::Messages().back().find("larger than is accepted"), std::string::npos);
}

TEST_F(IniFiles, AreSavedWithoutFollowingWhatAnotherLaid)
{
    WriteSettled("[s]\nk = one\n");
    controller::WriteFile("/conf/victim", "kept");
    ASSERT_EQ(symlink("victim", controller::RealPath("/conf/x.ini.new").c_str()), 0);
    void *hpd = BRIDGE_IniLoadFile("/conf/x.ini");
    EXPECT_EQ(BRIDGE_IniSaveFile(hpd, "/conf/x.ini"), 0U);
    BRIDGE_IniCloseFile(hpd);
    EXPECT_EQ(controller::ReadFile("/conf/victim"), "kept");
    EXPECT_EQ(controller::FilesIn("/conf"), (std::vector<std::string>{"victim", "x.ini", "x.ini.new"}));
}

} // namespace
