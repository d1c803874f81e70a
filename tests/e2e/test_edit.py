# SPDX-License-Identifier: Apache-2.0
"""fructl edit: one field changes, every other byte stays; planned, logged, told and undone as a label is."""
import json
import re
import shlex
import unittest

from support import CORPUS_IMAGES, EXAMPLES, NO_CORPUS, FructlTest, Run

USAGE, REFUSED, NOT_FOUND, DAMAGED = 2, 3, 4, 6
SERIAL_FILE = "mnt/sdmmc0p4/board/ProductSerialNumber"


class EditTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Bytes(self, strDevice):
        self.Good("read", strDevice, "-o", self.pathTemp / "now.bin", "--force")
        return (self.pathTemp / "now.bin").read_bytes()

    def test_a_device_is_edited_and_says_so(self):
        abBefore = self.Bytes("psu1")
        dictPlan = self.Json("edit", "psu1", "board.serialNumber=LH0042", "--dry-run")
        self.assertTrue(dictPlan["dryRun"] and dictPlan["sound"] and not dictPlan["unchanged"])
        self.assertEqual([st["field"] for st in dictPlan["fields"]], ["serial number"])
        self.assertEqual(self.Bytes("psu1"), abBefore)
        strOut = self.Good("edit", "psu1", "board.serialNumber=LH0042").strOut
        self.assertIn("Set psu1 FRU successfully, psu1 Board Serial Number: LH0042.", strOut)
        self.assertEqual(self.Json("show", "psu1")["board"]["serialNumber"], "LH0042")
        self.assertIn("unchanged", self.Good("edit", "psu1", "board.serialNumber=LH0042").strOut)
        self.Good("verify", "psu1")
        self.Good("undo", "psu1")
        self.assertEqual(self.Bytes("psu1"), abBefore)

    def test_log_event_and_files_are_those_of_a_label(self):
        self.Good("label", "set", "baseboard", "Product Serial Number", "SN-LABEL")
        self.Good("edit", "baseboard", "product.serialNumber=SN-EDIT")
        listLog = self.Lines("var/log/operate.jsonl")
        self.assertEqual(listLog[-1].keys(), listLog[-2].keys())
        self.assertIn("Set baseboard FRU successfully, baseboard Product Serial Number: SN-EDIT.", json.dumps(listLog[-1]))
        self.assertIn("Set baseboard FRU successfully, baseboard Product Serial Number: SN-LABEL.", json.dumps(listLog[-2]))
        listEvents = self.Lines("var/log/fru-events.jsonl")
        self.assertEqual({k: v for k, v in listEvents[-1].items() if k != "time"}, {k: v for k, v in listEvents[-2].items() if k != "time"})
        self.assertEqual((self.pathRoot / SERIAL_FILE).read_text(), "SN-EDIT")
        self.Good("edit", "baseboard", "product.assetTag=R9")
        self.assertEqual((self.pathRoot / SERIAL_FILE).read_text(), "SN-EDIT")

    def test_fields_areas_and_records_come_and_go(self):
        abBefore = self.Bytes("psu1")
        self.Good("edit", "psu1", "--add-area", "chassis", "chassis.serialNumber=C-9", "chassis.type=0x17", "product.custom[+]=line 3",
                  "multiRecord[+]=0xc0:5a310001")
        dictShow = self.Json("show", "psu1")
        self.assertEqual(dictShow["chassis"]["serialNumber"], "C-9")
        self.assertEqual(dictShow["product"]["customFields"][-1], "line 3")
        self.assertEqual(dictShow["multiRecords"][-1]["data"], "5a 31 00 01")
        iCustom, iRecord = len(dictShow["product"]["customFields"]) - 1, len(dictShow["multiRecords"]) - 1
        self.Good("edit", "psu1", "--remove", "chassis", "--remove", f"product.custom[{iCustom}]", "--remove", f"multiRecord[{iRecord}]")
        self.assertNotIn("chassis", self.Json("show", "psu1"))
        self.Good("verify", "psu1")
        self.assertEqual({k: v for k, v in self.Json("show", "psu1").items() if k in ("board", "product")},
                         {k: v for k, v in self.Json("show", self.Saved(abBefore)).items() if k in ("board", "product")})

    def Saved(self, abImage):
        pathFile = self.pathTemp / "saved.bin"
        pathFile.write_bytes(abImage)
        return pathFile

    def test_what_is_refused_says_what_is_accepted(self):
        self.assertIn("did you mean 'board.serialNumber'", self.Bad(USAGE, "edit", "psu1", "board.serialnumber=1"))
        self.assertIn("accepted: FIELD=VALUE", self.Bad(USAGE, "edit", "psu1"))
        self.assertIn("--add-area chassis makes one", self.Bad(REFUSED, "edit", "psu1", "chassis.serialNumber=1"))
        self.assertIn("0 custom fields", self.Bad(NOT_FOUND, "edit", "psu1", "board.custom[0]=ab"))
        self.assertIn("the FRU", self.Bad(REFUSED, "edit", "psu1", *[f"product.custom[+]={'x' * 60}" for _ in range(30)]))
        self.assertIn("named twice", self.Bad(USAGE, "edit", "psu1", "board.serialNumber=1", "board.serialNumber=2"))
        self.assertIn("is a device", self.Bad(USAGE, "edit", "psu1", "board.serialNumber=12", "-o", "x.bin"))

    def test_a_file_is_edited_in_place_or_into_another(self):
        pathFile = self.Saved(self.Bytes("psu1"))
        self.Good("edit", pathFile, "board.serialNumber=FILE-1", "-o", self.pathTemp / "other.bin")
        self.assertEqual(self.Json("show", self.pathTemp / "other.bin")["board"]["serialNumber"], "FILE-1")
        self.assertNotEqual(self.Json("show", pathFile)["board"]["serialNumber"], "FILE-1")
        self.assertEqual(self.Bad(REFUSED, "edit", pathFile, "board.serialNumber=FILE-3", "-o", self.pathTemp / "other.bin"),
                         f"{self.pathTemp / 'other.bin'} is there already; --force replaces it")
        self.assertIn("is no file", self.Bad(REFUSED, "edit", pathFile, "board.serialNumber=FILE-3", "-o", self.pathTemp))
        self.Good("edit", pathFile, "board.serialNumber=FILE-3", "-o", self.pathTemp / "other.bin", "--force")
        self.assertEqual(self.Json("show", self.pathTemp / "other.bin")["board"]["serialNumber"], "FILE-3")
        self.Good("edit", pathFile, "board.serialNumber=FILE-2")
        self.assertEqual(self.Json("show", pathFile)["board"]["serialNumber"], "FILE-2")
        pathHex = self.pathTemp / "note.hex"
        pathHex.write_bytes((EXAMPLES / "psu1.hex").read_bytes())
        self.assertIn("comments", self.Bad(REFUSED, "edit", pathHex, "board.serialNumber=H1"))

    def test_a_file_grows_where_that_is_asked(self):
        pathFile = self.Saved(bytes([1, 0, 1, 0, 0, 0, 0, 0xFE, 1, 1, 1, 0xC0, 0xC0, 0xC1, 0, 0xFF & -(3 + 0xC0 + 0xC0 + 0xC1)]))
        self.assertIn("--size N lets a file grow", self.Bad(REFUSED, "edit", pathFile, "chassis.serialNumber=0123456789"))
        self.Good("edit", pathFile, "chassis.serialNumber=0123456789", "--size", "64")
        self.assertEqual(pathFile.stat().st_size, 64)
        self.Good("verify", pathFile)

    def test_an_erased_device_gets_an_image(self):
        self.Good("clear", "psu2", "--yes")
        self.Good("edit", "psu2", "--add-area", "board", "board.serialNumber=NEW-1", "board.mfgDate=2024-03-18 09:30:00")
        self.Good("verify", "psu2")
        self.assertEqual(self.Json("show", "psu2")["board"]["mfgDate"], "2024-03-18 09:30:00")

    def test_where_a_label_would_lose_something_edit_is_named(self):
        abImage = bytearray(b"\x01\x00\x00\x00\x01\x00\x00\xfe" + b"\x01\x04\x19")
        abImage += b"\xc4ACME\x43\x12\x34\x56\xc0\xc0\xc4SN-1\xc0\xc0\xc1"
        abImage += bytes(8 + 32 - 1 - len(abImage))
        abImage += bytes([-sum(abImage[8:]) & 0xFF])
        self.pathRoot = self.pathTemp / "other"
        self.ProvisionImage(bytes(abImage) + b"\xff" * 64)
        self.assertIn("'fructl edit'", self.Bad(REFUSED, "label", "set", "dev", "Product Serial Number", "SN-2"))
        dictPlan = self.Json("edit", "dev", "product.serialNumber=SN-2")
        self.assertEqual(len(dictPlan["fields"]), 1)
        self.assertEqual(sum(len(st["new"].split()) for st in dictPlan["bytes"]), 2)

    def test_the_examples_of_the_help_work(self):
        for strName in ("dump.bin", "old-board.bin"):
            self.Good("read", "baseboard", "-o", self.pathTemp / strName)
        (self.pathTemp / "examples").symlink_to(EXAMPLES)
        for strCommand in ("edit", "repair", "transplant"):
            listExamples = re.findall(rf"^  (fructl {strCommand} .*)$", Run(strCommand, "--help").strOut, re.MULTILINE)
            self.assertGreaterEqual(len(listExamples), 2)
            for strExample in listExamples:
                stResult = Run("--root", self.pathRoot, *shlex.split(strExample)[1:], strCwd=self.pathTemp)
                self.assertEqual((stResult.iCode, stResult.strErr), (0, ""), strExample)

    @unittest.skipUnless(CORPUS_IMAGES, NO_CORPUS)
    def test_every_real_image_takes_a_new_field(self):
        for pathImage in CORPUS_IMAGES:
            with self.subTest(pathImage.name):
                strArea = next(st for st in ("board", "product", "chassis") if st in Run("--json", "show", "--lenient", pathImage).strOut)
                pathNew = self.pathTemp / "new.bin"
                stResult = Run("--json", "edit", pathImage, f"{strArea}.custom[+]=new one", "-o", pathNew, "--force", "--size", pathImage.stat().st_size + 32)
                self.assertEqual((stResult.iCode, stResult.strErr), (0, ""))
                self.assertEqual(len(stResult.Json()["fields"]), 1)
                self.assertLessEqual(Run("verify", pathNew).iCode, Run("verify", pathImage).iCode)


if __name__ == "__main__":
    unittest.main()
