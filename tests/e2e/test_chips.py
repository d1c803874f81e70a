# SPDX-License-Identifier: Apache-2.0
"""fructl on chips that are no image files: behind the kernel's driver, played by a directory tree."""
import json
import os
import unittest

from support import EXAMPLES, FructlTest, HexImage, Run


class Chips(FructlTest):
    def setUp(self):
        super().setUp()
        self.pathSys = self.pathTemp / "sys"
        os.environ["FRUCTL_SYS"] = str(self.pathSys)
        self.addCleanup(os.environ.pop, "FRUCTL_SYS")
        self.abBaseboard = HexImage(EXAMPLES / "baseboard.hex").ljust(2048, b"\xff")
        self.pathChip = self.Lay(4, 0x50, self.abBaseboard.ljust(8192, b"\xff"))

    def Lay(self, iAdapter, iAddress, abBytes):
        pathChip = self.pathSys / f"bus/i2c/devices/{iAdapter}-{iAddress:04x}/eeprom"
        pathChip.parent.mkdir(parents=True)
        pathChip.write_bytes(abBytes)
        return pathChip

    def Describe(self, **dictMore):
        """A description with the one chip."""
        dictDevice = {"id": 0, "name": "baseboard", "componentType": 0, "instance": 0, "size": 2048, "eepromSize": 8192,
                      "location": {"bus": 4, "address": "0x50", "backend": "kernel"}, **dictMore}
        return self.Write("chip.json", json.dumps({"devices": [dictDevice]}).encode())

    def Serial(self):
        return self.Json("show", "baseboard")["product"]["serialNumber"]


class ProvisionChips(Chips):
    def test_what_a_chip_holds_is_taken_into_the_cache_and_nothing_is_written(self):
        strOut = self.Good("provision", self.Describe()).strOut
        self.assertRegex(strOut, r"\n 0  baseboard +0x00 +0  kernel bus4-addr0x50 +2048  \(the chip's own\) +-\n")
        self.assertEqual(self.pathChip.read_bytes(), self.abBaseboard.ljust(8192, b"\xff"))
        self.assertFalse((self.pathRoot / "eeprom").exists())
        stDevice = self.Json("list")["devices"][0]
        self.assertEqual((stDevice["image"], stDevice["cache"]), ("sound", "same"))

    def test_an_image_is_written_to_a_real_chip_when_asked_for_only(self):
        pathFile = self.Describe(image=str(EXAMPLES / "riser.hex"))
        strOut = self.Good("provision", pathFile).strOut
        self.assertIn("Real chips that hold something else than their images here, and keep it: baseboard (--write-images writes them)\n", strOut)
        self.assertEqual(self.pathChip.read_bytes()[:2048], self.abBaseboard)
        stJson = self.Json("provision", pathFile, "--force", "--write-images")
        self.assertEqual((stJson["chipsWritten"], stJson["chipsKept"]), (["baseboard"], []))
        self.assertEqual(stJson["devices"][0]["backend"], "kernel")
        abRiser = HexImage(EXAMPLES / "riser.hex").ljust(2048, b"\xff")
        self.assertEqual(self.pathChip.read_bytes(), abRiser.ljust(8192, b"\xff"))
        self.assertEqual(self.Json("list")["devices"][0]["cache"], "same")
        # What the chip held before is not lost.
        self.Good("undo", "baseboard")
        self.assertEqual(self.pathChip.read_bytes()[:2048], self.abBaseboard)

    def test_an_image_that_is_not_in_order_is_not_written_to_a_real_chip(self):
        abBad = bytearray(self.abBaseboard)
        abBad[7] ^= 1
        self.Write("bad.bin", bytes(abBad))
        strErr = self.Bad(6, "provision", self.Describe(image="bad.bin"), "--write-images")
        self.assertIn("the image bad.bin is not in order, and the chip of baseboard is a real one", strErr)
        self.assertFalse(self.pathRoot.exists())

    def test_a_chip_that_does_not_answer_is_told_before_anything_is_made(self):
        self.pathChip.unlink()
        strErr = self.Bad(5, "provision", self.Describe())
        self.assertIn("the chip of baseboard cannot be read (the library says: EEPROM bus4-addr0x50 (bus 4, address 0x50): there is no bus 4", strErr)
        self.assertIn("\"cached\": false", strErr)
        self.Good("provision", self.Describe(cached=False))

    def test_a_chip_without_its_size_is_refused(self):
        dictDescription = json.loads(self.Describe().read_text())
        del dictDescription["devices"][0]["eepromSize"]
        pathFile = self.Write("chip.json", json.dumps(dictDescription).encode())
        self.assertIn("devices[0].eepromSize: missing; a chip that is no image file has to say how many bytes it has", self.Bad(3, "provision", pathFile))

    def test_a_dry_run_reads_and_writes_nothing(self):
        self.Good("provision", self.Describe(image=str(EXAMPLES / "riser.hex")), "--write-images", "--dry-run")
        self.assertEqual(self.pathChip.read_bytes()[:2048], self.abBaseboard)
        self.assertFalse(self.pathRoot.exists())

    def test_the_example_for_a_board(self):
        self.Lay(20, 0x52, b"\xff" * 256)
        strOut = self.Good("provision", EXAMPLES / "board.json").strOut
        self.assertIn("i2c bus6-addr0xa2", strOut)
        self.assertEqual([stDevice["image"] for stDevice in self.Json("list")["devices"]], ["sound", "erased", "unreadable"])


