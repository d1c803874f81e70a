# SPDX-License-Identifier: Apache-2.0
"""The wheel, installed without a network where nothing else of this project is."""
import os
import pathlib
import subprocess
import sys
import unittest

from support import BUILD, HANG_SECONDS, SOURCE, ControllerTest

CODE = """
import pathlib, sys
import bmcfru
controller = bmcfru.Controller(sys.argv[1])
print(controller.device("psu1").label("Product Serial Number").get())
print(pathlib.Path(f"/proc/{controller.workerPid}/exe").resolve())
setPlaces = {strLine.split()[-1] for strLine in open(f"/proc/{controller.workerPid}/maps")}
print(*sorted(s for s in setPlaces if ".so" in s and any(w in s for w in ("bmcfru", "sqlite", "pugixml", "iniparser"))))
"""


class Wheel(ControllerTest):
    def test_it_is_installed_offline_and_finds_its_own_libraries(self):
        strSaid = subprocess.run([SOURCE / "scripts/wheel", BUILD], check=True, capture_output=True, text=True,
                                 cwd=SOURCE, timeout=HANG_SECONDS).stdout
        pathWheel = SOURCE / strSaid.split()[1]
        pathPlace = self.pathTemp / "place"
        subprocess.run([sys.executable, "-m", "pip", "install", "--quiet", "--no-index", "--no-deps", "--target", pathPlace,
                        pathWheel], check=True, capture_output=True, timeout=HANG_SECONDS)
        dictEnvironment = {s: v for s, v in os.environ.items() if s not in ("BMCFRU_LIBRARY_DIR", "PYTHONPATH")}
        done = subprocess.run([sys.executable, "-c", CODE, self.pathRoot], capture_output=True, text=True,
                              cwd=self.pathTemp, env={**dictEnvironment, "PYTHONPATH": str(pathPlace)},
                              timeout=HANG_SECONDS)
        self.assertEqual(done.returncode, 0, done.stderr)
        strSerial, strWorker, strLibraries = done.stdout.splitlines()
        self.assertEqual(strSerial, "PS8024100311")
        self.assertEqual(pathlib.Path(strWorker), pathPlace / "bmcfru/lib/bmcfru/bmcfru-worker1")
        self.assertEqual([s for s in strLibraries.split() if not s.startswith(str(pathPlace))], [])
        self.assertEqual(len(strLibraries.split()), 6)


if __name__ == "__main__":
    unittest.main()
