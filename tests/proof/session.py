# SPDX-License-Identifier: Apache-2.0
"""What the steps of scripts/prove share: one run with its logs, its processes and its time."""
import concurrent.futures
import dataclasses
import os
import pathlib
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
OUT = pathlib.Path(os.environ.get("PROVE_OUT", ROOT / "build/prove"))
CORPUS = ROOT.parent / "shared/corpus"
JOBS = os.cpu_count() or 1
HANG_SECONDS = 6 * 3600
PROBLEMS_SHOWN = 40


class Failed(Exception):
    """A step cannot go on; the text says why."""


@dataclasses.dataclass
class Result:
    """What became of one step."""

    strName: str
    strTitle: str
    bPassed: bool = True
    listFigures: list = dataclasses.field(default_factory=list)
    listProblems: list = dataclasses.field(default_factory=list)
    listRules: list = dataclasses.field(default_factory=list)  # what success may leave undone, for the page
    fSeconds: float = 0.0

    def Problem(self, strText):
        self.bPassed = False
        self.listProblems.append(strText)


class Session:
    """One run. Steps whose time is free share what the others leave of it."""

    def __init__(self, fMinutes, setFree, dictShares):
        self.fSeconds = fMinutes * 60
        self.fBegin = time.monotonic()
        self.dictShares = {strName: fShare for strName, fShare in dictShares.items() if strName in setFree}
        self.fPool = None
        self.pathLog = OUT / "prove.log"

    def Budget(self, strName):
        """So many seconds may a step of free length take."""
        if self.fPool is None:
            self.fPool = max(self.fSeconds - (time.monotonic() - self.fBegin), self.fSeconds * 0.3)
        return self.fPool * self.dictShares[strName] / sum(self.dictShares.values())

    def Run(self, listCommand, dictMore=None, pathCwd=ROOT, strInput=None):
        """Exit code and what was printed, which goes into the step's log too."""
        listCommand = [str(strWord) for strWord in listCommand]
        stDone = subprocess.run(listCommand, cwd=pathCwd, env={**os.environ, **(dictMore or {})}, input=strInput, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                text=True, errors="replace", check=False, timeout=HANG_SECONDS)
        with self.pathLog.open("a") as stLog:
            stLog.write(f"$ {' '.join(listCommand)}\n{stDone.stdout}\n[exit code {stDone.returncode}]\n")
        return stDone.returncode, stDone.stdout

    def Must(self, listCommand, dictMore=None, pathCwd=ROOT, strInput=None):
        """The same for what has to work."""
        iCode, strOut = self.Run(listCommand, dictMore, pathCwd, strInput)
        if iCode != 0:
            raise Failed(f"{' '.join(str(strWord) for strWord in listCommand)[:200]} ends with exit code {iCode}: {strOut[-600:].strip()}")
        return strOut

    def Each(self, fnOne, listItems):
        """fnOne of all items, as many at a time as there are cores; in the items' order."""
        with concurrent.futures.ThreadPoolExecutor(JOBS) as stPool:
            return list(stPool.map(fnOne, listItems))

    def Build(self, strPreset, *asTargets, asOptions=(), strFolder=None):
        """The folder of a build that is up to date."""
        pathBuild = ROOT / "build" / (strFolder or strPreset)
        self.Must(["cmake", "--preset", strPreset, "-B", pathBuild, f"-DBMCFRU_CORPUS_DIR={CORPUS if CORPUS.is_dir() else ''}", *asOptions])
        self.Must(["cmake", "--build", pathBuild, "--parallel", JOBS, *(["--target", *asTargets] if asTargets else [])])
        return pathBuild


def UnitTests(pathBuild):
    """The programs of unit tests, as CMake's files name them."""
    strTargets = subprocess.run(["ninja", "-C", str(pathBuild), "-t", "targets", "all"], capture_output=True, text=True, check=True).stdout
    return sorted({strLine.split(":")[0] for strLine in strTargets.splitlines() if strLine.startswith("unit_") and "EXECUTABLE_LINKER" in strLine})


def Number(iValue):
    """12,345,678"""
    return f"{iValue:,}"


def ReadReasons(pathFile, iWords):
    """(words before the reason) -> reason, of the lines that are no comment."""
    dictReasons = {}
    for strLine in pathFile.read_text().splitlines():
        if not strLine.strip() or strLine.startswith("#"):
            continue
        asParts = [strPart.strip() for strPart in strLine.split(" | ")]
        if len(asParts) < iWords + 1:
            raise Failed(f"{pathFile.name}: {strLine!r} has not {iWords} words and a reason, with ' | ' between")
        # A line of code may hold the separator itself.
        tupKey = (*asParts[:iWords - 1], " | ".join(asParts[iWords - 1:-1]))
        dictReasons[tupKey] = asParts[-1]
    return dictReasons
