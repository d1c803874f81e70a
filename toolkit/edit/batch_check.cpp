// SPDX-License-Identifier: Apache-2.0
// What a batch does with its controllers: the checks of all rows, and one row's write.
#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/batch.h"
#include "toolkit/image/role.h"

namespace {

// A device, wherever its controller lies.
struct PLACE_S
{
    std::string strRoot;
    u8 ucDeviceID = 0;
};

bool operator<(const PLACE_S &stLeft, const PLACE_S &stRight)
{
    return std::tie(stLeft.strRoot, stLeft.ucDeviceID) < std::tie(stRight.strRoot, stRight.ucDeviceID);
}

using VALUE_KEY = std::pair<FIELD_ID_S, std::string>; // of an identity
using FIELD_KEY = std::pair<PLACE_S, FIELD_ID_S>;

// A controller for one row: another one may be next, and nothing of this one is kept.
CONTROLLER_S OpenRow(const CONTROLLER_S &stController, const BATCH_ROW_S &stRow)
{
    CONTROLLER_S stOwn = stController;
    stOwn.strRoot = stRow.strRoot.empty() ? stController.strRoot : stRow.strRoot;
    stOwn.pstReadLock.reset();
    OpenController(stOwn);
    return stOwn;
}

std::string WholePath(const std::string &strRoot)
{
    std::error_code stError;
    const std::filesystem::path stPath = std::filesystem::weakly_canonical(strRoot, stError);
    return stError ? strRoot : stPath.string();
}

std::vector<LABEL_REQUEST_S> RequestsOf(const BATCH_ROW_S &stRow)
{
    std::vector<LABEL_REQUEST_S> vecRequests;
    for (const auto &stValue : stRow.vecValues) {
        vecRequests.push_back(MakeRequest(FindLabel(stValue.first), stValue.second));
    }
    return vecRequests;
}

void SetFailure(BATCH_ROW_S &stRow, BatchState enState, const Error &stError)
{
    stRow.enState = enState;
    stRow.strMessage = stError.what();
    stRow.enClass = stError.Class();
}

bool IsIdentity(const LABEL_REQUEST_S &stRequest)
{
    return RoleOf(stRequest.stLabel.stField, true) == Role::Identity && !stRequest.strValue.empty() &&
           !IsNone(stRequest);
}

void RequireNoLosses(const DEVICE_S &stDevice, const LABEL_PLAN_S &stPlan, bool bForce)
{
    if (!stPlan.vecLosses.empty() && !bForce) {
        FailRefused("refused, for the library writes the whole image of " + stDevice.Title() +
                    " anew and would lose: " + Join(stPlan.vecLosses, "; ") + "; --force writes");
    }
}

// Serial numbers and the like that all rows, and all devices of their controllers, have.
class Claims
{
  public:
    explicit Claims(const CONTROLLER_S &stController) : m_stController(stController) {}
    void Add(const BATCH_ROW_S &stRow, const DEVICE_S &stDevice, const std::string &strRoot,
             const std::vector<LABEL_REQUEST_S> &vecRequests);
    void ReadDevices();
    // Why a row's values are not its own; empty when they are.
    std::string WhyDouble(const BATCH_ROW_S &stRow) const;

  private:
    struct CLAIM_S
    {
        size_t uiRow; // its number
        PLACE_S stPlace;
        LABEL_REQUEST_S stRequest;
    };
    struct HOLDER_S
    {
        PLACE_S stPlace;
        std::string strTitle;
    };
    void ReadController(const std::string &strRoot);

