// SPDX-License-Identifier: Apache-2.0
// MultiRecords in words: the tables, and the reader over them.
#include "toolkit/image/record_words.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

#include "toolkit/base/text.h"
#include "toolkit/image/record_tables.h"

namespace {

std::vector<u8> Bytes(const std::string &strHex)
{
    std::string strDigits = strHex;
    strDigits.erase(std::remove(strDigits.begin(), strDigits.end(), ' '), strDigits.end());
    return ParseHexBytes(strDigits).value();
}

struct CASE_S
{
    u8 ucType;
    const char *pcData;
    const char *pcTitle;
    const char *pcFields; // JSON
};

// The whole of what programs are told; what people are told is made from the same rows.
const CASE_S CASES[] = {
    {0x00, "2602 ffff ff 14 2823 9833 0000 0000 32 3c 14 1b 58c2 02 2c01 0a", "Power Supply Information",
     R"({"overallCapacityWatts":550,"peakApparentPowerVoltAmperes":null,"inrushCurrentAmperes":null,
        "inrushIntervalMilliseconds":20,"inputRange1LowMillivolts":90000,"inputRange1HighMillivolts":132080,
        "inputRange2LowMillivolts":0,"inputRange2HighMillivolts":0,"inputFrequencyLowHertz":50,
        "inputFrequencyHighHertz":60,"dropoutToleranceMilliseconds":20,"predictiveFailurePin":true,
        "powerFactorCorrection":true,"autoswitch":false,"hotSwap":true,
        "tachometer":"two pulses a rotation, or failure when high","tachometerCode":1,"peakCapacityWatts":600,
        "holdUpTimeSeconds":12,"combinedVoltage1":"12 V","combinedVoltage1Code":0,"combinedVoltage2":"5 V",
        "combinedVoltage2Code":2,"combinedCapacityWatts":300,"predictiveFailureThresholdPerSecond":10})"},
    {0x01, "82 50fb c4ff 3c00 7800 0000 409c", "DC Output",
     R"({"outputNumber":2,"onInStandby":true,"nominalVoltageMillivolts":-12000,
        "maximumNegativeDeviationMillivolts":-600,"maximumPositiveDeviationMillivolts":600,
        "rippleAndNoiseMillivolts":120,"minimumCurrentMilliamperes":0,"maximumCurrentMilliamperes":40000})"},
    {0x02, "01 4a01 3a01 5a01 3200 6400 b80b", "DC Load",
     R"({"outputNumber":1,"nominalVoltageMillivolts":3300,"minimumVoltageMillivolts":3140,
        "maximumVoltageMillivolts":3460,"rippleAndNoiseMillivolts":50,"minimumCurrentMilliamperes":100,
        "maximumCurrentMilliamperes":3000})"},
    {0x09, "91 b004 7404 ec04 7800 0000 a00f", "Extended DC Output",
     R"({"outputNumber":1,"onInStandby":true,"nominalVoltageMillivolts":12000,
        "maximumNegativeDeviationMillivolts":11400,"maximumPositiveDeviationMillivolts":12600,
        "rippleAndNoiseMillivolts":120,"minimumCurrentMilliamperes":0,"maximumCurrentMilliamperes":400000})"},
    {0x0A, "02 f401 db01 0d02 3200 0a00 d007", "Extended DC Load",
     R"({"outputNumber":2,"nominalVoltageMillivolts":5000,"minimumVoltageMillivolts":4750,
        "maximumVoltageMillivolts":5250,"rippleAndNoiseMillivolts":50,"minimumCurrentMilliamperes":100,
        "maximumCurrentMilliamperes":20000})"},
    {0x03, "02 7265", "Management Access, System Name",
     R"({"subType":"System Name","subTypeCode":2,"text":"re"})"},
    {0x03, "07 8f2e4c1b5d7a3b4c9e600a1b2c3d4e5f", "Management Access, System Unique ID",
     R"({"subType":"System Unique ID","subTypeCode":7,"guid":"1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f"})"},
    {0x04, "5a3100 0a 01 83 0ff0", "Base Compatibility",
     R"({"manufacturerId":12634,"entityId":10,"compatibilityBase":1,"firstCode":3,"codeMask":"0f f0"})"},
    {0x05, "5a3100 0a 01 03", "Extended Compatibility",
     R"({"manufacturerId":12634,"entityId":10,"compatibilityBase":1,"firstCode":3,"codeMask":""})"},
    {0xC0, "5a3100 16 00 41", "PICMG Module Current Requirements",
     R"({"manufacturerId":12634,"picmgRecordId":22,"recordFormatVersion":0,"currentMilliamperes":6500})"},
    {0xC0, "5a3100 17 00 9600 05 02 7232ff 740aff", "PICMG Carrier Activation and Current Management",
     R"({"manufacturerId":12634,"picmgRecordId":23,"recordFormatVersion":0,
        "maximumInternalCurrentMilliamperes":15000,"moduleActivationReadinessSeconds":5,"moduleCount":2,
        "modules":[{"ipmbAddress":114,"maximumCurrentMilliamperes":5000},
                   {"ipmbAddress":116,"maximumCurrentMilliamperes":1000}]})"},
    {0xC0, "5a3100 11 00 01 f401 6400 48 01 20fe", "PICMG Shelf Power Distribution",
     R"({"manufacturerId":12634,"picmgRecordId":17,"recordFormatVersion":0,"feedCount":1,
        "feeds":[{"maximumExternalCurrentMilliamperes":50000,"maximumInternalCurrentMilliamperes":10000,
                  "minimumVoltageMillivolts":36000,"fruCount":1,
                  "frus":[{"hardwareAddress":32,"fruDeviceId":254}]}]})"},
    {0xC0, "5a3100 12 00 05 01 41fec8004a", "PICMG Shelf Activation and Power Management",
     R"({"manufacturerId":12634,"picmgRecordId":18,"recordFormatVersion":0,
        "fruActivationReadinessSeconds":5,"fruCount":1,
        "frus":[{"hardwareAddress":65,"fruDeviceId":254,"maximumPowerWatts":200,
                 "shelfManagerActivates":true,"delayBeforeNextMilliseconds":1000}]})"},
    {0xC0, "5a3100 14 00 00 41212003", "PICMG Board Point-to-Point Connectivity",
     R"({"manufacturerId":12634,"picmgRecordId":20,"recordFormatVersion":0,"oemGuidCount":0,"oemGuids":[],
        "links":[{"channel":1,"interface":"fabric","interfaceCode":1,"ports":[0],
                  "type":"PICMG 3.1 Ethernet","typeCode":2,"typeExtension":2,"groupingId":3}]})"},
    {0xC0, "5a3100 18 00 85 02 0511e0 00a202 05 00", "PICMG Carrier Point-to-Point Connectivity",
     R"({"manufacturerId":12634,"picmgRecordId":24,"recordFormatVersion":0,
        "resources":[{"kind":"AMC","kindCode":1,"number":5,"connectionCount":2,
          "connections":[{"localPort":0,"remoteKind":"on-carrier device","remoteKindCode":0,
                          "remoteNumber":5,"remotePort":17},
                         {"localPort":21,"remoteKind":"on-carrier device","remoteKindCode":0,
                          "remoteNumber":0,"remotePort":2}]},
         {"kind":"on-carrier device","kindCode":0,"number":5,"connectionCount":0,"connections":[]}]})"},
    {0xC0, "5a3100 19 00 01 52 6f636b657420494f20496e74666365 80 01 e0ffff 002f0000fd 010f0f00fc",
     "PICMG AMC Point-to-Point Connectivity",
     R"({"manufacturerId":12634,"picmgRecordId":25,"recordFormatVersion":0,"oemGuidCount":1,
        "oemGuids":[{"guid":"6b636f52-7465-4920-4f20-496e74666365"}],
        "kind":"AMC","kindCode":1,"connectedDevice":0,"channelCount":1,
        "channels":[{"lane0Port":0,"lane1Port":null,"lane2Port":null,"lane3Port":null}],
        "links":[{"channelId":0,"lanes":[0,1,2,3],"type":"AMC.1 PCI Express","typeCode":2,
                  "typeExtension":0,"groupingId":0,"asymmetricMatch":"with 2","asymmetricMatchCode":1},
                 {"channelId":1,"lanes":[0,1,2,3],"type":"OEM GUID, code 240","typeCode":240,
                  "typeExtension":0,"groupingId":0,"asymmetricMatch":"exact","asymmetricMatchCode":0}]})"},
    {0xFA, "a21200 00 1c 44000000 21 28", "FMC Main Definition",
     R"({"manufacturerId":4770,"subType":0,"version":0,"moduleSize":"single width","moduleSizeCode":0,
        "p1Connector":"HPC","p1ConnectorCode":1,"p2Connector":"not fitted","p2ConnectorCode":3,
        "clockDirection":"mezzanine to carrier","clockDirectionCode":0,"p1BankASignals":68,
        "p1BankBSignals":0,"p2BankASignals":0,"p2BankBSignals":0,"p1Transceivers":2,"p2Transceivers":1,
        "maximumTckClockMegahertz":40})"},
    {0xFA, "a21200 10 d0454550 c8c954", "FMC I2C Device Definition",
     R"({"manufacturerId":4770,"subType":1,"version":0,
        "devices":[{"addresses":[80],"name":"EEP"},{"addresses":[72,73],"name":"T"}]})"},
};

