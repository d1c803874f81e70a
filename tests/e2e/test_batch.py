# SPDX-License-Identifier: Apache-2.0
"""fructl label set --from: many devices from one table; label get of several; and what is there already."""
import csv
import io
import json
import os
import pty
import shutil
import subprocess
import unittest

from label_support import LabelTest
from support import BASEBOARD_EEPROM, COMMAND, EXAMPLES, Environment, HANG_SECONDS, Result, SERIAL_NUMBER_FILES

SERIAL = "Product Serial Number"
TAG = "Product Asset Tag"


class BatchTest(LabelTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Table(self, strText, strName="labels.csv"):
        return self.Write(strName, strText.encode())

    def Batch(self, pathTable, *asOptions, strInput=None):
        stProcess = subprocess.run([*COMMAND, "--root", str(self.pathRoot), "label", "set", "--from", str(pathTable), *map(str, asOptions)],
                                   input=strInput, capture_output=True, text=True, env=Environment(), timeout=HANG_SECONDS)
        return Result(stProcess)

    def Rows(self, stResult):
        return [(stRow["row"], stRow["device"], stRow["result"]) for stRow in csv.DictReader(io.StringIO(stResult.strOut))]

    def Serial(self, strDevice, pathRoot=None):
        if pathRoot is None:
            return self.Json("label", "get", strDevice, SERIAL)["value"]
        stProcess = subprocess.run([*COMMAND, "--root", str(pathRoot), "label", "get", strDevice, SERIAL], capture_output=True, text=True, env=Environment())
        return stProcess.stdout.strip()


class Batch(BatchTest):
    def test_every_row_is_written_with_a_result_line_and_a_count_with_the_rate(self):
        stResult = self.Batch(EXAMPLES / "labels.csv")
        self.assertEqual(stResult.iCode, 0, stResult.strErr)
        self.assertRegex(stResult.strErr, r"^3 rows: 3 written; \d+\.\d a second\n$")
        self.assertEqual(stResult.strOut, "row,root,device,result,message,Product Serial Number,Product Asset Tag\n"
                                          "1,,baseboard,written,,LH22024170101,RACK7-UNIT13\n2,,psu1,written,,PS8024100501,\n3,,psu2,written,,PS8024100502,\n")
        self.assertEqual([self.Serial(s) for s in ("baseboard", "psu1", "psu2")], ["LH22024170101", "PS8024100501", "PS8024100502"])
        self.assertEqual(len(self.OperationLog()), 4)
        self.assertEqual((self.pathRoot / SERIAL_NUMBER_FILES[0]).read_text(), "LH22024170101")
        # Once more there is nothing to write, and nothing is logged.
        stAgain = self.Batch(EXAMPLES / "labels.csv", "--json")
        self.assertEqual([json.loads(strLine)["result"] for strLine in stAgain.strOut.splitlines()], ["unchanged"] * 3)
        self.assertEqual(len(self.OperationLog()), 4)

    def test_one_bad_row_keeps_all_from_being_written(self):
        dictTree = self.Tree()
        for strBad, strWhy in (("psu2,x", "'x' is refused for 'Product Serial Number': it has 1 character"), ("psu9,AB1", "has no device named 'psu9'"),
                               ("psu2,0000000000", "it looks like a placeholder: it is one character again and again"),
                               ("psu2,To be filled by O.E.M.", "it is what a maker leaves to be filled in"), ("psu2,123456789", "it only counts up"),
                               ("psu2,PS1", "'PS1' is refused for 'Product Serial Number': row 2 gives it, too"),
                               ("psu2,LH22024170042", None),
                               ("psu1,PS3", "row 2 sets 'Product Serial Number' of the same device")):
            with self.subTest(strBad):
                stResult = self.Batch(self.Table(f"device,{SERIAL}\npsu1,PS1\n{strBad}\n"), "--dry-run")
                if strWhy is None:
                    strBad, strWhy = "", "'LH22024170042' is refused for 'Product Serial Number': baseboard (0x00:0) of "
                self.assertIn(strWhy, stResult.strErr)
                self.assertNotEqual(stResult.iCode, 0)
                stResult = self.Batch(self.Table(f"device,{SERIAL}\npsu1,PS1\n{strBad or 'psu2,LH22024170042'}\n"))
                self.assertIn("; nothing was written\n", stResult.strErr)
                self.assertIn("refused", stResult.strOut)
        self.AssertUntouched({strPath: value for strPath, value in dictTree.items() if "lock" not in strPath} |
                             {strPath: value for strPath, value in self.Tree().items() if "lock" in strPath})

    def test_force_writes_placeholders_and_doubles(self):
        self.assertEqual(self.Batch(self.Table(f"device,{SERIAL}\npsu1,0000000000\npsu2,0000000000\n"), "--force").iCode, 0)
        self.assertEqual((self.Serial("psu1"), self.Serial("psu2")), ("0000000000", "0000000000"))
        self.assertIn("--force writes it", self.Bad(3, "label", "set", "psu1", SERIAL, "Default string"))
        self.Good("label", "set", "psu1", SERIAL, "Default string", "--force")

    def test_two_devices_may_exchange_their_numbers(self):
        self.assertEqual(self.Batch(self.Table(f"device,{SERIAL}\npsu1,PS8024100312\npsu2,PS8024100311\n")).iCode, 0)
        self.assertEqual((self.Serial("psu1"), self.Serial("psu2")), ("PS8024100312", "PS8024100311"))

    def test_several_controllers_in_one_table(self):
        pathOther = self.pathTemp / "other"
        shutil.copytree(self.pathRoot, pathOther)
        # The one's own number is the other's: known across controllers.
        stResult = self.Batch(self.Table(f"root,device,{SERIAL}\n{self.pathRoot},psu1,AA11\n{pathOther},psu2,PS8024100311\n"))
        self.assertEqual(stResult.iCode, 3)
        self.assertIn(f"psu1 (0x03:0) of {pathOther} has it", self.Batch(self.Table(f"root,device,{SERIAL}\n{pathOther},psu2,PS8024100311\n")).strErr)
        stResult = self.Batch(self.Table(f"root,device,{SERIAL}\n{self.pathRoot},psu1,AA11\n{pathOther},psu1,BB22\n,psu2,CC33\n"))
        self.assertEqual(stResult.iCode, 0, stResult.strErr)
        self.assertEqual((self.Serial("psu1"), self.Serial("psu1", pathOther), self.Serial("psu2"), self.Serial("psu2", pathOther)),
                         ("AA11", "BB22", "CC33", "PS8024100312"))

    def test_semicolons_quotes_json_and_a_device_for_all_rows(self):
        for strText, strName in ((f'\ufeff{SERIAL};"{TAG}"\r\n"Q;1";"a ""b"""\r\n', "a.csv"), (json.dumps([{SERIAL: "Q;1", TAG: 'a "b"'}]), "a.json"),
                                 (json.dumps({SERIAL: "Q;1", TAG: 'a "b"'}) + "\n", "a.jsonl")):
            with self.subTest(strName):
                self.Good("label", "set", "psu1", f"{SERIAL}=OLD1", f"{TAG}=old")
                stResult = self.Fructl("label", "set", "psu1", "--from", self.Table(strText, strName))
                self.assertEqual(stResult.iCode, 0, stResult.strErr)
                self.assertEqual(self.Good("label", "get", "psu1", SERIAL, TAG).strOut, f'{SERIAL}=Q;1\n{TAG}=a "b"\n')
        # An empty cell is not given; a quoted one is an empty text.
        self.assertEqual(self.Batch(self.Table(f'device,{SERIAL},{TAG}\npsu1,,""\n')).iCode, 0)
        self.assertEqual(self.Good("label", "get", "psu1", SERIAL, TAG).strOut, f"{SERIAL}=Q;1\n{TAG}=\n")

    def test_values_from_a_template_and_a_counter(self):
        pathTable = self.Table("device,SKU\npsu1,A\npsu2,B\n")
        stResult = self.Batch(pathTable, "--template", SERIAL + "={SKU}-{counter:05}", "--template", TAG + "={{{device}}}", "--counter", 7)
        self.assertEqual(stResult.iCode, 0, stResult.strErr)
        self.assertEqual((self.Serial("psu1"), self.Serial("psu2")), ("A-00007", "B-00008"))
        self.assertEqual(self.Good("label", "get", "psu2", TAG).strOut, "{psu2}\n")
        for asOptions, iCode, strWhy in ((["--template", SERIAL + "={Sku}"], 3, "uses {Sku}, and"), (["--template", SERIAL + "={SKU"], 2, "a brace that is not closed"),
                                         (["--template", SERIAL + "={SKU:5}"], 2, "accepted: {NAME}, or {NAME:05}"), (["--template", SERIAL], 2, "is not NAME=TEXT"),
                                         ([], 3, "the column 'SKU' is no label, and no template uses it")):
            stResult = self.Batch(pathTable, *asOptions)
            self.assertEqual((stResult.iCode, strWhy in stResult.strErr), (iCode, True), stResult.strErr)

    def test_values_from_a_scanner(self):
        pathTable = self.Table("device\npsu1\npsu2\n")
        stResult = self.Batch(pathTable, "--scan", SERIAL, "--scan", TAG, strInput="S1A\r\nT1\r\nS2A\r\nT2\r\n")
        self.assertEqual(stResult.iCode, 0, stResult.strErr)
        self.assertEqual((self.Serial("psu1"), self.Serial("psu2")), ("S1A", "S2A"))
        stShort = self.Batch(pathTable, "--scan", SERIAL, strInput="S3A\n")
        self.assertEqual((stShort.iCode, self.Serial("psu1")), (3, "S1A"))
        self.assertIn("standard input ends before 'Product Serial Number' of row 2 (psu2) is scanned; nothing was written", stShort.strErr)

    def test_somebody_who_scans_is_told_what_is_awaited_and_what_is_wrong(self):
        iOurs, iTheirs = pty.openpty()
        stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "label", "set", "--from", str(self.Table("device\npsu1\n")), "--scan", SERIAL],
                                     stdin=iTheirs, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=Environment())
        os.write(iOurs, b"00000000\nGOOD1\n")
        strOut, strErr = stProcess.communicate(timeout=HANG_SECONDS)
        os.close(iTheirs)
        os.close(iOurs)
        self.assertEqual((stProcess.returncode, strErr.count("row 1 of 1, psu1, Product Serial Number: ")), (0, 2), strErr + strOut)
        self.assertIn("it looks like a placeholder", strErr)
        self.assertEqual(self.Serial("psu1"), "GOOD1")


