# SPDX-License-Identifier: Apache-2.0
"""scripts/prove itself: its steps, its table, its lists of reasons, and a step that takes a second."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(pathlib.Path(__file__).parent))
import analysis  # noqa: E402
import coverage  # noqa: E402
import kills  # noqa: E402
import page  # noqa: E402
from session import Failed, ReadReasons, Result, Session  # noqa: E402

STEPS = ["chars", "cppcheck", "analyzer", "tidy", "coverage", "valgrind", "faults", "images", "kills", "fuzz"]
RUN = {"when": "2026-11-22 06:00 UTC", "commit": "0123456789ab", "cores": 2, "minutes": 30, "seconds": 1801,
       "steps": [{"name": "one", "title": "shows one", "passed": True, "figures": ["1,000 tests", "none skipped"], "problems": [], "rules": [], "seconds": 61.2},
                 {"name": "two", "title": "shows two", "passed": False, "figures": [], "problems": ["it broke"], "seconds": 119.6,
                  "rules": [{"rule": "best-effort", "met": 12, "reason": "Nobody waits for it."}]}]}
ALL = [("one", "shows one"), ("two", "shows two"), ("three", "shows three")]
TRACE = """SF:{root}/src/common/diag.cpp
FN:2,_Z5FirstPKc
FN:6,_ZN12_GLOBAL__N_16SecondEv
FNDA:1,_Z5FirstPKc
DA:2,1
DA:3,0
DA:6,0
DA:7,0
BRDA:3,0,0,-
BRDA:3,0,1,4
end_of_record
SF:/usr/include/stdio.h
DA:1,0
end_of_record
"""


def Prove(*asArguments, strOut=None):
    return subprocess.run([ROOT / "scripts/prove", *asArguments], capture_output=True, text=True, check=False,
                          env={**os.environ, **({"PROVE_OUT": strOut} if strOut else {})})


class Command(unittest.TestCase):
    def test_the_list_names_every_step(self):
        stDone = Prove("--list")
        self.assertEqual(stDone.returncode, 0, stDone.stderr)
        self.assertEqual([strLine.split()[0] for strLine in stDone.stdout.splitlines()], STEPS)

    @unittest.skipUnless(shutil.which("cppcheck"), "there is no cppcheck; scripts/setup prove installs it")
    def test_a_run_of_one_step_ends_with_the_table_and_keeps_it(self):
        with tempfile.TemporaryDirectory() as strOut:
            pathlib.Path(strOut, "results.json").write_text(json.dumps({**RUN, "steps": [{**RUN["steps"][1], "name": "faults"}, {**RUN["steps"][0], "name": "cppcheck"}]}))
            stDone = Prove("--only", "cppcheck", "--minutes", "1", strOut=strOut)
            dictRun = json.loads(pathlib.Path(strOut, "results.json").read_text())
            strLog = pathlib.Path(strOut, "cppcheck.log").read_text()
        dictStep = dictRun["steps"][1]
        self.assertEqual([dictOne["name"] for dictOne in dictRun["steps"]], ["faults", "cppcheck"])
        self.assertRegex(stDone.stdout, r"(?m)^faults +FAILED, on 0123456789ab +2 min 0 s")
        # What it finds is the step's business, not this test's.
        self.assertEqual(stDone.returncode, 0 if dictStep["passed"] else 1, stDone.stderr)
        self.assertIn("$ cppcheck ", strLog)
        self.assertRegex(stDone.stdout, rf"cppcheck +{'passed' if dictStep['passed'] else 'FAILED'} ")
        self.assertIn(dictStep["figures"][0], stDone.stdout)
        for strStep in STEPS:
            self.assertRegex(stDone.stdout, rf"(?m)^{strStep} +{'not run' if strStep not in ('cppcheck', 'faults') else ''}")

    def test_what_is_no_step_is_refused(self):
        self.assertEqual(Prove("--only", "everything").returncode, 2)
        self.assertEqual(Prove("--night", "--minutes", "3").returncode, 2)


class Page(unittest.TestCase):
    def test_the_table_stands_between_the_marks_and_nowhere_else(self):
        dictOther = {**RUN["steps"][0], "name": "three", "title": "shows three", "commit": "ba9876543210"}
        self.assertIn("| passed, on ba9876543210 | 61 s |", page.Table({**RUN, "steps": [dictOther]}, ALL))
        strPage = f"before\n{page.BEGIN}\nthe last run\n{page.END}\n\n## Mutants\n\nafter\n"
        strWritten = page.Written(strPage, RUN, ALL)
        self.assertTrue(strWritten.startswith(f"before\n{page.BEGIN}\nRun on 2026-11-22 06:00 UTC, commit 0123456789ab, 2 cores, asked for 30 minutes, took 30 min 1 s.\n"))
        self.assertTrue(strWritten.endswith(f"{page.END}\n\n## Mutants\n\nafter\n"))
        self.assertNotIn("the last run", strWritten)
        self.assertIn("| one | shows one | 1,000 tests<br>none skipped | passed | 61 s |\n", strWritten)
        self.assertIn("| two | shows two |  | **failed** | 2 min 0 s |\n", strWritten)
        self.assertIn("| three | shows three | | not run | |\n", strWritten)
        self.assertIn("| best-effort | 12 | Nobody waits for it. |\n", strWritten)
        self.assertEqual(page.Written(strWritten, RUN, ALL), strWritten)

    def test_the_page_of_the_repository_has_the_marks(self):
        self.assertIn("| Step |", page.Written(page.PAGE.read_text(), RUN, ALL))

    def test_a_terminal_gets_the_problems_too(self):
        strText = page.Text(RUN, ALL)
        self.assertIn("two: it broke", strText)
        self.assertRegex(strText, r"two +FAILED +2 min 0 s")
        self.assertRegex(strText, r"three +not run")


class Reasons(unittest.TestCase):
    def Read(self, strText, iWords):
        with tempfile.TemporaryDirectory() as strFolder:
            pathFile = pathlib.Path(strFolder, "reasons.txt")
            pathFile.write_text(strText)
            return ReadReasons(pathFile, iWords)

    def test_a_line_of_code_may_hold_the_separator(self):
        self.assertEqual(self.Read("# why\n\nsrc/a.cpp | F | a | b; | it cannot\n", 3), {("src/a.cpp", "F", "a | b;"): "it cannot"})

    def test_a_line_without_a_reason_is_refused(self):
        with self.assertRaises(Failed):
            self.Read("src/a.cpp | F | return;\n", 3)

    def test_the_files_of_the_repository_can_be_read(self):
        self.assertTrue(all(ReadReasons(coverage.REASONS, 3).values()))
        self.assertTrue(all(ReadReasons(analysis.REASONS, 4).values()))
        for tupKey in [*ReadReasons(coverage.REASONS, 3), *(tupOne[1:] for tupOne in ReadReasons(analysis.REASONS, 4))]:
            strText = (ROOT / tupKey[0]).read_text()
            self.assertTrue(tupKey[2] == coverage.WHOLE or tupKey[2] in strText, tupKey)


class Coverage(unittest.TestCase):
    def setUp(self):
        self.dictFiles = coverage.ReadTracefile(TRACE.format(root=ROOT))

    def test_functions_are_named_and_a_whole_one_is_one_entry(self):
        strLine = (ROOT / "src/common/diag.cpp").read_text().splitlines()[2].strip()
        self.assertEqual([tupOne[:2] for tupOne in self.dictFiles["src/common/diag.cpp"].Uncovered()],
                         [("First", strLine), ("Second", coverage.WHOLE), ("Second", coverage.WHOLE)])
        self.assertEqual(coverage.Counted(self.dictFiles, "src"), "src/ 25.0 % of 4 lines, 50.0 % of 2 branches")

    def test_every_line_that_never_runs_is_named_and_no_other(self):
        dictReasons = {tupOne[:2]: "" for tupOne in self.dictFiles["src/common/diag.cpp"].Uncovered()}
        dictReasons = {("src/common/diag.cpp", *tupKey): "because" for tupKey in dictReasons}
        self.assertEqual(coverage.Compare(self.dictFiles, dictReasons), [])
        self.assertEqual(len(coverage.Compare(self.dictFiles, {})), 2)
        self.assertEqual(coverage.Compare(self.dictFiles, {**dictReasons, ("src/a.cpp", "F", "x;"): "because"}), ["named, but runs or is not there: src/a.cpp | F | x;"])


class Findings(unittest.TestCase):
    def test_a_finding_is_its_line_whatever_its_number(self):
        strLine = (ROOT / "src/common/diag.cpp").read_text().splitlines()[2].strip()
        strOut = f"{ROOT}/src/common/diag.cpp:3:9: warning: leak of 'x' [CWE-401] [-Wanalyzer-malloc-leak]\n/usr/include/x.h:3:9: warning: y [-Wanalyzer-z]\n"
        self.assertEqual(analysis.Keys("gcc", strOut, analysis.GCC_FOUND), {("gcc", "src/common/diag.cpp", "analyzer-malloc-leak", strLine)})
        self.assertEqual(analysis.Keys("cppcheck", "src/common/diag.cpp@3@uninitvar@x\n", analysis.CPPCHECK_FOUND),
                         {("cppcheck", "src/common/diag.cpp", "uninitvar", strLine)})

    def test_what_is_not_named_fails_the_step(self):
        stResult = Result("cppcheck", "")
        analysis.Judge(stResult, "nobody", {("nobody", "src/a.cpp", "rule", "x;")})
        self.assertFalse(stResult.bPassed)


class Time(unittest.TestCase):
    def test_what_is_left_is_shared(self):
        stSession = Session(10, {"fuzz", "kills"}, {"images": 0.2, "kills": 0.4, "fuzz": 0.4})
        self.assertAlmostEqual(stSession.Budget("fuzz"), 300, delta=5)
        self.assertAlmostEqual(stSession.Budget("kills"), 300, delta=5)

    def test_a_night_samples_nothing_and_a_minute_says_that_it_does(self):
        self.assertNotIn("sampled", kills.Plan(3 * 3600)[1])
        self.assertEqual(kills.Plan(60)[1].count("sampled"), 2)


if __name__ == "__main__":
    unittest.main()
