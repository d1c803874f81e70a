# SPDX-License-Identifier: Apache-2.0
"""fructl mr add: what it writes and what it leaves alone."""
import fcntl
import unittest

from multirecord_support import AREA, GUID, MAIN, MultiRecordTest, Records
from support import BASEBOARD_EEPROM, EXAMPLES, HexImage, ZeroSum


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
        strError = self.Bad(5, "mr", "add", "system-name=b")
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
        self.assertRegex(self.Bad(3, "mr", "add", *asRecords), r"no image can be made with the new .*: it would take \d+ bytes, and the FRU has 1024")
        self.assertEqual(self.Chip(), abBefore)

    def test_a_full_table_has_no_place_for_more(self):
        self.ProvisionBaseboard(self.Image(Records([(0xC0, b"\x01")] * 63 + [(3, b"\x02n")])))
        self.assertEqual(self.Bad(3, "mr", "add", "system-url=u"),
                         f"{MAIN} holds 64 MultiRecords already, and none is a System URL; there is no place for more")
        self.Good("mr", "add", "system-name=other")
        self.assertEqual(self.Listed()[63], ("Management Access, System Name", "other"))

    def test_a_damaged_area_is_not_overwritten(self):
        abBad = bytearray(self.Image(Records([(0xC0, b"\xde\xad"), (3, b"\x02n")])))
        abBad[AREA + 4] ^= 0xFF
        self.ProvisionBaseboard(bytes(abBad))
        abBefore = self.Chip()
        self.assertIn(" is damaged: no record of it can be read, and adding one would drop them all", self.Bad(6, "--wait", "1", "mr", "add", "system-url=u"))
        # Readable, but of a format version that the merge refuses.
        abHeader = b"\xc0\x81\x01\xff"
        self.ProvisionBaseboard(self.Image(abHeader + ZeroSum(abHeader) + b"\x01"))
        abBefore = self.Chip()
        self.assertIn("are not in order, so none can be added (the library says: FRU MultiRecord[Memory] invalid FormatVersion[0]: 0x81)",
                      self.Bad(6, "--wait", "1", "mr", "add", "system-url=u"))
        self.assertEqual(self.Chip(), abBefore)

    def test_a_cached_image_that_hides_another_is_not_written_over_it(self):
        # The new image is made from the cached one; what only the EEPROM has would be lost.
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), AREA + 8, b"\x00")
        abBefore = self.Chip()
        self.assertIn("refused, for the library writes the whole image of baseboard (0x00:0) anew and would lose: the EEPROM's own image from byte 0x0128 on",
                      self.Bad(3, "--wait", "1", "mr", "add", "system-url=u"))
        self.assertEqual(self.Chip(), abBefore)
        self.Good("mr", "add", "system-url=u", "--force")
        self.Good("verify", "baseboard")

    def test_waits_for_another_writer_and_gives_up(self):
        (self.pathRoot / "var/lock").mkdir(parents=True, exist_ok=True)
        with open(self.pathRoot / "var/lock/fructl.lock", "w", encoding="ascii") as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            self.assertIn("another command is reading or writing", self.Bad(7, "--wait", "1", "mr", "add", "system-url=u"))
            self.assertIn("another command is reading or writing", self.Bad(7, "--wait", "1", "mr", "add", "system-url=u", "--dry-run"))


if __name__ == "__main__":
    unittest.main()
