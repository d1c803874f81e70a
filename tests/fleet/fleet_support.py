# SPDX-License-Identifier: Apache-2.0
"""What the tests of the collection share: an Ansible that keeps to a directory of the test, and controllers to run it on."""
import importlib.util
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ.get("BMCFRU_SOURCE", pathlib.Path(__file__).resolve().parents[2]))
COLLECTION = SOURCE / "bindings/ansible"
EXAMPLES = SOURCE / "examples/fleet"
PACKAGE = os.environ.get("BMCFRU_PACKAGE", str(SOURCE / "bindings/python"))
LIBRARIES = os.environ.get("BMCFRU_LIBRARY_DIR", str(SOURCE / "build/native"))
FRUCTL = os.environ.get("FRUCTL", str(SOURCE / "build/native/fructl"))
PYTHON = "/usr/bin/python3"
MODULES = ("fru_image", "fru_info", "fru_label")
HANG_SECONDS = 1800  # a command that takes it hangs
SKIPPED = 77  # CTest's SKIP_RETURN_CODE for these tests
TEMP = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

if importlib.util.find_spec("ansible") is None:
    print(f"skipped: ansible-core is not installed for {sys.executable}")
    sys.exit(SKIPPED)


class FleetTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.pathTemp = pathlib.Path(tempfile.mkdtemp(prefix="bmcfru-fleet-", dir=TEMP))
        self.addCleanup(shutil.rmtree, self.pathTemp)
        self.pathRoot = self.pathTemp / "root"
        pathSpace = self.pathTemp / "collections/ansible_collections/bmcfru"
        pathSpace.mkdir(parents=True)
        (pathSpace / "fru").symlink_to(COLLECTION)
        # Nothing of the user's is read or written, and nothing depends on his settings.
        self.dictEnvironment = {strKey: value for strKey, value in os.environ.items()
                                if not strKey.startswith(("ANSIBLE_", "LC_", "FRUCTL_ROOT"))}
        self.dictEnvironment.update(
            HOME=str(self.pathTemp), LC_ALL="C.UTF-8", ANSIBLE_HOME=str(self.pathTemp / "ansible"),
            ANSIBLE_LOCAL_TEMP=str(self.pathTemp / "ansible/tmp"), ANSIBLE_REMOTE_TEMP=str(self.pathTemp / "ansible/remote"),
            ANSIBLE_COLLECTIONS_PATH=str(self.pathTemp / "collections"), ANSIBLE_CONFIG=str(EXAMPLES / "ansible.cfg"), ANSIBLE_NOCOLOR="1",
            PYTHONPATH=PACKAGE, PYTHONDONTWRITEBYTECODE="1", BMCFRU_LIBRARY_DIR=LIBRARIES, FRUCTL=FRUCTL)

    def Run(self, *asCommand, **dictMore):
        return subprocess.run([str(strWord) for strWord in asCommand], capture_output=True, text=True, check=False, timeout=HANG_SECONDS,
                              stdin=subprocess.DEVNULL, env={**self.dictEnvironment, **dictMore}, cwd=self.pathTemp)

    def Good(self, *asCommand, **dictMore):
        stDone = self.Run(*asCommand, **dictMore)
        self.assertEqual(stDone.returncode, 0, f"{asCommand}\n{stDone.stdout}{stDone.stderr}")
        return stDone.stdout

    def Fructl(self, pathRoot, *asArguments):
        return json.loads(self.Good(FRUCTL, "--root", pathRoot, "--json", *asArguments))

    def Provision(self):
        self.Good(FRUCTL, "--root", self.pathRoot, "provision", SOURCE / "examples/controller.json")

    def Module(self, strName, dictArguments, bCheck=False, iVerbosity=0, **dictEnvironment):
        """What a module answers to the play, run as Ansible runs it on the managed host."""
        dictGiven = {strKey: value for strKey, value in {"root": str(self.pathRoot), **dictArguments}.items() if value is not None}
        dictAll = {**dictGiven, "_ansible_check_mode": bCheck, "_ansible_diff": True,
                   "_ansible_verbosity": iVerbosity, "_ansible_remote_tmp": str(self.pathTemp), "_ansible_module_name": f"bmcfru.fru.{strName}"}
        stDone = self.Run(PYTHON, COLLECTION / f"plugins/modules/{strName}.py", json.dumps({"ANSIBLE_MODULE_ARGS": dictAll}),
                          **{"PYTHONPATH": f"{PACKAGE}:{self.pathTemp}/collections", **dictEnvironment})
        self.assertEqual(stDone.stderr, "")
        dictAnswer = json.loads(stDone.stdout)
        self.assertEqual(stDone.returncode, 1 if dictAnswer.get("failed") else 0, stDone.stdout)
        dictAnswer.pop("invocation", None)
        return dictAnswer

    def Does(self, strName, dictArguments, **dictMore):
        dictAnswer = self.Module(strName, dictArguments, **dictMore)
        self.assertFalse(dictAnswer.get("failed"), dictAnswer)
        return dictAnswer

    def Fails(self, strName, dictArguments, **dictMore):
        dictAnswer = self.Module(strName, dictArguments, **dictMore)
        self.assertTrue(dictAnswer.get("failed"), dictAnswer)
        self.assertNotIn("exception", dictAnswer)
        return dictAnswer

    def Tree(self, pathRoot):
        """Every file of a controller but its locks: its time and its bytes."""
        return {str(path): (path.stat().st_mtime_ns, path.read_bytes()) for path in sorted(pathRoot.rglob("*"))
                if path.is_file() and path.parent != pathRoot / "var/lock"}
