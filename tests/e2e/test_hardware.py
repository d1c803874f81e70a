# SPDX-License-Identifier: Apache-2.0
"""fructl hw, sn and psn: hardware blocks and serial numbers; and hardware blocks among the FRU images."""
import json
import unittest

from support import BASEBOARD_EEPROM, EXAMPLES, FructlTest, HexImage

BLOCK = EXAMPLES / "hardware/bmc-card.hex"
CHIP = "bus4-addr0xae.bin"
TITLE = "bmc-card-hw (0x31:0)"
SENTENCE = "Set bmc-card-hw Hardware FRU Label successfully."
XML = "conf/hw/ProductPath/Baseboard.xml"


def Crc8(abBytes):
    iCrc = 0
    for iByte in abBytes:
        iCrc ^= iByte
        for _ in range(8):
            iCrc = (iCrc << 1 ^ 0x07 if iCrc & 0x80 else iCrc << 1) & 0xFF
    return bytes([iCrc])


class HardwareTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Block(self):
        return self.Eeprom(CHIP).read_bytes()[:32]

    def OperateLog(self):
        pathLog = self.pathRoot / "var/log/operate.jsonl"
        return [(s["result"], s["text"], s["source"]) for s in map(json.loads, pathLog.read_text().splitlines())] if pathLog.exists() else []


class Show(HardwareTest):
    def test_the_block_in_words(self):
        strBlock = """hardware block
Board information
  CRC-8           0x5b good
  board type      42 4d 43 31  "BMC1"
  PCB version     0x02
  EEPROM version  0x01
  CPLD version    0x13
  reserved        00 00 00 00 00 00 00 00
Diagnostic information
  CRC-8           0x00 good
  reserved        00 00 00 00 00 00 00 00 00 00 00 00 00 00
  OEM flag        0x00
"""
        self.assertEqual(self.Good("hw", "show", "bmc-card-hw").strOut, f"{TITLE}, {strBlock}")
        self.assertEqual(self.Good("hw", "show", BLOCK).strOut, f"{BLOCK}, {strBlock}")
        stJson = self.Json("hw", "show", "--id", "5")
        self.assertEqual(stJson["device"]["componentType"], 0x31)
        self.assertEqual(stJson["board"], {"crc8": 0x5B, "crc8Wanted": 0x5B, "crc8Good": True, "boardType": "42 4d 43 31", "pcbVersion": 2, "eepromVersion": 1,
                                           "cpldVersion": 0x13, "reserved": "00 00 00 00 00 00 00 00"})
        self.assertEqual(stJson["diagnostics"], {"crc8": 0, "crc8Wanted": 0, "crc8Good": True, "reserved": " ".join(["00"] * 14), "oemFlag": 0})

    def test_damage_to_either_half(self):
        for iOffset, strHalf, strOther in [(3, "board", "diagnostics"), (0, "board", "diagnostics"), (31, "diagnostics", "board"), (16, "diagnostics", "board")]:
            with self.subTest(iOffset):
                abBlock = bytearray(HexImage(BLOCK))
                abBlock[iOffset] ^= 0x41
                self.Damage(self.Eeprom(CHIP), 0, bytes(abBlock))
                stResult = self.Fructl("hw", "show", "bmc-card-hw", "--json")
                self.assertEqual((stResult.iCode, stResult.strErr), (6, f"fructl: the hardware block of {TITLE} is damaged: a CRC-8 is wrong\n"))
                stJson = stResult.Json()
                self.assertEqual((stJson[strHalf]["crc8Good"], stJson[strOther]["crc8Good"]), (False, True))
                iAt = 0 if strHalf == "board" else 16
                self.assertEqual(stJson[strHalf]["crc8Wanted"], Crc8(abBlock[iAt + 1:iAt + 16])[0])
                self.assertIn("WRONG, should be 0x", self.Fructl("hw", "show", "bmc-card-hw").strOut)

    def test_what_holds_no_block(self):
        self.assertEqual(self.Bad(3, "hw", "show", "psu1"), "psu1 (0x03:0) holds 256 bytes; a hardware block has exactly 32")
        for abBytes in (bytes(31), bytes(33)):
            self.assertIn(f"is no hardware block: it has {len(abBytes)} bytes, not 32", self.Bad(3, "hw", "show", self.Write("x.bin", abBytes)))
        self.Eeprom(CHIP).unlink()
        self.assertRegex(self.Bad(5, "hw", "show", "bmc-card-hw"), "cannot be read: 0x29000004 .*No such file")

    def test_the_other_commands_know_a_block_when_they_see_one(self):
        self.assertEqual(self.Good("verify", "bmc-card-hw", BLOCK).strOut, f"good   {TITLE}: hardware block\ngood   {BLOCK}: hardware block\n")
        self.assertIn(" 5  bmc-card-hw  0x31     0    4  0xae    32  sound  none\n", self.Good("list").strOut)
        self.assertEqual(self.Bad(3, "show", "bmc-card-hw"), f"{TITLE} holds no FRU image but a hardware block; 'fructl hw show' shows it")
        strMap = self.Good("map", "bmc-card-hw").strOut
        self.assertIn("\nhardware block\n  0000  5b ", strMap)
        self.assertIn("PCB version: 02\n", strMap)
        self.assertEqual(b"".join(bytes.fromhex(s["bytes"]) for s in self.Json("map", BLOCK)["spans"]), HexImage(BLOCK))
        self.Damage(self.Eeprom(CHIP), 20, b"\x01")
        strWanted = Crc8(bytes([0, 0, 0, 1]) + bytes(11)).hex()
        stResult = self.Fructl("verify", "bmc-card-hw")
        self.assertEqual((stResult.iCode, stResult.strOut), (1, f"""\
WRONG  {TITLE}
         byte 0x0010  hardware block: diagnostic CRC-8: 0x00 is wrong; the bytes behind it want 0x{strWanted}
"""))
        self.Eeprom(CHIP).write_bytes(b"\xff" * 2048)
        self.assertIn("erased: every byte is 0xff", self.Fructl("verify", "bmc-card-hw").strOut)