class EditChips(Chips):
    def setUp(self):
        super().setUp()
        self.Good("provision", self.Describe())

    def test_labels_are_set_undone_and_kept(self):
        strBefore = self.Serial()
        self.Good("label", "set", "baseboard", "Product Serial Number=CHIP-0001")
        self.assertEqual(self.Serial(), "CHIP-0001")
        self.assertIn(b"CHIP-0001", self.pathChip.read_bytes())
        self.Good("undo", "baseboard")
        self.assertEqual(self.Serial(), strBefore)
        self.assertEqual(self.pathChip.read_bytes()[:2048], self.abBaseboard)

    def test_a_damaged_chip_is_recovered_from_its_cached_image(self):
        self.Damage(self.pathChip, 0, b"\0" * 64)
        self.Good("recover", "baseboard", "--from", "cache")
        self.assertEqual(self.pathChip.read_bytes()[:2048], self.abBaseboard)

    def test_a_write_protected_chip_keeps_its_bytes_and_is_told_with_bus_and_address(self):
        self.pathChip.chmod(0o444)
        stResult = self.Fructl("label", "set", "baseboard", "Product Serial Number=CHIP-0001")
        self.assertNotEqual(stResult.iCode, 0)
        self.assertIn("bus 4, address 0x50", stResult.strErr)
        self.assertIn("write-protected", stResult.strErr)
        self.assertEqual(self.pathChip.read_bytes()[:2048], self.abBaseboard)
        self.assertEqual(self.Good("journal", "list").strOut.count("label set"), 0)


