# SPDX-License-Identifier: Apache-2.0
"""fructl recover: what it takes, what it never takes, and when it says that a device was fine."""
import json
import unittest

from support import BASEBOARD_EEPROM, EXAMPLES, FructlTest, HexImage

PSU1_EEPROM = "bus2-addr0xa4-switch1.bin"
NOT_FOUND, NO_ANSWER, DAMAGED = 4, 5, 6


class Recover(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()
        self.pathEeprom = self.Eeprom(BASEBOARD_EEPROM)
        self.pathStored = self.pathRoot / "usr/upgrade/fru/BaseBoard.bin"

    def test_a_sound_image_is_left_alone(self):
        abBefore = self.pathEeprom.read_bytes()
        self.assertEqual(self.Good("recover", "baseboard").strOut, "baseboard (0x00:0) was fine; nothing was written\n")
        self.assertEqual(self.Json("recover", "0:0"), {
            "device": {"id": 0, "name": "baseboard", "componentType": 0, "instance": 0}, "outcome": "fine",
            "storedImage": "/usr/upgrade/fru/BaseBoard.bin", "text": "was fine; nothing was written"})
        self.assertEqual(self.pathEeprom.read_bytes(), abBefore)

    def test_a_damaged_header_is_restored_although_the_cache_is_sound(self):
        abBefore = self.pathEeprom.read_bytes()
        self.Damage(self.pathEeprom, 0, b"\xde\xad")
        self.assertEqual(self.Good("recover", "baseboard").strOut, "baseboard (0x00:0) was damaged and is restored from /usr/upgrade/fru/BaseBoard.bin\n")
        self.assertEqual(self.pathEeprom.read_bytes(), abBefore)
        self.assertEqual(self.Json("list")["devices"][0]["cache"], "same")
        self.Damage(self.pathEeprom, 0, b"\xff" * 8)
        self.assertEqual(self.Json("recover", "--id", "0")["outcome"], "restored")

    def test_why_an_image_could_not_be_restored(self):
        self.pathStored.unlink()
        self.BreakEverything("baseboard", self.pathEeprom)
        abDamaged = self.pathEeprom.read_bytes()
        strOthers = "; its history has no image that is in order; its cached image is itself not in order: byte 0x0000  "
        self.assertIn(f" and cannot be restored: its stored image /usr/upgrade/fru/BaseBoard.bin is missing (looked for as {self.pathStored}){strOthers}",
                      self.Bad(DAMAGED, "recover", "baseboard"))
        self.pathStored.write_bytes(b"")
        self.assertIn(f" and cannot be restored: its stored image /usr/upgrade/fru/BaseBoard.bin is empty{strOthers}", self.Bad(DAMAGED, "recover", "baseboard"))
        self.pathStored.write_bytes(b"\x00" * 2048)
        self.assertIn(" and cannot be restored: its stored image /usr/upgrade/fru/BaseBoard.bin is itself not in order: ", self.Bad(DAMAGED, "recover", "baseboard"))
        self.pathStored.write_bytes(b"\x00" * 2049)
        self.assertIn("/usr/upgrade/fru/BaseBoard.bin has 2049 bytes, and the FRU has 2048", self.Bad(DAMAGED, "recover", "baseboard"))
        self.assertEqual(self.pathEeprom.read_bytes(), abDamaged)
        self.BreakEverything("psu1", self.Eeprom(PSU1_EEPROM))
        strLine = self.Bad(DAMAGED, "recover", "psu1")
        self.assertIn("psu1 (0x03:0) is damaged (byte 0x0000  common header: ", strLine)
        self.assertIn(" and cannot be restored: no stored image is named in its record; its history has no image that is in order; ", strLine)
        self.assertIn("; accepted: --from FILE with an image that is in order", strLine)

    def BreakEverything(self, strDevice, pathEeprom):
        """No good byte of the device left: EEPROM, cached image and history."""
        iBytes = {"baseboard": 2048, "psu1": 256}[strDevice]
        stResult = self.Fructl("write", strDevice, self.Write("zero.bin", bytes(iBytes)), "--force")
        self.assertEqual(stResult.iCode, 0, stResult.strErr)
        for pathPast in (self.pathRoot / "var/lib/fru/history").rglob("*.json"):
            pathPast.unlink()
        self.assertEqual(pathEeprom.read_bytes()[:iBytes], bytes(iBytes))

    def test_a_write_protected_eeprom(self):
        self.Damage(self.pathEeprom, 0, b"\xde\xad")
        self.pathEeprom.chmod(0o444)
        self.assertIn("write-protected", self.Bad(NO_ANSWER, "recover", "baseboard"))

    def test_a_damaged_area_under_a_valid_header_is_restored_too(self):
        abBefore = self.pathEeprom.read_bytes()
        self.Damage(self.pathEeprom, 0x60, b"X")
        self.assertIn("is damaged: byte 0x00af  board info area: checksum: ", self.Good("recover", "baseboard", "--dry-run").strOut)
        self.assertEqual(self.Fructl("verify", "baseboard").iCode, 1)
        self.assertEqual(self.Good("recover", "baseboard").strOut, "baseboard (0x00:0) was damaged and is restored from /usr/upgrade/fru/BaseBoard.bin\n")
        self.assertEqual(self.pathEeprom.read_bytes(), abBefore)
        self.Good("verify", "baseboard")

    def test_the_verdict_is_that_of_verify(self):
        pathPsu1 = self.Eeprom(PSU1_EEPROM)
        abGood = pathPsu1.read_bytes()
        for iAt in range(0, 160, 7):
            pathPsu1.write_bytes(abGood)
            self.Damage(pathPsu1, iAt, bytes([abGood[iAt] ^ 0x41]))
            bGood = self.Fructl("verify", "psu1").iCode == 0
            self.assertEqual(self.Json("recover", "psu1", "-n")["outcome"], "fine" if bGood else "damaged", iAt)

    def test_without_a_stored_image_the_history_is_taken_and_then_the_cache(self):
        pathPsu1 = self.Eeprom(PSU1_EEPROM)
        abFirst = pathPsu1.read_bytes()
        self.Good("label", "set", "psu1", "Product Asset Tag", "LATER")
        abLater = pathPsu1.read_bytes()
        self.Damage(pathPsu1, 0x20, b"\x00\x00")
        dictPlan = self.Json("recover", "psu1", "--dry-run")
        self.assertEqual((dictPlan["outcome"], dictPlan["from"], dictPlan["dryRun"], dictPlan["sound"]), ("damaged", "history", True, True))
        self.assertEqual(self.Json("recover", "psu1", "--from", "cache")["outcome"], "restored")
        iUsed = len(abLater.rstrip(b"\xff"))
        self.assertEqual(pathPsu1.read_bytes()[:iUsed], abLater[:iUsed])
        self.Damage(pathPsu1, 0x20, b"\x00\x00")
        dictDone = self.Json("recover", "psu1", "--from", "history")
        self.assertRegex(dictDone["text"], r"^was damaged and is restored from image \d+ of its history, of 2\d+-")
        self.assertIn(pathPsu1.read_bytes()[:iUsed], (abFirst[:iUsed], abLater[:iUsed]))
        self.Good("verify", "psu1")
        for pathPast in (self.pathRoot / "var/lib/fru/history").rglob("*.json"):
            pathPast.unlink()
        self.Damage(pathPsu1, 0x20, b"\x00\x00")
        self.assertEqual(self.Json("recover", "psu1")["from"], "cache")
        self.Good("verify", "psu1")

    def test_a_file_is_taken_when_it_is_asked_for(self):
        pathPsu1 = self.Eeprom(PSU1_EEPROM)
        self.Damage(pathPsu1, 0, b"\x00")
        pathFile = EXAMPLES / "psu2.hex"
        self.assertEqual(self.Good("recover", "psu1", "--from", pathFile).strOut, f"psu1 (0x03:0) was damaged and is restored from the file {pathFile}\n")
        self.assertEqual(pathPsu1.read_bytes(), HexImage(pathFile).ljust(256, b"\xff"))
        self.Good("verify", "psu1")

    def test_what_is_not_in_order_is_never_taken(self):
        pathPsu1 = self.Eeprom(PSU1_EEPROM)
        self.Damage(pathPsu1, 0, b"\x00")
        abDamaged = pathPsu1.read_bytes()
        pathFile = self.Write("bad.bin", b"\x01" * 64)
        self.assertIn("is itself not in order: ", self.Bad(DAMAGED, "recover", "psu1", "--from", pathFile))
        self.assertIn("no stored image is named in its record", self.Bad(DAMAGED, "recover", "psu1", "--from", "stored"))
        self.assertEqual(pathPsu1.read_bytes(), abDamaged)

    def test_an_erased_device_comes_back(self):
        abBefore = self.Eeprom(PSU1_EEPROM).read_bytes()
        self.Good("clear", "psu1", "--yes")
        self.assertIn("is damaged: byte 0x0000  common header: erased", self.Good("recover", "psu1", "-n").strOut)
        self.Good("recover", "psu1")
        self.assertEqual(self.Eeprom(PSU1_EEPROM).read_bytes(), abBefore)
        self.Good("verify", "psu1")

    def test_where_only_the_cached_image_differs_the_eeprom_is_right(self):
        pathPsu1 = self.Eeprom(PSU1_EEPROM)
        pathPsu1.write_bytes(HexImage(EXAMPLES / "psu2.hex").ljust(256, b"\xff"))  # as another programmer leaves it
        self.assertEqual(self.Fructl("verify", "psu1").iCode, 1)
        abEeprom = pathPsu1.read_bytes()
        dictDone = self.Json("recover", "psu1")
        self.assertEqual((dictDone["from"], dictDone["text"]), ("eeprom", "was damaged and is restored from the EEPROM"))
        self.assertIn("its cached image differs from the EEPROM from byte 0x", dictDone["damage"])
        self.assertEqual(pathPsu1.read_bytes(), abEeprom)
        self.Good("verify", "psu1")
        self.assertEqual(self.Json("show", "psu1", "--source", "cache")["product"], self.Json("show", "psu1")["product"])

    def test_a_device_that_lives_in_the_cache_is_restored_there(self):
        pathFile = self.Write("one.json", json.dumps({"devices": [{
            "id": 7, "name": "dev", "componentType": 0x20, "instance": 0, "size": 256, "databaseOnly": True,
            "image": str(EXAMPLES / "psu1.hex")}]}).encode())
        self.Good("provision", pathFile, "--force")
        self.Good("write", "dev", EXAMPLES / "psu2.hex")
        dictProduct = self.Json("show", "dev")["product"]
        self.Fructl("write", "dev", self.Write("zero.bin", bytes(256)), "--force")
        self.assertEqual(self.Fructl("verify", "dev").iCode, 1)
        self.assertEqual(self.Json("recover", "dev")["from"], "history")
        self.assertEqual(self.Json("show", "dev")["product"], dictProduct)

    def test_only_devices_are_recovered(self):
        self.assertIn("no device named", self.Bad(NOT_FOUND, "recover", str(EXAMPLES / "psu1.hex")))


if __name__ == "__main__":
    unittest.main()
