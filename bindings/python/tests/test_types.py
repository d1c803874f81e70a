# SPDX-License-Identifier: Apache-2.0
"""The type hints hold under mypy's strictest rules, for Python 3.9 as well."""
import subprocess
import tempfile
import unittest

from support import HANG_SECONDS, SOURCE


class Types(unittest.TestCase):
    def test_mypy_finds_nothing(self):
        with tempfile.TemporaryDirectory() as strCache:
            done = subprocess.run(["mypy", "--strict", "--python-version", "3.9", "--cache-dir", strCache, "bmcfru"],
                                  cwd=SOURCE / "bindings/python", capture_output=True, text=True, timeout=HANG_SECONDS)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main()