class Results(BatchTest):
    def test_a_batch_that_stopped_goes_on_where_it_was(self):
        pathTable = self.Table(f"device,{SERIAL}\nbaseboard,N001A\npsu1,N002A\npsu2,N003A\n")
        for strName in ("done.csv", "done.jsonl"):
            with self.subTest(strName):
                self.tearDownRoot()
                pathDone = self.pathTemp / strName
                pathChip = self.Eeprom("bus2-addr0xa4-switch1.bin")
                # Readable, but write-protected: the check passes, the write does not.
                pathChip.chmod(0o444)
                stResult = self.Batch(pathTable, "--results", pathDone)
                self.assertEqual((stResult.iCode, self.Rows(stResult)),
                                 (5, [("1", "baseboard", "written"), ("2", "psu1", "failed")]), stResult.strErr)
                self.assertIn("; the same command goes on there\n", stResult.strErr)
                self.assertIn("1 written, 1 failed, 1 not tried", stResult.strErr)
                pathChip.chmod(0o644)
                stAgain = self.Batch(pathTable, "--results", pathDone)
                self.assertEqual(stAgain.iCode, 0, stAgain.strErr)
                self.assertEqual(self.Rows(stAgain), [("2", "psu1", "written"), ("3", "psu2", "written")])
                self.assertIn("2 written, 1 done before", stAgain.strErr)

    def tearDownRoot(self):
        shutil.rmtree(self.pathRoot)
        self.Provision()

    def test_results_on_a_controller_of_any_name_are_known_again(self):
        pathOther = self.pathTemp / "Prüffeld"
        shutil.copytree(self.pathRoot, pathOther)
        pathTable = self.Table(f"root,device,{SERIAL}\n{pathOther},psu1,N001A\n")
        for strName in ("done.csv", "done.jsonl"):
            with self.subTest(strName):
                pathDone = self.pathTemp / strName
                self.assertEqual(self.Batch(pathTable, "--results", pathDone).iCode, 0)
                stAgain = self.Batch(pathTable, "--results", pathDone)
                self.assertEqual((stAgain.iCode, self.Rows(stAgain)), (0, []), stAgain.strErr)
                self.assertIn("1 done before", stAgain.strErr)

    def test_a_failure_stops_the_batch_or_not_as_asked_and_the_same_command_goes_on(self):
        pathTable = self.Table(f"device,{SERIAL}\npsu1,N001A\nnone,N002A\npsu2,N003A\n")
        for strName in ("done.csv", "done.jsonl"):
            with self.subTest(strName):
                self.tearDownRoot()
                pathDone = self.pathTemp / strName
                self.assertEqual(self.Rows(self.Batch(pathTable, "--results", pathDone)), [("2", "none", "refused")])
                self.assertEqual(self.Serial("psu1"), "PS8024100311")
                stResult = self.Batch(pathTable, "--results", pathDone, "--keep-going")
                self.assertEqual((stResult.iCode, self.Rows(stResult)), (4, [("1", "psu1", "written"), ("2", "none", "refused"), ("3", "psu2", "written")]))
                with open(pathDone, "ab") as stFile:
                    stFile.write(b'{"row":2,"ro')  # a power cut in the middle of a line
                self.Good("label", "set", "psu1", SERIAL, "CHANGED1")
                stAgain = self.Batch(pathTable, "--results", pathDone, "--keep-going")
                self.assertEqual(self.Rows(stAgain), [("2", "none", "refused")])
                self.assertIn("2 done before, 1 refused", stAgain.strErr)
                self.assertEqual(self.Serial("psu1"), "CHANGED1")
                # Another table's results are not taken for this one's.
                stOther = self.Batch(self.Table(f"device,{SERIAL}\npsu1,OTHER1\npsu2,N003A\n", "other.csv"), "--results", pathDone)
                self.assertEqual(stOther.iCode, 3)
                self.assertIn("row 1 was another one when it was written; accepted: the results of the same table, or another --results FILE", stOther.strErr)

    def test_what_is_no_table_is_refused(self):
        for strText, strWhy in (("", "has no rows"), (f"device,{SERIAL}\n", "has no rows"), (f"{SERIAL}\nA1\n", "names no device"),
                                (f"device,{SERIAL}\npsu1\n", "gives no label a value"), (f"device,{SERIAL}\npsu1,A,B\n", ":2: 3 cells, but the first line names 2 columns"),
                                ('device,"x\n', "a quote is not closed"), ("device,device\npsu1,psu2\n", "the column 'device' stands there twice"),
                                ("device,Product Serial Numbr\npsu1,A1\n", "did you mean 'Product Serial Number'?"), ('[{"device": ["psu1"]}]', ": accepted: a text, a whole number or null"),
                                ('{"device": "psu1", "Product Version": 2.10}', ":1: Product Version: accepted: a text, a whole number or null"),
                                ('{"device": "psu1", "Product Version": 98765432109876543210}', "accepted: a text, a whole number or null"),
                                ('{"device": "psu1", "Product Version": true}', "accepted: a text, a whole number or null"),
                                ("[1]", ":1: not an object"), ('{"device": \n', ":1: not JSON")):
            with self.subTest(strText):
                stResult = self.Batch(self.Table(strText))
                self.assertEqual((stResult.iCode, strWhy in stResult.strErr), (3, True), stResult.strErr)
        self.assertIn("accepted: them with --from FILE", self.Bad(2, "label", "set", "psu1", "--keep-going"))
        self.assertIn("with --from the labels stand in the table", self.Bad(2, "label", "set", "psu1", SERIAL, "A1", "--from", EXAMPLES / "labels.csv"))


