# SPDX-License-Identifier: Apache-2.0
"""The unit tests with char signed and unsigned, and under valgrind."""
import re

from session import JOBS, ROOT, Number, UnitTests

SHARDS = 3 * JOBS
# What nothing points to any more is an error, as is every read past what a test gave.
VALGRIND = ["valgrind", "-q", "--error-exitcode=99", "--leak-check=full", "--errors-for-leak-kinds=definite,indirect,possible", "--fair-sched=try",
            f"--suppressions={ROOT}/tests/proof/valgrind.supp"]
RAN = re.compile(r"^\[==========\] (\d+) tests? from .* ran", re.MULTILINE)
SKIPPED = re.compile(r"^\[  SKIPPED \] (\d+) tests?, listed", re.MULTILINE)


def RunTests(stSession, pathProgram, dictMore=None, listBefore=()):
    """Exit code, tests that ran and those that were skipped."""
    iCode, strOut = stSession.Run([*listBefore, pathProgram, "--gtest_brief=1"], dictMore, pathCwd=pathProgram.parent)
    iRan, iSkipped = (int((reCount.findall(strOut) or [0])[-1]) for reCount in (RAN, SKIPPED))
    return iCode, iRan - iSkipped, iSkipped


def Figures(strLabel, iRan, iSkipped):
    return f"{strLabel}: {Number(iRan)} tests" + (f", {iSkipped} skipped" if iSkipped else "")


def BuildUnits(stSession, strPreset, asOptions=(), strFolder=None):
    """All programs of unit tests."""
    pathBuild = stSession.Build(strPreset, "help", asOptions=asOptions, strFolder=strFolder)
    listNames = UnitTests(pathBuild)
    stSession.Must(["cmake", "--build", pathBuild, "--parallel", JOBS, "--target", *listNames])
    return [pathBuild / strName for strName in listNames]


def Chars(stSession, stResult):
    for strChar in ("signed", "unsigned"):
        listPrograms = BuildUnits(stSession, "native", [f"-DBMCFRU_CHAR={strChar}", "-DBMCFRU_DEBUG_INFO=OFF"], f"char-{strChar}")
        iRan = iSkipped = 0
        for pathProgram, (iCode, iTests, iLeft) in zip(listPrograms, stSession.Each(lambda pathOne: RunTests(stSession, pathOne), listPrograms)):
            iRan += iTests
            iSkipped += iLeft
            if iCode != 0 or iTests == 0:
                stResult.Problem(f"{pathProgram.name} with {strChar} char: exit code {iCode}, {iTests} tests")
        stResult.listFigures.append(Figures(f"{strChar} char", iRan, iSkipped))


def Valgrind(stSession, stResult):
    listParts = [(pathProgram, i) for pathProgram in BuildUnits(stSession, "native") for i in range(SHARDS)]

    def One(tupPart):
        pathProgram, iShard = tupPart
        return RunTests(stSession, pathProgram, {"GTEST_TOTAL_SHARDS": str(SHARDS), "GTEST_SHARD_INDEX": str(iShard)}, VALGRIND)

    iRan = iSkipped = 0
    for (pathProgram, iShard), (iCode, iTests, iLeft) in zip(listParts, stSession.Each(One, listParts)):
        iRan += iTests
        iSkipped += iLeft
        if iCode != 0:
            stResult.Problem(f"{pathProgram.name}, part {iShard + 1} of {SHARDS}: exit code {iCode}" + (" (valgrind's errors are in the log)" if iCode == 99 else ""))
    if iRan == 0:
        stResult.Problem("no test ran")
    stResult.listFigures.append(Figures("memcheck", iRan, iSkipped) + ", no error, no leak" * stResult.bPassed)
