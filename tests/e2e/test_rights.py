# SPDX-License-Identifier: Apache-2.0
"""A controller that one user has laid down, and another who works with it."""
import os
import subprocess
import unittest

import support
from support import EXAMPLES, FructlTest

OTHER = 65534


@unittest.skipIf(os.geteuid() != 0, "only root can act as two users")
class Rights(FructlTest):
    def setUp(self):
        super().setUp()
        self.pathTemp.chmod(0o755)
        self.Provision()
        self.pathDatabase = self.pathRoot / "var/lib/fru/fru.db"

    def AsOther(self, *asArguments):
        stProcess = subprocess.run([*support.COMMAND, "--root", str(self.pathRoot), *map(str, asArguments)], capture_output=True,
                                   text=True, check=False, timeout=support.HANG_SECONDS, env=support.Environment(),
                                   user=OTHER, group=OTHER, extra_groups=[])
        return support.Result(stProcess)

    def test_who_may_only_read_reads(self):
        dictBefore = self.Tree()
        for asArguments in (["list"], ["show", "psu1"], ["verify"]):
            stResult = self.AsOther(*asArguments)
            self.assertEqual((stResult.iCode, stResult.strErr), (0, ""), asArguments)
            self.assertEqual(stResult.strOut, self.Fructl(*asArguments).strOut)
        self.assertEqual(self.Tree(), dictBefore)

    def test_who_may_not_read_the_database_is_told_and_destroys_nothing(self):
        self.pathDatabase.chmod(0o600)
        dictBefore = self.Tree()
        strWanted = f"the database {self.pathDatabase} may not be used so: Permission denied"
        for asArguments in (["list"], ["show", "psu1"]):
            stResult = self.AsOther(*asArguments)
            self.assertEqual(stResult.iCode, 8, asArguments)
            self.AssertOneLine(stResult.strErr)
            self.assertIn(strWanted, stResult.strErr)
        for asForeign in ([], ["--foreign-root"]):
            self.assertEqual(self.AsOther(*asForeign, "provision", EXAMPLES / "controller.json", "--force").iCode, 8)
        self.assertEqual(self.Tree(), dictBefore)


if __name__ == "__main__":
    unittest.main()
