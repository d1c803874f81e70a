# SPDX-License-Identifier: Apache-2.0
"""fructl verify: what is wrong, and at which byte."""
import shutil
import unittest

from support import BASEBOARD_EEPROM, EXAMPLES, FructlTest, HexImage, ZeroSum
from test_show import Image, Record

FIVE_EMPTY = b"\xc0" * 5


def Damaged(abImage, iOffset, iByte):
    return abImage[:iOffset] + bytes([iByte]) + abImage[iOffset + 1:]


def Sealed(abImage, iStart, iLength):
    """The image with the zero checksum of the area put right."""
    iEnd = iStart + iLength - 1
    return abImage[:iEnd] + ZeroSum(abImage[iStart:iEnd]) + abImage[iEnd + 1:]


class Verify(FructlTest):
    def Problems(self, abImage):
        """(offset, area, what) of each problem of an image file; verify and the library have to agree that there are some."""
        pathFile = self.Write("image.bin", abImage)
        stResult = self.Fructl("--json", "verify", pathFile)
        stImage = stResult.Json()["images"][0]
        self.assertNotIn("failure", stImage)
        self.assertEqual(stResult.iCode, 0 if stImage["sound"] else 1)
        self.assertEqual(stResult.strErr, "" if stImage["sound"] else "fructl: verify: 1 of 1 image is not in order\n")
        return [(stProblem["offset"], stProblem["area"], stProblem["what"]) for stProblem in stImage["problems"]]

    def test_sound_images_are_told_with_their_areas(self):
        self.Provision()
        self.assertEqual(self.Good("verify").strOut, """\
good   baseboard (0x00:0): header, chassis, board, product, 2 MultiRecords
good   psu1 (0x03:0): header, board, product
good   psu2 (0x03:1): header, board, product
good   riser (0x08:0): header, board
good   bmc-card (0x30:0): header, board, product
good   bmc-card-hw (0x31:0): hardware block
""")
        listExamples = sorted(EXAMPLES.glob("*.hex"))
        strOut = self.Good("verify", "psu1", *listExamples).strOut
        self.assertEqual((strOut.count("good   "), strOut.count("\n")), (len(listExamples) + 1, len(listExamples) + 1))
        stImages = self.Json("verify", "--id", "0")["images"]
        self.assertEqual(stImages, [{"device": {"id": 0, "name": "baseboard", "componentType": 0, "instance": 0}, "source": "EEPROM",
                                     "sound": True, "problems": [], "warnings": []}])

    def test_the_common_header(self):
        abImage = Image(FIVE_EMPTY)
        self.assertEqual(self.Problems(abImage), [])
        self.assertEqual(self.Problems(b"\xff" * 64), [(0, "header", "erased: every byte is 0xff")])
        self.assertEqual(self.Problems(abImage[:7]), [(0, "header", "common header: cut short: 7 of 8 bytes")])
        self.assertEqual(self.Problems(Damaged(abImage, 7, 0)), [(7, "header", "checksum: 0x00 is wrong; the other bytes want 0xfe")])
        abHeader = b"\x02\x00\x00\x01\x00\x00\x00"
        self.assertEqual(self.Problems(abHeader + ZeroSum(abHeader) + abImage[8:]), [(0, "header", "format version: 0x02; only version 1 is known")])
        abHeader = b"\x01\x00\x00\x01\x20\x00\x00"
        self.assertEqual(self.Problems(abHeader + ZeroSum(abHeader) + abImage[8:]),
                         [(4, "header", "product info area: starts at 0x0100, but the image ends at 0x0018")])

    def test_a_pad_byte_is_a_warning(self):
        abHeader = b"\x01\x00\x00\x01\x00\x00\x05"
        pathFile = self.Write("pad.bin", abHeader + ZeroSum(abHeader) + Image(FIVE_EMPTY)[8:])
        self.assertIn("         byte 0x0006  common header: pad: 0x05, should be 0 (a warning only)\n", self.Good("verify", pathFile).strOut)
        stImage = self.Json("verify", pathFile)["images"][0]
        self.assertEqual((stImage["sound"], stImage["warnings"]), (True, [{"offset": 6, "area": "header", "what": "pad: 0x05, should be 0"}]))

    def test_an_info_area(self):
        abImage = Image(b"\xc3abc" + b"\xc0" * 4)
        self.assertEqual(self.Problems(Damaged(abImage, 8, 2)), [(8, "board", "format version: 0x02; only version 1 is known")])
        self.assertEqual(self.Problems(Damaged(abImage, 9, 40)),
                         [(9, "board", "area length: the area ends at 0x0148, the image at 0x0018; an area must end before the image does")])
        self.assertEqual(self.Problems(Damaged(abImage, 23, 0x55)),
                         [(23, "board", f"checksum: 0x55 is wrong; the area's bytes want 0x{abImage[23]:02x}")])
        self.assertEqual(self.Problems(Sealed(Damaged(abImage, 14, 0xFF), 8, 16)),
                         [(14, "board", "manufacturer: 63 bytes long by its length byte 0xff, but the area ends at 0x0018")])
        # Without its end mark the list of fields runs through the fill into the checksum byte.
        abOpen = Sealed(Damaged(abImage, 22, 0x00), 8, 16)
        self.assertEqual([stProblem[1] for stProblem in self.Problems(abOpen)], ["board"])

    def test_an_area_that_ends_with_its_fields_has_no_room_for_the_end_mark(self):
        abArea = b"\x01\x02\x00\x00\x00\x00" + b"\xc0" * 4 + b"\xc4abcd"
        abHeader = b"\x01\x00\x00\x01\x00\x00\x00"
        abArea += ZeroSum(abArea)
        self.assertEqual(len(abArea), 16)
        self.assertEqual([stProblem[:2] for stProblem in self.Problems(abHeader + ZeroSum(abHeader) + abArea)], [(23, "board")])

    def test_an_area_without_length(self):
        self.assertEqual([stProblem[1] for stProblem in self.Problems(Damaged(Image(FIVE_EMPTY), 9, 0))], ["board"])

    def test_a_chassis_type_that_does_not_exist(self):
        abArea = b"\x01\x01\x1e\xc0\xc0\xc1\x00"
        abHeader = b"\x01\x00\x01\x00\x00\x00\x00"
        abImage = abHeader + ZeroSum(abHeader) + abArea + ZeroSum(abArea)
        self.assertEqual(self.Problems(abImage), [(10, "chassis", "chassis type: 0x1e is not a chassis type; known are 0x00 to 0x1d")])
        self.assertEqual(self.Problems(Sealed(Damaged(abImage, 10, 0x1D), 8, 8)), [])

    def test_multirecords(self):
        abGood = Image(FIVE_EMPTY, Record(3, 0x02, b"\x02name") + Record(0xC0, 0x82, b"\x01\x02"))
        iFirst = abGood.index(Record(3, 0x02, b"\x02name"))
        self.assertEqual(self.Problems(abGood), [])
        self.assertEqual(self.Problems(Damaged(abGood, iFirst + 4, 0)),
                         [(iFirst, "multiRecord", f"record 1 header: header checksum 0x00 is wrong; the bytes want 0x{abGood[iFirst + 4]:02x}")])
        self.assertEqual(self.Problems(Damaged(abGood, iFirst + 6, 0x6F)),
                         [(iFirst + 5, "multiRecord", f"record 1 data: the data's checksum is 0x{abGood[iFirst + 3] - 1:02x}, but the header says 0x{abGood[iFirst + 3]:02x}")])
        abEndless = Image(FIVE_EMPTY, Record(3, 0x02, b"\x02name"))
        self.assertEqual([stProblem[1] for stProblem in self.Problems(abEndless)], ["multiRecord"])
        self.assertEqual(self.Problems(Image(FIVE_EMPTY, Record(3, 0x82, b""))),
                         [(iFirst + 2, "multiRecord", "record 1 has no data; readers refuse such a record")])
        abLong = bytearray(Record(3, 0x82, b"\x02name"))
        abLong[2] = 200
        abLong[4] = ZeroSum(abLong[:4])[0]
        self.assertEqual(self.Problems(Image(FIVE_EMPTY, bytes(abLong))),
                         [(iFirst + 5, "multiRecord", f"record 1 data: 200 bytes long, but the image ends at 0x{iFirst + 10:04x}")])
        abMany = Record(0xC0, 0x02, b"\x01") * 64
        self.assertEqual(self.Problems(Image(FIVE_EMPTY, abMany + Record(0xC0, 0x82, b"\x01"))),
                         [(iFirst + 6 * 64, "multiRecord", "64 records and none says that it is the last; no more are read")])

    def test_areas_that_overlap(self):
        abImage = Image(FIVE_EMPTY, Record(3, 0x82, b"\x02name"))
        abHeader = b"\x01\x00\x00\x01\x01\x00\x00"  # the product area's fields are two more than the board area's
        self.assertTrue(any("overlaps the" in stProblem[2] for stProblem in self.Problems(abHeader + ZeroSum(abHeader) + abImage[8:])))

    def test_a_file_ends_inside_a_larger_eeprom_but_a_device_where_its_size_says(self):
        self.Provision()
        pathExample = self.pathTemp / "tight"
        shutil.copytree(EXAMPLES, pathExample)
        strDescription = (EXAMPLES / "controller.json").read_text().replace('"address": "0xa2" }, "size": 256', '"address": "0xa2" }, "size": 80')
        (pathExample / "controller.json").write_text(strDescription)
        self.Good("verify", EXAMPLES / "riser.hex")
        self.Good("provision", pathExample / "controller.json", "--force")
        self.assertEqual(self.Bad(1, "verify", "riser"), "verify: 1 of 1 image is not in order")
        self.assertIn("byte 0x0009  board info area: area length: the area ends at 0x0050, the image at 0x0050; an area must end before the image does\n",
                      self.Fructl("verify", "riser").strOut)

    def test_a_baseboard_with_more_custom_fields_than_it_has_slots(self):
        self.Provision()
        abImage = HexImage(EXAMPLES / "baseboard.hex")
        self.assertEqual(abImage[0x11B:0x11F], bytes(4))  # fill after the product area's end mark
        iEnd = abImage.index(b"\xc1\x00\x00\x00\x00", 0xB0)
        abMore = Sealed(abImage[:iEnd] + b"\xc0\xc1" + abImage[iEnd + 2:], 0xB0, 0x120 - 0xB0)
        self.assertEqual(self.Problems(abMore), [])
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, abMore)
        stResult = self.Fructl("verify", "baseboard", "--json")
        self.assertEqual([stProblem["what"] for stProblem in stResult.Json()["images"][0]["problems"]], ["5 custom fields; a baseboard has room for 4"])
        self.assertEqual(stResult.iCode, 1)

    def test_a_cached_image_that_differs_from_the_eeprom(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"\xde\xad")
        stResult = self.Fructl("verify")
        self.assertEqual((stResult.iCode, stResult.strErr), (1, "fructl: verify: 2 of 7 images are not in order\n"))
        self.assertTrue(stResult.strOut.startswith("""\
WRONG  baseboard (0x00:0)
         byte 0x0000  common header: format version: 0xde; only version 1 is known
         byte 0x0007  common header: checksum: 0xb9 is wrong; the other bytes want 0x2f
WRONG  baseboard (0x00:0), cached image
         sound in itself, but differs from the EEPROM from byte 0x0000 on (0xde in the EEPROM, 0x01 cached)
good   psu1 (0x03:0): header, board, product
"""), stResult.strOut)

    def test_an_eeprom_that_does_not_answer(self):
        self.Provision()
        self.Eeprom("bus3-addr0xa2.bin").unlink()
        stResult = self.Fructl("verify", "riser")
        self.assertEqual(stResult.iCode, 1)
        self.assertIn("WRONG  riser (0x08:0)\n         the EEPROM of riser (0x08:0) does not answer", stResult.strOut)
        self.Eeprom("bus3-addr0xa2.bin").write_bytes(b"\x01" * 100)
        self.assertIn("the EEPROM of riser (0x08:0) gave 100 of 256 bytes", self.Fructl("verify", "riser").strOut)


