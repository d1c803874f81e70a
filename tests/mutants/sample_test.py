#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""What scripts/mutate does, done to sample/sample.cpp: which changes its tests notice, and what of a run is kept for the next.

usage: sample_test.py COMPILER OBJECT...
"""
import importlib.machinery
import importlib.util
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
from rewriter import Rewriter  # noqa: E402
from runner import ENVIRONMENT, Reach, Runner  # noqa: E402

SAMPLE = HERE / "sample/sample.cpp"
TESTS = "tests/mutants/sample/sample_test.cpp"
FIRST = 101
NICE = 0
COMPILER, *OBJECTS = sys.argv[1:]
# What sample_test.cpp cannot notice: 10 is 10 on either way, and one function has no test.
SURVIVORS = {"iValue > 10 with >=", "without *piValue = 7", "7 + 1"}


def LoadScript():
    stLoader = importlib.machinery.SourceFileLoader("mutate", str(HERE.parents[1] / "scripts/mutate"))
    stModule = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", stLoader))
    stLoader.exec_module(stModule)
    return stModule


class Sample(unittest.TestCase):
    """One program with all changes of the sample in it."""

    @classmethod
    def setUpClass(cls):
        cls.stFolder = tempfile.TemporaryDirectory()
        cls.pathFolder = pathlib.Path(cls.stFolder.name)
        cls.stRewriter = Rewriter(str(SAMPLE), "sample/sample.cpp", ["-std=c++17"], FIRST, set())
        (cls.pathFolder / "sample.cpp").write_text(cls.stRewriter.Text())
        cls.strProgram = str(cls.pathFolder / "program")
        subprocess.run([COMPILER, "-std=c++17", "-w", "-include", str(HERE / "mutant.h"), "-iquote", str(SAMPLE.parent), str(cls.pathFolder / "sample.cpp"), *OBJECTS,
                        "-lgtest", "-lpthread", "-o", cls.strProgram], check=True)
        strMap = cls.strProgram + ".map"
        subprocess.run([cls.strProgram, "--gtest_brief=1"], env={**ENVIRONMENT, "MUTANT_MAP": strMap}, stdout=subprocess.DEVNULL, check=True)
        cls.stReach = Reach()
        cls.stReach.Read(cls.strProgram, strMap)

    @classmethod
    def tearDownClass(cls):
        cls.stFolder.cleanup()

    def Killers(self):
        stRunner = Runner(self.stReach, NICE, True)
        dictKillers = {stMutant.strChange: stRunner.Killer(stMutant.iNumber, stMutant.strFunction) for stMutant in self.stRewriter.listMutants}
        stRunner.Close()
        return dictKillers

    def test_OperatorsConstantsConditionsAndStatementsAreChanged(self):
        setChanges = {stMutant.strChange for stMutant in self.stRewriter.listMutants if stMutant.strFunction == "SAMPLE_AtMostTen"}
        self.assertEqual(setChanges, {"condition iValue > 10 never", "condition iValue > 10 always", "iValue > 10 with >=", "iValue > 10 with <=", "10 + 1"})
        self.assertIn("SAMPLE_AtMostTen | 10 + 1 #2", "\n".join(stMutant.strKey for stMutant in self.stRewriter.listMutants))
        self.assertEqual(len(self.stRewriter.Text().splitlines()), len(SAMPLE.read_text().splitlines()))

    def test_EveryChangeButTheHarmlessAndTheUntestedIsNoticed(self):
        dictKillers = self.Killers()
        self.assertEqual({strChange for strChange, tKiller in dictKillers.items() if tKiller is None}, SURVIVORS)
        self.assertEqual(dictKillers["condition iValue > 10 never"], (self.strProgram, "AtMostTen.CutsWhatIsLarger"))
        self.assertEqual(dictKillers["condition iValue > 10 always"], (self.strProgram, "AtMostTen.KeepsWhatIsNot"))

    def test_AChangeThatNeverEndsIsCutOff(self):
        self.assertEqual(self.Killers()["without uiLeft -= 1U"], (self.strProgram, "CountDown.EndsAtZero"))

    def test_WithoutAChangeNothingIsNoticed(self):
        stRunner = Runner(self.stReach, NICE, True)
        self.stReach.dictReached[FIRST - 1] = sorted(self.stReach.dictCost)
        self.assertIsNone(stRunner.Killer(FIRST - 1, ""))
        stRunner.Close()

    def test_AKillIsKeptWhileItsTestIsThereAndASurvivorWhileItsTestsAreTheSame(self):
        stScript = LoadScript()
        stScript.OUT, stScript.RESULTS = self.pathFolder, self.pathFolder / "results.jsonl"
        stKilled, stSurvivor = self.stRewriter.listMutants[:2]
        stResults = stScript.Results(False)
        stResults.Add(stKilled, self.stReach, "AtMostTen.CutsWhatIsLarger", "native")
        stResults.Add(stSurvivor, self.stReach, None, "native")
        stResults = stScript.Results(False)
        self.assertEqual(stResults.Find(stKilled, self.stReach, "native")["by"], "AtMostTen.CutsWhatIsLarger")
        self.assertIsNone(stResults.Find(stSurvivor, self.stReach, "native")["by"])
        self.assertEqual(stResults.SurvivedIn(stSurvivor, "native"), {TESTS})
        self.assertIsNone(stResults.Find(stSurvivor, self.stReach, "asan"))
        self.assertIsNone(stResults.Find(stKilled, Reach(), "native"))
        stResults.dictFiles[TESTS] = "another"
        self.assertIsNone(stResults.Find(stSurvivor, self.stReach, "native"))
        self.assertEqual(stResults.SurvivedIn(stSurvivor, "native"), set())
        stKilled.strDigest, strDigest = "another", stKilled.strDigest
        self.assertIsNone(stResults.Find(stKilled, self.stReach, "native"))
        stKilled.strDigest = strDigest


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
