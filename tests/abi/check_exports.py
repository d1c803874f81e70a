#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compare what libbmcfru exports and needs with what it promises.

usage: check_exports.py NM READELF LIBRARY VERSION_SCRIPT INCLUDE_DIR [--sanitized]

The names of the version script, those that the built library exports and those that the public headers declare
are the same set; the label tables lie where other processes expect them; and the library needs the C library
and its platform, nothing of the C++ runtime and no file call with 32-bit sizes. A sanitized build needs more, and
only its exports are compared.
"""
import pathlib
import re
import subprocess
import sys

# Writable and read-only data, by nm's letters; everything else is code.
TABLES = {
    "g_astDIAG_FruLabel": "D",
    "g_uiDIAG_FruLabelMaxNum": "D",
    "g_astDIAG_ElectronicField": "R",
    "g_uiDIAG_ElectronicFieldMaxNum": "R",
}
NEEDED = re.compile(r"^(libc\.so\.\d+|libbmcfruhost\.so(\.\d+)*|ld-linux[\w.-]*\.so\.\d+)$")
# Calls that fail on 32 bits for a file beyond 2 GiB or an inode number beyond 32 bits; their namesakes end in 64.
NARROW = {"fopen", "freopen", "open", "openat", "fstat", "stat", "lstat", "fstatat", "lseek", "fseeko", "ftello"}
CXX_RUNTIME = re.compile(r"^(_Z|__cxa_(?!finalize)|__gxx_|_Unwind_)")


def run(*asCommand):
    return subprocess.run(asCommand, check=True, capture_output=True, text=True).stdout


def script_names(pathScript):
    strGlobal = re.search(r"global:(.*?)local:", pathScript.read_text(), re.S).group(1)
    return {strName for strName in re.findall(r"^\s*(\w+);", strGlobal, re.M)}


def header_names(pathInclude):
    setNames = set()
    for pathHeader in pathInclude.glob("lib_fru*.h"):
        strText = re.sub(r"/\*.*?\*/", "", pathHeader.read_text(), flags=re.S)
        setNames |= set(re.findall(r"^[a-z][\w ]*[ *](\w+)\([^;]*\)\s*;", strText, re.M))
        setNames |= set(re.findall(r"^extern [\w ]+ (g_\w+)(?:\[\])?;", strText, re.M))
    return setNames


def symbols(strNm, strLibrary, strWhich):
    dSymbols = {}
    for strLine in run(strNm, "-D", strWhich, strLibrary).splitlines():
        asParts = strLine.split()
        strName = asParts[-1].split("@")[0]
        if asParts[-2] != "A":  # the version's own name
            dSymbols[strName] = asParts[-2]
    return dSymbols


def compare(strLeft, setLeft, strRight, setRight):
    asProblems = [f"{strName}: in {strLeft}, not in {strRight}" for strName in sorted(setLeft - setRight)]
    return asProblems + [f"{strName}: in {strRight}, not in {strLeft}" for strName in sorted(setRight - setLeft)]


def main():
    bSanitized = sys.argv[-1] == "--sanitized"
    strNm, strReadelf, strLibrary, strScript, strInclude = sys.argv[1:6]
    setScript = script_names(pathlib.Path(strScript))
    dExported = symbols(strNm, strLibrary, "--defined-only")
    asProblems = compare("the version script", setScript, "the library", set(dExported))
    asProblems += compare("the version script", setScript, "the headers", header_names(pathlib.Path(strInclude)))
    for strName, strKind in dExported.items():
        strWanted = TABLES.get(strName, "T")
        if strKind != strWanted:
            asProblems.append(f"{strName}: lies in {strKind}, not in {strWanted}")
    asNeeded = re.findall(r"\(NEEDED\).*\[(.*)\]", run(strReadelf, "-d", strLibrary))
    if not bSanitized:
        asProblems += [f"{strName}: needed at run time" for strName in asNeeded if not NEEDED.match(strName)]
        for strName in symbols(strNm, strLibrary, "--undefined-only"):
            if CXX_RUNTIME.match(strName):
                asProblems.append(f"{strName}: of the C++ runtime")
            if strName in NARROW:
                asProblems.append(f"{strName}: knows only 32-bit file sizes on 32 bits")
    print("\n".join(asProblems))
    print(f"{len(dExported)} exported, {len(setScript)} promised, needs {' '.join(asNeeded)}")
    sys.exit(1 if asProblems else 0)


main()
