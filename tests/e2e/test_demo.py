# SPDX-License-Identifier: Apache-2.0
"""The walk through that newcomers are shown."""
import re
import subprocess
import unittest

from support import COMMAND, Environment, HANG_SECONDS, SOURCE


class Demo(unittest.TestCase):
    def test_the_demo_ends_well_and_shows_every_command_that_it_runs(self):
        stResult = subprocess.run([SOURCE / "scripts/demo"], capture_output=True, text=True, env=Environment(FRUCTL=" ".join(COMMAND)),
                                  timeout=HANG_SECONDS)
        # The failures are those that the demo announces.
        self.assertEqual((stResult.returncode, stResult.stderr), (0, """\
fructl: verify: 2 of 7 images are not in order
fructl: '02:00:5e:10:00:a0' is refused for 'Chassis MAC Address': it has 17 characters; accepted: 12 hexadecimal digits without separators, such as 02005E1000A0, or NONE
"""))
        self.assertEqual(re.findall(r"^\$ fructl (\w+)", stResult.stdout, re.MULTILINE),
                         ["provision", "list", "show", "map", "verify", "recover", "verify", "list", "label", "label", "label", "show", "label",
                          "encode", "diff", "verify", "mr", "mr", "hw", "hw", "sn", "oem"])
        self.assertIn("baseboard (0x00:0) was damaged and is restored from /usr/upgrade/fru/BaseBoard.bin\n", stResult.stdout)
        self.assertIn("\nSet baseboard FRU successfully, baseboard Product Serial Number: LH22024170099.\n"
                      "  Product Serial Number  LH22024170042 -> LH22024170099\n", stResult.stdout)
        self.assertIn("\nSet riser FRU successfully, riser Product Asset Tag: SLOT-2.\n", stResult.stdout)
        self.assertIn("\n# Done. ", stResult.stdout)

    def test_a_demo_that_goes_wrong_fails(self):
        stResult = subprocess.run([SOURCE / "scripts/demo"], capture_output=True, text=True, env=Environment(FRUCTL="false"),
                                  timeout=HANG_SECONDS)
        self.assertEqual((stResult.returncode, stResult.stderr), (1, "demo: FAILED: fructl provision examples/controller.json ended with exit code 1, not 0\n"))


if __name__ == "__main__":
    unittest.main()
