# SPDX-License-Identifier: Apache-2.0
"""Whole images and recoveries killed before every call that changes a file: the old or the new image afterwards, whole."""
import unittest

from cut_support import CutTest
from support import EXAMPLES
from test_cuts import Cuts as CutsOfWrites


class ImageCuts(CutTest):
    AssertWhole = CutsOfWrites.AssertWhole

    def test_write(self):
        self.AssertWhole("write", "psu1", str(EXAMPLES / "psu2.hex"))

    def test_recover_from_the_history(self):
        self.Good("label", "set", "psu1", "Product Asset Tag", "ONE")
        self.Damage(self.Eeprom("bus2-addr0xa4-switch1.bin"), 0x20, b"\x00\x00")
        self.AssertWhole("recover", "psu1", "--from", "history")

    def test_recover_of_the_cached_image_alone(self):
        self.Good("label", "set", "psu1", "Product Asset Tag", "ONE")
        self.Eeprom("bus2-addr0xa4-switch1.bin").write_bytes(self.Eeprom("bus2-addr0xa4-switch2.bin").read_bytes())
        self.AssertWhole("recover", "psu1", iAtLeast=10)

    def test_a_label_on_an_erased_device(self):
        self.Good("clear", "baseboard", "--yes")
        self.AssertWhole("label", "set", "baseboard", "Product Serial Number=LHCUT0001", "Board Serial Number=MBCUT0002")


del CutsOfWrites  # its own tests are not ours

if __name__ == "__main__":
    unittest.main()
