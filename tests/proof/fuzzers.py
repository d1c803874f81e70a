# SPDX-License-Identifier: Apache-2.0
"""Every fuzzer under the address and undefined-behaviour sanitizers, then under the memory sanitizer."""
import re

from session import JOBS, ROOT, Number

LEAST_SECONDS = 5
LONGEST_INPUT = 1024
STATISTIC = re.compile(r"stat::number_of_executed_units:\s+(\d+)")


def RunOne(stSession, pathFuzzer, iSeconds):
    """Exit code, executions, and inputs that were new."""
    strName = pathFuzzer.name.removesuffix("_fuzz")
    pathCorpus = ROOT / "build/fuzz/corpus" / strName
    pathCorpus.mkdir(parents=True, exist_ok=True)
    iBefore = len(list(pathCorpus.iterdir()))
    iCode, strOut = stSession.Run([pathFuzzer, "-close_fd_mask=1", f"-max_len={LONGEST_INPUT}", f"-max_total_time={iSeconds}", "-print_final_stats=1",
                                   f"-dict={ROOT}/fuzz/fru.dict", f"-artifact_prefix={pathFuzzer.parent}/{strName}-", pathCorpus, pathFuzzer.parent / "seeds" / strName])
    listCounts = STATISTIC.findall(strOut)
    return iCode, int(listCounts[-1]) if listCounts else 0, len(list(pathCorpus.iterdir())) - iBefore


def RunAll(stSession, stResult, strPreset, strLabel, fSeconds):
    pathBuild = stSession.Build(strPreset, "fuzzers")
    listFuzzers = sorted(pathBuild.glob("*_fuzz"))
    iSeconds = max(LEAST_SECONDS, int(fSeconds * JOBS / len(listFuzzers)))
    iExecutions = iNew = iFailed = 0
    for pathFuzzer, (iCode, iRuns, iFound) in zip(listFuzzers, stSession.Each(lambda pathOne: RunOne(stSession, pathOne, iSeconds), listFuzzers)):
        iExecutions += iRuns
        iNew += iFound
        if iCode != 0:
            iFailed += 1
            stResult.Problem(f"{pathFuzzer.name} under {strLabel} ends with exit code {iCode}; the input lies in {pathBuild}")
        elif iRuns == 0:
            stResult.Problem(f"{pathFuzzer.name} under {strLabel} ran nothing")
    stResult.listFigures.append(f"{strLabel}: {len(listFuzzers)} fuzzers, {iSeconds} s each, {Number(iExecutions)} executions, {iFailed} crashes, {Number(iNew)} inputs new")


def Step(stSession, stResult):
    fBudget = stSession.Budget("fuzz")
    RunAll(stSession, stResult, "fuzz", "ASan and UBSan", fBudget / 2)
    RunAll(stSession, stResult, "fuzz-memory", "MSan", fBudget / 2)
