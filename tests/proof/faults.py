# SPDX-License-Identifier: Apache-2.0
"""The programs of tests/prove under the address and undefined-behaviour sanitizers: every call with everything below it failing,
and twenty images with every byte changed and every end missing."""
import json
import math

from session import JOBS, OUT, Failed, Number

CALIBRATION = 2001  # of so many variants one, to know what all take
SHARE_PLANNED = 0.8
PARTS = 4 * JOBS  # large images and small ones: so that no core is without work for long


def ReadLines(pathFile):
    return [json.loads(strLine) for strLine in pathFile.read_text().splitlines()]


def Injected(dictRow):
    return sum(iCount for dictKinds in dictRow["injected"].values() for dictTimes in dictKinds.values() for iCount in dictTimes.values())


def Matrix(stSession, stResult):
    pathBuild = stSession.Build("asan", "prove_faults")
    pathRows = OUT / "faults.json"
    pathRows.unlink(missing_ok=True)
    iCode, strOut = stSession.Run([pathBuild / "prove_faults", "--json", pathRows], pathCwd=pathBuild)
    if iCode != 0:
        stResult.Problem(f"prove_faults ends with exit code {iCode}: {strOut[-400:].strip()}")
    if not pathRows.exists():
        return
    listRows = ReadLines(pathRows)
    dictTotal = next(dictRow for dictRow in listRows if "total" in dictRow)
    listRules = [dictRow for dictRow in listRows if "rule" in dictRow]
    stResult.listFigures += [f"{sum('call' in dictRow for dictRow in listRows)} calls, {dictTotal['total']}, {Number(Injected(dictTotal))} faults injected, {dictTotal['leaks']} leaks",
                             f"{Number(sum(dictRow['met'] for dictRow in listRules))} successes that are not whole, by {len(listRules)} rules"]
    stResult.listRules = [{"rule": dictRow["rule"], "met": dictRow["met"], "reason": dictRow["reason"]} for dictRow in listRules]


def Sweep(stSession, pathBuild, iStride, *asMore):
    """Exit code, what was printed and the images of each part."""
    def One(iPart):
        pathRows = OUT / f"images-{iPart}.json"
        pathRows.unlink(missing_ok=True)
        iCode, strOut = stSession.Run([pathBuild / "prove_images", "--stride", iStride, "--part", f"{iPart}/{PARTS}", "--json", pathRows, *asMore], pathCwd=pathBuild)
        return iCode, strOut, [dictRow for dictRow in ReadLines(pathRows) if "image" in dictRow] if pathRows.exists() else []

    return stSession.Each(One, range(1, PARTS + 1))


def Tell(stResult, listParts, strHow):
    """What all parts came to, and which of them failed."""
    listRows = []
    for iCode, strOut, listPart in listParts:
        listRows += listPart
        if iCode != 0:
            stResult.Problem(f"prove_images ends with exit code {iCode}: {strOut[-400:].strip()}")
    if not listRows:
        raise Failed("prove_images told nothing")
    dictSums = {strKey: sum(dictRow[strKey] for dictRow in listRows) for strKey in ("variants", "accepted", "refused", "broken", "leaks")}
    stResult.listFigures.append(f"{len(listRows)} images, {strHow}: {Number(dictSums['variants'])} variants, {Number(dictSums['accepted'])} accepted, "
                                f"{Number(dictSums['refused'])} refused, {dictSums['broken']} broken promises, {dictSums['leaks']} leaks")


def Images(stSession, stResult):
    # With sanitizers all of them would take a day.
    pathBuild = stSession.Build("native", "prove_images")
    Tell(stResult, Sweep(stSession, pathBuild, 1, "--corpus", ""), "every variant, without sanitizers")
    pathBuild = stSession.Build("asan", "prove_images")
    fBudget = stSession.Budget("images") * SHARE_PLANNED
    listParts = [sum(dictRow["seconds"] for dictRow in listRows) for _, _, listRows in Sweep(stSession, pathBuild, CALIBRATION)]
    iStride = max(1, math.ceil(max(sum(listParts) / JOBS, *listParts) * CALIBRATION / fBudget))
    iStride += iStride % 2 == 0  # every other variant has its checksums repaired
    Tell(stResult, Sweep(stSession, pathBuild, iStride), "with sanitizers" + ("" if iStride == 1 else f", sampled: one variant in {iStride}"))