class Scan(Chips):
    def setUp(self):
        super().setUp()
        (self.pathChip.parent / "name").write_text("24c64\n")
        pathBus = self.pathSys / "bus/i2c/devices/i2c-4"
        pathBus.mkdir()
        (pathBus / "name").write_text("1e78a200.i2c-bus\n")
        (self.pathSys / "bus/nvmem/devices/4-00500").mkdir(parents=True)

    def Scanned(self):
        return self.Json("scan")["chips"]

    def test_chips_are_told_with_bus_address_size_and_image(self):
        self.assertEqual(self.Scanned(), [
            {"bus": 4, "address": 0x50, "busName": "1e78a200.i2c-bus", "kind": "24c64", "driver": "", "nvmem": "4-00500", "size": 8192,
             "erased": False, "problem": "",
             "images": [{"offset": 0, "size": self.Scanned()[0]["images"][0]["size"], "says": self.Says(), "sound": True, "problem": ""}]}])
        iEnd = self.Scanned()[0]["images"][0]["size"]
        self.assertEqual(self.abBaseboard[iEnd:], b"\xff" * (2048 - iEnd))
        self.assertNotEqual(self.abBaseboard[iEnd - 1:iEnd], b"")
        self.assertRegex(self.Good("scan").strOut, r"\n +4  0x50 +24c64  4-00500 +8192 +0x0  sound +\S")

    def Says(self):
        stProduct = Run("--json", "show", EXAMPLES / "baseboard.hex").Json()["product"]
        return ", ".join(stProduct[strName] for strName in ("manufacturer", "productName", "serialNumber") if stProduct[strName])

    def test_images_at_usual_offsets_are_found(self):
        abRiser = HexImage(EXAMPLES / "riser.hex")
        self.pathChip.write_bytes((b"\x00" * 256 + abRiser).ljust(1024, b"\xff") + self.abBaseboard.ljust(7168, b"\xff"))
        self.assertEqual([(stImage["offset"], stImage["sound"]) for stImage in self.Scanned()[0]["images"]], [(0x100, True), (0x400, True)])

    def test_a_damaged_image_is_told_with_what_is_wrong(self):
        self.Damage(self.pathChip, 60, b"\x00\x00\x00\x00")
        stImage = self.Scanned()[0]["images"][0]
        self.assertFalse(stImage["sound"])
        self.assertTrue(stImage["problem"].startswith("byte 0x"), stImage)
        self.assertIn("damaged", self.Good("scan").strOut)

    def test_erased_chips_and_others_are_told_apart(self):
        self.pathChip.write_bytes(b"\xff" * 8192)
        self.Lay(4, 0x51, b"MAC 00:11".ljust(256, b"\0"))
        self.assertEqual([(stChip["erased"], stChip["images"]) for stChip in self.Scanned()], [(True, []), (False, [])])
        self.assertRegex(self.Good("scan").strOut, r"erased.*\n.*no image")

    def test_a_machine_without_chips_says_so(self):
        os.environ["FRUCTL_SYS"] = str(self.pathTemp / "nothing")
        self.assertEqual(self.Scanned(), [])
        self.assertIn("knows no EEPROM", self.Good("scan").strOut)
        self.assertIn("there is nothing to describe", self.Bad(4, "scan", "--describe"))

    def test_what_is_described_is_what_provision_takes(self):
        pathMux = self.pathSys / "bus/i2c/devices/i2c-20"
        pathMux.mkdir(parents=True)
        (pathMux / "name").write_text("i2c-5-mux (chan_id 1)\n")
        self.Lay(20, 0x52, HexImage(EXAMPLES / "psu1.hex").ljust(256, b"\xff"))
        self.Lay(6, 0x51, b"\xff" * 256)
        self.Lay(6, 0x53, b"something else".ljust(256, b"\0"))
        strDescription = self.Good("scan", "--describe").strOut
        listDevices = json.loads(strDescription)["devices"]
        self.assertEqual([stDevice["name"] for stDevice in listDevices], ["baseboard", "fru1", "fru2"])
        self.assertEqual(listDevices[2]["location"], {"bus": 5, "address": "0x52", "switchLevel": 2, "backend": "kernel", "adapter": 20})
        self.Good("provision", self.Write("described.json", strDescription.encode()))
        self.assertEqual([stDevice["image"] for stDevice in self.Json("list")["devices"]], ["sound", "erased", "sound"])
        self.Good("label", "set", "fru2", "Product Serial Number=PSU-0001")
        self.assertIn(b"PSU-0001", (self.pathSys / "bus/i2c/devices/20-0052/eeprom").read_bytes())

    def test_probing_warns_first_and_needs_a_bus(self):
        os.environ["FRUCTL_DEV"] = str(self.pathTemp)
        self.addCleanup(os.environ.pop, "FRUCTL_DEV")
        stResult = self.Fructl("scan", "--probe", "3")
        self.assertEqual(stResult.iCode, 5, stResult.strErr)
        listLines = stResult.strErr.splitlines()
        self.assertIn("bus 3 is asked at the addresses 0x50 to 0x57", listLines[0])
        self.assertIn(f"bus 3 cannot be asked: {self.pathTemp}/i2c-3: No such file or directory", listLines[1])
        self.assertIn("--probe x is no bus; accepted: the N of /dev/i2c-N", self.Bad(2, "scan", "--probe", "x"))
        self.assertIn("exclude each other", self.Bad(2, "scan", "--probe", "3", "--describe"))


if __name__ == "__main__":
    unittest.main()