TEST(RecordWords, EveryKindSaysWhatItsBytesSay)
{
    std::set<std::string> setTitles;
    for (const CASE_S &stCase : CASES) {
        SCOPED_TRACE(stCase.pcTitle);
        const std::vector<u8> vecData = Bytes(stCase.pcData);
        const RECORD_WORDS_S stWords = ReadRecord(stCase.ucType, vecData);
        EXPECT_EQ(stWords.stFields.dump(), Json::parse(stCase.pcFields).dump());
        EXPECT_EQ(RecordTitle(stCase.ucType, vecData), stCase.pcTitle);
        EXPECT_EQ(stWords.strWhyNot, "");
        EXPECT_EQ(stWords.uiMore, vecData.size());
        setTitles.insert(stCase.pcTitle);
    }
    EXPECT_EQ(setTitles.size(), std::size(CASES));
}

// Every proper beginning of a record is refused with a reason, or says less; none is read beyond its end.
TEST(RecordWords, EveryBeginningOfARecordIsReadWithinItsBounds)
{
    for (const CASE_S &stCase : CASES) {
        const std::vector<u8> vecWhole = Bytes(stCase.pcData);
        for (size_t i = 0; i < vecWhole.size(); i++) {
            SCOPED_TRACE(Format("%s, %zu bytes", stCase.pcTitle, i));
            // A heap buffer of just that size: a sanitizer sees each read behind it.
            const std::vector<u8> vecPart(vecWhole.begin(), vecWhole.begin() + static_cast<ptrdiff_t>(i));
            const RECORD_WORDS_S stWords = ReadRecord(stCase.ucType, vecPart);
            EXPECT_EQ(stWords.stFields.is_null(), stWords.vecWords.empty());
            EXPECT_TRUE(!stWords.strWhyNot.empty() || stWords.uiMore == i);
            for (const RECORD_WORD_S &stWord : stWords.vecWords) {
                EXPECT_LE(stWord.uiOffset + stWord.uiLength, i);
            }
        }
    }
}

