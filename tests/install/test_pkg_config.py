# SPDX-License-Identifier: Apache-2.0
"""A compiler and a Makefile that ask pkg-config."""
import re
import shutil
import unittest

from support import CC, EMULATOR, HERE, SOURCE, InstallTest, run


class PkgConfig(InstallTest):
    def setUp(self):
        super().setUp()
        # pkg-config quotes no blanks for a shell, so this prefix has none.
        self.pathPrefix = self.install().rename(self.pathScratch / "moved")
        self.pathLibraries = self.libraries(self.pathPrefix)
        self.env = {"PKG_CONFIG_LIBDIR": str(self.pathLibraries / "pkgconfig"), "CC": CC,
                    "LD_LIBRARY_PATH": str(self.pathLibraries)}

    def asked(self, *asOptions):
        return run("pkg-config", *asOptions, env=self.env).strip()

    def test_tells_the_place_where_the_prefix_is_now(self):
        for strName in ("bmcfru", "bmcfruhost"):
            for strWord in self.asked("--cflags", "--libs", strName).split():
                if strWord.startswith(("-I", "-L")):
                    self.assertTrue(strWord[2:].startswith(str(self.pathPrefix)), strWord)
            self.assertRegex(self.asked("--cflags", strName), "include/bmcfru")

    def test_tells_the_one_version(self):
        strVersion = re.search(r"^project\(bmcfru VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text(), re.M).group(1)
        for strName in ("bmcfru", "bmcfruhost"):
            self.assertEqual(self.asked("--modversion", strName), strVersion)
        self.assertEqual(run(*EMULATOR, self.pathPrefix / "bin/fructl", "--version").split()[-1], strVersion)
        strFirst = re.search(r"^## (\S+)", (SOURCE / "CHANGELOG.md").read_text(), re.M).group(1)
        self.assertEqual(strFirst, strVersion)
        for strLibrary in ("libbmcfru.so", "libbmcfruhost.so"):
            self.assertTrue((self.pathLibraries / f"{strLibrary}.{strVersion}").is_file())
            self.assertTrue((self.pathLibraries / f"{strLibrary}.{strVersion.split('.')[0]}").is_symlink())

    def test_one_line_of_the_compiler_builds_a_program(self):
        pathProgram = self.pathScratch / "consumer"
        run("sh", "-c", f"$CC -std=c99 -o '{pathProgram}' '{HERE}/consumer/main.c' "
            "$(pkg-config --cflags --libs bmcfru bmcfruhost)", env=self.env)
        self.runs(pathProgram)

    def test_a_makefile_builds_a_program(self):
        pathBuild = self.pathScratch / "make"
        shutil.copytree(HERE / "consumer", pathBuild)
        run("make", "-C", pathBuild, f"CC={CC}", env=self.env)
        self.runs(pathBuild / "consumer")

    def runs(self, pathProgram):
        pathRoot, strSerial = self.provisioned(self.pathPrefix)
        self.assertEqual(run(*EMULATOR, pathProgram, pathRoot, env=self.env), strSerial + "\n")


if __name__ == "__main__":
    unittest.main()
