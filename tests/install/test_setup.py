# SPDX-License-Identifier: Apache-2.0
"""What scripts/setup installs for whom, and that it says so before it does. The package tools are stood in for."""
import os
import subprocess
import unittest

from support import SOURCE, InstallTest

# Nothing is installed, no architecture is added, and whoever is called writes it down.
TOOLS = {
    "dpkg": 'case $1 in --print-architecture) echo amd64 ;; --print-foreign-architectures) ;; *) echo "CALLED dpkg $*" ;; esac',
    "dpkg-query": "exit 1",
    "apt-get": 'echo "CALLED apt-get $*" >&3',
    "sudo": '"$@"',
}


class Setup(InstallTest):
    def setup(self, *asArguments):
        pathTools = self.pathScratch / "tools"
        pathTools.mkdir(exist_ok=True)
        for strName, strBody in TOOLS.items():
            (pathTools / strName).write_text(f"#!/bin/sh\n{strBody}\n")
            (pathTools / strName).chmod(0o755)
        done = subprocess.run(["sh", "-c", f'exec 3>&1; exec "{SOURCE}/scripts/setup" "$@"', "setup", *asArguments],
                              env={**os.environ, "PATH": f"{pathTools}:{os.environ['PATH']}"}, capture_output=True, text=True)
        return done.returncode, done.stdout.splitlines()

    def test_a_dry_run_tells_what_is_missing_and_calls_nobody(self):
        for strFor in ("demo", "test"):
            iCode, asLines = self.setup(strFor, "--dry-run")
            self.assertEqual(iCode, 1)
            self.assertFalse([s for s in asLines if "CALLED" in s])
            self.assertTrue([s for s in asLines if "will install" in s and "cmake" in s])

    def test_the_demo_adds_no_architecture_no_cross_compiler_and_no_simulator(self):
        _, asLines = self.setup("demo", "--dry-run")
        strAll = "\n".join(asLines)
        for strWord in ("armhf", "arm-linux", "qemu", "clang", "openipmi", "gtest", "lintian"):
            self.assertNotIn(strWord, strAll)

    def test_only_the_emulated_controller_brings_an_emulator_of_a_machine(self):
        for strFor, bWanted in (("demo", False), ("test", False), ("target", True)):
            _, asLines = self.setup(strFor, "--dry-run")
            self.assertEqual("qemu-system-arm" in "\n".join(asLines).split(), bWanted, strFor)

    def test_only_the_proofs_bring_what_measures_and_searches(self):
        for strFor, bWanted in (("demo", False), ("test", False), ("target", False), ("prove", True)):
            _, asLines = self.setup(strFor, "--dry-run")
            setWords = set("\n".join(asLines).split())
            for strPackage in ("llvm-14", "valgrind", "cppcheck"):
                self.assertEqual(strPackage in setWords, bWanted, strFor)
            self.assertEqual("libgtest-dev" in setWords, strFor != "demo")

    def test_what_is_done_is_told_before_it_is_done(self):
        iCode, asLines = self.setup("test")
        self.assertEqual(iCode, 0)
        aiPlaces = [next(i for i, s in enumerate(asLines) if strWanted in s)
                    for strWanted in ("will add the architecture armhf", "will install these packages",
                                      "CALLED dpkg --add-architecture armhf", "CALLED apt-get -q")]
        self.assertEqual(aiPlaces, sorted(aiPlaces))

    def test_everything_else_is_refused_with_the_usage(self):
        done = subprocess.run([SOURCE / "scripts/setup", "everything"], capture_output=True, text=True)
        self.assertEqual(done.returncode, 2)
        self.assertIn("usage: scripts/setup [demo|test|target|prove] [--dry-run]", done.stderr)


if __name__ == "__main__":
    unittest.main()
