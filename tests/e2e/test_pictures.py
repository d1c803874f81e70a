# SPDX-License-Identifier: Apache-2.0
"""The README's pictures are what fructl prints."""
import os
import re
import subprocess
import unittest
import xml.etree.ElementTree

from support import EMULATOR, FRUCTL, SOURCE

PICTURES = SOURCE / "docs/pictures"


class Pictures(unittest.TestCase):
    def test_they_are_what_the_script_makes_now(self):
        stMade = subprocess.run([str(SOURCE / "scripts/pictures"), "--check", FRUCTL], capture_output=True, text=True,
                                env={**os.environ, "FRUCTL_EMULATOR": " ".join(EMULATOR)})
        self.assertEqual((stMade.returncode, stMade.stderr), (0, ""))

    def test_the_readme_shows_them_all_and_they_are_pictures(self):
        asShown = sorted(re.findall(r"docs/pictures/([\w.]+)", (SOURCE / "README.md").read_text()))
        self.assertEqual(asShown, ["list.svg", "map.svg", "report.png"])
        for strName in asShown[:2]:
            stRoot = xml.etree.ElementTree.parse(PICTURES / strName).getroot()
            self.assertEqual(stRoot.tag, "{http://www.w3.org/2000/svg}svg")
            strText = "".join(stRoot.itertext())
            self.assertIn("psu1", strText)
            self.assertNotIn("\x1b", strText)
        self.assertEqual((PICTURES / "report.png").read_bytes()[:8], b"\x89PNG\r\n\x1a\n")


if __name__ == "__main__":
    unittest.main()
