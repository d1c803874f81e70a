# SPDX-License-Identifier: Apache-2.0
"""Damaged images: shown leniently, their checksums mended, found within dumps; and a server's identity moved to a new board."""
import unittest

from support import CORPUS_IMAGES, NO_CORPUS, FructlTest, Run

USAGE, REFUSED, DAMAGED = 2, 3, 6


class MendTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()
        self.pathDump = self.pathTemp / "dump.bin"
        self.Good("read", "baseboard", "-o", self.pathDump)
        self.abSound = self.pathDump.read_bytes()

    def Put(self, abImage):
        self.pathDump.write_bytes(abImage)

    def Wrong(self, *aiBytes):
        abImage = bytearray(self.abSound)
        for iByte in aiBytes:
            abImage[iByte] ^= 0x01
        self.Put(abImage)
        return bytes(abImage)

    def test_a_sound_image_is_good_throughout(self):
        dictShown = self.Json("show", "--lenient", self.pathDump)
        self.assertEqual((dictShown["doubtful"], dictShown["remarks"]), (0, []))
        self.assertGreater(dictShown["good"], 20)
        self.assertIn("board.serialNumber", [st["name"] for stArea in dictShown["areas"] for st in stArea["fields"]])

    def test_a_damaged_area_is_doubtful_and_the_others_good(self):
        self.Wrong(self.abSound[3] * 8 + 8)
        self.Bad(DAMAGED, "show", self.pathDump)
        dictShown = self.Json("show", "--lenient", self.pathDump)
        for stArea in dictShown["areas"]:
            for stField in stArea["fields"]:
                self.assertEqual(stField["good"], stArea["area"] != "board", stField)
        self.assertIn("doubtful", self.Good("show", "--lenient", self.pathDump).strOut)

    def test_checksums_are_mended_and_nothing_else(self):
        iBoard = self.abSound[3] * 8
        iEnd = iBoard + self.abSound[iBoard + 1] * 8 - 1
        self.Wrong(7, iEnd)
        strDry = self.Good("repair", self.pathDump, "-n").strOut
        self.assertIn("2 bytes would change", strDry)
        dictDone = self.Json("repair", self.pathDump)
        self.assertEqual((dictDone["mended"], dictDone["left"]), (["common header", "board info area"], []))
        self.assertEqual(self.pathDump.read_bytes(), self.abSound)
        self.assertIn("unchanged", self.Good("repair", self.pathDump).strOut)

    def test_a_device_is_repaired_logged_and_undone(self):
        self.Damage(self.Eeprom("bus1-addr0xae.bin") if self.Eeprom("bus1-addr0xae.bin").exists() else self.Chip(), 7, b"\x00")
        self.assertIn("Set baseboard FRU successfully, baseboard checksums: common header.", self.Good("repair", "baseboard").strOut)
        self.Good("verify", "baseboard")
        self.assertIn("checksums: common header", str(self.Lines("var/log/operate.jsonl")[-1]))
        self.Good("undo", "baseboard")
        self.assertEqual(self.Fructl("verify", "baseboard").iCode, 1)

    def Chip(self):
        """The file that holds the baseboard's image from its first byte on."""
        return next(st for st in self.Eeprom("").iterdir() if st.is_file() and st.read_bytes().startswith(self.abSound[:64]))

    def test_what_no_checksum_explains_is_left(self):
        abImage = bytearray(self.abSound)
        abImage[abImage[3] * 8 + 6] = 0x3F
        abImage[abImage[3] * 8 + 7] ^= 0xFF
        self.Put(abImage)
        strWhy = self.Bad(DAMAGED, "repair", self.pathDump, "-n")
        self.assertIn("board info area", strWhy)

    def test_an_image_within_a_dump_is_found_or_named(self):
        self.Put(b"\xa5" * 0x300 + self.abSound)
        stResult = self.Fructl("--json", "show", self.pathDump)
        self.assertEqual((stResult.iCode, stResult.Json()["offset"]), (0, 0x300))
        self.assertIn("the one found at byte 0x0300 is taken", stResult.strErr)
        self.assertEqual(self.Json("show", self.pathDump, "--offset", "0x300"), stResult.Json())
        self.assertEqual(self.Fructl("map", self.pathDump).iCode, 0)
        stVerify = self.Fructl("verify", self.pathDump)
        self.assertEqual(stVerify.iCode, 1)
        self.assertIn("--offset 0x300 checks it", stVerify.strOut)
        self.Good("verify", self.pathDump, "--offset", "0x300")
        self.assertIn("--offset 0xffff lies behind", self.Bad(USAGE, "show", self.pathDump, "--offset", "0xffff"))

    def test_blank_chips_and_memory_modules_are_called_by_their_names(self):
        for abImage, strName in ((bytes(512), "blank: every byte is 0x00"), (b"\xff" * 512, "every byte is 0xff"),
                                 (b"\x23\x11\x0c\x02" + bytes(508), "SPD of a DDR4 memory module"),
                                 (b"\x30\x10\x12\x02" + bytes(508), "SPD of a DDR5 memory module")):
            self.Put(abImage)
            self.assertIn(strName, self.Bad(DAMAGED, "show", self.pathDump))
            self.assertIn(strName, self.Fructl("verify", self.pathDump).strOut)
            self.assertIn(strName, self.Good("map", self.pathDump).strOut)
            self.assertIn(strName, self.Bad(DAMAGED, "repair", self.pathDump))

    def test_a_new_board_takes_the_servers_identity(self):
        pathNew = self.pathTemp / "new.bin"
        pathNew.write_bytes(self.abSound)
        self.Good("edit", self.pathDump, "board.serialNumber=OLD-BOARD", "product.serialNumber=SERVER-1", "chassis.serialNumber=CHASSIS-1")
        dictOld, dictNew = self.Json("show", self.pathDump), self.Json("show", "baseboard")
        dictPlan = self.Json("transplant", self.pathDump, "baseboard", "--dry-run")
        self.assertEqual(dictPlan["moved"][:2], ["chassis info area", "product info area"])
        self.assertEqual(self.Json("show", "baseboard"), dictNew)
        self.Good("transplant", self.pathDump, "baseboard")
        dictNow = self.Json("show", "baseboard")
        for strArea in ("chassis", "product", "board"):
            self.assertEqual(dictNow[strArea], (dictNew if strArea == "board" else dictOld)[strArea])
        self.assertEqual((self.pathRoot / "mnt/sdmmc0p4/board/ProductSerialNumber").read_text(), "SERVER-1")
        self.Good("undo", "baseboard")
        self.assertEqual(self.Json("show", "baseboard"), dictNew)

    @unittest.skipUnless(CORPUS_IMAGES, NO_CORPUS)
    def test_every_real_image_shows_all_of_its_fields(self):
        for pathImage in CORPUS_IMAGES:
            with self.subTest(pathImage.name):
                stResult = Run("--json", "show", "--lenient", pathImage)
                self.assertEqual((stResult.iCode, stResult.strErr), (0, ""))
                stShown = Run("--json", "show", pathImage)
                if stShown.iCode == 0:
                    dictLenient = {st["name"]: st["text"] for stArea in stResult.Json()["areas"] for st in stArea["fields"]}
                    for strArea in ("board", "product"):
                        for strKey in ("manufacturer", "serialNumber"):
                            strText = stShown.Json().get(strArea, {}).get(strKey)
                            if strText:  # where a text holds zero bytes, readers end it at the first
                                self.assertEqual(dictLenient[f"{strArea}.{strKey}"], strText)


if __name__ == "__main__":
    unittest.main()
