#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compare a library's binary interface with the recorded description of its version 1.

usage: check_abi.py [--record] LIBRARY DESCRIPTION HEADER_DIR...

Names, types, sizes and layouts, as abigail's tools read them from the debug information: what programs that were linked
with version 1 rely on. New names are no change. --record writes the description anew.
"""
import pathlib
import subprocess
import sys


def record(strLibrary, strDescription, asFolders):
    asHeaders = [s for strFolder in asFolders for s in ("--headers-dir", strFolder)]
    done = subprocess.run(["abidw", "--no-corpus-path", "--no-comp-dir-path", "--no-show-locs", "--no-elf-needed",
                           "--exported-interfaces-only", "--drop-private-types", "--type-id-style", "hash", *asHeaders,
                           "--out-file", strDescription, strLibrary])
    return done.returncode


def compare(strLibrary, strDescription, _):
    # Without the headers' folders: the description names no files, and abidiff would take its types for private ones.
    if not pathlib.Path(strDescription).is_file():
        sys.exit(f"{strDescription} is missing")
    done = subprocess.run(["abidiff", "--no-show-locs", "--no-added-syms", "--exported-interfaces-only", strDescription,
                           strLibrary], capture_output=True, text=True)
    print(done.stdout + done.stderr)
    # 1: abidiff failed, 2: used wrongly, 4: a change, 8: one that breaks programs
    if done.returncode != 0:
        print("programs that were linked with version 1 would meet another interface. An addition is recorded with "
              "check_abi.py --record; anything else needs a new major version, and so a new soname")
    return done.returncode


def main():
    asArguments = sys.argv[1:]
    fnWork = record if asArguments[:1] == ["--record"] else compare
    asArguments = asArguments[1:] if fnWork is record else asArguments
    if len(asArguments) < 3:
        sys.exit(__doc__)
    sys.exit(fnWork(asArguments[0], asArguments[1], asArguments[2:]))


main()
