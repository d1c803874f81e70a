# SPDX-License-Identifier: Apache-2.0
"""The unit tests as they have been built, linked with the library's sources compiled in another way: nothing but src/ is
compiled again, whether it is for mutants, for coverage or for another kind of char."""
import json
import pathlib
import re
import shlex
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Tests:
    """Those of one build folder."""

    def __init__(self, pathBuild):
        self.pathBuild = pathlib.Path(pathBuild)
        listCommands = json.loads((self.pathBuild / "compile_commands.json").read_text())
        self.dictCommands = {dictOne["file"]: dictOne["command"] for dictOne in listCommands if dictOne["file"].startswith(f"{ROOT}/src/")
                             and re.search(r"bmcfru_(objects|file_access)\.dir", dictOne["command"])}

    def Sources(self):
        return sorted(self.dictCommands)

    def Arguments(self, strFile):
        """What decides the meaning of a file: folders, macros, language."""
        return [strWord for strWord in shlex.split(self.dictCommands[strFile]) if re.match(r"-(I|D|f|std)", strWord)]

    def Compiler(self, strFile):
        return next(strWord for strWord in shlex.split(self.dictCommands[strFile]) if not strWord.endswith("ccache"))

    def Object(self, strFile):
        return re.search(r" -o (\S+)", self.dictCommands[strFile]).group(1)

    def Names(self):
        """Of the programs, one for each module of the library."""
        return [pathOne.name for pathOne in sorted(self.pathBuild.glob("unit_*")) if (ROOT / "tests/unit" / pathOne.name[len("unit_"):]).is_dir()]

    def Link(self, strName, dictObjects, pathProgram, listFirst, strLinker=None):
        """dictObjects: the build's own object -> the one to take instead; listFirst: what is added."""
        stCommands = subprocess.run(["ninja", "-C", str(self.pathBuild), "-t", "commands", "-s", strName], capture_output=True, text=True, check=True)
        listWords = [dictObjects.get(strWord, strWord) for strWord in shlex.split(stCommands.stdout.splitlines()[-1].split("&&")[1]) if strWord != "ccache"]
        iOut = listWords.index("-o")
        listWords[iOut + 1] = str(pathProgram)
        subprocess.run([strLinker or listWords[0], *listWords[1:iOut], *listFirst, *listWords[iOut:]], cwd=self.pathBuild, check=True)
