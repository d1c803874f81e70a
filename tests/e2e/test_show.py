# SPDX-License-Identifier: Apache-2.0
"""fructl list, show and map on the example's devices and on images made here."""
import unittest

from support import BASEBOARD_EEPROM, EXAMPLES, FructlTest, HexImage, Run, ZeroSum

BASEBOARD = {
    "chassis": {"type": "Rack Mount Chassis", "partNumber": "LH-CH2U-12", "serialNumber": "CH2U24170042",
                "customFields": ["CUST-000815", "02005E1000A0", "04", "LHSRV2UAAA", "R07-U12"]},
    "board": {"language": "English", "languageCode": 0, "mfgDate": "2024-03-18 09:30:00", "mfgDateMinutes": 14838330, "manufacturer": "Lindenhain Systems", "productName": "LH-MB2 Baseboard",
              "serialNumber": "MB2241700137", "partNumber": "LHMB2-B03", "fruFileId": "mb2-1.4", "customFields": ["TOP24170099"]},
    "product": {"language": "English", "languageCode": 0, "manufacturer": "Lindenhain Systems", "productName": "Hain 220", "partNumber": "LH220-24C", "version": "2.1",
                "serialNumber": "LH22024170042", "assetTag": "RACK7-UNIT12", "fruFileId": "lh220-1.4",
                "customFields": ["Compute", "2+0", "2x25G", "800W"]},
    "multiRecords": [
        {"type": 3, "formatVersion": 2, "name": "Management Access, System Name", "text": "hain-r07-u12",
         "data": "02 68 61 69 6e 2d 72 30 37 2d 75 31 32",
         "fields": {"subType": "System Name", "subTypeCode": 2, "text": "hain-r07-u12"}},
        {"type": 3, "formatVersion": 2, "name": "Management Access, System Unique ID", "text": "1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f",
         "data": "07 8f 2e 4c 1b 5d 7a 3b 4c 9e 60 0a 1b 2c 3d 4e 5f",
         "fields": {"subType": "System Unique ID", "subTypeCode": 7, "guid": "1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f"}},
    ],
}


def Psu(strSerial):
    return {
        "board": {"language": "English", "languageCode": 0, "mfgDate": "2024-02-05 14:10:00", "mfgDateMinutes": 14778130, "manufacturer": "Lindenhain Power", "productName": "LH-PS800",
                  "serialNumber": strSerial, "partNumber": "LHPS800-A1", "fruFileId": "ps800-1", "customFields": []},
        "product": {"language": "English", "languageCode": 0, "manufacturer": "Lindenhain Power", "productName": "800 W Power Supply", "partNumber": "LH-PS800",
                    "version": "A1", "serialNumber": strSerial, "assetTag": "", "fruFileId": "ps800-1", "customFields": []},
        "multiRecords": [],
    }


EXAMPLE_IMAGES = {
    "baseboard": BASEBOARD,
    "psu1": Psu("PS8024100311"),
    "psu2": Psu("PS8024100312"),
    "riser": {"board": {"language": "English", "languageCode": 0, "mfgDate": "2024-01-22 08:00:00", "mfgDateMinutes": 14757600, "manufacturer": "Lindenhain Systems", "productName": "LH-RS2 Riser",
                        "serialNumber": "RS2240900058", "partNumber": "LHRS2-A2", "fruFileId": "rs2-1", "customFields": []},
              "multiRecords": []},
    "bmc-card": {"board": {"language": "English", "languageCode": 0, "mfgDate": "2024-03-01 11:45:00", "mfgDateMinutes": 14813985, "manufacturer": "Lindenhain Systems",
                           "productName": "LH-BMC1 Management Card", "serialNumber": "BC1240800720", "partNumber": "LHBMC1-C1",
                           "fruFileId": "bmc1-1.2", "customFields": []},
                 "product": {"language": "English", "languageCode": 0, "manufacturer": "Lindenhain Systems", "productName": "Management Card", "partNumber": "LH-BMC1",
                             "version": "C1", "serialNumber": "BC1240800720", "assetTag": "", "fruFileId": "bmc1-1.2", "customFields": []},
                 "multiRecords": []},
}


