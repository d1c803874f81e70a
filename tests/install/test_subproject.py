# SPDX-License-Identifier: Apache-2.0
"""The library as a part of another project: it brings itself and nothing else."""
import unittest

from support import EMULATOR, HERE, SOURCE, InstallTest, configure, files_below, run


class Subproject(InstallTest):
    def configured(self, strFetch):
        pathBuild = self.pathScratch / f"build-{strFetch}"
        configure(HERE / "subproject", pathBuild, f"-DBMCFRU_SOURCE={SOURCE}", f"-DFETCH={strFetch}")
        return pathBuild

    def test_fetched_or_added_it_asks_for_nothing_but_its_library(self):
        for strFetch in ("ON", "OFF"):
            pathBuild = self.configured(strFetch)
            asTargets = run("ninja", "-C", pathBuild, "-t", "targets", "all").splitlines()
            asNames = [s.split(":")[0].split("/")[-1] for s in asTargets]
            self.assertIn("libbmcfru.so", asNames)
            for strName in ("fructl", "contract", "libbmcfruhost.so", "unit_toolkit", "bmcfru_bench", "ipmi_service"):
                self.assertNotIn(strName, asNames)
            strRules = (pathBuild / "build.ninja").read_text()
            self.assertNotIn("-Werror", strRules)
        run("cmake", "--build", pathBuild)
        run("cmake", "--install", pathBuild, "--prefix", self.pathScratch / "prefix")
        self.assertEqual(files_below(self.pathScratch / "prefix"), ["bin/inventory"])
        pathRoot = self.pathScratch / "controller"
        self.assertEqual(run(*EMULATOR, pathBuild / "inventory", pathRoot),
                         "Example Power EP-2000, serial number EP0000001\n")


if __name__ == "__main__":
    unittest.main()
