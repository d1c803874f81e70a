# SPDX-License-Identifier: Apache-2.0
"""fructl mr: MultiRecords listed and checked, and the byte order of GUIDs."""
import unittest

from multirecord_support import AREA, GUID, MAIN, MultiRecordTest, Record, Records, STORED_GUID
from support import BASEBOARD_EEPROM, EXAMPLES, FructlTest, ZeroSum


class List(MultiRecordTest):
    def test_the_baseboards_records_in_words(self):
        self.assertEqual(self.Good("mr", "list").strOut, f"""\
#  RECORD                               TYPE  BYTES  SAYS
1  Management Access, System Name       0x03     13  hain-r07-u12
2  Management Access, System Unique ID  0x03     17  {GUID}
""")
        stJson = self.Json("mr", "list")
        self.assertEqual(stJson["device"]["name"], "baseboard")
        self.assertEqual(stJson["multiRecords"], self.Json("show", "baseboard")["multiRecords"])

    def test_any_device_and_any_file(self):
        self.assertEqual(self.Good("mr", "list", "psu1").strOut, "psu1 (0x03:0) has no MultiRecords\n")
        self.assertEqual(self.Json("mr", "list", "--id", "1")["multiRecords"], [])
        listRecords = [(0x00, bytes(24)), (0x02, b"\x01"), (0x03, b"\x09abc"), (0xC0, b"\xde\xad"), (0x77, b"x"), (0x03, b"\x07short"),
                       (0x03, b"\x04http://\xfc\x1b")]
        pathFile = self.Write("many.bin", self.Image(Records(listRecords)))
        self.assertEqual(self.Listed(pathFile), [
            ("Power Supply Information", " ".join(["00"] * 24)), ("DC Load", "01"), ("Management Access", "09 61 62 63"), ("OEM", "de ad"),
            ("unknown", "78"), ("Management Access, System Unique ID", "73 68 6f 72 74"), ("Management Access, Component URL", "http://\xfc\x1b")])
        self.assertIn("  http://\\xfc\\x1b\n", self.Good("mr", "list", pathFile).strOut)

    def test_a_damaged_area_is_told(self):
        self.assertIn(" is damaged: no record of it can be read; 'fructl mr check'",
                      self.Bad(6, "mr", "list", self.Write("bad.bin", self.Image(b"\x03\x02\x01\x00\x00A"))))


