// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/record_tables.h"

#include "lib_fru.h"
#include "toolkit/image/multirecord.h"

namespace {

constexpr u8 FIRST_OEM = 0xC0U;
constexpr u8 PICMG_TYPE = 0xC0U;
constexpr u8 FMC_TYPE = 0xFAU;

const CodeNames RAILS = {{0, 0, "12 V"}, {1, 1, "-12 V"}, {2, 2, "5 V"}, {3, 3, "3.3 V"}};
const CodeNames PULSES = {{0, 0, "one pulse a rotation, or failure when low"},
                          {1, 1, "two pulses a rotation, or failure when high"}};

const std::vector<WORD_ROW_S> POWER_SUPPLY = {
    {0, 2, 0, 12, Form::Unsigned, Unit::Watts, 1, "overall capacity", "overallCapacity", true},
    {2, 2, 0, 0, Form::Unsigned, Unit::VoltAmperes, 1, "peak apparent power", "peakApparentPower", false,
     0xFFFF},
    {4, 1, 0, 0, Form::Unsigned, Unit::WholeAmperes, 1, "inrush current", "inrushCurrent", false, 0xFF},
    {5, 1, 0, 0, Form::Unsigned, Unit::Milliseconds, 1, "inrush interval", "inrushInterval"},
    {6, 2, 0, 0, Form::Signed, Unit::Volts, 10, "input range 1, low end", "inputRange1Low", true},
    {8, 2, 0, 0, Form::Signed, Unit::Volts, 10, "input range 1, high end", "inputRange1High", true},
    {10, 2, 0, 0, Form::Signed, Unit::Volts, 10, "input range 2, low end", "inputRange2Low"},
    {12, 2, 0, 0, Form::Signed, Unit::Volts, 10, "input range 2, high end", "inputRange2High"},
    {14, 1, 0, 0, Form::Unsigned, Unit::Hertz, 1, "input frequency, low end", "inputFrequencyLow"},
    {15, 1, 0, 0, Form::Unsigned, Unit::Hertz, 1, "input frequency, high end", "inputFrequencyHigh"},
    {16, 1, 0, 0, Form::Unsigned, Unit::Milliseconds, 1, "A/C dropout tolerance", "dropoutTolerance"},
    {17, 1, 0, 1, Form::Flag, Unit::None, 1, "predictive failure pin", "predictiveFailurePin"},
    {17, 1, 1, 1, Form::Flag, Unit::None, 1, "power factor correction", "powerFactorCorrection"},
    {17, 1, 2, 1, Form::Flag, Unit::None, 1, "autoswitch", "autoswitch"},
    {17, 1, 3, 1, Form::Flag, Unit::None, 1, "hot swap", "hotSwap"},
    {17, 1, 4, 1, Form::Named, Unit::None, 1, "tachometer, or failure polarity", "tachometer", false, -1, 0,
     &PULSES},
    {18, 2, 0, 12, Form::Unsigned, Unit::Watts, 1, "peak capacity", "peakCapacity"},
    {18, 2, 12, 4, Form::Unsigned, Unit::Seconds, 1, "hold-up time", "holdUpTime"},
    {20, 1, 4, 4, Form::Named, Unit::None, 1, "combined voltage 1", "combinedVoltage1", false, -1, 0, &RAILS},
    {20, 1, 0, 4, Form::Named, Unit::None, 1, "combined voltage 2", "combinedVoltage2", false, -1, 0, &RAILS},
    {21, 2, 0, 0, Form::Unsigned, Unit::Watts, 1, "combined capacity", "combinedCapacity"},
    {23, 1, 0, 0, Form::Unsigned, Unit::PerSecond, 1, "predictive failure threshold",
     "predictiveFailureThreshold"},
};

// ucTenfold: the bit that makes units of 10 mA such of 100 mA, in the extended kinds.
std::vector<WORD_ROW_S> Output(u16 usCurrent, u8 ucTenfold)
{
    return {
        {0, 1, 0, 4, Form::Unsigned, Unit::None, 1, "output number", "outputNumber", true},
        {0, 1, 7, 1, Form::Flag, Unit::None, 1, "on in standby", "onInStandby"},
        {1, 2, 0, 0, Form::Signed, Unit::Volts, 10, "nominal voltage", "nominalVoltage", true},
        {3, 2, 0, 0, Form::Signed, Unit::Volts, 10, "maximum negative deviation", "maximumNegativeDeviation"},
        {5, 2, 0, 0, Form::Signed, Unit::Volts, 10, "maximum positive deviation", "maximumPositiveDeviation"},
        {7, 2, 0, 0, Form::Unsigned, Unit::Millivolts, 1, "ripple and noise", "rippleAndNoise"},
        {9, 2, 0, 0, Form::Unsigned, Unit::Milliamperes, usCurrent, "minimum current", "minimumCurrent",
         false, -1, ucTenfold},
        {11, 2, 0, 0, Form::Unsigned, Unit::Milliamperes, usCurrent, "maximum current", "maximumCurrent",
         true, -1, ucTenfold},
    };
}

std::vector<WORD_ROW_S> Load(u16 usCurrent, u8 ucTenfold)
{
    return {
        {0, 1, 0, 4, Form::Unsigned, Unit::None, 1, "output number", "outputNumber", true},
        {1, 2, 0, 0, Form::Signed, Unit::Volts, 10, "nominal voltage", "nominalVoltage", true},
        {3, 2, 0, 0, Form::Signed, Unit::Volts, 10, "minimum voltage", "minimumVoltage"},
        {5, 2, 0, 0, Form::Signed, Unit::Volts, 10, "maximum voltage", "maximumVoltage"},
        {7, 2, 0, 0, Form::Unsigned, Unit::Millivolts, 1, "ripple and noise", "rippleAndNoise"},
        {9, 2, 0, 0, Form::Unsigned, Unit::Milliamperes, usCurrent, "minimum current", "minimumCurrent",
         false, -1, ucTenfold},
        {11, 2, 0, 0, Form::Unsigned, Unit::Milliamperes, usCurrent, "maximum current", "maximumCurrent",
         true, -1, ucTenfold},
    };
}

CodeNames SubTypes()
{
    CodeNames vecNames;
    for (u8 i = 1U; ManagementAccessName(i) != nullptr; i++) {
        vecNames.push_back({i, i, ManagementAccessName(i)});
    }
    return vecNames;
}

const CodeNames SUB_TYPES = SubTypes();
constexpr WORD_ROW_S SUB_TYPE = {0,          1,         0,     0,  Form::Named, Unit::None, 1,
                                 "sub-type", "subType", false, -1, 0,           &SUB_TYPES};
const std::vector<WORD_ROW_S> ACCESS_TEXT = {SUB_TYPE,
                                             {1, 0, 0, 0, Form::Text, Unit::None, 1, "text", "text", true}};
const std::vector<WORD_ROW_S> ACCESS_GUID = {SUB_TYPE,
                                             {1, 16, 0, 0, Form::Guid, Unit::None, 1, "GUID", "guid", true}};

const std::vector<WORD_ROW_S> COMPATIBILITY = {
    {0, 3, 0, 0, Form::Hex, Unit::None, 1, "manufacturer ID", "manufacturerId", true},
    {3, 1, 0, 0, Form::Hex, Unit::None, 1, "entity ID", "entityId", true},
    {4, 1, 0, 0, Form::Hex, Unit::None, 1, "compatibility base", "compatibilityBase", true},
    {5, 1, 0, 7, Form::Hex, Unit::None, 1, "first code", "firstCode", true},
    {6, 0, 0, 0, Form::Bytes, Unit::None, 1, "code mask", "codeMask"},
};

// How OEM records of PICMG begin.
const SECTION_S PICMG_HEAD = {
    Repeat::Once,
    5,
    {{0, 3, 0, 0, Form::Hex, Unit::None, 1, "manufacturer ID", "manufacturerId"},
     {3, 1, 0, 0, Form::Hex, Unit::None, 1, "PICMG record ID", "picmgRecordId"},
     {4, 1, 0, 0, Form::Unsigned, Unit::None, 1, "record format version", "recordFormatVersion"}},
    nullptr,
    nullptr,
    {},
    true};

SECTION_S Count(const char *pcName, const char *pcKey)
{
    return {Repeat::Once, 1, {{0, 1, 0, 0, Form::Unsigned, Unit::None, 1, pcName, pcKey}}};
}

const SECTION_S GUID_COUNT = Count("OEM GUIDs", "oemGuidCount");
const SECTION_S GUIDS = {
    Repeat::Counted, 16, {{0, 16, 0, 0, Form::Guid, Unit::None, 1, "GUID", "guid"}}, "OEM GUID", "oemGuids"};

const std::vector<SECTION_S> MODULE_CURRENT = {
    PICMG_HEAD,
    {Repeat::Once, 1, {{0, 1, 0, 0, Form::Unsigned, Unit::Amperes, 100, "current", "current", true}}}};

const std::vector<SECTION_S> CARRIER_POWER = {
    PICMG_HEAD,
    {Repeat::Once,
     4,
     {{0, 2, 0, 0, Form::Unsigned, Unit::Amperes, 100, "maximum internal current", "maximumInternalCurrent",
       true},
      {2, 1, 0, 0, Form::Unsigned, Unit::Seconds, 1, "module activation readiness",
       "moduleActivationReadiness"},
      {3, 1, 0, 0, Form::Unsigned, Unit::None, 1, "modules", "moduleCount", true}}},
    {Repeat::Counted,
     3,
     {{0, 1, 0, 0, Form::Hex, Unit::None, 1, "IPMB address", "ipmbAddress"},
      {1, 1, 0, 0, Form::Unsigned, Unit::Amperes, 100, "maximum current", "maximumCurrent"},
      {2, 1, 0, 0, Form::Reserved, Unit::None, 1, "reserved", nullptr}},
     "module",
     "modules"}};

const std::vector<SECTION_S> SHELF_POWER = {
    PICMG_HEAD,
    Count("feeds", "feedCount"),
    {Repeat::Counted,
     6,
     {{0, 2, 0, 0, Form::Unsigned, Unit::Amperes, 100, "maximum external current", "maximumExternalCurrent"},
      {2, 2, 0, 0, Form::Unsigned, Unit::Amperes, 100, "maximum internal current", "maximumInternalCurrent"},
      {4, 1, 0, 0, Form::Unsigned, Unit::Volts, 500, "minimum voltage", "minimumVoltage"},
      {5, 1, 0, 0, Form::Unsigned, Unit::None, 1, "FRUs", "fruCount"}},
     "feed",
     "feeds",
     {{Repeat::Counted,
       2,
       {{0, 1, 0, 0, Form::Hex, Unit::None, 1, "hardware address", "hardwareAddress"},
        {1, 1, 0, 0, Form::Hex, Unit::None, 1, "FRU device ID", "fruDeviceId"}},
       "FRU",
       "frus"}}}};

const std::vector<SECTION_S> SHELF_ACTIVATION = {
    PICMG_HEAD,
    {Repeat::Once,
     2,
     {{0, 1, 0, 0, Form::Unsigned, Unit::Seconds, 1, "FRU activation readiness", "fruActivationReadiness"},
      {1, 1, 0, 0, Form::Unsigned, Unit::None, 1, "FRUs", "fruCount", true}}},
    {Repeat::Counted,
     5,
     {{0, 1, 0, 0, Form::Hex, Unit::None, 1, "hardware address", "hardwareAddress"},
      {1, 1, 0, 0, Form::Hex, Unit::None, 1, "FRU device ID", "fruDeviceId"},
      {2, 2, 0, 0, Form::Unsigned, Unit::Watts, 1, "maximum power", "maximumPower"},
      {4, 1, 6, 1, Form::Flag, Unit::None, 1, "activated by the shelf manager", "shelfManagerActivates"},
      {4, 1, 0, 6, Form::Unsigned, Unit::Milliseconds, 100, "delay before the next", "delayBeforeNext"}},
     "FRU",
     "frus"}};

const CodeNames INTERFACES = {{0, 0, "base"}, {1, 1, "fabric"}, {2, 2, "update channel"}};
const CodeNames BOARD_LINKS = {{0x01, 0x01, "PICMG 3.0 base interface, 10/100/1000 BASE-T"},
                               {0x02, 0x02, "PICMG 3.1 Ethernet"},
                               {0x03, 0x03, "PICMG 3.2 InfiniBand"},
                               {0x04, 0x04, "PICMG 3.3 StarFabric"},
                               {0x05, 0x05, "PICMG 3.4 PCI Express"},
                               {0xF0, 0xFE, "OEM GUID"}};
const std::vector<SECTION_S> BOARD_P2P = {
    PICMG_HEAD,
    GUID_COUNT,
    GUIDS,
    {Repeat::ToEnd,
     4,
     {{0, 4, 0, 6, Form::Unsigned, Unit::None, 1, "channel", "channel"},
      {0, 4, 6, 2, Form::Named, Unit::None, 1, "interface", "interface", false, -1, 0, &INTERFACES},
      {0, 4, 8, 4, Form::Bits, Unit::None, 1, "ports", "ports"},
      {0, 4, 12, 8, Form::Named, Unit::None, 1, "type", "type", false, -1, 0, &BOARD_LINKS},
      {0, 4, 20, 4, Form::Hex, Unit::None, 1, "type extension", "typeExtension"},
      {0, 4, 24, 8, Form::Unsigned, Unit::None, 1, "grouping ID", "groupingId"}},
     "link",
     "links"}};

const CodeNames RESOURCES = {{0, 0, "on-carrier device"}, {1, 1, "AMC"}};
const std::vector<SECTION_S> CARRIER_P2P = {
    PICMG_HEAD,
    {Repeat::ToEnd,
     2,
     {{0, 1, 7, 1, Form::Named, Unit::None, 1, "kind", "kind", false, -1, 0, &RESOURCES},
      {0, 1, 0, 4, Form::Unsigned, Unit::None, 1, "number", "number"},
      {1, 1, 0, 0, Form::Unsigned, Unit::None, 1, "connections", "connectionCount"}},
     "resource",
     "resources",
     {{Repeat::Counted,
       3,
       {{0, 3, 13, 5, Form::Unsigned, Unit::None, 1, "local port", "localPort"},
        {0, 3, 7, 1, Form::Named, Unit::None, 1, "remote kind", "remoteKind", false, -1, 0, &RESOURCES},
        {0, 3, 0, 4, Form::Unsigned, Unit::None, 1, "remote number", "remoteNumber"},
        {0, 3, 8, 5, Form::Unsigned, Unit::None, 1, "remote port", "remotePort"}},
       "connection",
       "connections"}}}};

const CodeNames AMC_LINKS = {
    {0x02, 0x02, "AMC.1 PCI Express"}, {0x03, 0x04, "AMC.1 PCI Express Advanced Switching"},
    {0x05, 0x05, "AMC.2 Ethernet"},    {0x06, 0x06, "AMC.4 Serial RapidIO"},
    {0x07, 0x07, "AMC.3 Storage"},     {0xF0, 0xFE, "OEM GUID"}};
const CodeNames MATCHES = {{0, 0, "exact"}, {1, 1, "with 2"}, {2, 2, "with 1"}};
const std::vector<SECTION_S> AMC_P2P = {
    PICMG_HEAD,
    GUID_COUNT,
    GUIDS,
    {Repeat::Once,
     2,
     {{0, 1, 7, 1, Form::Named, Unit::None, 1, "kind", "kind", true, -1, 0, &RESOURCES},
      {0, 1, 0, 4, Form::Unsigned, Unit::None, 1, "connected device", "connectedDevice"},
      {1, 1, 0, 0, Form::Unsigned, Unit::None, 1, "channels", "channelCount", true}}},
    {Repeat::Counted,
     3,
     {{0, 3, 0, 5, Form::Port, Unit::None, 1, "lane 0 port", "lane0Port"},
      {0, 3, 5, 5, Form::Port, Unit::None, 1, "lane 1 port", "lane1Port"},
      {0, 3, 10, 5, Form::Port, Unit::None, 1, "lane 2 port", "lane2Port"},
      {0, 3, 15, 5, Form::Port, Unit::None, 1, "lane 3 port", "lane3Port"}},
     "channel",
     "channels"},
    {Repeat::ToEnd,
     5,
     {{0, 5, 0, 8, Form::Unsigned, Unit::None, 1, "channel ID", "channelId"},
      {0, 5, 8, 4, Form::Bits, Unit::None, 1, "lanes", "lanes"},
      {0, 5, 12, 8, Form::Named, Unit::None, 1, "type", "type", false, -1, 0, &AMC_LINKS},
      {0, 5, 20, 4, Form::Hex, Unit::None, 1, "type extension", "typeExtension"},
      {0, 5, 24, 8, Form::Unsigned, Unit::None, 1, "grouping ID", "groupingId"},
      {0, 5, 32, 2, Form::Named, Unit::None, 1, "asymmetric match", "asymmetricMatch", false, -1, 0,
       &MATCHES}},
     "link",
     "links"}};

// How OEM records of VITA 57.1 begin.
const SECTION_S FMC_HEAD = {Repeat::Once,
                            4,
                            {{0, 3, 0, 0, Form::Hex, Unit::None, 1, "manufacturer ID", "manufacturerId"},
                             {3, 1, 4, 4, Form::Unsigned, Unit::None, 1, "sub-type", "subType"},
                             {3, 1, 0, 4, Form::Unsigned, Unit::None, 1, "version", "version"}},
                            nullptr,
                            nullptr,
                            {},
                            true};
const CodeNames MODULE_SIZES = {{0, 0, "single width"}, {1, 1, "double width"}};
const CodeNames CONNECTORS = {{0, 0, "LPC"}, {1, 1, "HPC"}, {3, 3, "not fitted"}};
const CodeNames CLOCKS = {{0, 0, "mezzanine to carrier"}, {1, 1, "carrier to mezzanine"}};
const std::vector<SECTION_S> FMC_MAIN = {
    FMC_HEAD,
    {Repeat::Once,
     7,
     {{0, 1, 6, 2, Form::Named, Unit::None, 1, "module size", "moduleSize", true, -1, 0, &MODULE_SIZES},
      {0, 1, 4, 2, Form::Named, Unit::None, 1, "P1 connector", "p1Connector", true, -1, 0, &CONNECTORS},
      {0, 1, 2, 2, Form::Named, Unit::None, 1, "P2 connector", "p2Connector", true, -1, 0, &CONNECTORS},
      {0, 1, 1, 1, Form::Named, Unit::None, 1, "clock direction", "clockDirection", false, -1, 0, &CLOCKS},
      {1, 1, 0, 0, Form::Unsigned, Unit::None, 1, "P1 bank A signals", "p1BankASignals"},
      {2, 1, 0, 0, Form::Unsigned, Unit::None, 1, "P1 bank B signals", "p1BankBSignals"},
      {3, 1, 0, 0, Form::Unsigned, Unit::None, 1, "P2 bank A signals", "p2BankASignals"},
      {4, 1, 0, 0, Form::Unsigned, Unit::None, 1, "P2 bank B signals", "p2BankBSignals"},
      {5, 1, 4, 4, Form::Unsigned, Unit::None, 1, "P1 transceivers", "p1Transceivers"},
      {5, 1, 0, 4, Form::Unsigned, Unit::None, 1, "P2 transceivers", "p2Transceivers"},
      {6, 1, 0, 0, Form::Unsigned, Unit::Megahertz, 1, "maximum TCK clock", "maximumTckClock"}}}};
const std::vector<SECTION_S> FMC_I2C = {FMC_HEAD, {Repeat::I2cDevices, 2, {}, "device", "devices"}};

std::vector<SECTION_S> Plain(u8 ucSize, const std::vector<WORD_ROW_S> &vecRows)
{
    return {{Repeat::Once, ucSize, vecRows}};
}

std::vector<RECORD_ROW_S> AllRows()
{
    std::vector<RECORD_ROW_S> vecRows = {
        {0x00, ANY, ANY, 0, nullptr, Plain(24, POWER_SUPPLY)},
        {0x01, ANY, ANY, 0, nullptr, Plain(13, Output(1, 0U))},
        {0x02, ANY, ANY, 0, nullptr, Plain(13, Load(1, 0U))},
        {0x04, ANY, ANY, 0, nullptr, Plain(6, COMPATIBILITY)},
        {0x05, ANY, ANY, 0, nullptr, Plain(6, COMPATIBILITY)},
        {0x09, ANY, ANY, 0, nullptr, Plain(13, Output(10, 0x10U))},
        {0x0A, ANY, ANY, 0, nullptr, Plain(13, Load(10, 0x10U))},
        {PICMG_TYPE, PICMG, 0x04, 0, "PICMG Backplane Point-to-Point Connectivity", {}},
        {PICMG_TYPE, PICMG, 0x10, 0, "PICMG Address Table", {}},
        {PICMG_TYPE, PICMG, 0x11, 0, "PICMG Shelf Power Distribution", SHELF_POWER},
        {PICMG_TYPE, PICMG, 0x12, 0, "PICMG Shelf Activation and Power Management", SHELF_ACTIVATION},
        {PICMG_TYPE, PICMG, 0x13, 0, "PICMG Shelf Manager IP Connection", {}},
        {PICMG_TYPE, PICMG, 0x14, 0, "PICMG Board Point-to-Point Connectivity", BOARD_P2P},
        {PICMG_TYPE, PICMG, 0x16, 0, "PICMG Module Current Requirements", MODULE_CURRENT},
        {PICMG_TYPE, PICMG, 0x17, 0, "PICMG Carrier Activation and Current Management", CARRIER_POWER},
        {PICMG_TYPE, PICMG, 0x18, 0, "PICMG Carrier Point-to-Point Connectivity", CARRIER_P2P},
        {PICMG_TYPE, PICMG, 0x19, 0, "PICMG AMC Point-to-Point Connectivity", AMC_P2P},
        {PICMG_TYPE, PICMG, 0x1A, 0, "PICMG Carrier Information", {}},
        {PICMG_TYPE, PICMG, 0x2C, 0, "PICMG Carrier Clock Point-to-Point Connectivity", {}},
        {PICMG_TYPE, PICMG, 0x2D, 0, "PICMG Clock Configuration", {}},
        {FMC_TYPE, VITA, 0, 4, "FMC Main Definition", FMC_MAIN},
        {FMC_TYPE, VITA, 1, 4, "FMC I2C Device Definition", FMC_I2C},
    };
    for (const CODE_NAME_S &stName : SUB_TYPES) {
        const bool bGuid = stName.ucFirst == FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID;
        vecRows.push_back({FRU_MR_TYPE_MANAGEMENT_ACCESS, ANY, stName.ucFirst, 0, nullptr,
                           bGuid ? Plain(FRU_MR_GUID_LEN + 1U, ACCESS_GUID) : Plain(1, ACCESS_TEXT)});
    }
    return vecRows;
}

} // namespace

i32 ManufacturerOf(u8 ucType, const std::vector<u8> &vecData)
{
    return ucType < FIRST_OEM || vecData.size() < 3U ? ANY : vecData[0] | vecData[1] << 8 | vecData[2] << 16;
}

const RECORD_ROW_S *FindRecordRow(u8 ucType, const std::vector<u8> &vecData)
{
    static const std::vector<RECORD_ROW_S> vecAll = AllRows();
    const i32 iManufacturer = ManufacturerOf(ucType, vecData);
    const size_t uiSub = ucType < FIRST_OEM ? 0U : OEM_SUB_TYPE;
    for (const RECORD_ROW_S &stRow : vecAll) {
        const bool bKind = stRow.ucType == ucType && stRow.iManufacturer == iManufacturer;
        const bool bSub = stRow.iSubType == ANY ||
                          (uiSub < vecData.size() && vecData[uiSub] >> stRow.ucSubShift == stRow.iSubType);
        if (bKind && bSub) {
            return &stRow;
        }
    }
    return nullptr;
}
