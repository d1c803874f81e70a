# SPDX-License-Identifier: Apache-2.0
"""Runs the unit tests that reach a mutant, those that will probably notice it first: each program is started once, and a copy of
it runs one mutant."""
import collections
import os
import pathlib
import resource
import subprocess
import threading

GROUPS = (2, 10)  # as many tests first, then as many, then the others
MEMORY = 8 << 30  # one test has a length that 32 bits cannot hold
FILE_SIZE = 1 << 28
CPU_LEAST = 200_000  # microseconds
CPU_FACTOR = 10
ENVIRONMENT = {**os.environ, "MALLOC_PERTURB_": "165"}  # nobody lives on bytes that were never written


class Server:
    """One program, started; Ask() runs one mutant in a copy of it."""

    def __init__(self, strProgram, iNice, bBounded):
        def Limit():
            os.nice(max(0, iNice - os.nice(0)))
            if bBounded:
                resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
        self.stProcess = subprocess.Popen([strProgram], env={**ENVIRONMENT, "MUTANT_SERVE": "1"}, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                          text=True, preexec_fn=Limit)

    def Ask(self, iMutant, iMicroseconds, listGroups):
        """The test that failed, or None."""
        self.stProcess.stdin.write(" ".join([str(iMutant), str(iMicroseconds), *(":".join(listGroup) for listGroup in listGroups)]) + "\n")
        self.stProcess.stdin.flush()
        strAnswer = self.stProcess.stdout.readline().strip()
        if not strAnswer:
            raise RuntimeError(f"{self.stProcess.args[0]} ended")
        return None if strAnswer == "-" else strAnswer

    def Close(self):
        self.stProcess.stdin.close()
        self.stProcess.wait()


class Reach:
    """Which tests reach which mutant, and what they cost."""

    def __init__(self):
        self.dictReached = collections.defaultdict(list)  # mutant -> [(program, test)]
        self.dictCost = {}
        self.dictBreadth = {}
        self.dictFile = {}

    def Read(self, strProgram, strMap):
        for strLine in pathlib.Path(strMap).read_text().splitlines():
            strTest, strCost, strFile, *listNumbers = strLine.split()
            tTest = (strProgram, strTest)
            self.dictFile[tTest] = "tests/" + strFile.partition("/tests/")[2]
            self.dictCost[tTest] = int(strCost)
            self.dictBreadth[tTest] = len(listNumbers)
            for strNumber in listNumbers:
                self.dictReached[int(strNumber)].append(tTest)

    def Files(self, iMutant):
        """Where the tests are that reach it."""
        return sorted({self.dictFile[tTest] for tTest in self.dictReached[iMutant]})


class Runner:
    """All programs, once for each thread."""

    def __init__(self, stReach, iNice, bBounded):
        self.stReach = stReach
        self.iNice = iNice
        self.bBounded = bBounded  # the address sanitizer asks for room without end
        self.stLocal = threading.local()
        self.listServers = []
        self.stLock = threading.Lock()
        self.dictKills = collections.Counter()  # (place, test) -> how often it noticed a change there

    def _Server(self, strProgram):
        dictServers = self.stLocal.__dict__.setdefault("dictServers", {})
        if strProgram not in dictServers:
            dictServers[strProgram] = Server(strProgram, self.iNice, self.bBounded)
            with self.stLock:
                self.listServers.append(dictServers[strProgram])
        return dictServers[strProgram]

    def Order(self, iMutant, strPlace):
        """What noticed changes of the same function first, then what is cheap and reaches little beside it."""
        return sorted(self.stReach.dictReached[iMutant], key=lambda tTest: (
            -self.dictKills[strPlace, tTest], self.stReach.dictCost[tTest] // 20_000, self.stReach.dictBreadth[tTest]))

    def Killer(self, iMutant, strPlace, setFiles=frozenset()):
        """The test that notices the mutant, as (program, test), or None; those in setFiles are known not to."""
        listTests = [tTest for tTest in self.Order(iMutant, strPlace) if self.stReach.dictFile[tTest] not in setFiles]
        iFirst = 0
        for iSize in (*GROUPS, len(listTests)):
            dictPrograms = collections.defaultdict(list)
            for strProgram, strTest in listTests[iFirst:iFirst + iSize]:
                dictPrograms[strProgram].append(strTest)
            iFirst += iSize
            for strProgram, listNames in dictPrograms.items():
                iCost = sum(self.stReach.dictCost[strProgram, strTest] for strTest in listNames)
                strTest = self._Server(strProgram).Ask(iMutant, CPU_LEAST + CPU_FACTOR * iCost, [listNames])
                if strTest is not None:
                    self.dictKills[strPlace, (strProgram, strTest)] += 1
                    return strProgram, strTest
        return None

    def Close(self):
        for stServer in self.listServers:
            stServer.Close()
