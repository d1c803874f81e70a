#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The names that libbmcfrutool exports, those of its version script and those that its header declares are the same.

usage: check_tool_exports.py NM LIBRARY VERSION_SCRIPT HEADER
"""
import pathlib
import re
import subprocess
import sys


def main():
    strNm, strLibrary, strScript, strHeader = sys.argv[1:]
    strSymbols = subprocess.run([strNm, "-D", "--defined-only", strLibrary], check=True, capture_output=True, text=True).stdout
    setExported = {strLine.split()[-1].split("@")[0] for strLine in strSymbols.splitlines()}
    strGlobal = re.search(r"global:(.*?)local:", pathlib.Path(strScript).read_text(), re.S).group(1)
    strDeclared = re.sub(r"/\*.*?\*/", "", pathlib.Path(strHeader).read_text(), flags=re.S)
    setDeclared = set(re.findall(r"^\w[\w ]*[ *](BMCFRU_TOOL_\w+)\(", strDeclared, re.M))
    setScript = set(re.findall(r"(\w+);", strGlobal))
    if not setExported or not setExported == setScript == setDeclared:
        sys.exit(f"exported {sorted(setExported)}\nscript {sorted(setScript)}\ndeclared {sorted(setDeclared)}")
    print(f"{len(setExported)} names")


main()
