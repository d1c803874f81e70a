# SPDX-License-Identifier: Apache-2.0
"""GCC's analyzer and cppcheck: what they find is nothing, or named with the reason."""
import json
import os
import re
import shlex

from session import JOBS, ROOT, Failed, ReadReasons

REASONS = ROOT / "tests/proof/findings.txt"
# GCC 12's analyzer knows C. Where nothing throws and no containers are, it makes sense of C++ too; of the rest of host/ it
# says two hundred times that what a function returns was never written.
ANALYZED = ("src/", "host/plain/")
DEEPLY = ("toolkit/", "tools/")
CHECKED = ("src", "host", "toolkit", "tools")
INCLUDED = ("include", "platform", "src", "host", "host/include", ".")
GCC_FOUND = re.compile(r"^(\S+?):(\d+):\d+: (?:warning|error): .*\[-W(analyzer-[\w-]+)\]$", re.MULTILINE)
TIDY_FOUND = re.compile(r"^(\S+?):\d+:\d+: (?:warning|error): .*$", re.MULTILINE)
CPPCHECK_FOUND = re.compile(r"^(\S+?)@(\d+)@([\w-]+)@(.*)$", re.MULTILINE)
NO_FINDING = {"missingInclude", "missingIncludeSystem", "toomanyconfigs", "unmatchedSuppression", "checkersReport"}


def TextOf(strFile, iLine):
    asLines = (ROOT / strFile).read_text().splitlines()
    return asLines[iLine - 1].strip() if 0 < iLine <= len(asLines) else ""


def Keys(strTool, strOut, reFound):
    """(tool, file, rule, text of the line) of every finding, once."""
    setKeys = set()
    for stMatch in reFound.finditer(strOut):
        strFile, strLine, strRule = stMatch.groups()[:3]
        strFile = os.path.relpath(os.path.join(ROOT, strFile), ROOT)
        if not strFile.startswith("..") and strRule not in NO_FINDING:
            setKeys.add((strTool, strFile, strRule, TextOf(strFile, int(strLine))))
    return setKeys


def Judge(stResult, strTool, setFound):
    """The findings without a reason, and the reasons without a finding."""
    dictReasons = {tupKey: strReason for tupKey, strReason in ReadReasons(REASONS, 4).items() if tupKey[0] == strTool}
    for tupKey in sorted(setFound - set(dictReasons)):
        stResult.Problem("finds: " + " | ".join(tupKey))
    for tupKey in sorted(set(dictReasons) - setFound):
        stResult.Problem("named, but not found: " + " | ".join(tupKey))
    return len(setFound & set(dictReasons))


def Analyzer(stSession, stResult):
    pathBuild = stSession.Build("native", "help")
    listEntries = {}
    for dictEntry in json.loads((pathBuild / "compile_commands.json").read_text()):
        strFile = os.path.relpath(os.path.join(dictEntry["directory"], dictEntry["file"]), ROOT)
        if strFile.startswith(ANALYZED):
            listEntries[strFile] = dictEntry

    def One(tupEntry):
        strFile, dictEntry = tupEntry
        asWords = [strWord for strWord in shlex.split(dictEntry["command"]) if strWord not in ("-Werror", "-g") and not strWord.endswith("ccache")]
        iOutput = asWords.index("-o")
        asWords[iOutput + 1] = "/dev/null"
        iCode, strOut = stSession.Run([*asWords, "-O1", "-fanalyzer", "-fdiagnostics-plain-output"], pathCwd=dictEntry["directory"])
        if iCode != 0:
            raise Failed(f"{strFile} cannot be compiled for the analyzer: {strOut[-300:]}")
        return Keys("gcc", re.sub(r"^(?=\S+:\d+:\d+: )(?!/)", dictEntry["directory"] + "/", strOut, flags=re.MULTILINE), GCC_FOUND)

    listFound = stSession.Each(One, sorted(listEntries.items()))
    iNamed = Judge(stResult, "gcc", set().union(*listFound))
    stResult.listFigures.append(f"{len(listEntries)} files of {' and '.join(ANALYZED)}, {iNamed} findings named with the reason, no other" if stResult.bPassed
                                else f"{len(listEntries)} files, {len(stResult.listProblems)} findings without a reason or the other way round")


def Tidy(stSession, stResult):
    """What scripts/test has no time for: there these files get the analyzer's shallow mode."""
    pathBuild = stSession.Build("asan", "all")  # clang-tidy reads the precompiled headers
    listFiles = sorted({os.path.relpath(os.path.join(dictEntry["directory"], dictEntry["file"]), ROOT) for dictEntry in json.loads((pathBuild / "compile_commands.json").read_text())})
    listFiles = [strFile for strFile in listFiles if strFile.startswith(DEEPLY)]

    def One(strFile):
        iCode, strOut = stSession.Run(["clang-tidy", "-p", pathBuild, "--quiet", strFile])
        return [stMatch.group(0) for stMatch in TIDY_FOUND.finditer(strOut)] or ([f"{strFile}: clang-tidy ends with exit code {iCode}"] if iCode != 0 else [])

    for listFound in stSession.Each(One, listFiles):
        for strFound in listFound:
            stResult.Problem(f"finds: {strFound}")
    if not listFiles:
        raise Failed("there is nothing to analyse")
    stResult.listFigures.append(f"{len(listFiles)} files of {' and '.join(DEEPLY)}, {len(stResult.listProblems)} findings")


def Cppcheck(stSession, stResult):
    strOut = stSession.Must(["cppcheck", "--quiet", f"-j{JOBS}", "--enable=warning,performance,portability", "--std=c++17", "--language=c++", "--inline-suppr",
                             "--template={file}@{line}@{id}@{message}", *[f"-I{strFolder}" for strFolder in INCLUDED], *CHECKED])
    iNamed = Judge(stResult, "cppcheck", Keys("cppcheck", strOut, CPPCHECK_FOUND))
    iFiles = sum(1 for strRoom in CHECKED for _ in (ROOT / strRoom).rglob("*.cpp"))
    stResult.listFigures.append(f"{iFiles} files of {', '.join(strRoom + '/' for strRoom in CHECKED)}: {iNamed} findings named with the reason, "
                                + ("no other" if stResult.bPassed else f"{len(stResult.listProblems)} others"))
