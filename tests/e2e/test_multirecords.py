"""fructl mr: MultiRecords listed, added, checked, and the byte order of GUIDs."""
import copy
import fcntl
import json
import shutil
import unittest

from support import BASEBOARD_EEPROM, EXAMPLES, FructlTest, HexImage, ZeroSum

DESCRIPTION = json.loads((EXAMPLES / "controller.json").read_text())
GUID = "1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f"
STORED_GUID = "8f 2e 4c 1b 5d 7a 3b 4c 9e 60 0a 1b 2c 3d 4e 5f"
AREA = 0x120  # where the baseboard's MultiRecords begin
MAIN = "baseboard (0x00:0)"


def Record(iType, abData, bLast=False):
    abHeader = bytes([iType, 0x82 if bLast else 0x02, len(abData)]) + ZeroSum(abData)
    return abHeader + ZeroSum(abHeader) + abData


def Records(listRecords):
    return b"".join(Record(iType, abData, i == len(listRecords) - 1) for i, (iType, abData) in enumerate(listRecords))


class MultiRecordTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def ProvisionBaseboard(self, abImage, **dictMembers):
        """A controller whose baseboard has this image."""
        pathDescription = self.pathTemp / "described"
        if not pathDescription.exists():
            shutil.copytree(EXAMPLES, pathDescription)
        (pathDescription / "main.bin").write_bytes(abImage)
        dictDescription = copy.deepcopy(DESCRIPTION)
        dictDescription["devices"][0].update({"image": "main.bin", **dictMembers})
        (pathDescription / "controller.json").write_text(json.dumps(dictDescription))
        self.Good("provision", pathDescription / "controller.json", "--force")

    def Image(self, abRecords):
        """The baseboard's image with other MultiRecords."""
        return HexImage(EXAMPLES / "baseboard.hex")[:AREA] + abRecords

    def Chip(self):
        return self.Eeprom(BASEBOARD_EEPROM).read_bytes()

    def Listed(self, *asArguments):
        return [(stRecord["name"], stRecord["text"]) for stRecord in self.Json("mr", "list", *asArguments)["multiRecords"]]


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
                      self.Bad(1, "mr", "list", self.Write("bad.bin", self.Image(b"\x03\x02\x01\x00\x00A"))))


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
        self.assertEqual((stResult.iCode, stResult.strOut), (1, f"""\
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


class Add(MultiRecordTest):
    def test_a_dry_run_tells_and_writes_nothing(self):
        abBefore = self.Chip()
        self.assertEqual(self.Good("mr", "add", "system-name=rack7", "System URL=http://x", f"SYSTEM_GUID={GUID}", "--dry-run").strOut, f"""\
RECORD                     SAYS                                  SAID
System Name       replace  rack7                                 hain-r07-u12
System URL        add      http://x
System Unique ID  keep     {GUID}
nothing was written; without --dry-run: 2 device writes
""")
        stJson = self.Json("mr", "add", "system-name=rack7", "-n")
        self.assertEqual((stJson["dryRun"], stJson["writes"], stJson["records"]),
                         (True, 1, [{"name": "system-name", "subType": 2, "action": "replace", "text": "rack7", "data": "02 72 61 63 6b 37",
                                     "oldText": "hain-r07-u12"}]))
        self.assertEqual(self.Chip(), abBefore)

    def test_all_seven_types_at_once(self):
        strOther = "00112233-4455-6677-8899-aabbccddeeff"
        dictTexts = {"system-url": "https://rack7.example", "system-name": "R\xfcck 7", "system-ping-address": "192.0.2.7", "component-url": "https://x",
                     "component-name": "n" * 254, "component-ping-address": "192.0.2.8", "system-guid": strOther}
        strOut = self.Good("mr", "add", *[f"{strName}={strText}" for strName, strText in dictTexts.items()]).strOut
        self.assertTrue(strOut.endswith("Done: 7 device writes, read back and right\n"), strOut)
        dictNames = {"System Name": "R\xfcck 7", "System Unique ID": strOther, "System URL": "https://rack7.example", "System Ping Address": "192.0.2.7",
                     "Component URL": "https://x", "Component Name": "n" * 254, "Component Ping Address": "192.0.2.8"}
        self.assertEqual(self.Listed(), [(f"Management Access, {strName}", strText) for strName, strText in dictNames.items()])
        self.assertEqual(self.Json("mr", "check")["bytes"], {"good": True, "status": 0, "records": 7})
        self.Good("verify", "baseboard")
        # In the usual order: the first three groups least significant byte first.
        self.assertIn(bytes.fromhex("07 33221100 5544 7766 8899 aabbccddeeff"), self.Chip())
        stJson = self.Json("mr", "add", f"system-guid={strOther}")
        self.assertEqual((stJson["writes"], stJson["records"][0]["action"]), (0, "kept"))

    def test_a_fru_without_an_area_gets_one(self):
        self.ProvisionBaseboard(HexImage(EXAMPLES / "psu1.hex"), size=256, recoveryImage={"path": "/x.bin", "file": "psu1.hex"})
        self.assertIn("Done: 2 device writes", self.Good("mr", "add", "system-name=a", "component-name=b").strOut)
        self.assertEqual(self.Listed(), [("Management Access, System Name", "a"), ("Management Access, Component Name", "b")])
        self.Good("mr", "check")
        stBefore, stAfter = self.Json("show", EXAMPLES / "psu1.hex"), self.Json("show", "baseboard")
        self.assertEqual((stAfter["board"], stAfter["product"]), (stBefore["board"], stBefore["product"]))

    def test_records_of_other_types_stay_where_they_are(self):
        self.ProvisionBaseboard(self.Image(Records([(0xC0, b"\xde\xad"), (0x03, b"\x02old"), (0x00, bytes(24))])))
        self.Good("mr", "add", "system-name=a much longer name", "system-url=u")
        self.assertEqual(self.Listed(), [("OEM", "de ad"), ("Management Access, System Name", "a much longer name"),
                                         ("Power Supply Information", " ".join(["00"] * 24)), ("Management Access, System URL", "u")])
        self.Good("verify", "baseboard")

    def test_an_eeprom_that_takes_nothing_is_no_success(self):
        self.Eeprom(BASEBOARD_EEPROM).chmod(0o444)
        strError = self.Bad(1, "mr", "add", "system-name=b")
        self.assertTrue(strError.startswith(f"the library reports success, but {MAIN} does not hold the new records (the library says: "), strError)
        self.assertIn("write-protected", strError)
        self.assertEqual(self.Listed()[0][1], "hain-r07-u12")

    def test_what_is_refused_with_what_is_accepted(self):
        strNames = "system-url, system-name, system-ping-address, component-url, component-name, component-ping-address, system-guid"
        for asArguments, strExpected in [
            ([], "NAME=VALUE is required"),
            (["system-name"], f"'system-name' is no NAME=VALUE; accepted names: {strNames}"),
            (["name=x"], f"there is no 'name' to set; accepted: {strNames}"),
            (["system-name=x", "System Name=y"], "system-name is given twice; accepted: each name once"),
            (["system-name="], "the value of system-name (0 characters) is refused; accepted: 1 to 254 printable characters"),
            (["system-name=" + "x" * 255], "the value of system-name (255 characters) is refused; accepted: 1 to 254 printable characters, as the record's "
             "length byte holds no more"),
            (["system-name=a\tb"], "is refused; accepted: 1 to 254 printable characters"),
            (["system-name=\u20ac"], "the value of system-name has characters that a FRU cannot store; accepted: Latin-1"),
            (["system-guid=1234"], "'1234' is no GUID; accepted: 32 hex digits as in "),
        ]:
            with self.subTest(asArguments):
                abBefore = self.Chip()
                self.assertIn(strExpected, self.Bad(2, "mr", "add", *asArguments))
                self.assertEqual(self.Chip(), abBefore)

    def test_records_that_do_not_fit_are_refused_before_the_first_is_written(self):
        abBefore = self.Chip()
        asRecords = [f"{strName}={'x' * 254}" for strName in ("system-url", "system-name", "system-ping-address", "component-url", "component-name",
                                                             "component-ping-address")]
        self.Good("mr", "add", *asRecords, "--dry-run")
        self.ProvisionBaseboard(HexImage(EXAMPLES / "baseboard.hex"), size=1024)
        abBefore = self.Chip()
        self.assertRegex(self.Bad(1, "mr", "add", *asRecords), r"no image can be made with the new .*: it would take \d+ bytes, and the FRU has 1024")
        self.assertEqual(self.Chip(), abBefore)

    def test_a_full_table_has_no_place_for_more(self):
        self.ProvisionBaseboard(self.Image(Records([(0xC0, b"\x01")] * 63 + [(3, b"\x02n")])))
        self.assertEqual(self.Bad(1, "mr", "add", "system-url=u"),
                         f"{MAIN} holds 64 MultiRecords already, and none is a System URL; there is no place for more")
        self.Good("mr", "add", "system-name=other")
        self.assertEqual(self.Listed()[63], ("Management Access, System Name", "other"))

    def test_a_damaged_area_is_not_overwritten(self):
        abBad = bytearray(self.Image(Records([(0xC0, b"\xde\xad"), (3, b"\x02n")])))
        abBad[AREA + 4] ^= 0xFF
        self.ProvisionBaseboard(bytes(abBad))
        abBefore = self.Chip()
        self.assertIn(" is damaged: no record of it can be read, and adding one would drop them all", self.Bad(1, "mr", "add", "system-url=u"))
        # Readable, but of a format version that the merge refuses.
        abHeader = b"\xc0\x81\x01\xff"
        self.ProvisionBaseboard(self.Image(abHeader + ZeroSum(abHeader) + b"\x01"))
        abBefore = self.Chip()
        self.assertIn("are not in order, so none can be added (the library says: FRU MultiRecord[Memory] invalid FormatVersion[0]: 0x81)",
                      self.Bad(1, "mr", "add", "system-url=u"))
        self.assertEqual(self.Chip(), abBefore)

    def test_a_cached_image_that_hides_another_is_not_written_over_it(self):
        # The new image is made from the cached one; what only the EEPROM has would be lost.
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), AREA + 8, b"\x00")
        abBefore = self.Chip()
        self.assertIn("refused, for the library writes the whole image of baseboard (0x00:0) anew and would lose: the EEPROM's own image from byte 0x0128 on",
                      self.Bad(1, "mr", "add", "system-url=u"))
        self.assertEqual(self.Chip(), abBefore)
        self.Good("mr", "add", "system-url=u", "--force")
        self.Good("verify", "baseboard")

    def test_waits_for_another_writer_and_gives_up(self):
        (self.pathRoot / "var/lock").mkdir(parents=True, exist_ok=True)
        with open(self.pathRoot / "var/lock/fructl.lock", "w", encoding="ascii") as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            self.assertIn("another command is writing", self.Bad(1, "mr", "add", "system-url=u"))
            self.Good("mr", "add", "system-url=u", "--dry-run")


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
