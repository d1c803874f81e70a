// fructl mr add: Management Access records into the main FRU.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include "console.h"
#include "error.h"
#include "fru_names.h"
#include "image_rewrite.h"
#include "json_out.h"
#include "mr.h"
#include "name_value.h"
#include "progress.h"
#include "record.h"
#include "text.h"
#include "uninterrupted.h"

namespace {

constexpr size_t VALUE_MAX = 254U; // the length byte counts the sub-type too
constexpr u8 MR_FORMAT = 0x02U;
constexpr u8 MR_END_OF_LIST = 0x80U;

// Row i is the sub-record type i + 1.
const std::vector<SETTABLE_S> &Records()
{
    static const std::vector<SETTABLE_S> vecRecords = {
        {"system-url", "System URL"},
        {"system-name", "System Name"},
        {"system-ping-address", "System Ping Address"},
        {"component-url", "Component URL"},
        {"component-name", "Component Name"},
        {"component-ping-address", "Component Ping Address"},
        {"system-guid", "System Unique ID"},
    };
    return vecRecords;
}

struct ADD_S
{
    std::vector<std::string> vecTexts;
    bool bDryRun = false;
    bool bForce = false;
};

enum class ACTION
{
    Add,
    Replace,
    Keep
};

// One record as it is to be.
struct WANTED_S
{
    u8 ucSubType;
    std::vector<u8> vecValue; // as the library takes it
    std::vector<u8> vecData;  // as the record stores it: sub-type and value
    ACTION enAction;
    std::vector<u8> vecOld; // the data that it replaces