def Image(abBoardFields, abMultiRecords=b"", abCommonHeader=None):
    """An image with a board area of these fields (the end mark is added), and perhaps MultiRecords."""
    abArea = b"\x00\x00\x00\x00" + abBoardFields + b"\xc1"
    iUnits = -(-(len(abArea) + 3) // 8)
    abArea = bytes([1, iUnits]) + abArea.ljust(iUnits * 8 - 3, b"\x00")
    abArea += ZeroSum(abArea)
    abHeader = bytes([1, 0, 0, 1, 0, 1 + iUnits if abMultiRecords else 0, 0])
    return (abCommonHeader or abHeader + ZeroSum(abHeader)) + abArea + abMultiRecords


def Record(iType, iFormat, abData):
    abHeader = bytes([iType, iFormat, len(abData)]) + ZeroSum(abData)
    return abHeader + ZeroSum(abHeader) + abData


class Examples(FructlTest):
    def test_every_example_image_decodes_to_its_texts(self):
        self.Provision()
        for strName, dictExpected in EXAMPLE_IMAGES.items():
            with self.subTest(strName):
                stFile = self.Json("show", EXAMPLES / f"{strName}.hex")
                self.assertEqual(stFile.pop("file"), str(EXAMPLES / f"{strName}.hex"))
                self.assertEqual(stFile, dictExpected)
                stDevice = self.Json("show", strName)
                self.assertEqual((stDevice.pop("device")["name"], stDevice.pop("source"), stDevice.pop("sourcesDiffer")), (strName, "EEPROM", False))
                self.assertEqual(stDevice, dictExpected)

    def test_every_text_in_an_examples_comments_is_what_its_bytes_say(self):
        for pathFile in sorted(EXAMPLES.glob("*.hex")):
            dictSpans = {stSpan["offset"]: stSpan for stSpan in self.Json("map", pathFile)["spans"]}
            for strLine in pathFile.read_text().splitlines():
                strBytes, _, strComment = strLine.partition("#")
                strName, strColon, strText = strComment.strip().partition(": ")
                iOffset = int(strBytes.partition(":")[0], 16) if strBytes.strip() else None
                if iOffset in dictSpans and strColon and dictSpans[iOffset]["field"] == strName and "area length" not in strName:
                    with self.subTest(file=pathFile.name, line=strLine):
                        strShown = dictSpans[iOffset]["text"].removeprefix("0x17 ") or "(empty)"
                        self.assertTrue(strText.startswith(strShown), strShown)

    def test_the_list_is_aligned_and_complete(self):
        self.Provision()
        self.assertEqual(self.Good("list").strOut, """\
ID  NAME         TYPE  INST  BUS  ADDR  SIZE  IMAGE  CACHE
 0  baseboard    0x00     0    1  0xa0  2048  sound  same
 1  psu1         0x03     0    2  0xa4   256  sound  same
 2  psu2         0x03     1    2  0xa4   256  sound  same
 3  riser        0x08     0    3  0xa2   256  sound  same
 4  bmc-card     0x30     0    4  0xae  1024  sound  same
 5  bmc-card-hw  0x31     0    4  0xae    32  sound  none
""")
        self.assertEqual(self.Json("list")["devices"][2], {
            "id": 2, "name": "psu2", "componentType": 3, "instance": 1, "bus": 2, "address": 0xA4, "switchLevel": 2, "startOffset": 0, "size": 256,
            "databaseOnly": False, "image": "sound", "cache": "same"})

    def test_the_list_tells_the_state_of_every_image(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 7, b"\x00")
        self.Eeprom("bus2-addr0xa4-switch1.bin").write_bytes(b"\xff" * 256)
        self.Eeprom("bus2-addr0xa4-switch2.bin").unlink()
        self.Eeprom("bus3-addr0xa2.bin").write_bytes(b"\x01")
        listStates = [(stDevice["image"], stDevice["cache"]) for stDevice in self.Json("list")["devices"]]
        self.assertEqual(listStates, [("damaged", "differs"), ("erased", "differs"), ("unreadable", "differs"), ("unreadable", "differs"), ("sound", "same"),
                                      ("sound", "none")])


class Show(FructlTest):
    def test_people_read_names_beside_texts(self):
        self.Provision()
        strOut = self.Good("show", "baseboard").strOut
        self.assertTrue(strOut.startswith("baseboard (0x00:0)  FRU device ID 0, 2048 bytes at 0x0000 of the EEPROM on bus 1, address 0xa0\n\nChassis info area\n"))
        self.assertIn("\n  chassis type        Rack Mount Chassis\n  part number         LH-CH2U-12\n", strOut)
        self.assertIn("\n  manufacturing date  2024-03-18 09:30:00\n", strOut)
        self.assertIn("\n  custom field 4      800W\n", strOut)
        self.assertTrue(strOut.endswith("\n\nMultiRecord area\n  Management Access, System Name (type 0x03, 13 bytes)\n    hain-r07-u12\n"
                                        "  Management Access, System Unique ID (type 0x03, 17 bytes)\n    1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f\n"))
        self.assertIn("\n  asset tag           -\n", self.Good("show", "psu1").strOut)

    def test_a_devices_texts_cannot_drive_the_terminal(self):
        abFields = b"\xc5\x1b[31m" + b"\xc4a\\b\x7f" + b"\xc3\x80\xfc\n" + b"\xc0\xc0"
        pathFile = self.Write("nasty.bin", Image(abFields))
        strOut = self.Good("show", pathFile).strOut
        self.assertIn("\n  manufacturer        \\x1b[31m\n  product name        a\\\\b\\x7f\n  serial number       \\x80\\xfc\\x0a\n", strOut)
        stBoard = self.Json("show", pathFile)["board"]
        self.assertEqual((stBoard["manufacturer"], stBoard["productName"], stBoard["serialNumber"]), ("\x1b[31m", "a\\b\x7f", "\x80\xfc\n"))
        strMap = self.Good("map", pathFile).strOut
        self.assertIn("manufacturer: \\x1b[31m\n", strMap)
        self.assertNotIn("\x1b", strMap)

    def test_every_way_of_storing_a_text_is_told(self):
        abFields = b"\x02\x01\xab" + b"\x83\x29\xdc\xa6" + b"\x42\x12\xab" + b"\xc0" + b"\xc2ok" + b"\x81\x21"
        pathFile = self.Write("kinds.bin", Image(abFields))
        strOut = self.Good("show", pathFile).strOut
        self.assertIn("\n  manufacturer        01AB  (binary)\n  product name        IPMI  (6-bit ASCII)\n"
                      "  serial number       -  (BCD plus 12 -, decoded as an empty text)\n  part number         -\n  FRU file ID         ok\n"
                      "  custom field 1      A     (6-bit ASCII)\n", strOut)
        stSpans = {stSpan["field"]: stSpan for stSpan in self.Json("map", pathFile)["spans"] if stSpan["area"] == "board"}
        stBoard = self.Json("show", pathFile)["board"]
        for strField, strKey in [("manufacturer", "manufacturer"), ("product name", "productName"), ("serial number", "serialNumber"),
                                 ("part number", "partNumber"), ("FRU file ID", "fruFileId")]:
            self.assertEqual(stSpans[strField]["text"], stBoard[strKey], strField)
        self.assertEqual(stSpans["custom field 1"]["text"], stBoard["customFields"][0])

    def test_a_text_with_a_zero_byte_is_told_to_be_cut(self):
        pathFile = self.Write("zero.bin", Image(b"\xc4ab\x00c" + b"\xc0" * 4))
        self.assertIn("\n  manufacturer        ab  (readers end it at its first zero byte)\n", self.Good("show", pathFile).strOut)
        self.assertIn("manufacturer: ab\\x00c (readers end it at its first zero byte)\n", self.Good("map", pathFile).strOut)

    def test_multirecords_of_all_kinds(self):
        abFields = b"\xc0" * 5
        listRecords = [(0x03, bytes([iSub]) + b"x.example") for iSub in range(1, 7)]
        listRecords += [(0x03, b"\x08\x01"), (0x03, b"\x07\x01\x02"), (0xC0, b"\x5a\x31\x00"), (0x00, b"\x01"), (0x42, b"\xff")]
        abRecords = b"".join(Record(iType, 0x02, abData) for iType, abData in listRecords[:-1]) + Record(listRecords[-1][0], 0x82, listRecords[-1][1])
        stRecords = self.Json("show", self.Write("records.bin", Image(abFields, abRecords)))["multiRecords"]
        self.assertEqual([(stRecord["type"], stRecord["name"], stRecord["text"]) for stRecord in stRecords], [
            (3, "Management Access, System URL", "x.example"), (3, "Management Access, System Name", "x.example"),
            (3, "Management Access, System Ping Address", "x.example"), (3, "Management Access, Component URL", "x.example"),
            (3, "Management Access, Component Name", "x.example"), (3, "Management Access, Component Ping Address", "x.example"),
            (3, "Management Access", "08 01"), (3, "Management Access, System Unique ID", "01 02"),
            (0xC0, "OEM", "5a 31 00"), (0x00, "Power Supply Information", "01"), (0x42, "unknown", "ff")])

    def test_damaged_multirecords_are_told_and_the_rest_is_shown(self):
        abRecord = bytearray(Record(0x03, 0x82, b"\x02name"))
        abRecord[-1] ^= 1
        pathFile = self.Write("records.bin", Image(b"\xc3abc" + b"\xc0" * 4, bytes(abRecord)))
        stJson = self.Json("show", pathFile)
        self.assertEqual((stJson["board"]["manufacturer"], stJson["multiRecords"], stJson["multiRecordsDamaged"]), ("abc", [], True))
        self.assertIn("MultiRecord area\n  damaged: no record can be read ('fructl verify' tells why)\n", self.Good("show", pathFile).strOut)

    def test_an_image_that_cannot_be_decoded_says_where_it_is_wrong(self):
        self.Provision()
        self.assertEqual(self.Bad(6, "show", self.Write("wrong.bin", Image(b"\xc0" * 5, b"", b"\x02" + bytes(7)))),
                         f"cannot decode {self.pathTemp}/wrong.bin: 0x29000002 (the common header is invalid); "
                         "byte 0x0000  common header: format version: 0x02; only version 1 is known; 'fructl verify' tells all, 'show --lenient' what is left")
        for iCode, strName, abBytes, strWhy in [(6, "empty.bin", b"", "the image file {} is empty"), (6, "short.bin", b"\x01\x00", "cannot decode {}: 0x29000002"),
                                                (3, "huge.bin", bytes(1024 * 1024 + 1), "cannot read {}: larger than 1 MiB, which no FRU image is")]:
            pathFile = self.Write(strName, abBytes)
            self.assertIn(strWhy.format(pathFile), self.Bad(iCode, "show", pathFile))

    def test_a_device_stands_in_front_of_a_file_of_the_same_name(self):
        self.Provision()
        (self.pathTemp / "psu1").write_bytes(Image(b"\xc3own" + b"\xc0" * 4))
        for strTarget, strExpected in [("psu1", "Lindenhain Power"), ("./psu1", "own"), ("3:0", "Lindenhain Power")]:
            stResult = Run("--root", self.pathRoot, "--json", "show", strTarget, strCwd=self.pathTemp)
            self.assertEqual(stResult.Json()["board"]["manufacturer"], strExpected)


class Map(FructlTest):
    def test_every_byte_belongs_to_one_span(self):
        self.Provision()
        for strTarget, iSize in [("baseboard", 2048), ("psu1", 256), (EXAMPLES / "riser.hex", 80)]:
            stJson = self.Json("map", strTarget)
            self.assertEqual((stJson["size"], stJson["sound"]), (iSize, True))
            iNext = 0
            for stSpan in stJson["spans"]:
                self.assertEqual(stSpan["offset"], iNext)
                self.assertEqual(len(bytes.fromhex(stSpan["bytes"])), stSpan["length"])
                iNext += stSpan["length"]
            self.assertEqual(iNext, iSize)
        abAll = b"".join(bytes.fromhex(stSpan["bytes"]) for stSpan in self.Json("map", EXAMPLES / "baseboard.hex")["spans"])
        self.assertEqual(abAll, HexImage(EXAMPLES / "baseboard.hex"))

    def test_people_get_an_overview_a_legend_and_a_line_for_each_field(self):
        self.Provision()
        strOut = self.Good("map", "psu1").strOut
        self.assertTrue(strOut.startswith("psu1 (0x03:0)  EEPROM, 256 bytes\n\n  0000  HBBBBBBBBBPPPPPPPPPP............\n"), strOut[:200])
        self.assertIn("  One letter is 8 bytes. Bytes in each area: H common header 8, B board info area 72, P product info area 80, . unused 96\n", strOut)
        self.assertIn("\nboard info area\n  0008  01                                               format version: 1\n", strOut)
        self.assertIn("\n  000e  d0 4c 69 6e 64 65 6e 68 61 69 6e 20 50 6f 77 65  manufacturer: Lindenhain Power\n  001e  72\n", strOut)
        self.assertTrue(strOut.endswith("\nunused\n  00a0  ff ... (96 bytes)                                unused (all 0xff)\n"), strOut[-200:])

    def test_what_is_wrong_stands_beside_its_bytes(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0x57, b"\x00")
        strOut = self.Good("map", "baseboard").strOut
        self.assertRegex(strOut, r"\n  0057  00 +checksum  <- 0x00 is wrong; the area's bytes want 0x[0-9a-f]{2}\n")
        self.assertRegex(strOut, r"\nWhat is wrong\n  byte 0x0057  chassis info area: checksum: 0x00 is wrong; the area's bytes want 0x[0-9a-f]{2}\n$")


class ReadableHex(FructlTest):
    def Hex(self, strText):
        pathFile = self.pathTemp / "image.hex"
        pathFile.write_text(strText)
        return pathFile

    def test_offsets_comments_and_gaps(self):
        pathFile = self.Hex("# nothing\n\n0000: 01 00\t00 # header\n00 00 00 00 ff\r\n0x0A: 01 # a gap before\n  0c: aB")
        listSpans = self.Json("map", pathFile)["spans"]
        abAll = b"".join(bytes.fromhex(stSpan["bytes"]) for stSpan in listSpans)
        self.assertEqual(abAll, b"\x01\x00\x00\x00\x00\x00\x00\xff\xff\xff\x01\xff\xab")

    def test_what_is_no_hex_is_refused_with_its_line(self):
        for strText, strWhy in [("01\n1 0", "2: '1' is not a byte; accepted: two hex digits, 'OFFSET:' at the line's start, '# comment'"),
                                ("0x01", "1: '0x01' is not a byte; accepted:"), ("01 02: 03", "1: '02:' is not a byte; accepted:"),
                                ("zz: 01", "1: 'zz:' is not an offset; accepted: hex digits and a colon, such as 0040:"),
                                (": 01", "1: ':' is not an offset"), ("fffffff: 01", "1: 'fffffff:' is not an offset"),
                                ("01 02\n0001: 03", "2: offset 0x1 lies behind the bytes before it, which end at 0x2; offsets only grow"),
                                ("01 \x1b[m", "1: '\\x1b[m' is not a byte")]:
            with self.subTest(strText):
                pathFile = self.Hex(strText)
                self.assertIn(f"{pathFile}:{strWhy}", self.Bad(3, "show", pathFile))
        pathFile = self.Hex("# only this\n")
        self.assertEqual(self.Bad(6, "show", pathFile), f"the image file {pathFile} is empty")


if __name__ == "__main__":
    unittest.main()
