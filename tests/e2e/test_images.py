# SPDX-License-Identifier: Apache-2.0
"""fructl read and fructl write: whole images off a device and onto it; and labels on an erased device."""
import subprocess
import unittest

from support import BASEBOARD_EEPROM, COMMAND, EXAMPLES, Environment, FructlTest, HexImage

PSU1_EEPROM = "bus2-addr0xa4-switch1.bin"
REFUSED, NOT_FOUND, NO_ANSWER, DAMAGED = 3, 4, 5, 6


class Images(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()
        self.pathPsu1 = self.Eeprom(PSU1_EEPROM)

    def Raw(self, *asArguments, abInput=b""):
        return subprocess.run([*COMMAND, "--root", str(self.pathRoot), *map(str, asArguments)], input=abInput, capture_output=True, check=False,
                              env=Environment())

    def Cached(self, strDevice):
        pathOut = self.pathTemp / f"cached-{strDevice}.bin"
        self.Good("read", strDevice, "--source", "cache", "-o", pathOut, "--force")
        return pathOut.read_bytes()


class Read(Images):
    def test_every_byte_of_the_eeprom_into_a_file(self):
        pathOut = self.pathTemp / "psu1.bin"
        self.assertEqual(self.Good("read", "psu1", "-o", pathOut).strOut, f"{pathOut}: 256 bytes from the EEPROM of psu1 (0x03:0)\n")
        self.assertEqual(pathOut.read_bytes(), self.pathPsu1.read_bytes())
        pathHex = self.pathTemp / "psu1.hex"
        dictRead = self.Json("read", "--id", "1", "-o", pathHex)
        self.assertEqual((dictRead["device"]["name"], dictRead["source"], dictRead["size"], dictRead["sound"]), ("psu1", "EEPROM", 256, True))
        self.assertEqual(HexImage(pathHex), pathOut.read_bytes())

    def test_only_the_frus_own_part_of_a_shared_chip(self):
        pathOut = self.pathTemp / "card.bin"
        self.Good("read", "bmc-card", "-o", pathOut)
        self.assertEqual(pathOut.read_bytes(), self.Eeprom("bus4-addr0xae.bin").read_bytes()[256:256 + 1024])

    def test_standard_output_has_the_bytes_and_nothing_else(self):
        stProcess = self.Raw("read", "psu1", "-o", "-")
        self.assertEqual((stProcess.returncode, stProcess.stderr), (0, b""))
        self.assertEqual(stProcess.stdout, self.pathPsu1.read_bytes())
        self.assertIn("both want standard output", self.Bad(2, "--json", "read", "psu1", "-o", "-"))

    def test_a_file_that_is_there_stays_without_force(self):
        pathOut = self.Write("mine", b"mine")
        self.assertEqual(self.Bad(REFUSED, "read", "psu1", "-o", pathOut), f"{pathOut} is there already; --force replaces it")
        self.assertEqual(pathOut.read_bytes(), b"mine")
        self.assertIn("is no file", self.Bad(REFUSED, "read", "psu1", "-o", self.pathTemp, "--force"))
        self.Good("read", "psu1", "-o", pathOut, "--force")
        self.assertEqual(pathOut.read_bytes(), self.pathPsu1.read_bytes())

    def test_a_damaged_image_is_read_and_told(self):
        self.Damage(self.pathPsu1, 0x30, b"\x7f")
        stResult = self.Fructl("read", "psu1", "-o", self.pathTemp / "out.bin")
        self.assertEqual(stResult.iCode, 0)
        self.assertRegex(stResult.strErr, r"^fructl: warning: psu1 \(0x03:0\): the image is not in order: byte 0x[0-9a-f]+  board info area: checksum")
        self.assertEqual((self.pathTemp / "out.bin").read_bytes(), self.pathPsu1.read_bytes())

    def test_a_chip_that_does_not_answer_is_an_error_and_no_file(self):
        self.pathPsu1.unlink()
        self.assertIn("does not answer", self.Bad(NO_ANSWER, "read", "psu1", "-o", self.pathTemp / "out.bin"))
        self.assertFalse((self.pathTemp / "out.bin").exists())
        self.Good("read", "psu1", "-o", self.pathTemp / "out.bin", "--source", "cache")


class Write(Images):
    def test_what_was_read_comes_back_exactly(self):
        abBefore = self.pathPsu1.read_bytes()
        abCached = self.Cached("psu1")
        self.Good("read", "psu1", "-o", self.pathTemp / "psu1.bin")
        self.Good("label", "set", "psu1", "Product Asset Tag", "CHANGED")
        strOut = self.Good("write", "psu1", self.pathTemp / "psu1.bin").strOut
        self.assertIn("Set FRU successfully, Device ID: 1.", strOut)
        self.assertIn("    - CHANGED\n", strOut)
        self.assertEqual((self.pathPsu1.read_bytes(), self.Cached("psu1")), (abBefore, abBefore))
        self.assertEqual(len(abCached), 256)
        self.Good("verify", "psu1")
        self.assertEqual(self.Json("history", "psu1")["images"][-1]["image"], "good")
        self.assertEqual(self.Lines("var/log/operate.jsonl")[-1]["text"], "Set FRU successfully, Device ID: 1.")

    def test_a_dry_run_shows_fields_and_bytes_and_writes_nothing(self):
        dictBefore = self.Tree()
        dictPlan = self.Json("write", "psu1", EXAMPLES / "psu2.hex", "-n")
        self.assertEqual((dictPlan["dryRun"], dictPlan["unchanged"], dictPlan["sound"]), (True, False, True))
        self.assertEqual([(st["area"], st["field"]) for st in dictPlan["fields"] if st["old"] != st["new"]],
                         [(st["area"], st["field"]) for st in dictPlan["fields"]])
        abOld = bytearray(self.pathPsu1.read_bytes())
        for dictRun in dictPlan["bytes"]:
            abRun = bytes.fromhex(dictRun["old"])
            self.assertEqual(bytes(abOld[dictRun["offset"]:dictRun["offset"] + len(abRun)]), abRun)
            abOld[dictRun["offset"]:dictRun["offset"] + len(abRun)] = bytes.fromhex(dictRun["new"])
        self.assertEqual(bytes(abOld), HexImage(EXAMPLES / "psu2.hex").ljust(256, b"\xff"))
        self.assertIn("nothing was written; this would be", self.Good("write", "psu1", EXAMPLES / "psu2.hex", "--dry-run").strOut)
        self.assertEqual(self.Tree(), dictBefore)

    def test_a_short_image_leaves_nothing_of_the_old_one(self):
        abImage = HexImage(EXAMPLES / "psu2.hex")
        self.pathPsu1.write_bytes(bytes(256))
        stProcess = self.Raw("write", "psu1", "-", abInput=abImage)
        self.assertEqual((stProcess.returncode, stProcess.stderr), (0, b""), stProcess.stdout)
        self.assertIn(f"the image has {len(abImage)} of the FRU's 256 bytes; the rest will be 0xff", stProcess.stdout.decode())
        self.assertEqual(self.pathPsu1.read_bytes(), abImage.ljust(256, b"\xff"))
        self.assertEqual(self.Cached("psu1"), abImage.ljust(256, b"\xff"))

    def test_the_same_bytes_are_not_written_again(self):
        self.Good("read", "psu1", "-o", self.pathTemp / "psu1.bin")
        dictBefore = self.Tree()
        self.assertEqual(self.Good("write", "psu1", self.pathTemp / "psu1.bin").strOut,
                         "psu1 (0x03:0) is unchanged: it holds this image already; nothing was written\n")
        self.assertTrue(self.Json("write", "psu1", self.pathTemp / "psu1.bin")["unchanged"])
        dictAfter = self.Tree()
        for strLock in [str(self.pathRoot / "var/lock"), *[str(path) for path in (self.pathRoot / "var/lock").iterdir()]]:
            dictBefore.pop(strLock, None)
            dictAfter.pop(strLock, None)
        dictBefore.pop(str(self.pathRoot / "var"), None)
        dictAfter.pop(str(self.pathRoot / "var"), None)
        self.assertEqual(dictAfter, dictBefore)

    def test_an_image_that_does_not_verify_needs_force(self):
        abImage = bytearray(HexImage(EXAMPLES / "psu2.hex"))
        abImage[7] ^= 1
        pathBad = self.Write("bad.bin", abImage)
        abBefore = self.pathPsu1.read_bytes()
        self.assertIn("refused, for the image is not in order: byte 0x0007  common header: checksum", self.Bad(DAMAGED, "write", "psu1", pathBad))
        self.assertEqual(self.pathPsu1.read_bytes(), abBefore)
        stResult = self.Fructl("write", "psu1", pathBad, "--force")
        self.assertEqual(stResult.iCode, 0)
        self.assertIn("warning: the image is not in order", stResult.strErr)
        self.assertEqual(self.pathPsu1.read_bytes(), bytes(abImage).ljust(256, b"\xff"))

    def test_what_does_not_fit_is_refused(self):
        for abImage in (b"", bytes(257)):
            self.assertEqual(self.Bad(REFUSED, "write", "psu1", self.Write("size.bin", abImage), "--force"),
                             f"the image has {len(abImage)} bytes, and psu1 (0x03:0) takes 1 to 256 (a shorter one is filled with 0xff)")
        self.assertEqual(self.Fructl("write", "psu1").iCode, 2)
        self.assertEqual(self.Fructl("write", "--id", "1", "psu1", EXAMPLES / "psu1.hex").iCode, 2)

    def test_the_main_frus_serial_number_files_follow(self):
        self.Good("read", "baseboard", "-o", self.pathTemp / "board.bin")
        strSerial = self.Json("show", "baseboard")["product"]["serialNumber"]
        self.Good("label", "set", "baseboard", "Product Serial Number", "OTHER-1")
        self.Good("write", "baseboard", self.pathTemp / "board.bin")
        for strFile in ("mnt/sdmmc0p4/board/ProductSerialNumber", "var/network/ProductSerialNumber"):
            self.assertEqual((self.pathRoot / strFile).read_text(), strSerial)

    def test_a_hardware_block_has_no_cached_image_and_gets_none(self):
        self.Good("read", "bmc-card-hw", "-o", self.pathTemp / "block.bin")
        self.Good("hw", "set", "bmc-card-hw", "--pcb", "9")
        self.Good("write", "bmc-card-hw", self.pathTemp / "block.bin")
        self.assertEqual(self.Eeprom("bus4-addr0xae.bin").read_bytes()[:32], (self.pathTemp / "block.bin").read_bytes())
        self.assertEqual(self.Fructl("read", "bmc-card-hw", "--source", "cache", "-o", self.pathTemp / "none").iCode, NOT_FOUND)

    def test_a_write_protected_chip_keeps_the_old_image_and_says_so(self):
        abBefore = self.pathPsu1.read_bytes()
        self.pathPsu1.chmod(0o444)
        self.assertIn("write-protected", self.Bad(NO_ANSWER, "write", "psu1", EXAMPLES / "psu2.hex"))
        self.assertEqual(self.pathPsu1.read_bytes(), abBefore)
        self.assertEqual(self.Lines("var/log/operate.jsonl")[-1]["text"], "Failed to set FRU, Device ID: 1.")
        self.Good("verify", "psu1")


class Erased(Images):
    def test_a_label_is_written_after_clear_without_a_recipe(self):
        for strDevice, strLabel in [("psu1", "Product Asset Tag"), ("baseboard", "Chassis Serial Number"), ("bmc-card", "Board Serial Number")]:
            self.Good("clear", strDevice, "--yes")
            strDry = self.Good("label", "set", strDevice, strLabel, "NEW-1", "--dry-run").strOut
            self.assertIn("is erased: an empty image with", strDry)
            strOut = self.Good("label", "set", strDevice, strLabel, "NEW-1").strOut
            self.assertEqual(strOut.count("is erased: an empty image with"), 1)
            self.assertEqual(self.Good("label", "get", strDevice, strLabel).strOut, "NEW-1\n")
            self.Good("verify", strDevice)
            self.assertEqual(self.Json("list")["devices"][self.iDevices[strDevice]]["cache"], "same")

    iDevices = {"baseboard": 0, "psu1": 1, "bmc-card": 4}

    def test_several_labels_after_clear_are_one_write(self):
        self.Good("clear", "baseboard", "--yes")
        self.Good("label", "set", "baseboard", "Product Serial Number=SN-9", "Board Serial Number=BN-9")
        self.assertEqual((self.pathRoot / "mnt/sdmmc0p4/board/ProductSerialNumber").read_text(), "SN-9")
        self.assertEqual([st["image"] for st in self.Json("history", "baseboard")["images"]], ["good", "erased"])
        self.Good("undo", "baseboard", "--to", "1")
        self.Good("verify", "baseboard")

    def test_every_label_that_the_device_takes_can_be_written_then(self):
        self.Good("clear", "baseboard", "--yes")
        for dictLabel in self.Json("label", "list")["labels"]:
            if dictLabel["accepts"].startswith("text") and dictLabel["field"] is not None:
                stResult = self.Fructl("label", "set", "baseboard", dictLabel["name"], "AB" * max(1, dictLabel["minLength"]))
                self.assertIn("" if stResult.iCode == 0 else "does not take the label", stResult.strErr, dictLabel["name"])
        self.Good("verify", "baseboard")

    def test_an_image_is_written_after_clear(self):
        self.Good("clear", "psu1", "--yes")
        self.Good("write", "psu1", EXAMPLES / "psu1.hex")
        self.assertEqual(self.pathPsu1.read_bytes(), HexImage(EXAMPLES / "psu1.hex").ljust(256, b"\xff"))
        self.Good("verify", "psu1")


if __name__ == "__main__":
    unittest.main()