class Raw(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def test_area_info(self):
        self.assertEqual(self.Good("raw", "info", "baseboard").strOut,
                         "Get FRU Inventory Area Info\n  request   00\n  response  00 00 08 00\n  code      0x00 (success)\n")
        self.assertEqual(self.Json("raw", "info", "--id", "4"), {"command": "Get FRU Inventory Area Info", "request": "04", "response": "00 00 04 00",
                                                                 "completionCode": 0, "meaning": "success"})

    def test_read(self):
        self.assertEqual(self.Good("raw", "read", "riser", "--offset", "0x08", "--count", "6").strOut,
                         "Read FRU Data\n  request   03 08 00 06\n  response  00 06 01 09 00 e0 2e e1\n  code      0x00 (success)\n")
        stJson = self.Json("raw", "read", "0x30:0")
        self.assertEqual((stJson["request"], len(bytes.fromhex(stJson["response"]))), ("04 00 00 10", 18))

    def test_a_completion_code_that_is_not_0_is_told_in_words_and_fails(self):
        for asArguments, strCode in [(["--id", "9"], "0xcb (no such FRU device, or its cached image cannot be read)"),
                                     (["riser", "--offset", "256"], "0xcc (the offset lies at or beyond the end of the FRU)"),
                                     (["riser", "--offset", "250", "--count", "7"], "0xc9 (the count reaches beyond the end of the FRU)")]:
            with self.subTest(asArguments):
                stResult = self.Fructl("raw", "read", *asArguments)
                self.assertEqual(stResult.iCode, 1)
                self.assertIn(f"  code      {strCode}\n", stResult.strOut)
                self.assertTrue(stResult.strErr.startswith(f"fructl: Read FRU Data ended with completion code {strCode}"), stResult.strErr)
                self.AssertOneLine(stResult.strErr)


if __name__ == "__main__":
    unittest.main()