class Set(HardwareTest):
    def test_seven_bytes(self):
        abRest = self.Eeprom(CHIP).read_bytes()[32:]
        self.assertEqual(self.Good("hw", "set", "bmc-card-hw", "--bytes", "41 42 43 44 45 46 47").strOut, f"""\
before  42 4d 43 31 02 01 13
after   41 42 43 44 45 46 47   board type, PCB, EEPROM and CPLD version
{SENTENCE}
""")
        abBoard = b"ABCDEFG" + bytes(8)
        self.assertEqual(self.Block(), Crc8(abBoard) + abBoard + bytes(16))
        self.assertEqual(self.Eeprom(CHIP).read_bytes()[32:], abRest)
        self.assertEqual(self.OperateLog(), [(99, SENTENCE, 12)])
        self.Good("verify")

    def test_some_of_them(self):
        for asOptions, strAfter in [(["--pcb", "3"], "42 4d 43 31 03 01 13"), (["--eeprom", "0x10", "--cpld", "255"], "42 4d 43 31 03 10 ff"),
                                    (["--board-type", "00000001"], "00 00 00 01 03 10 ff")]:
            stJson = self.Json("hw", "set", "--id", "5", *asOptions)
            self.assertEqual((stJson["after"], stJson["operationLog"], stJson["dryRun"]), (strAfter, SENTENCE, False))
            self.assertEqual(self.Block()[1:8].hex(" "), strAfter)

    def test_a_dry_run_writes_nothing(self):
        abBefore = self.Block()
        self.assertTrue(self.Good("hw", "set", "bmc-card-hw", "--pcb", "9", "-n").strOut.endswith("after   42 4d 43 31 09 01 13   board type, PCB, EEPROM "
                                                                                                  "and CPLD version\nnothing was written\n"))
        self.assertEqual((self.Block(), self.OperateLog()), (abBefore, []))

    def test_a_damaged_block_is_mended_with_a_note(self):
        self.Damage(self.Eeprom(CHIP), 0, b"\x00")
        self.assertIn("note: a CRC-8 of the block was wrong; writing computes both anew over what is there\n",
                      self.Good("hw", "set", "bmc-card-hw", "--pcb", "2").strOut)
        self.assertEqual(self.Block(), HexImage(BLOCK))

    def test_an_eeprom_that_takes_nothing(self):
        abBefore = self.Block()
        self.Eeprom(CHIP).chmod(0o444)
        self.assertRegex(self.Bad(5, "hw", "set", "bmc-card-hw", "--pcb", "3"), "could not be written: 0x81000001 .*write-protected")
        self.assertEqual((self.Block(), self.OperateLog()), (abBefore, [(67, "Failed to set bmc-card-hw FRU.", 12)]))

    def test_what_is_refused(self):
        abBefore = self.Block()
        for iCode, asArguments, strExpected in [
            (2, [], "no device is named"),
            (2, ["bmc-card-hw"], "either --bytes or options for some of them are needed"),
            (2, ["bmc-card-hw", "--bytes", "01", "--pcb", "1"], "either --bytes or options for some of them are needed"),
            (2, ["bmc-card-hw", "--bytes", "01 02"], "--bytes 01 02 is refused; accepted: seven bytes of two hex digits each"),
            (2, ["bmc-card-hw", "--board-type", "123"], "--board-type 123 is refused; accepted: four bytes"),
            (2, ["bmc-card-hw", "--pcb", "256"], "--pcb 256 is refused; accepted: 0 to 255, decimal or 0x"),
            (2, ["bmc-card-hw", "--cpld", "x"], "--cpld x is refused"),
            (3, ["psu1", "--pcb", "1"], "psu1 (0x03:0) holds 256 bytes; a hardware block has exactly 32"),
        ]:
            with self.subTest(asArguments):
                self.assertIn(strExpected, self.Bad(iCode, "hw", "set", *asArguments))
        self.assertEqual((self.Block(), self.OperateLog()), (abBefore, []))