class Unchanged(BatchTest):
    def test_what_is_there_already_is_not_written_and_said_so(self):
        self.assertEqual(self.Good("label", "set", "psu1", SERIAL, "PS8024100311").strOut,
                         "psu1 (0x03:0) is unchanged; nothing was written\n  Product Serial Number  PS8024100311 -> PS8024100311  (unchanged)\n")
        self.assertEqual((self.OperationLog(), self.LabelEvents()), ([], []))
        stJson = self.Json("label", "set", "psu1", f"{SERIAL}=PS8024100311", f"{TAG}=NEW1")
        self.assertEqual([(stLabel["name"], stLabel["unchanged"], "operationLog" in stLabel) for stLabel in stJson["labels"]], [(SERIAL, True, False), (TAG, False, True)])
        self.assertEqual(len(self.OperationLog()), 1)

    def test_a_serial_number_whose_files_lack_it_is_written(self):
        self.assertIn("Set baseboard FRU successfully", self.Good("label", "set", "baseboard", SERIAL, "LH22024170042").strOut)
        for strFile in SERIAL_NUMBER_FILES:
            self.assertEqual((self.pathRoot / strFile).read_bytes(), b"LH22024170042")
        abBefore = self.Eeprom(BASEBOARD_EEPROM).stat().st_mtime_ns
        self.assertIn("is unchanged", self.Good("label", "set", "baseboard", SERIAL, "LH22024170042").strOut)
        self.assertEqual(self.Eeprom(BASEBOARD_EEPROM).stat().st_mtime_ns, abBefore)


class Get(BatchTest):
    def test_several_labels_and_all_of_them(self):
        self.assertEqual(self.Good("label", "get", "psu1", SERIAL, "Mfg.Date").strOut, "Product Serial Number=PS8024100311\nMfg.Date=2024-02-05 14:10:00\n")
        dictAll = dict(strLine.split("=", 1) for strLine in self.Good("label", "get", "psu1", "--all").strOut.splitlines())
        stList = self.Json("label", "list", "psu1")["labels"]
        self.assertEqual(dictAll, {stLabel["name"]: stLabel["value"] for stLabel in stList if stLabel["value"] is not None})
        stJson = self.Json("label", "get", "psu1", SERIAL, TAG)
        self.assertEqual([(stLabel["name"], stLabel["value"]) for stLabel in stJson["labels"]], [(SERIAL, "PS8024100311"), (TAG, "")])
        self.assertIn("labels are named, and --all asks for all", self.Bad(2, "label", "get", "psu1", SERIAL, "--all"))
        self.assertIn("no label is named", self.Bad(2, "label", "get", "psu1"))


if __name__ == "__main__":
    unittest.main()