// No byte is told twice as another thing, and none of a decoded record is left out.
TEST(RecordWords, ThePartsOfARecordAreItsBytes)
{
    for (const CASE_S &stCase : CASES) {
        SCOPED_TRACE(stCase.pcTitle);
        const std::vector<u8> vecData = Bytes(stCase.pcData);
        constexpr u32 DATA = 6U;
        std::vector<u8> vecImage(DATA + vecData.size());
        vecImage[1] = stCase.ucType;
        vecImage[3] = static_cast<u8>(vecData.size());
        std::copy(vecData.begin(), vecData.end(), vecImage.begin() + DATA);
        const SPAN_S stSpan = {
            DATA, static_cast<u32>(vecData.size()), {Area::MultiRecord, Field::RecordData, 0U}, "", {}, ""};
        u32 uiAt = DATA;
        for (const RECORD_PART_S &stPart : RecordParts(stSpan, vecImage)) {
            EXPECT_EQ(stPart.uiOffset, uiAt) << stPart.strName;
            EXPECT_NE(stPart.strName, "");
            uiAt = stPart.uiOffset + stPart.uiLength;
        }
        EXPECT_EQ(uiAt, vecImage.size());
    }
}

TEST(RecordWords, WhatIsNotDecodedHasAReason)
{
    const std::pair<u8, std::pair<const char *, const char *>> aastCases[] = {
        {0x77, {"78", "its type is reserved"}},
        {0x06, {"78", "the layout of its type is not known"}},
        {0x03, {"0961", "sub-type 0x09 is not known"}},
        {0x02, {"01", "it ends after 1 byte, before nominal voltage"}},
        {0x03, {"0701", "it ends after 2 bytes, before GUID"}},
        {0xC0, {"5a31", "the layout of its type is not known"}},
        {0xC0, {"5a310030", "the layout of PICMG's record 0x30 is not known"}},
        {0xC0, {"5a31001000", "the layout of such records is not known"}},
        {0xD0, {"010203", "an OEM record of manufacturer 0x030201, whose layout is not known"}},
        {0xC0, {"5a310017000100010372", "it ends after 10 bytes, before module 1, maximum current"}},
        {0xFA, {"a2120010454550", "its device string is no list of addresses and names"}},
        {0xFA, {"a2120010d0", "its device string is no list of addresses and names"}},
        {0xFA, {"a2120020", "an OEM record of manufacturer 0x0012a2, whose layout is not known"}},
    };
    for (const auto &stCase : aastCases) {
        const RECORD_WORDS_S stWords = ReadRecord(stCase.first, Bytes(stCase.second.first));
        EXPECT_EQ(stWords.strWhyNot, stCase.second.second);
        EXPECT_TRUE(stWords.vecWords.empty());
        EXPECT_TRUE(stWords.stFields.is_null());
    }
}

