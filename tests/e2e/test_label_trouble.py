# SPDX-License-Identifier: Apache-2.0
"""fructl label set on chips, caches and files that do not play along."""
import unittest

from label_support import DEV_EEPROM, LabelTest, PSU_EEPROM
from support import Image, OPERATE_LOG, SERIAL_NUMBER_FILES, Texts


class Trouble(LabelTest):
    def test_an_eeprom_that_refuses_the_write_is_told_though_the_library_reports_success(self):
        self.Provision()
        pathEeprom = self.Eeprom(PSU_EEPROM)
        abBefore = pathEeprom.read_bytes()
        pathEeprom.chmod(0o444)
        strLine = self.Bad(5, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Version=A2")
        self.assertRegex(strLine, r"^'Product Asset Tag' of psu1 \(0x03:0\) could not be written: the EEPROM holds other bytes than were to be written, from byte 0x[0-9a-f]{4} on "
                                  r"\(0x.., not 0x..\) \(the library says: .*\); what was there before is put back$")
        self.assertEqual(pathEeprom.read_bytes(), abBefore)
        self.assertEqual(self.OperationLog(), [(17, 67, "Failed to set psu1 FRU.", 12)])
        pathEeprom.chmod(0o644)
        self.Good("label", "set", "psu1", "Product Asset Tag", "RACK7")

    def test_an_eeprom_that_is_gone(self):
        self.Provision()
        self.Eeprom(PSU_EEPROM).unlink()
        self.assertIn("the EEPROM of psu1 (0x03:0) does not answer", self.Bad(5, "label", "set", "psu1", "Product Asset Tag", "RACK7"))
        self.assertEqual(self.OperationLog(), [])

    def test_a_serial_number_file_that_cannot_be_written(self):
        self.Provision()
        (self.pathRoot / "mnt/sdmmc0p4").mkdir(parents=True)
        (self.pathRoot / "mnt/sdmmc0p4/board").write_text("a file where the directory should be")
        stResult = self.Fructl("label", "set", "baseboard", "Product Serial Number=LH-1", "Product Version=2.2")
        self.assertEqual(stResult.iCode, 1)
        self.assertRegex(stResult.strErr, "^fructl: the device holds the new 'Product Serial Number', but its file /mnt/sdmmc0p4/board/ProductSerialNumber on the "
                                          "controller could not be written \\(the library says: making directory .*: Not a directory\\)\n$")
        # The device has both labels, and the log says so.
        self.assertIn("\n  Product Version        2.1 -> 2.2\n", stResult.strOut)
        self.assertEqual([self.Json("show", "baseboard")["product"][strKey] for strKey in ("serialNumber", "version")], ["LH-1", "2.2"])
        self.assertEqual([s[1] for s in self.OperationLog()], [99, 99])

    def test_a_copy_that_cannot_be_written(self):
        self.Provision()
        (self.pathRoot / "var/network").rmdir()
        self.assertRegex(self.Fructl("label", "set", "baseboard", "Product Serial Number", "LH-1").strErr,
                         r"^fructl: the device holds the new .* its file /var/network/ProductSerialNumber on the controller could not be written")
        self.assertEqual((self.pathRoot / SERIAL_NUMBER_FILES[0]).read_bytes(), b"LH-1")

    def test_an_operation_log_that_cannot_be_written(self):
        self.Provision()
        (self.pathRoot / OPERATE_LOG).mkdir(parents=True)
        self.assertIn("the operation log could not be written; what it lacks: Set psu1 FRU successfully, psu1 Product Version: A2.",
                      self.Bad(1, "label", "set", "psu1", "Product Version", "A2"))
        self.assertEqual(self.Json("show", "psu1")["product"]["version"], "A2")

    def test_a_device_that_is_served_from_the_cache_needs_its_eeprom_all_the_same(self):
        abImage = Image({3: bytes(4) + Texts("", "", "old", "", "")})
        self.ProvisionImage(abImage, databaseOnly=True)
        self.Good("label", "set", "dev", "Board Serial Number", "NEW-1")
        self.assertEqual(self.Good("label", "get", "dev", "Board Serial Number").strOut, "NEW-1\n")
        self.Eeprom(DEV_EEPROM).unlink()
        self.assertRegex(self.Bad(5, "label", "set", "dev", "Board Serial Number", "NEW-2"),
                         r"^'Board Serial Number' of dev \(0x20:0\) could not be written: the cache holds other bytes than were to be written, from byte 0x.* "
                         r"\(the library says: EEPROM bus5-addr0xa6: No such file")
        self.assertEqual(self.Good("label", "get", "dev", "Board Serial Number").strOut, "NEW-1\n")


if __name__ == "__main__":
    unittest.main()