    const SETTABLE_S &Row() const
    {
        return Records()[ucSubType - 1U];
    }
};

struct PLAN_S
{
    std::vector<WANTED_S> vecWanted;
    std::vector<u8> vecEncoded; // the image that is in the device after the last of them; empty: none changes
    REWRITE_S stRewrite;
};

WANTED_S Wanted(const NAME_VALUE_S &stGiven)
{
    WANTED_S stWanted = {static_cast<u8>(stGiven.uiIndex + 1U), {}, {}, ACTION::Add, {}};
    stWanted.vecData.push_back(stWanted.ucSubType);
    if (stWanted.ucSubType == MR_SUBTYPE_GUID) {
        const GUID_BYTES aucGiven = ParseGuid(stGiven.strValue);
        GUID_BYTES aucStored = {};
        FRU_ConvertGUIDToStandardOrder(aucGiven.data(), aucStored.data());
        stWanted.vecValue.assign(aucGiven.begin(), aucGiven.end());
        stWanted.vecData.insert(stWanted.vecData.end(), aucStored.begin(), aucStored.end());
        return stWanted;
    }
    const std::string &strValue = stGiven.strValue;
    const bool bPrintable = std::all_of(strValue.begin(), strValue.end(), [](char cChar) {
        return (static_cast<u8>(cChar) & 0x7FU) >= 0x20U && cChar != 0x7F;
    });
    if (strValue.empty() || strValue.size() > VALUE_MAX || !bPrintable) {
        FailUsage(std::string("the value of ") + stWanted.Row().pcName +
                  Format(" (%zu characters) is refused; accepted: 1 to %zu printable characters, as the "
                         "record's length byte holds no more",
                         strValue.size(), VALUE_MAX));
    }
    stWanted.vecValue.assign(strValue.begin(), strValue.end());
    stWanted.vecData.insert(stWanted.vecData.end(), stWanted.vecValue.begin(), stWanted.vecValue.end());
    return stWanted;
}

bool HoldsSubType(const FRU_MULTIRECORD_S &stRecord, u8 ucSubType)
{
    return stRecord.ucRecordTypeID == MR_MANAGEMENT_ACCESS && stRecord.ucRecordLength != 0U &&
           stRecord.pucRecordData[0] == ucSubType;
}

// The entry with that sub-record type, else the first free one; null: neither.
FRU_MULTIRECORD_S *FindEntry(FRU_DATA_S *pstData, u8 ucSubType)
{
    for (FRU_MULTIRECORD_S &stRecord : pstData->astMultiRecord) {
        if (stRecord.pucRecordData == nullptr || HoldsSubType(stRecord, ucSubType)) {
            return &stRecord;
        }
    }
    return nullptr;
}

u8 ZeroSum(const u8 *pucBytes, size_t uiLength)
{
    return static_cast<u8>(0U - std::accumulate(pucBytes, pucBytes + uiLength, 0U));
}

void Put(FRU_MULTIRECORD_S *pstEntry, const WANTED_S &stWanted)
{
    u8 *pucData = static_cast<u8 *>(malloc(stWanted.vecData.size()));
    if (pucData == nullptr) {
        throw std::bad_alloc();
    }
    memcpy(pucData, stWanted.vecData.data(), stWanted.vecData.size());
    free(pstEntry->pucRecordData);
    *pstEntry = {MR_MANAGEMENT_ACCESS,
                 MR_FORMAT,
                 static_cast<u8>(stWanted.vecData.size()),
                 ZeroSum(pucData, stWanted.vecData.size()),
                 0U,
                 pucData};
}

// The last record says that it is the last, no other does.
void RenewMarks(FRU_DATA_S *pstData)
{
    constexpr size_t uiSummed = FRU_MULTIRECORD_HEADER_LEN - 1U;
    for (size_t i = 0; i < FRU_MULTIRECORD_MAX && pstData->astMultiRecord[i].pucRecordData != nullptr; i++) {
        FRU_MULTIRECORD_S &stRecord = pstData->astMultiRecord[i];
        const bool bLast =
            i + 1U == FRU_MULTIRECORD_MAX || pstData->astMultiRecord[i + 1U].pucRecordData == nullptr;
        stRecord.ucRecordFormat = static_cast<u8>(bLast ? stRecord.ucRecordFormat | MR_END_OF_LIST
                                                        : stRecord.ucRecordFormat & ~MR_END_OF_LIST);
        stRecord.ucHeaderChecksum = ZeroSum(reinterpret_cast<const u8 *>(&stRecord), uiSummed);
    }
    pstData->stCommonHeader.ucMultiRecordAreaStartOffset = 1U; // present; the encoder lays it out
}

// What the library's merge will refuse, or do to records that cannot be read, is told before it begins.
void CheckList(const DEVICE_S &stDevice, const FRU_DATA_S &stData)
{
    const bool bArea = stData.stCommonHeader.ucMultiRecordAreaStartOffset != 0U;
    const std::string strMore = "; 'fructl mr check' and 'fructl verify' tell more";
    if (bArea && stData.astMultiRecord[0].pucRecordData == nullptr) {
        Fail("the MultiRecord area of " + stDevice.Title() +
             " is damaged: no record of it can be read, and adding one would drop them all" + strMore);
    }
    u32 uiCount = 0;
    ClearDiagnostics();
    const u32 uiRet = FRU_checkAllMultiRecords(reinterpret_cast<const u8 *>(stData.astMultiRecord),
                                               FRU_MR_CHECK_MEMORY, &uiCount);
    if (bArea && uiRet != FRU_OK) {
        Fail("the MultiRecords of " + stDevice.Title() + " are not in order, so none can be added" +
             DiagnosticHint() + strMore);
    }
}

// Where the record goes, and what becomes of what is there.
FRU_MULTIRECORD_S *Place(const DEVICE_S &stDevice, FRU_DATA_S *pstData, WANTED_S &stWanted)
{
    FRU_MULTIRECORD_S *pstEntry = FindEntry(pstData, stWanted.ucSubType);
    if (pstEntry == nullptr) {
        Fail(stDevice.Title() +
             Format(" holds %u MultiRecords already, and none is a ", FRU_MULTIRECORD_MAX) +
             stWanted.Row().pcTitle + "; there is no place for more");
    }
    const u8 *pucOld = pstEntry->pucRecordData;
    if (pucOld != nullptr) {
        stWanted.vecOld.assign(pucOld, pucOld + pstEntry->ucRecordLength);
        stWanted.enAction = stWanted.vecOld == stWanted.vecData ? ACTION::Keep : ACTION::Replace;
    }
    return pstEntry;
}

// Works out every image that will be written, so that none of several records finds that it does not fit.
PLAN_S Plan(const DEVICE_S &stDevice, const std::vector<WANTED_S> &vecWanted)
{
    PLAN_S stPlan = {vecWanted, {}, {}};
    const TARGET_S stTarget = {stDevice, ""};
    RECORD stRecord;
    DecodeTarget(stTarget, stRecord);
    CheckList(stDevice, *stRecord.Data());
    const IMAGE_S stImage = ReadTarget(stTarget);
    std::vector<u8> vecAfter = stImage.vecBytes;
    for (WANTED_S &stWanted : stPlan.vecWanted) {
        FRU_MULTIRECORD_S *pstEntry = Place(stDevice, stRecord.Data(), stWanted);
        if (stWanted.enAction == ACTION::Keep) {
            continue;
        }
        const std::string strWhat = std::string("the new ") + stWanted.Row().pcTitle;
        Put(pstEntry, stWanted);
        RenewMarks(stRecord.Data());
        stPlan.vecEncoded = EncodeAnew(stDevice, strWhat, stRecord);
        vecAfter = Overlay(vecAfter, stPlan.vecEncoded);
        RequireReadable(stDevice, strWhat, stRecord, vecAfter);
    }
    if (!stPlan.vecEncoded.empty()) {
        stPlan.stRewrite =
            CompareImages(stDevice, stImage, vecAfter, [](AREA enArea, const std::string & /*strField*/) {
                return enArea == AREA::MultiRecord;
            });
    }
    return stPlan;
}

// The library's result does not tell of an EEPROM that took no bytes: only what is read back counts.
void CheckWritten(const DEVICE_S &stDevice, const PLAN_S &stPlan, const std::string &strCause)
{
    const auto fnHolds = [&](const IMAGE_S &stImage) {
        return std::equal(stPlan.vecEncoded.begin(), stPlan.vecEncoded.end(), stImage.vecBytes.begin());
    };
    if (!fnHolds(ReadTarget({stDevice, ""}))) {
        Fail("the library reports success, but " + stDevice.Title() + " does not hold the new records" +
             strCause +
             "; 'fructl mr check' and 'fructl verify' tell "
             "what it holds");
    }
    const std::optional<IMAGE_S> optCached = ReadCache(stDevice);
    if (!stPlan.vecEncoded.empty() && (!optCached.has_value() || !fnHolds(*optCached))) {
        Fail(stDevice.Title() + " holds the new records, but its cached image could not be renewed" +
             strCause);
    }
}

// Every update is a merge and a device write of its own: no call queues a record without merging it.
void Write(const DEVICE_S &stDevice, PLAN_S &stPlan)
{
    const UNINTERRUPTED stUninterrupted;
    const PROGRESS stProgress("writing " + stDevice.Title());
    ClearDiagnostics();
    std::vector<std::string> vecDone;
    for (WANTED_S &stWanted : stPlan.vecWanted) {
        const FRU_MR_PARAM_S stParam = {MR_MANAGEMENT_ACCESS, stWanted.ucSubType,
                                        static_cast<u32>(stWanted.vecValue.size()), stWanted.vecValue.data()};
        const u32 uiRet = FRU_innerUpdateMultiRecord(&stParam);
        if (uiRet != FRU_OK) {
            Fail(std::string(stWanted.Row().pcName) + " could not be written: " + MultiRecordStatus(uiRet) +
                 Cause() + (vecDone.empty() ? "" : "; written before it: " + Join(vecDone, ", ")));
        }
        vecDone.emplace_back(stWanted.Row().pcName);
    }
    CheckWritten(stDevice, stPlan, Cause());
}

const char *ActionWord(ACTION enAction, bool bDryRun)
{
    switch (enAction) {
    case ACTION::Add:
        return bDryRun ? "add" : "added";
    case ACTION::Replace:
        return bDryRun ? "replace" : "replaced";
    default:
        return bDryRun ? "keep" : "kept";
    }
}

std::string Says(const std::vector<u8> &vecData)
{
    return vecData.empty()
               ? ""
               : MultiRecordText(MR_MANAGEMENT_ACCESS, vecData.data(), static_cast<u8>(vecData.size()));
}

JSON PlanJson(const ADD_S &stOptions, const DEVICE_S &stDevice, const PLAN_S &stPlan)
{
    JSON stRecords = JSON::array();
    size_t uiWrites = 0;
    for (const WANTED_S &stWanted : stPlan.vecWanted) {
        uiWrites += stWanted.enAction == ACTION::Keep ? 0U : 1U;
        JSON stJson = {{"name", stWanted.Row().pcName},
                       {"subType", stWanted.ucSubType},
                       {"action", ActionWord(stWanted.enAction, stOptions.bDryRun)},
                       {"text", Latin1ToUtf8(Says(stWanted.vecData))},
                       {"data", HexBytes(stWanted.vecData)}};
        if (stWanted.enAction == ACTION::Replace) {
            stJson["oldText"] = Latin1ToUtf8(Says(stWanted.vecOld));
        }
        stRecords.push_back(stJson);
    }
    return {{"device", DeviceJson(stDevice)},
            {"dryRun", stOptions.bDryRun},
            {"writes", uiWrites},
            {"records", stRecords},
            {"notes", stPlan.stRewrite.vecNotes},
            {"losses", stPlan.stRewrite.vecLosses}};
}

std::string PlanText(const ADD_S &stOptions, const PLAN_S &stPlan)
{
    TABLE stTable({"RECORD", "", "SAYS", "SAID"});
    size_t uiWrites = 0;
    for (const WANTED_S &stWanted : stPlan.vecWanted) {
        uiWrites += stWanted.enAction == ACTION::Keep ? 0U : 1U;
        stTable.Row({stWanted.Row().pcTitle, ActionWord(stWanted.enAction, stOptions.bDryRun),
                     EscapeText(Says(stWanted.vecData)),
                     stWanted.enAction == ACTION::Replace ? EscapeText(Says(stWanted.vecOld)) : ""});
    }
    std::string strOut = stTable.Text();
    for (const std::string &strNote : stPlan.stRewrite.vecNotes) {
        strOut += Paint(COLOUR::Yellow, "note") + ": " + strNote + "\n";
    }
    for (const std::string &strLoss : stPlan.stRewrite.vecLosses) {
        strOut += Paint(COLOUR::Red, "lost") + ": " + strLoss + "\n";
    }
    const std::string strWrites = Count(uiWrites, "device write");
    return strOut + (stOptions.bDryRun
                         ? "nothing was written; without --dry-run: " + strWrites + "\n"
                         : Paint(COLOUR::Green, "Done") + ": " + strWrites + ", read back and right\n");
}

void RunAdd(const SESSION_S &stSession, const ADD_S &stOptions)
{
    std::vector<WANTED_S> vecWanted;
    for (const NAME_VALUE_S &stGiven : ParseNameValues(stOptions.vecTexts, Records())) {
        vecWanted.push_back(Wanted(stGiven));
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, {MAIN_FRU, ""});
    std::optional<ROOT_LOCK> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    PLAN_S stPlan = Plan(stDevice, vecWanted);
    if (!stOptions.bDryRun && !stOptions.bForce && !stPlan.stRewrite.vecLosses.empty()) {
        Fail("refused, for the library writes the whole image of " + stDevice.Title() +
             " anew and would lose: " + Join(stPlan.stRewrite.vecLosses, "; ") + "; --force writes");
    }
    if (!stOptions.bDryRun) {
        Write(stDevice, stPlan);
    }
    if (stSession.bJson) {
        PrintJson(PlanJson(stOptions, stDevice, stPlan));
    } else {
        Print(PlanText(stOptions, stPlan));
    }
}

} // namespace

void AddMrAddCommand(CLI::App &stMr, SESSION_S &stSession)
{
    const auto pstAdd = std::make_shared<ADD_S>();
    CLI::App *pstCommand = AddCommand(
        stMr, "add", "Add Management Access records to the main FRU (0x00:0), or replace them there",
        "fructl mr add system-name=rack7-u12 system-url=https://rack7-u12.example\n"
        "fructl mr add system-guid=1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f --dry-run");
    pstCommand
        ->add_option("NAME=VALUE", pstAdd->vecTexts,
                     "each name once: " + NamesOf(Records()) + "; a text of 1 to 254 characters or a GUID")
        ->required();
    pstCommand->add_flag("-n,--dry-run", pstAdd->bDryRun,
                         "say what would be added or replaced, write nothing");
    pstCommand->add_flag("--force", pstAdd->bForce,
                         "write even when something beside the records would be lost");
    pstCommand->callback(
        [&stSession, pstAdd] { stSession.fnRun = [&stSession, pstAdd] { RunAdd(stSession, *pstAdd); }; });
}