    const CONTROLLER_S &m_stController;
    std::vector<CLAIM_S> m_vecClaims;
    std::map<FIELD_KEY, std::vector<size_t>> m_mapFields;    // rows that set a field of a device
    std::map<VALUE_KEY, std::vector<size_t>> m_mapValues;    // rows that give an identity
    std::map<VALUE_KEY, std::vector<HOLDER_S>> m_mapHolders; // devices that have it
};

void Claims::Add(const BATCH_ROW_S &stRow, const DEVICE_S &stDevice, const std::string &strRoot,
                 const std::vector<LABEL_REQUEST_S> &vecRequests)
{
    const PLACE_S stPlace = {WholePath(strRoot), stDevice.stEntry.ucDeviceID};
    for (const LABEL_REQUEST_S &stRequest : vecRequests) {
        const FIELD_ID_S &stField = stRequest.stLabel.stField;
        m_vecClaims.push_back({stRow.uiNumber, stPlace, stRequest});
        m_mapFields[{stPlace, stField}].push_back(stRow.uiNumber);
        if (IsIdentity(stRequest)) {
            m_mapValues[{stField, stRequest.strValue}].push_back(stRow.uiNumber);
        }
    }
}

void Claims::ReadController(const std::string &strRoot)
{
    BATCH_ROW_S stAny;
    stAny.strRoot = strRoot;
    const CONTROLLER_S stController = OpenRow(m_stController, stAny);
    for (const DEVICE_S &stDevice : LoadDevices(stController)) {
        const std::optional<IMAGE_S> optImage =
            stDevice.bHasInfo ? FindSource(stDevice, HomeOf(stDevice)) : std::nullopt;
        Record stRecord;
        if (!optImage.has_value() || DecodeImage(*optImage, stDevice.HasFixedSlots(), stRecord) != 0U) {
            continue; // it has nothing that could be double
        }
        const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
        const HOLDER_S stHolder = {{strRoot, stDevice.stEntry.ucDeviceID},
                                   stDevice.Title() + " of " + EscapeText(strRoot)};
        for (const LABEL_S &stLabel : Labels()) {
            const std::optional<std::string> optValue = LabelValue(stView, stLabel);
            const bool bSet = m_mapFields.count({stHolder.stPlace, stLabel.stField}) != 0U;
            if (optValue.has_value() && !bSet && IsIdentity({stLabel, *optValue})) {
                m_mapHolders[{stLabel.stField, *optValue}].push_back(stHolder);
            }
        }
    }
}

void Claims::ReadDevices()
{
    std::set<std::string> setRoots;
    for (const CLAIM_S &stClaim : m_vecClaims) {
        setRoots.insert(stClaim.stPlace.strRoot);
    }
    for (const std::string &strRoot : setRoots) {
        ReadController(strRoot);
    }
}

std::string Claims::WhyDouble(const BATCH_ROW_S &stRow) const
{
    const auto fnOther = [&stRow](const std::vector<size_t> &vecRows) {
        const auto itRow = std::find_if(vecRows.begin(), vecRows.end(),
                                        [&stRow](size_t uiRow) { return uiRow != stRow.uiNumber; });
        return itRow == vecRows.end() ? 0U : *itRow;
    };
    for (const CLAIM_S &stClaim : m_vecClaims) {
        const LABEL_REQUEST_S &stRequest = stClaim.stRequest;
        if (stClaim.uiRow != stRow.uiNumber) {
            continue;
        }
        const std::string strLabel = "'" + stRequest.stLabel.strName + "'";
        if (const size_t uiOther = fnOther(m_mapFields.at({stClaim.stPlace, stRequest.stLabel.stField}));
            uiOther != 0U) {
            return "row " + std::to_string(uiOther) + " sets " + strLabel + " of the same device";
        }
        const std::string strValue =
            "'" + EscapeText(stRequest.strValue) + "' is refused for " + strLabel + ": ";
        const VALUE_KEY stKey = {stRequest.stLabel.stField, stRequest.strValue};
        const auto itRows = m_mapValues.find(stKey);
        if (const size_t uiOther = itRows == m_mapValues.end() ? 0U : fnOther(itRows->second);
            uiOther != 0U) {
            return strValue + "row " + std::to_string(uiOther) + " gives it, too";
        }
        const auto itHolders = m_mapHolders.find(stKey);
        if (IsIdentity(stRequest) && itHolders != m_mapHolders.end()) {
            return strValue + itHolders->second.front().strTitle + " has it";
        }
    }
    return "";
}

// One row on its own. Gives what it claims to the others.
void CheckRow(const CONTROLLER_S &stController, BATCH_ROW_S &stRow, const BATCH_OPTIONS_S &stOptions,
              Claims &stClaims)
{
    try {
        const CONTROLLER_S stOwn = OpenRow(stController, stRow);
        const DEVICE_S stDevice = ResolveDevice(stOwn, {stRow.strDevice, ""});
        const std::vector<LABEL_REQUEST_S> vecRequests = RequestsOf(stRow);
        stClaims.Add(stRow, stDevice, stOwn.strRoot, vecRequests);
        if (stRow.enState != BatchState::Open) {
            return;
        }
        CheckRequests(stDevice, vecRequests);
        RequireNoPlaceholders(vecRequests, stOptions.bForce);
        const LABEL_PLAN_S stPlan = PlanLabels(stDevice, vecRequests);
        RequireNoLosses(stDevice, stPlan, stOptions.bForce);
        stRow.strMessage = Join(stPlan.vecNotes, "; ");
        if (stOptions.bDryRun) {
            stRow.enState = stPlan.IsUnchanged() ? BatchState::Unchanged : BatchState::WouldWrite;
        }
    } catch (const Error &stError) {
        if (stRow.enState == BatchState::Open) {
            SetFailure(stRow, BatchState::Refused, stError);
        }
    }
}

} // namespace

