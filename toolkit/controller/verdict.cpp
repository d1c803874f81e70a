// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/verdict.h"

#include "lib_fru.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/hardware_block.h"
#include "toolkit/image/record.h"

std::string VERDICT_S::Why() const
{
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        if (!stFinding.bWarning) {
            return FindingText(stFinding);
        }
    }
    return strRefusal;
}

VERDICT_S VerdictOn(const IMAGE_S &stImage, bool bFixedSlots)
{
    VERDICT_S stVerdict = {LayoutOf(stImage, bFixedSlots), ""};
    // The library has the last word: what it refuses is not in order, whatever the walk above thinks.
    // It has no word on a hardware block, whose CRC-8 bytes it has computed for the walk.
    if (IsHardwareBlock(stImage.vecBytes, stImage.uiStored)) {
        return stVerdict;
    }
    Record stRecord;
    ClearDiagnostics();
    const u32 uiRet = DecodeImage(stImage, bFixedSlots, stRecord);
    if (uiRet != FRU_OK && stVerdict.stLayout.IsSound()) {
        stVerdict.strRefusal = "the library refuses it: " + StatusText(uiRet) + DiagnosticHint();
    }
    return stVerdict;
}

std::optional<size_t> CacheDifference(const DEVICE_S &stDevice, const IMAGE_S &stEeprom)
{
    if (stDevice.IsDatabaseOnly() || !IsCacheTrusted(stDevice)) {
        return std::nullopt;
    }
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    return optCached.has_value() ? FirstDifference(stEeprom, *optCached, stDevice.HasFixedSlots())
                                 : std::nullopt;
}