class Check(MultiRecordTest):
    def test_a_good_list_is_good_twice(self):
        self.assertEqual(self.Good("mr", "check").strOut, f"good   {MAIN}, decoded record: 2 records\ngood   {MAIN}, bytes of the EEPROM: 2 records\n")
        stGood = {"good": True, "status": 0, "records": 2}
        self.assertEqual(self.Json("mr", "check", "baseboard"), {"device": {"id": 0, "name": "baseboard", "componentType": 0, "instance": 0},
                                                                 "memory": stGood, "bytes": stGood})
        self.assertIn("bytes of the EEPROM: 0 records\n", self.Good("mr", "check", "psu1").strOut)
        self.assertIn("bytes of the file: 2 records\n", self.Good("mr", "check", EXAMPLES / "baseboard.hex").strOut)

    def test_an_eeprom_damaged_under_a_good_cache(self):
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), AREA + 8, b"\x00")
        stResult = self.Fructl("mr", "check")
        self.assertEqual((stResult.iCode, stResult.strOut), (6, f"""\
good   {MAIN}, decoded record: 2 records
WRONG  {MAIN}, bytes of the EEPROM: the library refuses it (the library says: FRU MultiRecord[EEPROM] record_data sum check err[0]: 0x53 to 0xbc)
"""))
        self.AssertOneLine(stResult.strErr)

    def Verdicts(self, abRecords):
        stJson = self.Fructl("mr", "check", self.Write("some.bin", self.Image(abRecords)), "--json").Json()
        return [(stJson[strKey]["good"], stJson[strKey]["records"], stJson[strKey].get("why", "")) for strKey in ("memory", "bytes")]

    def test_every_way_to_be_wrong(self):
        abGood = Record(3, b"\x02name")
        strNone = "the image has an area, but no record of it could be read"
        for abRecords, strMemory, strBytes in [
            (abGood, "null point[0]", "invalid FormatVersion[1]: 0"),  # nothing says that it is the last
            (b"\x03\x01" + abGood[2:], strNone, "the header names an area at 0x0120, but there is no record"),
            (abGood[:4] + b"\x00" + abGood[5:], strNone, "header sum check err[0]"),
            (b"\xff" * 16, strNone, "there is no record"),
            (Record(3, b"\x02name", True)[:-1] + b"\x00", "null point[0]", "record_data sum check err[0]"),
        ]:
            with self.subTest(abRecords):
                (bMemory, iMemory, strWhyMemory), (bBytes, iBytes, strWhyBytes) = self.Verdicts(abRecords)
                self.assertEqual((bBytes, iBytes, bMemory, iMemory), (False, 0, False, 0))
                self.assertIn(strBytes, strWhyBytes)
                self.assertIn(strMemory, strWhyMemory)

    def test_a_list_without_an_end(self):
        listVerdicts = self.Verdicts(Record(3, b"\x02name") * 64)
        self.assertIn("Failed to find the end of MultiRecords[EEPROM]: count:64.", self.Fructl("-v", "mr", "check", self.pathTemp / "some.bin").strErr)
        self.assertEqual([stVerdict[:2] for stVerdict in listVerdicts], [(False, 0), (False, 0)])
        self.assertEqual(self.Verdicts(Records([(3, b"\x02name")] * 64)), [(True, 64, ""), (True, 64, "")])

    def test_a_list_that_ends_behind_the_image(self):
        # Its missing bytes are zeros, so the checksums are right all the same.
        abRecord = Record(3, b"\x02name" + bytes(20), True)
        listVerdicts = self.Verdicts(abRecord[:-20])
        self.assertEqual(listVerdicts[1], (False, 1, "the list ends 20 bytes behind the image"))
        self.assertFalse(listVerdicts[0][0])

    def test_an_image_that_says_not_where(self):
        stJson = self.Fructl("mr", "check", self.Write("no.bin", b"\x00" * 64), "--json").Json()
        self.assertEqual(stJson["bytes"]["why"], "no valid common header says where the area is")
        self.assertIn("cannot be decoded: 0x29000002", stJson["memory"]["why"])
        abHeader = b"\x01\x00\x00\x00\x00\xff\x00"
        self.assertIn("the area begins at 0x07f8, where the image has ended",
                      self.Fructl("mr", "check", self.Write("far.bin", abHeader + ZeroSum(abHeader)), "--json").Json()["bytes"]["why"])


class Guid(FructlTest):
    def test_there_and_back(self):
        strGiven = " ".join(reversed([GUID.replace("-", "")[i:i + 2] for i in range(0, 32, 2)]))
        stExpected = {"guid": GUID, "stored": STORED_GUID, "given": strGiven}
        self.assertEqual(self.Json("mr", "guid", GUID), stExpected)
        self.assertEqual(self.Json("mr", "guid", GUID.replace("-", "").upper()), stExpected)
        self.assertEqual(self.Json("mr", "guid", "--stored", STORED_GUID), stExpected)
        self.assertEqual(self.Json("mr", "guid", "--stored", STORED_GUID.replace(" ", "")), stExpected)
        self.assertTrue(self.Good("mr", "guid", GUID).strOut.startswith(f"GUID    {GUID}\nstored  {STORED_GUID}   in the record\n"))

    def test_what_is_refused(self):
        for asArguments, strExpected in [
            ([], "either a GUID or --stored is needed"),
            ([GUID, "--stored", STORED_GUID], "either a GUID or --stored is needed"),
            ([GUID[:-1]], f"'{GUID[:-1]}' is no GUID; accepted: 32 hex digits as in"),
            ([GUID.replace("1b", "1g", 1)], "is no GUID"),
            (["1b4c2e8f7-a5d-4c3b-9e60-0a1b2c3d4e5f"], "is no GUID"),
            (["--stored", "01 02"], "--stored 01 02 is refused; accepted: 16 bytes of two hex digits each"),
        ]:
            with self.subTest(asArguments):
                self.assertIn(strExpected, self.Bad(2, "mr", "guid", *asArguments))


if __name__ == "__main__":
    unittest.main()
