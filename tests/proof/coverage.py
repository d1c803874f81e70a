# SPDX-License-Identifier: Apache-2.0
"""Lines and branches that the tests run, by llvm-cov; every line of src/ that none runs is named with the reason."""
import collections
import os
import re
import shutil
import subprocess

from session import JOBS, OUT, ROOT, Failed, Number, ReadReasons, UnitTests

REASONS = ROOT / "tests/proof/uncovered.txt"
ROOMS = ("src", "host", "toolkit")
CONTRACTS = ("contract", "contract_i2c", "contract_kernel")
WHOLE = "*"  # in place of a line: all of a function


class File:
    """What is known of one source file."""

    def __init__(self, strName):
        self.strName = strName
        self.dictLines = {}
        self.dictFunctions = {}
        self.dictBranches = {}

    def StartOf(self, iLine, asText):
        """Where the function of this line begins; 0 for lines of none, as macros have them."""
        iStart = max((iOne for iOne in self.dictFunctions if iOne <= iLine), default=0)
        return iStart if not any(strText.startswith("}") for strText in asText[iStart - 1:iLine - 1]) else 0

    def Uncovered(self):
        """(function, line, its number) of what never ran; WHOLE for every line of a function of which nothing did."""
        asText = (ROOT / self.strName).read_text().splitlines()
        dictStarts = {iLine: self.StartOf(iLine, asText) for iLine in self.dictLines}
        setRan = {dictStarts[iLine] for iLine, iCount in self.dictLines.items() if iCount > 0}
        return [(self.dictFunctions.get(dictStarts[iLine], ""), asText[iLine - 1].strip() if dictStarts[iLine] in setRan else WHOLE, iLine)
                for iLine, iCount in sorted(self.dictLines.items()) if iCount == 0]


def Demangled(asNames):
    strOut = subprocess.run(["c++filt", "-p"], input="\n".join(asNames), capture_output=True, text=True, check=True).stdout
    return dict(zip(asNames, (re.sub(r"\(anonymous namespace\)::|<.*>", "", strName).split(" ")[-1] for strName in strOut.splitlines())))


def ReadTracefile(strText):
    """name -> File, for the rooms."""
    dictFiles = {}
    stFile = None
    for strLine in strText.splitlines():
        strWord, _, strRest = strLine.partition(":")
        if strWord == "SF":
            strName = os.path.relpath(os.path.realpath(strRest), ROOT)
            stFile = dictFiles.setdefault(strName, File(strName)) if strName.split("/")[0] in ROOMS else None
        elif stFile is None:
            continue
        elif strWord == "FN":
            strStart, strName = strRest.split(",", 1)
            stFile.dictFunctions[int(strStart)] = strName.rpartition(":")[2]
        elif strWord == "DA":
            iLine, iCount = map(int, strRest.split(",")[:2])
            stFile.dictLines[iLine] = max(iCount, stFile.dictLines.get(iLine, 0))
        elif strWord == "BRDA":
            *asPlace, strCount = strRest.split(",")
            tupPlace = tuple(asPlace)
            stFile.dictBranches[tupPlace] = stFile.dictBranches.get(tupPlace, False) or strCount not in ("-", "0")
    asNames = sorted({strName for stFile in dictFiles.values() for strName in stFile.dictFunctions.values()})
    dictNames = Demangled(asNames)
    for stFile in dictFiles.values():
        stFile.dictFunctions = {iLine: dictNames[strName] for iLine, strName in stFile.dictFunctions.items()}
    return dictFiles


def Compare(dictFiles, dictReasons):
    """What is wrong: a line that never ran and is not named, and a name for what runs or is not there."""
    listWrong = []
    setFound = set()
    for strName, stFile in sorted(dictFiles.items()):
        if not strName.startswith("src/"):
            continue
        for strFunction, strText, iLine in stFile.Uncovered():
            tupKey = (strName, strFunction, strText)
            if tupKey not in dictReasons and tupKey not in setFound:
                listWrong.append(f"never runs: {strName} | {strFunction} | {strText} (line {iLine})")
            setFound.add(tupKey)
    listWrong += [f"named, but runs or is not there: {' | '.join(tupKey)}" for tupKey in dictReasons if tupKey not in setFound]
    return listWrong


def Counted(dictFiles, strRoom):
    """'99.5 % of 4,000 lines, 98.7 % of 1,700 branches'"""
    listFiles = [stFile for strName, stFile in dictFiles.items() if strName.startswith(strRoom + "/")]
    listLines = [iCount > 0 for stFile in listFiles for iCount in stFile.dictLines.values()]
    listBranches = [bRan for stFile in listFiles for bRan in stFile.dictBranches.values()]
    asParts = [f"{100 * sum(listRan) / max(1, len(listRan)):.1f} % of {Number(len(listRan))} {strWhat}" for listRan, strWhat in ((listLines, "lines"), (listBranches, "branches"))]
    return f"{strRoom}/ " + ", ".join(asParts)


def Measure(stSession, bEndToEnd):
    """name -> File after all tests."""
    pathBuild = stSession.Build("coverage", "help")
    asPrograms = [*UnitTests(pathBuild), *CONTRACTS]
    asLibraries = ["libbmcfru.so", "libbmcfruhost.so", *(["fructl"] if bEndToEnd else [])]
    stSession.Must(["cmake", "--build", pathBuild, "--parallel", JOBS, "--target", *asPrograms, *(["fructl"] if bEndToEnd else [])])
    pathProfiles = OUT / "profiles"
    shutil.rmtree(pathProfiles, ignore_errors=True)
    pathProfiles.mkdir(parents=True)
    dictMore = {"LLVM_PROFILE_FILE": str(pathProfiles / "%4m.profraw")}

    def One(strProgram):
        stSession.Must([pathBuild / strProgram, "--gtest_brief=1"], dictMore, pathCwd=pathBuild)

    stSession.Each(One, asPrograms)
    if bEndToEnd:
        stSession.Run(["ctest", "--test-dir", pathBuild, "-R", "^e2e\\.", "--parallel", JOBS], dictMore)
    pathMerged = pathProfiles / "all.profdata"
    stSession.Must(["llvm-profdata-14", "merge", "-sparse", *sorted(pathProfiles.glob("*.profraw")), "-o", pathMerged])
    asObjects = [strWord for strProgram in (*asPrograms, *asLibraries) for strWord in ("-object", str(pathBuild / strProgram))]
    stDone = subprocess.run(["llvm-cov-14", "export", "-format=lcov", "-instr-profile", str(pathMerged), *asObjects[1:]], capture_output=True, text=True, check=False)
    if stDone.returncode != 0:
        raise Failed(f"llvm-cov-14: {stDone.stderr[-500:]}")
    (OUT / "coverage.info").write_text(stDone.stdout)
    return ReadTracefile(stDone.stdout)


def Step(stSession, stResult):
    dictFiles = Measure(stSession, stSession.fSeconds >= 4 * 3600)
    dictReasons = ReadReasons(REASONS, 3)
    for strWrong in Compare(dictFiles, dictReasons):
        stResult.Problem(strWrong)
    stResult.listFigures += [Counted(dictFiles, strRoom) for strRoom in ROOMS]
    listLines = [strText for strName, stFile in dictFiles.items() if strName.startswith("src/") for _, strText, _ in stFile.Uncovered()]
    iWhole = listLines.count(WHOLE)
    stResult.listFigures.append(f"of src/ {iWhole} lines in functions that only the compiler evaluates and {len(listLines) - iWhole} others are not run; "
                                f"{REASONS.relative_to(ROOT)} says why")
