# SPDX-License-Identifier: Apache-2.0
"""What is shown is what is there: EEPROM or cache, told which, and a file is never taken for a device."""
import json
import shutil
import unittest

from support import EXAMPLES, FructlTest, Run

PSU1_EEPROM = "bus2-addr0xa4-switch1.bin"
DAMAGED = 6
NOT_FOUND = 4
NO_ANSWER = 5
DIFFER = ("the EEPROM of psu1 (0x03:0) and its cached image differ from byte 0x{:04x} on (0x{:02x} in the EEPROM, 0x{:02x} cached); "
          "--source eeprom and --source cache show the one and the other")


class Sources(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()
        self.abOld = self.Eeprom(PSU1_EEPROM).read_bytes()

    def Exchange(self, strSerial):
        """Another, whole image in the chip of psu1; others are still served the old one."""
        dictRecord = self.Json("show", EXAMPLES / "psu1.hex")
        dictRecord["product"]["serialNumber"] = strSerial
        self.Write("other.json", json.dumps(dictRecord).encode())
        self.Good("encode", self.pathTemp / "other.json", "-o", self.pathTemp / "other.bin", "--size", "256")
        shutil.copy(self.pathTemp / "other.bin", self.Eeprom(PSU1_EEPROM))
        abNew = self.Eeprom(PSU1_EEPROM).read_bytes()
        iAt = next(i for i in range(256) if abNew[i] != self.abOld[i])
        return DIFFER.format(iAt, abNew[iAt], self.abOld[iAt])

    def Shown(self, strLine, *asArguments):
        """The object and the output of a command that shows all and ends with this line."""
        stPlain = self.Fructl(*asArguments)
        self.assertEqual((stPlain.iCode, stPlain.strErr), (DAMAGED, f"fructl: {strLine}\n"))
        stJson = self.Fructl("--json", *asArguments)
        dictJson = stJson.Json()
        self.assertEqual((stJson.iCode, dictJson["sourcesDiffer"], dictJson["error"]["code"], dictJson["error"]["message"]), (DAMAGED, True, "damaged", strLine))
        return dictJson, stPlain.strOut

    def test_where_both_are_the_same_nothing_is_told(self):
        for strSource, strHeading in [("eeprom", "256 bytes at 0x0000 of the EEPROM on bus 2"), ("cache", "cached image of 256 bytes")]:
            self.assertIn(strHeading, self.Good("show", "psu1", "--source", strSource).strOut.splitlines()[0])
            dictJson = self.Json("show", "psu1", "--source", strSource)
            self.assertEqual((dictJson["source"].lower(), dictJson["sourcesDiffer"]), (strSource, False))
        self.assertEqual(self.Json("show", "psu1")["source"], "EEPROM")

    def test_the_eeproms_own_image_is_shown_and_the_difference_told(self):
        strLine = self.Exchange("PS8099999999")
        for asSource, strSource, strSerial in [([], "EEPROM", "PS8099999999"), (["--source", "eeprom"], "EEPROM", "PS8099999999"),
                                               (["--source", "cache"], "cache", "PS8024100311")]:
            dictJson, strOut = self.Shown(strLine, "show", "psu1", *asSource)
            self.assertEqual((dictJson["source"], dictJson["product"]["serialNumber"]), (strSource, strSerial))
            self.assertIn(strSerial, strOut)
            dictJson, strOut = self.Shown(strLine, "label", "get", "psu1", "Product Serial Number", *asSource)
            self.assertEqual((dictJson["source"], dictJson["value"], strOut), (strSource, strSerial, strSerial + "\n"))
            dictJson, strOut = self.Shown(strLine, "label", "list", "psu1", *asSource)
            self.assertEqual(dictJson["source"], strSource)
            self.assertIn(strSerial, strOut)
            self.assertEqual(strOut.startswith("psu1 (0x03:0), cached image\n"), strSource == "cache")
            for asCommand in (["fields", "psu1"], ["mr", "list", "psu1"]):
                self.assertEqual(self.Shown(strLine, *asCommand, *asSource)[0]["source"], strSource)

    def test_an_erased_chip_is_told_and_the_cache_shown_when_asked_for(self):
        self.Eeprom(PSU1_EEPROM).write_bytes(b"\xff" * 256)
        for asCommand in (["show", "psu1"], ["label", "get", "psu1", "Product Version"], ["fields", "psu1"], ["mr", "list", "psu1"]):
            self.assertIn("every byte is 0xff, as of an erased chip; --source cache shows the cached image", self.Bad(DAMAGED, *asCommand))
        stResult = self.Fructl("show", "psu1", "--source", "cache")
        self.assertIn("PS8024100311", stResult.strOut)
        self.assertEqual((stResult.iCode, stResult.strErr), (DAMAGED, "fructl: " + DIFFER.format(0, 0xFF, 1) + "\n"))

    def test_a_damaged_chip_is_told(self):
        self.Damage(self.Eeprom(PSU1_EEPROM), 7, b"\x00")
        self.assertIn("'fructl verify' tells all, 'show --lenient' what is left; --source cache shows the cached image", self.Bad(DAMAGED, "show", "psu1"))

    def test_a_chip_that_does_not_answer_is_told_and_the_cache_shown_when_asked_for(self):
        (self.pathRoot / "eeprom" / PSU1_EEPROM.replace(".bin", ".fault")).write_text("absent")
        strLine = self.Bad(NO_ANSWER, "show", "psu1")
        self.assertTrue(strLine.startswith("the EEPROM of psu1 (0x03:0) does not answer"), strLine)
        self.assertTrue(strLine.endswith("; --source cache shows the cached image"), strLine)
        self.assertIn("PS8024100311", self.Good("show", "psu1", "--source", "cache").strOut)

    def test_the_bytes_of_either_are_shown(self):
        self.Exchange("PS8099999999")
        for asSource, strSource, abBytes in [([], "EEPROM", self.Eeprom(PSU1_EEPROM).read_bytes()), (["--source", "cache"], "cache", self.abOld)]:
            dictJson = self.Json("map", "psu1", *asSource)
            self.assertEqual((dictJson["source"], "".join(stSpan["bytes"] for stSpan in dictJson["spans"]).replace(" ", "")[:160]), (strSource, abBytes.hex()[:160]))
            self.assertIn(f"psu1 (0x03:0)  {strSource}, 256 bytes\n", self.Good("map", "psu1", *asSource).strOut)

    def test_a_file_has_one_image(self):
        self.assertIn("is a file", self.Bad(2, "show", EXAMPLES / "psu1.hex", "--source", "cache"))
        self.assertIn("eeprom", self.Bad(2, "show", "psu1", "--source", "stored"))


class Names(FructlTest):
    """A file called psu1 in the current directory, and another."""

    def setUp(self):
        super().setUp()
        self.Provision()
        self.Good("encode", self.Write("own.json", b'{"board": {"manufacturer": "own"}}'), "-o", self.pathTemp / "psu1")
        shutil.copy(self.pathTemp / "psu1", self.pathTemp / "dump.bin")

    def Here(self, *asArguments):
        return Run("--root", self.pathRoot, "--json", *asArguments, strCwd=self.pathTemp)

    def test_a_devices_name_or_number_wins_over_a_file(self):
        (self.pathTemp / "3:0").write_bytes(b"")
        for strTarget in ("psu1", "3:0", "0x03:0"):
            self.assertEqual(self.Here("show", strTarget).Json()["board"]["manufacturer"], "Lindenhain Power", strTarget)
        for asFile in (["./psu1"], [str(self.pathTemp / "psu1")], ["--file", "psu1"]):
            self.assertEqual(self.Here("show", *asFile).Json()["board"]["manufacturer"], "own", asFile)

    def test_a_good_file_does_not_make_a_broken_chip_good(self):
        self.Damage(self.Eeprom(PSU1_EEPROM), 7, b"\x00")
        self.assertEqual(self.Here("verify", "psu1").iCode, 1)
        self.assertEqual(self.Here("verify", "./psu1").iCode, 0)
        self.assertEqual(self.Here("verify", "--file", "psu1", "--file", "dump.bin").iCode, 0)

    def test_a_word_that_is_no_device_but_a_file_is_an_error_that_tells_the_way(self):
        for asCommand in (["show"], ["verify"], ["map"], ["fields"], ["mr", "list"], ["hw", "show"]):
            stResult = self.Here(*asCommand, "dump.bin")
            self.assertEqual(stResult.iCode, NOT_FOUND, asCommand)
            self.assertIn("; for the file of that name say ./dump.bin or --file dump.bin\n", stResult.strErr)
        stResult = self.Here("diff", "psu1", "dump.bin")
        self.assertEqual((stResult.iCode, stResult.Json()["error"]["code"]), (2, "not-found"))
        stResult = Run("--root", self.pathTemp / "none", "show", "dump.bin", strCwd=self.pathTemp)
        self.assertEqual(stResult.iCode, NOT_FOUND)
        self.assertIn("say ./dump.bin or --file dump.bin\n", stResult.strErr)

    def test_two_sides_by_path_or_by_option(self):
        for asSides in (["./psu1", "./dump.bin"], ["--file", "psu1", "--file", "dump.bin"], ["./psu1", "--file", "dump.bin"]):
            self.assertTrue(self.Here("diff", *asSides).Json()["sameBytes"], asSides)
        self.assertIn("there must be two images, and 1 image is named", self.Here("diff", "psu1").strErr)

    def test_a_file_is_named_once(self):
        self.assertIn("named twice, by --file and without", self.Here("show", "psu1", "--file", "dump.bin").strErr)
        self.assertIn("there is no image file none.bin", self.Here("show", "--file", "none.bin").strErr)


if __name__ == "__main__":
    unittest.main()