TEST(RecordWords, WhatStandsBehindARecordsFieldsIsToldOf)
{
    const RECORD_WORDS_S stWords = ReadRecord(0x02, Bytes("014a013a015a0132006400b80bffff"));
    EXPECT_EQ(stWords.strWhyNot, "2 of its 15 bytes are more than its type has");
    EXPECT_EQ(stWords.uiMore, 13U);
    EXPECT_EQ(stWords.stFields["nominalVoltageMillivolts"], 3300);
}

// Two rows of one section with one name would hide each other from programs.
TEST(RecordWords, KeysAreToldApart)
{
    for (const CASE_S &stCase : CASES) {
        const RECORD_ROW_S *pstRow = FindRecordRow(stCase.ucType, Bytes(stCase.pcData));
        ASSERT_NE(pstRow, nullptr);
        std::set<std::string> setKeys;
        for (const SECTION_S &stSection : pstRow->vecSections) {
            if (stSection.enRepeat != Repeat::Once) {
                EXPECT_TRUE(setKeys.insert(stSection.pcKey).second) << stSection.pcKey;
                continue;
            }
            for (const WORD_ROW_S &stRow : stSection.vecRows) {
                EXPECT_TRUE(setKeys.insert(stRow.pcKey).second) << stRow.pcKey;
            }
        }
    }
}

} // namespace
