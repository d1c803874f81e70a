# SPDX-License-Identifier: Apache-2.0
"""fructl killed, and its files failing, at every call that changes something; the tests of tests/e2e in their long form."""
import math
import re

from session import JOBS, ROOT, Number

# What the tests take on one core with every point tried, in seconds; measured.
WHOLE_SECONDS = {"cuts": 120, "image_cuts": 25, "provision_cuts": 60}
FAULT_SECONDS = 120
RANDOM_SECONDS_EACH = 0.2
CROWD_LEAST = 10
DID = re.compile(r"(\d+) (kills|faults|rounds)\b")  # unittest's dots may stand in front
SKIPPED = re.compile(r"skipped=\d+")


def Plan(fBudget):
    """What each test is told, and the words for how thorough that is."""
    fCores = fBudget * JOBS * 0.75
    fEvery = sum(WHOLE_SECONDS.values())
    iStep = max(1, math.ceil(fEvery / (fCores * 0.6)))
    iPoints = 0 if FAULT_SECONDS <= fCores * 0.4 else 3
    # What is left, and no core for it: they run by themselves.
    iRandom = max(50, int(fBudget * 0.15 / RANDOM_SECONDS_EACH))
    fCrowd = max(CROWD_LEAST, fBudget * 0.1)
    dictTests = {strName: {"FRUCTL_CUT_STEP": str(iStep)} for strName in WHOLE_SECONDS}
    dictTests["faults"] = {"FRUCTL_FAULT_POINTS": str(iPoints)}
    dictTests["random_cuts"] = {"FRUCTL_RANDOM_CUTS": str(iRandom)}
    dictTests["crowd"] = {"FRUCTL_CROWD_SECONDS": f"{fCrowd:.0f}"}
    strKills = "kills at every call" if iStep == 1 else f"kills sampled, at one call in {iStep}"
    strFaults = "faults at every call" if iPoints == 0 else f"faults sampled, {iPoints} calls of each kind"
    return dictTests, f"{strKills}; {strFaults}; crowd of eight for {fCrowd:.0f} s"


def Step(stSession, stResult):
    pathBuild = stSession.Build("native", "fructl")
    dictTests, strHow = Plan(stSession.Budget("kills"))

    def One(strName):
        dictMore = {**dictTests[strName], "FRUCTL": str(pathBuild / "fructl"), "BMCFRU_SOURCE": str(ROOT)}
        return stSession.Run(["python3", "-B", ROOT / f"tests/e2e/test_{strName}.py"], dictMore, pathCwd=ROOT / "tests/e2e")

    dictDone = {"kills": 0, "faults": 0, "rounds": 0}
    # The crowd and the random kills measure time: they run by themselves.
    asTogether = [strName for strName in dictTests if strName not in ("crowd", "random_cuts")]
    listOuts = [*zip(asTogether, stSession.Each(One, asTogether)), *((strName, One(strName)) for strName in ("random_cuts", "crowd"))]
    for strName, (iCode, strOut) in listOuts:
        if iCode != 0 or SKIPPED.search(strOut):
            stResult.Problem(f"test_{strName}.py: exit code {iCode}{', tests skipped' if SKIPPED.search(strOut) else ''}: {strOut[-400:].strip()}")
        for strCount, strWhat in DID.findall(strOut):
            dictDone[strWhat] += int(strCount)
    stResult.listFigures += [f"{Number(dictDone['kills'])} kills, {Number(dictDone['faults'])} failing calls, {Number(dictDone['rounds'])} commands of a crowd",
                            f"{strHow}; {dictTests['random_cuts']['FRUCTL_RANDOM_CUTS']} kills at random moments among them"]
