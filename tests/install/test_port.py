# SPDX-License-Identifier: Apache-2.0
"""The port that one copies: built from a copy against a library without the desk's host, run, and put to its contract."""
import shutil
import unittest

from support import CC, EMULATOR, SOURCE, TOOLCHAIN, InstallTest, configure, run

# Under an emulator the tests that kill a writer at a thousand moments take minutes; the same code runs natively.
SLOW = "-DatabaseProcesses.*:Eeprom.AKilled*:Eeprom.Readers*"


class Port(InstallTest):
    def test_builds_with_cmake_and_make_runs_and_keeps_the_contract(self):
        pathLibrary = self.pathScratch / "library"
        configure(SOURCE, pathLibrary, "-DBMCFRU_HOST=OFF")
        run("cmake", "--build", pathLibrary)
        pathPrefix = self.install(pathLibrary).rename(self.pathScratch / "prefix")
        self.assertFalse(list(pathPrefix.rglob("*bmcfruhost*")))
        pathPort = self.pathScratch / "my port"
        shutil.copytree(pathPrefix / "share/doc/bmcfru/examples/port", pathPort)

        pathBuild = self.pathScratch / "build"
        configure(pathPort, pathBuild, f"-DCMAKE_PREFIX_PATH={pathPrefix}", "-DCMAKE_C_FLAGS=-Werror")
        run("cmake", "--build", pathBuild)
        self.serves(pathBuild / "inventory", {})

        pathMade = pathPort.rename(self.pathScratch / "made")
        env = {"PKG_CONFIG_LIBDIR": str(self.libraries(pathPrefix) / "pkgconfig")}
        run("make", "-C", pathMade, f"CC={CC}", "CFLAGS=-O2 -Werror", env=env)
        self.serves(pathMade / "inventory", {"LD_LIBRARY_PATH": str(self.libraries(pathPrefix))})

        configure(SOURCE, pathLibrary, f"-DBMCFRU_CONTRACT_PLATFORM={pathBuild}/libport.so",
                  f"-DBMCFRU_CONTRACT_ADAPTER={pathMade}/contract")
        run("cmake", "--build", pathLibrary, "--target", "contract")
        asFilter = [f"--gtest_filter={SLOW}"] if TOOLCHAIN else []
        strSaid = run(*EMULATOR, pathLibrary / "contract", *asFilter)
        self.assertIn("[  PASSED  ]", strSaid)

    def serves(self, pathProgram, env):
        pathRoot = self.pathScratch / "controller"
        for asArguments, strSerial in (([], "EP0000001"), (["EP4711"], "EP4711"), ([], "EP4711")):
            self.assertEqual(run(*EMULATOR, pathProgram, pathRoot, *asArguments, env=env),
                             f"Example Power EP-2000, serial number {strSerial}\n")
        self.assertIn("result 99", (pathRoot / "var/log/operate.log").read_text())
        shutil.rmtree(pathRoot)


if __name__ == "__main__":
    unittest.main()
