# SPDX-License-Identifier: Apache-2.0
"""The table of a run, on the terminal and in docs/proof.md between its marks."""
import datetime
import subprocess

from session import JOBS, PROBLEMS_SHOWN, ROOT

PAGE = ROOT / "docs/proof.md"
BEGIN, END = "<!-- scripts/prove writes from here -->", "<!-- to here -->"


def Git(*asArguments):
    return subprocess.run(["git", "-C", str(ROOT), *asArguments], capture_output=True, text=True, check=False).stdout.strip()


def Commit():
    """The commit, and whether what was run differs from it; the page itself does not count."""
    strChanged = Git("status", "--porcelain", "--untracked-files=no", "--", ".", ":!docs/proof.md")
    return (Git("rev-parse", "--short=12", "HEAD") or "no commit") + (" with changes" if strChanged else "")


def Duration(fSeconds):
    iSeconds = round(fSeconds)
    return f"{iSeconds} s" if iSeconds < 100 else f"{iSeconds // 60} min {iSeconds % 60} s"


def Heading(dictRun):
    return (f"Run on {dictRun['when']}, commit {dictRun['commit']}, {dictRun['cores']} cores, asked for {dictRun['minutes']:g} minutes, "
            f"took {Duration(dictRun['seconds'])}.")


def NewRun(fMinutes):
    return {"when": datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"), "commit": Commit(), "cores": JOBS, "minutes": fMinutes,
            "seconds": 0.0, "steps": []}


def Elsewhere(dictRun, dictStep):
    """The commit of a step that ran on another one."""
    strCommit = dictStep.get("commit", dictRun["commit"])
    return "" if strCommit == dictRun["commit"] else f", on {strCommit}"


def Table(dictRun, asAll):
    """Markdown, a row each step; those that did not run say so."""
    dictSteps = {dictStep["name"]: dictStep for dictStep in dictRun["steps"]}
    asRows = ["| Step | What it shows | Figures | Result | Time |", "|---|---|---|---|---|"]
    for strName, strTitle in asAll:
        dictStep = dictSteps.get(strName)
        if dictStep is None:
            asRows.append(f"| {strName} | {strTitle} | | not run | |")
        else:
            strFigures = "<br>".join(dictStep["figures"])
            strResult = "passed" if dictStep["passed"] else "**failed**"
            asRows.append(f"| {strName} | {strTitle} | {strFigures} | {strResult}{Elsewhere(dictRun, dictStep)} | {Duration(dictStep['seconds'])} |")
    return "\n".join(asRows)


def Rules(dictRun):
    """What success may leave undone, as the faults met it."""
    listRules = [dictRule for dictStep in dictRun["steps"] for dictRule in dictStep.get("rules", [])]
    if not listRules:
        return ""
    asRows = [f"| {dictRule['rule']} | {dictRule['met']:,} | {dictRule['reason']} |" for dictRule in listRules]
    return "\n".join(["\nWhat a call may report as success though something below it failed, and how often the faults met it:\n",
                      "| Rule | Met | Why |", "|---|---|---|", *asRows]) + "\n"


def Text(dictRun, asAll):
    """The same for a terminal, with what failed."""
    dictSteps = {dictStep["name"]: dictStep for dictStep in dictRun["steps"]}
    asLines = [Heading(dictRun), ""]
    for strName, _ in asAll:
        dictStep = dictSteps.get(strName)
        strResult = "not run" if dictStep is None else ("passed" if dictStep["passed"] else "FAILED") + Elsewhere(dictRun, dictStep)
        asFigures = [] if dictStep is None else dictStep["figures"] or [""]
        strTime = "" if dictStep is None else Duration(dictStep["seconds"])
        asLines.append(f"{strName:10} {strResult:8} {strTime:>12}  {asFigures[0] if asFigures else ''}")
        asLines += [" " * 34 + strFigure for strFigure in asFigures[1:]]
    for dictStep in dictRun["steps"]:
        listProblems = dictStep["problems"]
        asLines += [f"{dictStep['name']}: {strProblem}" for strProblem in listProblems[:PROBLEMS_SHOWN]]
        if len(listProblems) > PROBLEMS_SHOWN:
            asLines.append(f"{dictStep['name']}: and {len(listProblems) - PROBLEMS_SHOWN} more, in its log")
    return "\n".join(asLines)


def Written(strPage, dictRun, asAll):
    """The page with this run's table in place of the last one's."""
    iBegin, iEnd = strPage.index(BEGIN) + len(BEGIN), strPage.index(END)
    return f"{strPage[:iBegin]}\n{Heading(dictRun)}\n\n{Table(dictRun, asAll)}\n{Rules(dictRun)}{strPage[iEnd:]}"


def Record(dictRun, asAll, pathPage=PAGE):
    pathPage.write_text(Written(pathPage.read_text(), dictRun, asAll))