class SerialNumbers(HardwareTest):
    def test_all_of_them(self):
        self.assertEqual(self.Good("sn").strOut, """\
SERIAL NUMBER OF  FROM                               VALUE
chassis           chassis area of 0x00:0             CH2U24170042
product           product area of 0x00:0             LH22024170042
main board        board area of 0x00:0               MB2241700137
management card   board area of 0x30:0               BC1240800720
product           product area of type 0x00, direct  LH22024170042
main board        board area of type 0x00, direct    MB2241700137
management card   board area of type 0x30, direct    BC1240800720
""")
        self.assertEqual(self.Json("sn", "--direct"), {"productDirect": {"text": "LH22024170042", "status": 0}, "mainBoardDirect": {"text": "MB2241700137", "status": 0},
                                                       "bmcCardDirect": {"text": "BC1240800720", "status": 0}})

    def test_the_two_paths_fail_apart(self):
        (self.pathRoot / XML).unlink()
        stResult = self.Fructl("sn", "--json")
        self.assertEqual((stResult.iCode, stResult.strErr), (1, "fructl: 3 of 7 serial numbers could not be read\n"))
        stJson = stResult.Json()
        self.assertEqual(stJson.pop("error")["message"], "3 of 7 serial numbers could not be read")
        self.assertEqual({strKey: stValue["status"] for strKey, stValue in stJson.items()},
                         {"chassis": 0, "product": 0, "mainBoard": 0, "bmcCard": 0, "productDirect": 0x29000001, "mainBoardDirect": 0x29000001,
                          "bmcCardDirect": 0x29000001})
        self.assertIn("No such file", stJson["productDirect"]["why"])
        self.assertEqual(self.Bad(1, "sn", "--direct"), "3 of 3 serial numbers could not be read")

    def test_a_component_that_is_not_there(self):
        (self.pathRoot / XML).write_text('<hardware><FRU componentType="0" offset="0" size="2048" selector="1" deviceName="bus1-addr0xa0"/></hardware>')
        self.assertEqual(self.Bad(1, "sn"), "1 of 7 serial numbers could not be read")
        self.assertIn("(0x29000001 ", self.Fructl("sn").strOut)

    def test_a_damaged_image_has_no_serial_number_on_the_direct_path(self):
        # Its status tells of no failure there, but there is one; the other path reads the cached image.
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"\x00")
        stResult = self.Fructl("--json", "sn")
        self.assertEqual((stResult.iCode, stResult.strErr), (1, "fructl: 2 of 7 serial numbers could not be read\n"))
        stJson = stResult.Json()
        self.assertEqual((stJson["product"]["text"], stJson["productDirect"]["text"], stJson["productDirect"]["status"]), ("LH22024170042", "", 0))
        self.assertIn("the image could not be decoded (the library says: ", stJson["productDirect"]["why"])

    def test_blanks_that_nobody_sees_are_pointed_out(self):
        self.Good("label", "set", "baseboard", "Product Serial Number", "LH220 ")
        self.assertIn("\nproduct           product area of 0x00:0             LH220   <- it ends with a blank\n", self.Good("sn").strOut)
        self.assertEqual(self.Json("sn")["product"], {"text": "LH220 ", "status": 0, "why": "it ends with a blank"})
        self.assertIn("ProductSerialNumber  LH220   <- it ends with a blank\n", self.Good("psn").strOut)

    def test_a_field_that_is_empty(self):
        (self.pathRoot / XML).write_text('<hardware><FRU componentType="0" offset="0" size="256" selector="1" deviceName="bus3-addr0xa2"/></hardware>')
        stJson = self.Fructl("sn", "--json").Json()
        self.assertEqual((stJson["mainBoardDirect"]["text"], stJson["productDirect"]["why"]), ("RS2240900058", "the field is empty, or the image has no such area"))