void CheckScanned(const CONTROLLER_S &stController, const BATCH_ROW_S &stRow, const std::string &strLabel,
                  const std::string &strValue, const BATCH_OPTIONS_S &stOptions)
{
    const CONTROLLER_S stOwn = OpenRow(stController, stRow);
    const std::vector<LABEL_REQUEST_S> vecRequests = {MakeRequest(FindLabel(strLabel), strValue)};
    CheckRequests(ResolveDevice(stOwn, {stRow.strDevice, ""}), vecRequests);
    RequireNoPlaceholders(vecRequests, stOptions.bForce);
}

void CheckBatch(const CONTROLLER_S &stController, BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions)
{
    Claims stClaims(stController);
    for (BATCH_ROW_S &stRow : stBatch.vecRows) {
        CheckRow(stController, stRow, stOptions, stClaims);
    }
    if (stOptions.bForce) {
        return;
    }
    stClaims.ReadDevices();
    for (BATCH_ROW_S &stRow : stBatch.vecRows) {
        const bool bChecked = stRow.enState != BatchState::Refused && stRow.enState != BatchState::Done;
        const std::string strWhy = bChecked ? stClaims.WhyDouble(stRow) : "";
        if (!strWhy.empty()) {
            SetFailure(stRow, BatchState::Refused,
                       Error(ErrorClass::Refused, strWhy + "; --force writes it"));
        }
    }
}

void WriteBatchRow(const CONTROLLER_S &stController, BATCH_ROW_S &stRow, const BATCH_OPTIONS_S &stOptions)
{
    try {
        const CONTROLLER_S stOwn = OpenRow(stController, stRow);
        const DEVICE_S stDevice = ResolveDevice(stOwn, {stRow.strDevice, ""});
        const std::vector<LABEL_REQUEST_S> vecRequests = RequestsOf(stRow);
        CheckRequests(stDevice, vecRequests);
        const RootLock stLock(stOwn);
        const LABEL_PLAN_S stPlan = PlanLabels(stDevice, vecRequests);
        RequireNoLosses(stDevice, stPlan, stOptions.bForce);
        stRow.strMessage = Join(stPlan.vecNotes, "; ");
        std::string strAftermath;
        (void)WriteLabels(stLock, stDevice, stPlan, strAftermath, nullptr);
        if (!strAftermath.empty()) {
            Fail(strAftermath);
        }
        stRow.enState = stPlan.IsUnchanged() ? BatchState::Unchanged : BatchState::Written;
    } catch (const Error &stError) {
        SetFailure(stRow, BatchState::Failed, stError);
    }
}
