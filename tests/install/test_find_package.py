# SPDX-License-Identifier: Apache-2.0
"""A CMake project that finds what is installed."""
import unittest

from support import EMULATOR, HERE, InstallTest, configure, run


class FindPackage(InstallTest):
    def test_finds_builds_and_runs_from_a_prefix_that_was_moved(self):
        pathPrefix = self.install()
        pathBuild = self.pathScratch / "build"
        configure(HERE / "consumer", pathBuild, f"-DCMAKE_PREFIX_PATH={pathPrefix}", "-DWANTED_VERSION=1.0",
                  "-DCMAKE_C_FLAGS=-Wall -Wextra -Werror")
        run("cmake", "--build", pathBuild)
        pathRoot, strSerial = self.provisioned(pathPrefix)
        self.assertEqual(run(*EMULATOR, pathBuild / "consumer", pathRoot), strSerial + "\n")

    def test_another_major_version_is_not_found(self):
        pathPrefix = self.install()
        for strWanted in ("2.0", "0.9", "1.99"):
            strSaid = configure(HERE / "consumer", self.pathScratch / strWanted, f"-DCMAKE_PREFIX_PATH={pathPrefix}",
                                f"-DWANTED_VERSION={strWanted}", code=1)
            self.assertIn("bmcfru", strSaid)
            self.assertIn("version", strSaid)


if __name__ == "__main__":
    unittest.main()