class SerialNumberFile(HardwareTest):
    FILE = "mnt/sdmmc0p4/board/ProductSerialNumber"
    COPY = "var/network/ProductSerialNumber"

    def Put(self, strFile, abBytes):
        (self.pathRoot / strFile).parent.mkdir(parents=True, exist_ok=True)
        (self.pathRoot / strFile).write_bytes(abBytes)

    def test_no_file(self):
        stResult = self.Fructl("psn")
        self.assertEqual((stResult.iCode, stResult.strOut), (4, """\
PRODUCT SERIAL NUMBER IN                 VALUE
/mnt/sdmmc0p4/board/ProductSerialNumber  (0x81000017 (there is no serial-number file))
/var/network/ProductSerialNumber         (missing)
product area of 0x00:0                   LH22024170042
"""))
        self.AssertOneLine(stResult.strErr)
        dictJson = self.Fructl("psn", "--json").Json()
        self.assertEqual(dictJson.pop("error")["code"], "not-found")
        self.assertEqual(dictJson, {"file": None, "copy": None, "image": "LH22024170042", "status": 0x81000017, "copyIsSame": False,
                                                               "imageIsSame": False})

    def test_all_three_agree_after_a_write(self):
        self.Good("label", "set", "baseboard", "Product Serial Number=LH22099000001")
        stResult = self.Good("psn")
        self.assertEqual(stResult.strOut.count("LH22099000001\n"), 3)
        self.assertTrue(stResult.strOut.endswith("file and copy agree; the product area agrees with the file\n"))

    def test_they_differ(self):
        self.Put(self.FILE, b"OLD1")
        self.Put(self.COPY, b"OLD2")
        self.assertTrue(self.Good("psn").strOut.endswith("file and copy DIFFER; the product area DIFFERS from the file\n"))
        self.assertEqual(self.Json("psn"), {"file": "OLD1", "copy": "OLD2", "image": "LH22024170042", "status": 0, "copyIsSame": False, "imageIsSame": False})
        (self.pathRoot / self.COPY).unlink()
        self.assertIn("ProductSerialNumber         (missing)\n", self.Good("psn").strOut)

    def test_a_cleared_and_an_empty_one(self):
        self.Good("clear", "baseboard", "--yes")
        strOut = self.Good("psn").strOut
        self.assertEqual(strOut.count("(cleared: 80 zero bytes)\n"), 2)
        self.assertIn("product area of 0x00:0                   (0x29000001 ", strOut)
        self.Put(self.FILE, b"")
        self.assertIn("0x81000024 (the serial-number file is empty)", self.Bad(4, "psn"))

    def test_every_length_is_told_right(self):
        for abText in (b"A", b"x" * 255, b"A\x00", b"\x00A"):
            self.Put(self.FILE, abText)
            self.assertEqual(self.Json("psn")["file"], abText.decode("latin-1"))


if __name__ == "__main__":
    unittest.main()
